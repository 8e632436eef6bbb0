#include "support/LargeBoxes.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <stdexcept>
#include <vector>

#include "support/BoxWriter.h"

namespace qrx::test {

namespace {

constexpr std::array<std::string_view, 7> kContainers{"moov", "trak", "mdia", "minf",
                                                      "stbl", "edts", "dinf"};
constexpr std::size_t kTableHead = 8;  // version, flags and the number of entries

using OffsetRule = std::function<std::uint64_t(std::uint64_t)>;

struct Box {
    std::string_view type;
    std::string_view contents;
    std::uint64_t begin = 0;  ///< of the contents, from the beginning of what was split
};

std::uint64_t number(std::string_view bytes) {
    std::uint64_t value = 0;
    for (const char c : bytes)
        value = (value << 8U) | static_cast<unsigned char>(c);
    return value;
}

std::vector<Box> boxesOf(std::string_view bytes) {
    std::vector<Box> boxes;
    std::size_t at = 0;
    while (at < bytes.size()) {
        if (bytes.size() - at < 8) throw std::invalid_argument("no run of boxes");
        const std::uint64_t size = number(bytes.substr(at, 4));
        if (size < 8 || size > bytes.size() - at) throw std::invalid_argument("no run of boxes");
        const auto length = static_cast<std::size_t>(size);
        boxes.push_back({bytes.substr(at + 4, 4), bytes.substr(at + 8, length - 8), at + 8});
        at += length;
    }
    return boxes;
}

std::string largeOffsets(std::string_view table, const OffsetRule& moved) {
    std::string contents(table.substr(0, kTableHead));
    for (std::size_t at = kTableHead; at + 4 <= table.size(); at += 4)
        contents += bigEndian64(moved(number(table.substr(at, 4))));
    return largeBox("co64", contents);
}

std::string rewritten(const Box& box, const OffsetRule& moved) {
    if (box.type == "moof") throw std::invalid_argument("fragments state where they lie");
    if (box.type == "stco") return largeOffsets(box.contents, moved);
    if (std::find(kContainers.begin(), kContainers.end(), box.type) == kContainers.end())
        return largeBox(box.type, box.contents);
    std::string contents;
    for (const Box& inner : boxesOf(box.contents))
        contents += rewritten(inner, moved);
    return largeBox(box.type, contents);
}

}  // namespace

std::string withLargeBoxes(std::string_view movie) {
    constexpr std::size_t kLargeHead = 16;
    const std::vector<Box> boxes = boxesOf(movie);
    const OffsetRule unmoved = [](std::uint64_t offset) { return offset; };

    std::vector<std::uint64_t> begins;  // of each box's contents, once all are rewritten
    std::uint64_t end = 0;
    for (const Box& box : boxes) {
        begins.push_back(end + kLargeHead);
        end += rewritten(box, unmoved).size();
    }
    const OffsetRule moved = [&](std::uint64_t offset) {
        std::size_t holder = 0;
        while (holder + 1 < boxes.size() && boxes[holder + 1].begin <= offset)
            ++holder;
        return begins[holder] + (offset - boxes[holder].begin);
    };
    std::string all;
    for (const Box& box : boxes)
        all += rewritten(box, moved);
    return all;
}

}  // namespace qrx::test
