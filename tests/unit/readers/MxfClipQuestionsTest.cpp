#include <cstdint>
#include <map>
#include <string>

#include <gtest/gtest.h>

#include "readers/MxfClipQuestions.h"
#include "support/TemporaryFolder.h"
#include "unit/readers/MxfTestSupport.h"

namespace qrx {
namespace {

using test::asText;
using test::baseItem;
using test::bytes;
using test::Bytes;
using test::dropFrameItem;
using test::durationItem;
using test::editRateItem;
using test::item;
using test::joined;
using test::startItem;

/// A file of its own with the given items in it.
class MxfFile {
public:
    explicit MxfFile(std::initializer_list<Bytes> items)
        : path_(folder_.write("CLIP.MXF", asText(joined(items)))) {}
    [[nodiscard]] const FilePath& path() const { return path_; }

private:
    test::TemporaryFolder folder_;
    FilePath path_;
};

const FilePath kMissing = "/nowhere/CLIP.MXF";

// ---- signature

TEST(MxfSignature, IsTheFirstElevenBytes) {
    const Bytes signature =
        bytes({0x06, 0x0E, 0x2B, 0x34, 0x02, 0x05, 0x01, 0x01, 0x0D, 0x01, 0x02});
    EXPECT_TRUE(mxfFileHasSignature(MxfFile({signature}).path()));
    EXPECT_TRUE(mxfFileHasSignature(MxfFile({signature, Bytes(100)}).path()));
    EXPECT_FALSE(mxfFileHasSignature(MxfFile({bytes({0}), signature}).path()));  // run-in
    EXPECT_FALSE(mxfFileHasSignature(MxfFile({}).path()));
    EXPECT_FALSE(mxfFileHasSignature(kMissing));
    EXPECT_FALSE(mxfFileHasSignature("/tmp"));
    EXPECT_FALSE(mxfFileHasSignature("/dev/zero"));
}

TEST(MxfSignature, EveryByteCounts) {
    const Bytes signature =
        bytes({0x06, 0x0E, 0x2B, 0x34, 0x02, 0x05, 0x01, 0x01, 0x0D, 0x01, 0x02});
    for (std::size_t i = 0; i < signature.size(); ++i) {
        SCOPED_TRACE(i);
        Bytes other = signature;
        other[i] ^= std::byte{0x80};
        EXPECT_FALSE(mxfFileHasSignature(MxfFile({other}).path()));
        EXPECT_FALSE(mxfFileHasSignature(
            MxfFile({Bytes(signature.begin(), signature.begin() + static_cast<int>(i))}).path()));
    }
}

// ---- unique identifier

TEST(MxfUniqueIdentifier, IsTheFirstPackagesUmid) {
    Bytes umid;
    for (int i = 0; i < 32; ++i) {
        umid.push_back(static_cast<std::byte>(0xA0 + i));
    }
    const MxfFile file({Bytes(10), item(0x4401, umid), item(0x4401, Bytes(32))});
    EXPECT_EQ(mxfUniqueIdentifier(file.path()),
              "a0a1a2a3a4a5a6a7a8a9aaabacadaeafb0b1b2b3b4b5b6b7b8b9babbbcbdbebf");
    EXPECT_EQ(mxfUniqueIdentifier(MxfFile({item(0x4401, Bytes(16))}).path()), std::nullopt);
    EXPECT_EQ(mxfUniqueIdentifier(kMissing), std::nullopt);
}

// ---- duration and edit rate

TEST(MxfDuration, IsInEditUnits) {
    EXPECT_EQ(mxfDurationInEditUnits(MxfFile({durationItem(1500)}).path()), 1500);
    EXPECT_EQ(mxfDurationInEditUnits(MxfFile({durationItem(0)}).path()), 0);
    EXPECT_EQ(mxfDurationInEditUnits(MxfFile({startItem(5)}).path()), 0);
    EXPECT_EQ(mxfDurationInEditUnits(kMissing), 0);
    // -1, "not known" in an open header, is a huge unsigned number, held at the largest signed one
    EXPECT_EQ(mxfDurationInEditUnits(MxfFile({durationItem(UINT64_MAX)}).path()), 2147483647);
}

TEST(MxfEditUnit, IsTheLengthOfOneUnitInSeconds) {
    const MxfFile pal({editRateItem(25, 1)});
    EXPECT_EQ(mxfEditUnitNumerator(pal.path()), 1);
    EXPECT_EQ(mxfEditUnitDenominator(pal.path()), 25);
    const MxfFile ntsc({editRateItem(30000, 1001)});
    EXPECT_EQ(mxfEditUnitNumerator(ntsc.path()), 1001);
    EXPECT_EQ(mxfEditUnitDenominator(ntsc.path()), 30000);
}

TEST(MxfEditUnit, AbsentIsZeroByOne) {
    for (const FilePath& path : {MxfFile({startItem(1)}).path(), kMissing}) {
        EXPECT_EQ(mxfEditUnitNumerator(path), 0);
        EXPECT_EQ(mxfEditUnitDenominator(path), 1);
    }
}

TEST(MxfEditUnit, HostileNumbersKeepTheirLowBits) {
    const MxfFile file({editRateItem(0xFFFFFFFF, 0x80000000)});
    EXPECT_EQ(mxfEditUnitNumerator(file.path()), INT32_MIN);
    EXPECT_EQ(mxfEditUnitDenominator(file.path()), -1);
    EXPECT_EQ(mxfEditUnitDenominator(MxfFile({editRateItem(0, 0)}).path()), 0);
}

// ---- frame rate

TEST(MxfFrameRate, IsTheRoundedBase) {
    const std::map<int, QRXVideoFrameRate> expected = {
        {24, QRXVideoFrameRate24},       {25, QRXVideoFrameRate25},
        {30, QRXVideoFrameRate30},       {50, QRXVideoFrameRate50p},
        {60, QRXVideoFrameRate60},       {15, QRXVideoFrameRateUndefined},
        {0, QRXVideoFrameRateUndefined}, {2500, QRXVideoFrameRate25},
        {6, QRXVideoFrameRateUndefined},
    };
    for (const auto& [base, rate] : expected) {
        EXPECT_EQ(mxfFrameRate(MxfFile({baseItem(static_cast<std::uint64_t>(base))}).path()), rate)
            << base;
    }
    EXPECT_EQ(mxfFrameRate(MxfFile({startItem(1)}).path()), QRXVideoFrameRateUndefined);
    EXPECT_EQ(mxfFrameRate(kMissing), QRXVideoFrameRateUndefined);
}

// ---- start timecode

std::string startOf(std::uint64_t frames, std::uint64_t base, int dropFrame) {
    const MxfFile file({startItem(frames), baseItem(base), dropFrameItem(dropFrame)});
    return mxfStartTimecode(file.path());
}

TEST(MxfStartTimecode, CountsAtTheBase) {
    EXPECT_EQ(startOf(90000, 25, 0), "01:00:00:00");
    EXPECT_EQ(startOf(90024, 25, 0), "01:00:00:24");
    EXPECT_EQ(startOf(0, 25, 0), "00:00:00:00");
    EXPECT_EQ(startOf(0, 30, 0), "00:00:00;00");
    EXPECT_EQ(startOf(100, 15, 0), "00:00:00:00");  // no rate
}

TEST(MxfStartTimecode, KeptDropFrameFlagIsNotAsked) {
    EXPECT_EQ(startOf(90000, 30, 0), "00:50:03;13");
    EXPECT_EQ(startOf(90000, 30, 1), "00:50:03;13");
    EXPECT_EQ(startOf(86313, 24, 0), "01:00:00;00");  // 23.976
    EXPECT_EQ(startOf(215784, 60, 0), "01:00:00;00");
    EXPECT_EQ(startOf(90000, 25, 1), "01:00:00:00");
}

TEST(MxfStartTimecode, NeedsAllThreeItems) {
    EXPECT_EQ(mxfStartTimecode(MxfFile({startItem(90000), baseItem(25)}).path()), "00:00:00:00");
    EXPECT_EQ(mxfStartTimecode(MxfFile({startItem(90000), dropFrameItem(1)}).path()),
              "00:00:00:00");
    EXPECT_EQ(mxfStartTimecode(MxfFile({baseItem(30), dropFrameItem(1)}).path()), "00:00:00:00");
    EXPECT_EQ(mxfStartTimecode(kMissing), "00:00:00:00");
}

TEST(MxfStartTimecode, HostileStartsAreHeldInsideTheRange) {
    EXPECT_EQ(startOf(UINT64_MAX, 25, 0), "23860:55:45:22");
    EXPECT_EQ(startOf(std::uint64_t{1} << 40U, 25, 0), "23860:55:45:22");
}

// ---- drop frame

TEST(MxfDropFrame, IsTheFlag) {
    EXPECT_TRUE(mxfIsDropFrame(MxfFile({dropFrameItem(1)}).path()));
    EXPECT_FALSE(mxfIsDropFrame(MxfFile({dropFrameItem(0)}).path()));
    EXPECT_TRUE(mxfIsDropFrame(MxfFile({dropFrameItem(255)}).path()));
    EXPECT_FALSE(mxfIsDropFrame(MxfFile({startItem(1)}).path()));
    EXPECT_FALSE(mxfIsDropFrame(kMissing));
}

// ---- the record

std::map<std::string, std::string> texts(const MetadataDictionary& values) {
    std::map<std::string, std::string> result;
    for (const auto& [name, value] : values) {
        result[name] = value.text().value_or("(none)");
    }
    return result;
}

TEST(MxfMetadata, IsReadUnderDescriptionsAndIdentifiers) {
    const MxfFile file({item(0x4401, Bytes(32, std::byte{0xAB})),
                        item(0x3C01, bytes({0, 'S', 0, 'o', 0, 'n', 0, 'y'})),
                        item(0x3C02, test::asciiBytes("Camera 1")), baseItem(25), dropFrameItem(1),
                        durationItem(93138), editRateItem(25, 1)});
    std::string umid;
    for (int i = 0; i < 32; ++i) {
        umid += "ab";
    }
    const std::map<std::string, std::string> expected = {
        {"QRXMediaMetadataStartTimecodeKey", "01:02:03:04"},
        {"UMID Number", umid},
        {"Manufacturer", "Sony"},
        {"Product", "Camera 1"},
        {"MXF Version", "N/A"},
        {"Rounded Framerate", "25"},
        {"Drop Frame", "Yes"},
        {"QRXMediaMetadataDurationKey", "01:02:5.52"},
        {"QRXMXFMediaMetadataTrackEditRateKey", "25 / 1"},
        {"QRXMXFMediaMetadataEditUnitsKey", "93138"},
        {"QRXMediaMetadataVideoFileTitleKey", "CLIP.MXF"},
    };
    EXPECT_EQ(texts(mxfMetadataDictionary(file.path(), "01:02:03:04")), expected);
}

TEST(MxfMetadata, SaysWhatTheFileDoesNot) {
    const auto values = texts(mxfMetadataDictionary(kMissing, "00:00:00:00"));
    for (const char* name : {"UMID Number", "Manufacturer", "Product", "MXF Version",
                             "Rounded Framerate", "Drop Frame"}) {
        EXPECT_EQ(values.at(name), "N/A") << name;
    }
    EXPECT_EQ(values.at("QRXMediaMetadataDurationKey"), "00:00:0.00");
    EXPECT_EQ(values.at("QRXMXFMediaMetadataTrackEditRateKey"), "1 / 0");
    EXPECT_EQ(values.at("QRXMXFMediaMetadataEditUnitsKey"), "0");
}

TEST(MxfMetadata, BooleansAreYesOnlyForOne) {
    const auto dropFrameText = [](int flag) {
        return texts(mxfMetadataDictionary(MxfFile({dropFrameItem(flag)}).path(), ""))
            .at("Drop Frame");
    };
    EXPECT_EQ(dropFrameText(1), "Yes");
    EXPECT_EQ(dropFrameText(0), "No");
    EXPECT_EQ(dropFrameText(2), "No");
}

TEST(MxfMetadata, ZeroEditRateIsAnswered) {
    const MxfFile file({editRateItem(0, 0), durationItem(5)});
    EXPECT_EQ(
        texts(mxfMetadataDictionary(file.path(), "")).at("QRXMXFMediaMetadataTrackEditRateKey"),
        "0 / 0");
}

TEST(MxfMetadata, KeptTextsOfAnotherLengthAreNotFound) {
    const MxfFile file({item(0x3C01, test::asciiBytes("Panasonic"))});
    EXPECT_EQ(texts(mxfMetadataDictionary(file.path(), "")).at("Manufacturer"), "N/A");
}

TEST(MxfMetadata, KeptWrapperTakesNoValues) {
    const MxfFile file({item(0x3C02, test::asciiBytes("Camera 1")), baseItem(25)});
    const QRXMXFMetadataWrapper wrapper = mxfMetadataWrapper(file.path(), "01:00:00:00");
    EXPECT_EQ(wrapper.metadataKeys().size(), 33U);
    for (const auto& key : wrapper.metadataKeys()) {
        EXPECT_EQ(key->keyValue(), QRXMediaMetadataNotFound);
    }
}

}  // namespace
}  // namespace qrx
