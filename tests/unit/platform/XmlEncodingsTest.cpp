#include <string>

#include <gtest/gtest.h>

#include "platform/linux/XmlEncodings.h"

namespace qrx::platform {
namespace {

using namespace std::string_literals;

struct EncodingCase {
    const char* name;
    std::string bytes;
    std::string text;
    const char* encoding;
    std::string mark;
    bool exact = true;
};

const std::string kShiftJis = "<?xml version=\"1.0\" encoding=\"Shift_JIS\"?><t>";
const std::string kLatin1 = "<?xml version='1.0' encoding='ISO-8859-1'?><t>";

const EncodingCase kCases[] = {
    {"Empty", "", "", "UTF-8", ""},
    {"Ascii", "<t/>", "<t/>", "UTF-8", ""},
    {"Utf8", "<t>caf\xC3\xA9</t>", "<t>caf\xC3\xA9</t>", "UTF-8", ""},
    {"Utf8Mark", "\xEF\xBB\xBF<t/>", "<t/>", "UTF-8", "\xEF\xBB\xBF"},
    {"Utf16LittleMark", "\xFF\xFE<\0t\0/\0>\0"s, "<t/>", "UTF-16LE", "\xFF\xFE"},
    {"Utf16BigMark", "\xFE\xFF\0<\0t\0/\0>"s, "<t/>", "UTF-16BE", "\xFE\xFF"},
    {"Utf16LittleByPattern", "<\0t\0/\0>\0"s, "<t/>", "UTF-16LE", ""},
    {"Utf16BigByPattern", "\0<\0t\0/\0>"s, "<t/>", "UTF-16BE", ""},
    {"Utf16CutShort", "\xFF\xFE<\0t"s, "<t", "UTF-16LE", "\xFF\xFE", false},
    {"Utf32LittleMark", "\xFF\xFE\0\0<\0\0\0"s, "<", "UTF-32LE", "\xFF\xFE\0\0"s},
    {"Utf32BigMark", "\0\0\xFE\xFF\0\0\0<"s, "<", "UTF-32BE", "\0\0\xFE\xFF"s},
    {"ShiftJis", kShiftJis + "\x8E\x52</t>", kShiftJis + "\xE5\xB1\xB1</t>", "Shift_JIS", ""},
    {"Latin1", kLatin1 + "\xE9</t>", kLatin1 + "\xC3\xA9</t>", "ISO-8859-1", ""},
    {"StatedAfterBlanks", "\n " + kLatin1 + "\xE9</t>", "\n " + kLatin1 + "\xC3\xA9</t>",
     "ISO-8859-1", ""},
    {"InvalidUtf8IsReadAsLatin1", "<t>\xE9</t>", "<t>\xC3\xA9</t>", "UTF-8", "", false},
    {"BytesOfOnesAlone", "\xFF\xFF\xFF", "\xC3\xBF\xC3\xBF\xC3\xBF", "UTF-8", "", false},
    {"UnknownEncoding", "<?xml version='1.0' encoding='KLINGON'?><t/>",
     "<?xml version='1.0' encoding='KLINGON'?><t/>", "UTF-8", "", false},
    {"EmptyEncoding", "<?xml version='1.0' encoding=''?><t/>",
     "<?xml version='1.0' encoding=''?><t/>", "UTF-8", "", false},
    {"EncodingInWhichTheDeclarationReadsOtherwise", "<?xml version='1.0' encoding='UTF-16'?><t/>",
     "<?xml version='1.0' encoding='UTF-16'?><t/>", "UTF-8", "", false},
    {"MarkBeatsDeclaration", "\xEF\xBB\xBF" + kShiftJis + "\xC3\xA9</t>",
     kShiftJis + "\xC3\xA9</t>", "UTF-8", "\xEF\xBB\xBF"},
    {"DeclarationWithoutEncoding", "<?xml version='1.0'?><t encoding='UTF-16'/>",
     "<?xml version='1.0'?><t encoding='UTF-16'/>", "UTF-8", ""},
    {"UnfinishedDeclaration", "<?xml version='1.0' encoding='", "<?xml version='1.0' encoding='",
     "UTF-8", ""},
};

class XmlEncodings : public testing::TestWithParam<EncodingCase> {};

TEST_P(XmlEncodings, AreFoundAndDecoded) {
    const auto& row = GetParam();
    const DecodedXml decoded = decodedXml(row.bytes);
    EXPECT_EQ(decoded.text, row.text);
    EXPECT_EQ(decoded.encoding.name, row.encoding);
    EXPECT_EQ(decoded.encoding.byteOrderMark, row.mark);
    EXPECT_EQ(decoded.exact, row.exact);
}

TEST_P(XmlEncodings, GiveTheSameBytesBack) {
    const auto& row = GetParam();
    if (!row.exact) return;  // what was not valid is not written back
    const DecodedXml decoded = decodedXml(row.bytes);
    EXPECT_EQ(encodedXml(decoded.text, decoded.encoding), row.bytes);
}

INSTANTIATE_TEST_SUITE_P(Table, XmlEncodings, testing::ValuesIn(kCases),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(XmlEncoding, WritesWhatItLacksAsReferences) {
    const XmlEncoding latin1{.name = "ISO-8859-1", .byteOrderMark = ""};
    EXPECT_EQ(encodedXml("<t>\xC3\xA9\xE5\xB1\xB1\xF0\x9F\x98\x80</t>", latin1),
              "<t>\xE9&#23665;&#128512;</t>");
}

TEST(XmlEncoding, ThatIsUnknownWritesNothing) {
    const XmlEncoding unknown{.name = "KLINGON", .byteOrderMark = ""};
    EXPECT_EQ(encodedXml("<t/>", unknown), std::nullopt);
}

TEST(XmlEncoding, ConvertsTextsOfAnyLength) {
    std::string text = "<t>";
    for (int i = 0; i < 30'000; ++i)
        text += "\xE5\xB1\xB1";  // three bytes each: every buffer ends inside some character
    text += "</t>";
    const XmlEncoding utf16{.name = "UTF-16BE", .byteOrderMark = "\xFE\xFF"};
    const auto bytes = encodedXml(text, utf16);
    ASSERT_TRUE(bytes.has_value());
    EXPECT_EQ(bytes->size(), 2 + 2 * (30'000 + 7));
    EXPECT_EQ(decodedXml(*bytes).text, text);
}

TEST(XmlEncoding, ReadsInvalidBytesInTimeThatGrowsWithTheirNumber) {
    const std::string ones(1'000'000, '\xFF');
    EXPECT_EQ(decodedXml(ones).text.size(), 2 * ones.size());
}

}  // namespace
}  // namespace qrx::platform
