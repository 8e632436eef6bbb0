#include "qrx/spans/NumberGaps.h"

#include <algorithm>
#include <map>
#include <set>
#include <string_view>

#include <fmt/format.h>

#include "volumes/ClipNumbers.h"

namespace qrx::tool {

namespace {

/// The clips that differ by their number alone.
struct Numbered {
    std::set<std::int32_t> numbers;
    std::size_t digits = 1;
};

bool isNumber(const std::string& text) {
    constexpr std::size_t kMostDigits = 9;  // fits into 32 bits
    return !text.empty() && text.size() <= kMostDigits &&
           std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

/// Where the part begins.
std::size_t beginOfPart(std::string_view name, std::size_t part) {
    std::size_t begin = 0;
    while (part-- > 0) {
        begin = name.find('_', begin) + 1;
    }
    return begin;
}

NumberGap gapOf(const std::string& stem, const Numbered& clips, std::int32_t first,
                std::int32_t last) {
    const auto name = [&](std::int32_t number) {
        return fmt::format("{}{:0{}}", stem, number, clips.digits);
    };
    return {.first = first, .last = last, .firstName = name(first), .lastName = name(last)};
}

}  // namespace

std::optional<std::vector<NumberGap>> numberGaps(const FilePaths& pieces, std::size_t part) {
    std::map<std::string, Numbered> stems;
    for (const FilePath& piece : pieces) {
        const std::string name = clipName(piece);
        const auto text = underscorePart(name, part);
        if (!text || !isNumber(*text)) return std::nullopt;
        Numbered& clips = stems[name.substr(0, beginOfPart(name, part))];
        clips.numbers.insert(*underscoreNumber(name, part));
        clips.digits = std::max(clips.digits, text->size());
    }
    std::vector<NumberGap> gaps;
    for (const auto& [stem, clips] : stems) {
        std::int32_t expected = 1;
        for (const std::int32_t number : clips.numbers) {
            if (number > expected) gaps.push_back(gapOf(stem, clips, expected, number - 1));
            expected = number + 1;
        }
    }
    return gaps;
}

}  // namespace qrx::tool
