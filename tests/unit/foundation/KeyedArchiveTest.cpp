#include <gtest/gtest.h>

#include "foundation/KeyedArchive.h"
#include "platform/ports/Services.h"
#include "support/PythonArchives.h"

namespace qrx {
namespace {

using platform::PropertyUid;
using platform::PropertyValue;
using Dictionary = PropertyValue::Dictionary;
using Array = PropertyValue::Array;

constexpr auto kBinary = PropertyListFormat::binary;
constexpr auto kXml = PropertyListFormat::xml;

PropertyUid uid(std::uint64_t index) {
    return {index};
}

ArchiveRecord clip() {
    ArchiveRecord maker({"Maker", "NSObject"});
    maker.encodeText("name", "a");
    ArchiveRecord record({"Clip", "Thing", "NSObject"});
    record.encodeText("title", "a");
    record.encodeNumber("rate", 5);
    record.encodeObject("maker", maker);
    record.encodeText("comment", std::nullopt);
    return record;
}

Array clipObjects() {
    return {"$null",
            Dictionary{{"$class", uid(6)}, {"maker", uid(4)}, {"rate", uid(3)}, {"title", uid(2)}},
            "a",
            5,
            Dictionary{{"$class", uid(5)}, {"name", uid(2)}},
            Dictionary{{"$classname", "Maker"}, {"$classes", Array{"Maker", "NSObject"}}},
            Dictionary{{"$classname", "Clip"}, {"$classes", Array{"Clip", "Thing", "NSObject"}}}};
}

Dictionary archiveOf(Array objects) {
    return {{"$version", 100000},
            {"$archiver", "NSKeyedArchiver"},
            {"$top", Dictionary{{"root", uid(1)}}},
            {"$objects", std::move(objects)}};
}

std::optional<ArchivedObject> rootOf(const PropertyValue& list,
                                     PropertyListFormat format = kBinary) {
    const auto bytes = platform::propertyLists().written(list, format);
    return bytes ? ArchivedObject::rootOfKeyedArchive(*bytes) : std::nullopt;
}

TEST(KeyedArchive, HasTheLayoutThatHostsRead) {
    for (const auto format : {kBinary, kXml}) {
        const auto bytes = keyedArchiveOf(clip(), format);
        ASSERT_TRUE(bytes);
        EXPECT_EQ(platform::propertyLists().read(*bytes), PropertyValue(archiveOf(clipObjects())));
    }
}

TEST(KeyedArchive, IsReadByPython) {
    for (const auto format : {kBinary, kXml}) {
        EXPECT_EQ(test::readByPython(keyedArchiveOf(clip(), format).value()),
                  R"({"$classes": ["Clip", "Thing", "NSObject"], )"
                  R"("maker": {"$classes": ["Maker", "NSObject"], "name": "a"}, )"
                  R"("rate": 5, "title": "a"})");
    }
}

TEST(KeyedArchive, OfPythonIsRead) {
    for (const auto format : {kBinary, kXml}) {
        const auto bytes = test::writtenByPython(
            R"({"$classes": ["Clip", "NSObject"], "title": "caf\u00e9 \ud83d\ude00",)"
            R"( "rate": 18446744073709551615, "maker": {"$classes": ["Maker"], "name": "<&>"}})",
            format);
        const auto root = ArchivedObject::rootOfKeyedArchive(bytes);
        ASSERT_TRUE(root);
        EXPECT_EQ(root->className(), "Clip");
        EXPECT_EQ(root->decodeText("title"), "caf\xC3\xA9 \xF0\x9F\x98\x80");
        EXPECT_EQ(root->decodeNumber("rate"), UINT64_MAX);
        const auto maker = root->decodeObject("maker");
        ASSERT_TRUE(maker);
        EXPECT_EQ(maker->decodeText("name"), "<&>");
    }
}

TEST(KeyedArchive, ObjectsAreOfTheirClassAndItsAncestors) {
    const auto root = rootOf(archiveOf(clipObjects()));
    ASSERT_TRUE(root);
    EXPECT_TRUE(root->isOfClass("Clip"));
    EXPECT_TRUE(root->isOfClass("Thing"));
    EXPECT_FALSE(root->isOfClass("Maker"));
    EXPECT_FALSE(root->isOfClass(""));
}

TEST(KeyedArchive, LaterValueOfAKeyWins) {
    ArchiveRecord record({"A", "NSObject"});
    record.encodeText("key", "first");
    record.encodeNumber("key", 2);
    const auto root = ArchivedObject::rootOfKeyedArchive(keyedArchiveOf(record).value());
    ASSERT_TRUE(root);
    EXPECT_FALSE(root->decodeText("key"));
    EXPECT_EQ(root->decodeNumber("key"), 2U);
}

TEST(KeyedArchive, KeysOfTheContainerAreOutOfReach) {
    ArchiveRecord record({"A", "NSObject"});
    record.encodeText("$class", "mine");
    record.encodeText("", "empty");
    const auto root = ArchivedObject::rootOfKeyedArchive(keyedArchiveOf(record).value());
    ASSERT_TRUE(root);
    EXPECT_EQ(root->className(), "A");
    EXPECT_EQ(root->decodeText("$class"), "mine");
    EXPECT_EQ(root->decodeText(""), "empty");
}

TEST(KeyedArchive, TextThatIsTheNullMarkerIsAText) {
    ArchiveRecord record({"A", "NSObject"});
    record.encodeText("key", "$null");
    const auto root = ArchivedObject::rootOfKeyedArchive(keyedArchiveOf(record).value());
    ASSERT_TRUE(root);
    EXPECT_EQ(root->decodeText("key"), "$null");
}

TEST(KeyedArchive, TextThatAListCannotHoldTravelsAsItsBytes) {
    const std::string zero("a\0b", 3);
    for (const std::string& text : {zero, std::string("/V/\xE9.mov"), std::string("a\rb\x01")}) {
        SCOPED_TRACE(testing::PrintToString(text));
        ArchiveRecord record({"A", "NSObject"});
        record.encodeText("key", text);
        for (const auto format : {kBinary, kXml}) {
            const auto bytes = keyedArchiveOf(record, format);
            ASSERT_TRUE(bytes);
            const auto root = ArchivedObject::rootOfKeyedArchive(*bytes);
            ASSERT_TRUE(root);
            EXPECT_EQ(root->decodeText("key"), text);
        }
    }
}

TEST(KeyedArchive, ChangeableTextIsReadFromItsObject) {
    Array objects = clipObjects();
    objects[2] = Dictionary{{"$class", uid(7)}, {"NS.string", "from the host"}};
    objects.emplace_back(
        Dictionary{{"$classname", "NSMutableString"},
                   {"$classes", Array{"NSMutableString", "NSString", "NSObject"}}});
    const auto root = rootOf(archiveOf(objects));
    ASSERT_TRUE(root);
    EXPECT_EQ(root->decodeText("title"), "from the host");
}

TEST(KeyedArchive, ObjectThatHoldsItselfIsReadAsOftenAsAsked) {
    Array objects = clipObjects();
    objects[1] = Dictionary{{"$class", uid(6)}, {"maker", uid(1)}};
    auto object = rootOf(archiveOf(objects));
    for (int i = 0; i < 1000; ++i) {
        ASSERT_TRUE(object);
        EXPECT_EQ(object->className(), "Clip");
        object = object->decodeObject("maker");
    }
}

TEST(KeyedArchive, NothingOfTheAskedKindReadsAsNothing) {
    Array objects = clipObjects();
    objects[1] = Dictionary{{"$class", uid(6)}, {"nil", uid(0)},          {"far", uid(99)},
                            {"plain", "a"},     {"text", uid(2)},         {"number", uid(3)},
                            {"object", uid(4)}, {"huge", uid(UINT64_MAX)}};
    const auto root = rootOf(archiveOf(objects));
    ASSERT_TRUE(root);
    for (const char* const key : {"nil", "far", "plain", "missing", "huge"}) {
        SCOPED_TRACE(key);
        EXPECT_FALSE(root->decodeText(key));
        EXPECT_FALSE(root->decodeNumber(key));
        EXPECT_FALSE(root->decodeObject(key));
    }
    EXPECT_FALSE(root->decodeNumber("text"));
    EXPECT_FALSE(root->decodeObject("text"));
    EXPECT_FALSE(root->decodeText("number"));
    EXPECT_FALSE(root->decodeText("object"));
    EXPECT_FALSE(root->decodeNumber("object"));
}

struct NumberCase {
    const char* name;
    PropertyValue stored;
    std::optional<std::uint64_t> read;
};

class ArchivedNumber : public testing::TestWithParam<NumberCase> {};

TEST_P(ArchivedNumber, IsReadAs64BitsWithoutSign) {
    Array objects = clipObjects();
    objects[3] = GetParam().stored;
    const auto root = rootOf(archiveOf(objects));
    ASSERT_TRUE(root);
    EXPECT_EQ(root->decodeNumber("rate"), GetParam().read);
}

const NumberCase kNumbers[] = {
    {"Zero", 0, 0},
    {"Largest", UINT64_MAX, UINT64_MAX},
    {"NegativeWraps", -1, UINT64_MAX},
    {"Yes", true, 1},
    {"No", false, 0},
    {"RealIsCut", 3.9, 3},
    {"NegativeRealIsCutAndWraps", -3.9, static_cast<std::uint64_t>(-3)},
    {"RealBeyond64Bits", 1e20, std::nullopt},
    {"RealFarBelowZero", -1e20, std::nullopt},
    {"Text", "5", std::nullopt},
    {"List", Array{5}, std::nullopt},
};

INSTANTIATE_TEST_SUITE_P(Table, ArchivedNumber, testing::ValuesIn(kNumbers),
                         [](const auto& row) { return std::string(row.param.name); });

struct ListCase {
    const char* name;
    PropertyValue list;
};

class NoArchive : public testing::TestWithParam<ListCase> {};

TEST_P(NoArchive, HasNoRoot) {
    EXPECT_FALSE(rootOf(GetParam().list, kBinary));
    EXPECT_FALSE(rootOf(GetParam().list, kXml));
}

PropertyValue archiveWith(const char* key, PropertyValue value) {
    Dictionary archive = archiveOf(clipObjects());
    archive.insert_or_assign(key, std::move(value));
    return archive;
}

PropertyValue archiveWithout(const char* key) {
    Dictionary archive = archiveOf(clipObjects());
    archive.erase(key);
    return archive;
}

PropertyValue archiveWithObject(std::size_t place, PropertyValue value) {
    Array objects = clipObjects();
    objects[place] = std::move(value);
    return archiveOf(std::move(objects));
}

const ListCase kNoArchives[] = {
    {"Text", "NSKeyedArchiver"},
    {"List", clipObjects()},
    {"EmptyDictionary", Dictionary{}},
    {"NoVersion", archiveWithout("$version")},
    {"OtherVersion", archiveWith("$version", 1)},
    {"VersionIsText", archiveWith("$version", "100000")},
    {"NoArchiver", archiveWithout("$archiver")},
    {"OtherArchiver", archiveWith("$archiver", "NSArchiver")},
    {"NoTop", archiveWithout("$top")},
    {"TopIsAUid", archiveWith("$top", uid(1))},
    {"NoRoot", archiveWith("$top", Dictionary{})},
    {"RootIsANumber", archiveWith("$top", Dictionary{{"root", 1}})},
    {"RootIsNil", archiveWith("$top", Dictionary{{"root", uid(0)}})},
    {"RootPastTheList", archiveWith("$top", Dictionary{{"root", uid(7)}})},
    {"RootIsAText", archiveWith("$top", Dictionary{{"root", uid(2)}})},
    {"RootIsAClass", archiveWith("$top", Dictionary{{"root", uid(5)}})},
    {"NoObjects", archiveWithout("$objects")},
    {"ObjectsAreADictionary", archiveWith("$objects", Dictionary{})},
    {"ObjectsAreEmpty", archiveWith("$objects", Array{})},
    {"FirstObjectIsNotNull", archiveWithObject(0, "null")},
    {"RootIsAList", archiveWithObject(1, Array{})},
    {"RootWithoutClass", archiveWithObject(1, Dictionary{{"title", uid(2)}})},
    {"ClassIsAText", archiveWithObject(6, "Clip")},
    {"ClassWithoutName", archiveWithObject(6, Dictionary{{"$classes", Array{"Clip"}}})},
    {"ClassNameIsANumber", archiveWithObject(6, Dictionary{{"$classname", 5}})},
};

INSTANTIATE_TEST_SUITE_P(Table, NoArchive, testing::ValuesIn(kNoArchives),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(KeyedArchive, TooLargeForAListIsNotWritten) {
    ArchiveRecord record({"A", "NSObject"});
    record.encodeText("key", std::string(std::size_t{17} << 20U, 'x'));
    EXPECT_FALSE(keyedArchiveOf(record));
}

}  // namespace
}  // namespace qrx
