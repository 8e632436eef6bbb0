#include "volumes/QuickTimeChecks.h"

#include "foundation/Text.h"
#include "platform/ports/Services.h"
#include "volumes/QRXQTUtility.h"

namespace qrx::quicktime {

CheckVerdict isMovByName(const QRXHDMediaVolumeUtilityObject&, ExaminedPath& path) {
    return endsWith(path.upperCased(), ".MOV") ? CheckVerdict::decides : CheckVerdict::passes;
}

CheckVerdict mayBeVideoByName(const QRXHDMediaVolumeUtilityObject& utility, ExaminedPath& path) {
    return passesIf(utility.filePathExtensionIsValid(path.path()));
}

CheckVerdict opensAsMovie(const QRXHDMediaVolumeUtilityObject& utility, ExaminedPath& path) {
    if (!path.movieProbe()) {
        try {
            const auto& quickTime = dynamic_cast<const QRXQTUtility&>(utility);
            const bool opens = quickTime.attemptToAllocateAQTMovieFromFile(path.path());
            quickTime.setPathMatches(false);
            path.rememberMovieProbe(opens);
        } catch (const std::exception&) {
            platform::systemLog().notice("QRXQT Exception");
            return CheckVerdict::fails;
        }
    }
    return passesIf(*path.movieProbe());
}

CheckVerdict isLooseMovie(const QRXHDMediaVolumeUtilityObject& utility, ExaminedPath& path) {
    return passesIf(walkStructureChecks(kLooseMovieChecks, utility, path).claimed);
}

}  // namespace qrx::quicktime
