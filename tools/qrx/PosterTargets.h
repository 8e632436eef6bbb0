#pragma once

#include <optional>
#include <string>
#include <vector>

#include "foundation/FilePath.h"
#include "platform/ports/Image.h"

namespace qrx::tool {

/// Where one poster goes.
struct PosterTarget {
    FilePath path;  ///< absolute
    platform::ImageFormat format = platform::ImageFormat::png;
};

/// Where the posters of some clips go, or why that cannot be told.
struct PosterTargets {
    std::vector<PosterTarget> targets;  ///< one a clip, in their order
    std::string refusal;                ///< empty when there is none
};

/// The format that the end of a name says: .png, .jpg, .jpeg, .tif or .tiff, in any case.
[[nodiscard]] std::optional<platform::ImageFormat> formatOfName(const std::string& name);

/// @param clips   absolute paths.
/// @param output  an existing folder, which gets NAME.FORMAT for each clip; or, for one clip, a
///                file whose name says its format.
/// @param format  "png", "jpg" or "tif" in a folder, where "" means png; "" for a file.
[[nodiscard]] PosterTargets posterTargets(const std::vector<FilePath>& clips,
                                          const std::string& output, const std::string& format);

/// Why nothing may be written at `path`; nothing where it may. A clip is never written over.
[[nodiscard]] std::optional<std::string> whyNotWritten(const FilePath& path,
                                                       const std::vector<FilePath>& clips,
                                                       bool replaces);

}  // namespace qrx::tool
