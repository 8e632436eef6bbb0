#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "platform/ports/Thumbnailer.h"

namespace qrx::platform {

struct ThumbnailerEntry;

/// What a program may choose about its thumbnailers.
struct ThumbnailerOptions {
    /// A file has this long, with whatever number of thumbnailers it is tried.
    std::chrono::nanoseconds timeLimit = std::chrono::seconds{10};
    /// Where `thumbnailers/*.thumbnailer` are looked for, first come first; absent: where the
    /// desktop keeps them.
    std::optional<std::vector<std::string>> dataFolders;
};

/// The thumbnails of the desktop: still pictures are read right here, by the image codec in force;
/// for everything else the installed thumbnailer programs that know the file's MIME type are tried
/// one after another, those of the exact type first, until one makes a picture.
///
/// A thumbnailer runs under the process runner in force, and what it makes is not trusted: it
/// writes into a folder of its own, which is removed in every case, and only a regular file there,
/// of bounded size, is read. One that hangs is ended with its children.
class DesktopThumbnailer final : public Thumbnailer {
public:
    explicit DesktopThumbnailer(ThumbnailerOptions options = {});

    [[nodiscard]] std::optional<Image> thumbnail(const std::string& path,
                                                 std::uint32_t maximumWidth,
                                                 std::uint32_t maximumHeight) override;

private:
    [[nodiscard]] std::optional<Image> byProgram(const std::string& path, const std::string& type,
                                                 unsigned size) const;

    ThumbnailerOptions options_;
};

}  // namespace qrx::platform
