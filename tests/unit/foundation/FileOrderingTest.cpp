#include <algorithm>
#include <chrono>
#include <map>
#include <random>
#include <string>
#include <thread>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "foundation/FileOrdering.h"
#include "support/TemporaryFolder.h"

namespace qrx {
namespace {

using test::TemporaryFolder;

/// The rule as it is stated: each path goes before the first that is strictly greater.
template <class IsLater>
FilePaths insertionSorted(const FilePaths& paths, IsLater isLater) {
    FilePaths result;
    for (const FilePath& path : paths) {
        const auto later = std::find_if(result.begin(), result.end(), [&](const FilePath& placed) {
            return isLater(placed, path);
        });
        result.insert(later, path);
    }
    return result;
}

// ---- by number

struct NumberRow {
    const char* name;
    const char* path;
    std::int32_t number;
};

class OrderingNumber : public testing::TestWithParam<NumberRow> {};

TEST_P(OrderingNumber, IsReadFromTheName) {
    EXPECT_EQ(orderingNumber(GetParam().path), GetParam().number);
}

INSTANTIATE_TEST_SUITE_P(
    Table, OrderingNumber,
    testing::Values(NumberRow{"Clip", "/x/C0012.MP4", 12}, NumberRow{"Stream", "00001.MTS", 1},
                    NumberRow{"LetterBehind", "C0003B.MP4", 3},
                    NumberRow{"KeptDigitOfTheExtension", "clip.MP4", 4},
                    NumberRow{"NoDigits", "clip.mov", 0},
                    NumberRow{"LongNumberClamps", "20110203123456.MTS", 2147483647},
                    NumberRow{"FirstOfTwo", "708_0001_01.MP4", 708},
                    NumberRow{"FolderDoesNotCount", "/99/clip.mov", 0},
                    NumberRow{"TrailingSlash", "/x/take7/", 7},
                    NumberRow{"MinusIsTrimmed", "-5.mov", 5},
                    NumberRow{"ArabicDigitsStopTheTrimming", "٣5.mov", 0},
                    NumberRow{"NotUtf8",
                              "\xFF"
                              "8.mov",
                              8},
                    NumberRow{"Empty", "", 0}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(ByAscendingNumber, KeepsTheOrderOfEqualNumbers) {
    EXPECT_EQ(byAscendingNumber({"C0003.MP4", "C0001.MP4", "C0003B.MP4", "C0002.MP4"}),
              (FilePaths{"C0001.MP4", "C0002.MP4", "C0003.MP4", "C0003B.MP4"}));
    EXPECT_EQ(byAscendingNumber({"C0003B.MP4", "C0003.MP4"}),
              (FilePaths{"C0003B.MP4", "C0003.MP4"}));
}

TEST(ByAscendingNumber, KeptNameWithoutDigitsCountsItsExtension) {
    EXPECT_EQ(byAscendingNumber({"clip.MP4", "3.mov", "5.mov"}),
              (FilePaths{"3.mov", "clip.MP4", "5.mov"}));
}

TEST(ByAscendingNumber, NameWithoutDigitsComesFirst) {
    EXPECT_EQ(byAscendingNumber({"1.mov", "b.mov", "a.mov"}),
              (FilePaths{"b.mov", "a.mov", "1.mov"}));
}

TEST(ByAscendingNumber, OfNothingAndOfOne) {
    EXPECT_EQ(byAscendingNumber({}), FilePaths{});
    EXPECT_EQ(byAscendingNumber({"x"}), FilePaths{"x"});
}

TEST(ByAscendingNumber, IsTheStatedInsertionSort) {
    std::mt19937 chance{20240229};
    for (const std::size_t count : {2U, 3U, 10U, 100U, 2500U}) {
        FilePaths paths;
        for (std::size_t i = 0; i < count; ++i) {
            paths.push_back("/card/C" + std::to_string(chance() % (count / 2 + 1)) +
                            std::string(chance() % 3, 'B') + ".MOV");
        }
        std::map<FilePath, std::int32_t> numbers;
        for (const FilePath& path : paths) {
            numbers[path] = orderingNumber(path);
        }
        const FilePaths expected =
            insertionSorted(paths, [&](const FilePath& placed, const FilePath& path) {
                return numbers.at(placed) > numbers.at(path);
            });
        EXPECT_EQ(byAscendingNumber(paths), expected) << count;
    }
}

// ---- by date

/// "a5" was made in second 5; a name without a number has no date.
std::optional<FileDate> dateInName(const FilePath& path) {
    if (path.size() < 2) return std::nullopt;
    return FileDate{std::stoll(path.substr(1)), 0};
}

TEST(ByCreationDate, KeepsTheOrderOfEqualDates) {
    EXPECT_EQ(byCreationDate({"b2", "a1", "a2", "c1"}, dateInName),
              (FilePaths{"a1", "c1", "b2", "a2"}));
}

TEST(ByCreationDate, PathWithoutADateStaysWhereItCame) {
    EXPECT_EQ(byCreationDate({"a5", "x", "b3"}, dateInName), (FilePaths{"b3", "a5", "x"}));
    EXPECT_EQ(byCreationDate({"x", "a5", "b3"}, dateInName), (FilePaths{"x", "b3", "a5"}));
    EXPECT_EQ(byCreationDate({"a5", "x", "b7", "c6", "d4"}, dateInName),
              (FilePaths{"d4", "a5", "x", "c6", "b7"}));
    EXPECT_EQ(byCreationDate({"x", "y", "z"}, dateInName), (FilePaths{"x", "y", "z"}));
}

TEST(ByCreationDate, NanosecondsCount) {
    const auto dateOf = [](const FilePath& path) {
        return std::optional<FileDate>({7, path == "early" ? 1U : 2U});
    };
    EXPECT_EQ(byCreationDate({"late", "early"}, dateOf), (FilePaths{"early", "late"}));
}

TEST(ByCreationDate, IsTheStatedInsertionSortAlsoWithoutSomeDates) {
    std::mt19937 chance{20240229};
    for (int round = 0; round < 300; ++round) {
        const std::size_t count = round == 0 ? 2500 : chance() % 40;
        FilePaths paths;
        for (std::size_t i = 0; i < count; ++i) {
            const bool dated = chance() % 4 != 0;
            paths.push_back(dated ? "a" + std::to_string(chance() % (count / 2 + 1)) : "x");
        }
        const FilePaths expected =
            insertionSorted(paths, [](const FilePath& placed, const FilePath& path) {
                const auto date = dateInName(path);
                const auto placedDate = dateInName(placed);
                return date && placedDate && *date < *placedDate;
            });
        ASSERT_EQ(byCreationDate(paths, dateInName), expected) << round;
    }
}

TEST(ByCreationDate, ReadsEachDateOnce) {
    int readings = 0;
    const auto counted = [&readings](const FilePath& path) {
        ++readings;
        return dateInName(path);
    };
    EXPECT_EQ(byCreationDate({"c3", "b2", "a1"}, counted), (FilePaths{"a1", "b2", "c3"}));
    EXPECT_EQ(readings, 3);
}

// ---- the date itself

bool keepsBirthTimes(const FilePath& path) {
    struct statx item {};
    return ::statx(AT_FDCWD, path.c_str(), 0, STATX_BTIME, &item) == 0 &&
           (item.stx_mask & STATX_BTIME) != 0;
}

TEST(CreationDate, IsTheBirthTimeOrElseTheModificationTime) {
    const TemporaryFolder folder;
    const FilePath file = folder.write("clip.mov");
    const auto before = creationDate(file);
    ASSERT_TRUE(before);
    const timespec past[2] = {{1000, 5}, {1000, 5}};
    ASSERT_EQ(::utimensat(AT_FDCWD, file.c_str(), past, 0), 0);
    const FileDate expected = keepsBirthTimes(file) ? *before : FileDate{1000, 5};
    EXPECT_EQ(creationDate(file), expected);
}

TEST(CreationDate, OfALinkIsItsOwn) {
    const TemporaryFolder folder;
    EXPECT_TRUE(creationDate(folder.link("dangling", "nowhere")));
}

TEST(CreationDate, OfWhatCannotBeReadIsNothing) {
    const TemporaryFolder folder;
    EXPECT_FALSE(creationDate(folder / "absent"));
    EXPECT_FALSE(creationDate(""));
    EXPECT_FALSE(creationDate(folder.write("x") + '\0'));
}

TEST(ByCreationDate, OrdersRealFiles) {
    const TemporaryFolder folder;
    FilePaths made;
    for (const char* const name : {"c", "a", "b"}) {
        made.push_back(folder.write(name));
        std::this_thread::sleep_for(std::chrono::milliseconds(20));  // beyond the clock's steps
    }
    const FilePath absent = folder / "absent";
    EXPECT_EQ(byCreationDate({made[2], absent, made[1], made[0]}),
              (FilePaths{made[0], made[1], made[2], absent}));
}

}  // namespace
}  // namespace qrx
