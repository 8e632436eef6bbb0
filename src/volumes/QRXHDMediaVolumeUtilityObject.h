#pragma once

#include <memory>
#include <span>
#include <vector>

#include "foundation/QRXObject.h"
#include "volumes/DriveReset.h"
#include "volumes/QRXHDMediaVolumeUtilityProtocol.h"
#include "volumes/StructureCheck.h"

namespace qrx {

/// Answers for a file that no camera format claims, and the defaults that each format overrides.
/// Holds no state; every answer is read from disk on demand. No operation throws.
///
/// A format states its path test as a list of named checks (structureChecks) and overrides what it
/// knows better. Every class has `sharedInstance`, the process-wide object, and a factory of new
/// objects, called `volumeUtility` or `utility`.
class QRXHDMediaVolumeUtilityObject : public QRXHDMediaObject,
                                      public QRXHDMediaVolumeUtilityProtocol {
public:
    /// The volume type of this class and of the generic parents: no defined volume.
    static constexpr std::uint64_t kNoDefinedVolume = 16;

    /// KEPT: a new base object, whatever class it is called through: a class that offers its
    /// factory as `utility` alone gives a base object here. Hosts tell the two names apart.
    [[nodiscard]] static std::unique_ptr<QRXHDMediaVolumeUtilityObject> volumeUtility();
    /// The process-wide object of this class, made on first use and never destroyed.
    [[nodiscard]] static QRXHDMediaVolumeUtilityObject& sharedInstance();

    /// 16: no defined volume.
    [[nodiscard]] std::uint64_t volumeType() const override { return kNoDefinedVolume; }
    [[nodiscard]] std::string volumeTitle() const override { return "Volume"; }
    /// Walks structureChecks().
    [[nodiscard]] bool filePathMatchesVolumeStructure(const FilePath& file) const override;
    /// No.
    [[nodiscard]] bool drivePathMatchesVolumeStructure(const FilePath& drive) const override;
    [[nodiscard]] std::optional<std::string> rootOfUniquePathIdenifier() const override;
    /// Carries out resetPlan(); no when there is none.
    [[nodiscard]] bool formatDriveToMatchValidVolumeStructure(const FilePath& drive) const override;
    /// From the ffmpeg tool's report; 30 frames a second when the report does not say.
    [[nodiscard]] QRXVideoFrameRate framerateForVideoFile(const FilePath& file) const override;
    /// The file's name without its extension.
    [[nodiscard]] std::optional<std::string> uniqueIdentifierForVideoFile(
        const FilePath& file) const override;
    /// No.
    [[nodiscard]] bool pathContainsVideoFilesMatchingVolumeStructure(
        const FilePath& folder) const override;
    /// A still made by the ffmpeg tool in `imageOutputDirectory` and removed after it was read.
    [[nodiscard]] platform::Image posterImageForFilePath(
        const FilePath& file, const FilePath& imageOutputDirectory) const override;
    /// A wrapper without any value.
    [[nodiscard]] QRXMetadataWrapper metadataWrapperForVideoFilePath(
        const FilePath& file) const override;
    /// The empty list.
    [[nodiscard]] std::optional<FilePaths> audioFilesForVideoFile(
        const FilePath& file) const override;
    [[nodiscard]] std::optional<FilePath> metadataFilePathForVideoFile(
        const FilePath& file) const override;
    /// "00:00:00:00".
    [[nodiscard]] std::string startTimecodeForVideoFile(const FilePath& file) const override;
    [[nodiscard]] std::optional<std::string> endTimecodeForVideoFile(
        const FilePath& file) const override;
    [[nodiscard]] bool videoFileIsDropFrame(const FilePath& file) const override;
    [[nodiscard]] bool clipSpanningSupported() const override;
    [[nodiscard]] bool fileIsInASpannedSeries(const FilePath& file) const override;
    /// The same elements in the same order.
    [[nodiscard]] FilePaths sortSpannedClipSeries(const FilePaths& files) const override;
    [[nodiscard]] std::optional<std::string> spanPartnerIdentifierForPath(
        const FilePath& file) const override;
    [[nodiscard]] bool filesArePartOfTheSameSpanSeries(const FilePaths& files) const override;
    /// By creation date.
    [[nodiscard]] FilePaths orderVolumeVideoFiles(const FilePaths& files) const override;
    /// The path of the file's folder, without a trailing "/".
    [[nodiscard]] std::string volumePartnerIdentifierForFilePath(
        const FilePath& file) const override;
    /// Whether all files lie in one folder, compared as texts.
    [[nodiscard]] bool filePathsAreVolumeSiblings(const FilePaths& files) const override;
    /// Whether the extension is none of those that are known to hold no video.
    [[nodiscard]] bool filePathExtensionIsValid(const FilePath& file) const override;

    // Not every volume utility must answer these two; all of this library do.

    /// The media file that a reference or index file stands for; `file` itself by default.
    [[nodiscard]] virtual FilePath sourceFilePathForReferenceFile(const FilePath& file) const;
    /// Pieces of a path that show that the card's structure begins there; nothing by default.
    [[nodiscard]] virtual std::optional<std::vector<std::string>>
    pathComponentsIndicatingTheVolumeHasBegun() const;

    // Beyond the protocol.

    /// Does nothing and answers no.
    [[nodiscard]] virtual bool reformatDrivePath(const FilePath& drive) const;
    /// The name, not the path, of the folder that contains `path`.
    [[nodiscard]] virtual std::string defaultVolumeParentDirectoryForFileSystemPath(
        const FilePath& path) const;

    /// What a reset of `drive` would do, without doing it. Nothing when the format has no reset, or
    /// refuses this drive; a plan without steps when there is nothing to do.
    [[nodiscard]] virtual std::optional<ResetPlan> resetPlan(const FilePath& drive) const;

    /// The path test, step by step; the empty list claims nothing. The list lives as long as the
    /// program.
    [[nodiscard]] virtual std::span<const StructureCheck> structureChecks() const;
    /// As filePathMatchesVolumeStructure, on a path that several utilities examine together.
    [[nodiscard]] bool examinedPathMatches(ExaminedPath& path) const;
    /// Which check of the path test decided. A fault in a check counts as not claimed.
    [[nodiscard]] StructureFinding findStructure(ExaminedPath& path) const;
};

}  // namespace qrx
