#include <clocale>
#include <cstdlib>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "platform/linux/UnicodeTextRules.h"
#include "support/TemporaryFolder.h"

namespace qrx::platform {
namespace {

using namespace std::string_view_literals;

struct CaseRow {
    const char* name;
    std::string_view text;
    std::string_view upper;
    std::string_view lower;
};

constexpr CaseRow kRows[] = {
    {"Empty", "", "", ""},
    {"Ascii", "clip.MTS-09[_]", "CLIP.MTS-09[_]", "clip.mts-09[_]"},
    {"Accent", "clip.mtsé", "CLIP.MTSÉ", "clip.mtsé"},
    {"SharpSGivesTwoLetters", "straße", "STRASSE", "straße"},
    {"LigatureGivesTwoLetters", "ﬁlm", "FILM", "ﬁlm"},
    {"DotlessI", "ı", "I", "ı"},
    {"LongS", "ſ", "S", "ſ"},
    {"CapitalIWithDot", "İ", "İ", "i\u0307"},
    {"ApostropheN", "ŉ", "\u02BCN", "ŉ"},
    {"GreekWithAccents", "\u0390", "\u0399\u0308\u0301", "\u0390"},
    {"GreekIotaSubscript", "\u1F80", "\u1F08\u0399", "\u1F80"},
    {"FinalSigma", "ΟΔΟΣ", "ΟΔΟΣ", "οδος"},
    {"FinalSigmaBeforeABlank", "ΟΔΟΣ Σ", "ΟΔΟΣ Σ", "οδος σ"},
    {"SigmaInsideAWord", "ΣΑΣΑ", "ΣΑΣΑ", "σασα"},
    {"SigmaBeforeAMark", "ΑΣ\u0301", "ΑΣ\u0301", "ας\u0301"},
    {"CapitalSharpS", "ẞ", "ẞ", "ß"},
    {"OutsideTheBasicPlane", "\U00010428", "\U00010400", "\U00010428"},
    {"NotUtf8StaysAsItIs", "a\xFF\xC3z\xE2\x82", "A\xFF\xC3Z\xE2\x82", "a\xFF\xC3z\xE2\x82"},
    {"SurrogateStaysAsItIs", "\xED\xA0\x80q", "\xED\xA0\x80Q", "\xED\xA0\x80q"},
    {"NulInside", "a\0b"sv, "A\0B"sv, "a\0b"sv},
};

class CaseMapping : public testing::TestWithParam<CaseRow> {};

TEST_P(CaseMapping, IsFullAndKeepsWhatIsNotText) {
    const UnicodeTextRules rules;
    EXPECT_EQ(rules.upperCased(GetParam().text), GetParam().upper);
    EXPECT_EQ(rules.lowerCased(GetParam().text), GetParam().lower);
}

INSTANTIATE_TEST_SUITE_P(Table, CaseMapping, testing::ValuesIn(kRows),
                         [](const auto& row) { return std::string(row.param.name); });

/// The locale of this program is called `name` while this lives, whatever is installed: its data
/// are those of C.UTF-8, but the name is all that case mappings look at.
class ScopedLocale {
public:
    explicit ScopedLocale(const std::string& name) {
        folder_.link(name, "/usr/lib/locale/C.utf8");
        ::setenv("LOCPATH", folder_.path().c_str(), 1);
        inForce_ = std::setlocale(LC_CTYPE, name.c_str()) != nullptr;
        ::unsetenv("LOCPATH");
    }
    ~ScopedLocale() { std::setlocale(LC_CTYPE, "C"); }
    ScopedLocale(const ScopedLocale&) = delete;
    ScopedLocale& operator=(const ScopedLocale&) = delete;

    [[nodiscard]] bool inForce() const { return inForce_; }

private:
    test::TemporaryFolder folder_;
    bool inForce_ = false;
};

TEST(UnicodeTextRules, TurkishLithuanianAndAzeriChangeNothing) {
    const UnicodeTextRules rules;
    for (const char* name : {"tr_TR.utf8", "az_AZ.utf8", "lt_LT.utf8"}) {
        SCOPED_TRACE(name);
        const ScopedLocale locale(name);
        if (!locale.inForce()) GTEST_SKIP() << "no locale data in /usr/lib/locale/C.utf8";
        EXPECT_EQ(rules.upperCased("private/clip.ini"), "PRIVATE/CLIP.INI");
        EXPECT_EQ(rules.lowerCased("PRIVATE/CLIP.INI"), "private/clip.ini");
        EXPECT_EQ(rules.upperCased("i\u0307"), "I\u0307");
        EXPECT_EQ(rules.upperCased("\u0131"), "I");
        EXPECT_EQ(rules.lowerCased("\u00CC"), "\u00EC");
        EXPECT_EQ(rules.lowerCased("I\u0300"), "i\u0300");
    }
}

TEST(UnicodeTextRules, DecimalDigitsOfEveryScript) {
    const UnicodeTextRules rules;
    for (const char32_t digit : {U'0', U'9', U'٣', U'५', U'\U0001D7CE'}) {
        EXPECT_TRUE(rules.isDecimalDigit(digit)) << static_cast<unsigned>(digit);
    }
    for (const char32_t other : {U'a', U'²', U'½', U'Ⅷ', U'/', U':', U'\0'}) {
        EXPECT_FALSE(rules.isDecimalDigit(other)) << static_cast<unsigned>(other);
    }
}

TEST(UnicodeTextRules, LettersAndMarks) {
    const UnicodeTextRules rules;
    for (const char32_t letter : {U'a', U'Z', U'é', U'ß', U'ʰ', U'א', U'漢', U'ǅ', U'\u0301',
                                  U'\u0903', U'\u20DD', U'\U00010428'}) {
        EXPECT_TRUE(rules.isLetterOrMark(letter)) << static_cast<unsigned>(letter);
    }
    for (const char32_t other : {U'0', U'_', U' ', U'²', U'Ⅷ', U'€', U'\u200D'}) {
        EXPECT_FALSE(rules.isLetterOrMark(other)) << static_cast<unsigned>(other);
    }
}

}  // namespace
}  // namespace qrx::platform
