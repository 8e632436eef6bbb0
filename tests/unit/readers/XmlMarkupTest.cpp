#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "platform/ports/Services.h"
#include "readers/XmlMarkup.h"

namespace qrx {
namespace {

struct MarkupCase {
    const char* name;
    std::string source;
    std::string markup;
};

const MarkupCase kMarkup[] = {
    {"EmptyElementHasAnEndTag", "<a/>", "<a></a>"},
    {"AttributesInDoubleQuotes", "<a x='1'/>", "<a x=\"1\"></a>"},
    {"AttributesInDocumentOrder", "<a z='1' m='2' a='3'/>", "<a z=\"1\" m=\"2\" a=\"3\"></a>"},
    {"EscapesInText", "<t>5 &lt; 6 &gt; 4 &amp; \"'</t>", "<t>5 &lt; 6 &gt; 4 &amp; \"'</t>"},
    {"EscapesInAttributes", "<t a='&lt;&amp;&gt;&quot;&apos;'/>",
     "<t a=\"&lt;&amp;&gt;&quot;'\"></t>"},
    {"LineEndInAnAttribute", "<t a='1&#10;2&#9;3&#13;4'/>", "<t a=\"1&#10;2&#9;3&#13;4\"></t>"},
    {"LineEndInText", "<t>1\n2\t3</t>", "<t>1\n2\t3</t>"},
    {"CarriageReturnInText", "<t>1&#13;2</t>", "<t>1&#13;2</t>"},
    {"Comment", "<t><!--c--></t>", "<t><!--c--></t>"},
    {"Instruction", "<t><?pi d?><?q?></t>", "<t><?pi d?><?q?></t>"},
    {"CharacterDataIsText", "<t><![CDATA[<&>]]></t>", "<t>&lt;&amp;&gt;</t>"},
    {"PrefixesAndNamespaces", "<p:a xmlns:p='u' p:b='1'><p:c/></p:a>",
     "<p:a xmlns:p=\"u\" p:b=\"1\"><p:c></p:c></p:a>"},
    {"NoDeclaration", "<?xml version='1.0'?><a/>", "<a></a>"},
    {"BlankTextIsGone", "<a>\n <b/>\n</a>", "<a><b></b></a>"},
};

class NodeText : public testing::TestWithParam<MarkupCase> {};

TEST_P(NodeText, IsItsMarkup) {
    const auto document = platform::xmlParser().parse(GetParam().source);
    ASSERT_TRUE(document);
    EXPECT_EQ(XmlMarkup(*document->root).text(), GetParam().markup);
}

TEST_P(NodeText, IsReadAsTheSameDocument) {
    const auto document = platform::xmlParser().parse(GetParam().markup);
    ASSERT_TRUE(document);
    EXPECT_EQ(XmlMarkup(*document->root).text(), GetParam().markup);
}

INSTANTIATE_TEST_SUITE_P(Table, NodeText, testing::ValuesIn(kMarkup),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(XmlMarkup, HasThePartOfEachNodeInDocumentOrder) {
    const auto document =
        platform::xmlParser().parse("<r xmlns:p='u'><a>1<p:b/></a><!--c--><d x='2'/></r>");
    ASSERT_TRUE(document);
    const XmlMarkup markup(*document->root);
    std::vector<std::string> texts;
    texts.reserve(markup.parts().size());
    for (const auto& part : markup.parts())
        texts.emplace_back(markup.textOf(part));
    EXPECT_EQ(texts, (std::vector<std::string>{markup.text(), "<a>1<p:b></p:b></a>", "1",
                                               "<p:b></p:b>", "<!--c-->", "<d x=\"2\"></d>"}));
}

TEST(XmlMarkup, OfANodeInsideIsThatPart) {
    const auto document = platform::xmlParser().parse("<r xmlns:p='u'><p:a>1</p:a></r>");
    ASSERT_TRUE(document);
    EXPECT_EQ(XmlMarkup(*document->root->children.front()).text(), "<p:a>1</p:a>")
        << "a namespace of the root is not repeated";
}

TEST(TextValue, IsAllTextBelow) {
    const auto document = platform::xmlParser().parse("<r>a<b>b<!--x-->c</b><?p d?>e<f/></r>");
    ASSERT_TRUE(document);
    EXPECT_EQ(textValue(*document->root), "abce");
    EXPECT_EQ(textValue(*document->root->children.back()), "");
    const auto* const element = document->root->children[1];
    EXPECT_EQ(textValue(*element->children[1]), "x") << "of a comment its own";
}

}  // namespace
}  // namespace qrx
