#include <string>
#include <vector>

#include <gtest/gtest.h>

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

}  // namespace
}  // namespace qrx
