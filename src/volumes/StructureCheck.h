#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "foundation/FilePath.h"
#include "metadata/QRXMetadataWrapper.h"

namespace qrx {

class QRXHDMediaVolumeUtilityObject;

/// How much is done to tell whether a file is a clip.
enum class Examination {
    exact,  ///< everything that the utilities ask for
    quick,  ///< the ffmpeg tool is not run on a file whose extension is one of files without video
};

/// One path under examination. What several checks, or several utilities, ask about the same path
/// is worked out once, when it is first asked for.
class ExaminedPath {
public:
    explicit ExaminedPath(const FilePath& path, Examination examination = Examination::exact)
        : path_(path), examination_(examination) {}
    ExaminedPath(const ExaminedPath&) = delete;
    ExaminedPath& operator=(const ExaminedPath&) = delete;

    [[nodiscard]] const FilePath& path() const { return path_; }
    [[nodiscard]] Examination examination() const { return examination_; }
    /// The whole path in upper case.
    [[nodiscard]] const std::string& upperCased();
    /// The whole path in lower case.
    [[nodiscard]] const std::string& lowerCased();
    /// The last component, its case unchanged; a view into path().
    [[nodiscard]] std::string_view fileName() const;
    /// The last component of the folder that holds the file; a view into path().
    [[nodiscard]] std::string_view folderName() const;
    /// What the ffmpeg tool's report says; the tool is run once, when first asked.
    [[nodiscard]] const QRXMetadataWrapper& ffmpegMetadata();
    /// Whether the path opened as a movie with picture or sound; nothing before that was tried.
    [[nodiscard]] std::optional<bool> movieProbe() const { return movieProbe_; }
    void rememberMovieProbe(bool opens) { movieProbe_ = opens; }

private:
    const FilePath& path_;
    Examination examination_;
    std::optional<std::string> upperCased_;
    std::optional<std::string> lowerCased_;
    std::optional<QRXMetadataWrapper> ffmpegMetadata_;
    std::optional<bool> movieProbe_;
};

/// What one check says of a path.
enum class CheckVerdict {
    passes,   ///< go on with the next check
    fails,    ///< the utility does not claim the path
    decides,  ///< the utility claims the path, whatever the later checks would say
};

[[nodiscard]] constexpr CheckVerdict passesIf(bool holds) {
    return holds ? CheckVerdict::passes : CheckVerdict::fails;
}

/// One step of a utility's path test. The test is the list of its checks, walked from the front:
/// the first that fails rejects the path, and a path that passes them all is claimed. An empty list
/// claims nothing.
struct StructureCheck {
    /// What holds when the check passes, as a phrase: "the file name ends in .MTS".
    std::string_view phrase;
    CheckVerdict (*ask)(const QRXHDMediaVolumeUtilityObject& utility, ExaminedPath& path);
};

/// How a walk over a list of checks ended.
struct StructureFinding {
    bool claimed = false;
    /// The check that rejected the path, or that decided for it; none where all passed, or where
    /// the list is empty.
    const StructureCheck* decisive = nullptr;
};

[[nodiscard]] StructureFinding walkStructureChecks(std::span<const StructureCheck> checks,
                                                   const QRXHDMediaVolumeUtilityObject& utility,
                                                   ExaminedPath& path);

}  // namespace qrx
