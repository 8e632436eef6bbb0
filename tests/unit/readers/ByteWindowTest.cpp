#include <string>

#include <gtest/gtest.h>

#include "readers/ByteWindow.h"

namespace qrx {
namespace {

/// Bytes that count up, and a count of the reads. Claims any size without having it.
class CountingSource final : public ByteSource {
public:
    explicit CountingSource(std::uint64_t size) : size_(size) {}

    [[nodiscard]] std::uint64_t size() const override { return size_; }
    [[nodiscard]] std::size_t read(std::uint64_t offset, std::span<std::byte> into) const override {
        ++reads;
        if (offset >= failsFrom) return 0;
        if (!counts) return into.size();
        for (std::size_t i = 0; i < into.size(); ++i)
            into[i] = static_cast<std::byte>((offset + i) & 0xFFU);
        return into.size();
    }

    mutable int reads = 0;
    bool counts = true;  ///< otherwise any bytes
    std::uint64_t failsFrom = UINT64_MAX;

private:
    std::uint64_t size_;
};

TEST(ByteWindow, AnswersManyQuestionsFromOneRead) {
    const CountingSource source(1U << 20U);
    ByteWindow window(source);
    for (std::uint64_t offset = 0; offset + 8 <= ByteWindow::kUsualRead; ++offset) {
        const auto bytes = window.at(offset, 8);
        ASSERT_TRUE(bytes);
        EXPECT_EQ(bytes->front(), static_cast<std::byte>(offset & 0xFFU));
    }
    EXPECT_EQ(source.reads, 1);
}

TEST(ByteWindow, ReadsAgainWhereTheQuestionLeavesTheWindow) {
    const CountingSource source(1U << 20U);
    ByteWindow window(source);
    ASSERT_TRUE(window.at(0, 8));
    const auto across = window.at(ByteWindow::kUsualRead - 4, 8);
    ASSERT_TRUE(across);
    EXPECT_EQ(across->front(), std::byte{0xFC});
    const auto back = window.at(1, 8);
    ASSERT_TRUE(back);
    EXPECT_EQ(back->front(), std::byte{1});
    EXPECT_EQ(source.reads, 3);
}

TEST(ByteWindow, NothingPastTheEnd) {
    const CountingSource source(100);
    ByteWindow window(source);
    EXPECT_TRUE(window.at(92, 8));
    EXPECT_FALSE(window.at(93, 8));
    EXPECT_TRUE(window.at(100, 0));
    EXPECT_FALSE(window.at(101, 0));
    EXPECT_FALSE(window.at(UINT64_MAX, 8));
}

TEST(ByteWindow, NothingOverTheLargestRead) {
    const CountingSource source(1U << 20U);
    ByteWindow window(source);
    EXPECT_TRUE(window.at(0, ByteWindow::kLargestRead));
    EXPECT_FALSE(window.at(0, ByteWindow::kLargestRead + 1));
}

TEST(ByteWindow, NothingWhereReadingFails) {
    CountingSource source(1U << 20U);
    source.failsFrom = 8192;
    ByteWindow window(source);
    EXPECT_TRUE(window.at(0, 8));
    EXPECT_FALSE(window.at(9000, 8));
    EXPECT_TRUE(window.at(0, 8));
}

TEST(ByteWindow, PrefetchTakesOneReadForAll) {
    const CountingSource source(1U << 20U);
    ByteWindow window(source);
    window.prefetch(10'000, 30'000);
    EXPECT_TRUE(window.at(10'000, 8));
    EXPECT_TRUE(window.at(39'992, 8));
    EXPECT_EQ(source.reads, 1);
}

TEST(ByteWindow, PrefetchIsBoundedByTheSourceAndByTheLargestRead) {
    const CountingSource small(100);
    ByteWindow smallWindow(small);
    smallWindow.prefetch(50, UINT64_MAX);
    EXPECT_TRUE(smallWindow.at(92, 8));
    smallWindow.prefetch(UINT64_MAX, 8);
    EXPECT_EQ(small.reads, 1);

    const CountingSource large(UINT64_MAX);
    ByteWindow largeWindow(large);
    largeWindow.prefetch(0, UINT64_MAX);
    EXPECT_TRUE(largeWindow.at(ByteWindow::kLargestRead - 8, 8));
    EXPECT_EQ(large.reads, 1);
}

TEST(ByteWindow, AnswersNothingAfterTooManyReads) {
    CountingSource source(UINT64_MAX);
    source.counts = false;
    ByteWindow window(source);
    for (std::uint64_t i = 0; i < ByteWindow::kMostReads; ++i)
        ASSERT_TRUE(window.at(i * 100'000, 8));
    EXPECT_FALSE(window.at(0, 8));
}

TEST(ByteWindow, GrantsAMillionSteps) {
    const CountingSource source(8);
    ByteWindow window(source);
    for (std::uint32_t i = 0; i < ByteWindow::kMostSteps; ++i)
        ASSERT_TRUE(window.takeStep());
    EXPECT_FALSE(window.takeStep());
}

TEST(ByteWindow, CopiesAnyNumberOfBytesThatAreThere) {
    const CountingSource source(1U << 20U);
    const ByteWindow window(source);
    const auto copy = window.copy(1, 200'000);
    ASSERT_TRUE(copy);
    EXPECT_EQ(copy->size(), 200'000U);
    EXPECT_EQ(copy->front(), std::byte{1});
    EXPECT_FALSE(window.copy(1, 1U << 20U));
    EXPECT_FALSE(window.copy(UINT64_MAX, 1));
}

TEST(ByteWindow, NumbersInBothOrders) {
    const std::string text = "\x01\x02\x03\x04\x05\x06\x07\xFF";
    const auto bytes = std::as_bytes(std::span(text));
    EXPECT_EQ(bigEndian16(bytes), 0x0102U);
    EXPECT_EQ(bigEndian32(bytes), 0x01020304U);
    EXPECT_EQ(bigEndian64(bytes), 0x01020304050607FFU);
    EXPECT_EQ(littleEndian32(bytes.subspan(4)), 0xFF070605U);
}

TEST(ByteWindow, FourCharacters) {
    EXPECT_EQ(fourCharacters("moov"), 0x6D6F6F76U);
    EXPECT_EQ(fourCharacterText(0x6D6F6F76U), "moov");
    EXPECT_EQ(fourCharacterText(0xA96E0000U), std::string("\xA9n\0\0", 4));
}

}  // namespace
}  // namespace qrx
