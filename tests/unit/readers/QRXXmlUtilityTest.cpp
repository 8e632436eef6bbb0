#include <chrono>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "platform/fake/RecordingSystemLog.h"
#include "platform/ports/Services.h"
#include "readers/QRXXmlUtility.h"
#include "readers/XmlMarkup.h"
#include "support/HostileXml.h"
#include "support/TemporaryFolder.h"

namespace qrx {
namespace {

using namespace std::string_literals;
using Leaves = std::map<std::string, std::string>;
using Names = std::vector<std::string>;
using Texts = QRXXmlUtility::Texts;

/// A sidecar as the disc cameras write it.
constexpr const char* kSidecar =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n"
    "<NonRealTimeMeta xmlns=\"urn:schemas-professionalDisc:nonRealTimeMeta:ver.1.20\" "
    "a=\"root\">\r\n"
    "  <TargetMaterial umidRef=\"060A2B34\"/>\r\n"
    "  <LtcChangeTable tcFps=\"30\">\r\n"
    "    <LtcChange frameCount=\"99\" value=\"99999999\" status=\"end\"/>\r\n"
    "    <LtcChange frameCount=\"0\" value=\"13524612\" status=\"increment\"/>\r\n"
    "  </LtcChangeTable>\r\n"
    "  <VideoFormat>\r\n"
    "    <VideoFrame videoCodec=\"MPEG2\" captureFps=\"59.94i\" formatFps=\"29.97p\"/>\r\n"
    "  </VideoFormat>\r\n"
    "</NonRealTimeMeta>\r\n";

class XmlUtility : public testing::Test {
protected:
    [[nodiscard]] std::string sidecar(const std::string& contents) const {
        return folder_.write("sidecar.xml", contents);
    }
    [[nodiscard]] static XmlNodePointer rootOf(const std::string& contents) {
        const auto document = platform::xmlParser().parse(contents);
        return document ? XmlNodePointer(document, document->root) : nullptr;
    }
    [[nodiscard]] static Names namesOf(const std::vector<XmlNodePointer>& nodes) {
        Names names;
        names.reserve(nodes.size());
        for (const auto& node : nodes)
            names.push_back(node->name.empty() ? "'" + node->text + "'" : node->name);
        return names;
    }

    test::TemporaryFolder folder_;
    QRXXmlUtility utility_ = QRXXmlUtility::xmlUtility();
};

TEST_F(XmlUtility, FindsTheFirstNodeThatBeginsWithTheTag) {
    EXPECT_EQ(
        QRXXmlUtility::findXmlTagInfo("<TargetMaterial umidRef", sidecar(kSidecar), "umidRef="),
        "<TargetMaterial umidRef=\"060A2B34\"></TargetMaterial>");
}

TEST_F(XmlUtility, PassesOverNodesWithoutTheDescriptor) {
    EXPECT_EQ(QRXXmlUtility::findXmlTagInfo("<LtcChange frameCount=", sidecar(kSidecar),
                                            "status=\"increment\""),
              "<LtcChange frameCount=\"0\" value=\"13524612\" status=\"increment\"></LtcChange>");
}

TEST_F(XmlUtility, FindsNothingWithoutANodeDescriptorOrDocument) {
    const auto file = sidecar(kSidecar);
    EXPECT_EQ(QRXXmlUtility::findXmlTagInfo("<Missing", file, std::nullopt), std::nullopt);
    EXPECT_EQ(QRXXmlUtility::findXmlTagInfo("<LtcChange ", file, "missing"), std::nullopt);
    EXPECT_EQ(QRXXmlUtility::findXmlTagInfo("<LtcChange ", file, ""), std::nullopt)
        << "an empty descriptor is contained nowhere";
    EXPECT_EQ(QRXXmlUtility::findXmlTagInfo("", file, std::nullopt), std::nullopt);
    EXPECT_EQ(QRXXmlUtility::findXmlTagInfo("<a", folder_ / "missing.xml"), std::nullopt);
}

TEST_F(XmlUtility, NeverFindsTheRoot) {
    const auto file = sidecar("<r><a/><r x='1'/></r>");
    EXPECT_EQ(QRXXmlUtility::findXmlTagInfo("<r", file, "r"), "<r x=\"1\"></r>");
    EXPECT_EQ(QRXXmlUtility::findXmlTagInfo("<r>", file, std::nullopt), std::nullopt);
}

TEST_F(XmlUtility, FindsADescriptorInTheNodeItselfOnly) {
    const auto file = sidecar("<r><a>1</a><a>2</a><b>here</b><a>3 here</a></r>");
    EXPECT_EQ(QRXXmlUtility::findXmlTagInfo("<a>", file, "here"), "<a>3 here</a>");
    EXPECT_EQ(QRXXmlUtility::findXmlTagInfo("<a>", file, "</a>"), "<a>1</a>");
}

TEST_F(XmlUtility, FindsADescriptorDeepInANestedNode) {
    const auto file = sidecar("<r><a><a><b x='1'/></a></a><a><b x='2'/></a></r>");
    EXPECT_EQ(QRXXmlUtility::findXmlTagInfo("<a>", file, "x=\"2\""), "<a><b x=\"2\"></b></a>");
    EXPECT_EQ(QRXXmlUtility::findXmlTagInfo("<a>", file, "x=\"1\""),
              "<a><a><b x=\"1\"></b></a></a>");
}

TEST_F(XmlUtility, StripsBothTagsWithoutADescriptor) {
    const auto file = sidecar(
        "<r><UserClipName>Take 1</UserClipName><FrameRate DropFrameFlag='true'>29.97</FrameRate>"
        "<EditUnit>1001/30000</EditUnit></r>");
    EXPECT_EQ(QRXXmlUtility::findXmlTagInfo("<UserClipName>", file), "Take 1");
    EXPECT_EQ(QRXXmlUtility::findXmlTagInfo("<EditUnit>", file), "1001/30000");
    EXPECT_EQ(QRXXmlUtility::findXmlTagInfo("<FrameRate", file), " DropFrameFlag=\"true\">29.97>");
}

TEST_F(XmlUtility, GivesAnEmptyTextForAnEmptyElement) {
    EXPECT_EQ(QRXXmlUtility::findXmlTagInfo("<UserClipName>", sidecar("<r><UserClipName/></r>")),
              "");
}

TEST_F(XmlUtility, ReadsADocumentOnceParsed) {
    const auto document = QRXXmlUtility::xmlDocumentForXmlFile(sidecar(kSidecar));
    ASSERT_TRUE(document);
    EXPECT_EQ(QRXXmlUtility::findTagLine("<VideoFrame", *document, "formatFps="),
              "<VideoFrame videoCodec=\"MPEG2\" captureFps=\"59.94i\" formatFps=\"29.97p\">"
              "</VideoFrame>");
    EXPECT_EQ(QRXXmlUtility::findTagLine("<VideoFormat", *document, std::nullopt)->size(),
              "<VideoFormat></VideoFormat>"s.size() +
                  QRXXmlUtility::findTagLine("<VideoFrame", *document, std::nullopt)->size());
}

TEST_F(XmlUtility, SearchesLargeNestsInOnePass) {
    const std::string nest = test::repeated(test::nestedElements(200), 2000);
    const auto document = platform::xmlParser().parse("<r>" + nest + "<a>end</a></r>");
    ASSERT_TRUE(document);
    EXPECT_EQ(QRXXmlUtility::findTagLine("<a>", *document, "end"), "<a>end</a>");
    EXPECT_EQ(QRXXmlUtility::findTagLine("<a>", *document, "missing"), std::nullopt);
}

struct ValueCase {
    const char* name;
    std::optional<std::string> text;
    const char* descriptor;
    std::optional<std::string> value;
};

const ValueCase kValues[] = {
    {"BetweenTheQuotes", "<VideoFrame captureFps=\"59.94i\" formatFps=\"29.97p\">",
     "formatFps=", "29.97p"},
    {"DescriptorThatEndsInAQuote", "<a value=\"13\" b=\"2\">", "value=\"", "13"},
    {"FirstOccurrence", "x=\"1\" x=\"2\"", "x=", "1"},
    {"LaterQuote", "<x><y a=\"1\">", "<x>", "1"},
    {"EmptyValue", "x=\"\"", "x=", ""},
    {"AbsentText", std::nullopt, "x=", std::nullopt},
    {"NoDescriptor", "y=\"1\"", "x=", std::nullopt},
    {"EmptyDescriptor", "y=\"1\"", "", std::nullopt},
    {"NoQuote", "x=1", "x=", std::nullopt},
    {"NoClosingQuote", "x=\"1", "x=", std::nullopt},
    {"QuoteBeforeTheDescriptorOnly", "\"a\" x=", "x=", std::nullopt},
};

class QuotedValue : public testing::TestWithParam<ValueCase> {};

TEST_P(QuotedValue, FollowsItsDescriptor) {
    EXPECT_EQ(QRXXmlUtility::stripValueFromInfo(GetParam().text, GetParam().descriptor),
              GetParam().value);
}

INSTANTIATE_TEST_SUITE_P(Table, QuotedValue, testing::ValuesIn(kValues),
                         [](const auto& row) { return std::string(row.param.name); });

TEST_F(XmlUtility, FindsTheFirstNodeOfAName) {
    const auto file = sidecar("<r><a><b>1</b></a><b>2</b><r>3</r></r>");
    const auto node = QRXXmlUtility::nodeWithName("b", file);
    ASSERT_TRUE(node);
    EXPECT_EQ(textValue(*node), "1");
    const auto inner = QRXXmlUtility::nodeWithName("r", file);
    ASSERT_TRUE(inner) << "the root is not tested, one of its name below is";
    EXPECT_EQ(textValue(*inner), "3");
    EXPECT_FALSE(QRXXmlUtility::nodeWithName("B", file));
    EXPECT_FALSE(QRXXmlUtility::nodeWithName("", file));
    EXPECT_FALSE(QRXXmlUtility::nodeWithName("b", folder_ / "missing.xml"));
}

TEST_F(XmlUtility, FindsPrefixedNamesByTheirWholeName) {
    const auto file = sidecar("<r xmlns:p='u'><p:a/></r>");
    EXPECT_TRUE(QRXXmlUtility::nodeWithName("p:a", file));
    EXPECT_FALSE(QRXXmlUtility::nodeWithName("a", file));
}

TEST_F(XmlUtility, ANodeKeepsItsDocument) {
    const auto node = QRXXmlUtility::nodeWithName("b", sidecar("<r x='1'><a><b>1</b></a></r>"));
    ASSERT_TRUE(node);
    const auto ancestors = utility_.ancestorsForElement(node);
    EXPECT_EQ(namesOf(ancestors), (Names{"a", "r"}));
    EXPECT_EQ(utility_.nearestElementWithAttribute("x", node)->name, "r");
}

TEST_F(XmlUtility, FindsDirectChildrenOnly) {
    const auto root = rootOf("<r><a><c>1</c></a><c>2</c><c>3</c></r>");
    ASSERT_TRUE(root);
    EXPECT_EQ(textValue(*QRXXmlUtility::childNodeWithName("c", root)), "2");
    EXPECT_FALSE(QRXXmlUtility::childNodeWithName("d", root));
    EXPECT_FALSE(QRXXmlUtility::childNodeWithName("", root));
    EXPECT_FALSE(QRXXmlUtility::childNodeWithName("c", nullptr));
}

TEST_F(XmlUtility, ListsDescendantsInDocumentOrder) {
    EXPECT_EQ(namesOf(QRXXmlUtility::allDescendantsForNode(
                  rootOf("<r><a>1</a><b/><!--c--><d><e>2</e></d></r>"))),
              (Names{"a", "'1'", "b", "'c'", "d", "e", "'2'"}));
    EXPECT_TRUE(QRXXmlUtility::allDescendantsForNode(rootOf("<r/>")).empty());
    EXPECT_TRUE(QRXXmlUtility::allDescendantsForNode(nullptr).empty());
}

TEST_F(XmlUtility, FlattensLeavesUnderTheirParentsName) {
    EXPECT_EQ(QRXXmlUtility::leafKeysAndValuesFromXmlFile(
                  sidecar("<r><Title x='1'>abc</Title><a><b>1</b></a></r>")),
              (Leaves{{"Title", "abc"}, {"b", "1"}}));
}

TEST_F(XmlUtility, FlattensAnEmptyElementUnderItsParent) {
    EXPECT_EQ(QRXXmlUtility::leafKeysAndValuesFromXmlFile(sidecar("<r><a/></r>")),
              (Leaves{{"r", ""}}));
}

TEST_F(XmlUtility, KeepsTheLastOfSeveralLeavesUnderOneName) {
    EXPECT_EQ(QRXXmlUtility::leafKeysAndValuesFromXmlFile(
                  sidecar("<r><a>1</a><b><a>2</a></b><c>x<!--y--></c></r>")),
              (Leaves{{"a", "2"}, {"c", "y"}}));
}

TEST_F(XmlUtility, FlattensNothingWithoutADocument) {
    EXPECT_TRUE(QRXXmlUtility::leafKeysAndValuesFromXmlFile(folder_ / "missing.xml").empty());
    EXPECT_TRUE(QRXXmlUtility::leafKeysAndValuesFromXmlFile(sidecar("<r/>")).empty());
    EXPECT_TRUE(QRXXmlUtility::leafKeysAndValuesFromXmlFile(sidecar("")).empty());
}

TEST_F(XmlUtility, ListsAncestorsNearestFirst) {
    const auto root = rootOf("<r><a><b>1</b></a></r>");
    const auto text = QRXXmlUtility::allDescendantsForNode(root).back();
    EXPECT_EQ(namesOf(utility_.ancestorsForElement(text)), (Names{"b", "a", "r"}));
    EXPECT_TRUE(utility_.ancestorsForElement(root).empty());
    EXPECT_TRUE(utility_.ancestorsForElement(nullptr).empty());
}

TEST_F(XmlUtility, FindsTheNearestElementWithAnAttribute) {
    const auto root = rootOf("<r x='1' xmlns='u'><a x='2'><b y='3'/></a></r>");
    const auto a = QRXXmlUtility::childNodeWithName("a", root);
    const auto b = QRXXmlUtility::childNodeWithName("b", a);
    EXPECT_EQ(utility_.nearestElementWithAttribute("y", b), b);
    EXPECT_EQ(utility_.nearestElementWithAttribute("x", b), a);
    EXPECT_EQ(utility_.nearestElementWithAttribute("x", root), root);
    EXPECT_EQ(utility_.nearestElementWithAttribute("z", b), nullptr);
    EXPECT_EQ(utility_.nearestElementWithAttribute("xmlns", b), nullptr)
        << "a namespace is no attribute";
    EXPECT_EQ(utility_.nearestElementWithAttribute("x", nullptr), nullptr);
}

TEST_F(XmlUtility, UpdatesTheFirstChildOfAName) {
    const auto root = rootOf("<r><a>1<b/>2</a><a>3</a></r>");
    QRXXmlUtility::updateValueForChildWithName("a", root, "5 < 6");
    EXPECT_EQ(XmlMarkup(*root).text(), "<r><a>5 &lt; 6</a><a>3</a></r>");
    QRXXmlUtility::updateValueForChildWithName("a", root, "");
    EXPECT_EQ(XmlMarkup(*root).text(), "<r><a></a><a>3</a></r>");
    QRXXmlUtility::updateValueForChildWithName("missing", root, "x");
    QRXXmlUtility::updateValueForChildWithName("a", nullptr, "x");
    EXPECT_EQ(XmlMarkup(*root).text(), "<r><a></a><a>3</a></r>");
}

std::string built(const std::optional<Texts>& names, const std::optional<Texts>& values,
                  const std::optional<std::string>& text) {
    const auto element = QRXXmlUtility::createElementWithName("Name", names, values, text);
    return XmlMarkup(*element).text();
}

TEST_F(XmlUtility, BuildsElements) {
    EXPECT_EQ(built(Texts{"k", "k2"}, Texts{"v", "v2"}, "text"),
              "<Name k=\"v\" k2=\"v2\">text</Name>");
    EXPECT_EQ(built(std::nullopt, std::nullopt, std::nullopt), "<Name></Name>");
    EXPECT_EQ(built(Texts{}, Texts{}, ""), "<Name></Name>");
    EXPECT_EQ(built(Texts{"k"}, std::nullopt, "<t>"), "<Name>&lt;t&gt;</Name>");
    EXPECT_EQ(built(std::nullopt, Texts{"v"}, std::nullopt), "<Name></Name>");
}

TEST_F(XmlUtility, BuildsNoAttributesFromListsOfDifferentLength) {
    EXPECT_EQ(built(Texts{"k", "k2"}, Texts{"v"}, std::nullopt), "<Name></Name>");
    EXPECT_EQ(built(Texts{"k"}, Texts{"v", "v2"}, std::nullopt), "<Name></Name>");
}

TEST_F(XmlUtility, BuildsOverPairsThatAreNoTexts) {
    EXPECT_EQ(built(Texts{"a", std::nullopt, "c", "d"}, Texts{"1", "2", std::nullopt, "4"}, {}),
              "<Name a=\"1\" d=\"4\"></Name>");
}

TEST_F(XmlUtility, BuildsEachAttributeOnce) {
    EXPECT_EQ(built(Texts{"a", "b", "a"}, Texts{"1", "2", "3"}, {}),
              "<Name a=\"3\" b=\"2\"></Name>");
}

TEST_F(XmlUtility, RemovesNodesFromFiles) {
    const auto file = sidecar("<r><p><Contents><a/></Contents><q/></p><s/></r>");
    EXPECT_TRUE(QRXXmlUtility::removeXMLNode("Contents", file, true));
    EXPECT_EQ(test::fileContents(file), "<r><p></p></r>");
    EXPECT_FALSE(QRXXmlUtility::removeXMLNode("Contents", folder_ / "missing.xml", true));
    EXPECT_FALSE(QRXXmlUtility::removeXMLNode("Contents", sidecar("\xFF\xFF"), false));
}

TEST_F(XmlUtility, SpacesElementsAndKeptSaysLook) {
    const platform::ScopedServices services;
    const auto log = std::make_shared<platform::RecordingSystemLog>();
    services->systemLog = log;
    EXPECT_EQ(utility_.spacedXmlStringForElement(rootOf("<r><a>1</a></r>"), 1),
              "\t<r>\n\t\t<a>1</a>\n\t</r>");
    EXPECT_EQ(utility_.spacedXmlStringForElement(nullptr, 1), "");
    EXPECT_EQ(log->notices(), (Names{"Look", "Look"}));
}

TEST_F(XmlUtility, KeptRemovesTrailingWhiteSpaceOnly) {
    EXPECT_EQ(utility_.removeLeadingAndTrailingWhiteSpaceFromString("  a b  "), "  a b");
}

struct BadFile {
    const char* name;
    std::string (*bytes)();  ///< made when they are needed: some are large
};

constexpr BadFile kBadFiles[] = {
    {"Empty", [] { return std::string(); }},
    {"BytesOfOnes", [] { return std::string(5000, '\xFF'); }},
    {"Words", [] { return std::string("not markup at all"); }},
    {"MillionLevels", [] { return test::nestedElements(1'000'000); }},
    {"EntityBomb", [] { return test::entityBomb("<r><a>&e29;</a></r>"); }},
    {"HundredMegabytes",
     [] { return "<r>" + test::repeated("<a>0123456789</a>", 6'000'000) + "</r>"; }},
};

class BadSidecar : public testing::TestWithParam<BadFile> {};

TEST_P(BadSidecar, HasNoDocument) {
    const test::TemporaryFolder folder;
    const auto file = folder.write("sidecar.xml", GetParam().bytes());
    const auto start = std::chrono::steady_clock::now();
    EXPECT_FALSE(QRXXmlUtility::xmlDocumentForXmlFile(file));
    EXPECT_EQ(QRXXmlUtility::findXmlTagInfo("<a", file), std::nullopt);
    EXPECT_FALSE(QRXXmlUtility::nodeWithName("a", file));
    EXPECT_TRUE(QRXXmlUtility::leafKeysAndValuesFromXmlFile(file).empty());
    EXPECT_FALSE(QRXXmlUtility::removeXMLNode("a", file, true));
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(60));
}

INSTANTIATE_TEST_SUITE_P(Table, BadSidecar, testing::ValuesIn(kBadFiles),
                         [](const auto& row) { return std::string(row.param.name); });

TEST_F(XmlUtility, ReadsADamagedSidecarAsFarAsItGoes) {
    const auto file = sidecar("<r><TimeCode startTc=\"01000000\" dropFrame=\"true\"><x>1");
    EXPECT_EQ(QRXXmlUtility::findXmlTagInfo("<TimeCode startTc=\"", file, "startTc=\""),
              "<TimeCode startTc=\"01000000\" dropFrame=\"true\"><x>1</x></TimeCode>");
}

TEST_F(XmlUtility, NeverOpensAFifo) {
    const auto fifo = folder_ / "fifo.xml";
    ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
    EXPECT_FALSE(QRXXmlUtility::xmlDocumentForXmlFile(fifo));
    EXPECT_FALSE(QRXXmlUtility::xmlDocumentForXmlFile("/dev/zero"));
    EXPECT_FALSE(QRXXmlUtility::xmlDocumentForXmlFile(folder_.path()));
}

struct FormCase {
    const char* name;
    std::string bytes;
};

std::string utf16(const std::string& ascii) {
    std::string bytes = "\xFF\xFE";
    for (const char character : ascii) {
        bytes += character;
        bytes += '\0';
    }
    return bytes;
}

const std::string kClip = "<r><ClipName>0001AB</ClipName></r>";

const FormCase kSidecarForms[] = {
    {"Plain", kClip},
    {"LineEndsOfTwoCharacters", "<r>\r\n<ClipName>0001AB</ClipName>\r\n</r>\r\n"},
    {"ByteOrderMark", "\xEF\xBB\xBF" + kClip},
    {"Utf16", utf16(kClip)},
    {"Utf16WithDeclaration", utf16("<?xml version=\"1.0\" encoding=\"UTF-16\"?>" + kClip)},
    {"ShiftJis",
     "<?xml version=\"1.0\" encoding=\"Shift_JIS\"?><r>\x8E\x52<ClipName>0001AB"
     "</ClipName></r>"},
    {"CharacterData", "<r><ClipName><![CDATA[0001AB]]></ClipName></r>"},
    {"References", "<r><ClipName>&#48;001AB</ClipName></r>"},
};

class SidecarForm : public testing::TestWithParam<FormCase> {};

TEST_P(SidecarForm, IsRead) {
    const test::TemporaryFolder folder;
    const auto file = folder.write("sidecar.xml", GetParam().bytes);
    EXPECT_EQ(QRXXmlUtility::findXmlTagInfo("<ClipName>", file), "0001AB");
    EXPECT_EQ(QRXXmlUtility::leafKeysAndValuesFromXmlFile(file).at("ClipName"), "0001AB");
}

INSTANTIATE_TEST_SUITE_P(Table, SidecarForm, testing::ValuesIn(kSidecarForms),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace
}  // namespace qrx
