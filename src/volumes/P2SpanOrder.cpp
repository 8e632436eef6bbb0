#include "volumes/P2SpanOrder.h"

#include <algorithm>
#include <list>
#include <string_view>
#include <utility>

#include "readers/QRXXmlUtility.h"
#include "readers/XmlMarkup.h"

namespace qrx {

namespace {

using Place = P2SpanPiece::Place;
using Pieces = std::list<const P2SpanPiece*>;

/// The elements of a clip XML that tell of spanning, from one reading of the file.
class SpanNodes {
public:
    explicit SpanNodes(const FilePath& clipXml)
        : document_(QRXXmlUtility::xmlDocumentForXmlFile(clipXml)) {
        if (!document_) return;
        nodes_ = QRXXmlUtility::allDescendantsForNode({document_, document_->root});
    }

    [[nodiscard]] XmlNodePointer named(std::string_view name) const {
        const auto found = std::find_if(nodes_.begin(), nodes_.end(),
                                        [&](const auto& node) { return node->name == name; });
        return found == nodes_.end() ? nullptr : *found;
    }

private:
    XmlDocumentPointer document_;
    std::vector<XmlNodePointer> nodes_;
};

std::optional<std::string> clipNameIn(const XmlNodePointer& parent) {
    const auto name = QRXXmlUtility::childNodeWithName("ClipName", parent);
    if (!name) return std::nullopt;
    return textValue(*name);
}

Place placeOf(bool hasPrevious, bool hasNext) {
    if (!hasPrevious) return Place::first;
    return hasNext ? Place::middle : Place::last;
}

/// An absent name equals nothing, not even another absent one.
bool areSame(const std::optional<std::string>& a, const std::optional<std::string>& b) {
    return a && b && *a == *b;
}

/// How the search for the next piece ended.
enum class Search { found, broken, stopped };

/// The first piece of `middle` that follows the clip `name`; a piece without content before it
/// stops the search.
std::pair<Search, Pieces::iterator> nextPiece(Pieces& middle,
                                              const std::optional<std::string>& name) {
    for (auto piece = middle.begin(); piece != middle.end(); ++piece) {
        if (!(*piece)->hasContent) return {Search::stopped, piece};
        if (areSame((*piece)->previousName, name)) return {Search::found, piece};
    }
    return {Search::broken, middle.end()};
}

FilePaths pathsOf(const P2SpanPiece& first, const Pieces& middle, const P2SpanPiece& last) {
    FilePaths paths{first.path};
    for (const P2SpanPiece* piece : middle) {
        paths.push_back(piece->path);
    }
    paths.push_back(last.path);
    return paths;
}

}  // namespace

std::optional<P2SpanPiece> p2SpanPiece(const FilePath& video, const FilePath& clipXml) {
    const SpanNodes nodes(clipXml);
    if (!nodes.named("Top")) return std::nullopt;
    const auto content = nodes.named("ClipContent");
    const auto previous = nodes.named("Previous");
    return P2SpanPiece{
        .path = video,
        .place = placeOf(previous != nullptr, nodes.named("Next") != nullptr),
        .hasContent = content != nullptr,
        .clipName = clipNameIn(content),
        .previousName = clipNameIn(previous),
    };
}

std::optional<FilePaths> p2PlayingOrder(const std::vector<P2SpanPiece>& pieces) {
    const P2SpanPiece* first = nullptr;
    const P2SpanPiece* last = nullptr;
    Pieces middle;
    for (const P2SpanPiece& piece : pieces) {
        switch (piece.place) {
            case Place::first:
                if (!piece.clipName) return std::nullopt;
                first = &piece;
                break;
            case Place::middle:
                middle.push_back(&piece);
                break;
            case Place::last:
                last = &piece;
                break;
        }
    }
    if (first == nullptr || last == nullptr) return std::nullopt;

    Pieces chained;
    std::optional<std::string> name = first->clipName;
    while (!middle.empty()) {
        const auto [search, piece] = nextPiece(middle, name);
        if (search == Search::broken) return std::nullopt;
        if (search == Search::stopped) return pathsOf(*first, middle, *last);
        name = (*piece)->clipName;
        chained.splice(chained.end(), middle, piece);
    }
    return pathsOf(*first, chained, *last);
}

}  // namespace qrx
