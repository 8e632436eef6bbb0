#include "qrx/report/Claims.h"

#include <algorithm>
#include <array>
#include <string_view>

#include <unistd.h>

#include "foundation/FileQuestions.h"
#include "foundation/PathText.h"
#include "foundation/Text.h"
#include "qrx/report/ClipFacts.h"
#include "volumes/QRXHDFFmpegUtility.h"
#include "volumes/QRXHDMediaVolumeAggregate.h"
#include "volumes/QRXMXFUtility.h"
#include "volumes/QRXQTUtility.h"

namespace qrx::tool {

namespace {

using Utility = QRXHDMediaVolumeUtilityObject;

bool saysThatItIsNoVideo(const FilePath& file) {
    return !Utility::sharedInstance().filePathExtensionIsValid(file);
}

/// Kinds of index and log files of cameras that could be video by their names, for all that the
/// library's own list says.
bool isKnownIndex(const FilePath& file) {
    constexpr std::array<std::string_view, 12> kKinds{"BAK", "BIM", "BIN", "CIF", "CTG", "DAT",
                                                      "IDX", "INF", "LOG", "PPN", "TDT", "TID"};
    const std::string kind = upperCased(pathExtension(file));
    return std::find(kKinds.begin(), kKinds.end(), kind) != kKinds.end();
}

/// What keeps a file from being looked into at all, whatever its name; empty where nothing does.
std::string_view obstacle(const FilePath& file) {
    if (isSpecialFile(file)) return "not a file but a pipe, socket or device";
    if (bytesOf(file) == 0U) return "empty file";
    if (::access(file.c_str(), R_OK) != 0) return "cannot be read";
    return {};
}

/// The check that turned the file down at the last who would take any movie, as `qrx explain` says
/// it.
std::string lastCheck(ExaminedPath& path, const Utility& last) {
    const StructureFinding finding = last.findStructure(path);
    if (finding.decisive == nullptr) return "no layout claims it";
    const std::string_view phrase = finding.decisive->phrase;
    constexpr std::string_view kReports = "the ffmpeg tool reports ";
    if (!beginsWith(phrase, kReports)) return "does not hold: " + std::string(phrase);
    std::string_view what = phrase.substr(kReports.size());
    if (beginsWith(what, "a ")) what.remove_prefix(2);
    return "ffmpeg reports no " + std::string(what);
}

Claim unclaimed(ExaminedPath& path, const Utility& last) {
    const FilePath& file = path.path();
    if (const auto why = obstacle(file); !why.empty()) {
        return {.reason = std::string(why),
                .mayBeFootage = !saysThatItIsNoVideo(file) && !isKnownIndex(file)};
    }
    if (upperCased(pathExtension(file)) == "R3D") {
        return {.reason = "raw footage without a reference movie", .mayBeFootage = true};
    }
    if (saysThatItIsNoVideo(file)) return {.reason = "not video by its name"};
    return {.reason = lastCheck(path, last), .mayBeFootage = !isKnownIndex(file)};
}

}  // namespace

Claim claimOf(const FilePath& file, Exactness exactness) {
    ExaminedPath path(file);
    const bool sparesTool = exactness == Exactness::quick && saysThatItIsNoVideo(file);
    for (const auto* const utility : QRXHDMediaVolumeAggregate::hdUtilitiesOrderedByPrecedent()) {
        if (sparesTool && utility == &QRXHDFFmpegUtility::sharedInstance()) continue;
        if (utility->examinedPathMatches(path)) return {.utility = utility};
    }
    return unclaimed(path, QRXHDFFmpegUtility::sharedInstance());
}

bool isWithoutCard(const Utility& utility) {
    return &utility == &QRXMXFUtility::sharedInstance() ||
           &utility == &QRXQTUtility::sharedInstance() ||
           &utility == &QRXHDFFmpegUtility::sharedInstance();
}

}  // namespace qrx::tool
