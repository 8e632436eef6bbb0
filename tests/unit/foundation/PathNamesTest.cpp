#include <set>
#include <string>

#include <gtest/gtest.h>

#include "foundation/PathNames.h"

namespace qrx {
namespace {

TEST(CharacterSets, HoldEachCharacterOnce) {
    for (const std::string_view set : {kInvalidFilePathCharacters, kInvalidFileNameCharacters,
                                       kRemovedFileNameCharacters, kTerminalEscapeCharacters}) {
        SCOPED_TRACE(set);
        EXPECT_EQ(std::set<char>(set.begin(), set.end()).size(), set.size());
    }
}

TEST(CharacterSets, FileNamesAddTheSlash) {
    EXPECT_EQ(kInvalidFileNameCharacters, std::string(kInvalidFilePathCharacters) + "/");
}

TEST(CharacterSets, KeptRemovedSetHasTheBlankAndNoBackslash) {
    const auto has = [](std::string_view set, char c) { return set.find(c) != set.npos; };
    EXPECT_TRUE(has(kInvalidFilePathCharacters, '\\'));
    EXPECT_FALSE(has(kInvalidFilePathCharacters, ' '));
    EXPECT_FALSE(has(kRemovedFileNameCharacters, '\\'));
    EXPECT_TRUE(has(kRemovedFileNameCharacters, ' '));
    EXPECT_FALSE(has(kTerminalEscapeCharacters, '\\'));
}

TEST(WithoutCharacters, RemovesEveryMemberEverywhere) {
    EXPECT_EQ(withoutCharacters("a:b*c/d", kInvalidFilePathCharacters), "abc/d");
    EXPECT_EQ(withoutCharacters("a:b*c/d", kInvalidFileNameCharacters), "abcd");
    EXPECT_EQ(withoutCharacters("My 'take' (1).mov", kRemovedFileNameCharacters), "Mytake1.mov");
    EXPECT_EQ(withoutCharacters("My\\'take' (1)", kInvalidFilePathCharacters), "Mytake 1");
    for (const std::string_view set : {kInvalidFilePathCharacters, kRemovedFileNameCharacters}) {
        EXPECT_EQ(withoutCharacters(std::string(set) + "x" + std::string(set), set), "x");
        EXPECT_EQ(withoutCharacters("", set), "");
        EXPECT_EQ(withoutCharacters("é\xFF\n\"", set), "é\xFF\n\"");
    }
}

TEST(EscapedForTerminal, PutsABackslashBeforeEachMember) {
    EXPECT_EQ(escapedForTerminal("/Volumes/NO NAME/My (1).mov"),
              "/Volumes/NO\\ NAME/My\\ \\(1\\).mov");
    for (const char c : kTerminalEscapeCharacters) {
        EXPECT_EQ(escapedForTerminal(std::string("a") + c + c), std::string("a\\") + c + '\\' + c);
    }
    EXPECT_EQ(escapedForTerminal(""), "");
}

TEST(EscapedForTerminal, KeptBackslashBacktickAndLineEndPass) {
    EXPECT_EQ(escapedForTerminal("a\\ b"), "a\\\\ b");  // a \ blank b: the blank alone is escaped
    EXPECT_EQ(escapedForTerminal("`reboot`"), "`reboot`");
    EXPECT_EQ(escapedForTerminal("a\nb"), "a\nb");
    EXPECT_EQ(escapedForTerminal("$(x)"), "\\$\\(x\\)");
    EXPECT_EQ(escapedForTerminal("\"'"), "\\\"\\'");
}

TEST(DigitsOnly, KeepsDigitsAndPointsWhenAsked) {
    EXPECT_EQ(digitsOnly("29.97 fps", Point::dropped), "2997");
    EXPECT_EQ(digitsOnly("29.97 fps", Point::kept), "29.97");
    EXPECT_EQ(digitsOnly("1.2.3", Point::kept), "1.2.3");
    EXPECT_EQ(digitsOnly("-5", Point::kept), "5");
    EXPECT_EQ(digitsOnly("", Point::kept), "");
    EXPECT_EQ(digitsOnly("clip", Point::kept), "");
}

TEST(DigitsOnly, KeptUnitsAreNarrowedToTheirLowByte) {
    EXPECT_EQ(digitsOnly("\u0130", Point::dropped), "0");
    EXPECT_EQ(digitsOnly("\u0100"
                         "5",
                         Point::dropped),
              "5");                                            // low byte 0 matches nothing
    EXPECT_EQ(digitsOnly("\U0001D7CE", Point::dropped), "5");  // D835 DFCE
    EXPECT_EQ(digitsOnly("\u012E", Point::kept), ".");
    EXPECT_EQ(digitsOnly("\u012E", Point::dropped), "");
}

TEST(DigitsOnly, EachUnitGoesByItsLowByte) {
    for (std::uint32_t high = 0; high < 0xD8; ++high) {
        for (std::uint32_t low = 0; low < 0x100; ++low) {
            std::string text;
            const std::uint32_t unit = high << 8U | low;
            if (unit < 0x80) {
                text += static_cast<char>(unit);
            } else if (unit < 0x800) {
                text += static_cast<char>(0xC0U | unit >> 6U);
                text += static_cast<char>(0x80U | (unit & 0x3FU));
            } else {
                text += static_cast<char>(0xE0U | unit >> 12U);
                text += static_cast<char>(0x80U | (unit >> 6U & 0x3FU));
                text += static_cast<char>(0x80U | (unit & 0x3FU));
            }
            const bool isDigit = low >= '0' && low <= '9';
            const std::string expected = isDigit ? std::string(1, static_cast<char>(low)) : "";
            ASSERT_EQ(digitsOnly(text, Point::dropped), expected) << unit;
        }
    }
}

TEST(PathIsHidden, LooksAtTheNameAndAtTheWholePath) {
    EXPECT_TRUE(pathIsHidden("/x/.DS_Store"));
    EXPECT_TRUE(pathIsHidden(".x/clip.mov"));
    EXPECT_TRUE(pathIsHidden("./clip.mov"));
    EXPECT_TRUE(pathIsHidden("/x/._clip.mov/"));
    EXPECT_FALSE(pathIsHidden("/.Trashes/clip.mov"));
    EXPECT_FALSE(pathIsHidden("/x/clip.mov"));
    EXPECT_FALSE(pathIsHidden(""));
    EXPECT_FALSE(pathIsHidden("/"));
}

}  // namespace
}  // namespace qrx
