#include <atomic>
#include <chrono>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "MovieTestSupport.h"
#include "readers/MovieReader.h"
#include "support/BoxWriter.h"
#include "support/PlainUser.h"
#include "support/TemporaryFolder.h"

namespace qrx {
namespace {

using test::box;
using test::fileType;
using test::largeBoxStating;
using test::movieHeader;
using test::smallMovie;
using test::TemporaryFolder;
using test::track;
using test::tracks;

/// A file of `size` bytes that holds `front` at its start, `back` at its end and zeros between,
/// which it counts the reads of.
class SparseSource final : public ByteSource {
public:
    SparseSource(std::uint64_t size, std::string front, std::string back)
        : size_(size), front_(std::move(front)), back_(std::move(back)) {}

    [[nodiscard]] std::uint64_t size() const override { return size_; }
    [[nodiscard]] std::size_t read(std::uint64_t offset, std::span<std::byte> into) const override {
        ++reads;
        bytesRead += into.size();
        for (std::size_t i = 0; i < into.size(); ++i)
            into[i] = at(offset + i);
        return into.size();
    }

    mutable std::uint64_t reads = 0;
    mutable std::uint64_t bytesRead = 0;

private:
    [[nodiscard]] std::byte at(std::uint64_t offset) const {
        const std::uint64_t backStart = size_ - back_.size();
        if (offset < front_.size()) return static_cast<std::byte>(front_[offset]);
        if (offset >= backStart) return static_cast<std::byte>(back_[offset - backStart]);
        return std::byte{0};
    }

    std::uint64_t size_;
    std::string front_;
    std::string back_;
};

constexpr std::uint64_t kHundredGigabytes = 100'000'000'000;

std::string header() {
    return box("moov", movieHeader() + track("vide", 1920, 1080) + track("soun"));
}
/// Type box and the header of a media box that leaves `rest` bytes for what follows it.
std::string frontOfHundredGigabytes(std::uint64_t rest) {
    const std::uint64_t mediaSize = kHundredGigabytes - fileType().size() - rest;
    return fileType() + largeBoxStating(mediaSize, "mdat");
}

TEST(MovieReader, OpensASmallMovie) {
    const TemporaryFolder folder;
    const auto movie = MovieReader{}.open(folder.write("a.mov", smallMovie()));
    EXPECT_EQ(tracks(movie), "1 1 1 0 0");
    ASSERT_TRUE(movie);
    EXPECT_EQ(movie->naturalWidth, 1920);
    EXPECT_EQ(movie->naturalHeight, 1080);
}

TEST(MovieReader, TheFilesNameIsTheDisplayNameWhereTheMovieHasNone) {
    const TemporaryFolder folder;
    const auto unnamed = MovieReader{}.open(folder.write("take 1.mov", smallMovie()));
    ASSERT_TRUE(unnamed);
    EXPECT_EQ(unnamed->displayName, "take 1.mov");
    const auto named = MovieReader{}.open(folder.write(
        "take 2.mov", box("moov", movieHeader() + box("udta", box("name", "Opening")))));
    ASSERT_TRUE(named);
    EXPECT_EQ(named->displayName, "Opening");
}

TEST(MovieReader, OpensThroughALink) {
    const TemporaryFolder folder;
    folder.write("a.mov", smallMovie());
    EXPECT_TRUE(MovieReader{}.open(folder.link("b.mov", "a.mov")));
}

TEST(MovieReader, AnythingButARegularFileIsNoMovie) {
    const TemporaryFolder folder;
    const std::string fifo = folder / "fifo.mov";
    ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
    EXPECT_FALSE(MovieReader{}.open(fifo));
    EXPECT_FALSE(MovieReader{}.open(folder.makeFolder("folder.mov")));
    EXPECT_FALSE(MovieReader{}.open(folder / "missing.mov"));
    EXPECT_FALSE(MovieReader{}.open("/dev/zero"));
    EXPECT_FALSE(MovieReader{}.open(""));
    EXPECT_FALSE(MovieReader{}.open(std::string(5000, 'a')));
}

TEST(MovieReader, AnUnreadableFileIsNoMovie) {
    const TemporaryFolder folder;
    const std::string path = folder.write("a.mov", smallMovie());
    ASSERT_EQ(::chmod(folder.path().c_str(), 0755), 0);
    const auto asked = [&] { return tracks(MovieReader{}.open(path)); };
    ASSERT_EQ(::chmod(path.c_str(), 0644), 0);
    EXPECT_EQ(test::askedByPlainUser(asked), "1 1 1 0 0");
    ASSERT_EQ(::chmod(path.c_str(), 0), 0);
    EXPECT_EQ(test::askedByPlainUser(asked), "none");
}

TEST(MovieReader, AHundredGigabyteFileOpensInMilliseconds) {
    const TemporaryFolder folder;
    const std::string path = folder / "long.mov";
    {
        std::ofstream file(path, std::ios::binary);
        file << frontOfHundredGigabytes(header().size());
        file.seekp(static_cast<std::streamoff>(kHundredGigabytes - header().size()));
        file << header();
        file.flush();
        if (!file) GTEST_SKIP() << "the temporary folder cannot hold a sparse file of 100 GB";
    }
    const auto before = std::chrono::steady_clock::now();
    const auto movie = MovieReader{}.open(path);
    const auto taken = std::chrono::steady_clock::now() - before;
    EXPECT_EQ(tracks(movie), "1 1 0 0 0");
    EXPECT_LT(taken, std::chrono::milliseconds(50));
}

TEST(MovieReader, AHundredGigabytesCostThreeSmallReads) {
    const SparseSource source(kHundredGigabytes, frontOfHundredGigabytes(header().size()),
                              header());
    EXPECT_EQ(tracks(describeMovie(source)), "1 1 0 0 0");
    EXPECT_LE(source.reads, 3U);
    EXPECT_LE(source.bytesRead, 16'384U);
}

TEST(MovieReader, AHundredGigabytesWithoutHeaderCostTwoSmallReads) {
    const SparseSource source(kHundredGigabytes, frontOfHundredGigabytes(0), "");
    EXPECT_EQ(tracks(describeMovie(source)), "none");
    EXPECT_LE(source.reads, 2U);
}

TEST(MovieReader, ASmallMovieCostsOneRead) {
    const SparseSource source(smallMovie().size() + 50'000,
                              smallMovie() + test::boxStating(0, "free"), "");
    EXPECT_EQ(tracks(describeMovie(source)), "1 1 1 0 0");
    EXPECT_EQ(source.reads, 1U);
}

TEST(MovieReader, ASmallMovieWithItsHeaderLastCostsTwoReads) {
    const std::string front = fileType() + test::boxStating(1'000'000, "mdat");
    const SparseSource source(fileType().size() + 1'000'000 + header().size(), front, header());
    EXPECT_EQ(tracks(describeMovie(source)), "1 1 0 0 0");
    EXPECT_EQ(source.reads, 2U);
}

TEST(MovieReader, WhatIsNoMovieCostsOneRead) {
    const SparseSource source(kHundredGigabytes, "some text that goes on and on", "");
    EXPECT_EQ(tracks(describeMovie(source)), "none");
    EXPECT_EQ(source.reads, 1U);
}

TEST(MovieReader, SampleTablesAreSteppedOver) {
    constexpr std::uint32_t kTable = 2'000'000'000;
    const auto boxAroundTable = [](std::string_view type, const std::string& contents) {
        const auto size = static_cast<std::uint32_t>(8 + contents.size() + kTable);
        return test::boxStating(size, type, contents);
    };
    const std::string mdia = boxAroundTable(
        "mdia", test::handlerBox("vide") + boxAroundTable("minf", boxAroundTable("stbl", "")));
    const std::string trak = boxAroundTable("trak", test::trackHeader(1920, 1080) + mdia);
    const std::string front = fileType() + test::boxStating(0, "moov", movieHeader() + trak);
    const std::string back = track("soun");
    const SparseSource source(front.size() + kTable + back.size(), front, back);
    EXPECT_EQ(tracks(describeMovie(source)), "1 1 0 0 0");
    EXPECT_LE(source.reads, 3U);
    EXPECT_LE(source.bytesRead, 80'000U);
}

TEST(MovieReader, SeveralThreadsMayRead) {
    const TemporaryFolder folder;
    const std::string path = folder.write("a.mov", smallMovie());
    std::vector<std::thread> threads;
    threads.reserve(4);
    std::atomic<int> opened{0};
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&] {
            for (int round = 0; round < 50; ++round)
                opened += tracks(MovieReader{}.open(path)) == "1 1 1 0 0" ? 1 : 0;
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(opened, 200);
}

}  // namespace
}  // namespace qrx
