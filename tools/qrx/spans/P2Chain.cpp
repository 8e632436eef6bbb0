#include "qrx/spans/P2Chain.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "readers/QRXXmlUtility.h"
#include "readers/XmlMarkup.h"

namespace qrx::tool {

namespace {

constexpr std::size_t kNone = static_cast<std::size_t>(-1);

std::optional<std::string> childText(const XmlNodePointer& parent, std::string_view name) {
    const auto child = QRXXmlUtility::childNodeWithName(name, parent);
    if (!child) return std::nullopt;
    return textValue(*child);
}

std::optional<P2Link> linkIn(const XmlNodePointer& parent) {
    if (!parent) return std::nullopt;
    auto identifier = childText(parent, "GlobalClipID");
    if (!identifier) return std::nullopt;
    return P2Link{.identifier = std::move(*identifier), .clipName = childText(parent, "ClipName")};
}

using IndexOf = std::unordered_map<std::string_view, std::size_t>;

/// Follows and joins what the links of the pieces say.
class Chaining {
public:
    explicit Chaining(const std::vector<P2Piece>& pieces)
        : pieces_(pieces),
          following_(pieces.size(), kNone),
          hasPredecessor_(pieces.size(), false),
          isTaken_(pieces.size(), false) {
        for (std::size_t i = 0; i < pieces.size(); ++i) {
            at_.emplace(pieces[i].self.identifier, i);
        }
        linkPieces();
        bridgeSingleGaps();
    }

    P2Chain chain() {
        P2Chain result;
        for (const std::size_t start : startsInOrder()) {
            take(start, result.order);
        }
        result.missing = missing();
        result.isWhole = result.missing.empty() && isOneChain(result.order);
        // What is left goes round in circles.
        for (std::size_t i = 0; i < pieces_.size(); ++i) {
            take(i, result.order);
        }
        return result;
    }

private:
    [[nodiscard]] std::size_t indexOf(const std::optional<P2Link>& link) const {
        const auto found = link ? at_.find(link->identifier) : at_.end();
        return found == at_.end() ? kNone : found->second;
    }

    void link(std::size_t before, std::size_t after) {
        if (before == kNone || after == kNone || before == after) return;
        if (following_[before] != kNone || hasPredecessor_[after]) return;
        following_[before] = after;
        hasPredecessor_[after] = true;
    }

    void linkPieces() {
        for (std::size_t i = 0; i < pieces_.size(); ++i) {
            link(i, indexOf(pieces_[i].next));
        }
        for (std::size_t i = 0; i < pieces_.size(); ++i) {
            link(indexOf(pieces_[i].previous), i);
        }
    }

    /// Two pieces that name the same absent one stand on its two sides.
    void bridgeSingleGaps() {
        IndexOf before;
        for (std::size_t i = 0; i < pieces_.size(); ++i) {
            if (pieces_[i].next && indexOf(pieces_[i].next) == kNone) {
                before.emplace(pieces_[i].next->identifier, i);
            }
        }
        for (std::size_t i = 0; i < pieces_.size(); ++i) {
            if (!pieces_[i].previous || indexOf(pieces_[i].previous) != kNone) continue;
            const auto found = before.find(pieces_[i].previous->identifier);
            if (found != before.end()) link(found->second, i);
        }
    }

    /// The last piece of the run that begins at `start`.
    [[nodiscard]] std::size_t endOf(std::size_t start) const {
        while (following_[start] != kNone) {
            start = following_[start];
        }
        return start;
    }

    /// The run with the recording's beginning, those from its middle, the one with its end.
    [[nodiscard]] std::vector<std::size_t> startsInOrder() const {
        std::array<std::vector<std::size_t>, 3> byPlace;
        for (std::size_t i = 0; i < pieces_.size(); ++i) {
            if (hasPredecessor_[i]) continue;
            const bool hasEnd = !pieces_[endOf(i)].next;
            byPlace.at(!pieces_[i].previous ? 0 : (hasEnd ? 2 : 1)).push_back(i);
        }
        std::vector<std::size_t> starts;
        for (auto& place : byPlace) {
            starts.insert(starts.end(), place.begin(), place.end());
        }
        return starts;
    }

    /// Whether all pieces are in it, and each link means the neighbour.
    [[nodiscard]] bool isOneChain(const std::vector<std::size_t>& order) const {
        if (order.size() != pieces_.size()) return false;
        for (std::size_t i = 0; i < order.size(); ++i) {
            const std::size_t before = i > 0 ? order[i - 1] : kNone;
            const std::size_t after = i + 1 < order.size() ? order[i + 1] : kNone;
            const P2Piece& piece = pieces_[order[i]];
            if (piece.previous && indexOf(piece.previous) != before) return false;
            if (piece.next && indexOf(piece.next) != after) return false;
            if (after != kNone && following_[order[i]] != after) return false;
        }
        return true;
    }

    /// Appends the run.
    void take(std::size_t start, std::vector<std::size_t>& order) {
        for (std::size_t i = start; i != kNone && !isTaken_[i]; i = following_[i]) {
            isTaken_[i] = true;
            order.push_back(i);
        }
    }

    [[nodiscard]] std::vector<P2Link> missing() const {
        std::vector<P2Link> absent;
        std::unordered_map<std::string_view, std::size_t> seen;
        for (const P2Piece& piece : pieces_) {
            for (const auto* const link : {&piece.top, &piece.previous, &piece.next}) {
                if (!*link || indexOf(*link) != kNone) continue;
                const auto [known, isNew] = seen.emplace((*link)->identifier, absent.size());
                if (isNew) absent.push_back(**link);
                auto& name = absent[known->second].clipName;
                if (!name) name = (*link)->clipName;
            }
        }
        return absent;
    }

    const std::vector<P2Piece>& pieces_;
    IndexOf at_;
    std::vector<std::size_t> following_;
    std::vector<bool> hasPredecessor_;
    std::vector<bool> isTaken_;
};

}  // namespace

std::optional<P2Piece> readP2Piece(const FilePath& video, const FilePath& clipXml) {
    const auto document = QRXXmlUtility::xmlDocumentForXmlFile(clipXml);
    if (!document) return std::nullopt;
    XmlNodePointer content;
    XmlNodePointer top;
    XmlNodePointer previous;
    XmlNodePointer next;
    XmlNodePointer shot;
    const std::array<std::pair<std::string_view, XmlNodePointer*>, 5> wanted{
        {{"ClipContent", &content},
         {"Top", &top},
         {"Previous", &previous},
         {"Next", &next},
         {"GlobalShotID", &shot}}};
    for (const auto& node : QRXXmlUtility::allDescendantsForNode({document, document->root})) {
        for (const auto& [name, place] : wanted) {
            if (!*place && node->name == name) *place = node;
        }
    }
    auto self = linkIn(content);
    if (!top || !shot || !self) return std::nullopt;
    return P2Piece{.path = video,
                   .shot = textValue(*shot),
                   .self = std::move(*self),
                   .top = linkIn(top),
                   .previous = linkIn(previous),
                   .next = linkIn(next)};
}

P2Chain p2Chain(const std::vector<P2Piece>& pieces) {
    return Chaining(pieces).chain();
}

}  // namespace qrx::tool
