#pragma once

#include <string_view>

#include "volumes/QRXHDMediaVolumeUtilityObject.h"

namespace qrx {

/// What the XDCAM cards have in common: a sidecar XML file beside each clip, which tells rate,
/// timecode, UMID, date and codec.
///
///     <clip folder>/C0001.MXF       one clip
///     <clip folder>/C0001M01.XML    its sidecar
///
/// Claims nothing itself and stands in none of the aggregate's lists. What the sidecar does not
/// say is the base object's.
class QRXXDCAMUtility : public QRXHDMediaVolumeUtilityObject {
public:
    [[nodiscard]] static std::unique_ptr<QRXXDCAMUtility> utility();
    [[nodiscard]] static QRXXDCAMUtility& sharedInstance();

    /// 16: no card is of this class.
    [[nodiscard]] std::uint64_t volumeType() const override { return kNoDefinedVolume; }
    [[nodiscard]] std::string volumeTitle() const override { return "XDCAM"; }
    [[nodiscard]] std::optional<std::string> rootOfUniquePathIdenifier() const override;
    /// formatFps of VideoFrame, else tcFps of LtcChangeTable.
    [[nodiscard]] QRXVideoFrameRate framerateForVideoFile(const FilePath& file) const override;
    /// The UMID of the target material.
    [[nodiscard]] std::optional<std::string> uniqueIdentifierForVideoFile(
        const FilePath& file) const override;
    /// Of the LTC change that is marked "increment".
    [[nodiscard]] std::string startTimecodeForVideoFile(const FilePath& file) const override;
    /// Of the LTC change that is marked "end".
    [[nodiscard]] std::optional<std::string> endTimecodeForVideoFile(
        const FilePath& file) const override;
    /// The sidecar: the first XML file of the clip's folder whose path contains the clip's path up
    /// to its first ".", wherever that stands.
    [[nodiscard]] std::optional<FilePath> metadataFilePathForVideoFile(
        const FilePath& file) const override;
    /// Name, UMID, timecodes, creation date and codec of a clip with a sidecar.
    [[nodiscard]] QRXMetadataWrapper metadataWrapperForVideoFilePath(
        const FilePath& file) const override;

    // Beyond the protocol.

    /// The quoted value after `valueLine` in the first node of the sidecar that begins with `tag`
    /// and contains `descriptor`; nothing without sidecar, node or value.
    [[nodiscard]] std::optional<std::string> xmlValueForFile(const FilePath& file,
                                                             std::string_view tag,
                                                             std::string_view descriptor,
                                                             std::string_view valueLine) const;
};

}  // namespace qrx
