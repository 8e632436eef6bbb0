#include "volumes/ClipNumbers.h"

#include <utility>
#include <vector>

#include "foundation/PathText.h"
#include "foundation/Text.h"

namespace qrx {

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

}  // namespace qrx
