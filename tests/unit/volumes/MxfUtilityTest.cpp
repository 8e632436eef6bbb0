#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "metadata/MxfMetadataIdentifiers.h"
#include "metadata/QRXMXFMetadataWrapper.h"
#include "support/TemporaryFolder.h"
#include "unit/readers/MxfTestSupport.h"
#include "volumes/QRXMXFUtility.h"

namespace qrx {
namespace {

using test::asText;
using test::baseItem;
using test::bytes;
using test::Bytes;
using test::dropFrameItem;
using test::item;
using test::joined;
using test::startItem;

const Bytes& signature() {
    static const Bytes kSignature =
        bytes({0x06, 0x0E, 0x2B, 0x34, 0x02, 0x05, 0x01, 0x01, 0x0D, 0x01, 0x02});
    return kSignature;
}

/// Start 90000, rounded base 30, not drop frame.
Bytes clipItems() {
    return joined({Bytes(64), startItem(90000), baseItem(30), dropFrameItem(0),
                   item(0x4401, Bytes(32, std::byte{0xAB})), Bytes(64)});
}

class MxfUtility : public testing::Test {
protected:
    /// Named as no MXF file is, for the name does not matter.
    FilePath clip() const {
        return folder_.write("clip.bin", asText(joined({signature(), clipItems()})));
    }
    /// The same items behind no signature.
    FilePath unsignedClip() const { return folder_.write("CLIP.MXF", asText(clipItems())); }

    test::TemporaryFolder folder_;
    QRXMXFUtility utility_;
};

TEST_F(MxfUtility, ClaimsWhatBeginsWithTheSignature) {
    EXPECT_TRUE(utility_.filePathMatchesVolumeStructure(clip()));
    EXPECT_FALSE(utility_.filePathMatchesVolumeStructure(unsignedClip()));
    EXPECT_TRUE(
        utility_.filePathMatchesVolumeStructure(folder_.write("eleven", asText(signature()))));
    EXPECT_FALSE(utility_.filePathMatchesVolumeStructure(
        folder_.write("ten.MXF", asText(signature()).substr(0, 10))));
    EXPECT_FALSE(utility_.filePathMatchesVolumeStructure(folder_.write("empty.MXF")));
    EXPECT_FALSE(utility_.filePathMatchesVolumeStructure(folder_ / "missing.MXF"));
    EXPECT_FALSE(utility_.filePathMatchesVolumeStructure(folder_.path()));
    EXPECT_TRUE(utility_.filePathMatchesVolumeStructure(folder_.link("link.MXF", "eleven")));
}

TEST_F(MxfUtility, FifoIsNotOpened) {
    const FilePath fifo = folder_ / "fifo.MXF";
    ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
    EXPECT_FALSE(utility_.filePathMatchesVolumeStructure(fifo));
    EXPECT_FALSE(utility_.uniqueIdentifierForVideoFile(fifo));
}

TEST_F(MxfUtility, AnswersFromTheBytes) {
    const FilePath file = clip();
    EXPECT_EQ(utility_.framerateForVideoFile(file), QRXVideoFrameRate30);
    EXPECT_EQ(utility_.startTimecodeForVideoFile(file), "00:50:03;13");
    EXPECT_FALSE(utility_.videoFileIsDropFrame(file));
    std::string umid;
    for (int i = 0; i < 32; ++i) {
        umid += "ab";
    }
    EXPECT_EQ(utility_.uniqueIdentifierForVideoFile(file), umid);
    EXPECT_EQ(utility_.umidForFilePath(file), umid);
}

TEST_F(MxfUtility, KeptTimecodeIsDropFrameThoughTheFlagSaysNo) {
    EXPECT_EQ(utility_.startTimecodeForVideoFile(clip()).at(8), ';');
}

TEST_F(MxfUtility, RateTimecodeAndDropFrameNeedAClaimedFileAndTheUmidDoesNot) {
    const FilePath file = unsignedClip();
    EXPECT_EQ(utility_.framerateForVideoFile(file), QRXVideoFrameRateUndefined);
    EXPECT_EQ(utility_.startTimecodeForVideoFile(file), "00:00:00:00");
    EXPECT_FALSE(utility_.videoFileIsDropFrame(file));
    EXPECT_TRUE(utility_.uniqueIdentifierForVideoFile(file));
}

TEST_F(MxfUtility, DropFrameIsTheFlag) {
    const FilePath file =
        folder_.write("drop.mxf", asText(joined({signature(), dropFrameItem(1)})));
    EXPECT_TRUE(utility_.videoFileIsDropFrame(file));
}

TEST_F(MxfUtility, KeptMetadataHasEveryKeyAndNoValue) {
    const QRXMetadataWrapper metadata = utility_.metadataWrapperForVideoFilePath(clip());
    EXPECT_EQ(metadata.metadataKeys().size(), 33U);
    for (const auto& row : QRXMXFMetadataWrapper::keyDescriptionDictionary()) {
        EXPECT_FALSE(metadata.valueForKey(row.identifier)) << row.identifier;
    }
}

TEST_F(MxfUtility, SearchesTellPlacesAndValues) {
    const Bytes data = joined({bytes({9, 9}), startItem(90000)});
    const QRXMXFKey key =
        QRXMXFMetadataWrapper::mxfKeyForMetadataAttributeKey(QRXMediaMetadataStartTimecodeKey);
    EXPECT_EQ(utility_.byteSequenceLocation(key.localKey(), data), 2U);
    EXPECT_EQ(utility_.byteSequenceLocation(bytes({1, 2, 3}), data),
              static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max()));
    EXPECT_EQ(utility_.valueForKey(key, data, true), "90000");
    EXPECT_EQ(utility_.valueForKey(key, data, false), "0000000000015f90");
    EXPECT_EQ(utility_.valueForKeyInFile(key, clip(), true), "90000");
    EXPECT_FALSE(utility_.valueForKeyInFile(key, folder_ / "missing", true));
    EXPECT_FALSE(utility_.valueForKey(QRXMXFKey(), data, true));
}

TEST_F(MxfUtility, BytesBetweenAKeyAndTheNextLabel) {
    const Bytes key = bytes({0x15, 0x01});
    const Bytes data = joined({Bytes(4), key, bytes({1, 2, 3, 0x06, 0x0E, 0x2B, 0x34}), Bytes(8)});
    EXPECT_FALSE(utility_.hexValuesFollowingKey(key, data, -1));  // fewer than 1,024 bytes follow
    Bytes large = data;
    large.resize(4096);
    const auto between = utility_.hexValuesFollowingKey(key, large, -1);
    ASSERT_TRUE(between);
    EXPECT_EQ(Bytes(between->begin(), between->end()), bytes({1, 2, 3}));
    EXPECT_FALSE(utility_.hexValuesFollowingKey(bytes({7, 7}), large, -1));
}

TEST_F(MxfUtility, DurationAndEditUnitOfAFileThatDoesNotSay) {
    const FilePath file = clip();
    EXPECT_EQ(utility_.durationInEditUnitsForVideoFile(file), 0);
    EXPECT_EQ(utility_.editUnitNumeratorForVideoFile(file), 0);
    EXPECT_EQ(utility_.editUnitDenominatorForVideoFile(file), 1);
    const FilePath rated = folder_.write(
        "rated.mxf",
        asText(joined({signature(), test::editRateItem(25, 1), test::durationItem(250)})));
    EXPECT_EQ(utility_.durationInEditUnitsForVideoFile(rated), 250);
    EXPECT_EQ(utility_.editUnitNumeratorForVideoFile(rated), 1);
    EXPECT_EQ(utility_.editUnitDenominatorForVideoFile(rated), 25);
}

}  // namespace
}  // namespace qrx
