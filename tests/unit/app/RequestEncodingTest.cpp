#include <gtest/gtest.h>

#include "app/RequestEncoding.h"
#include "platform/ports/ServiceBus.h"

namespace qrx {
namespace {

using platform::BusBytes;
using platform::BusValue;
using Dictionary = BusValue::Dictionary;
using List = BusValue::List;

const PathDictionary kClip{.filePath = "/V/\xC3\xA9.mts", .volumeTitle = "AVCHD", .qt = true};
const PathDictionary kOddClip{.filePath = "/V/\xFF.mts", .volumeTitle = "AVCHD", .qt = false};

TEST(RequestEncoding, PathTravelsAsTextWhenItIsUtf8) {
    EXPECT_EQ(encoded(kClip),
              BusValue(Dictionary{
                  {"filePath", "/V/\xC3\xA9.mts"}, {"volumeTitle", "AVCHD"}, {"qt", true}}));
}

TEST(RequestEncoding, PathTravelsAsBytesWhenItIsNot) {
    EXPECT_EQ(encoded(kOddClip),
              BusValue(Dictionary{
                  {"filePath", BusBytes{"/V/\xFF.mts"}}, {"volumeTitle", "AVCHD"}, {"qt", false}}));
}

TEST(RequestEncoding, DictionariesComeBackAsTheyWent) {
    const std::vector<PathDictionary> clips{kClip, kOddClip, kClip};
    EXPECT_EQ(decodedDictionaries(encoded(clips)), clips);
    EXPECT_TRUE(decodedDictionaries(encoded(std::vector<PathDictionary>{})).empty());
}

TEST(RequestEncoding, RefusesWhatIsNoListOfDictionaries) {
    EXPECT_THROW(static_cast<void>(decodedDictionaries("text")), platform::BusError);
    EXPECT_THROW(static_cast<void>(decodedDictionaries(List{"text"})), platform::BusError);
    EXPECT_THROW(static_cast<void>(decodedDictionaries(List{Dictionary{{"filePath", "/x"}}})),
                 platform::BusError);
    EXPECT_THROW(static_cast<void>(decodedDictionaries(
                     List{Dictionary{{"filePath", "/x"}, {"volumeTitle", "t"}, {"qt", "yes"}}})),
                 platform::BusError);
}

TEST(RequestEncoding, LocationsAreTextsOrBytes) {
    const BusValue list = List{"/a", BusBytes{"/b\xFF"}, BusBytes{std::string("/c\0", 3)},
                               BusBytes{std::string("/d\0\0", 4)}, BusBytes{}};
    EXPECT_EQ(decodedPaths(list), (FilePaths{"/a", "/b\xFF", "/c", std::string("/d\0", 3), ""}));
    EXPECT_TRUE(decodedPaths(List{}).empty());
    EXPECT_THROW(static_cast<void>(decodedPaths(List{true})), platform::BusError);
    EXPECT_THROW(static_cast<void>(decodedPaths("/a")), platform::BusError);
}

struct LineCase {
    const char* name;
    PathDictionary clip;
    const char* line;
};

class JsonLine : public testing::TestWithParam<LineCase> {};

TEST_P(JsonLine, IsOneLine) {
    EXPECT_EQ(jsonLine(GetParam().clip), GetParam().line);
}

const LineCase kLines[] = {
    {"Plain",
     {"/a.mov", "Apple QuickTime", true},
     "{\"filePath\":\"/a.mov\",\"volumeTitle\":\"Apple QuickTime\",\"qt\":true}\n"},
    {"Newline",
     {"/a\nb", "T", false},
     "{\"filePath\":\"/a\\nb\",\"volumeTitle\":\"T\",\"qt\":false}\n"},
    {"Quote",
     {"/\"\\", "T", false},
     "{\"filePath\":\"/\\\"\\\\\",\"volumeTitle\":\"T\",\"qt\":false}\n"},
    {"Escape",
     {"/\x1b[2J", "T", false},
     "{\"filePath\":\"/\\u001b[2J\",\"volumeTitle\":\"T\",\"qt\":false}\n"},
    {"NotUtf8",
     {"/\xFF", "T", false},
     "{\"filePathBytes\":\"L/8=\",\"volumeTitle\":\"T\",\"qt\":false}\n"},
    {"NotUtf8ThreeBytes",
     {"/\xFF\xFE", "T", false},
     "{\"filePathBytes\":\"L//+\",\"volumeTitle\":\"T\",\"qt\":false}\n"},
    {"NotUtf8OneByte",
     {"\xFF", "T", false},
     "{\"filePathBytes\":\"/w==\",\"volumeTitle\":\"T\",\"qt\":false}\n"},
};

INSTANTIATE_TEST_SUITE_P(Table, JsonLine, testing::ValuesIn(kLines),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace
}  // namespace qrx
