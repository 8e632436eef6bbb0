#include <limits>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "platform/linux/PlistPropertyList.h"
#include "platform/linux/PropertyListBounds.h"

namespace qrx::platform {
namespace {

constexpr auto kBinary = PropertyListFormat::binary;
constexpr auto kXml = PropertyListFormat::xml;

std::optional<PropertyValue> read(std::string_view list) {
    return PlistPropertyList().read(std::as_bytes(std::span(list)));
}

std::optional<PropertyValue> writtenAndRead(const PropertyValue& value, PropertyListFormat format) {
    const PlistPropertyList lists;
    const auto bytes = lists.written(value, format);
    return bytes ? lists.read(*bytes) : std::nullopt;
}

std::string bigEndian(std::uint64_t number, std::size_t size) {
    std::string bytes(size, '\0');
    for (std::size_t i = size; i > 0; --i) {
        bytes[i - 1] = static_cast<char>(number & 0xFFU);
        number >>= 8U;
    }
    return bytes;
}

/// The 32 bytes at the end of a binary list; the first 6 are unused.
struct Trailer {
    std::uint64_t offsetSize = 4;
    std::uint64_t referenceSize = 1;
    std::optional<std::uint64_t> objects = std::nullopt;
    std::uint64_t top = 0;
    std::optional<std::uint64_t> table = std::nullopt;
};

/// A binary list of these objects, each given as its bytes; references are of 1 byte, or of 2 where
/// the trailer says so.
std::string binaryList(const std::vector<std::string>& objects, const Trailer& trailer = {}) {
    std::string list = "bplist00";
    std::string offsets;
    for (const std::string& object : objects) {
        offsets += bigEndian(list.size(), 4);
        list += object;
    }
    const std::size_t table = list.size();
    return list + offsets + std::string(6, '\0') + bigEndian(trailer.offsetSize, 1) +
           bigEndian(trailer.referenceSize, 1) +
           bigEndian(trailer.objects.value_or(objects.size()), 8) + bigEndian(trailer.top, 8) +
           bigEndian(trailer.table.value_or(table), 8);
}

std::string xmlList(std::string_view body) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">" +
           std::string(body) + "</plist>";
}

PropertyValue arraysWithinOneAnother(std::size_t depth) {
    PropertyValue value = PropertyValue::Array{};
    for (std::size_t i = 1; i < depth; ++i) {
        PropertyValue::Array outer;
        outer.push_back(std::move(value));
        value = PropertyValue(std::move(outer));
    }
    return value;
}

// ---- every type, there and back

struct ValueCase {
    const char* name;
    PropertyValue value;
};

class EveryValue : public testing::TestWithParam<ValueCase> {};

TEST_P(EveryValue, IsReadBackFromBinary) {
    EXPECT_EQ(writtenAndRead(GetParam().value, kBinary), GetParam().value);
}

TEST_P(EveryValue, IsReadBackFromXml) {
    EXPECT_EQ(writtenAndRead(GetParam().value, kXml), GetParam().value);
}

const ValueCase kValues[] = {
    {"Yes", true},
    {"No", false},
    {"Zero", 0},
    {"Negative", -5},
    {"OneByteMost", 255},
    {"TwoBytes", 256},
    {"SmallestInteger", std::numeric_limits<std::int64_t>::min()},
    {"LargestSigned", std::numeric_limits<std::int64_t>::max()},
    {"FirstUnsigned", std::uint64_t{1} << 63U},
    {"LargestUnsigned", std::numeric_limits<std::uint64_t>::max()},
    {"Real", 29.97},
    {"WholeReal", 25.0},
    {"HugeReal", 1e300},
    {"NegativeReal", -0.125},
    {"EmptyText", ""},
    {"AsciiText", "Start Timecode"},
    {"BlanksAroundText", " \n a \t"},
    {"MarkupInText", "<key>&amp;\"'</key>"},
    {"AccentedText", "caf\xC3\xA9"},
    {"TextBeyondSixteenBits", "\xF0\x9F\x98\x80"},
    {"LongText", std::string(70000, 'x')},
    {"NoBytes", PropertyValue::Data{}},
    {"Bytes", PropertyValue::Data{std::byte{0}, std::byte{0xFF}, std::byte{0x80}}},
    {"FirstUid", PropertyUid{0}},
    {"WideUid", PropertyUid{70000}},
    {"EmptyArray", PropertyValue::Array{}},
    {"EmptyDictionary", PropertyValue::Dictionary{}},
    {"Nested",
     PropertyValue::Dictionary{
         {"list", PropertyValue::Array{1, "a", "a", PropertyUid{1}, PropertyValue::Dictionary{}}},
         {"a", PropertyValue::Dictionary{{"list", "a"}, {"", 1.5}}}}},
};

INSTANTIATE_TEST_SUITE_P(Table, EveryValue, testing::ValuesIn(kValues),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(PlistPropertyList, UidIsADictionaryInXml) {
    EXPECT_EQ(read(xmlList("<dict><key>CF$UID</key><integer>7</integer></dict>")),
              PropertyValue(PropertyUid{7}));
    const PropertyValue negative = PropertyValue::Dictionary{{"CF$UID", -7}};
    EXPECT_EQ(read(xmlList("<dict><key>CF$UID</key><integer>-7</integer></dict>")), negative);
    const PropertyValue text = PropertyValue::Dictionary{{"CF$UID", "7"}};
    EXPECT_EQ(read(xmlList("<dict><key>CF$UID</key><string>7</string></dict>")), text);
}

TEST(PlistPropertyList, DictionaryThatLooksLikeAUidStaysOneInBinary) {
    const PropertyValue lookalike = PropertyValue::Dictionary{{"CF$UID", 7}};
    EXPECT_EQ(writtenAndRead(lookalike, kBinary), lookalike);
}

TEST(PlistPropertyList, WritesNoTextThatTheFormatCannotHold) {
    const PlistPropertyList lists;
    for (const std::string& text :
         {std::string("a\0b", 3), std::string("\xFF"), std::string("\xC3")}) {
        SCOPED_TRACE(testing::PrintToString(text));
        EXPECT_FALSE(lists.holdsText(text, kBinary));
        EXPECT_FALSE(lists.written(text, kBinary));
        EXPECT_FALSE(lists.written(PropertyValue::Dictionary{{text, 1}}, kBinary));
    }
    for (const char* const text : {"\x01", "a\rb", "\xEF\xBF\xBE", "\xEF\xBF\xBF"}) {
        SCOPED_TRACE(testing::PrintToString(text));
        EXPECT_EQ(writtenAndRead(text, kBinary), PropertyValue(text));
        EXPECT_FALSE(lists.holdsText(text, kXml));
        EXPECT_FALSE(lists.written(text, kXml));
    }
}

TEST(PlistPropertyList, WritesNoRealThatIsNoNumber) {
    EXPECT_FALSE(PlistPropertyList().written(std::numeric_limits<double>::quiet_NaN(), kBinary));
    EXPECT_FALSE(PlistPropertyList().written(std::numeric_limits<double>::infinity(), kXml));
}

// ---- limits

TEST(PropertyListLimits, DepthOf64) {
    for (const auto format : {kBinary, kXml}) {
        const PropertyValue deepest = arraysWithinOneAnother(kMostPropertyListDepth);
        EXPECT_EQ(writtenAndRead(deepest, format), deepest);
        EXPECT_FALSE(PlistPropertyList().written(arraysWithinOneAnother(kMostPropertyListDepth + 1),
                                                 format));
    }
    std::vector<std::string> chain;
    for (unsigned i = 1; i <= kMostPropertyListDepth; ++i) {
        chain.push_back("\xA1" + bigEndian(i, 1));
    }
    chain.back() = "\xA0";
    EXPECT_TRUE(read(binaryList(chain)));
    chain.back() = "\xA1" + bigEndian(chain.size(), 1);
    chain.push_back("\xA0");
    EXPECT_FALSE(read(binaryList(chain)));
}

TEST(PropertyListLimits, DepthOfXmlThatNobodyWouldWrite) {
    const auto nested = [](std::size_t depth) {
        std::string open;
        std::string close;
        for (std::size_t i = 0; i < depth; ++i) {
            open += "<array>";
            close += "</array>";
        }
        return xmlList(open + close);
    };
    EXPECT_TRUE(read(nested(kMostPropertyListDepth)));
    EXPECT_FALSE(read(nested(kMostPropertyListDepth + 1)));
    EXPECT_FALSE(read(nested(500'000)));
}

TEST(PropertyListLimits, HundredThousandObjects) {
    for (const auto format : {kBinary, kXml}) {
        PropertyValue::Array values(kMostPropertyListObjects - 1, PropertyValue(1));
        const PropertyValue most = values;
        EXPECT_EQ(writtenAndRead(most, format), most);
        values.emplace_back(1);
        EXPECT_FALSE(PlistPropertyList().written(values, format));
    }
    std::string items;
    for (std::size_t i = 0; i < kMostPropertyListObjects; ++i)
        items += "<true/>";
    EXPECT_FALSE(read(xmlList("<array>" + items + "</array>")));
}

TEST(PropertyListLimits, EveryMentionOfASharedObjectCounts) {
    const auto mentions = [](std::uint64_t count) {
        const std::string array = "\xAF\x12" + bigEndian(count, 4) + std::string(count, '\x01');
        return binaryList({array, "\x10\x07"});
    };
    EXPECT_TRUE(read(mentions(kMostPropertyListObjects - 1)));
    EXPECT_FALSE(read(mentions(kMostPropertyListObjects)));
}

TEST(PropertyListLimits, SharingMustNotUnfoldBeyond16MiB) {
    const std::size_t size = std::size_t{1} << 20U;
    const auto shared = [&](std::uint64_t mentions) {
        const std::string array =
            "\xAF\x10" + bigEndian(mentions, 1) + std::string(mentions, '\x01');
        return binaryList({array, "\x5F\x12" + bigEndian(size, 4) + std::string(size, 'x')});
    };
    EXPECT_TRUE(read(shared(16)));
    EXPECT_FALSE(read(shared(17)));
}

TEST(PropertyListLimits, SixteenMiB) {
    const std::string open = "<?xml version=\"1.0\"?><plist version=\"1.0\"><string>";
    const std::string close = "</string></plist>";
    const std::string text(kMostPropertyListBytes - open.size() - close.size(), 'x');
    EXPECT_TRUE(read(open + text + close));
    EXPECT_FALSE(read(open + text + "x" + close));
    EXPECT_FALSE(PlistPropertyList().written(std::string(kMostPropertyListBytes, 'x'), kBinary));
}

// ---- hostile binary lists

struct ListCase {
    const char* name;
    std::string list;
};

class HostileList : public testing::TestWithParam<ListCase> {};

TEST_P(HostileList, IsRefused) {
    EXPECT_FALSE(read(GetParam().list));
}

using namespace std::string_literals;

const ListCase kHostileBinary[] = {
    {"Empty", ""},
    {"SignatureAlone", "bplist00"},
    {"OtherVersion", "bplist15" + binaryList({"\x09"}).substr(8)},
    {"NoObjects", binaryList({})},
    {"ArrayOfItself", binaryList({"\xA1\x00"s})},
    {"DictionaryOfItself", binaryList({"\xD1\x01\x00"s, "\x51k"})},
    {"TwoArraysOfEachOther", binaryList({"\xA1\x01"s, "\xA1\x00"s})},
    {"ArrayMentionedTwice", binaryList({"\xA2\x01\x01"s, "\xA0"})},
    {"DoublingArrays", binaryList({"\xA2\x01\x01"s, "\xA2\x02\x02"s, "\xA2\x03\x03"s, "\x09"})},
    {"ReferencePastTheList", binaryList({"\xA1\x02"s, "\x09"})},
    {"TopPastTheList", binaryList({"\x09"}, {.top = 1})},
    {"HugeTop", binaryList({"\x09"}, {.top = UINT64_MAX})},
    {"HugeObjectCount", binaryList({"\x09"}, {.objects = UINT64_MAX})},
    {"ObjectCountPastTheTable", binaryList({"\x09"}, {.objects = 2})},
    {"OffsetTableInTheSignature", binaryList({"\x09"}, {.table = 4})},
    {"OffsetTablePastTheEnd", binaryList({"\x09"}, {.table = 1000})},
    {"HugeOffsetTable", binaryList({"\x09"}, {.table = UINT64_MAX})},
    {"OffsetsOfNoBytes", binaryList({"\x09"}, {.offsetSize = 0})},
    {"OffsetsOfNineBytes", binaryList({"\x09"}, {.offsetSize = 9})},
    {"OffsetsPastTheObjects", binaryList({"\x09"}, {.offsetSize = 8})},
    {"ReferencesOfNoBytes", binaryList({"\xA1\x01"s, "\x09"}, {.referenceSize = 0})},
    {"ReferencesOf255Bytes", binaryList({"\xA1\x01"s, "\x09"}, {.referenceSize = 255})},
    {"Null", binaryList({"\x00"s})},
    {"Fill", binaryList({"\x0F"})},
    {"Date", binaryList({"\x33" + std::string(8, '\0')})},
    {"Set", binaryList({"\xC1\x01"s, "\x09"})},
    {"UnknownMarker", binaryList({"\x70"})},
    {"IntegerOf32Bytes", binaryList({"\x15" + std::string(32, '\0')})},
    {"IntegerBeyond64Bits", binaryList({"\x14\x01"s + std::string(15, '\0')})},
    {"IntegerCutShort", binaryList({"\x13\x01"s})},
    {"RealOfTwoBytes", binaryList({"\x21\x00\x00"s})},
    {"RealCutShort", binaryList({"\x23\x00"s})},
    {"RealThatIsNoNumber", binaryList({"\x22\x7F\xC0\x00\x00"s})},
    {"UidOfThreeBytes", binaryList({"\x82\x00\x00\x01"s})},
    {"UidOf16Bytes", binaryList({"\x8F" + std::string(16, '\0')})},
    {"UidCutShort", binaryList({"\x83\x00"s})},
    {"TextCutShort", binaryList({"\x55 ab"s})},
    {"TextOfHugeCount", binaryList({"\x5F\x13" + bigEndian(UINT64_MAX, 8)})},
    {"WideTextOfWrappingCount", binaryList({"\x6F\x13" + bigEndian(std::uint64_t{1} << 63U, 8)})},
    {"CountOf16Bytes", binaryList({"\x5F\x14" + std::string(16, '\0')})},
    {"CountThatIsNoInteger", binaryList({"\x5F\x51" + "a"s})},
    {"CountMissing", binaryList({"\x5F"})},
    {"ArrayOfHugeCount", binaryList({"\xAF\x13" + bigEndian(UINT64_MAX, 8)})},
    {"DictionaryOfWrappingCount", binaryList({"\xDF\x13" + bigEndian(std::uint64_t{1} << 63U, 8)})},
    {"KeyThatIsNoText", binaryList({"\xD1\x01\x01"s, "\x09"})},
    {"KeyThatIsADictionary", binaryList({"\xD1\x01\x02"s, "\xD0", "\x09"})},
    {"AsciiAbove127", binaryList({"\x51\xE9"s})},
    {"AsciiWithZero", binaryList({"\x52 \x00"s})},
    {"WideTextWithZero", binaryList({"\x61\x00\x00"s})},
    {"HighSurrogateAlone", binaryList({"\x61\xD8\x3D"s})},
    {"LowSurrogateFirst", binaryList({"\x62\xDE\x00\xD8\x3D"s})},
    {"HighSurrogateTwice", binaryList({"\x62\xD8\x3D\xD8\x3D"s})},
};

INSTANTIATE_TEST_SUITE_P(Binary, HostileList, testing::ValuesIn(kHostileBinary),
                         [](const auto& row) { return std::string(row.param.name); });

const ListCase kHostileXml[] = {
    {"NotAListAtAll", "hello"},
    {"OtherRoot", "<html><true/></html>"},
    {"NothingInside", xmlList("")},
    {"TwoValues", xmlList("<true/><false/>")},
    {"EmptyRoot", "<plist version=\"1.0\"/>"},
    {"RootNotClosed", "<plist version=\"1.0\"><true/>"},
    {"SomethingBehindTheRoot", xmlList("<true/>") + "<true/>"},
    {"EntityBomb",
     "<!DOCTYPE plist [<!ENTITY a \"aaaaaaaa\"><!ENTITY b \"&a;&a;&a;\">]>"
     "<plist><string>&b;</string></plist>"},
    {"UnknownEntity", xmlList("<string>&nbsp;</string>")},
    {"EntityNotEnded", xmlList("<string>&amp</string>")},
    {"ReferenceToZero", xmlList("<string>&#0;</string>")},
    {"ReferenceToASurrogate", xmlList("<string>&#xD800;</string>")},
    {"ReferenceBeyondUnicode", xmlList("<string>&#x110000;</string>")},
    {"ReferenceOfManyDigits", xmlList("<string>&#00000000000000000065;</string>")},
    {"CharacterData", xmlList("<string><![CDATA[a]]></string>")},
    {"MarkupInText", xmlList("<string>a<true/></string>")},
    {"CommentNotEnded", xmlList("<!-- <true/>")},
    {"InstructionInside", xmlList("<?php ?><true/>")},
    {"WrongEndTag", xmlList("<array></dict>")},
    {"EndTagOfNothing", "</plist>"},
    {"TextInAnArray", xmlList("<array>a</array>")},
    {"KeyInAnArray", xmlList("<array><key>a</key></array>")},
    {"ValueWithoutKey", xmlList("<dict><true/></dict>")},
    {"KeyWithoutValue", xmlList("<dict><key>a</key></dict>")},
    {"TwoKeys", xmlList("<dict><key>a</key><key>b</key></dict>")},
    {"UnknownElement", xmlList("<set/>")},
    {"Date", xmlList("<date>2011-03-05T14:02:09Z</date>")},
    {"AttributeOnAValue", xmlList("<string a=\"b\">a</string>")},
    {"EmptyInteger", xmlList("<integer/>")},
    {"IntegerOfLetters", xmlList("<integer>abc</integer>")},
    {"IntegerBeyond64Bits", xmlList("<integer>18446744073709551616</integer>")},
    {"IntegerBelow64Bits", xmlList("<integer>-9223372036854775809</integer>")},
    {"RealOfLetters", xmlList("<real>abc</real>")},
    {"RealInfinite", xmlList("<real>inf</real>")},
    {"DataOfThreeLetters", xmlList("<data>abc</data>")},
    {"DataOfOtherCharacters", xmlList("<data>ab*=</data>")},
    {"DataOfPaddingAlone", xmlList("<data>====</data>")},
    {"TruthWithText", xmlList("<true>no</true>")},
    {"OtherEncoding", "<?xml version=\"1.0\" encoding=\"UTF-16\"?><plist><true/></plist>"},
    {"BytesThatAreNoUtf8", xmlList("<string>\xFF</string>")},
    {"ZeroByte", xmlList("<string>\0</string>"s)},
    {"ControlCharacter", xmlList("<string>\x01</string>")},
};

INSTANTIATE_TEST_SUITE_P(Xml, HostileList, testing::ValuesIn(kHostileXml),
                         [](const auto& row) { return std::string(row.param.name); });

// ---- lists of other hands

struct ReadCase {
    const char* name;
    std::string list;
    PropertyValue value;
};

class ForeignList : public testing::TestWithParam<ReadCase> {};

TEST_P(ForeignList, IsRead) {
    EXPECT_EQ(read(GetParam().list), GetParam().value);
}

const ReadCase kForeign[] = {
    {"ByteOrderMark", "\xEF\xBB\xBF" + xmlList("<true/>"), true},
    {"NoDeclaration", "<plist><true/></plist>", true},
    {"LowerCaseEncoding", "<?xml version='1.0' encoding='utf-8'?><plist><true/></plist>", true},
    {"CommentsBetween", "<!-- a --><plist><!-- b --><array><!-- c --></array></plist><!-- d -->",
     PropertyValue::Array{}},
    {"References", xmlList("<string>&lt;&#233;&#x1F600;&apos;&quot;&gt;&amp;</string>"),
     "<\xC3\xA9\xF0\x9F\x98\x80'\">&"},
    {"EmptyElements", xmlList("<array><string/><data/><dict/><array/></array>"),
     PropertyValue::Array{"", PropertyValue::Data{}, PropertyValue(), PropertyValue::Array{}}},
    {"HexInteger", xmlList("<integer>0x1F</integer>"), 31},
    {"PlusSign", xmlList("<integer>+5</integer>"), 5},
    {"BrokenUpData", xmlList("<data>\n\tAP\n\t+A\n</data>"),
     PropertyValue::Data{std::byte{0}, std::byte{0xFF}, std::byte{0x80}}},
    {"SixteenByteInteger", binaryList({"\x14" + bigEndian(0, 8) + bigEndian(UINT64_MAX, 8)}),
     UINT64_MAX},
    {"NegativeInteger", binaryList({"\x13" + bigEndian(UINT64_MAX, 8)}), -1},
    {"UidOfEightBytes", binaryList({"\x87" + bigEndian(9, 8)}), PropertyUid{9}},
    {"SinglePrecision", binaryList({"\x22\x3F\xC0\x00\x00"s}), 1.5},
    {"SharedText",
     binaryList({"\xA2\x01\x01"s,
                 "\x51"
                 "a"}),
     PropertyValue::Array{"a", "a"}},
    {"TopIsNotFirst",
     binaryList({"\x51"
                 "a",
                 "\xA1\x00"s},
                {.top = 1}),
     PropertyValue::Array{"a"}},
};

INSTANTIATE_TEST_SUITE_P(Table, ForeignList, testing::ValuesIn(kForeign),
                         [](const auto& row) { return std::string(row.param.name); });

// ---- damage

PropertyValue oneOfEach() {
    return PropertyValue::Dictionary{
        {"array", PropertyValue::Array{true, -3, UINT64_MAX, 29.97, PropertyUid{300}}},
        {"data", PropertyValue::Data{std::byte{1}, std::byte{2}}},
        {"text", "caf\xC3\xA9"},
        {"\xC3\xA9", "text"},
    };
}

TEST(DamagedList, IsRefusedWhereverItIsCut) {
    for (const auto format : {kBinary, kXml}) {
        const auto bytes = PlistPropertyList().written(oneOfEach(), format);
        ASSERT_TRUE(bytes);
        std::size_t whole = bytes->size();
        while ((*bytes)[whole - 1] == std::byte{'\n'} && format == kXml)
            --whole;
        for (std::size_t cut = 0; cut < whole; ++cut) {
            SCOPED_TRACE(cut);
            EXPECT_FALSE(PlistPropertyList().read(std::span(*bytes).first(cut)));
        }
    }
}

TEST(DamagedList, IsRefusedOrStaysAListWithAnyByteChanged) {
    for (const auto format : {kBinary, kXml}) {
        auto bytes = PlistPropertyList().written(oneOfEach(), format).value();
        std::size_t refused = 0;
        for (std::byte& byte : bytes) {
            const std::byte before = byte;
            for (const unsigned flipped : {1U, 2U, 4U, 8U, 16U, 32U, 64U, 128U, 255U}) {
                byte = before ^ static_cast<std::byte>(flipped);
                const auto list = PlistPropertyList().read(bytes);
                if (!list) {
                    ++refused;
                } else {
                    EXPECT_EQ(writtenAndRead(*list, kBinary), *list);
                }
            }
            byte = before;
        }
        EXPECT_GT(refused, bytes.size());
        EXPECT_EQ(PlistPropertyList().read(bytes), oneOfEach());
    }
}

}  // namespace
}  // namespace qrx::platform
