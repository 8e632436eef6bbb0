#include <algorithm>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "metadata/QRXMetadataWrapper.h"

namespace qrx {
namespace {

struct Row {
    const char* name;  ///< of the test row: the identifier without its beginning
    std::string_view identifier;
    const char* text;
    const char* description;
};

const Row kRows[] = {
    {"VideoCodecTitle", QRXMediaMetadataVideoCodecTitleKey, "QRXMediaMetadataVideoCodecTitleKey",
     "Video Codec"},
    {"AudioCodecTitle", QRXMediaMetadataAudioCodecTitleKey, "QRXMediaMetadataAudioCodecTitleKey",
     "Audio Codec"},
    {"CodecDimensions", QRXMediaMetadataCodecDimensionsKey, "QRXMediaMetadataCodecDimensionsKey",
     "Dimensions"},
    {"CodecDimensionsDescription", QRXMediaMetadataCodecDimensionsDescriptionKey,
     "QRXMediaMetadataCodecDimensionsDescriptionKey", "Dimensions"},
    {"CodecWidth", QRXMediaMetadataCodecWidthKey, "QRXMediaMetadataCodecWidthKey", "Width"},
    {"CodecHeight", QRXMediaMetadataCodecHeightKey, "QRXMediaMetadataCodecHeightKey", "Height"},
    {"VideoSampleRate", QRXMediaMetadataVideoSampleRateKey, "QRXMediaMetadataVideoSampleRateKey",
     "Video Sample Rate"},
    {"AudioSampleRate", QRXMediaMetadataAudioSampleRateKey, "QRXMediaMetadataAudioSampleRateKey",
     "Audio Sample Rate"},
    {"VideoBitRate", QRXMediaMetadataVideoBitRateKey, "QRXMediaMetadataVideoBitRateKey",
     "Video Bitrate"},
    {"AudioBitRate", QRXMediaMetadataAudioBitRateKey, "QRXMediaMetadataAudioBitRateKey",
     "Audio Bitrate"},
    {"VideoDuration", QRXMediaMetadataVideoDurationKey, "QRXMediaMetadataVideoDurationKey",
     "Duration"},
    {"FileSize", QRXMediaMetadataFileSizeKey, "QRXMediaMetadataFileSizeKey", "File Size"},
    {"GopSize", QRXMediaMetadataGopSizeKey, "QRXMediaMetadataGopSizeKey", "Gop Size"},
    {"VideoFileTitle", QRXMediaMetadataVideoFileTitleKey, "QRXMediaMetadataVideoFileTitleKey",
     "File"},
    {"StartTimecode", QRXMediaMetadataStartTimecodeKey, "QRXMediaMetadataStartTimecodeKey",
     "Start Timecode"},
    {"EndTimecode", QRXMediaMetadataEndTimecodeKey, "QRXMediaMetadataEndTimecodeKey",
     "Out Timecode"},
    {"AudioChannels", QRXMediaMetadataAudioChannelsKey, "QRXMediaMetadataAudioChannelsKey",
     "Audio Channels"},
    {"VideoFrameRate", QRXMediaMetadataVideoFrameRate, "QRXMediaMetadataVideoFrameRate",
     "Frame Rate"},
    {"DropFrame", QRXMediaMetadataDropFrameKey, "QRXMediaMetadataDropFrameKey", "Drop Frame"},
    {"ManufacturerName", QRXMediaMetadataManufacturerNameKey, "QRXMediaMetadataManufacturerNameKey",
     "Manufacturer"},
    {"ProductsName", QRXMediaMetadataProductsNameKey, "QRXMediaMetadataProductsNameKey", "Product"},
    {"UMID", QRXMediaMetadataUMIDKey, "QRXMediaMetadataUMIDKey", "UMID Number"},
    {"ModificationDate", QRXMediaMetadataModificationDateKey, "QRXMediaMetadataModificationDateKey",
     "Date Modified"},
    {"CreationDate", QRXMediaMetadataCreationDateKey, "QRXMediaMetadataCreationDateKey",
     "Date Created"},
    {"Duration", QRXMediaMetadataDurationKey, "QRXMediaMetadataDurationKey", "Duration"},
};
static_assert(std::size(kRows) == 25);

class DescriptionTable : public testing::TestWithParam<Row> {};

TEST_P(DescriptionTable, TheIdentifiersTextIsItsOwnName) {
    EXPECT_EQ(GetParam().identifier, GetParam().text);
}

TEST_P(DescriptionTable, DescribesTheIdentifier) {
    EXPECT_EQ(QRXMetadataWrapper::descriptionForKey(GetParam().identifier), GetParam().description);
}

TEST_P(DescriptionTable, AFreshWrapperHasTheKeyWithoutAValue) {
    const QRXMetadataWrapper wrapper;
    EXPECT_TRUE(wrapper.keyExistsWithIdentifier(GetParam().identifier));
    EXPECT_EQ(wrapper.valueForKey(GetParam().identifier), std::nullopt);
}

TEST_P(DescriptionTable, AValueThatIsSetIsFound) {
    QRXMetadataWrapper wrapper;
    wrapper.replaceValueForKeyEntryWithIdentifier(GetParam().identifier, "value");
    EXPECT_EQ(wrapper.valueForKey(GetParam().identifier), "value");
}

INSTANTIATE_TEST_SUITE_P(Table, DescriptionTable, testing::ValuesIn(kRows),
                         [](const auto& row) { return std::string(row.param.name); });

constexpr std::string_view kTitle = QRXMediaMetadataVideoFileTitleKey;
constexpr std::string_view kSize = QRXMediaMetadataFileSizeKey;

std::shared_ptr<QRXMetadataKey> keyOf(const char* identifier, const char* value) {
    return std::make_shared<QRXMetadataKey>(identifier, "", value);
}

std::vector<std::string> identifiersOf(const QRXMetadataWrapper& wrapper) {
    std::vector<std::string> identifiers;
    for (const auto& key : wrapper.metadataKeys()) {
        identifiers.push_back(key->keyIdentifier().value_or("(absent)"));
    }
    return identifiers;
}

TEST(MetadataWrapper, TheTableStandsInItsOrder) {
    const auto table = QRXMetadataWrapper::keyDescriptionDictionary();
    ASSERT_EQ(table.size(), std::size(kRows));
    for (std::size_t i = 0; i < table.size(); ++i) {
        EXPECT_EQ(table[i].identifier, kRows[i].text);
        EXPECT_EQ(table[i].description, kRows[i].description);
    }
}

TEST(MetadataWrapper, TheTableIsMadeAnewOnEachCall) {
    auto table = QRXMetadataWrapper::keyDescriptionDictionary();
    table.clear();
    EXPECT_EQ(QRXMetadataWrapper::keyDescriptionDictionary().size(), 25U);
}

TEST(MetadataWrapper, KeptTwoPairsShareADescription) {
    std::multiset<std::string> descriptions;
    for (const auto& row : QRXMetadataWrapper::keyDescriptionDictionary()) {
        descriptions.insert(row.description);
    }
    EXPECT_EQ(descriptions.count("Dimensions"), 2U);
    EXPECT_EQ(descriptions.count("Duration"), 2U);
}

TEST(MetadataWrapper, KeptTheFrameRateAloneHasNoKeySuffix) {
    for (const auto& row : QRXMetadataWrapper::keyDescriptionDictionary()) {
        EXPECT_EQ(row.identifier.ends_with("Key"),
                  row.identifier != "QRXMediaMetadataVideoFrameRate");
    }
}

TEST(MetadataWrapper, AnUnknownIdentifierHasNoDescription) {
    EXPECT_EQ(QRXMetadataWrapper::descriptionForKey("Unknown"), std::nullopt);
    EXPECT_EQ(QRXMetadataWrapper::descriptionForKey(""), std::nullopt);
}

TEST(MetadataWrapper, DatesHaveOneForm) {
    EXPECT_EQ(QRXMetadataWrapper::dateKeyCalendarFormat(), "%m-%d-%Y-%Hh-%Mm-%Ss");
}

TEST(MetadataWrapper, FreshKeysCarryTheirDescriptionAndTheMarker) {
    const QRXMetadataWrapper wrapper;
    ASSERT_EQ(wrapper.metadataKeys().size(), 25U);
    for (const auto& key : wrapper.metadataKeys()) {
        EXPECT_EQ(key->keyDescription(),
                  QRXMetadataWrapper::descriptionForKey(key->keyIdentifier().value()));
        EXPECT_EQ(key->keyValue(), QRXMediaMetadataNotFound);
    }
}

TEST(MetadataWrapper, KeptTheDictionaryAtConstructionIsNotApplied) {
    const MetadataDictionary values{{std::string(kTitle), "clip.mov"}};
    QRXMetadataWrapper wrapper(values);
    EXPECT_EQ(wrapper.metadataKeys().size(), 25U);
    EXPECT_EQ(wrapper.valueForKey(kTitle), std::nullopt);
    wrapper.updateMetadataKeyValuesFromDictionary(values);
    EXPECT_EQ(wrapper.valueForKey(kTitle), "clip.mov");
}

TEST(MetadataWrapper, ANumberIsStoredAsItsDecimalText) {
    QRXMetadataWrapper wrapper;
    wrapper.replaceValueForKeyEntryWithIdentifier(kSize, 1234567890123);
    EXPECT_EQ(wrapper.valueForKey(kSize), "1234567890123");
    wrapper.replaceValueForKeyEntryWithIdentifier(kSize, 29.97);
    EXPECT_EQ(wrapper.valueForKey(kSize), "29.97");
}

TEST(MetadataWrapper, AListChangesNothing) {
    QRXMetadataWrapper wrapper;
    wrapper.replaceValueForKeyEntryWithIdentifier(kTitle, "clip.mov");
    wrapper.replaceValueForKeyEntryWithIdentifier(kTitle, std::vector<std::string>{"other"});
    wrapper.replaceValueForKeyEntryWithIdentifier(kTitle, std::nullopt);
    EXPECT_EQ(wrapper.valueForKey(kTitle), "clip.mov");
}

TEST(MetadataWrapper, AnUnknownIdentifierChangesNothing) {
    QRXMetadataWrapper wrapper;
    wrapper.replaceValueForKeyEntryWithIdentifier("Unknown", "value");
    EXPECT_FALSE(wrapper.keyExistsWithIdentifier("Unknown"));
    EXPECT_EQ(wrapper.metadataKeys().size(), 25U);
    for (const auto& key : wrapper.metadataKeys())
        EXPECT_EQ(key->keyValue(), QRXMediaMetadataNotFound);
}

TEST(MetadataWrapper, KeptTheMarkerAsAValueReadsAsAbsent) {
    QRXMetadataWrapper wrapper;
    wrapper.replaceValueForKeyEntryWithIdentifier(kTitle, "clip.mov");
    wrapper.replaceValueForKeyEntryWithIdentifier(kTitle, "QRXMediaMetadataNotFound");
    EXPECT_EQ(wrapper.valueForKey(kTitle), std::nullopt);
    EXPECT_TRUE(wrapper.keyExistsWithIdentifier(kTitle));
}

TEST(MetadataWrapper, AnEmptyTextIsAValue) {
    QRXMetadataWrapper wrapper;
    wrapper.replaceValueForKeyEntryWithIdentifier(kTitle, "");
    EXPECT_EQ(wrapper.valueForKey(kTitle), "");
}

TEST(MetadataWrapper, EveryKeyOfTheIdentifierIsSet) {
    QRXMetadataWrapper wrapper;
    const auto first = keyOf("id", "1");
    const auto second = keyOf("id", "2");
    wrapper.setMetadataKeys({first, keyOf("other", "3"), second});
    wrapper.replaceValueForKeyEntryWithIdentifier("id", "new");
    EXPECT_EQ(first->keyValue(), "new");
    EXPECT_EQ(second->keyValue(), "new");
    EXPECT_EQ(wrapper.valueForKey("other"), "3");
}

TEST(MetadataWrapper, TheFirstKeyWithAValueAnswers) {
    QRXMetadataWrapper wrapper;
    wrapper.setMetadataKeys(
        {keyOf("id", "QRXMediaMetadataNotFound"), keyOf("id", "first"), keyOf("id", "second")});
    EXPECT_EQ(wrapper.valueForKey("id"), "first");
}

TEST(MetadataWrapper, KeptAKeyWithoutAValueIsUnderTheEmptyIdentifier) {
    QRXMetadataWrapper wrapper;
    wrapper.setMetadataKeys({std::make_shared<QRXMetadataKey>("id", "", std::nullopt)});
    EXPECT_FALSE(wrapper.keyExistsWithIdentifier("id"));
    EXPECT_TRUE(wrapper.keyExistsWithIdentifier(""));
    EXPECT_EQ(wrapper.valueForKey(""), std::nullopt);
}

TEST(MetadataWrapper, IdentifiersAreComparedExactly) {
    QRXMetadataWrapper wrapper;
    wrapper.setMetadataKeys({keyOf("id", "value")});
    EXPECT_FALSE(wrapper.keyExistsWithIdentifier("ID"));
    EXPECT_FALSE(wrapper.keyExistsWithIdentifier("i"));
    EXPECT_FALSE(wrapper.keyExistsWithIdentifier("id "));
    EXPECT_FALSE(wrapper.keyExistsWithIdentifier(""));
}

TEST(MetadataWrapper, TheListThatWasHandedOutDoesNotGrow) {
    QRXMetadataWrapper wrapper;
    QRXMetadataWrapper other;
    other.setMetadataKeys({keyOf("id", "value")});
    const auto before = wrapper.metadataKeys();
    wrapper.addMissingKeysFoundInWrapper(other);
    EXPECT_EQ(before.size(), 25U);
    EXPECT_EQ(wrapper.metadataKeys().size(), 26U);
}

TEST(MetadataWrapper, MissingKeysAreAppendedInTheOthersOrder) {
    QRXMetadataWrapper wrapper;
    wrapper.setMetadataKeys({keyOf("b", "1")});
    QRXMetadataWrapper other;
    other.setMetadataKeys({keyOf("c", "2"), keyOf("b", "3"), keyOf("a", "4"), keyOf("c", "5")});
    wrapper.addMissingKeysFoundInWrapper(other);
    EXPECT_EQ(identifiersOf(wrapper), (std::vector<std::string>{"b", "c", "a"}));
    EXPECT_EQ(wrapper.valueForKey("b"), "1");
    EXPECT_EQ(wrapper.valueForKey("c"), "2");
}

TEST(MetadataWrapper, AppendedKeysAreSharedNotCopied) {
    QRXMetadataWrapper wrapper;
    QRXMetadataWrapper other;
    other.setMetadataKeys({keyOf("id", "value")});
    wrapper.addMissingKeysFoundInWrapper(other);
    EXPECT_EQ(wrapper.metadataKeys().back(), other.metadataKeys().front());
    wrapper.replaceValueForKeyEntryWithIdentifier("id", "changed");
    EXPECT_EQ(other.valueForKey("id"), "changed");
}

TEST(MetadataWrapper, MergingTakesWhatTheOtherFound) {
    QRXMetadataWrapper wrapper;
    wrapper.replaceValueForKeyEntryWithIdentifier(kTitle, "here");
    wrapper.replaceValueForKeyEntryWithIdentifier(kSize, "1");
    QRXMetadataWrapper other;
    other.replaceValueForKeyEntryWithIdentifier(kTitle, "there");
    wrapper.replaceExistingKeysWithThoseInWrapper(other);
    EXPECT_EQ(wrapper.valueForKey(kTitle), "there");
    EXPECT_EQ(wrapper.valueForKey(kSize), "1") << "what the other did not find stays";
    EXPECT_EQ(wrapper.metadataKeys().size(), 25U);
    EXPECT_EQ(other.valueForKey(kSize), std::nullopt);
}

TEST(MetadataWrapper, MergingAppendsWhatIsMissingFoundOrNot) {
    QRXMetadataWrapper wrapper;
    QRXMetadataWrapper other;
    other.setMetadataKeys({keyOf("found", "value"), keyOf("lost", "QRXMediaMetadataNotFound")});
    wrapper.replaceExistingKeysWithThoseInWrapper(other);
    EXPECT_EQ(wrapper.valueForKey("found"), "value");
    EXPECT_TRUE(wrapper.keyExistsWithIdentifier("lost"));
    EXPECT_EQ(wrapper.valueForKey("lost"), std::nullopt);
}

TEST(MetadataWrapper, MergingWithItselfChangesNothing) {
    QRXMetadataWrapper wrapper;
    wrapper.replaceValueForKeyEntryWithIdentifier(kTitle, "here");
    wrapper.replaceExistingKeysWithThoseInWrapper(wrapper);
    EXPECT_EQ(wrapper.metadataKeys().size(), 25U);
    EXPECT_EQ(wrapper.valueForKey(kTitle), "here");
}

TEST(MetadataWrapper, InitialisingAgainForgetsEverything) {
    QRXMetadataWrapper wrapper;
    wrapper.replaceValueForKeyEntryWithIdentifier(kTitle, "here");
    wrapper.initializeMetadataKeys();
    EXPECT_EQ(wrapper.valueForKey(kTitle), std::nullopt);
    wrapper.setMetadataKeys({});
    wrapper.initializeMetadataKeys();
    EXPECT_EQ(wrapper.metadataKeys().size(), 25U);
}

TEST(MetadataWrapper, MovesWithItsKeys) {
    QRXMetadataWrapper wrapper;
    wrapper.replaceValueForKeyEntryWithIdentifier(kTitle, "here");
    const QRXMetadataWrapper moved = std::move(wrapper);
    EXPECT_EQ(moved.valueForKey(kTitle), "here");
}

/// A class with a table of its own: one row more.
class WiderWrapper : public QRXMetadataWrapper {
public:
    WiderWrapper() : QRXMetadataWrapper(keyDescriptionDictionary()) {}

    static MetadataKeyTable keyDescriptionDictionary() {
        auto table = QRXMetadataWrapper::keyDescriptionDictionary();
        table.push_back({"Wider", "One more"});
        return table;
    }
};

TEST(MetadataWrapper, ASubclassHasTheKeysOfItsOwnTable) {
    WiderWrapper wrapper;
    EXPECT_EQ(wrapper.metadataKeys().size(), 26U);
    EXPECT_TRUE(wrapper.keyExistsWithIdentifier("Wider"));
    wrapper.replaceValueForKeyEntryWithIdentifier("Wider", "value");
    EXPECT_EQ(wrapper.valueForKey("Wider"), "value");

    QRXMetadataWrapper& base = wrapper;
    base.initializeMetadataKeys();
    EXPECT_EQ(base.metadataKeys().size(), 26U) << "also when it is asked through the base";
}

}  // namespace
}  // namespace qrx
