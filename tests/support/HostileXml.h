#pragma once

#include <cstddef>
#include <string>

namespace qrx::test {

[[nodiscard]] inline std::string repeated(const std::string& text, std::size_t times) {
    std::string all;
    all.reserve(text.size() * times);
    for (std::size_t i = 0; i < times; ++i)
        all += text;
    return all;
}

/// Elements one inside the other.
[[nodiscard]] inline std::string nestedElements(std::size_t levels) {
    return repeated("<a>", levels) + repeated("</a>", levels);
}

/// The name of the entity that stands for 4 to the power of `exponent` pairs of letters.
[[nodiscard]] inline std::string bombEntity(int exponent) {
    return "e" + std::to_string(exponent);
}

/// A document whose entities grow fourfold from one to the next, up to bombEntity(29), around
/// `markup`, which uses some of them.
[[nodiscard]] inline std::string entityBomb(const std::string& markup) {
    std::string text = "<!DOCTYPE r [<!ENTITY e0 'ha'>";
    for (int exponent = 1; exponent < 30; ++exponent) {
        text += "<!ENTITY " + bombEntity(exponent) + " '";
        text += repeated("&" + bombEntity(exponent - 1) + ";", 4) + "'>";
    }
    return text + "]>" + markup;
}

}  // namespace qrx::test
