#include <clocale>
#include <string>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "foundation/Utf8.h"
#include "qrx/JsonText.h"

namespace qrx::tool {
namespace {

/// The locale that the program sets for itself.
class JsonTextTest : public testing::Test {
protected:
    void SetUp() override { ASSERT_NE(std::setlocale(LC_CTYPE, "C.UTF-8"), nullptr); }
    void TearDown() override { std::setlocale(LC_CTYPE, "C"); }
};

TEST_F(JsonTextTest, StringIsWhatTheLibraryMakesOfItWhateverCharacterItHolds) {
    for (char32_t code = 0; code < 0x3000; ++code) {
        if (code >= 0xD800 && code <= 0xDFFF) continue;
        SCOPED_TRACE(static_cast<unsigned>(code));
        std::string text = "/card/";
        appendUtf8(text, code);
        text += "clip.mov";
        const std::string quoted = jsonString(text);
        ASSERT_EQ(quoted, jsonText(nlohmann::ordered_json(text), -1));
        ASSERT_EQ(nlohmann::json::parse(quoted).get<std::string>(), text);
    }
}

TEST_F(JsonTextTest, StringsThatLookDifferentInJson) {
    EXPECT_EQ(jsonString(""), R"("")");
    EXPECT_EQ(jsonString("a b"), R"("a b")");
    EXPECT_EQ(jsonString("a\"b\\c\n"), R"("a\"b\\c\n")");
    EXPECT_EQ(jsonString("\x7f"), R"("\u007f")");
    EXPECT_EQ(jsonString("é"), R"("é")");
}

}  // namespace
}  // namespace qrx::tool
