#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "foundation/FilePath.h"
#include "metadata/QRXMetadataWrapper.h"
#include "platform/ports/Image.h"
#include "timecode/VideoFrameRate.h"

namespace qrx {

/// What every camera-card format answers about a path, a drive or a clip.
///
/// Paths are taken as they are written; nothing needs to exist at them. No operation throws: what
/// is missing, unreadable or of another format gets the neutral answer that stands with each. No
/// operation keeps anything between calls, and all may be called from any thread.
class QRXHDMediaVolumeUtilityProtocol {
public:
    virtual ~QRXHDMediaVolumeUtilityProtocol() = default;

    /// Format number, 0 to 14; 16 means no defined volume. 15 is nobody's.
    [[nodiscard]] virtual std::uint64_t volumeType() const = 0;
    /// Display title, never empty.
    [[nodiscard]] virtual std::string volumeTitle() const = 0;
    /// Whether `file` lies where this format puts its clips (neutral: no).
    [[nodiscard]] virtual bool filePathMatchesVolumeStructure(const FilePath& file) const = 0;
    /// Whether `drive` is the root of a card of this format (neutral: no).
    [[nodiscard]] virtual bool drivePathMatchesVolumeStructure(const FilePath& drive) const = 0;
    /// The piece of a path at which the card's own structure begins; nothing when the format has
    /// none.
    [[nodiscard]] virtual std::optional<std::string> rootOfUniquePathIdenifier() const = 0;
    /// Resets `drive` to an empty card of this format. REMOVES what is on it. Whether all steps
    /// succeeded; what went before a failing step stays gone.
    [[nodiscard]] virtual bool formatDriveToMatchValidVolumeStructure(
        const FilePath& drive) const = 0;
    /// The clip's frame rate.
    [[nodiscard]] virtual QRXVideoFrameRate framerateForVideoFile(const FilePath& file) const = 0;
    /// An identifier of the clip that is unique on its card; nothing where the format keeps one in
    /// the clip and this clip has none.
    [[nodiscard]] virtual std::optional<std::string> uniqueIdentifierForVideoFile(
        const FilePath& file) const = 0;
    /// Whether clips of this format lie below `folder` (neutral: no).
    [[nodiscard]] virtual bool pathContainsVideoFilesMatchingVolumeStructure(
        const FilePath& folder) const = 0;
    /// A still picture of the clip, the empty image where none can be made.
    ///
    /// @param imageOutputDirectory  folder for a temporary picture, which is gone afterwards.
    [[nodiscard]] virtual platform::Image posterImageForFilePath(
        const FilePath& file, const FilePath& imageOutputDirectory) const = 0;
    /// What is known of the clip; a value that is not known reads as absent.
    [[nodiscard]] virtual QRXMetadataWrapper metadataWrapperForVideoFilePath(
        const FilePath& file) const = 0;
    /// Sound files that belong to the clip. Empty when the format has none; nothing where a format
    /// that has them finds none.
    [[nodiscard]] virtual std::optional<FilePaths> audioFilesForVideoFile(
        const FilePath& file) const = 0;
    /// The clip's sidecar file; nothing when there is none.
    [[nodiscard]] virtual std::optional<FilePath> metadataFilePathForVideoFile(
        const FilePath& file) const = 0;
    /// Timecode of the first frame, "HH:MM:SS:FF" (";" before the frames for drop frame).
    [[nodiscard]] virtual std::string startTimecodeForVideoFile(const FilePath& file) const = 0;
    /// Timecode of the last frame; nothing when the format does not tell.
    [[nodiscard]] virtual std::optional<std::string> endTimecodeForVideoFile(
        const FilePath& file) const = 0;
    /// Whether the clip's timecode counts in drop frame (neutral: no).
    [[nodiscard]] virtual bool videoFileIsDropFrame(const FilePath& file) const = 0;
    /// Whether the format splits long recordings over several files.
    [[nodiscard]] virtual bool clipSpanningSupported() const = 0;
    /// Whether the file is one piece of a spanned recording (neutral: no).
    [[nodiscard]] virtual bool fileIsInASpannedSeries(const FilePath& file) const = 0;
    /// The pieces of one spanned recording in playing order. Always the elements of `files`, except
    /// where a format says otherwise.
    [[nodiscard]] virtual FilePaths sortSpannedClipSeries(const FilePaths& files) const = 0;
    /// A key that all pieces of one spanned recording share; nothing when there is none.
    [[nodiscard]] virtual std::optional<std::string> spanPartnerIdentifierForPath(
        const FilePath& file) const = 0;
    /// Whether all files are pieces of one spanned recording (neutral: no).
    [[nodiscard]] virtual bool filesArePartOfTheSameSpanSeries(const FilePaths& files) const = 0;
    /// The card's clips in the order of recording. Always the elements of `files`.
    [[nodiscard]] virtual FilePaths orderVolumeVideoFiles(const FilePaths& files) const = 0;
    /// A key that all clips of one card share.
    [[nodiscard]] virtual std::string volumePartnerIdentifierForFilePath(
        const FilePath& file) const = 0;
    /// Whether all files belong to the same card; no for an empty list.
    [[nodiscard]] virtual bool filePathsAreVolumeSiblings(const FilePaths& files) const = 0;
    /// Whether the file's extension is one that this format accepts for video.
    [[nodiscard]] virtual bool filePathExtensionIsValid(const FilePath& file) const = 0;

protected:
    QRXHDMediaVolumeUtilityProtocol() = default;
    QRXHDMediaVolumeUtilityProtocol(const QRXHDMediaVolumeUtilityProtocol&) = default;
    QRXHDMediaVolumeUtilityProtocol& operator=(const QRXHDMediaVolumeUtilityProtocol&) = default;
};

}  // namespace qrx
