#include <stdexcept>
#include <string>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "app/ClipRecord.h"

namespace qrx {
namespace {

const PathDictionary kClip{.filePath = "/V/\xC3\xA9.mts", .volumeTitle = "AVCHD", .qt = true};
const PathDictionary kOddClip{.filePath = "/V/\xFF\n.mts", .volumeTitle = "AVCHD", .qt = false};

TEST(ClipRecord, KeepsItsOrder) {
    EXPECT_EQ(clipRecord(kClip).dump(),
              "{\"filePath\":\"/V/\xC3\xA9.mts\",\"volumeTitle\":\"AVCHD\",\"qt\":true}");
    EXPECT_EQ(clipRecord(kOddClip).dump(),
              R"({"filePathBytes":"L1Yv/woubXRz","volumeTitle":"AVCHD","qt":false})");
}

TEST(ClipRecord, LinesComeBackAsClips) {
    const std::string lines = clipRecord(kClip).dump() + "\n" + clipRecord(kOddClip).dump();
    const std::vector<PathDictionary> clips{kClip, kOddClip};
    EXPECT_EQ(clipsOfLines(lines), clips);
    EXPECT_EQ(clipsOfLines(lines + "\n"), clips);
    EXPECT_TRUE(clipsOfLines("").empty());
}

TEST(ClipRecord, OtherLinesAreRefused) {
    const std::string line = clipRecord(kOddClip).dump();
    for (std::size_t cut = 1; cut < line.size(); ++cut)
        EXPECT_THROW(static_cast<void>(clipsOfLines(line.substr(0, cut))), std::invalid_argument);
    for (const char* other :
         {"\n", "[]", "1", "{}", R"({"filePath":1,"volumeTitle":"t","qt":true})",
          R"({"filePath":"/x","volumeTitle":"t","qt":"yes"})",
          R"({"filePathBytes":"Zh==","volumeTitle":"t","qt":true})"}) {
        EXPECT_THROW(static_cast<void>(clipsOfLines(other)), std::invalid_argument) << other;
    }
}

}  // namespace
}  // namespace qrx
