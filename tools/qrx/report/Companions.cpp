#include "qrx/report/Companions.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "foundation/PathText.h"
#include "foundation/Text.h"
#include "volumes/ClipNumbers.h"

namespace qrx::tool {

namespace {

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

bool isLetter(char c) {
    return c >= 'A' && c <= 'Z';
}

/// Whether the file, which could pass for a clip, lies where cards keep sound files and proxies, or
/// is a proxy by its name. A movie that merely bears the name of a clip, such as somebody's
/// transcode, is footage.
bool isProxyOrSound(const FilePath& file) {
    constexpr std::array<std::string_view, 4> kFolders{"AUDIO", "PROXY", "SUB", "VOICE"};
    const std::string folder = upperCased(lastPathComponent(withoutLastPathComponent(file)));
    return std::find(kFolders.begin(), kFolders.end(), folder) != kFolders.end() ||
           upperCased(pathExtension(file)) == "LRV";
}

}  // namespace

std::vector<std::string> possibleClipNames(std::string_view name) {
    std::vector<std::string> names{upperCased(name)};
    const std::string whole = names.front();
    constexpr std::size_t kDigits = 2;
    if (whole.size() <= kDigits) return names;
    const std::size_t end = whole.size() - kDigits;
    if (!isDigit(whole[end]) || !isDigit(whole[end + 1])) return names;
    names.push_back(whole.substr(0, end));
    if (isLetter(whole[end - 1]) && end > 1) names.push_back(whole.substr(0, end - 1));
    return names;
}

Companions::Companions(const std::vector<ReportedFile>& files) {
    for (const ReportedFile& file : files) {
        if (!file.clip) continue;
        for (const FilePath& companion : file.clip->companions) {
            named_.emplace(companion, file.claim.utility);
        }
        if (!isWithoutCard(*file.claim.utility)) {
            clipNames_[file.card].emplace(upperCased(clipName(file.path)), file.claim.utility);
        }
    }
}

const QRXHDMediaVolumeUtilityObject* Companions::layoutOf(const ReportedFile& file) const {
    if (const auto found = named_.find(file.path); found != named_.end()) return found->second;
    if (file.claim.isClip() && !isProxyOrSound(file.path)) return nullptr;
    const auto names = clipNames_.find(file.card);
    if (names == clipNames_.end()) return nullptr;
    for (const std::string& name : possibleClipNames(clipName(file.path))) {
        const auto found = names->second.find(name);
        if (found != names->second.end()) return found->second;
    }
    return nullptr;
}

}  // namespace qrx::tool
