#include <filesystem>
#include <string>

#include <gtest/gtest.h>

#include "foundation/ItemLookups.h"
#include "support/TemporaryFolder.h"

namespace qrx {
namespace {

using test::TemporaryFolder;

TEST(IsSymbolicLink, LooksAtTheItemItself) {
    const TemporaryFolder folder;
    folder.makeFolder("A");
    EXPECT_TRUE(isSymbolicLink(folder.link("toA", "A")));
    EXPECT_TRUE(isSymbolicLink(folder.link("dangling", "nowhere")));
    EXPECT_FALSE(isSymbolicLink(folder / "A"));
    EXPECT_FALSE(isSymbolicLink(folder.write("file")));
    EXPECT_FALSE(isSymbolicLink(folder / "absent"));
    EXPECT_FALSE(isSymbolicLink(""));
    EXPECT_FALSE(isSymbolicLink((folder / "toA") + '\0'));
}

TEST(ResolvedLink, FollowsChainsToTheEnd) {
    const TemporaryFolder folder;
    const FilePath real = std::filesystem::canonical(folder.path()).string();
    folder.write("A/clip.mov");
    folder.link("one", "A/clip.mov");
    folder.link("two", "./A/../one");
    EXPECT_EQ(resolvedLink(folder / "one"), real + "/A/clip.mov");
    EXPECT_EQ(resolvedLink(folder / "two"), real + "/A/clip.mov");
    EXPECT_EQ(resolvedLink(folder.link("toA", "A")), real + "/A");
}

TEST(ResolvedLink, IsThePathItselfInEveryOtherCase) {
    const TemporaryFolder folder;
    folder.write("A/clip.mov");
    folder.link("toA", "A");
    folder.link("dangling", "nowhere");
    folder.link("self", "self");
    for (const FilePath& path :
         {folder / "A//clip.mov", folder / "toA/clip.mov", folder / "dangling", folder / "self",
          folder / "absent", FilePath(), (folder / "toA") + '\0'}) {
        EXPECT_EQ(resolvedLink(path), path);
    }
}

TEST(ItemImage, IsAPlaceholder) {
    const platform::Image image = itemImage("/anything");
    EXPECT_FALSE(image.isEmpty());
    EXPECT_EQ(image.rgba.size(), std::size_t{image.width} * image.height * 4);
    EXPECT_EQ(itemImage("").rgba, image.rgba);
}

TEST(ItemImage, OfAnAbsentPathIsEmpty) {
    EXPECT_TRUE(itemImage(std::nullopt).isEmpty());
}

}  // namespace
}  // namespace qrx
