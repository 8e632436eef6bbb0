#include <limits>
#include <string>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include "foundation/Sizes.h"
#include "support/TemporaryFolder.h"

namespace qrx {
namespace {

using test::TemporaryFolder;

std::vector<std::byte> bytes(std::string_view text) {
    std::vector<std::byte> result;
    for (const char c : text) {
        result.push_back(static_cast<std::byte>(c));
    }
    return result;
}

TEST(ItemSize, IsInBytes) {
    const TemporaryFolder folder;
    EXPECT_EQ(itemSize(folder.write("empty")), 0);
    EXPECT_EQ(itemSize(folder.write("five", "12345")), 5);
    EXPECT_EQ(itemSize(folder / "absent"), std::nullopt);
    EXPECT_EQ(itemSize(""), std::nullopt);
    EXPECT_EQ(itemSize((folder / "five") + '\0'), std::nullopt);
}

TEST(ItemSize, OfALinkIsTheLengthOfItsText) {
    const TemporaryFolder folder;
    folder.write("five", "12345");
    EXPECT_EQ(itemSize(folder.link("link", "./././five")), 10);
    EXPECT_EQ(itemSize(folder.link("dangling", "nowhere")), 7);
}

TEST(ItemSize, BeyondThirtyTwoBits) {
    const TemporaryFolder folder;
    const FilePath file = folder.write("sparse");
    constexpr off_t kHundredGigabytes = 100'000'000'000;
    ASSERT_EQ(::truncate(file.c_str(), kHundredGigabytes), 0);
    EXPECT_EQ(itemSize(file), kHundredGigabytes);
}

TEST(SizesAreEqual, NeedsBothItems) {
    const TemporaryFolder folder;
    const FilePath a = folder.write("a", "12");
    const FilePath b = folder.write("b", "34");
    const FilePath longer = folder.write("c", "345");
    EXPECT_TRUE(sizesAreEqual(a, b));
    EXPECT_TRUE(sizesAreEqual(a, a));
    EXPECT_FALSE(sizesAreEqual(a, longer));
    EXPECT_FALSE(sizesAreEqual(a, folder / "absent"));
    EXPECT_FALSE(sizesAreEqual(folder / "absent", a));
    EXPECT_FALSE(sizesAreEqual(folder / "absent", folder / "absent"));
}

TEST(LastBytes, OfEveryLength) {
    const TemporaryFolder folder;
    const std::string text = "0123456789";
    const FilePath file = folder.write("ten", text);
    for (std::size_t count = 0; count <= text.size(); ++count) {
        EXPECT_EQ(lastBytes(file, count), bytes(text.substr(text.size() - count))) << count;
    }
    EXPECT_EQ(lastBytes(file, 11), std::nullopt);
    EXPECT_EQ(lastBytes(file, std::numeric_limits<std::uint64_t>::max()), std::nullopt);
}

TEST(LastBytes, FollowsALink) {
    const TemporaryFolder folder;
    folder.write("ten", "0123456789");
    EXPECT_EQ(lastBytes(folder.link("link", "ten"), 2), bytes("89"));
}

TEST(LastBytes, ReadsTheEndOfALargeFileAlone) {
    const TemporaryFolder folder;
    const FilePath file = folder.write("sparse");
    ASSERT_EQ(::truncate(file.c_str(), 100'000'000'000), 0);
    EXPECT_EQ(lastBytes(file, 16), std::vector<std::byte>(16));
}

TEST(LastBytes, OfWhatIsNoRegularFileIsNothing) {
    const TemporaryFolder folder;
    ASSERT_EQ(::mkfifo((folder / "fifo").c_str(), 0600), 0);
    EXPECT_EQ(lastBytes(folder / "fifo", 0), std::nullopt);  // and does not wait for a writer
    EXPECT_EQ(lastBytes("/dev/zero", 0), std::nullopt);
    EXPECT_EQ(lastBytes(folder.makeFolder("A"), 0), std::nullopt);
    EXPECT_EQ(lastBytes(folder / "absent", 0), std::nullopt);
    EXPECT_EQ(lastBytes("", 0), std::nullopt);
    EXPECT_EQ(lastBytes(folder.link("dangling", "nowhere"), 0), std::nullopt);
}

TEST(FolderSize, SumsEverythingThatIsNoFolder) {
    const TemporaryFolder folder;
    folder.write("a", "1");
    folder.write(".hidden/b", "22");
    folder.write("A/.cache/c", "333");
    folder.link("A/dangling", "four");
    EXPECT_EQ(folderSize(folder.path()), 10U);
    EXPECT_EQ(folderSize(folder / "A"), 7U);
    EXPECT_EQ(folderSize(folder.makeFolder("empty")), 0U);
}

TEST(FolderSize, FollowsNoLink) {
    const TemporaryFolder folder;
    folder.write("A/a", "12345");
    const FilePath link = folder.link("B/link", "../A");
    EXPECT_EQ(folderSize(folder / "B"), 4U);  // the link's text
    EXPECT_EQ(folderSize(link), 0U);
}

TEST(FolderSize, OfWhatIsNoFolderIsZero) {
    const TemporaryFolder folder;
    EXPECT_EQ(folderSize(folder.write("a", "12345")), 0U);
    EXPECT_EQ(folderSize(folder / "absent"), 0U);
    EXPECT_EQ(folderSize(""), 0U);
}

TEST(FreeSpace, IsThatOfTheFileSystem) {
    const TemporaryFolder folder;
    struct statvfs system {};
    ASSERT_EQ(::statvfs(folder.path().c_str(), &system), 0);
    const auto free = freeSpace(folder.path());
    ASSERT_TRUE(free);
    EXPECT_LE(*free, std::uint64_t{system.f_blocks} * system.f_frsize);
    EXPECT_GT(*free, 0U);
    EXPECT_TRUE(freeSpace(folder.write("file")));
    EXPECT_FALSE(freeSpace(folder / "absent"));
    EXPECT_FALSE(freeSpace(""));
}

struct SizeTextRow {
    const char* name;
    std::int64_t bytes;
    const char* text;
};

class SizeText : public testing::TestWithParam<SizeTextRow> {};

TEST_P(SizeText, HasTwoDecimalsAndADecimalUnit) {
    EXPECT_EQ(sizeText(GetParam().bytes), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(
    Table, SizeText,
    testing::Values(SizeTextRow{"Zero", 0, "0.00 KB"}, SizeTextRow{"HalfAKilobyte", 512, "0.51 KB"},
                    SizeTextRow{"MinusOne", -1, "-0.00 KB"},
                    SizeTextRow{"Negative", -1500, "-1.50 KB"},
                    SizeTextRow{"LargestInKilobytes", 999'999, "1000.00 KB"},
                    SizeTextRow{"KeptOneMillionIsInGigabytes", 1'000'000, "0.00 GB"},
                    SizeTextRow{"SmallestInMegabytes", 1'000'001, "1.00 MB"},
                    SizeTextRow{"OneAndAHalfMegabytes", 1'500'000, "1.50 MB"},
                    SizeTextRow{"LargestInMegabytes", 999'999'999, "1000.00 MB"},
                    SizeTextRow{"OneGigabyte", 1'000'000'000, "1.00 GB"},
                    SizeTextRow{"Card", 63'864'569'856, "63.86 GB"},
                    SizeTextRow{"Largest", std::numeric_limits<std::int64_t>::max(),
                                "9223372036.85 GB"},
                    SizeTextRow{"Smallest", std::numeric_limits<std::int64_t>::min(),
                                "-9223372036854776.00 KB"}),
    [](const auto& row) { return std::string(row.param.name); });

}  // namespace
}  // namespace qrx
