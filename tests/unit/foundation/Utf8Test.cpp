#include <string>

#include <gtest/gtest.h>

#include "foundation/Text.h"
#include "foundation/Utf8.h"

namespace qrx {
namespace {

TEST(Utf8, EveryCharacterComesBack) {
    for (char32_t code = 0; code <= 0x10FFFF; ++code) {
        if (code == 0xD800) code = 0xE000;  // no characters there
        const std::string text = characterText(code);
        const Utf8Step first = firstUtf8Step(text);
        const Utf8Step last = lastUtf8Step("x" + text);
        ASSERT_TRUE(first.wellFormed && last.wellFormed) << std::uint32_t{code};
        ASSERT_TRUE(first.code == code && last.code == code) << std::uint32_t{code};
        ASSERT_TRUE(first.length == text.size() && last.length == text.size());
        ASSERT_TRUE(isUtf8(text)) << std::uint32_t{code};
        ASSERT_EQ(fromUtf16Units(utf16Units(text)), text) << std::uint32_t{code};
    }
}

TEST(Utf8, WhatIsNoCharacterIsWrittenAsTheReplacement) {
    for (const char32_t code : {U'\xD800', U'\xDFFF', static_cast<char32_t>(0x110000)}) {
        EXPECT_EQ(characterText(code), "\uFFFD");
    }
}

TEST(Utf8, CharacterOfACodeBelow256IsLatin1) {
    EXPECT_EQ(characterText(0x41), "A");
    EXPECT_EQ(characterText(0x80), "\u0080");
    EXPECT_EQ(characterText(0xE9), "é");
    EXPECT_EQ(characterText(0xFF), "ÿ");
    EXPECT_EQ(characterText(0), std::string(1, '\0'));
}

struct IllFormedRow {
    const char* name;
    const char* text;
    std::size_t steps;
};

class IllFormedUtf8 : public testing::TestWithParam<IllFormedRow> {};

TEST_P(IllFormedUtf8, EachByteIsAStepOfItsOwn) {
    const std::string text = GetParam().text;
    EXPECT_FALSE(isUtf8(text));
    EXPECT_FALSE(isAscii(text));
    std::size_t steps = 0;
    for (std::string_view rest = text; !rest.empty(); ++steps) {
        const Utf8Step step = firstUtf8Step(rest);
        if (!step.wellFormed) {
            EXPECT_EQ(step.length, 1U);
            EXPECT_EQ(step.code, static_cast<unsigned char>(rest.front()));
        }
        rest.remove_prefix(step.length);
    }
    EXPECT_EQ(steps, GetParam().steps);
    for (std::string_view rest = text; !rest.empty(); --steps) {
        rest.remove_suffix(lastUtf8Step(rest).length);
    }
    EXPECT_EQ(steps, 0U) << "from the end the steps are the same";
}

INSTANTIATE_TEST_SUITE_P(Table, IllFormedUtf8,
                         testing::Values(IllFormedRow{"LoneContinuation", "a\x80z", 3},
                                         IllFormedRow{"CutShort", "\xC3", 1},
                                         IllFormedRow{"CutShortBeforeText", "\xE2\x82z", 3},
                                         IllFormedRow{"OverlongSlash", "\xC0\xAF", 2},
                                         IllFormedRow{"OverlongThree", "\xE0\x80\xAF", 3},
                                         IllFormedRow{"OverlongFour", "\xF0\x80\x80\xAF", 4},
                                         IllFormedRow{"Surrogate", "\xED\xA0\x80", 3},
                                         IllFormedRow{"BeyondUnicode", "\xF4\x90\x80\x80", 4},
                                         IllFormedRow{"FiveBytes", "\xF8\x88\x80\x80\x80", 5},
                                         IllFormedRow{"NeverUsedBytes", "\xFE\xFF", 2},
                                         IllFormedRow{"Latin1Word", "caf\xE9", 4},
                                         IllFormedRow{"GoodAmongBad", "\xFF\xC3\xA9\xFF", 3}),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(Utf16Units, AreThoseOfThePlatform) {
    EXPECT_EQ(utf16Units("aé"), u"aé");
    EXPECT_EQ(utf16Units("\U0001D7CE"), (std::u16string{0xD835, 0xDFCE}));
    EXPECT_EQ(utf16Units("\U0001F600"), (std::u16string{0xD83D, 0xDE00}));
    EXPECT_EQ(utf16Units(""), u"");
}

TEST(Utf16Units, ByteThatIsNotUtf8IsAUnitOfItsValue) {
    EXPECT_EQ(utf16Units("a\xFF\xE9"), (std::u16string{'a', 0xFF, 0xE9}));
}

TEST(Utf16Units, UnpairedSurrogateBecomesTheReplacement) {
    EXPECT_EQ(fromUtf16Units(std::u16string{0xD83D}), "\uFFFD");
    EXPECT_EQ(fromUtf16Units(std::u16string{0xDE00, 'a'}), "\uFFFDa");
    EXPECT_EQ(fromUtf16Units(std::u16string{0xD83D, 'a'}), "\uFFFDa");
    EXPECT_EQ(fromUtf16Units(std::u16string{0xD83D, 0xD83D, 0xDE00}), "\uFFFD\U0001F600");
}

TEST(IsAscii, FindsAHighByteAtEveryPlace) {
    for (std::size_t length = 0; length <= 40; ++length) {
        EXPECT_TRUE(isAscii(std::string(length, 'x')));
        for (std::size_t at = 0; at < length; ++at) {
            std::string text(length, '\x7F');
            text[at] = '\x80';
            EXPECT_FALSE(isAscii(text)) << length << " " << at;
        }
    }
}

}  // namespace
}  // namespace qrx
