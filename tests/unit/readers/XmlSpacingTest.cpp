#include <string>

#include <gtest/gtest.h>

#include "readers/XmlSpacing.h"

namespace qrx {
namespace {

struct SpacingCase {
    const char* name;
    const char* markup;
    int depth;
    const char* spaced;
};

constexpr SpacingCase kSpacing[] = {
    {"TextStaysOnItsLine", "<Title>abc</Title>", 0, "<Title>abc</Title>"},
    {"OneLevel", "<r><Title>abc</Title></r>", 0, "<r>\n\t<Title>abc</Title>\n</r>"},
    {"TwoChildren", "<r><a>1</a><b>2</b></r>", 0, "<r>\n\t<a>1</a>\n\t<b>2</b>\n</r>"},
    {"TwoLevels", "<r><a><b>1</b></a><c>2</c></r>", 0,
     "<r>\n\t<a>\n\t\t<b>1</b>\n\t</a>\n\t<c>2</c>\n</r>"},
    {"StartingDepth", "<r><a>1</a></r>", 2, "\t\t<r>\n\t\t\t<a>1</a>\n\t\t</r>"},
    {"KeptTheLastLineIsIndentedInsideALine", "<a></a>", 2, "\t\t<a>\t\t</a>"},
    {"EmptyElement", "<a></a>", 0, "<a></a>"},
    {"NegativeDepth", "<r><a>1</a></r>", -3, "<r>\n<a>1</a>\n</r>"},
    {"KeptNoTagAtAll", "abc", 1, "\t<abc"},
    {"KeptACommentIsTakenForAStartTag", "<r><!--c--><a>1</a></r>", 0,
     "<r>\n\t<!--c-->\n\t\t<a>1</a>\n</r>"},
};

class SpacedMarkup : public testing::TestWithParam<SpacingCase> {};

TEST_P(SpacedMarkup, HasALineForEachTag) {
    EXPECT_EQ(spacedMarkup(GetParam().markup, GetParam().depth), GetParam().spaced);
}

INSTANTIATE_TEST_SUITE_P(Table, SpacedMarkup, testing::ValuesIn(kSpacing),
                         [](const auto& row) { return std::string(row.param.name); });

struct WhiteSpaceCase {
    const char* name;
    std::string text;
    std::string result;
};

const WhiteSpaceCase kWhiteSpace[] = {
    {"Empty", "", ""},
    {"BlanksAlone", " \t\r\n", ""},
    {"KeptAtTheFrontItStays", "  a b  ", "  a b"},
    {"InsideItStays", "a \n b", "a \n b"},
    {"LineEndsAtTheEnd", "a\n\r\n\t\v\f", "a"},
    {"NoneAtAll", "abc", "abc"},
    {"Latin1Stays", "caf\xC3\xA9 ", "caf\xC3\xA9"},
    {"KeptOtherLettersAreNarrowed", "\xC4\x81", "\x01"},  // U+0101
    {"KeptADaggerIsABlank", "a\xE2\x80\xA0", "a"},        // U+2020
    {"KeptADaggerInsideIsABlank",
     "a\xE2\x80\xA0"
     "b",
     "a b"},
    {"KeptALowByteOfZeroIsDropped",
     "a\xC4\x80"
     "b",
     "ab"},                                                     // U+0100
    {"KeptASurrogatePairIsTwoUnits", "\xF0\x9F\x98\x80", "="},  // D83D DE00
    {"NoBreakSpaceIsNoBlank", "a\xC2\xA0", "a\xC2\xA0"},
};

class TrailingWhiteSpace : public testing::TestWithParam<WhiteSpaceCase> {};

TEST_P(TrailingWhiteSpace, IsDropped) {
    EXPECT_EQ(withoutTrailingWhiteSpace(GetParam().text), GetParam().result);
}

INSTANTIATE_TEST_SUITE_P(Table, TrailingWhiteSpace, testing::ValuesIn(kWhiteSpace),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace
}  // namespace qrx
