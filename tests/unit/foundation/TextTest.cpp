#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "foundation/Text.h"

namespace qrx {
namespace {

using Pieces = std::vector<std::string>;

constexpr const char* kNotUtf8 = "a\xFF\xE9z";

// ---- case

struct CaseRow {
    const char* name;
    const char* text;
    const char* upper;
    const char* lower;
};

class CaseMapping : public testing::TestWithParam<CaseRow> {};

TEST_P(CaseMapping, IsFullUnicode) {
    EXPECT_EQ(upperCased(GetParam().text), GetParam().upper);
    EXPECT_EQ(lowerCased(GetParam().text), GetParam().lower);
}

INSTANTIATE_TEST_SUITE_P(
    Table, CaseMapping,
    testing::Values(CaseRow{"Empty", "", "", ""},
                    CaseRow{"Ascii", "Clip_09[z].mts", "CLIP_09[Z].MTS", "clip_09[z].mts"},
                    CaseRow{"Accent", "clip.mtsé", "CLIP.MTSÉ", "clip.mtsé"},
                    CaseRow{"SharpS", "ß", "SS", "ß"}, CaseRow{"Ligature", "ﬁ", "FI", "ﬁ"},
                    CaseRow{"DotlessI", "ı", "I", "ı"}, CaseRow{"LongS", "ſ", "S", "ſ"},
                    CaseRow{"PlainIBesideAccent", "iIé", "IIÉ", "iié"},
                    CaseRow{"Greek", "Σίγμα", "ΣΊΓΜΑ", "σίγμα"},
                    CaseRow{"Cyrillic", "Клип", "КЛИП", "клип"},
                    CaseRow{"NotUtf8StaysAsItIs", kNotUtf8, "A\xFF\xE9Z", "a\xFF\xE9z"}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(CaseMapping, MapsEachAsciiLetterAndNothingElse) {
    for (int code = 0; code < 0x80; ++code) {
        SCOPED_TRACE(code);
        const std::string text(1, static_cast<char>(code));
        const bool isLower = code >= 'a' && code <= 'z';
        const bool isUpper = code >= 'A' && code <= 'Z';
        EXPECT_EQ(upperCased(text), std::string(1, static_cast<char>(isLower ? code - 32 : code)));
        EXPECT_EQ(lowerCased(text), std::string(1, static_cast<char>(isUpper ? code + 32 : code)));
    }
}

/// Fixed pseudo-random text of characters from `alphabet`.
std::string randomText(std::mt19937& noise, std::string_view alphabet, std::size_t length) {
    std::string text;
    while (text.size() < length)
        text += alphabet[noise() % alphabet.size()];
    return text;
}

TEST(CaseMapping, PlainTextIsMappedAsAnyOtherTextIs) {
    std::string ascii;
    for (char code = 0; ascii.size() < 0x80; ++code)
        ascii += code;
    std::mt19937 noise{20240229};
    for (std::size_t length = 0; length < 200; ++length) {
        SCOPED_TRACE(length);
        const std::string text = randomText(noise, ascii, length);
        // one letter that has no other case, and the text no longer takes the way of plain text
        constexpr std::string_view kAleph = "א";
        EXPECT_EQ(upperCased(text + std::string(kAleph)), upperCased(text).append(kAleph));
        EXPECT_EQ(lowerCased(text + std::string(kAleph)), lowerCased(text).append(kAleph));
    }
}

// ---- beginning, end, inside

TEST(TextSearch, BeginningAndEndAreLiteral) {
    EXPECT_TRUE(endsWith("CLIP.MTS", ".MTS"));
    EXPECT_FALSE(endsWith("clip.mts", ".MTS"));
    EXPECT_TRUE(beginsWith("CLIP.MTS", "CLIP"));
    EXPECT_FALSE(beginsWith("CLIP.MTS", "clip"));
    EXPECT_TRUE(beginsWith("abc", "abc"));
    EXPECT_TRUE(endsWith("abc", "abc"));
}

TEST(TextSearch, InARowIsAsTheJoinedPattern) {
    EXPECT_TRUE(containsInARow("/A/STREAM/00000.MTS", "/STREAM/", "00000.MTS"));
    EXPECT_FALSE(containsInARow("/STREAM/A/00000.MTS", "/STREAM/", "00000.MTS"));
    EXPECT_TRUE(containsInARow("aaab", "aa", "b"));
    EXPECT_FALSE(containsInARow("abc", "", ""));
    std::mt19937 noise{20240229};
    for (int round = 0; round < 20'000; ++round) {
        const std::string text = randomText(noise, "ab/", noise() % 12);
        const std::string first = randomText(noise, "ab/", noise() % 4);
        const std::string second = randomText(noise, "ab/", noise() % 4);
        ASSERT_EQ(containsInARow(text, first, second), contains(text, first + second))
            << text << " " << first << " " << second;
    }
}

TEST(TextSearch, EmptyPatternIsNowhere) {
    for (const char* const text : {"", "abc"}) {
        SCOPED_TRACE(text);
        EXPECT_FALSE(beginsWith(text, ""));
        EXPECT_FALSE(endsWith(text, ""));
        EXPECT_FALSE(contains(text, ""));
        EXPECT_EQ(find(text, ""), std::nullopt);
        EXPECT_EQ(findIgnoringCase(text, ""), std::nullopt);
    }
}

TEST(TextSearch, PatternLongerThanTheTextIsNowhere) {
    EXPECT_FALSE(beginsWith("ab", "abc"));
    EXPECT_FALSE(endsWith("bc", "abc"));
    EXPECT_FALSE(contains("ab", "abc"));
    EXPECT_FALSE(findIgnoringCase("ab", "abc"));
}

TEST(TextSearch, FindsTheFirstOccurrence) {
    EXPECT_EQ(find("aXbX", "X"), 1U);
    EXPECT_EQ(find("aXbX", "x"), std::nullopt);
    EXPECT_EQ(find("aab", "ab"), 1U);
    EXPECT_EQ(findIgnoringCase("aXbX", "x"), 1U);
    EXPECT_EQ(findIgnoringCase("/Private/AVCHD", "/avchd"), 8U);
    EXPECT_EQ(findIgnoringCase("É", "é"), std::nullopt);  // ASCII letters only
    EXPECT_TRUE(contains("/x/BDMV/STREAM/1", "/BDMV/STREAM"));
    EXPECT_FALSE(contains("/x/bdmv/stream/1", "/BDMV/STREAM"));
}

TEST(TextSearch, ComposedAndDecomposedLettersDiffer) {
    EXPECT_FALSE(contains("e\u0301", "é"));
    EXPECT_FALSE(contains("é", "e"));
}

TEST(TextSearch, WorksOnBytesThatAreNotUtf8) {
    EXPECT_EQ(find(kNotUtf8, "\xE9"), 2U);
    EXPECT_TRUE(beginsWith(kNotUtf8, "a\xFF"));
    EXPECT_TRUE(endsWith(kNotUtf8, "\xE9z"));
}

// ---- splitting

TEST(Split, KeepsEmptyPieces) {
    EXPECT_EQ(split("aaa", "aa"), (Pieces{"", "a"}));
    EXPECT_EQ(split(",a,", ","), (Pieces{"", "a", ""}));
    EXPECT_EQ(split("_", "_"), (Pieces{"", ""}));
    EXPECT_EQ(split("a_b__c", "_"), (Pieces{"a", "b", "", "c"}));
}

TEST(Split, GivesTheWholeTextWithoutASeparatorInIt) {
    EXPECT_EQ(split("", ","), (Pieces{""}));
    EXPECT_EQ(split("", ""), (Pieces{""}));
    EXPECT_EQ(split("abc", ""), (Pieces{"abc"}));
    EXPECT_EQ(split("abc", ","), (Pieces{"abc"}));
    EXPECT_EQ(split("abc", "abcd"), (Pieces{"abc"}));
}

// ---- replacing

TEST(ReplaceAll, GoesFromTheLeftWithoutOverlapOrRescan) {
    EXPECT_EQ(replaceAll("aaaa", "aa", "b"), "bb");
    EXPECT_EQ(replaceAll("aaa", "aa", "b"), "ba");
    EXPECT_EQ(replaceAll("aab", "ab", "b"), "ab");
    EXPECT_EQ(replaceAll("/BDMV/STREAM/BDMV/STREAM", "/BDMV/STREAM", "/X"), "/X/X");
    EXPECT_EQ(replaceAll("a", "a", "aa"), "aa");
    EXPECT_EQ(replaceAll("abc", "b", ""), "ac");
}

TEST(ReplaceAll, EmptyTargetChangesNothing) {
    EXPECT_EQ(replaceAll("abc", "", "x"), "abc");
    EXPECT_EQ(replaceAllIgnoringCase("abc", "", "x"), "abc");
    EXPECT_EQ(replaceAll("", "a", "x"), "");
}

TEST(ReplaceAll, IgnoringCaseTakesAsciiLettersOnly) {
    EXPECT_EQ(replaceAllIgnoringCase("A.mov.MOV", ".MOV", ".XML"), "A.XML.XML");
    EXPECT_EQ(replaceAllIgnoringCase("x.MoV", ".mOv", ".xml"), "x.xml");
    EXPECT_EQ(replaceAllIgnoringCase("Éé", "é", "e"), "Ée");
    EXPECT_EQ(replaceAll("A.mov.MOV", ".MOV", ".XML"), "A.mov.XML");
}

// ---- trimming

TEST(Trim, BlanksLeaveLineEnds) {
    EXPECT_EQ(trimBlanks(" 25\t"), "25");
    EXPECT_EQ(trimBlanks("\n25"), "\n25");
    EXPECT_EQ(trimBlanks(" \r\n "), "\r\n");
    EXPECT_EQ(trimBlanks("a b"), "a b");
    EXPECT_EQ(trimBlanks("  \t "), "");
    EXPECT_EQ(trimBlanks(""), "");
}

TEST(Trim, KnowsEveryBlankAndLineEnd) {
    for (char32_t code = 1; code < 0x3100; ++code) {
        SCOPED_TRACE(static_cast<std::uint32_t>(code));
        const bool isBlank = code == 0x09 || code == 0x20 || code == 0xA0 || code == 0x1680 ||
                             (code >= 0x2000 && code <= 0x200B) || code == 0x202F ||
                             code == 0x205F || code == 0x3000;
        const bool isLineEnd =
            (code >= 0x0A && code <= 0x0D) || code == 0x85 || code == 0x2028 || code == 0x2029;
        std::string text = characterText(code);
        text.append("!").append(characterText(code));
        EXPECT_EQ(trimBlanks(text), isBlank ? "!" : text);
        EXPECT_EQ(trimBlanksAndLineEnds(text), isBlank || isLineEnd ? "!" : text);
    }
}

TEST(Trim, ByteThatIsNotUtf8IsNoBlank) {
    EXPECT_EQ(trimBlanks(" \xA0 "), "\xA0");
    EXPECT_EQ(trimBlanksAndLineEnds("\x85\n"), "\x85");
}

TEST(Trim, Letters) {
    EXPECT_EQ(trimLetters("abc01000000x"), "01000000");
    EXPECT_EQ(trimLetters("é1Ω"), "1");
    EXPECT_EQ(trimLetters("e\u0301"
                          "1"),
              "1");
    EXPECT_EQ(trimLetters("a1b2c"), "1b2");
    EXPECT_EQ(trimLetters("_a_"), "_a_");
    EXPECT_EQ(trimLetters("abc"), "");
    EXPECT_EQ(trimLetters(""), "");
}

TEST(Trim, NonDigits) {
    EXPECT_EQ(trimNonDigits("C0012.MP4"), "0012.MP4");
    EXPECT_EQ(trimNonDigits("clip"), "");
    EXPECT_EQ(trimNonDigits("a1b2c"), "1b2");
    EXPECT_EQ(trimNonDigits("é٣a"), "٣");
    EXPECT_EQ(trimNonDigits("x\U0001D7CE."), "\U0001D7CE");
    EXPECT_EQ(trimNonDigits("½7²"), "7");
    EXPECT_EQ(trimNonDigits("\xFF"
                            "5\xE9"),
              "5");
    EXPECT_EQ(trimNonDigits(""), "");
}

// ---- comparing

TEST(Compare, IgnoringCaseFoldsToLowerCase) {
    EXPECT_LT(compareIgnoringCase("a_", "aB"), 0);  // "_" before letters, as "[" is
    EXPECT_LT(compareIgnoringCase("a[", "aB"), 0);
    EXPECT_LT(compareIgnoringCase("CLIP10", "CLIP9"), 0);
    EXPECT_GT(compareIgnoringCase("ab", "a"), 0);
    EXPECT_EQ(compareIgnoringCase("X.MP4", "x.mp4"), 0);
    EXPECT_EQ(compareIgnoringCase("", ""), 0);
    EXPECT_LT(compareIgnoringCase("", "a"), 0);
    EXPECT_EQ(compareIgnoringCase("É", "é"), 0);
    EXPECT_LT(compareIgnoringCase("z", "é"), 0);
}

TEST(Compare, GoesByUtf16Units) {
    // U+1F600 is D83D DE00 in units, and so before U+FF21, whatever the bytes say
    EXPECT_LT(compareIgnoringCase("\U0001F600", "\uFF41"), 0);
}

TEST(NameOrder, IsByLowerCasedTextThenByBytes) {
    EXPECT_TRUE(precedesInNameOrder("A", "a"));
    EXPECT_FALSE(precedesInNameOrder("a", "A"));
    EXPECT_TRUE(precedesInNameOrder("A", "b"));
    EXPECT_TRUE(precedesInNameOrder("a", "B"));
    EXPECT_TRUE(precedesInNameOrder(".DS_Store", "A"));
    EXPECT_TRUE(precedesInNameOrder("_x", "a"));
    EXPECT_TRUE(precedesInNameOrder("clip10", "CLIP9"));
    EXPECT_FALSE(precedesInNameOrder("a", "a"));
    EXPECT_TRUE(precedesInNameOrder("É", "é"));
}

TEST(NameOrder, IsTheSameWhateverTheOrderBefore) {
    const Pieces ordered{"",   "\n", "10", "9", "A",        "a",    "a.b", "AB", "aB",
                         "Ab", "ab", "a_", "b", "\xC3\x89", "\xE9", "é",   "ê",  "\xFF"};
    Pieces expected = ordered;
    std::sort(expected.begin(), expected.end(), precedesInNameOrder);
    std::mt19937 chance{20240229};
    for (int round = 0; round < 200; ++round) {
        Pieces shuffled = ordered;
        std::shuffle(shuffled.begin(), shuffled.end(), chance);
        std::sort(shuffled.begin(), shuffled.end(), precedesInNameOrder);
        ASSERT_EQ(shuffled, expected);
    }
}

}  // namespace
}  // namespace qrx
