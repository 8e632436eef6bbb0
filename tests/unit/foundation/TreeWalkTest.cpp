#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include "foundation/Enumeration.h"
#include "foundation/Removal.h"
#include "foundation/TreeWalk.h"
#include "support/DeepTree.h"
#include "support/PlainUser.h"
#include "support/TemporaryFolder.h"

namespace qrx {
namespace {

using Paths = std::vector<std::string>;
using test::CardTree;
using test::TemporaryFolder;

TEST(TreeWalk, IsPreOrderInNameOrder) {
    const CardTree card{"A/.cache/clip.mov", "A/clip.mov", "B/", "a.mov", "Z"};
    EXPECT_EQ(relativePathsBelow(card.path()),
              (Paths{"A", "A/.cache", "A/.cache/clip.mov", "A/clip.mov", "a.mov", "B", "Z"}));
}

TEST(TreeWalk, OfNothingAndOfAnEmptyFolder) {
    const TemporaryFolder folder;
    EXPECT_EQ(relativePathsBelow(folder.path()), Paths{});
    EXPECT_EQ(relativePathsBelow(folder / "absent"), std::nullopt);
    EXPECT_EQ(relativePathsBelow(folder.write("file")), std::nullopt);
    EXPECT_EQ(relativePathsBelow(""), std::nullopt);
    EXPECT_EQ(relativePathsBelow(folder.path() + '\0'), std::nullopt);
}

TEST(TreeWalk, ListsLinksAndEntersNone) {
    const TemporaryFolder folder;
    folder.write("A/clip.mov");
    folder.link("dangling", "nowhere");
    folder.link("toA", "A");
    folder.link("toSelf", ".");
    folder.link("A/toParent", "..");
    EXPECT_EQ(relativePathsBelow(folder.path()),
              (Paths{"A", "A/clip.mov", "A/toParent", "dangling", "toA", "toSelf"}));
}

TEST(TreeWalk, FollowsALinkGivenAsTheStart) {
    const TemporaryFolder folder;
    folder.write("A/clip.mov");
    const FilePath link = folder.link("toA", "A");
    TreeWalk walk(link);
    ASSERT_TRUE(walk.next());
    EXPECT_EQ(walk.path(), link + "/clip.mov");
    EXPECT_FALSE(TreeWalk(link, {}, LastLink::refuse).started());
}

TEST(TreeWalk, FullPathIsTheStartAsGiven) {
    const TemporaryFolder folder;
    folder.write("A/clip.mov");
    TreeWalk walk(folder.path() + "/");
    ASSERT_TRUE(walk.next());
    EXPECT_EQ(walk.path(), folder.path() + "//A");
    EXPECT_EQ(walk.relativePath(), "A");
    EXPECT_EQ(walk.depth(), 0U);
    ASSERT_TRUE(walk.next());
    EXPECT_EQ(walk.path(), folder.path() + "//A/clip.mov");
    EXPECT_EQ(walk.relativePath(), "A/clip.mov");
    EXPECT_EQ(walk.name(), "clip.mov");
    EXPECT_EQ(walk.depth(), 1U);
    EXPECT_FALSE(walk.next());
    EXPECT_FALSE(walk.next());
}

TEST(TreeWalk, AnswersForEachKindOfItem) {
    const TemporaryFolder folder;
    folder.write("a", "12345");
    folder.makeFolder("b");
    folder.link("c", "a");
    folder.link("d", "b");
    folder.link("e", "nowhere");
    folder.link("f", "f");
    ASSERT_EQ(::mkfifo((folder / "g").c_str(), 0600), 0);
    std::string answers;
    TreeWalk walk(folder.path());
    while (walk.next()) {
        answers += walk.name();
        answers += walk.exists() ? "+" : "-";
        answers += walk.isFolder() ? "d " : "f ";
    }
    EXPECT_EQ(answers, "a+f b+d c+f d+d e-f f-f g+f ");
}

TEST(TreeWalk, SizeIsThatOfTheItemItself) {
    const TemporaryFolder folder;
    folder.write("a", "12345");
    folder.link("b", "./././a");
    TreeWalk walk(folder.path());
    ASSERT_TRUE(walk.next());
    EXPECT_EQ(walk.size(), 5);
    ASSERT_TRUE(walk.next());
    EXPECT_EQ(walk.size(), 7);
}

TEST(TreeWalk, PassesOverWhatLiesBelow) {
    const CardTree card{"A/B/c", "A/d", "E/f"};
    Paths seen;
    TreeWalk walk(card.path());
    while (walk.next()) {
        seen.emplace_back(walk.relativePath());
        if (walk.name() == "A") walk.skipBelow();
    }
    EXPECT_EQ(seen, (Paths{"A", "E", "E/f"}));
}

TEST(TreeWalk, ToldOfUnreadableFoldersItGoesOn) {
    const CardTree card{"A/clip.mov", "closed/clip.mov", "Z/clip.mov"};
    ASSERT_EQ(::chmod(card.path().c_str(), 0755), 0);
    ASSERT_EQ(::chmod((card / "closed").c_str(), 0), 0);
    const std::string seen = test::askedByPlainUser([&] {
        std::string text;
        TreeWalk walk(card.path(), [&](const FilePath& folder) {
            text += "!" + folder.substr(card.path().size()) + " ";
        });
        while (walk.next())
            text += std::string(walk.relativePath()) + " ";
        return text;
    });
    ASSERT_EQ(::chmod((card / "closed").c_str(), 0755), 0);
    EXPECT_EQ(seen, "A A/clip.mov closed !/closed Z Z/clip.mov ");
}

TEST(TreeWalk, IsToldOfAnUnreadableStart) {
    const CardTree card{"clip.mov"};
    ASSERT_EQ(::chmod(card.path().c_str(), 0), 0);
    const std::string seen = test::askedByPlainUser([&] {
        std::string text;
        TreeWalk walk(card.path(), [&](const FilePath& folder) { text += folder; });
        return text + (walk.started() || walk.next() ? "+" : "-");
    });
    ASSERT_EQ(::chmod(card.path().c_str(), 0700), 0);
    EXPECT_EQ(seen, card.path() + "-");
}

TEST(TreeWalk, MissingStartIsNotUnreadable) {
    bool told = false;
    const TreeWalk walk("/no/such/folder/anywhere", [&](const FilePath&) { told = true; });
    EXPECT_FALSE(walk.started());
    EXPECT_FALSE(told);
}

TEST(TreeWalk, FolderThatCanBeListedButNotSearchedHoldsNothingThatExists) {
    const CardTree card{"listed/A/x", "listed/clip.mov", "Z"};
    ASSERT_EQ(::chmod(card.path().c_str(), 0755), 0);
    ASSERT_EQ(::chmod((card / "listed").c_str(), 0444), 0);
    const std::string seen = test::askedByPlainUser([&] {
        std::string text;
        TreeWalk walk(card.path());
        while (walk.next())
            text += std::string(walk.relativePath()) + (walk.exists() ? "+ " : "- ");
        return text;
    });
    ASSERT_EQ(::chmod((card / "listed").c_str(), 0755), 0);
    EXPECT_EQ(seen, "listed+ listed/A- listed/clip.mov- Z+ ");
}

/// Lets the process have only few more descriptors; puts the limit back.
class FewDescriptors {
public:
    FewDescriptors() {
        ::getrlimit(RLIMIT_NOFILE, &before_);
        rlimit few = before_;
        few.rlim_cur = FolderChain::kMostOpen + 24;
        ::setrlimit(RLIMIT_NOFILE, &few);
    }
    ~FewDescriptors() { ::setrlimit(RLIMIT_NOFILE, &before_); }
    FewDescriptors(const FewDescriptors&) = delete;
    FewDescriptors& operator=(const FewDescriptors&) = delete;

private:
    rlimit before_{};
};

TEST(TreeWalk, DeepTreeNeedsFewDescriptorsAndNoShortPaths) {
    const TemporaryFolder folder;
    constexpr std::size_t kDepth = 1000;  // 5,000 bytes of path
    const std::string file = test::makeDeepTree(folder.path(), "dddd", kDepth);
    folder.write("dddd/dddd/last");
    folder.write("zz");
    const FewDescriptors few;
    std::size_t folders = 0;
    Paths files;
    TreeWalk walk(folder.path());
    while (walk.next()) {
        if (walk.kind() == EntryKind::folder) {
            ++folders;
        } else {
            files.push_back(walk.path());
        }
    }
    EXPECT_EQ(folders, kDepth);
    EXPECT_EQ(files, (Paths{file, folder / "dddd/dddd/last", folder / "zz"}));
    EXPECT_TRUE(removeItem(folder.path()));
}

TEST(TreeWalk, FolderMovedAwayMeanwhileIsFoundAgainOrLeft) {
    const TemporaryFolder folder;
    const TemporaryFolder elsewhere;
    test::makeDeepTree(folder.path(), "d", 100);
    std::string middle = folder.path();
    for (int i = 0; i < 20; ++i) {
        middle += "/d";
        if (i == 9) folder.write(middle.substr(folder.path().size() + 1) + "/e/stays.mov");
    }
    folder.write(middle.substr(folder.path().size() + 1) + "/e/moved.mov");
    elsewhere.write("stranger.mov");
    elsewhere.write("z/stranger.mov");

    Paths seen;
    TreeWalk walk(folder.path());
    while (walk.next()) {
        if (walk.name() == "clip.mov") std::filesystem::rename(middle, elsewhere / "d");
        if (walk.kind() == EntryKind::other) seen.emplace_back(walk.name());
    }
    // moved.mov is reached through the moved folder itself, stays.mov from the start folder
    EXPECT_EQ(seen, (Paths{"clip.mov", "moved.mov", "stays.mov"}));
}

TEST(TreeWalk, FolderThatIsGoneMeanwhileIsLeft) {
    const TemporaryFolder folder;
    const TemporaryFolder elsewhere;
    test::makeDeepTree(folder.path(), "d", 100);
    folder.write("d/d/d/e/lost.mov");
    folder.write("e/top.mov");

    Paths seen;
    TreeWalk walk(folder.path());
    while (walk.next()) {
        if (walk.name() == "clip.mov") {
            std::filesystem::rename(folder / "d/d/d/d", elsewhere / "below");
            std::filesystem::rename(folder / "d/d/d", elsewhere / "above");
            folder.write("d/d/d/e/stranger.mov");
        }
        if (walk.kind() == EntryKind::other) seen.emplace_back(walk.name());
    }
    EXPECT_EQ(seen, (Paths{"clip.mov", "top.mov"}));
}

TEST(FolderChain, NeverEntersALinkPutInPlaceOfAFolder) {
    const TemporaryFolder folder;
    const TemporaryFolder outside;
    outside.write("precious");
    folder.makeFolder("A");
    FolderChain chain(folder.path(), LastLink::follow);
    ASSERT_TRUE(chain.next());
    ASSERT_EQ(chain.entry().kind, EntryKind::folder);
    std::filesystem::remove(folder / "A");
    folder.link("A", outside.path());
    EXPECT_FALSE(chain.enter());
}

}  // namespace
}  // namespace qrx
