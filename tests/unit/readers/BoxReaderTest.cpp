#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "readers/BoxReader.h"
#include "support/BoxWriter.h"

namespace qrx {
namespace {

using test::bigEndian32;
using test::box;
using test::boxStating;
using test::largeBox;
using test::largeBoxStating;

/// Type and size of the contents of every box side by side in `bytes`.
std::vector<std::pair<std::string, std::uint64_t>> boxesIn(const std::string& bytes) {
    const MemoryByteSource source(std::as_bytes(std::span(bytes)));
    ByteWindow window(source);
    BoxReader boxes(window, 0, window.size());
    std::vector<std::pair<std::string, std::uint64_t>> found;
    while (const auto next = boxes.next())
        found.emplace_back(fourCharacterText(next->type), next->payloadSize());
    return found;
}

using Found = std::vector<std::pair<std::string, std::uint64_t>>;

TEST(BoxReader, WalksBoxesOfBothSizes) {
    EXPECT_EQ(boxesIn(box("ftyp", "12345678") + largeBox("mdat", "123") + box("moov")),
              (Found{{"ftyp", 8}, {"mdat", 3}, {"moov", 0}}));
}

TEST(BoxReader, SizeZeroReachesToTheEnd) {
    EXPECT_EQ(boxesIn(box("ftyp") + boxStating(0, "moov", "123456789012")),
              (Found{{"ftyp", 0}, {"moov", 12}}));
}

TEST(BoxReader, ABoxThatClaimsMoreThanThereIsEndsAtTheEnd) {
    EXPECT_EQ(boxesIn(boxStating(0x7FFFFFFF, "moov", "1234")), (Found{{"moov", 4}}));
    EXPECT_EQ(boxesIn(boxStating(0xFFFFFFFF, "moov", "1234")), (Found{{"moov", 4}}));
    EXPECT_EQ(boxesIn(largeBoxStating(UINT64_MAX, "moov", "1234")), (Found{{"moov", 4}}));
    EXPECT_EQ(boxesIn(largeBoxStating(UINT64_MAX - 7, "moov", "1234")), (Found{{"moov", 4}}));
}

TEST(BoxReader, StopsAtASizeSmallerThanTheHeader) {
    for (std::uint32_t size = 2; size < 8; ++size) {
        SCOPED_TRACE(size);
        EXPECT_EQ(boxesIn(box("ftyp") + boxStating(size, "moov", "1234") + box("free")),
                  (Found{{"ftyp", 0}}));
    }
    for (std::uint64_t size = 0; size < 16; ++size) {
        SCOPED_TRACE(size);
        EXPECT_EQ(boxesIn(box("ftyp") + largeBoxStating(size, "moov", "1234") + box("free")),
                  (Found{{"ftyp", 0}}));
    }
}

TEST(BoxReader, ABoxThatPointsBackIsTheEndAndNotALoop) {
    // 2^64 - 8 and its like would lead back to an earlier box if positions were simply added up.
    for (std::uint64_t back = 8; back <= 64; back += 8) {
        SCOPED_TRACE(back);
        EXPECT_EQ(
            boxesIn(box("ftyp") + largeBoxStating(0 - back, "free", "12345678") + box("moov")),
            (Found{{"ftyp", 0}, {"free", 16}}));
    }
}

TEST(BoxReader, NothingInACutHeader) {
    const std::string whole = largeBox("moov", "");
    for (std::size_t cut = 0; cut < whole.size(); ++cut) {
        SCOPED_TRACE(cut);
        EXPECT_TRUE(boxesIn(whole.substr(0, cut)).empty());
    }
    EXPECT_EQ(boxesIn(whole), (Found{{"moov", 0}}));
}

TEST(BoxReader, FourZeroBytesEndAListOfUserData) {
    EXPECT_EQ(boxesIn(box("name", "a") + bigEndian32(0)), (Found{{"name", 1}}));
}

TEST(BoxReader, FindsTheFirstOfAType) {
    const std::string bytes = box("moov", box("free") + box("trak", "1") + box("trak", "22"));
    const MemoryByteSource source(std::as_bytes(std::span(bytes)));
    ByteWindow window(source);
    const auto moov = BoxReader(window, 0, window.size()).next();
    ASSERT_TRUE(moov);
    const auto trak = firstBox(window, *moov, fourCharacters("trak"));
    ASSERT_TRUE(trak);
    EXPECT_EQ(trak->payloadSize(), 1U);
    EXPECT_FALSE(firstBox(window, *moov, fourCharacters("mvhd")));
}

TEST(BoxReader, PayloadBytesStayInsideTheBox) {
    const std::string bytes = box("name", "123456") + box("free", "123456");
    const MemoryByteSource source(std::as_bytes(std::span(bytes)));
    ByteWindow window(source);
    const auto name = BoxReader(window, 0, window.size()).next();
    ASSERT_TRUE(name);
    EXPECT_TRUE(payloadBytes(window, *name, 0, 6));
    EXPECT_TRUE(payloadBytes(window, *name, 6, 0));
    EXPECT_FALSE(payloadBytes(window, *name, 0, 7));
    EXPECT_FALSE(payloadBytes(window, *name, 3, 4));
    EXPECT_FALSE(payloadBytes(window, *name, 7, 0));
    EXPECT_FALSE(payloadBytes(window, *name, UINT64_MAX, 2));
}

}  // namespace
}  // namespace qrx
