#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "platform/linux/LibxmlParser.h"
#include "support/HostileXml.h"
#include "support/TemporaryFolder.h"

namespace qrx::platform {
namespace {

using namespace std::string_literals;

std::shared_ptr<XmlDocument> parsed(const std::string& bytes) {
    return LibxmlParser().parse(bytes);
}

/// One line that shows kinds, names, attributes and texts: "r[a=1](t'text' !'comment' ?p'd')".
void outline(const XmlNode& node, std::string& into) {
    const std::string text = "'" + node.text + "'";
    switch (node.kind) {
        case XmlNodeKind::text:
            into += text;
            return;
        case XmlNodeKind::comment:
            into += "!" + text;
            return;
        case XmlNodeKind::instruction:
            into += "?" + node.name + text;
            return;
        case XmlNodeKind::element:
            into += node.name;
    }
    for (const auto& attribute : node.attributes)
        into += "[" + attribute.name + "=" + attribute.value + "]";
    if (node.children.empty()) return;
    into += "(";
    for (const XmlNode* const child : node.children) {
        if (child != node.children.front()) into += " ";
        outline(*child, into);
    }
    into += ")";
}

std::string outlineOf(const std::string& bytes) {
    const auto document = parsed(bytes);
    if (!document) return "no document";
    std::string text;
    outline(*document->root, text);
    return text;
}

struct DocumentCase {
    const char* name;
    std::string bytes;
    const char* outline;
    bool wellFormed = true;
};

const DocumentCase kDocuments[] = {
    {"EmptyElement", "<r/>", "r"},
    {"Nested", "<r><a>1</a><b/></r>", "r(a('1') b)"},
    {"Attributes", "<r b='1' a=\"2\"/>", "r[b=1][a=2]"},
    {"NamespaceDeclarationsKeepTheirPlace", "<r b='1' xmlns:p='u' a='2' xmlns='v'/>",
     "r[b=1][xmlns:p=u][a=2][xmlns=v]"},
    {"PrefixesStay", "<p:r xmlns:p='u' p:a='1'><p:b/></p:r>", "p:r[xmlns:p=u][p:a=1](p:b)"},
    {"CommentsAndInstructions", "<r><!--c--><?p d?><?q?></r>", "r(!'c' ?p'd' ?q'')"},
    {"CommentsOutsideTheRootAreNoNodes", "<!--a--><?p?><r/><!--b--><?q?>", "r"},
    {"BlankTextIsDropped", "<r>\n <a> </a>\t<b>&#10;</b><![CDATA[ ]]></r>", "r(a b)"},
    {"BlanksBesideTextStay", "<r> a <b/> c\n</r>", "r(' a ' b ' c\n')"},
    {"CharacterData", "<r>a<![CDATA[<&]]>b</r>", "r('a<&b')"},
    {"References", "<r a='&lt;&#65;&quot;'>&amp;&#x42;&gt;</r>", "r[a=<A\"]('&B>')"},
    {"LineEnds", "<r>a\r\nb\rc\n</r>", "r('a\nb\nc\n')"},
    {"InternalEntity", "<!DOCTYPE r [<!ENTITY e 'x'>]><r a='&e;'>1&e;2</r>", "r[a=x]('1x2')"},
    {"EntityWithMarkup", "<!DOCTYPE r [<!ENTITY e '<a>1</a>'>]><r>&e;&e;</r>", "r(a('1') a('1'))"},
    {"EntityInAnEntity", "<!DOCTYPE r [<!ENTITY e 'x&f;'><!ENTITY f '<b/>y'>]><r>&e;</r>",
     "r('x' b 'y')"},
    {"DefaultAttributesAreNotAdded", "<!DOCTYPE r [<!ATTLIST r a CDATA 'x'>]><r/>", "r"},
    {"Utf8Mark", "\xEF\xBB\xBF<r>caf\xC3\xA9</r>", "r('caf\xC3\xA9')"},
    {"Utf16", "\xFF\xFE<\0r\0>\0\x71\x5C<\0/\0r\0>\0"s, "r('\xE5\xB1\xB1')"},
    {"ShiftJis", "<?xml version='1.0' encoding='Shift_JIS'?><r>\x8E\x52</r>", "r('\xE5\xB1\xB1')"},

    {"Empty", "", "no document"},
    {"BlanksAlone", " \n", "no document"},
    {"TextAlone", "not markup", "no document"},
    {"BytesOfOnes", "\xFF\xFF\xFF\xFF", "no document"},
    {"NulBytes", std::string(100, '\0'), "no document"},
    {"DeclarationAlone", "<?xml version='1.0'?>", "no document"},
    {"CommentAlone", "<!-- <r/> -->", "no document"},

    {"UnfinishedElement", "<r><a>1</a><b>2", "r(a('1') b('2'))", false},
    {"CrossedTags", "<r><a><b></a></b></r>", "r(a(b))", false},
    {"TrailingRubbish", "<r/>\0\0\0"s, "r", false},
    {"SecondRoot", "<r/><s/>", "r", false},
    {"BlankBeforeTheDeclaration", "\n<?xml version='1.0'?><r/>", "r", false},
    {"UndeclaredEntity", "<r>a&nbsp;b</r>", "r('ab')", false},
    {"UndeclaredPrefixIsNoDamage", "<p:r/>", "p:r", true},
    {"InvalidUtf8", "<r>\xE9</r>", "r('\xC3\xA9')", false},
    {"UnknownEncoding", "<?xml version='1.0' encoding='KLINGON'?><r/>", "r", false},
    {"ExternalEntity", "<!DOCTYPE r [<!ENTITY e SYSTEM 'file:///etc/hostname'>]><r>a&e;b</r>",
     "r('ab')", false},
    {"ExternalDocumentType", "<!DOCTYPE r SYSTEM 'file:///etc/hostname'><r>a</r>", "r('a')", true},
};

class XmlDocuments : public testing::TestWithParam<DocumentCase> {};

TEST_P(XmlDocuments, AreRead) {
    EXPECT_EQ(outlineOf(GetParam().bytes), GetParam().outline);
}

TEST_P(XmlDocuments, SayWhetherTheyAreWellFormed) {
    const auto document = parsed(GetParam().bytes);
    if (document) {
        EXPECT_EQ(document->wellFormed, GetParam().wellFormed);
    }
}

TEST_P(XmlDocuments, CutAnywhereAreReadWithoutAFault) {
    const std::string& whole = GetParam().bytes;
    for (std::size_t cut = 0; cut < whole.size(); ++cut) {
        SCOPED_TRACE(cut);
        const auto document = parsed(whole.substr(0, cut));
        EXPECT_TRUE(!document || document->root != nullptr);
    }
}

INSTANTIATE_TEST_SUITE_P(Table, XmlDocuments, testing::ValuesIn(kDocuments),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(XmlDocument, KeepsWhatStandsAroundTheRoot) {
    const auto document = parsed(
        "<?xml version='1.0'?>\r\n<!DOCTYPE r [<!ENTITY e '>'>]><!--a--><r>x</r>\n<!--b-->\n");
    ASSERT_TRUE(document);
    EXPECT_TRUE(document->wellFormed);
    EXPECT_EQ(document->prolog, "<?xml version='1.0'?>\r\n<!DOCTYPE r [<!ENTITY e '>'>]><!--a-->");
    EXPECT_EQ(document->epilog, "\n<!--b-->\n");
}

TEST(XmlDocument, KnowsEachNodesParent) {
    const auto document = parsed("<r><a>1</a></r>");
    ASSERT_TRUE(document);
    XmlNode* const element = document->root->children.front();
    EXPECT_EQ(document->root->parent, nullptr);
    EXPECT_EQ(element->parent, document->root);
    EXPECT_EQ(element->children.front()->parent, element);
    EXPECT_EQ(element->owner, document.get());
}

TEST(XmlDocument, NeverLoadsAnythingFromElsewhere) {
    const test::TemporaryFolder folder;
    const auto secret = folder.write("secret.txt", "SECRET");
    const auto subset = folder.write("subset.dtd", "<!ENTITY s 'SECRET'>");
    const std::string url = "file://" + secret;
    const std::string hostile[] = {
        "<!DOCTYPE r [<!ENTITY e SYSTEM '" + url + "'>]><r a='&e;'>&e;</r>",
        "<!DOCTYPE r [<!ENTITY e PUBLIC 'p' '" + secret + "'>]><r>&e;</r>",
        "<!DOCTYPE r SYSTEM '" + subset + "'><r>&s;</r>",
        "<!DOCTYPE r [<!ENTITY % p SYSTEM 'file://" + subset + "'>%p;]><r>&s;</r>",
        "<r xmlns:i='http://www.w3.org/2001/XInclude'><i:include href='" + url +
            "' parse='text'/></r>",
    };
    for (const auto& bytes : hostile) {
        SCOPED_TRACE(bytes);
        EXPECT_EQ(outlineOf(bytes).find("SECRET"), std::string::npos);
    }
}

TEST(XmlLimits, OfDepth) {
    EXPECT_TRUE(parsed(test::nestedElements(XmlParser::kDeepestLevel)));
    EXPECT_FALSE(parsed(test::nestedElements(XmlParser::kDeepestLevel + 1)));
    EXPECT_FALSE(parsed(test::nestedElements(1'000'000)));
}

TEST(XmlLimits, OfSize) {
    const auto sized = [](std::size_t size) { return "<r>" + std::string(size - 7, 'x') + "</r>"; };
    const auto largest = parsed(sized(XmlParser::kMostBytes));
    ASSERT_TRUE(largest);
    EXPECT_EQ(largest->root->children.front()->text.size(), XmlParser::kMostBytes - 7);
    EXPECT_FALSE(parsed(sized(XmlParser::kMostBytes + 1)));
    EXPECT_FALSE(parsed(sized(100'000'000)));
}

TEST(XmlLimits, OfNodes) {
    const auto withChildren = [](std::size_t count) {
        return "<r>" + test::repeated("<a/>", count) + "</r>";
    };
    const auto largest = parsed(withChildren(XmlParser::kMostNodes - 1));
    ASSERT_TRUE(largest);
    EXPECT_EQ(largest->root->children.size(), XmlParser::kMostNodes - 1);
    EXPECT_FALSE(parsed(withChildren(XmlParser::kMostNodes)));
}

std::string attributes(std::size_t count, const std::string& equals) {
    std::string all;
    for (std::size_t i = 0; i < count; ++i)
        all += " a" + std::to_string(i) + equals + "''";
    return all;
}

TEST(XmlLimits, OfAttributes) {
    EXPECT_TRUE(parsed("<r" + attributes(XmlParser::kMostAttributes, "=") + "/>"));
    EXPECT_FALSE(parsed("<r" + attributes(1'000'000, "=") + "/>"));
}

TEST(XmlLimits, OfAttributesInAnEntity) {
    EXPECT_FALSE(parsed("<!DOCTYPE r [<!ENTITY e \"&#60;a" + attributes(20'000, "&#61;") +
                        "/>\">]><r>&e;</r>"));
}

TEST(XmlLimits, OfEntities) {
    const auto using100KilobytesTimes = [](std::size_t times) {
        std::string text = "<!DOCTYPE r [<!ENTITY e '" + std::string(100'000, 'x') + "'>]><r>";
        return text + test::repeated("&e;", times) + "</r>";
    };
    const auto largest = parsed(using100KilobytesTimes(10));
    ASSERT_TRUE(largest);
    EXPECT_EQ(largest->root->children.front()->text.size(), 1'000'000U);
    EXPECT_FALSE(parsed(using100KilobytesTimes(11)));
}

TEST(XmlLimits, OfEntityBombs) {
    EXPECT_FALSE(parsed(test::entityBomb("<r>&e29;</r>")));
    EXPECT_FALSE(parsed(test::entityBomb("<r a='&e29;'/>")));
    EXPECT_FALSE(parsed(test::entityBomb("<r>" + std::string(1000, ' ') + "&e20;&e29;</r>")));
    EXPECT_TRUE(parsed(test::entityBomb("<r>&e3;</r>")));
}

TEST(XmlLimits, OfEntitiesThatHoldThemselves) {
    const auto document =
        parsed("<!DOCTYPE r [<!ENTITY a '&b;'><!ENTITY b '&a;'>]><r x='&a;'>&a;</r>");
    EXPECT_TRUE(!document || !document->wellFormed);
    const auto parameter =
        parsed("<!DOCTYPE r [<!ENTITY % p '&#37;q;'><!ENTITY % q '&#37;p;'>%p;]><r/>");
    EXPECT_TRUE(!parameter || parameter->root->name == "r");
}

TEST(XmlParsing, OfSeveralThreadsDoesNotMix) {
    const LibxmlParser parser;
    std::vector<std::thread> threads;
    threads.reserve(4);
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&parser, t] {
            const std::string name = "n" + std::to_string(t);
            std::string bytes = "<r><" + name;
            bytes += "/></r>";
            for (int pass = 0; pass < 200; ++pass) {
                const auto document = parser.parse(bytes);
                ASSERT_TRUE(document);
                ASSERT_EQ(document->root->children.front()->name, name);
            }
        });
    }
    for (auto& thread : threads)
        thread.join();
}

}  // namespace
}  // namespace qrx::platform
