#include <filesystem>
#include <string>

#include <gtest/gtest.h>
#include <unistd.h>

#include "foundation/FileQuestions.h"
#include "foundation/UniqueNames.h"
#include "support/TemporaryFolder.h"

namespace qrx {
namespace {

using test::TemporaryFolder;

TEST(UniquePath, IsThePathItselfWhereNothingExists) {
    const TemporaryFolder folder;
    EXPECT_EQ(uniquePath(folder / "clip.mov"), folder / "clip.mov");
    EXPECT_EQ(uniquePath(folder / "absent//clip.mov/"), folder / "absent//clip.mov/");
    EXPECT_EQ(uniquePath(""), "");
    folder.link("dangling.mov", "nowhere");
    EXPECT_EQ(uniquePath(folder / "dangling.mov"), folder / "dangling.mov");
}

TEST(UniquePath, CountsFromTwo) {
    const TemporaryFolder folder;
    folder.write("clip.mov");
    EXPECT_EQ(uniquePath(folder / "clip.mov"), folder / "clip-2.mov");
    folder.write("clip-2.mov");
    EXPECT_EQ(uniquePath(folder / "clip.mov"), folder / "clip-3.mov");
    folder.makeFolder("clip-3.mov");
    folder.write("clip-5.mov");
    EXPECT_EQ(uniquePath(folder / "clip.mov"), folder / "clip-4.mov");
    EXPECT_EQ(uniquePath(folder / "clip-2.mov"), folder / "clip-2-2.mov");
}

TEST(UniquePath, OfAFolderHasNoExtension) {
    const TemporaryFolder folder;
    folder.makeFolder("takes");
    EXPECT_EQ(uniquePath(folder / "takes"), folder / "takes-2");
    EXPECT_EQ(uniquePath(folder / "takes/"), folder / "takes-2");
}

TEST(UniquePath, KeptFolderWithAPointLosesWhatFollows) {
    const TemporaryFolder folder;
    folder.makeFolder("take.one");
    EXPECT_EQ(uniquePath(folder / "take.one"), folder / "take");
    folder.write("take");
    EXPECT_EQ(uniquePath(folder / "take.one"), folder / "take-2");
    folder.makeFolder("take-2");
    EXPECT_EQ(uniquePath(folder / "take.one"), folder / "take-3");
}

TEST(UniquePath, KeptFileWithoutExtensionGetsALonePoint) {
    const TemporaryFolder folder;
    folder.write("notes");
    EXPECT_EQ(uniquePath(folder / "notes"), folder / "notes-2.");
    folder.write("notes-2.");
    EXPECT_EQ(uniquePath(folder / "notes"), folder / "notes-3.");
    folder.write("last.");
    EXPECT_EQ(uniquePath(folder / "last."), folder / "last-2.");
    folder.write(".bashrc");
    EXPECT_EQ(uniquePath(folder / ".bashrc"), folder / ".bashrc-2.");
}

TEST(UniquePath, KeptRelativePathComesBackBelowTheRoot) {
    const TemporaryFolder folder;
    const std::string name = "qrx-unique-" + std::to_string(::getpid()) + ".mov";
    folder.write(name);
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(folder.path());
    EXPECT_EQ(uniquePath(name), "/" + name);
    std::filesystem::current_path(before);
}

TEST(UniquePath, FollowsALinkToAFolder) {
    const TemporaryFolder folder;
    folder.makeFolder("A");
    EXPECT_EQ(uniquePath(folder.link("link.d", "A")), folder / "link");
}

TEST(UniquePath, TakesNamesThatAreNotUtf8) {
    const TemporaryFolder folder;
    folder.write("caf\xE9.mov");
    EXPECT_EQ(uniquePath(folder / "caf\xE9.mov"), folder / "caf\xE9-2.mov");
}

TEST(CreateUniqueFolder, MakesTheFolderAndThoseAbove) {
    const TemporaryFolder folder;
    EXPECT_EQ(createUniqueFolder(folder / "a/b/c"), folder / "a/b/c");
    EXPECT_TRUE(folderExists(folder / "a/b/c"));
    EXPECT_EQ(createUniqueFolder(folder / "a/b/c"), folder / "a/b/c-2");
    EXPECT_TRUE(folderExists(folder / "a/b/c-2"));
}

TEST(CreateUniqueFolder, AnswersThePathAlsoWhenItCannotBeMade) {
    const TemporaryFolder folder;
    const FilePath below = folder.write("file") + "/a";
    EXPECT_EQ(createUniqueFolder(below), below);
    EXPECT_FALSE(itemExists(below));
    EXPECT_EQ(createUniqueFolder(""), "");
    const FilePath withNul = (folder / "a") + '\0' + "b";
    EXPECT_EQ(createUniqueFolder(withNul), withNul);
    EXPECT_FALSE(itemExists(folder / "a"));
}

TEST(FreeFolderPath, KeptNumberFollowsTheExtension) {
    const TemporaryFolder folder;
    EXPECT_EQ(freeFolderPath(folder / "x.mov"), folder / "x.mov");
    folder.write("x.mov");
    EXPECT_EQ(freeFolderPath(folder / "x.mov"), folder / "x.mov-2");
    folder.makeFolder("x.mov-2");
    EXPECT_EQ(freeFolderPath(folder / "x.mov"), folder / "x.mov-3");
}

}  // namespace
}  // namespace qrx
