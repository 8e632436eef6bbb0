#include <gtest/gtest.h>

#include "volumes/JvcTimecode.h"

namespace qrx {
namespace {

TEST(JvcTimecode, KeptWithoutDropFrameItIsWrittenAsDropFrame) {
    EXPECT_EQ(timecodeInJvcTag(R"(<TimeCode startTc="01000000"></TimeCode>)"), "01:00:00;00");
    EXPECT_EQ(timecodeInJvcTag(R"(<TimeCode startTc="01000000" dropFrame="false">)"),
              "01:00:00;00");
}

TEST(JvcTimecode, KeptWithDropFrameItIsWrittenAsNonDropFrame) {
    EXPECT_EQ(timecodeInJvcTag(R"(<TimeCode startTc="10203040" dropFrame="true">)"), "10:20:30:40");
}

TEST(JvcTimecode, DropFrameIsReadLetterByLetter) {
    EXPECT_EQ(timecodeInJvcTag(R"(<TimeCode startTc="01000000" dropFrame="TRUE">)"), "01:00:00;00");
    EXPECT_EQ(timecodeInJvcTag(R"(<TimeCode startTc="01000000" dropFrame = "true">)"),
              "01:00:00;00");
}

TEST(JvcTimecode, LettersAndBlanksAroundItDoNotCount) {
    EXPECT_EQ(timecodeInJvcTag(R"(<TimeCode startTc="TC01000000">)"), "01:00:00;00");
    EXPECT_EQ(timecodeInJvcTag(R"(<TimeCode startTc="TC 01000000 x">)"), "01:00:00;00");
}

TEST(JvcTimecode, LettersBehindBlanksStay) {
    EXPECT_EQ(timecodeInJvcTag(R"(<TimeCode startTc=" TC01000000">)"), std::nullopt);
}

TEST(JvcTimecode, SeparatedAlreadyItStaysAsItIs) {
    EXPECT_EQ(timecodeInJvcTag(R"(<TimeCode startTc="01:02:03:04">)"), "01:02:03:04");
    EXPECT_EQ(timecodeInJvcTag(R"(<TimeCode startTc="01:02:03;04" dropFrame="true">)"),
              "01:02:03;04");
}

TEST(JvcTimecode, OtherLengthsAreNoTimecode) {
    for (const char* tag : {R"(<TimeCode startTc="">)", R"(<TimeCode startTc="0100000">)",
                            R"(<TimeCode startTc="010000000">)", R"(<TimeCode startTc="1:2:3:4">)",
                            R"(<TimeCode startTc="abc">)", "<TimeCode>", ""}) {
        EXPECT_EQ(timecodeInJvcTag(tag), std::nullopt) << tag;
    }
}

TEST(JvcTimecode, WithoutAClosingQuoteThereIsNone) {
    EXPECT_EQ(timecodeInJvcTag(R"(<TimeCode startTc="01000000>)"), std::nullopt);
}

}  // namespace
}  // namespace qrx
