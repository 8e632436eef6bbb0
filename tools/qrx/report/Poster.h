#pragma once

#include "foundation/FilePath.h"
#include "qrx/report/ReportData.h"
#include "volumes/QRXHDMediaVolumeUtilityObject.h"

namespace qrx::tool {

inline constexpr std::uint32_t kMostPosterWidth = 240;   ///< pixels
inline constexpr std::uint32_t kMostPosterHeight = 240;  ///< for clips that stand upright
inline constexpr std::size_t kMostPosterBytes = 16384;

/// A folder of this process alone in the folder for temporary files, gone with all that is in it
/// when the object goes.
class TemporaryPictures {
public:
    /// Throws std::system_error when it cannot be made.
    TemporaryPictures();
    ~TemporaryPictures();
    TemporaryPictures(const TemporaryPictures&) = delete;
    TemporaryPictures& operator=(const TemporaryPictures&) = delete;

    [[nodiscard]] const FilePath& folder() const { return folder_; }

private:
    FilePath folder_;
};

/// The clip's picture, small; without bytes when there is none.
[[nodiscard]] Poster posterOf(const FilePath& clip, const QRXHDMediaVolumeUtilityObject& utility,
                              const FilePath& temporaryFolder);

}  // namespace qrx::tool
