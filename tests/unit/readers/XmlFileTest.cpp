#include <csignal>
#include <filesystem>
#include <string>

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include "platform/ports/Services.h"
#include "readers/XmlFile.h"
#include "readers/XmlMarkup.h"
#include "support/TemporaryFolder.h"

namespace qrx {
namespace {

using namespace std::string_literals;
namespace fs = std::filesystem;

struct RemovalCase {
    const char* name;
    const char* element;
    bool elementGoesToo;
    std::string before;
    std::string after;
};

const RemovalCase kRemovals[] = {
    {"KeptEverythingAfterTheElementGoes", "Contents", true,
     "<r><p><Contents><a/></Contents><q/></p><s/></r>", "<r><p></p></r>"},
    {"TheElementStays", "history", false, "<r><a/><history><b/></history><c/></r>",
     "<r><a></a><history></history></r>"},
    {"WhatStandsBeforeStays", "x", true, "<r><a>1</a><b><c/><x/></b></r>",
     "<r><a>1</a><b><c></c></b></r>"},
    {"TheFirstOneCounts", "x", false, "<r><x>1</x><a/><x>2</x></r>", "<r><x></x></r>"},
    {"TheRootIsNeverTested", "r", true, "<r><a/></r>", "<r><a></a></r>"},
    {"AnElementWithAttributesNeverMatches", "x", true, "<r><x a=\"1\"/><b/></r>",
     "<r><x a=\"1\"></x><b></b></r>"},
    {"NorOneWhoseNameGoesOn", "x", true, "<r><xy/><b/></r>", "<r><xy></xy><b></b></r>"},
    {"NoMatchRewritesTheSame", "x", true, "<r><a></a></r>", "<r><a></a></r>"},
    {"TextAndCommentsGoToo", "x", false, "<r><x>1<!--c--></x>2<!--d--><?p?></r>", "<r><x></x></r>"},
    {"KeptAnEscapedEndTagInTextEndsNothing", "x", false, "<r><x>&lt;/x&gt;</x><b/></r>",
     "<r><x></x></r>"},
    {"BlankTextIsDropped", "x", true, "<r>\n  <a/>\n  <x/>\n</r>\n", "<r><a></a></r>\n"},
    {"EmptyName", "", true, "<r><a/></r>", "<r><a></a></r>"},
};

class Removal : public testing::TestWithParam<RemovalCase> {};

TEST_P(Removal, RewritesTheFile) {
    const auto& row = GetParam();
    const test::TemporaryFolder folder;
    const auto file = folder.write("sidecar.xml", row.before);
    EXPECT_TRUE(removeNodesFromXmlFile(row.element, file, row.elementGoesToo));
    EXPECT_EQ(test::fileContents(file), row.after);
}

INSTANTIATE_TEST_SUITE_P(Table, Removal, testing::ValuesIn(kRemovals),
                         [](const auto& row) { return std::string(row.param.name); });

struct FormCase {
    const char* name;
    std::string before;
    std::string after;
};

const std::string kSjisHead = "<?xml version='1.0' encoding='Shift_JIS'?>\r\n";

const FormCase kForms[] = {
    {"Declaration", "<?xml version='1.0' standalone=\"no\" ?>\r\n<r><x/></r>\r\n",
     "<?xml version='1.0' standalone=\"no\" ?>\r\n<r></r>\r\n"},
    {"ByteOrderMark", "\xEF\xBB\xBF<r>\xC3\xA9<x/></r>", "\xEF\xBB\xBF<r>\xC3\xA9</r>"},
    {"ShiftJis", kSjisHead + "<r>\x8E\x52<x/></r>", kSjisHead + "<r>\x8E\x52</r>"},
    {"CharacterThatTheEncodingLacks", kSjisHead + "<r>&#x1F600;<x/></r>",
     kSjisHead + "<r>&#128512;</r>"},
    {"Utf16", "\xFE\xFF\0<\0r\0>\0<\0x\0/\0>\0<\0/\0r\0>"s, "\xFE\xFF\0<\0r\0>\0<\0/\0r\0>"s},
    {"DocumentTypeAndComments", "<!DOCTYPE r [<!ENTITY e 'v'>]><!--a--><r>&e;<x/></r><!--b--><?q?>",
     "<!DOCTYPE r [<!ENTITY e 'v'>]><!--a--><r>v</r><!--b--><?q?>"},
};

class RewrittenForm : public testing::TestWithParam<FormCase> {};

TEST_P(RewrittenForm, IsThatOfTheFile) {
    const test::TemporaryFolder folder;
    const auto file = folder.write("sidecar.xml", GetParam().before);
    EXPECT_TRUE(removeNodesFromXmlFile("x", file, true));
    EXPECT_EQ(test::fileContents(file), GetParam().after);
}

INSTANTIATE_TEST_SUITE_P(Table, RewrittenForm, testing::ValuesIn(kForms),
                         [](const auto& row) { return std::string(row.param.name); });

struct RefusedCase {
    const char* name;
    std::string bytes;
};

const RefusedCase kRefused[] = {
    {"Empty", ""},
    {"BytesOfOnes", std::string(1000, '\xFF')},
    {"NoMarkup", "words"},
    {"Unfinished", "<r><x/>"},
    {"CrossedTags", "<r><x></r></x>"},
    {"RubbishBehindTheRoot", "<r><x/></r>rubbish"},
    {"ZerosBehindTheRoot", "<r><x/></r>"s + std::string(512, '\0')},
    {"InvalidUtf8", "<r>\xE9<x/></r>"},
    {"UndeclaredEntity", "<r>&nbsp;<x/></r>"},
    {"ExternalEntity", "<!DOCTYPE r [<!ENTITY e SYSTEM 'e.txt'>]><r>&e;<x/></r>"},
    {"UnknownEncoding", "<?xml version='1.0' encoding='KLINGON'?><r><x/></r>"},
    {"EntityOfAnotherFile", "<!DOCTYPE r SYSTEM 'r.dtd'><r>&e;<x/></r>"},
};

class RefusedRemoval : public testing::TestWithParam<RefusedCase> {};

TEST_P(RefusedRemoval, LeavesTheFileAsItWas) {
    const test::TemporaryFolder folder;
    const auto file = folder.write("sidecar.xml", GetParam().bytes);
    const auto before = fs::last_write_time(file);
    EXPECT_FALSE(removeNodesFromXmlFile("x", file, true));
    EXPECT_EQ(test::fileContents(file), GetParam().bytes);
    EXPECT_EQ(fs::last_write_time(file), before);
}

INSTANTIATE_TEST_SUITE_P(Table, RefusedRemoval, testing::ValuesIn(kRefused),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(RemovalFromAFile, ThatIsALinkIsRefused) {
    const test::TemporaryFolder folder;
    const auto file = folder.write("sidecar.xml", "<r><x/></r>");
    const auto link = folder.link("link.xml", file);
    EXPECT_FALSE(removeNodesFromXmlFile("x", link, true));
    EXPECT_TRUE(fs::is_symlink(link));
    EXPECT_EQ(test::fileContents(file), "<r><x/></r>");
}

TEST(RemovalFromAFile, ThatIsMissingOrNoFileIsRefused) {
    const test::TemporaryFolder folder;
    const auto fifo = folder / "fifo.xml";
    ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
    EXPECT_FALSE(removeNodesFromXmlFile("x", folder / "missing.xml", true));
    EXPECT_FALSE(removeNodesFromXmlFile("x", folder.path(), true));
    EXPECT_FALSE(removeNodesFromXmlFile("x", fifo, true));
}

TEST(RemovalFromAFile, ThatCannotBeWrittenLeavesItAsItWas) {
    const test::TemporaryFolder folder;
    const std::string bytes = "<r>" + std::string(5000, 'y') + "<x/></r>";
    const auto file = folder.write("sidecar.xml", bytes);
    struct rlimit before {};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &before), 0);
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    struct rlimit small = before;
    small.rlim_cur = 1000;
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);
    const bool removed = removeNodesFromXmlFile("x", file, true);
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &before), 0);
    std::signal(SIGXFSZ, handler);
    EXPECT_FALSE(removed);
    EXPECT_EQ(test::fileContents(file), bytes);
}

TEST(RemovalFromADocument, OfManyNodesTakesTimeThatGrowsWithTheirNumber) {
    std::string bytes = "<r><x/>";
    for (int i = 0; i < 200'000; ++i)
        bytes += "<a/>";
    const auto document = platform::xmlParser().parse(bytes + "</r>");
    ASSERT_TRUE(document);
    removeNodesFrom(*document, "x", true);
    EXPECT_EQ(XmlMarkup(*document->root).text(), "<r></r>");
}

TEST(XmlFile, IsReadThroughALink) {
    const test::TemporaryFolder folder;
    const auto link = folder.link("link.xml", folder.write("sidecar.xml", "<r/>"));
    EXPECT_TRUE(xmlDocumentInFile(link));
}

TEST(XmlFile, ThatIsTooLargeIsNotRead) {
    const test::TemporaryFolder folder;
    const auto file = folder.write("sidecar.xml", "<r/>");
    fs::resize_file(file, platform::XmlParser::kMostBytes + 1);
    EXPECT_FALSE(xmlDocumentInFile(file));
    fs::resize_file(file, std::uintmax_t{100} << 30U);  // sparse
    EXPECT_FALSE(xmlDocumentInFile(file));
}

}  // namespace
}  // namespace qrx
