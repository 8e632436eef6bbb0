#include <array>
#include <limits>

#include <gtest/gtest.h>

#include "foundation/ByteCursor.h"

namespace qrx {
namespace {

constexpr std::array kBytes{
    std::byte{0x01}, std::byte{0x02}, std::byte{0x03}, std::byte{0x04},
    std::byte{0x85}, std::byte{0x86}, std::byte{0x87}, std::byte{0x88},
};
constexpr std::span<const std::byte> kAll{kBytes};

TEST(ByteCursor, TakesFromTheFrontAndKeepsTheRest) {
    ByteCursor cursor(kBytes);
    const auto taken = cursor.take(3);
    ASSERT_TRUE(taken);
    EXPECT_EQ(taken->data(), kBytes.data());
    EXPECT_EQ(taken->size(), 3U);
    EXPECT_EQ(cursor.remaining(), 5U);
    EXPECT_EQ(cursor.rest().data(), kBytes.data() + 3);
    EXPECT_FALSE(cursor.atEnd());
}

TEST(ByteCursor, ReadsEachWidthInBothOrders) {
    EXPECT_EQ(ByteCursor(kBytes).byte(), 0x01);
    EXPECT_EQ(ByteCursor(kBytes).bigEndian16(), 0x0102);
    EXPECT_EQ(ByteCursor(kBytes).bigEndian24(), 0x010203U);
    EXPECT_EQ(ByteCursor(kBytes).bigEndian32(), 0x01020304U);
    EXPECT_EQ(ByteCursor(kBytes).bigEndian64(), 0x0102030485868788U);
    EXPECT_EQ(ByteCursor(kBytes).littleEndian16(), 0x0201);
    EXPECT_EQ(ByteCursor(kBytes).littleEndian24(), 0x030201U);
    EXPECT_EQ(ByteCursor(kBytes).littleEndian32(), 0x04030201U);
    EXPECT_EQ(ByteCursor(kBytes).littleEndian64(), 0x8887868504030201U);
}

TEST(ByteCursor, HighBitsAreNoSign) {
    ByteCursor cursor(kAll.subspan(4));
    EXPECT_EQ(cursor.bigEndian16(), 0x8586);
    EXPECT_EQ(cursor.littleEndian16(), 0x8887);
    EXPECT_TRUE(cursor.atEnd());
}

TEST(ByteCursor, NothingIsTakenWhenTooFewAreLeft) {
    for (std::size_t length = 0; length < kBytes.size(); ++length) {
        SCOPED_TRACE(length);
        ByteCursor cursor(kAll.first(length));
        EXPECT_FALSE(cursor.bigEndian64());
        EXPECT_FALSE(cursor.littleEndian64());
        EXPECT_FALSE(cursor.take(length + 1));
        EXPECT_FALSE(cursor.skip(length + 1));
        EXPECT_EQ(cursor.bigEndian32().has_value(), length >= 4);
        EXPECT_EQ(cursor.remaining(), length >= 4 ? length - 4 : length);
    }
}

TEST(ByteCursor, NothingOfAnEmptyRun) {
    ByteCursor cursor({});
    EXPECT_TRUE(cursor.atEnd());
    EXPECT_FALSE(cursor.byte());
    EXPECT_FALSE(cursor.littleEndian24());
    const auto none = cursor.take(0);
    ASSERT_TRUE(none);
    EXPECT_TRUE(none->empty());
}

TEST(ByteCursor, HugeCountDoesNotWrap) {
    ByteCursor cursor(kBytes);
    ASSERT_TRUE(cursor.skip(6));
    EXPECT_FALSE(cursor.take(std::numeric_limits<std::uint64_t>::max()));
    EXPECT_FALSE(cursor.skip(std::numeric_limits<std::uint64_t>::max() - 5));
    EXPECT_EQ(cursor.remaining(), 2U);
    EXPECT_TRUE(cursor.skip(2));
    EXPECT_TRUE(cursor.atEnd());
}

}  // namespace
}  // namespace qrx
