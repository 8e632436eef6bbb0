#include <string>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include "foundation/FileQuestions.h"
#include "support/PlainUser.h"
#include "support/TemporaryFolder.h"

namespace qrx {
namespace {

using test::TemporaryFolder;

/// The four answers as four letters: Item, foLder, fiLe, Special; "-" for NO.
std::string answers(const FilePath& path) {
    std::string text;
    text += itemExists(path) ? 'i' : '-';
    text += folderExists(path) ? 'd' : '-';
    text += fileExists(path) ? 'f' : '-';
    text += isSpecialFile(path) ? 's' : '-';
    return text;
}

TEST(FileQuestions, FilesAndFolders) {
    const TemporaryFolder folder;
    EXPECT_EQ(answers(folder.write("clip.mov")), "i-f-");
    EXPECT_EQ(answers(folder.makeFolder("A")), "id--");
    EXPECT_EQ(answers(folder / "A/"), "id--");
    EXPECT_EQ(answers(folder / "/A"), "id--");
    EXPECT_EQ(answers(folder / "A/..//clip.mov"), "i-f-");
}

TEST(FileQuestions, WhatIsNotThere) {
    const TemporaryFolder folder;
    folder.write("clip.mov");
    EXPECT_EQ(answers(""), "----");
    EXPECT_EQ(answers(folder / "absent"), "----");
    EXPECT_EQ(answers(folder / "absent/clip.mov"), "----");
    EXPECT_EQ(answers(folder / "clip.mov/"), "----");
    EXPECT_EQ(answers(folder / "clip.mov/x"), "----");
    EXPECT_EQ(answers(folder / "CLIP.mov"), "----");
}

TEST(FileQuestions, PathWithANulIsNotThere) {
    const TemporaryFolder folder;
    const std::string file = folder.write("clip.mov");
    EXPECT_EQ(answers(file + '\0'), "----");
    EXPECT_EQ(answers(file + '\0' + "x"), "----");
}

TEST(FileQuestions, LinksAreFollowed) {
    const TemporaryFolder folder;
    folder.write("clip.mov");
    folder.makeFolder("A");
    EXPECT_EQ(answers(folder.link("toFile", "clip.mov")), "i-f-");
    EXPECT_EQ(answers(folder.link("toFolder", "A")), "id--");
    EXPECT_EQ(answers(folder.link("toLink", "toFile")), "i-f-");
    EXPECT_EQ(answers(folder.link("dangling", "nowhere")), "----");
    folder.link("here", "there");
    EXPECT_EQ(answers(folder.link("there", "here")), "----");
}

TEST(FileQuestions, SpecialFiles) {
    const TemporaryFolder folder;
    ASSERT_EQ(::mkfifo((folder / "fifo.mov").c_str(), 0600), 0);
    EXPECT_EQ(answers(folder / "fifo.mov"), "i-fs");
    EXPECT_EQ(answers(folder.link("toFifo", "fifo.mov")), "i-fs");
    EXPECT_EQ(answers("/dev/null"), "i-fs");

    const int descriptor = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    ASSERT_GE(descriptor, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const std::string path = folder / "s.mov";
    ASSERT_LT(path.size(), sizeof address.sun_path);
    path.copy(address.sun_path, path.size());
    ASSERT_EQ(::bind(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    EXPECT_EQ(answers(path), "i-fs");
    ::close(descriptor);
}

TEST(FileQuestions, LongPathsAreAnsweredNotThere) {
    for (const std::size_t length : {255U, 256U, 4000U, 4095U, 4096U, 100000U}) {
        EXPECT_EQ(answers("/" + std::string(length, 'x')), "----") << length;
    }
    std::string many;
    while (many.size() < 4000)
        many += "/.";
    EXPECT_EQ(answers(many), "id--");
}

TEST(FileQuestions, NamesThatAreNotUtf8AndNamesWithLineEnds) {
    const TemporaryFolder folder;
    EXPECT_EQ(answers(folder.write("caf\xE9.mov")), "i-f-");
    EXPECT_EQ(answers(folder.write("a\nb.mov")), "i-f-");
}

TEST(FileQuestions, WhatLiesInAClosedFolderIsNotThere) {
    const TemporaryFolder folder;
    folder.write("closed/clip.mov");
    ASSERT_EQ(::chmod(folder.path().c_str(), 0755), 0);
    ASSERT_EQ(::chmod((folder / "closed").c_str(), 0), 0);
    EXPECT_EQ(test::askedByPlainUser([&] { return answers(folder / "closed/clip.mov"); }), "----");
    EXPECT_EQ(test::askedByPlainUser([&] { return answers(folder / "closed"); }), "id--");
    ASSERT_EQ(::chmod((folder / "closed").c_str(), 0755), 0);
}

}  // namespace
}  // namespace qrx
