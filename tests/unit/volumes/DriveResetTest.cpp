#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "foundation/FileQuestions.h"
#include "platform/fake/RecordingSystemLog.h"
#include "platform/ports/Services.h"
#include "support/TemporaryFolder.h"
#include "volumes/DriveReset.h"

namespace qrx {
namespace {

using Kind = ResetStep::Kind;

TEST(CarryOut, TakesTheStepsInOrderAndTellsEach) {
    const test::CardTree card{"a/x", "b"};
    const ResetPlan plan{{.kind = Kind::remove, .path = card / "a"},
                         {.kind = Kind::makeFolder, .path = card / "c/d"},
                         {.kind = Kind::remove, .path = card / "b"}};
    std::vector<std::string> told;
    EXPECT_TRUE(carryOut(plan, [&](const ResetStep& step, bool succeeded) {
        told.push_back(description(step) + (succeeded ? ": done" : ": failed"));
    }));
    EXPECT_EQ(told, (std::vector<std::string>{
                        "remove " + (card / "a") + " with all that is in it: done",
                        "make the folder " + (card / "c/d") + ": done",
                        "remove " + (card / "b") + " with all that is in it: done"}));
    EXPECT_FALSE(itemExists(card / "a"));
    EXPECT_TRUE(folderExists(card / "c/d"));
}

TEST(CarryOut, StopsAtTheFirstFailureThatCounts) {
    const test::CardTree card{"b"};
    const auto log = std::make_shared<platform::RecordingSystemLog>();
    platform::ScopedServices services;
    services->systemLog = log;
    const ResetPlan plan{{.kind = Kind::remove,
                          .path = card / "missing",
                          .mustSucceed = false,
                          .logOnFailure = "not gone"},
                         {.kind = Kind::remove, .path = card / "missing"},
                         {.kind = Kind::remove, .path = card / "b"}};
    EXPECT_FALSE(carryOut(plan));
    EXPECT_TRUE(itemExists(card / "b"));
    EXPECT_EQ(log->notices(), std::vector<std::string>{"not gone"});
}

TEST(CarryOut, NothingToDoSucceeds) {
    EXPECT_TRUE(carryOut({}));
}

TEST(CopyStep, NeverOverwritesAndNeverFollowsALink) {
    const test::TemporaryFolder folder;
    const FilePath source = folder.write("source", "new");
    const FilePath taken = folder.write("taken", "old");
    const FilePath link = folder.link("link", folder / "behind");
    const auto copied = [&](const FilePath& from, const FilePath& to) {
        return carryOut({{.kind = Kind::copyFile, .path = to, .argument = from}});
    };
    EXPECT_TRUE(copied(source, folder / "target"));
    EXPECT_EQ(test::fileContents(folder / "target"), "new");
    EXPECT_FALSE(copied(source, taken));
    EXPECT_EQ(test::fileContents(taken), "old");
    EXPECT_FALSE(copied(source, link));
    EXPECT_FALSE(itemExists(folder / "behind"));
    EXPECT_FALSE(copied(folder / "missing", folder / "other"));
    ASSERT_EQ(::mkfifo((folder / "fifo").c_str(), 0600), 0);
    EXPECT_FALSE(copied(folder / "fifo", folder / "other"));
    EXPECT_FALSE(itemExists(folder / "other"));
}

TEST(RealFolder, IsNoLinkToOne) {
    const test::CardTree card{"folder/", "file"};
    const FilePath link = card.link("link", "folder");
    EXPECT_TRUE(isRealFolder(card / "folder"));
    EXPECT_TRUE(isRealFolder(card / "folder/"));
    EXPECT_FALSE(isRealFolder(link));
    EXPECT_FALSE(isRealFolder(link + "/"));
    EXPECT_FALSE(isRealFolder(card / "file"));
    EXPECT_FALSE(isRealFolder(card / "missing"));
    EXPECT_TRUE(isLink(link));
    EXPECT_TRUE(isLink(link + "//"));
    EXPECT_FALSE(isLink(card / "folder"));
}

}  // namespace
}  // namespace qrx
