#include <filesystem>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include "qrx/Names.h"
#include "support/TemporaryFolder.h"

namespace qrx::tool {
namespace {

using test::CardTree;
using testing::ElementsAre;
using testing::IsEmpty;

struct PathCase {
    const char* name;
    std::string argument;
    std::string behind;  ///< what stands behind the working folder
};

class RelativePath : public testing::TestWithParam<PathCase> {};

TEST_P(RelativePath, IsPutBehindTheWorkingFolder) {
    EXPECT_EQ(absolutePath(GetParam().argument),
              std::filesystem::current_path().string() + GetParam().behind);
}

INSTANTIATE_TEST_SUITE_P(
    Table, RelativePath,
    testing::Values(PathCase{"Plain", "no such file", "/no such file"},
                    PathCase{"LooksLikeAnAddress", "a:b.mov", "/a:b.mov"},
                    PathCase{"LeadingDot", "./no such file", "/no such file"},
                    PathCase{"LeadingDots", ".//././/no such file", "/no such file"},
                    PathCase{"Here", ".", ""}, PathCase{"HereWithSlash", "./", ""},
                    PathCase{"Above", "../no such file", "/../no such file"},
                    PathCase{"InnerDotsStay", "a/./../b", "/a/./../b"},
                    PathCase{"HiddenFile", ".no such file", "/.no such file"}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(AbsolutePath, AbsoluteArgumentStaysAsItIs) {
    EXPECT_EQ(absolutePath("/no//such/./../file"), "/no//such/./../file");
}

TEST(AbsolutePath, EmptyArgumentStaysEmpty) {
    EXPECT_EQ(absolutePath(""), "");
}

TEST(AbsolutePath, TrailingSlashesOfFoldersGo) {
    const CardTree folder{"d/", "file"};
    EXPECT_EQ(absolutePath(folder / "d/"), folder / "d");
    EXPECT_EQ(absolutePath(folder / "d///"), folder / "d");
    EXPECT_EQ(absolutePath("/"), "/");
    EXPECT_EQ(absolutePath("//"), "/");
}

TEST(AbsolutePath, TrailingSlashOfAnythingElseStays) {
    const CardTree folder{"file"};
    EXPECT_EQ(absolutePath(folder / "file/"), folder / "file/");
    EXPECT_EQ(absolutePath(folder / "missing/"), folder / "missing/");
}

TEST(WhyMissing, NothingWhereSomethingExists) {
    const CardTree folder{"file"};
    EXPECT_EQ(whyMissing(folder / "file"), std::nullopt);
    EXPECT_EQ(whyMissing(folder.path()), std::nullopt);
}

TEST(WhyMissing, SaysWhy) {
    const CardTree folder{"file"};
    EXPECT_EQ(whyMissing(folder / "missing"), "No such file or directory");
    EXPECT_EQ(whyMissing(""), "No such file or directory");
    EXPECT_EQ(whyMissing(folder / "file/"), "Not a directory");
    EXPECT_EQ(whyMissing((folder / "file") + std::string("\0x", 2)),
              "a name cannot hold a NUL byte");
}

/// Reads names from a pipe into which the test has written.
class NameReaderTest : public testing::Test {
protected:
    void SetUp() override { ASSERT_EQ(::pipe(pipe_), 0); }
    void TearDown() override {
        ::close(pipe_[0]);
        closeInput();
        ::close(wake_);
    }

    void closeInput() {
        if (pipe_[1] >= 0) ::close(pipe_[1]);
        pipe_[1] = -1;
    }

    void put(const std::string& bytes) {
        ASSERT_EQ(::write(pipe_[1], bytes.data(), bytes.size()),
                  static_cast<ssize_t>(bytes.size()));
    }

    std::vector<std::string> names(char separator) {
        closeInput();
        NameReader reader(pipe_[0], separator, {wake_});
        std::vector<std::string> all;
        while (auto name = reader.next()) {
            all.push_back(*name);
        }
        return all;
    }

    int pipe_[2] = {-1, -1};
    int wake_ = ::eventfd(0, EFD_CLOEXEC);
};

TEST_F(NameReaderTest, NothingFromNothing) {
    EXPECT_THAT(names('\n'), IsEmpty());
}

TEST_F(NameReaderTest, EmptyNamesArePassedOver) {
    put("\n\na\n\nb\n\n");
    EXPECT_THAT(names('\n'), ElementsAre("a", "b"));
}

TEST_F(NameReaderTest, LastNameMayLackItsEnd) {
    put("a\nb");
    EXPECT_THAT(names('\n'), ElementsAre("a", "b"));
}

TEST_F(NameReaderTest, NulSeparatedNamesMayHoldLineEnds) {
    put(std::string("a\nb\0c\0", 6));
    EXPECT_THAT(names('\0'), ElementsAre("a\nb", "c"));
}

TEST_F(NameReaderTest, BlanksAndCarriageReturnsBelongToTheName) {
    put(" a \r\n");
    EXPECT_THAT(names('\n'), ElementsAre(" a \r"));
}

TEST_F(NameReaderTest, GivesUpWhenWoken) {
    put("half a na");
    NameReader reader(pipe_[0], '\n', {-1, wake_});
    const std::uint64_t one = 1;
    ASSERT_EQ(::write(wake_, &one, sizeof one), static_cast<ssize_t>(sizeof one));
    EXPECT_EQ(reader.next(), std::nullopt);
    EXPECT_EQ(reader.next(), std::nullopt);
}

}  // namespace
}  // namespace qrx::tool
