#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/PythonArchives.h"
#include "timecode/QRXTimecodeDetailsWrapper.h"

namespace qrx {
namespace {

using Wrapper = QRXTimecodeDetailsWrapper;

Wrapper fullWrapper() {
    Wrapper wrapper;
    wrapper.setFrameRate(QRXVideoFrameRate29_97);
    wrapper.setSourceFilePath("/Volumes/X/CLIP.MXF");
    wrapper.setStartTimecode("01:00:00;00");
    return wrapper;
}

std::vector<std::string> keysOf(const Wrapper::Dictionary& dictionary) {
    std::vector<std::string> keys;
    for (const auto& [key, value] : dictionary) {
        keys.push_back(key);
    }
    return keys;
}

TEST(TimecodeDetails, StartUndefined) {
    const Wrapper wrapper;
    EXPECT_EQ(wrapper.frameRate(), QRXVideoFrameRateUndefined);
    EXPECT_EQ(wrapper.sourceFilePath(), std::nullopt);
    EXPECT_EQ(wrapper.startTimecode(), std::nullopt);
}

TEST(TimecodeDetails, DictionaryRoundTripKeepsAllThree) {
    const Wrapper wrapper = fullWrapper();
    EXPECT_EQ(Wrapper::wrapperFromDictionary(wrapper.wrapperDictionary()), wrapper);
}

TEST(TimecodeDetails, DictionaryHoldsOnlyWhatIsSet) {
    EXPECT_EQ(keysOf(Wrapper().wrapperDictionary()), std::vector<std::string>{"frame"});
    Wrapper withPath;
    withPath.setSourceFilePath("");
    EXPECT_EQ(keysOf(withPath.wrapperDictionary()),
              (std::vector<std::string>{"filePath", "frame"}));
    EXPECT_EQ(Wrapper::wrapperFromDictionary(withPath.wrapperDictionary()), withPath);
}

TEST(TimecodeDetails, KeptDictionaryKeysAreNotThoseOfTheArchive) {
    const auto dictionary = fullWrapper().wrapperDictionary();
    EXPECT_EQ(keysOf(dictionary), (std::vector<std::string>{"filePath", "frame", "tc"}));
    EXPECT_EQ(std::get<std::uint64_t>(dictionary.at("frame")), 5U);
    EXPECT_EQ(std::get<std::string>(dictionary.at("filePath")), "/Volumes/X/CLIP.MXF");
    EXPECT_EQ(std::get<std::string>(dictionary.at("tc")), "01:00:00;00");
}

TEST(TimecodeDetails, MissingEntriesLeaveTheProperty) {
    EXPECT_EQ(Wrapper::wrapperFromDictionary({}), Wrapper());
    const Wrapper onlyTimecode = Wrapper::wrapperFromDictionary({{"tc", std::string("x")}});
    EXPECT_EQ(onlyTimecode.frameRate(), QRXVideoFrameRateUndefined);
    EXPECT_EQ(onlyTimecode.startTimecode(), "x");
    EXPECT_EQ(onlyTimecode.sourceFilePath(), std::nullopt);
}

TEST(TimecodeDetails, EntriesOfTheOtherTypeAndOtherKeysAreLeft) {
    EXPECT_EQ(Wrapper::wrapperFromDictionary({{"frame", std::string("5")},
                                              {"filePath", std::uint64_t{1}},
                                              {"rate", std::uint64_t{5}},
                                              {"timecode", std::string("01:00:00:00")}}),
              Wrapper());
}

TEST(TimecodeDetails, AnyRateNumberIsHeld) {
    const Wrapper wrapper = Wrapper::wrapperFromDictionary({{"frame", UINT64_MAX}});
    EXPECT_EQ(wrapper.frameRate(), UINT64_MAX);
    EXPECT_EQ(std::get<std::uint64_t>(wrapper.wrapperDictionary().at("frame")), UINT64_MAX);
}

// ---- archives

TEST(TimecodeDetailsArchive, KeepsEverything) {
    QRXTimecodeDetailsWrapper details;
    details.setFrameRate(QRXVideoFrameRate29_97);
    details.setSourceFilePath("/Volumes/X/caf\xC3\xA9.mov");
    details.setStartTimecode("01:00:00;00");
    for (const auto format : {PropertyListFormat::binary, PropertyListFormat::xml}) {
        const auto bytes = keyedArchiveOf(details, format);
        ASSERT_TRUE(bytes);
        EXPECT_EQ(QRXTimecodeDetailsWrapper::wrapperOfArchive(*bytes), details);
    }
}

TEST(TimecodeDetailsArchive, KeptKeysAreNotThoseOfTheDictionary) {
    QRXTimecodeDetailsWrapper details;
    details.setFrameRate(QRXVideoFrameRate29_97);
    details.setSourceFilePath("/a.mov");
    details.setStartTimecode("01:00:00;00");
    for (const auto format : {PropertyListFormat::binary, PropertyListFormat::xml}) {
        EXPECT_EQ(test::readByPython(keyedArchiveOf(details, format).value()),
                  R"({"$classes": ["QRXTimecodeDetailsWrapper", "NSObject"], )"
                  R"("filePath": "/a.mov", "rate": 5, "timecode": "01:00:00;00"})");
    }
}

TEST(TimecodeDetailsArchive, AbsentTextsAreNotWritten) {
    EXPECT_EQ(test::readByPython(keyedArchiveOf(QRXTimecodeDetailsWrapper()).value()),
              R"({"$classes": ["QRXTimecodeDetailsWrapper", "NSObject"], "rate": 10})");
}

TEST(TimecodeDetailsArchive, WithoutARateItIsUndefined) {
    const auto details = QRXTimecodeDetailsWrapper::wrapperOfArchive(test::writtenByPython(
        R"({"$classes": ["QRXTimecodeDetailsWrapper", "NSObject"], "timecode": "a"})",
        PropertyListFormat::xml));
    ASSERT_TRUE(details);
    EXPECT_EQ(details->frameRate(), QRXVideoFrameRateUndefined);
    EXPECT_EQ(details->startTimecode(), "a");
    EXPECT_FALSE(details->sourceFilePath());
}

TEST(TimecodeDetailsArchive, EntriesOfAnotherKindAreMissing) {
    const auto details = QRXTimecodeDetailsWrapper::wrapperOfArchive(test::writtenByPython(
        R"({"$classes": ["QRXTimecodeDetailsWrapper"], "rate": "5", "filePath": 1, "timecode": []})",
        PropertyListFormat::binary));
    EXPECT_EQ(details, QRXTimecodeDetailsWrapper());
}

TEST(TimecodeDetailsArchive, HoldsAnyStoredRate) {
    for (const std::uint64_t rate : {std::uint64_t{0}, std::uint64_t{11}, UINT64_MAX}) {
        QRXTimecodeDetailsWrapper details;
        details.setFrameRate(static_cast<QRXVideoFrameRate>(rate));
        for (const auto format : {PropertyListFormat::binary, PropertyListFormat::xml}) {
            EXPECT_EQ(QRXTimecodeDetailsWrapper::wrapperOfArchive(
                          keyedArchiveOf(details, format).value()),
                      details);
        }
    }
}

TEST(TimecodeDetailsArchive, PathThatIsNotUtf8IsKeptByteForByte) {
    QRXTimecodeDetailsWrapper details;
    details.setSourceFilePath("/Volumes/X/caf\xE9.mov");
    for (const auto format : {PropertyListFormat::binary, PropertyListFormat::xml}) {
        EXPECT_EQ(
            QRXTimecodeDetailsWrapper::wrapperOfArchive(keyedArchiveOf(details, format).value()),
            details);
    }
}

TEST(TimecodeDetailsArchive, OfAnotherClassIsNone) {
    EXPECT_FALSE(QRXTimecodeDetailsWrapper::wrapperOfArchive({}));
    EXPECT_FALSE(QRXTimecodeDetailsWrapper::wrapperOfArchive(test::writtenByPython(
        R"({"$classes": ["QRXMetadataKey", "NSObject"]})", PropertyListFormat::binary)));
}

TEST(TimecodeDetailsArchive, IsRefusedWhereverItIsCut) {
    for (const auto format : {PropertyListFormat::binary, PropertyListFormat::xml}) {
        auto bytes = keyedArchiveOf(QRXTimecodeDetailsWrapper(), format).value();
        while (bytes.back() == std::byte{'\n'})
            bytes.pop_back();
        for (std::size_t cut = 0; cut < bytes.size(); ++cut) {
            SCOPED_TRACE(cut);
            EXPECT_FALSE(QRXTimecodeDetailsWrapper::wrapperOfArchive(std::span(bytes).first(cut)));
        }
    }
}

}  // namespace
}  // namespace qrx
