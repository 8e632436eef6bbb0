#include <memory>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "foundation/Locks.h"
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
using testing::IsEmpty;

TEST(LockLine, PutsThePathInQuotesAsItIs) {
    EXPECT_EQ(lockLine("/a b"), "chflags -R uchg \"/a b\"");
    EXPECT_EQ(unlockLine("/`id`$(x)\n\\\""), "chflags -R nouchg \"/`id`$(x)\n\\\"\"");
}

class LockTool : public testing::Test {
protected:
    LockTool() {
        services_->processRunner = runner_;
        services_->systemLog = log_;
        ::chmod(chflags_.c_str(), 0755);
        ::chmod(chattr_.c_str(), 0755);
        runner_->answer("/usr/bin/whereis", FakeProcessRunner::wrote("none:\n"));
    }
    void install(const std::string& name, const FilePath& path) {
        runner_->answer("/usr/bin/whereis", {"-b", name},
                        FakeProcessRunner::wrote(name + ": " + path + "\n"));
    }

    test::TemporaryFolder folder_;
    FilePath chflags_ = folder_.write("bin/chflags");
    FilePath chattr_ = folder_.write("bin/chattr");
    FilePath item_ = folder_.write("A `b`.mov");
    platform::ScopedServices services_;
    std::shared_ptr<FakeProcessRunner> runner_ = std::make_shared<FakeProcessRunner>();
    std::shared_ptr<platform::RecordingSystemLog> log_ =
        std::make_shared<platform::RecordingSystemLog>();
    QRXFileSystemUtility utility_;
};

TEST_F(LockTool, TheHostsOwnComesFirst) {
    install("chflags", chflags_);
    install("chattr", chattr_);
    runner_->answer(chflags_, FakeProcessRunner::ended(0));
    EXPECT_TRUE(utility_.lockItemAtPath(item_));
    EXPECT_THAT(runner_->requests().back().arguments, ElementsAre("-R", "uchg", item_));
    EXPECT_TRUE(utility_.unlockFile(item_));
    EXPECT_THAT(runner_->requests().back().arguments, ElementsAre("-R", "nouchg", item_));
}

TEST_F(LockTool, TheSystemsOwnOtherwise) {
    install("chattr", chattr_);
    runner_->answer(chattr_, FakeProcessRunner::ended(0));
    EXPECT_TRUE(utility_.lockItemAtPath(item_));
    EXPECT_THAT(runner_->requests().back().arguments, ElementsAre("-R", "+i", item_));
    EXPECT_TRUE(utility_.unlockFile(item_));
    EXPECT_THAT(runner_->requests().back().arguments, ElementsAre("-R", "-i", item_));
    EXPECT_THAT(log_->notices(), IsEmpty());
}

TEST_F(LockTool, AFailureToUnlockIsLoggedWithItsStatus) {
    install("chattr", chattr_);
    runner_->answer(chattr_, FakeProcessRunner::ended(3));
    EXPECT_FALSE(utility_.lockItemAtPath(item_));
    EXPECT_THAT(log_->notices(), IsEmpty());
    EXPECT_FALSE(utility_.unlockFile(item_));
    EXPECT_THAT(log_->notices(), ElementsAre("Message: 3"));
}

TEST_F(LockTool, NoToolIsAFailure) {
    EXPECT_FALSE(utility_.lockItemAtPath(item_));
    EXPECT_FALSE(utility_.unlockFile(item_));
    EXPECT_THAT(log_->notices(), ElementsAre("Message: 127"));
}

TEST_F(LockTool, AFolderThatMayNotBeWrittenIsNotUnlocked) {
    EXPECT_FALSE(utility_.unlockDirectory(folder_ / "missing"));
    EXPECT_THAT(runner_->requests(), IsEmpty());
    EXPECT_THAT(log_->notices(), IsEmpty());
}

TEST(Lock, IsSetOnEverythingBelowAndRemovedAgain) {
    if (::geteuid() != 0) GTEST_SKIP() << "only root may set the flag";
    const test::TemporaryFolder folder;
    const QRXFileSystemUtility utility;
    const FilePath card = folder.makeFolder("card");
    const FilePath clip = folder.write("card/CLIP/A.MXF", "bytes");
    if (!utility.lockItemAtPath(card)) {
        GTEST_SKIP() << "the file system of the temporary folder has no such flag";
    }
    EXPECT_NE(::unlink(clip.c_str()), 0) << "a locked file cannot be removed";
    EXPECT_FALSE(utility.removeContentsAtPath(card));
    EXPECT_TRUE(utility.unlockFile(card));
    EXPECT_EQ(test::fileContents(clip), "bytes");
    EXPECT_TRUE(utility.lockItemAtPath(clip));
    EXPECT_TRUE(utility.unlockDirectory(card));
    EXPECT_TRUE(utility.removeContentsAtPath(card));
}

TEST(Permissions, AreTheBitsOfTheItem) {
    const test::TemporaryFolder folder;
    const QRXFileSystemUtility utility;
    const FilePath file = folder.write("a");
    ::chmod(file.c_str(), 0640);
    EXPECT_EQ(utility.directoryPosixPermissionsForPath(file), 0640U);
    ::chmod(file.c_str(), 04755);
    EXPECT_EQ(utility.directoryPosixPermissionsForPath(file), 04755U);
    EXPECT_EQ(utility.directoryPosixPermissionsForPath(folder / "missing"), 0U);
    EXPECT_EQ(utility.directoryPosixPermissionsForPath(""), 0U);
}

TEST(Permissions, TellWhoMayWrite) {
    const test::TemporaryFolder folder;
    const QRXFileSystemUtility utility;
    EXPECT_TRUE(utility.filePathHasWritePermissions(folder.write("a")));
    EXPECT_FALSE(utility.filePathHasWritePermissions(folder / "missing"));
    EXPECT_FALSE(utility.filePathHasWritePermissions(""));
    const FilePath readOnly = folder.write("r");
    ::chmod(readOnly.c_str(), 0444);
    EXPECT_EQ(utility.filePathHasWritePermissions(readOnly), ::geteuid() == 0);
}

}  // namespace
}  // namespace qrx
