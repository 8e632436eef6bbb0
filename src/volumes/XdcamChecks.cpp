#include "volumes/XdcamChecks.h"

#include "foundation/Text.h"

namespace qrx::xdcam {

CheckVerdict isMp4(const QRXHDMediaVolumeUtilityObject&, ExaminedPath& path) {
    return passesIf(endsWith(path.upperCased(), ".MP4"));
}

CheckVerdict clipFolderStandsIn(std::string_view clipStore, ExaminedPath& path) {
    std::string clipFolder(path.folderName());
    clipFolder += '/';
    return passesIf(containsInARow(path.path(), clipStore, clipFolder));
}

}  // namespace qrx::xdcam
