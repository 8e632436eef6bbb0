#include "volumes/ClipNumbers.h"

#include <utility>
#include <vector>

#include "foundation/PathText.h"
#include "foundation/Text.h"
#include "volumes/KeyOrder.h"

namespace qrx {

namespace {

constexpr std::size_t kClipCharacters = 4;

}  // namespace

std::string clipName(std::string_view path) {
    return withoutPathExtension(lastPathComponentView(path));
}

std::optional<std::string> underscorePart(std::string_view name, std::size_t index) {
    std::vector<std::string> parts = split(name, "_");
    if (index >= parts.size()) return std::nullopt;
    return std::move(parts[index]);
}

std::optional<std::int32_t> underscoreNumber(std::string_view name, std::size_t index) {
    const auto part = underscorePart(name, index);
    if (!part) return std::nullopt;
    return int32Value(*part);
}

std::optional<std::pair<std::int32_t, std::int32_t>> clipAndPiece(std::string_view path) {
    const std::string name = clipName(path);
    const auto clip = lastCharacters(underscorePart(name, 0).value_or(""), kClipCharacters);
    const auto piece = underscoreNumber(name, 1);
    if (!clip || !piece) return std::nullopt;
    return std::pair(int32Value(*clip), *piece);
}

std::string pieceSeries(std::string_view path) {
    return underscorePart(lastPathComponentView(path), 0).value_or("");
}

}  // namespace qrx
