#include <csignal>
#include <filesystem>
#include <string>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include "foundation/FileReplacement.h"
#include "support/PlainUser.h"
#include "support/TemporaryFolder.h"

namespace qrx {
namespace {

namespace fs = std::filesystem;

std::size_t entriesOf(const std::string& folder) {
    return static_cast<std::size_t>(
        std::distance(fs::directory_iterator(folder), fs::directory_iterator()));
}

class FileReplacement : public testing::Test {
protected:
    void expectUntouched() const {
        EXPECT_EQ(test::fileContents(file_), "old");
        EXPECT_EQ(entriesOf(folder_.path()), 1U) << "nothing may be left beside it";
    }

    test::TemporaryFolder folder_;
    std::string file_ = folder_.write("file", "old");
};

TEST_F(FileReplacement, PutsTheNewContentsInPlace) {
    EXPECT_TRUE(replaceFileContents(file_, "new and longer"));
    EXPECT_EQ(test::fileContents(file_), "new and longer");
    EXPECT_TRUE(replaceFileContents(file_, ""));
    EXPECT_EQ(test::fileContents(file_), "");
    EXPECT_EQ(entriesOf(folder_.path()), 1U);
}

TEST_F(FileReplacement, KeepsThePermissions) {
    ASSERT_EQ(::chmod(file_.c_str(), 0640), 0);
    ASSERT_TRUE(replaceFileContents(file_, "new"));
    struct stat status {};
    ASSERT_EQ(::stat(file_.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777U, 0640U);
}

TEST_F(FileReplacement, WorksOnARelativePath) {
    const auto before = fs::current_path();
    fs::current_path(folder_.path());
    EXPECT_TRUE(replaceFileContents("file", "new"));
    EXPECT_TRUE(replaceFileContents("./file", "newer"));
    fs::current_path(before);
    EXPECT_EQ(test::fileContents(file_), "newer");
    EXPECT_EQ(entriesOf(folder_.path()), 1U);
}

TEST_F(FileReplacement, LeavesAReaderWithTheOldContents) {
    const int reader = ::open(file_.c_str(), O_RDONLY | O_CLOEXEC);
    ASSERT_GE(reader, 0);
    ASSERT_TRUE(replaceFileContents(file_, "new"));
    char bytes[8]{};
    EXPECT_EQ(::read(reader, bytes, sizeof bytes), 3);
    EXPECT_EQ(std::string(bytes), "old");
    ::close(reader);
}

TEST_F(FileReplacement, MakesNoFile) {
    EXPECT_FALSE(replaceFileContents(folder_ / "missing", "new"));
    EXPECT_FALSE(replaceFileContents(folder_ / "missing/file", "new"));
    EXPECT_FALSE(replaceFileContents("", "new"));
    EXPECT_FALSE(replaceFileContents(file_ + std::string("\0x", 2), "new"));
    expectUntouched();
}

TEST_F(FileReplacement, NeverFollowsALink) {
    const test::TemporaryFolder other;
    const auto link = other.link("link", file_);
    EXPECT_FALSE(replaceFileContents(link, "new"));
    EXPECT_TRUE(fs::is_symlink(link));
    expectUntouched();
}

TEST_F(FileReplacement, TouchesNoFolderAndNoFifo) {
    const test::TemporaryFolder other;
    const auto fifo = other / "fifo";
    ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
    EXPECT_FALSE(replaceFileContents(fifo, "new"));
    EXPECT_FALSE(replaceFileContents(other.path(), "new"));
    EXPECT_TRUE(fs::is_fifo(fifo));
}

TEST_F(FileReplacement, LeavesTheFileWhereNothingMoreCanBeWritten) {
    struct rlimit before {};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &before), 0);
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    struct rlimit small = before;
    small.rlim_cur = 1000;
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);
    const bool replaced = replaceFileContents(file_, std::string(2000, 'x'));
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &before), 0);
    std::signal(SIGXFSZ, handler);
    EXPECT_FALSE(replaced);
    expectUntouched();
}

TEST_F(FileReplacement, LeavesAFileThatMayNotBeWritten) {
    ASSERT_EQ(::chmod(file_.c_str(), 0444), 0);
    ASSERT_EQ(::chmod(folder_.path().c_str(), 0777), 0);
    const std::string answer = test::askedByPlainUser(
        [&] { return std::string(replaceFileContents(file_, "new") ? "YES" : "NO"); });
    EXPECT_EQ(answer, "NO");
    expectUntouched();
}

TEST_F(FileReplacement, LeavesAFileInAFolderThatMayNotBeWritten) {
    ASSERT_EQ(::chmod(file_.c_str(), 0666), 0);
    ASSERT_EQ(::chmod(folder_.path().c_str(), 0555), 0);
    const std::string answer = test::askedByPlainUser(
        [&] { return std::string(replaceFileContents(file_, "new") ? "YES" : "NO"); });
    ASSERT_EQ(::chmod(folder_.path().c_str(), 0755), 0);
    EXPECT_EQ(answer, "NO");
    expectUntouched();
}

}  // namespace
}  // namespace qrx
