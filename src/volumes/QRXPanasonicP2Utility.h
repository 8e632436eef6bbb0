#pragma once

#include <string_view>

#include "volumes/QRXMXFUtility.h"

namespace qrx {

/// Panasonic P2 cards.
///
///     <card>/CONTENTS/VIDEO/0001AB.MXF      one clip
///     <card>/CONTENTS/AUDIO/0001AB00.MXF    its sound, one file for each channel, 00 to 03
///     <card>/CONTENTS/CLIP/0001AB.XML       what the card knows of it
///     <card>/CONTENTS/ICON/0001AB.BMP       its picture
///     <card>/LASTCLIP.TXT                   the card's marker
///
/// Recognised by path alone. What the clip XML does not say comes from the MXF file.
class QRXPanasonicP2Utility : public QRXMXFUtility {
public:
    [[nodiscard]] static std::unique_ptr<QRXPanasonicP2Utility> utility();
    [[nodiscard]] static QRXPanasonicP2Utility& sharedInstance();

    [[nodiscard]] std::uint64_t volumeType() const override { return 0; }
    [[nodiscard]] std::string volumeTitle() const override { return "Panasonic P2"; }
    [[nodiscard]] std::span<const StructureCheck> structureChecks() const override;
    /// Whether `drive` is a removable drive with a video folder and the marker.
    [[nodiscard]] bool drivePathMatchesVolumeStructure(const FilePath& drive) const override;
    [[nodiscard]] std::optional<std::string> rootOfUniquePathIdenifier() const override;
    [[nodiscard]] std::optional<std::vector<std::string>>
    pathComponentsIndicatingTheVolumeHasBegun() const override;
    /// Every file goes, the folders stay, and the marker comes back from the program's resources.
    /// Nothing for a drive that is no P2 card. Log lines tell what went wrong with the marker, and
    /// do not count as a failure.
    [[nodiscard]] std::optional<ResetPlan> resetPlan(const FilePath& drive) const override;
    /// From the length of an edit unit; 29.97 and 59.94 as the rates counted in drop frame.
    [[nodiscard]] QRXVideoFrameRate framerateForVideoFile(const FilePath& file) const override;
    /// The global clip identifier, nothing where the clip XML has none; the clip's name without a
    /// clip XML.
    [[nodiscard]] std::optional<std::string> uniqueIdentifierForVideoFile(
        const FilePath& file) const override;
    [[nodiscard]] bool pathContainsVideoFilesMatchingVolumeStructure(
        const FilePath& folder) const override;
    /// The card's icon of the clip, the empty image when it cannot be read; without an icon the
    /// base object's.
    [[nodiscard]] platform::Image posterImageForFilePath(
        const FilePath& file, const FilePath& imageOutputDirectory) const override;
    /// In the order of the channels, four at most; nothing, not an empty list, without any.
    [[nodiscard]] std::optional<FilePaths> audioFilesForVideoFile(
        const FilePath& file) const override;
    /// The clip XML.
    [[nodiscard]] std::optional<FilePath> metadataFilePathForVideoFile(
        const FilePath& file) const override;
    [[nodiscard]] std::string startTimecodeForVideoFile(const FilePath& file) const override;
    [[nodiscard]] bool videoFileIsDropFrame(const FilePath& file) const override;
    [[nodiscard]] bool clipSpanningSupported() const override { return true; }
    [[nodiscard]] bool fileIsInASpannedSeries(const FilePath& file) const override;
    /// Along the chain in the clip XML files (see p2PlayingOrder); `files` where it is broken.
    [[nodiscard]] FilePaths sortSpannedClipSeries(const FilePaths& files) const override;
    /// The global shot identifier.
    [[nodiscard]] std::optional<std::string> spanPartnerIdentifierForPath(
        const FilePath& file) const override;
    /// Two files or more, all of one shot.
    [[nodiscard]] bool filesArePartOfTheSameSpanSeries(const FilePaths& files) const override;
    /// By the number in the first four characters of the name; as the base object where a name is
    /// shorter.
    [[nodiscard]] FilePaths orderVolumeVideoFiles(const FilePaths& files) const override;

    // Beyond the protocol.

    /// Two clips of a P2 card, both of one shot.
    [[nodiscard]] bool filesArePartOfTheSameSpanSeries(const FilePath& path,
                                                       const FilePath& path2) const;
    /// Whether `file` lies where P2 cards keep their sound.
    [[nodiscard]] bool fileIsP2Audio(const FilePath& file) const;
    /// The name that a user gave the clip, else the clip's own name.
    [[nodiscard]] std::string userClipNameForVideoFile(const FilePath& file) const;
    /// The first of the clip's audio files whose name without extension ends with `suffix`.
    [[nodiscard]] std::optional<FilePath> audioFileForMovie(const FilePath& file,
                                                            std::string_view suffix) const;

private:
    /// The text of the first element `tag` ("<Top>") of the clip XML.
    [[nodiscard]] std::optional<std::string> clipXmlText(const FilePath& file,
                                                         std::string_view tag) const;
};

}  // namespace qrx
