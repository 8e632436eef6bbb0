#include <array>
#include <string>

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include "readers/ByteSource.h"
#include "support/TemporaryFolder.h"

namespace qrx {
namespace {

std::string textRead(const ByteSource& source, std::uint64_t offset, std::size_t count) {
    std::string text(count, '?');
    text.resize(source.read(offset, std::as_writable_bytes(std::span(text))));
    return text;
}

TEST(MemoryByteSource, ReadsWhatIsThere) {
    const std::string bytes = "0123456789";
    const MemoryByteSource source(std::as_bytes(std::span(bytes)));
    EXPECT_EQ(source.size(), 10U);
    EXPECT_EQ(textRead(source, 0, 4), "0123");
    EXPECT_EQ(textRead(source, 8, 4), "89");
    EXPECT_EQ(textRead(source, 10, 4), "");
    EXPECT_EQ(textRead(source, UINT64_MAX, 4), "");
}

TEST(FileByteSource, ReadsWhatIsThere) {
    const test::TemporaryFolder folder;
    const FileByteSource source(folder.write("a", "0123456789"));
    ASSERT_TRUE(source.isOpen());
    EXPECT_EQ(source.size(), 10U);
    EXPECT_EQ(textRead(source, 0, 4), "0123");
    EXPECT_EQ(textRead(source, 8, 4), "89");
    EXPECT_EQ(textRead(source, 10, 4), "");
    EXPECT_EQ(textRead(source, UINT64_MAX, 4), "");
}

TEST(FileByteSource, FollowsALink) {
    const test::TemporaryFolder folder;
    folder.write("a", "0123");
    EXPECT_EQ(FileByteSource(folder.link("b", "a")).size(), 4U);
}

TEST(FileByteSource, GivesLessWhenTheFileShrankMeanwhile) {
    const test::TemporaryFolder folder;
    const std::string path = folder.write("a", "0123456789");
    const FileByteSource source(path);
    ASSERT_EQ(::truncate(path.c_str(), 3), 0);
    EXPECT_EQ(source.size(), 10U);
    EXPECT_EQ(textRead(source, 0, 10), "012");
}

TEST(FileByteSource, OpensNothingThatIsMissing) {
    const test::TemporaryFolder folder;
    EXPECT_FALSE(FileByteSource(folder / "a").isOpen());
    EXPECT_FALSE(FileByteSource("").isOpen());
    EXPECT_FALSE(FileByteSource(folder.link("dangling", "nowhere")).isOpen());
    EXPECT_FALSE(FileByteSource(folder.link("loop", "loop")).isOpen());
    EXPECT_EQ(textRead(FileByteSource(folder / "a"), 0, 4), "");
}

TEST(FileByteSource, APathWithAZeroByteIsNotThePathBeforeIt) {
    const test::TemporaryFolder folder;
    const std::string path = folder.write("a", "0123");
    EXPECT_FALSE(FileByteSource(path + std::string("\0.mov", 5)).isOpen());
}

TEST(FileByteSource, NeverOpensAFolder) {
    const test::TemporaryFolder folder;
    EXPECT_FALSE(FileByteSource(folder.path()).isOpen());
}

TEST(FileByteSource, NeverOpensAFifo) {
    const test::TemporaryFolder folder;
    const std::string path = folder / "fifo.mp4";
    ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
    EXPECT_FALSE(FileByteSource(path).isOpen());
}

TEST(FileByteSource, NeverOpensASocket) {
    const test::TemporaryFolder folder;
    const std::string path = folder / "s";
    const int listening = ::socket(AF_UNIX, SOCK_STREAM, 0);
    ASSERT_GE(listening, 0);
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    ASSERT_LT(path.size(), sizeof(address.sun_path));
    path.copy(address.sun_path, path.size());
    ASSERT_EQ(::bind(listening, reinterpret_cast<sockaddr*>(&address), sizeof(address)), 0);
    EXPECT_FALSE(FileByteSource(path).isOpen());
    ::close(listening);
}

TEST(FileByteSource, NeverOpensADevice) {
    EXPECT_FALSE(FileByteSource("/dev/zero").isOpen());
    EXPECT_FALSE(FileByteSource("/dev/tty").isOpen());
}

TEST(FileByteSource, LeaksNoDescriptor) {
    const test::TemporaryFolder folder;
    const std::string path = folder.write("a", "0123");
    const int before = ::dup(0);
    ::close(before);
    for (int i = 0; i < 10; ++i) {
        EXPECT_TRUE(FileByteSource(path).isOpen());
        EXPECT_FALSE(FileByteSource(folder.path()).isOpen());
    }
    const int after = ::dup(0);
    ::close(after);
    EXPECT_EQ(after, before);
}

}  // namespace
}  // namespace qrx
