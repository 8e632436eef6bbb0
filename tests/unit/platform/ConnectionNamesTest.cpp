#include <string>

#include <gio/gio.h>
#include <gtest/gtest.h>

#include "platform/linux/ConnectionNames.h"

namespace qrx::platform {
namespace {

struct NameCase {
    const char* name;
    std::string connection;
    std::string bus;
};

class ConnectionName : public testing::TestWithParam<NameCase> {};

TEST_P(ConnectionName, HasItsNameOnTheBus) {
    const std::string bus = busNameForConnection(GetParam().connection);
    EXPECT_EQ(bus, GetParam().bus);
    EXPECT_TRUE(g_dbus_is_name(bus.c_str()));
    EXPECT_FALSE(g_dbus_is_unique_name(bus.c_str()));
}

const std::string kPrefix = "com.quillfen.connection.n";
// printf 'a%.0s' {1..256} | sha256sum, and likewise with 231 and 77 "/"
const std::string kDigestOf256As =
    "02d7160d77e18c6447be80c2e355c7ed4388545271702c50253b0914c65ce5fe";

const NameCase kNames[] = {
    {"WellKnown", "com.example.Matcher", "com.example.Matcher"},
    {"WellKnownWithDash", "a-b.c_d", "a-b.c_d"},
    {"OneElement", "Matcher", kPrefix + "Matcher"},
    {"Empty", "", kPrefix},
    {"Unique", ":1.5", kPrefix + "_3a1_2e5"},
    {"TheBusItself", "org.freedesktop.DBus", kPrefix + "org_2efreedesktop_2eDBus"},
    {"BelowTheBus", "org.freedesktop.DBus.Other", "org.freedesktop.DBus.Other"},
    {"ElementWithLeadingDigit", "com.1x", kPrefix + "com_2e1x"},
    {"EmptyElement", "com..x", kPrefix + "com_2e_2ex"},
    {"LeadingDot", ".com.x", kPrefix + "_2ecom_2ex"},
    {"TrailingDot", "com.x.", kPrefix + "com_2ex_2e"},
    {"Blank", "My Cards", kPrefix + "My_20Cards"},
    {"Underscore", "my_cards", kPrefix + "my_5fcards"},
    {"Slash", "a/b", kPrefix + "a_2fb"},
    {"BeyondAscii", "\xC3\xA9", kPrefix + "_c3_a9"},
    {"NotUtf8", "\xFF", kPrefix + "_ff"},
    {"Newline", "a\nb", kPrefix + "a_0ab"},
    {"Nul", std::string("a\0b", 3), kPrefix + "a_00b"},
    {"NulInAWellKnownName", std::string("com.x\0y", 7), kPrefix + "com_2ex_00y"},
    {"LongestEscaped", std::string(230, 'a'), kPrefix + std::string(230, 'a')},
    {"LongestWellKnown", "com." + std::string(251, 'a'), "com." + std::string(251, 'a')},
    {"TooLong", std::string(256, 'a'), kPrefix + kDigestOf256As},
};

INSTANTIATE_TEST_SUITE_P(Table, ConnectionName, testing::ValuesIn(kNames),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(ConnectionNames, DigestStandsInFromTheFirstByteTooMany) {
    const std::string digest = busNameForConnection(std::string(231, 'a'));
    EXPECT_EQ(digest.size(), kPrefix.size() + 64);
    EXPECT_EQ(busNameForConnection(std::string(76, '/')).size(), kPrefix.size() + 228);
    EXPECT_EQ(busNameForConnection(std::string(77, '/')).size(), kPrefix.size() + 64);
    EXPECT_NE(busNameForConnection(std::string(231, 'b')), digest);
}

TEST(ConnectionNames, WellKnownNameThatIsTooLongIsReplaced) {
    const std::string name = "com." + std::string(252, 'a');
    EXPECT_EQ(busNameForConnection(name).size(), kPrefix.size() + 64);
}

}  // namespace
}  // namespace qrx::platform
