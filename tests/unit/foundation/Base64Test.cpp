#include <string>

#include <gtest/gtest.h>

#include "foundation/Base64.h"

namespace qrx {
namespace {

TEST(Base64, TheExamplesOfRfc4648) {
    EXPECT_EQ(base64(""), "");
    EXPECT_EQ(base64("f"), "Zg==");
    EXPECT_EQ(base64("fo"), "Zm8=");
    EXPECT_EQ(base64("foo"), "Zm9v");
    EXPECT_EQ(base64("foob"), "Zm9vYg==");
    EXPECT_EQ(base64("fooba"), "Zm9vYmE=");
    EXPECT_EQ(base64("foobar"), "Zm9vYmFy");
    EXPECT_EQ(base64("\xff\xfe\xfd"), "//79");
}

TEST(Base64, BytesComeBack) {
    std::string bytes;
    for (int value = 255; value >= 0; --value) {
        EXPECT_EQ(bytesOfBase64(base64(bytes)), bytes);
        bytes += static_cast<char>(value);
    }
}

TEST(Base64, OtherTextsAreNone) {
    for (const char* text :
         {"Z", "Zg", "Zg=", "Zh==", "Zm9v\n", "Zm9vY", "Zm 9v", "=", "====", "Zg==Zg==", "Zm9-"}) {
        EXPECT_EQ(bytesOfBase64(text), std::nullopt) << text;
    }
}

}  // namespace
}  // namespace qrx
