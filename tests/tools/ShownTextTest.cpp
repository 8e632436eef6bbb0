#include <clocale>
#include <string>

#include <gtest/gtest.h>

#include "qrx/Console.h"
#include "qrx/ShownText.h"

namespace qrx::tool {
namespace {

/// The locale that the program sets for itself.
class ShownTextTest : public testing::Test {
protected:
    void SetUp() override { ASSERT_NE(std::setlocale(LC_CTYPE, "C.UTF-8"), nullptr); }
    void TearDown() override { std::setlocale(LC_CTYPE, "C"); }
};

struct ShownCase {
    const char* name;
    std::string bytes;
    std::string text;
    std::size_t columns;
};

class ShownTable : public ShownTextTest, public testing::WithParamInterface<ShownCase> {};

TEST_P(ShownTable, IsSafeAndMeasured) {
    const ShownText text(GetParam().bytes);
    EXPECT_EQ(text.text(), GetParam().text);
    EXPECT_EQ(text.columns(), GetParam().columns);
}

INSTANTIATE_TEST_SUITE_P(
    Table, ShownTable,
    testing::Values(ShownCase{"Empty", "", "", 0}, ShownCase{"Plain", "a b.mov", "a b.mov", 7},
                    ShownCase{"Backslash", "a\\n", "a\\\\n", 4},
                    ShownCase{"LineEnds", "a\nb\rc\td", "a\\nb\\rc\\td", 10},
                    ShownCase{"EscapeCode", "\x1b[2J", "\\x1b[2J", 7},
                    ShownCase{"Delete", "\x7f", "\\x7f", 4},
                    ShownCase{"Nul", std::string(1, '\0'), "\\x00", 4},
                    ShownCase{"NotUtf8", "\xff\xc3", "\\xff\\xc3", 8},
                    ShownCase{"Overlong", "\xc0\xaf", "\\xc0\\xaf", 8},
                    ShownCase{"Surrogate", "\xed\xa0\x80", "\\xed\\xa0\\x80", 12},
                    ShownCase{"EightBitControl", "\xc2\x9b", "\\u{9b}", 6},
                    ShownCase{"RightToLeftOverride", "\xe2\x80\xae", "\\u{202e}", 8},
                    ShownCase{"LineSeparator", "\xe2\x80\xa8", "\\u{2028}", 8},
                    ShownCase{"Accent", "\xc3\xa9", "\xc3\xa9", 1},
                    ShownCase{"CombiningAccent", "e\xcc\x81", "e\xcc\x81", 1},
                    ShownCase{"WideCharacter", "\xe6\x98\xa0", "\xe6\x98\xa0", 2}),
    [](const auto& row) { return std::string(row.param.name); });

TEST_F(ShownTextTest, TextThatFitsStays) {
    EXPECT_EQ(ShownText("/a/b.mov").fitted(8), "/a/b.mov");
}

TEST_F(ShownTextTest, LongTextLosesItsMiddle) {
    EXPECT_EQ(ShownText("/aaaa/bbbb/cccc/clip.mov").fitted(17), "/aaa\u2026ccc/clip.mov");
}

TEST_F(ShownTextTest, FittedTextNeverTakesMoreThanItIsGiven) {
    const ShownText text("\xe6\x98\xa0\xe6\x98\xa0\x1b[2J\xe6\x98\xa0 clip.mov");
    for (std::size_t columns = 0; columns < 30; ++columns) {
        SCOPED_TRACE(columns);
        std::string fitted = text.fitted(columns);
        EXPECT_LE(ShownText(fitted).columns(), columns + 2);  // a shown "\" is escaped once more
        EXPECT_EQ(fitted.find('\x1b'), std::string::npos);
    }
}

TEST_F(ShownTextTest, PlainTextIsWhatATerminalShowsAsItIs) {
    EXPECT_TRUE(isPlainText(""));
    EXPECT_TRUE(isPlainText("a\\b \xc3\xa9\n"));
    for (const char* const text :
         {"\x1b", "\r", "\t", "\x7f", "\xff", "\xc2\x9b", "\xe2\x80\xae", "\xe2\x80\xa9"}) {
        EXPECT_FALSE(isPlainText(text)) << shown(text);
    }
}

TEST_F(ShownTextTest, ProgressLineFits) {
    EXPECT_EQ(progressLine(1, 1, "/x/a.mov", 79), "1 file, 1 clip  /x/a.mov");
    EXPECT_EQ(progressLine(1204, 37, "/x/a\n.mov", 79), "1204 files, 37 clips  /x/a\\n.mov");
    EXPECT_EQ(progressLine(0, 0, "/x/a.mov", 10), "0 files, 0");
    for (std::size_t columns = 1; columns < 60; ++columns) {
        const std::string line = progressLine(5, 5, "/some/long/path/to/a/clip.mov", columns);
        EXPECT_LE(ShownText(line).columns(), columns);
    }
}

}  // namespace
}  // namespace qrx::tool
