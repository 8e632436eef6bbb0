#include "volumes/QRXSonyAVCHDUtility.h"

#include <array>

#include "foundation/NeutralAnswer.h"
#include "foundation/SharedInstance.h"
#include "volumes/AvchdChecks.h"
#include "volumes/ClipInformation.h"

namespace qrx {

namespace {

constexpr std::array kClipChecks{
    avchd::kLiesBelowStreamFolder,
    avchd::kStandsInStreamFolder,
    avchd::kIsTransportStream,
    avchd::kStandsOutsidePrivate,
};

constexpr std::array<std::string_view, 5> kDriveItems{
    "AVCHD/BDMV/STREAM",    "AVCHD/BDMV/PLAYLIST",     "AVCHD/BDMV/CLIPINF",
    "AVCHD/BDMV/INDEX.BDM", "AVCHD/BDMV/MOVIEOBJ.BDM",
};

}  // namespace

std::unique_ptr<QRXSonyAVCHDUtility> QRXSonyAVCHDUtility::utility() {
    return std::make_unique<QRXSonyAVCHDUtility>();
}

QRXSonyAVCHDUtility& QRXSonyAVCHDUtility::sharedInstance() {
    return sharedInstanceOf<QRXSonyAVCHDUtility>();
}

std::span<const StructureCheck> QRXSonyAVCHDUtility::structureChecks() const {
    return kClipChecks;
}

std::span<const std::string_view> QRXSonyAVCHDUtility::driveItems() const {
    return kDriveItems;
}

std::optional<std::string> QRXSonyAVCHDUtility::rootOfUniquePathIdenifier() const {
    return "AVCHD";
}

std::optional<std::vector<std::string>>
QRXSonyAVCHDUtility::pathComponentsIndicatingTheVolumeHasBegun() const {
    return std::vector<std::string>{"/AVCHD/BDMV/"};
}

std::string QRXSonyAVCHDUtility::startTimecodeForVideoFile(const FilePath& file) const {
    const auto information = clipFileForAVCHDVideoFile(file);
    const auto timecode =
        information ? extractStartTimecodeFromCPIFile(*information) : std::nullopt;
    return timecode ? *timecode : QRXAVCHDUtility::startTimecodeForVideoFile(file);
}

std::optional<std::string> QRXSonyAVCHDUtility::extractStartTimecodeFromCPIFile(
    const FilePath& file) const {
    return answerOr(std::optional<std::string>{}, "extractStartTimecodeFromCPIFile",
                    [&]() -> std::optional<std::string> {
                        const auto bytes = fourBytesBeforeEnd(file, kSonyTimecodeDistance);
                        return bytes ? sonyTimecode(*bytes) : std::nullopt;
                    });
}

}  // namespace qrx
