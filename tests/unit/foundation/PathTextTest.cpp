#include <cstdlib>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "foundation/PathText.h"

namespace qrx {
namespace {

TEST(JoinedPath, IsPlainText) {
    EXPECT_EQ(joinedPath("/d", "a"), "/d/a");
    EXPECT_EQ(joinedPath("/d/", "a"), "/d//a");
    EXPECT_EQ(joinedPath("", "a"), "/a");
    EXPECT_EQ(joinedPath("/", "a"), "//a");
    EXPECT_EQ(joinedPath("/d", ""), "/d/");
    EXPECT_EQ(joinedPath("/d", "/a"), "/d//a");
}

struct PathRow {
    const char* name;
    const char* path;
    const char* answer;
};

std::string nameOf(const testing::TestParamInfo<PathRow>& row) {
    return row.param.name;
}

class LastPathComponent : public testing::TestWithParam<PathRow> {};

TEST_P(LastPathComponent, IsTheTextAfterTheLastSlash) {
    EXPECT_EQ(lastPathComponent(GetParam().path), GetParam().answer);
    EXPECT_EQ(lastPathComponentView(GetParam().path), GetParam().answer);
}

INSTANTIATE_TEST_SUITE_P(
    Table, LastPathComponent,
    testing::Values(PathRow{"TrailingSlash", "/a/b/", "b"}, PathRow{"TwoSlashes", "a//b", "b"},
                    PathRow{"Root", "/", "/"}, PathRow{"SlashesOnly", "//", "/"},
                    PathRow{"ManySlashesOnly", "////", "/"}, PathRow{"Empty", "", ""},
                    PathRow{"Name", "clip.mov", "clip.mov"}, PathRow{"TopLevel", "/a", "a"},
                    PathRow{"TwoTrailingSlashes", "/a/b//", "b"}, PathRow{"Blank", "/a/b c", "b c"},
                    PathRow{"DotDot", "/a/..", ".."}, PathRow{"NotUtf8", "/a/\xFF", "\xFF"}),
    nameOf);

class WithoutLastPathComponent : public testing::TestWithParam<PathRow> {};

TEST_P(WithoutLastPathComponent, LeavesWhatStandsBefore) {
    EXPECT_EQ(withoutLastPathComponent(GetParam().path), GetParam().answer);
    EXPECT_EQ(withoutLastPathComponentView(GetParam().path), GetParam().answer);
}

INSTANTIATE_TEST_SUITE_P(
    Table, WithoutLastPathComponent,
    testing::Values(PathRow{"TrailingSlash", "/a/b/", "/a"}, PathRow{"TopLevel", "/a", "/"},
                    PathRow{"RelativeName", "a", ""}, PathRow{"RelativeNameAndSlash", "a/", ""},
                    PathRow{"TwoSlashes", "/a//b", "/a"},
                    PathRow{"Volume", "/Volumes/EOS/", "/Volumes"}, PathRow{"Root", "/", "/"},
                    PathRow{"SlashesOnly", "//", "/"}, PathRow{"Empty", "", ""},
                    PathRow{"Relative", "a/b", "a"}, PathRow{"SlashesBeforeTopLevel", "//a", "/"},
                    PathRow{"SlashesInside", "a///b///", "a"}),
    nameOf);

class PathExtension : public testing::TestWithParam<PathRow> {};

TEST_P(PathExtension, StandsAfterTheLastPoint) {
    EXPECT_EQ(pathExtension(GetParam().path), GetParam().answer);
}

INSTANTIATE_TEST_SUITE_P(
    Table, PathExtension,
    testing::Values(PathRow{"LeadingPoint", ".DS_Store", ""}, PathRow{"TwoPoints", ".a.b", "b"},
                    PathRow{"LastPoint", "a.", ""}, PathRow{"TrailingSlash", "a.b/", "b"},
                    PathRow{"PointInFolder", "/a.b/c", ""}, PathRow{"Blank", "a.b c", "b c"},
                    PathRow{"DotDot", "..", ""}, PathRow{"Dot", ".", ""},
                    PathRow{"Clip", "/x/C0012.MP4", "MP4"}, PathRow{"None", "/x/notes", ""},
                    PathRow{"Several", "a.tar.gz", "gz"}, PathRow{"Empty", "", ""},
                    PathRow{"Root", "/", ""}, PathRow{"HiddenBelow", "/a/.b", ""}),
    nameOf);

class WithoutPathExtension : public testing::TestWithParam<PathRow> {};

TEST_P(WithoutPathExtension, DropsTheLastPointAndWhatFollows) {
    EXPECT_EQ(withoutPathExtension(GetParam().path), GetParam().answer);
}

INSTANTIATE_TEST_SUITE_P(
    Table, WithoutPathExtension,
    testing::Values(PathRow{"LeadingPoint", ".bashrc", ".bashrc"}, PathRow{"LastPoint", "a.", "a"},
                    PathRow{"TrailingSlash", "a.b/", "a"}, PathRow{"TwoPoints", "a..b", "a."},
                    PathRow{"NoPoint", "/a/b/", "/a/b"}, PathRow{"TakeOne", "take.one", "take"},
                    PathRow{"PointInFolder", "/a.b/c", "/a.b/c"},
                    PathRow{"WholePath", "/a.b/c.d", "/a.b/c"},
                    PathRow{"HiddenWithExtension", ".a.b", ".a"}, PathRow{"DotDot", "..", ".."},
                    PathRow{"Dot", ".", "."}, PathRow{"Empty", "", ""}, PathRow{"Root", "/", "/"},
                    PathRow{"SlashesOnly", "//", "/"}),
    nameOf);

TEST(PathComponents, BeginWithTheRootAndEndWithATrailingSlash) {
    using Names = std::vector<std::string>;
    EXPECT_EQ(pathComponents("/a/b/"), (Names{"/", "a", "b", "/"}));
    EXPECT_EQ(pathComponents("/a/b"), (Names{"/", "a", "b"}));
    EXPECT_EQ(pathComponents("/Volumes").size(), 2U);
    EXPECT_EQ(pathComponents("/Volumes/X").size(), 3U);
    EXPECT_EQ(pathComponents("/Volumes/X/").size(), 4U);
    EXPECT_EQ(pathComponents(""), Names{});
    EXPECT_EQ(pathComponents("/"), (Names{"/"}));
    EXPECT_EQ(pathComponents("//"), (Names{"/"}));
    EXPECT_EQ(pathComponents("a//b"), (Names{"a", "b"}));
    EXPECT_EQ(pathComponents("a/"), (Names{"a", "/"}));
}

class StandardisedPath : public testing::TestWithParam<PathRow> {};

TEST_P(StandardisedPath, IsTheShortestText) {
    EXPECT_EQ(standardisedPath(GetParam().path), GetParam().answer);
}

INSTANTIATE_TEST_SUITE_P(
    Table, StandardisedPath,
    testing::Values(PathRow{"SlashesAndDots", "/a//b/./c/", "/a/b/c"},
                    PathRow{"RelativeDotDotStays", "a/../b", "a/../b"}, PathRow{"Root", "/", "/"},
                    PathRow{"SlashesOnly", "//", "/"}, PathRow{"DotDot", "/a/../b", "/b"},
                    PathRow{"DotDotBeyondTheRoot", "/../../a", "/a"},
                    PathRow{"DotDotToTheRoot", "/a/..", "/"}, PathRow{"LastDot", "/a/.", "/a"},
                    PathRow{"RelativeDot", "a/./b", "a/b"}, PathRow{"Empty", "", ""},
                    PathRow{"PrivateTmp", "/private/tmp", "/tmp"},
                    PathRow{"BelowPrivateVar", "/private/var/x", "/var/x"},
                    PathRow{"BelowPrivateEtc", "/private//etc/./x", "/etc/x"},
                    PathRow{"OtherPrivate", "/private/avchd", "/private/avchd"},
                    PathRow{"PrivateTmpx", "/private/tmpx", "/private/tmpx"},
                    PathRow{"PrivateLower", "/x/private/tmp", "/x/private/tmp"},
                    PathRow{"TildeInside", "/a/~", "/a/~"},
                    PathRow{"TildeOfNobodyKnown", "~no-such-user-here/x", "~no-such-user-here/x"}),
    nameOf);

/// Sets HOME and puts it back.
class HomeFolder {
public:
    explicit HomeFolder(const char* folder) {
        if (const char* const home = std::getenv("HOME")) before_ = home;
        ::setenv("HOME", folder, 1);
    }
    ~HomeFolder() { before_ ? ::setenv("HOME", before_->c_str(), 1) : ::unsetenv("HOME"); }
    HomeFolder(const HomeFolder&) = delete;
    HomeFolder& operator=(const HomeFolder&) = delete;

private:
    std::optional<std::string> before_;
};

TEST(StandardisedPath, TildeIsTheHomeFolder) {
    const HomeFolder home("/home/camera/");
    EXPECT_EQ(standardisedPath("~"), "/home/camera");
    EXPECT_EQ(standardisedPath("~/cards//x/"), "/home/camera/cards/x");
    EXPECT_EQ(standardisedPath("~root/x").substr(0, 1), "/");
}

}  // namespace
}  // namespace qrx
