#include "volumes/QRXCanonAVCHDUtility.h"

#include <array>

#include "foundation/SharedInstance.h"
#include "volumes/AvchdChecks.h"

namespace qrx {

namespace {

// The disk is asked last, once the path itself has passed.
constexpr std::array kClipChecks{
    avchd::kLiesBelowPrivate,  avchd::kLiesBelowStreamFolder, avchd::kStandsInStreamFolder,
    avchd::kIsTransportStream, avchd::kHasCanonFolder,
};

}  // namespace

std::unique_ptr<QRXCanonAVCHDUtility> QRXCanonAVCHDUtility::utility() {
    return std::make_unique<QRXCanonAVCHDUtility>();
}

QRXCanonAVCHDUtility& QRXCanonAVCHDUtility::sharedInstance() {
    return sharedInstanceOf<QRXCanonAVCHDUtility>();
}

std::span<const StructureCheck> QRXCanonAVCHDUtility::structureChecks() const {
    return kClipChecks;
}

std::optional<std::string> QRXCanonAVCHDUtility::rootOfUniquePathIdenifier() const {
    return "/PRIVATE/AVCHD/";
}

std::optional<std::vector<std::string>>
QRXCanonAVCHDUtility::pathComponentsIndicatingTheVolumeHasBegun() const {
    return std::vector<std::string>{"/PRIVATE/AVCHD/"};
}

}  // namespace qrx
