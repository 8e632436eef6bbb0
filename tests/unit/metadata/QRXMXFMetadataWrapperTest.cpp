#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "foundation/QRXConversionUtility.h"
#include "metadata/QRXMXFMetadataWrapper.h"

namespace qrx {
namespace {

using Wrapper = QRXMXFMetadataWrapper;

std::vector<std::string> identifiersOf(const Wrapper::MxfKeys& keys) {
    std::vector<std::string> identifiers;
    for (const QRXMXFKey& key : keys) {
        identifiers.push_back(key.keyIdentifier().value());
    }
    return identifiers;
}

std::string hex(const QRXMXFKey::Bytes& bytes) {
    return QRXConversionUtility::dataToString(bytes);
}

// ---- descriptions

TEST(MxfMetadataWrapper, AddsItsIdentifiersBehindTheBaseTable) {
    const MetadataKeyTable base = QRXMetadataWrapper::keyDescriptionDictionary();
    const MetadataKeyTable table = Wrapper::keyDescriptionDictionary();
    ASSERT_EQ(base.size(), 25U);
    ASSERT_EQ(table.size(), 33U);
    for (std::size_t i = 0; i < base.size(); ++i) {
        EXPECT_EQ(table[i].identifier, base[i].identifier);
    }
    const std::vector<std::pair<std::string, std::string>> added = {
        {"QRXMXFMediaMetadataRoundedVideoFrameRateKey", "Rounded Framerate"},
        {"QRXMXFMediaMetadataSMPTEPrefixKey", "SMPTE Prefix"},
        {"QRXMXFMediaMetadataHeaderKey", "MXF Header"},
        {"QRXMXFMediaMetadataVersionKey", "MXF Version"},
        {"QRXMXFMediaMetadataUMIDKey", "UMID Number"},
        {"QRXMXFMediaMetadataEditUnitsKey", "Edit Units"},
        {"QRXMXFMediaMetadataUUIDKey", "Device Id"},
        {"QRXMXFMediaMetadataTrackEditRateKey", "Track Edit Rate"},
    };
    for (std::size_t i = 0; i < added.size(); ++i) {
        EXPECT_EQ(table[25 + i].identifier, added[i].first);
        EXPECT_EQ(table[25 + i].description, added[i].second);
        EXPECT_EQ(Wrapper::descriptionForKey(added[i].first), added[i].second);
        EXPECT_EQ(QRXMetadataWrapper::descriptionForKey(added[i].first), std::nullopt);
    }
}

TEST(MxfMetadataWrapper, LooksDescriptionsUpInTheLargerTable) {
    EXPECT_EQ(Wrapper::descriptionForKey("QRXMediaMetadataUMIDKey"), "UMID Number");
    EXPECT_EQ(Wrapper::descriptionForKey("QRXMXFMediaMetadataUUIDKey"), "Device Id");
    EXPECT_EQ(Wrapper::descriptionForKey("nobody"), std::nullopt);
    EXPECT_EQ(Wrapper::descriptionForKey(""), std::nullopt);
}

TEST(MxfMetadataWrapper, HasEveryKeyNotFoundAtFirst) {
    const Wrapper wrapper;
    EXPECT_EQ(wrapper.metadataKeys().size(), 33U);
    for (const auto& row : Wrapper::keyDescriptionDictionary()) {
        SCOPED_TRACE(row.identifier);
        EXPECT_TRUE(wrapper.keyExistsWithIdentifier(row.identifier));
        EXPECT_EQ(wrapper.valueForKey(row.identifier), std::nullopt);
    }
}

TEST(MxfMetadataWrapper, KeptDictionaryIsNotTakenOver) {
    const Wrapper wrapper(MetadataDictionary{{"QRXMXFMediaMetadataUUIDKey", "x"}});
    EXPECT_EQ(wrapper.metadataKeys().size(), 33U);
    EXPECT_EQ(wrapper.valueForKey("QRXMXFMediaMetadataUUIDKey"), std::nullopt);
}

TEST(MxfMetadataWrapper, TakesValuesOfItsOwnKeys) {
    Wrapper wrapper;
    wrapper.replaceValueForKeyEntryWithIdentifier("QRXMXFMediaMetadataUUIDKey", "abc");
    EXPECT_EQ(wrapper.valueForKey("QRXMXFMediaMetadataUUIDKey"), "abc");
}

TEST(MxfMetadataWrapper, FillingAnewKeepsTheLargerTable) {
    Wrapper wrapper;
    wrapper.replaceValueForKeyEntryWithIdentifier("QRXMXFMediaMetadataUUIDKey", "abc");
    wrapper.initializeMetadataKeys();
    EXPECT_EQ(wrapper.metadataKeys().size(), 33U);
    EXPECT_EQ(wrapper.valueForKey("QRXMXFMediaMetadataUUIDKey"), std::nullopt);
}

// ---- the key table

struct KeyRow {
    const char* identifier;
    const char* globalKey;
    const char* localKey;
    const char* length;
    const char* description;
};

class MxfKeyTable : public testing::TestWithParam<KeyRow> {};

TEST_P(MxfKeyTable, SaysHowTheItemIsFound) {
    const KeyRow& row = GetParam();
    const QRXMXFKey key = Wrapper::mxfKeyForMetadataAttributeKey(row.identifier);
    EXPECT_EQ(key.keyIdentifier(), row.identifier);
    EXPECT_EQ(key.keyDescription(), row.description);
    EXPECT_EQ(key.keyValue(), QRXMediaMetadataNotFound);
    EXPECT_EQ(hex(key.globalKey()), row.globalKey);
    EXPECT_EQ(hex(key.localKey()), row.localKey);
    EXPECT_EQ(hex(key.hexLocalKeyLength()), row.length);
}

constexpr KeyRow kKeyRows[] = {
    {"QRXMXFMediaMetadataRoundedVideoFrameRateKey", "060e2b34010101020601010406090000", "1502",
     "0002", "Rounded Framerate"},
    {"QRXMediaMetadataStartTimecodeKey", "060e2b34010101020404010102060000", "1501", "0008",
     "Start Timecode"},
    {"QRXMediaMetadataDropFrameKey", "060e2b34010101020702010301050000", "1503", "0001",
     "Drop Frame"},
    {"QRXMediaMetadataManufacturerNameKey", "060e2b34010101020520070101000000", "3c01", "0008",
     "Manufacturer"},
    {"QRXMediaMetadataProductsNameKey", "060e2b34010101020520070102010000", "3c02", "0008",
     "Product"},
    {"QRXMXFMediaMetadataVersionKey", "060e2b34010101020520070103010000", "3c04", "0008",
     "MXF Version"},
    {"QRXMediaMetadataModificationDateKey", "060e2b34010101020702011001030000", "4404", "",
     "Date Modified"},
    {"QRXMediaMetadataUMIDKey", "060e2b34010101040103040400000000", "4401", "0020", "UMID Number"},
    {"QRXMXFMediaMetadataEditUnitsKey", "060e2b34010101050404040205000000", "3f0b", "0008",
     "Edit Units"},
    {"QRXMediaMetadataDurationKey", "060e2b34010101020407010000000000", "0202", "0008", "Duration"},
    {"QRXMediaMetadataVideoBitRateKey", "060e2b34010101050402030201000000", "3d09", "0004",
     "Video Bitrate"},
    {"QRXMXFMediaMetadataUUIDKey", "060e2b34010101020520070105010000", "3c05", "0010", "Device Id"},
    {"QRXMXFMediaMetadataTrackEditRateKey", "060e2b34010101020104010300000000", "4b01", "0008",
     "Track Edit Rate"},
    {"QRXMXFMediaMetadataSMPTEPrefixKey", "060e2b34", "", "", "SMPTE Prefix"},
    {"QRXMXFMediaMetadataHeaderKey", "060e2b34020501010d0102", "", "", "MXF Header"},
    // described, but not found by bytes
    {"QRXMXFMediaMetadataUMIDKey", "", "", "", "UMID Number"},
    {"QRXMediaMetadataVideoCodecTitleKey", "", "", "", "Video Codec"},
};

INSTANTIATE_TEST_SUITE_P(Table, MxfKeyTable, testing::ValuesIn(kKeyRows),
                         [](const auto& row) { return std::string(row.param.identifier); });

TEST(MxfKeyTable, UnknownIdentifierGivesAKeyWithoutBytes) {
    for (const std::string identifier : {"", "nobody"}) {
        const QRXMXFKey key = Wrapper::mxfKeyForMetadataAttributeKey(identifier);
        EXPECT_EQ(key.keyIdentifier(), identifier);
        EXPECT_EQ(key.keyDescription(), std::nullopt);
        EXPECT_EQ(key.keyValue(), QRXMediaMetadataNotFound);
        EXPECT_TRUE(key.globalKey().empty());
        EXPECT_TRUE(key.localKey().empty());
        EXPECT_TRUE(key.hexLocalKeyLength().empty());
    }
}

TEST(MxfKeyTable, OnlyTheIdentifiersAboveHaveBytes) {
    std::size_t found = 0;
    for (const auto& row : Wrapper::keyDescriptionDictionary()) {
        found += Wrapper::mxfKeyForMetadataAttributeKey(row.identifier).globalKey().empty() ? 0 : 1;
    }
    EXPECT_EQ(found, 15U);
}

TEST(MxfKeyTable, KeptModificationDateHasNoLength) {
    EXPECT_TRUE(Wrapper::mxfKeyForMetadataAttributeKey("QRXMediaMetadataModificationDateKey")
                    .hexLocalKeyLength()
                    .empty());
}

TEST(MxfKeyTable, LabelsTellTheItemsApart) {
    for (std::size_t i = 0; i < 15; ++i) {
        for (std::size_t j = 0; j < i; ++j) {
            EXPECT_NE(Wrapper::mxfKeyForMetadataAttributeKey(kKeyRows[i].identifier),
                      Wrapper::mxfKeyForMetadataAttributeKey(kKeyRows[j].identifier));
        }
    }
}

// ---- lists

TEST(MxfKeyLists, Members) {
    using Identifiers = std::vector<std::string>;
    EXPECT_EQ(identifiersOf(Wrapper::booleanKeys()), Identifiers{"QRXMediaMetadataDropFrameKey"});
    const Identifiers texts = {"QRXMediaMetadataManufacturerNameKey",
                               "QRXMediaMetadataProductsNameKey", "QRXMXFMediaMetadataVersionKey"};
    EXPECT_EQ(identifiersOf(Wrapper::keysWithAsciiHex()), texts);
    EXPECT_EQ(identifiersOf(Wrapper::keysWithHexValues()),
              (Identifiers{"QRXMediaMetadataUMIDKey", texts[0], texts[1], texts[2]}));
    EXPECT_EQ(identifiersOf(Wrapper::keysWithNonHexValues()),
              (Identifiers{"QRXMXFMediaMetadataRoundedVideoFrameRateKey",
                           "QRXMediaMetadataDropFrameKey"}));
    EXPECT_EQ(identifiersOf(Wrapper::keysWithValues()),
              (Identifiers{"QRXMediaMetadataUMIDKey", texts[0], texts[1], texts[2],
                           "QRXMXFMediaMetadataRoundedVideoFrameRateKey",
                           "QRXMediaMetadataDropFrameKey"}));
}

TEST(MxfKeyLists, EveryMemberCanBeFoundByBytes) {
    for (const QRXMXFKey& key : Wrapper::keysWithValues()) {
        EXPECT_EQ(key.globalKey().size(), 16U);
        EXPECT_EQ(key.localKey().size(), 2U);
        EXPECT_EQ(key.hexLocalKeyLength().size(), 2U);
    }
}

}  // namespace
}  // namespace qrx
