#include "qrx/report/CardRoots.h"

#include <algorithm>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/PathText.h"
#include "foundation/Text.h"
#include "volumes/QRXAVCHDUtility.h"
#include "volumes/QRXCanonEOSUtility.h"
#include "volumes/QRXCanonXFUtility.h"
#include "volumes/QRXGoProUtility.h"
#include "volumes/QRXJVCMP4Utility.h"
#include "volumes/QRXJVCQTUtility.h"
#include "volumes/QRXPanasonicP2Utility.h"
#include "volumes/QRXREDOneUtility.h"
#include "volumes/QRXSonyXDCAMExUtility.h"
#include "volumes/QRXSonyXDCAMHDUtility.h"

namespace qrx::tool {

namespace {

using Utility = QRXHDMediaVolumeUtilityObject;

template <class Layout>
bool is(const Utility& utility) {
    return dynamic_cast<const Layout*>(&utility) != nullptr;
}

struct TopFolders {
    bool (*isOf)(const Utility&);
    std::vector<std::string_view> names;  ///< in upper case
};

/// The folders at the root of a card through which its clips are reached.
const std::vector<TopFolders>& topFolders() {
    static const std::vector<TopFolders> all{
        {is<QRXAVCHDUtility>, {"AVCHD", "PRIVATE"}},
        {is<QRXPanasonicP2Utility>, {"CONTENTS"}},
        {is<QRXCanonXFUtility>, {"CONTENTS"}},
        {is<QRXSonyXDCAMHDUtility>, {"CLIP"}},
        {is<QRXSonyXDCAMExUtility>, {"BPAV"}},
        {is<QRXJVCMP4Utility>, {"PRIVATE"}},
        {is<QRXJVCQTUtility>, {"PRIVATE"}},
        {is<QRXCanonEOSUtility>, {"DCIM"}},
        {is<QRXGoProUtility>, {"DCIM"}},
    };
    return all;
}

constexpr std::string_view kReelSuffix = ".RDM";

bool isTop(const FilePath& folder, std::span<const std::string_view> names) {
    const std::string name = upperCased(lastPathComponentView(folder));
    return std::find(names.begin(), names.end(), name) != names.end();
}

/// The folder above the lowest one of these names; of several in a row, above the highest.
std::optional<FilePath> aboveTop(const FilePath& clip, std::span<const std::string_view> names) {
    FilePath folder = withoutLastPathComponent(clip);
    while (!isTop(folder, names)) {
        FilePath above = withoutLastPathComponent(folder);
        if (above == folder || above.empty()) return std::nullopt;
        folder = std::move(above);
    }
    while (isTop(folder, names)) {
        folder = withoutLastPathComponent(folder);
    }
    return folder;
}

std::optional<FilePath> aboveReel(const FilePath& clip) {
    FilePath folder = withoutLastPathComponent(clip);
    while (!endsWith(upperCased(lastPathComponentView(folder)), kReelSuffix)) {
        FilePath above = withoutLastPathComponent(folder);
        if (above == folder || above.empty()) return std::nullopt;
        folder = std::move(above);
    }
    return withoutLastPathComponent(folder);
}

}  // namespace

std::optional<FilePath> cardRootOf(const FilePath& clip, const Utility& utility) {
    if (is<QRXREDOneUtility>(utility)) return aboveReel(clip);
    for (const TopFolders& layout : topFolders()) {
        if (layout.isOf(utility)) return aboveTop(clip, layout.names);
    }
    return std::nullopt;
}

}  // namespace qrx::tool
