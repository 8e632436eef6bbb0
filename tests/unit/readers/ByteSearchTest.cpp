#include <algorithm>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include "readers/ByteSearch.h"

namespace qrx {
namespace {

using Bytes = std::vector<std::byte>;

std::optional<std::size_t> plainSearch(const Bytes& data, const Bytes& pattern) {
    const auto found = std::search(data.begin(), data.end(), pattern.begin(), pattern.end());
    if (found == data.end() || pattern.empty()) return std::nullopt;
    return static_cast<std::size_t>(found - data.begin());
}

Bytes ascending(std::size_t count, int first = 1) {
    Bytes bytes(count);
    for (std::size_t i = 0; i < count; ++i) {
        bytes[i] = static_cast<std::byte>(static_cast<std::size_t>(first) + i);
    }
    return bytes;
}

TEST(ByteSearch, EmptyPatternIsFoundNowhere) {
    EXPECT_EQ(firstOccurrence({}, {}), std::nullopt);
    EXPECT_EQ(firstOccurrence(ascending(10), {}), std::nullopt);
}

TEST(ByteSearch, PatternLongerThanTheDataIsNotFound) {
    EXPECT_EQ(firstOccurrence({}, ascending(1)), std::nullopt);
    EXPECT_EQ(firstOccurrence(ascending(3), ascending(4)), std::nullopt);
    EXPECT_EQ(firstOccurrence(ascending(4), ascending(4)), 0U);
}

TEST(ByteSearch, FindsEveryLengthAtEveryOffset) {
    for (std::size_t length = 1; length <= 20; ++length) {
        const Bytes pattern = ascending(length);
        for (std::size_t offset = 0; offset + length <= 200; ++offset) {
            Bytes data(200);
            std::copy(pattern.begin(), pattern.end(),
                      data.begin() + static_cast<std::ptrdiff_t>(offset));
            ASSERT_EQ(firstOccurrence(data, pattern), offset) << "length " << length;
        }
    }
}

TEST(ByteSearch, PatternCutByTheEndIsNotFound) {
    const Bytes pattern = ascending(4);
    for (std::size_t size = 4; size < 200; ++size) {
        Bytes data(size);
        std::copy_n(pattern.begin(), 3, data.end() - 3);
        ASSERT_EQ(firstOccurrence(data, pattern), std::nullopt) << size;
    }
}

TEST(ByteSearch, FirstOfSeveralWins) {
    Bytes data(500);
    const Bytes pattern = ascending(4);
    for (const std::size_t offset : {77U, 80U + 1, 300U, 496U}) {
        std::copy(pattern.begin(), pattern.end(),
                  data.begin() + static_cast<std::ptrdiff_t>(offset));
    }
    EXPECT_EQ(firstOccurrence(data, pattern), 77U);
}

TEST(ByteSearch, AgreesWithAPlainSearchOnFewLetters) {
    // Few letters make near misses and overlapping beginnings the rule.
    std::mt19937 noise{20240229};
    for (int round = 0; round < 20000; ++round) {
        const unsigned letters = 1 + noise() % 4;
        Bytes data(noise() % 300);
        Bytes pattern(noise() % 9);
        for (std::byte& value : data) {
            value = static_cast<std::byte>(noise() % letters);
        }
        for (std::byte& value : pattern) {
            value = static_cast<std::byte>(noise() % letters);
        }
        ASSERT_EQ(firstOccurrence(data, pattern), plainSearch(data, pattern)) << "round " << round;
    }
}

TEST(ByteSearch, HighBytesAreBytesLikeAnyOther) {
    for (int value = 0; value < 256; ++value) {
        Bytes data(130, static_cast<std::byte>(value ^ 0xFF));
        data[100] = static_cast<std::byte>(value);
        EXPECT_EQ(firstOccurrence(data, Bytes{static_cast<std::byte>(value)}), 100U) << value;
    }
}

}  // namespace
}  // namespace qrx
