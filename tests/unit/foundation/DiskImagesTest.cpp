#include <cstdlib>
#include <memory>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "foundation/DiskImages.h"
#include "foundation/FileQuestions.h"
#include "foundation/QRXFileSystemUtility.h"
#include "platform/fake/FakeProcessRunner.h"
#include "platform/fake/RecordingSystemLog.h"
#include "platform/ports/Services.h"
#include "support/TemporaryFolder.h"

namespace qrx {
namespace {

using platform::FakeProcessRunner;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;

TEST(DiskImagePath, ASecondSuffixIsNotAdded) {
    EXPECT_EQ(diskImagePath("/out", "Card.dmg"), "/out/Card.dmg");
    EXPECT_EQ(diskImagePath("/out", "Card"), "/out/Card.dmg");
}

TEST(DiskImagePath, KeptTheSuffixIsSoughtWithCase) {
    EXPECT_EQ(diskImagePath("/out", "Card.DMG"), "/out/Card.DMG.dmg");
}

TEST(CreateImageLine, EscapesThePathsAndNotTheVolumeName) {
    EXPECT_EQ(createImageLine("/t/hdiutil", "/o/a b.dmg", "/c (1)", "A B"),
              "/t/hdiutil create /o/a\\ b.dmg -srcfolder /c\\ \\(1\\) -volname A B");
}

TEST(CreateImageLine, HostileNamesStayText) {
    EXPECT_EQ(createImageLine("t", "/`id`", "/$(x)", "v"),
              "t create /`id` -srcfolder /\\$\\(x\\) "
              "-volname v");
    EXPECT_EQ(attachImageLine("t", "/a\nb\\\"c", std::nullopt), "t attach /a\nb\\\\\"c");
    EXPECT_EQ(attachImageLine("t", "/a", "/m n"), "t attach /a -mountpoint /m\\ n");
}

/// The image tool of hosts stands where `whereis` says.
class DiskImageTool : public testing::Test {
protected:
    DiskImageTool() {
        services_->processRunner = runner_;
        services_->systemLog = log_;
        ::chmod(tool_.c_str(), 0755);
        runner_->answer("/usr/bin/whereis", {"-b", "hdiutil"},
                        FakeProcessRunner::wrote("hdiutil: " + tool_ + "\n"));
    }

    test::TemporaryFolder folder_;
    FilePath tool_ = folder_.write("bin/hdiutil");
    FilePath card_ = folder_.makeFolder("A CARD");
    platform::ScopedServices services_;
    std::shared_ptr<FakeProcessRunner> runner_ = std::make_shared<FakeProcessRunner>();
    std::shared_ptr<platform::RecordingSystemLog> log_ =
        std::make_shared<platform::RecordingSystemLog>();
    QRXFileSystemUtility utility_;
};

TEST_F(DiskImageTool, IsGivenTheStatedArguments) {
    runner_->answer(tool_, FakeProcessRunner::ended(0));
    const FilePath image = folder_ / "Card.dmg";
    EXPECT_EQ(utility_.createDiskImageForDirectoryAtPath(card_, "Card", folder_.path(), "V 1"),
              image);
    EXPECT_THAT(runner_->requests().back().arguments,
                ElementsAre("create", image, "-srcfolder", card_, "-volname", "V 1"));
    EXPECT_THAT(log_->debugTexts(), Contains(HasSubstr("-volname V 1")));
}

TEST_F(DiskImageTool, ShorterFormsNameImageAndVolumeAfterTheFolder) {
    runner_->answer(tool_, FakeProcessRunner::ended(0));
    EXPECT_EQ(utility_.createDiskImageForDirectoryAtPath(card_), folder_ / "A CARD.dmg");
    EXPECT_THAT(
        runner_->requests().back().arguments,
        ElementsAre("create", folder_ / "A CARD.dmg", "-srcfolder", card_, "-volname", "A CARD"));
    EXPECT_EQ(utility_.createDiskImageForDirectoryAtPath(card_, "x.dmg", folder_.path()),
              folder_ / "x.dmg");
    EXPECT_EQ(runner_->requests().back().arguments.back(), "x.dmg");
}

TEST_F(DiskImageTool, NothingWhenItFails) {
    runner_->answer(tool_, FakeProcessRunner::ended(1));
    EXPECT_FALSE(utility_.createDiskImageForDirectoryAtPath(card_));
}

TEST_F(DiskImageTool, IsNotRunForWhatIsNoFolderOrOverAnImage) {
    EXPECT_FALSE(utility_.createDiskImageForDirectoryAtPath(folder_ / "missing"));
    EXPECT_FALSE(utility_.createDiskImageForDirectoryAtPath(tool_));
    static_cast<void>(folder_.write("A CARD.dmg", "kept"));
    EXPECT_FALSE(utility_.createDiskImageForDirectoryAtPath(card_));
    EXPECT_EQ(test::fileContents(folder_ / "A CARD.dmg"), "kept");
}

TEST_F(DiskImageTool, AttachesWithAndWithoutMountPoint) {
    runner_->answer(tool_, FakeProcessRunner::ended(0));
    const FilePath image = folder_.write("i.dmg");
    EXPECT_TRUE(utility_.mountDMGLocatatedAt(image, std::nullopt));
    EXPECT_THAT(runner_->requests().back().arguments, ElementsAre("attach", image));
    EXPECT_TRUE(utility_.mountDMGLocatatedAt(image, card_));
    EXPECT_THAT(runner_->requests().back().arguments,
                ElementsAre("attach", image, "-mountpoint", card_));
    EXPECT_FALSE(utility_.mountDMGLocatatedAt(image, folder_ / "missing"));
    EXPECT_FALSE(utility_.mountDMGLocatatedAt(folder_ / "missing", std::nullopt));
}

TEST_F(DiskImageTool, AttachAnswersNoWhenItFails) {
    runner_->answer(tool_, FakeProcessRunner::ended(1));
    EXPECT_FALSE(utility_.mountDMGLocatatedAt(folder_.write("i.dmg"), std::nullopt));
}

bool isInstalled(const char* tool) {
    return QRXFileSystemUtility().pathForTerminalCommand(tool).has_value();
}

TEST(DiskImageOfThisSystem, HoldsTheFilesAndTheVolumeName) {
    if (isInstalled("hdiutil")) GTEST_SKIP() << "the host platform's own tool is installed";
    ASSERT_TRUE(isInstalled("xorriso"));
    const test::CardTree card{"PRIVATE/AVCHD/BDMV/STREAM/00000.MTS", "a b.txt"};
    const test::TemporaryFolder out;
    const QRXFileSystemUtility utility;
    const auto image =
        utility.createDiskImageForDirectoryAtPath(card.path(), "Take 1", out.path(), "CARD_A");
    ASSERT_EQ(image, out / "Take 1.dmg");
    const auto xorriso = utility.pathForTerminalCommand("xorriso");
    const auto listing = utility.executeTerminalCommandWithDelimitedArguments(
        *xorriso, {"-indev", *image, "-pvd_info", "-find", "/", "-type", "f"}, true);
    ASSERT_TRUE(listing);
    EXPECT_THAT(*listing, HasSubstr("CARD_A"));
    EXPECT_THAT(*listing, HasSubstr("/PRIVATE/AVCHD/BDMV/STREAM/00000.MTS"));
    EXPECT_THAT(*listing, HasSubstr("/a b.txt"));
    EXPECT_FALSE(utility.createDiskImageForDirectoryAtPath(card.path(), "Take 1", out.path()))
        << "an image is never written over";
}

int statusOf(const FilePath& tool, const std::vector<std::string>& arguments) {
    return platform::processRunner()
        .run({tool, arguments, platform::StandardError::captured})
        .exitStatus;
}

TEST(DiskImageOfThisSystem, IsMountedReadOnlyByRoot) {
    if (isInstalled("hdiutil")) GTEST_SKIP() << "the host platform's own tool is installed";
    if (::geteuid() != 0) GTEST_SKIP() << "only root may mount";
    const test::CardTree card{"CLIP/A.MXF"};
    const test::TemporaryFolder out;
    const FilePath mountPoint = out.makeFolder("mounted");
    // ext4: every kernel mounts it, which cannot be said of the format of the images above
    const FilePath image = out / "a card.img";
    ASSERT_EQ(statusOf("/sbin/mkfs.ext4", {"-q", "-d", card.path(), image, "4M"}), 0);
    if (statusOf("/bin/mount", {"-o", "loop,ro", image, mountPoint}) != 0) {
        GTEST_SKIP() << "no loop mounts here";
    }
    ASSERT_EQ(statusOf("/bin/umount", {mountPoint}), 0);

    const QRXFileSystemUtility utility;
    EXPECT_TRUE(utility.mountDMGLocatatedAt(image, mountPoint));
    EXPECT_TRUE(fileExists(mountPoint + "/CLIP/A.MXF"));
    EXPECT_NE(::access((mountPoint + "/CLIP").c_str(), W_OK), 0);
    EXPECT_EQ(statusOf("/bin/umount", {mountPoint}), 0);
}

}  // namespace
}  // namespace qrx
