#include <algorithm>
#include <array>
#include <filesystem>
#include <span>
#include <string>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "foundation/QRXConversionUtility.h"
#include "readers/MxfKeySearch.h"
#include "support/TemporaryFolder.h"
#include "unit/readers/MxfTestSupport.h"

namespace qrx {
namespace {

using test::asText;
using test::baseItem;
using test::bytes;
using test::Bytes;
using test::joined;
using test::keyOf;
using test::startItem;

constexpr auto kHex = MxfValueForm::hexText;
constexpr auto kDecimal = MxfValueForm::decimalText;

constexpr std::array kStartTimecodeItem{
    std::byte{0x15}, std::byte{0x01},                                    // local tag
    std::byte{0x00}, std::byte{0x08},                                    // length: 8 bytes
    std::byte{0},    std::byte{0},    std::byte{0},    std::byte{0},     // value: 90000 frames,
    std::byte{0x00}, std::byte{0x01}, std::byte{0x5F}, std::byte{0x90},  //   big-endian
};
constexpr std::span kStartTimecodeTag = std::span(kStartTimecodeItem).first<4>();

QRXMXFKey startKey() {
    return keyOf(QRXMediaMetadataStartTimecodeKey);
}

/// `part` in `size` bytes of zeros, from `offset` on.
Bytes placed(const Bytes& part, std::size_t size, std::size_t offset) {
    Bytes data(size);
    std::copy(part.begin(), part.end(), data.begin() + static_cast<std::ptrdiff_t>(offset));
    return data;
}

// ---- location

TEST(ByteSequenceLocation, IsTheFirstOccurrence) {
    const Bytes data = joined({bytes({9}), startItem(1), startItem(2)});
    EXPECT_EQ(byteSequenceLocation(kStartTimecodeTag, data), 1U);
}

TEST(ByteSequenceLocation, NotFoundIsTheLargestSignedNumber) {
    EXPECT_EQ(byteSequenceLocation(bytes({1}), bytes({2, 3})), 9223372036854775807U);
    EXPECT_EQ(byteSequenceLocation({}, bytes({2, 3})), 9223372036854775807U);
    EXPECT_EQ(byteSequenceLocation({}, {}), 9223372036854775807U);
    EXPECT_EQ(byteSequenceLocation(bytes({1}), {}), kMxfLocationNotFound);
}

// ---- value after a tag

TEST(ValueAfterTag, IsAViewOfTheBytesBehindIt) {
    const auto value = valueAfterTag(kStartTimecodeItem, kStartTimecodeTag, 8);
    ASSERT_TRUE(value);
    EXPECT_EQ(value->data(), kStartTimecodeItem.data() + 4);
    EXPECT_EQ(value->size(), 8U);
}

TEST(ValueAfterTag, NothingWhenTheValueRunsPastTheEnd) {
    for (std::size_t cut = 4; cut < kStartTimecodeItem.size(); ++cut) {
        SCOPED_TRACE(cut);
        EXPECT_FALSE(valueAfterTag(std::span(kStartTimecodeItem).first(cut), kStartTimecodeTag, 8));
    }
}

TEST(ValueAfterTag, ALaterOccurrenceIsNotTried) {
    // The first tag's value would end one byte behind the data; the second tag stands inside it.
    const Bytes data = joined(
        {bytes({0x15, 0x01, 0x00, 0x08, 0xAA}), bytes({0x15, 0x01, 0x00, 0x08}), bytes({1, 2})});
    EXPECT_TRUE(valueAfterTag(data, kStartTimecodeTag, 7));
    EXPECT_FALSE(valueAfterTag(data, kStartTimecodeTag, 8));
}

TEST(ValueAfterTag, HugeLengthDoesNotWrap) {
    EXPECT_FALSE(valueAfterTag(kStartTimecodeItem, kStartTimecodeTag, UINT64_MAX));
    EXPECT_FALSE(valueAfterTag(kStartTimecodeItem, kStartTimecodeTag, UINT64_MAX - 3));
}

TEST(ValueAfterTag, EmptyValueAtTheVeryEnd) {
    const auto value = valueAfterTag(kStartTimecodeTag, kStartTimecodeTag, 0);
    ASSERT_TRUE(value);
    EXPECT_TRUE(value->empty());
}

TEST(ValueAfterTag, NothingForAnEmptyTag) {
    EXPECT_FALSE(valueAfterTag(kStartTimecodeItem, {}, 0));
    EXPECT_FALSE(valueAfterTag({}, {}, 0));
}

// ---- value in data

TEST(MxfValueInData, IsReadInTheFormAskedFor) {
    EXPECT_EQ(mxfValueInData(startKey(), startItem(90000), kDecimal), "90000");
    EXPECT_EQ(mxfValueInData(startKey(), startItem(90000), kHex), "0000000000015f90");
    EXPECT_EQ(mxfValueInData(startKey(), startItem(0), kDecimal), "0");
    EXPECT_EQ(mxfValueInData(startKey(), startItem(UINT64_MAX), kDecimal), "18446744073709551615");
}

TEST(MxfValueInData, NothingWhenAbsent) {
    EXPECT_EQ(mxfValueInData(startKey(), {}, kHex), std::nullopt);
    EXPECT_EQ(mxfValueInData(startKey(), baseItem(25), kHex), std::nullopt);
}

TEST(MxfValueInData, OtherLengthIsAnotherPattern) {
    const Bytes twelveByteName = test::item(0x3C01, Bytes(12, std::byte{'A'}));
    const Bytes eightByteName = test::item(0x3C01, Bytes(8, std::byte{'A'}));
    const QRXMXFKey company = keyOf(QRXMediaMetadataManufacturerNameKey);
    EXPECT_EQ(mxfValueInData(company, twelveByteName, kHex), std::nullopt);
    EXPECT_EQ(mxfValueInData(company, eightByteName, kHex), "4141414141414141");
}

TEST(MxfValueInData, KeyWithoutBytesIsFoundNowhere) {
    EXPECT_EQ(mxfValueInData(keyOf("nobody"), startItem(1), kHex), std::nullopt);
    EXPECT_EQ(mxfValueInData(keyOf(QRXMXFMediaMetadataHeaderKey), startItem(1), kHex),
              std::nullopt);
}

TEST(MxfValueInData, KeptModificationDateIsFoundEmpty) {
    const QRXMXFKey date = keyOf(QRXMediaMetadataModificationDateKey);
    EXPECT_EQ(mxfValueInData(date, test::item(0x4404, Bytes(8, std::byte{7})), kHex), "");
    EXPECT_EQ(mxfValueInData(date, test::item(0x4404, Bytes(8, std::byte{7})), kDecimal), "0");
    EXPECT_EQ(mxfValueInData(date, bytes({0x44, 0x04}), kHex), "");
    EXPECT_EQ(mxfValueInData(date, bytes({0x44}), kHex), std::nullopt);
}

TEST(MxfValueInData, NegativeLengthHoldsNowhere) {
    QRXMXFKey key;
    key.setLocalKey(bytes({0x15, 0x01}));
    key.setHexLocalKeyLength(bytes({0xFF, 0xFF, 0xFF, 0xFF}));
    const Bytes data = joined({bytes({0x15, 0x01, 0xFF, 0xFF, 0xFF, 0xFF}), Bytes(100)});
    EXPECT_EQ(mxfValueInData(key, data, kHex), std::nullopt);
    // the low 32 bits count
    key.setHexLocalKeyLength(bytes({0, 0, 0, 1, 0, 0, 0, 2}));
    EXPECT_EQ(
        mxfValueInData(key, joined({bytes({0x15, 0x01, 0, 0, 0, 1, 0, 0, 0, 2}), bytes({7, 8, 9})}),
                       kHex),
        "0708");
}

class MxfItemInData : public testing::TestWithParam<std::string_view> {};

TEST_P(MxfItemInData, IsFoundAtEveryOffsetOfASmallWindow) {
    const QRXMXFKey key = keyOf(GetParam());
    const auto length =
        static_cast<std::size_t>(QRXConversionUtility::dataToNumber(key.hexLocalKeyLength()));
    const Bytes value(length, std::byte{0xA7});
    const Bytes item = joined({key.localKey(), key.hexLocalKeyLength(), value});
    const std::string expected = QRXConversionUtility::dataToString(value);
    constexpr std::size_t kWindow = 200;
    for (std::size_t offset = 0; offset + item.size() <= kWindow; ++offset) {
        SCOPED_TRACE(offset);
        const Bytes data = placed(item, kWindow, offset);
        ASSERT_EQ(mxfValueInData(key, data, kHex), expected);
        if (value.empty()) continue;
        const auto cut = std::span(data).first(offset + item.size() - 1);
        ASSERT_EQ(mxfValueInData(key, cut, kHex), std::nullopt);
    }
}

INSTANTIATE_TEST_SUITE_P(
    EveryItem, MxfItemInData,
    testing::Values(QRXMXFMediaMetadataRoundedVideoFrameRateKey, QRXMediaMetadataStartTimecodeKey,
                    QRXMediaMetadataDropFrameKey, QRXMediaMetadataManufacturerNameKey,
                    QRXMediaMetadataProductsNameKey, QRXMXFMediaMetadataVersionKey,
                    QRXMediaMetadataModificationDateKey, QRXMediaMetadataUMIDKey,
                    QRXMXFMediaMetadataEditUnitsKey, QRXMediaMetadataDurationKey,
                    QRXMediaMetadataVideoBitRateKey, QRXMXFMediaMetadataUUIDKey,
                    QRXMXFMediaMetadataTrackEditRateKey),
    [](const auto& row) { return std::string(row.param); });

// ---- windows

struct WindowCase {
    const char* name;
    std::size_t size;
    std::size_t offset;  ///< of the 12-byte item
    bool found;
};

class MxfWindow : public testing::TestWithParam<WindowCase> {};

TEST_P(MxfWindow, DecidesWhatIsSearched) {
    const WindowCase& row = GetParam();
    const Bytes data = placed(startItem(90000), row.size, row.offset);
    const auto expected = row.found ? std::optional<std::string>("90000") : std::nullopt;
    EXPECT_EQ(mxfValueInSource(startKey(), MemoryByteSource(data), kDecimal), expected);
}

constexpr std::size_t kBig = 2'500'000;

INSTANTIATE_TEST_SUITE_P(
    Edges, MxfWindow,
    testing::Values(WindowCase{"StartOfTheHead", kBig, 0, true},
                    WindowCase{"LastPlaceOfTheHead", kBig, 1'000'000 - 12, true},
                    WindowCase{"ValueCutByTheHead", kBig, 1'000'000 - 11, false},
                    WindowCase{"TagEndsTheHead", kBig, 1'000'000 - 4, false},
                    WindowCase{"TagStraddlesTheHead", kBig, 1'000'000 - 2, false},
                    WindowCase{"BehindTheHead", kBig, 1'000'000, false},
                    WindowCase{"Middle", kBig, 1'250'000, false},
                    WindowCase{"BeforeTheTail", kBig, kBig - 1'000'001, false},
                    WindowCase{"StartOfTheTail", kBig, kBig - 1'000'000, true},
                    WindowCase{"EndOfTheTail", kBig, kBig - 12, true},
                    WindowCase{"StraddlesTheHeadButLiesInTheTail", 1'500'000, 1'000'000 - 2, true},
                    WindowCase{"WholeFileIsOneWindow", 1'000'000, 1'000'000 - 12, true},
                    WindowCase{"OneByteMoreThanAWindow", 1'000'001, 1'000'001 - 12, true},
                    WindowCase{"Small", 500, 488, true}, WindowCase{"ItemAlone", 12, 0, true}),
    [](const auto& row) { return std::string(row.param.name); });

/// Counts what is read of it.
class CountedSource final : public ByteSource {
public:
    explicit CountedSource(std::span<const std::byte> bytes) : source_(bytes) {}
    [[nodiscard]] std::uint64_t size() const override { return source_.size(); }
    [[nodiscard]] std::size_t read(std::uint64_t offset, std::span<std::byte> into) const override {
        const std::size_t count = source_.read(offset, into);
        total_ += count;
        largest_ = std::max(largest_, count);
        return count;
    }
    [[nodiscard]] std::size_t total() const { return total_; }
    [[nodiscard]] std::size_t largest() const { return largest_; }

private:
    MemoryByteSource source_;
    mutable std::size_t total_ = 0;
    mutable std::size_t largest_ = 0;
};

TEST(MxfWindows, HeadComesFirst) {
    Bytes data = placed(startItem(1), kBig, 100);
    const Bytes last = startItem(2);
    std::copy(last.begin(), last.end(), data.end() - 12);
    EXPECT_EQ(mxfValueInSource(startKey(), MemoryByteSource(data), kDecimal), "1");
}

TEST(MxfWindows, TailIsAskedWhenTheHeadCutsTheValue) {
    Bytes data = placed(startItem(1), kBig, 1'000'000 - 6);
    const Bytes last = startItem(2);
    std::copy(last.begin(), last.end(), data.end() - 12);
    EXPECT_EQ(mxfValueInSource(startKey(), MemoryByteSource(data), kDecimal), "2");
}

TEST(MxfWindows, EachPartIsReadOnceHoweverManyValuesAreSought) {
    const Bytes data = placed(startItem(90000), kBig, kBig - 12);
    const CountedSource source(data);
    MxfWindows windows(source);
    for (int time = 0; time < 3; ++time) {
        EXPECT_EQ(mxfValueInWindows(startKey(), windows, kDecimal), "90000");
        EXPECT_EQ(source.total(), 2'000'000U);
    }
}

TEST(MxfWindows, AValueNearTheStartIsFoundWithoutTheRestOfTheHead) {
    const Bytes data = placed(startItem(90000), kBig, 4'000);
    const CountedSource source(data);
    EXPECT_EQ(mxfValueInSource(startKey(), source, kDecimal), "90000");
    EXPECT_LT(source.total(), 100'000U);
}

TEST(MxfWindows, AValueIsFoundWhereverItStandsAroundTheEndOfTheStart) {
    const Bytes big(kBig);
    const MemoryByteSource zeros(big);
    const std::size_t start = MxfWindows(zeros).startOfHead().size();
    ASSERT_LT(start, std::size_t{kMxfWindowBytes});
    for (std::size_t offset = start - 14; offset <= start + 2; ++offset) {
        SCOPED_TRACE(offset);
        const Bytes data = placed(startItem(90000), kBig, offset);
        EXPECT_EQ(mxfValueInSource(startKey(), MemoryByteSource(data), kDecimal), "90000");
    }
}

TEST(MxfWindows, AValueCutByTheStartIsNotTakenFromALaterTag) {
    const Bytes big(kBig);
    const MemoryByteSource zeros(big);
    const std::size_t start = MxfWindows(zeros).startOfHead().size();
    Bytes data = placed(startItem(1), kBig, start - 6);
    const Bytes later = startItem(2);
    std::copy(later.begin(), later.end(), data.begin() + static_cast<std::ptrdiff_t>(start + 100));
    EXPECT_EQ(mxfValueInSource(startKey(), MemoryByteSource(data), kDecimal), "1");
}

TEST(MxfWindows, EmptySource) {
    EXPECT_EQ(mxfValueInSource(startKey(), MemoryByteSource({}), kDecimal), std::nullopt);
    EXPECT_EQ(mxfValueInSource(keyOf("nobody"), MemoryByteSource({}), kDecimal), std::nullopt);
}

TEST(MxfWindows, AtMostAMillionBytesAtEachEndAreRead) {
    const Bytes data(kBig);
    const CountedSource source(data);
    EXPECT_EQ(mxfValueInSource(startKey(), source, kDecimal), std::nullopt);
    EXPECT_EQ(source.total(), 2'000'000U);
    EXPECT_EQ(source.largest(), 1'000'000U);
}

// ---- files

TEST(MxfValueInFile, ReadsASmallFileWhole) {
    const test::TemporaryFolder folder;
    const auto file = folder.write("a.mxf", asText(placed(startItem(90000), 500, 300)));
    EXPECT_EQ(mxfValueInFile(startKey(), file, kDecimal), "90000");
    EXPECT_EQ(mxfValueInFile(startKey(), file, kHex), "0000000000015f90");
}

TEST(MxfValueInFile, ReadsTheEndsOfALargeFile) {
    const test::TemporaryFolder folder;
    const auto inTail = folder.write("tail.mxf", asText(placed(startItem(7), kBig, kBig - 12)));
    const auto inMiddle = folder.write("middle.mxf", asText(placed(startItem(7), kBig, 1'250'000)));
    EXPECT_EQ(mxfValueInFile(startKey(), inTail, kDecimal), "7");
    EXPECT_EQ(mxfValueInFile(startKey(), inMiddle, kDecimal), std::nullopt);
}

TEST(MxfValueInFile, FollowsALinkToTheTargetsSize) {
    const test::TemporaryFolder folder;
    const auto file = folder.write("a.mxf", asText(placed(startItem(7), kBig, kBig - 12)));
    EXPECT_EQ(mxfValueInFile(startKey(), folder.link("link.mxf", file), kDecimal), "7");
}

TEST(MxfValueInFile, NothingWhereNothingCanBeRead) {
    const test::TemporaryFolder folder;
    const std::string fifo = folder / "fifo.mxf";
    ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
    for (const std::string& path :
         {folder / "missing.mxf", folder.makeFolder("folder.mxf"), folder.write("empty.mxf"),
          folder.link("dangling.mxf", "nowhere"), fifo, std::string("/dev/zero"), std::string()}) {
        EXPECT_EQ(mxfValueInFile(startKey(), path, kDecimal), std::nullopt) << path;
    }
}

TEST(MxfValueInFile, EveryTruncationEndsInNothing) {
    const test::TemporaryFolder folder;
    const Bytes whole = joined({bytes({1, 2, 3}), startItem(90000)});
    const auto file = folder.write("a.mxf", asText(whole));
    for (std::size_t cut = whole.size(); cut-- > 0;) {
        std::filesystem::resize_file(file, cut);
        EXPECT_EQ(mxfValueInFile(startKey(), file, kDecimal), std::nullopt) << cut;
    }
}

// ---- bytes up to the next label

const Bytes kLabel = bytes({0x06, 0x0E, 0x2B, 0x34});

TEST(BytesFollowingKey, EndAtTheNextLabel) {
    const Bytes value = bytes({1, 2, 3});
    const Bytes data = joined({Bytes(50), bytes({0xAA, 0xBB}), value, kLabel, Bytes(2000)});
    const auto found = bytesFollowingMxfKey(bytes({0xAA, 0xBB}), data, -1);
    ASSERT_TRUE(found);
    EXPECT_EQ(Bytes(found->begin(), found->end()), value);
    EXPECT_EQ(found->data(), data.data() + 52);
    const auto atPlace = bytesFollowingMxfKey(bytes({0xAA, 0xBB}), data, 50);
    ASSERT_TRUE(atPlace);
    EXPECT_EQ(atPlace->data(), found->data());
}

TEST(BytesFollowingKey, LabelMayStandUpTo128BytesAway) {
    for (const std::size_t gap : {0U, 1U, 127U, 128U, 129U, 1000U}) {
        const Bytes data = joined({bytes({0xAA}), Bytes(gap), kLabel, Bytes(2000)});
        const auto found = bytesFollowingMxfKey(bytes({0xAA}), data, -1);
        EXPECT_EQ(found.has_value(), gap <= 128) << gap;
        if (found) {
            EXPECT_EQ(found->size(), gap);
        }
    }
}

TEST(BytesFollowingKey, NothingWithoutKeyOrLabel) {
    const Bytes data = joined({bytes({0xAA}), Bytes(2000)});
    EXPECT_FALSE(bytesFollowingMxfKey(bytes({0xAA}), data, -1));  // no label
    EXPECT_FALSE(bytesFollowingMxfKey(bytes({0xBB}), data, -1));  // no key
    EXPECT_FALSE(bytesFollowingMxfKey({}, data, -1));             // empty pattern
    EXPECT_FALSE(bytesFollowingMxfKey(bytes({0xAA}), data, INT64_MIN));
    EXPECT_FALSE(bytesFollowingMxfKey(bytes({0xAA}), data, INT64_MAX));
    EXPECT_FALSE(bytesFollowingMxfKey(bytes({0xAA}), {}, -1));
    EXPECT_FALSE(bytesFollowingMxfKey(bytes({0xAA}), {}, 0));
}

TEST(BytesFollowingKey, A1024ByteSliceMustFit) {
    const auto data = [](std::size_t behind) {
        return joined({bytes({0xAA, 1}), kLabel, Bytes(behind)});
    };
    EXPECT_TRUE(bytesFollowingMxfKey(bytes({0xAA}), data(1024 - 5), -1));
    EXPECT_FALSE(bytesFollowingMxfKey(bytes({0xAA}), data(1024 - 6), -1));
}

TEST(BytesFollowingKey, KeptShortDataAnswerOnlyAtZeroWithoutAPattern) {
    const Bytes data = joined({bytes({0xAA}), kLabel, Bytes(100)});
    EXPECT_FALSE(bytesFollowingMxfKey(bytes({0xAA}), data, -1));
    EXPECT_FALSE(bytesFollowingMxfKey(bytes({0xAA}), data, 0));
    const auto found = bytesFollowingMxfKey({}, data, 0);
    ASSERT_TRUE(found);
    EXPECT_EQ(found->size(), 1U);
}

}  // namespace
}  // namespace qrx
