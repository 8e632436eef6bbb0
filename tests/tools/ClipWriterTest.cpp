#include <cstdio>
#include <string>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "qrx/ClipWriter.h"
#include "support/TemporaryFolder.h"

namespace qrx::tool {
namespace {

/// What the writer that `make` gives writes of clips 0 to `count` - 1.
template <class Make>
std::string written(int count, Make make) {
    const test::TemporaryFolder folder;
    std::FILE* const file = std::fopen((folder / "out").c_str(), "w");
    if (file == nullptr) return "cannot be written";
    Output output(::fileno(file));
    const auto writer = make(output);
    for (int clip = 0; clip < count; ++clip) {
        writer->add({.filePath = "/card/" + std::to_string(clip) + ".mov",
                     .volumeTitle = "General Movies",
                     .qt = clip % 2 == 0});
    }
    writer->finish();
    std::fclose(file);
    return test::fileContents(folder / "out");
}

std::string table(int count) {
    return written(count, [](Output& output) {
        return makeClipTable(output, {.columns = 0, .titleColumns = 16, .flushesEachRow = false});
    });
}

TEST(ClipTable, ColumnsStandUnderTheirHeads) {
    EXPECT_EQ(table(0), "");
    EXPECT_EQ(table(2),
              "LAYOUT            QT   PATH\n"
              "General Movies    yes  /card/0.mov\n"
              "General Movies    no   /card/1.mov\n");
}

TEST(ClipTable, TitleLongerThanItsColumnKeepsTheGap) {
    const std::string text = written(1, [](Output& output) {
        return makeClipTable(output, {.columns = 0, .titleColumns = 3, .flushesEachRow = false});
    });
    EXPECT_EQ(text, "LAYOUT  QT   PATH\nGeneral Movies  yes  /card/0.mov\n");
}

TEST(ClipJson, FewClipsAreOneArray) {
    EXPECT_EQ(written(0, makeClipJson), "[]\n");
    EXPECT_EQ(written(1, makeClipJson),
              "[\n  "
              R"({"filePath":"/card/0.mov","volumeTitle":"General Movies","qt":true})"
              "\n]\n");
}

TEST(ClipJson, ManyClipsAreOneArrayInOrder) {
    constexpr int kClips = 5000;  // more than one piece holds
    const auto array = nlohmann::json::parse(written(kClips, makeClipJson));
    ASSERT_EQ(array.size(), std::size_t{kClips});
    for (int clip = 0; clip < kClips; ++clip) {
        const auto& record = array[static_cast<std::size_t>(clip)];
        ASSERT_EQ(record.at("filePath"), "/card/" + std::to_string(clip) + ".mov");
        ASSERT_EQ(record.at("qt"), clip % 2 == 0);
    }
}

TEST(ClipNdjson, OneObjectALine) {
    EXPECT_EQ(written(2, makeClipNdjson),
              R"({"filePath":"/card/0.mov","volumeTitle":"General Movies","qt":true})"
              "\n"
              R"({"filePath":"/card/1.mov","volumeTitle":"General Movies","qt":false})"
              "\n");
}

}  // namespace
}  // namespace qrx::tool
