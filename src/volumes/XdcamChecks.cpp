#include "volumes/XdcamChecks.h"

#include "foundation/PathText.h"
#include "foundation/Text.h"

namespace qrx::xdcam {

CheckVerdict isMp4(const QRXHDMediaVolumeUtilityObject&, ExaminedPath& path) {
    return passesIf(endsWith(path.upperCased(), ".MP4"));
}

CheckVerdict clipFolderStandsIn(std::string_view clipStore, ExaminedPath& path) {
    std::string clipFolder(clipStore);
    clipFolder += lastPathComponent(withoutLastPathComponent(path.path()));
    clipFolder += '/';
    return passesIf(contains(path.path(), clipFolder));
}

}  // namespace qrx::xdcam
