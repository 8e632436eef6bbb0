#include "qrx/spans/Series.h"

#include <algorithm>
#include <map>
#include <string_view>
#include <unordered_set>
#include <utility>

#include "volumes/QRXJVCMP4Utility.h"
#include "volumes/QRXJVCQTUtility.h"
#include "volumes/QRXPanasonicP2Utility.h"
#include "volumes/QRXSonyXDCAMExUtility.h"

namespace qrx::tool {

namespace {

using Utility = QRXHDMediaVolumeUtilityObject;

/// Where in a clip's name the number of the piece stands.
std::optional<std::size_t> partWithNumber(const Utility& utility) {
    if (utility.volumeType() == QRXSonyXDCAMExUtility().volumeType()) return 2;
    if (utility.volumeType() == QRXJVCMP4Utility().volumeType()) return 1;
    if (utility.volumeType() == QRXJVCQTUtility().volumeType()) return 1;
    return std::nullopt;
}

/// A single piece that misses none is no spanned recording.
void addIfSpanned(std::vector<Series>& all, Series series) {
    if (series.pieces.size() > 1 || series.missesPieces()) all.push_back(std::move(series));
}

// ---- by the numbers in the names

void addNumberedSeries(std::vector<Series>& all, const Utility& utility, const FilePaths& clips) {
    std::map<std::pair<std::string, std::string>, FilePaths> groups;
    for (const FilePath& clip : clips) {
        const auto key = utility.spanPartnerIdentifierForPath(clip);
        if (!key) continue;
        groups[{utility.volumePartnerIdentifierForFilePath(clip), *key}].push_back(clip);
    }
    const auto part = partWithNumber(utility);
    for (const auto& [keys, files] : groups) {
        Series series{.volumeTitle = utility.volumeTitle(),
                      .spanKey = keys.second,
                      .volumeKey = keys.first,
                      .pieces = utility.sortSpannedClipSeries(files)};
        if (const auto gaps = part ? numberGaps(files, *part) : std::nullopt) {
            series.missingNumbers = *gaps;
            series.isComplete = gaps->empty();
        }
        addIfSpanned(all, std::move(series));
    }
}

// ---- by the links of P2

FilePaths pathsInOrder(const std::vector<P2Piece>& pieces, const std::vector<std::size_t>& order) {
    FilePaths paths;
    for (const std::size_t i : order) {
        paths.push_back(pieces[i].path);
    }
    return paths;
}

Series p2Series(const Utility& utility, const std::string& shot,
                const std::vector<P2Piece>& pieces) {
    P2Chain chain = p2Chain(pieces);
    FilePaths inOrder = pathsInOrder(pieces, chain.order);
    // The utility goes by clip names and leaves the list as it is where those are not written.
    if (chain.isWhole) inOrder = utility.sortSpannedClipSeries(inOrder);
    return {.volumeTitle = utility.volumeTitle(),
            .spanKey = shot,
            .volumeKey = utility.volumePartnerIdentifierForFilePath(inOrder.front()),
            .pieces = inOrder,
            .missingClips = std::move(chain.missing),
            .missingNumbers = {},
            .isComplete = chain.isWhole};
}

bool hasClipTwice(const std::vector<P2Piece>& pieces) {
    std::unordered_set<std::string_view> seen;
    return std::any_of(pieces.begin(), pieces.end(), [&](const P2Piece& piece) {
        return !seen.insert(piece.self.identifier).second;
    });
}

/// A shot's identifier is unique in the world, so its pieces may lie on several cards; but when a
/// clip is there twice, these are copies of one card.
void addP2Shot(std::vector<Series>& all, const Utility& utility, const std::string& shot,
               std::vector<P2Piece> pieces) {
    if (!hasClipTwice(pieces)) {
        addIfSpanned(all, p2Series(utility, shot, pieces));
        return;
    }
    std::map<std::string, std::vector<P2Piece>> byCard;
    for (P2Piece& piece : pieces) {
        byCard[utility.volumePartnerIdentifierForFilePath(piece.path)].push_back(std::move(piece));
    }
    for (const auto& [card, ofCard] : byCard) {
        addIfSpanned(all, p2Series(utility, shot, ofCard));
    }
}

void addP2Series(std::vector<Series>& all, const Utility& utility, const FilePaths& clips,
                 const std::atomic<bool>& isCancelled) {
    std::map<std::string, std::vector<P2Piece>> shots;
    for (const FilePath& clip : clips) {
        if (isCancelled) return;
        const auto clipXml = utility.metadataFilePathForVideoFile(clip);
        auto piece = clipXml ? readP2Piece(clip, *clipXml) : std::nullopt;
        if (!piece) continue;
        const std::string shot = piece->shot;
        shots[shot].push_back(std::move(*piece));
    }
    for (auto& [shot, pieces] : shots) {
        addP2Shot(all, utility, shot, std::move(pieces));
    }
}

}  // namespace

std::vector<Series> seriesAmong(const Utility& utility, const FilePaths& clips,
                                const std::atomic<bool>& isCancelled) {
    std::vector<Series> all;
    if (!utility.clipSpanningSupported()) return all;
    if (utility.volumeType() == QRXPanasonicP2Utility().volumeType()) {
        addP2Series(all, utility, clips, isCancelled);
    } else {
        addNumberedSeries(all, utility, clips);
    }
    return all;
}

}  // namespace qrx::tool
