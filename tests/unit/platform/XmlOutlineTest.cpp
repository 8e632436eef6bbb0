#include <string>

#include <gtest/gtest.h>

#include "platform/linux/XmlOutline.h"
#include "platform/ports/XmlDocument.h"

namespace qrx::platform {
namespace {

std::string attributes(std::size_t count) {
    std::string text;
    for (std::size_t i = 0; i < count; ++i)
        text += " a" + std::to_string(i) + "=''";
    return text;
}

TEST(AttributeLimit, IsExceededByOneMore) {
    EXPECT_FALSE(exceedsAttributeLimit(""));
    EXPECT_FALSE(exceedsAttributeLimit("<t" + attributes(XmlParser::kMostAttributes) + "/>"));
    EXPECT_TRUE(exceedsAttributeLimit("<t" + attributes(XmlParser::kMostAttributes + 1) + "/>"));
}

TEST(AttributeLimit, IsOfOneTag) {
    std::string markup;
    for (int i = 0; i < 10; ++i)
        markup += "<t" + attributes(1000) + "/>";
    EXPECT_FALSE(exceedsAttributeLimit(markup));
}

TEST(AttributeLimit, CountsValuesAfterBlanks) {
    std::string tag = "<t";
    for (std::size_t i = 0; i <= XmlParser::kMostAttributes; ++i)
        tag += " a = \n\"\"";
    EXPECT_TRUE(exceedsAttributeLimit(tag));
}

TEST(AttributeLimit, CountsNoOtherEqualsSigns) {
    EXPECT_FALSE(exceedsAttributeLimit("<t>" + std::string(100'000, '=') + "</t>"));
}

struct RootCase {
    const char* name;
    const char* document;
    std::optional<std::size_t> start;
};

constexpr RootCase kRoots[] = {
    {"AtTheFront", "<r/>", 0},
    {"AfterBlanks", " \r\n\t<r/>", 4},
    {"AfterADeclaration", "<?xml version=\"1.0\"?><r/>", 21},
    {"AfterAnInstruction", "<?a <x> ?><r/>", 10},
    {"AfterAComment", "<!-- <x> --><r/>", 12},
    {"AfterADocumentType", "<!DOCTYPE r><r/>", 12},
    {"AfterASystemIdentifier", "<!DOCTYPE r SYSTEM \"a>b\"><r/>", 25},
    {"AfterASubset", "<!DOCTYPE r [<!ENTITY e '>]'><!--]>--><?p ]>?>]><r/>", 48},
    {"Nowhere", "", std::nullopt},
    {"BlanksAlone", "  ", std::nullopt},
    {"UnfinishedComment", "<!-- <r/>", std::nullopt},
    {"UnfinishedDocumentType", "<!DOCTYPE r [<r/>", std::nullopt},
};

class StartOfRoot : public testing::TestWithParam<RootCase> {};

TEST_P(StartOfRoot, IsBehindEverythingElse) {
    EXPECT_EQ(startOfRoot(GetParam().document), GetParam().start);
}

INSTANTIATE_TEST_SUITE_P(Table, StartOfRoot, testing::ValuesIn(kRoots),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace
}  // namespace qrx::platform
