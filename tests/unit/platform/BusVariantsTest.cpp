#include <cstdint>
#include <cstring>
#include <limits>
#include <stdexcept>
#include <string>

#include <fcntl.h>
#include <gio/gunixfdlist.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "platform/linux/BusVariants.h"

namespace qrx::platform {
namespace {

using Dictionary = BusValue::Dictionary;
using List = BusValue::List;

struct ValueCase {
    const char* name;
    const char* signature;
    BusValues values;
};

/// Bytes of the body as the bus library itself writes it.
std::size_t bodyBytesOnTheWire(GVariant* body) {
    const GlibHandle<GDBusMessage> message(g_dbus_message_new_method_call(":1.1", "/", "a.b", "c"));
    g_dbus_message_set_serial(message.get(), 1);
    g_dbus_message_set_body(message.get(), body);
    gsize size = 0;
    const GlibHandle<guchar> blob(g_dbus_message_to_blob(
        message.get(), &size, G_DBUS_CAPABILITY_FLAGS_UNIX_FD_PASSING, nullptr));
    std::uint32_t bodySize = 0;
    std::memcpy(&bodySize, blob.get() + 4,
                sizeof bodySize);  // header: endianness, type, flags, version
    return bodySize;
}

class BusValueCase : public testing::TestWithParam<ValueCase> {};

TEST_P(BusValueCase, ComesBackAsItWent) {
    const auto body = bodyOf(GetParam().values, GetParam().signature, nullptr);
    EXPECT_EQ(std::string(g_variant_get_type_string(body.get())),
              "(" + std::string(GetParam().signature) + ")");
    EXPECT_EQ(valuesOf(body.get(), {}), GetParam().values);
}

TEST_P(BusValueCase, HasTheSizeThatTheBusLibraryWrites) {
    const auto body = bodyOf(GetParam().values, GetParam().signature, nullptr);
    EXPECT_EQ(wireSize(GetParam().values, GetParam().signature), bodyBytesOnTheWire(body.get()));
}

const Dictionary kClip{{"filePath", "/Volumes/X/a.mts"}, {"volumeTitle", "AVCHD"}, {"qt", true}};
const Dictionary kOddClip{{"filePath", BusBytes{"/x/\xFF"}}, {"volumeTitle", ""}, {"qt", false}};

const ValueCase kValues[] = {
    {"Numbers",
     "biuxtd",
     {true, std::int32_t{-1}, std::uint32_t{7}, std::numeric_limits<std::int64_t>::min(),
      std::numeric_limits<std::uint64_t>::max(), 0.5}},
    {"Texts", "sso", {"", "\xC3\xA9", BusObjectPath{"/com/quillfen/RootObject"}}},
    {"Bytes", "ays", {BusBytes{std::string("\0\xFF", 2)}, "after"}},
    {"NoBytes", "ay", {BusBytes{}}},
    {"ListOfTexts", "as", {List{"a", "bcdef", ""}}},
    {"EmptyList", "asb", {List{}, true}},
    {"ListOfBytes", "aay", {List{BusBytes{"abc"}, BusBytes{"d"}}}},
    {"EmptyListOfDictionaries", "aa{sv}", {List{}}},
    {"Clips", "aa{sv}", {List{kClip, kOddClip, kClip}}},
    {"EmptyDictionary", "a{sv}b", {Dictionary{}, true}},
    {"Options",
     "a{sv}",
     {Dictionary{{"id", std::uint32_t{3}}, {"nested", kClip}, {"list", List{"a", true}}}}},
    {"Struct", "b(st)", {true, List{"text", std::uint64_t{9}}}},
    {"TypedDictionary", "a{st}", {Dictionary{{"a", std::uint64_t{1}}, {"bc", std::uint64_t{2}}}}},
    {"Found", "bso", {true, "com.x", BusObjectPath{"/"}}},
};

INSTANTIATE_TEST_SUITE_P(Table, BusValueCase, testing::ValuesIn(kValues),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(BusVariants, NothingIsAnEmptyBody) {
    EXPECT_EQ(valuesOf(nullptr, {}), BusValues{});
    EXPECT_EQ(valuesOf(bodyOf({}, "", nullptr).get(), {}), BusValues{});
    EXPECT_EQ(wireSize({}, ""), 0U);
}

TEST(BusVariants, RefusesWhatIsNotOfItsType) {
    EXPECT_THROW(static_cast<void>(bodyOf({"1"}, "i", nullptr)), std::invalid_argument);
    EXPECT_THROW(static_cast<void>(bodyOf({List{"1", true}}, "as", nullptr)),
                 std::invalid_argument);
    EXPECT_THROW(static_cast<void>(bodyOf({kClip}, "as", nullptr)), std::invalid_argument);
    EXPECT_THROW(static_cast<void>(bodyOf({BusBytes{"x"}}, "as", nullptr)), std::invalid_argument);
    EXPECT_THROW(static_cast<void>(bodyOf({true, true}, "b", nullptr)), std::invalid_argument);
    EXPECT_THROW(static_cast<void>(bodyOf({true}, "bb", nullptr)), std::invalid_argument);
    EXPECT_THROW(static_cast<void>(bodyOf({true}, "b)", nullptr)), std::invalid_argument);
    EXPECT_THROW(static_cast<void>(wireSize({"x"}, "ss")), std::invalid_argument);
}

TEST(BusVariants, RefusesTextsThatTheBusDoesNotCarry) {
    EXPECT_THROW(static_cast<void>(bodyOf({"\xFF"}, "s", nullptr)), std::invalid_argument);
    EXPECT_THROW(static_cast<void>(bodyOf({std::string("a\0b", 3)}, "s", nullptr)),
                 std::invalid_argument);
    EXPECT_THROW(static_cast<void>(bodyOf({BusObjectPath{""}}, "o", nullptr)),
                 std::invalid_argument);
    EXPECT_THROW(static_cast<void>(bodyOf({Dictionary{{"\xFF", true}}}, "a{sv}", nullptr)),
                 std::invalid_argument);
}

TEST(BusVariants, NarrowNumbersAreWidened) {
    const GlibHandle<GVariant> body(g_variant_ref_sink(g_variant_new(
        "(ynqgv)", guchar{200}, gint16{-2}, guint16{65535}, "as", g_variant_new_int32(5))));
    EXPECT_EQ(valuesOf(body.get(), {}), (BusValues{std::uint32_t{200}, std::int32_t{-2},
                                                   std::uint32_t{65535}, "as", std::int32_t{5}}));
}

TEST(BusVariants, DescriptorTravelsByItsNumber) {
    const int open = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
    ASSERT_GE(open, 0);
    const BusDescriptor descriptor(new int(open), [](const int* held) {
        ::close(*held);
        delete held;
    });
    const GlibHandle<GUnixFDList> list(g_unix_fd_list_new());
    const auto body = bodyOf({descriptor}, "h", list.get());
    EXPECT_EQ(g_unix_fd_list_get_length(list.get()), 1);
    EXPECT_EQ(valuesOf(body.get(), {descriptor}), BusValues{descriptor});
    EXPECT_EQ(wireSize({descriptor}, "h"), 4U);
    EXPECT_THROW(static_cast<void>(valuesOf(body.get(), {})), std::invalid_argument);
    EXPECT_THROW(static_cast<void>(bodyOf({descriptor}, "h", nullptr)), std::invalid_argument);
}

}  // namespace
}  // namespace qrx::platform
