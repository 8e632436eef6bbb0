#include <string>

#include <gtest/gtest.h>

#include "MovieTestSupport.h"
#include "platform/ports/Services.h"
#include "readers/CompressedMovieHeader.h"
#include "support/BoxWriter.h"

namespace qrx {
namespace {

using test::bigEndian32;
using test::box;
using test::describe;
using test::fileType;
using test::movieHeader;
using test::storedZlib;
using test::track;
using test::tracks;
using test::zeros;

std::string header() {
    return box("moov", movieHeader() + track("vide", 640, 480) + track("soun"));
}

std::string packedMovie(const std::string& expanded, std::uint32_t statedSize,
                        const std::string& method = "zlib") {
    return fileType() +
           box("moov", box("cmov", box("dcom", method) + box("cmvd", bigEndian32(statedSize) +
                                                                         storedZlib(expanded))));
}
std::string packedMovie(const std::string& expanded) {
    return packedMovie(expanded, static_cast<std::uint32_t>(expanded.size()));
}

/// Says what it was asked for and expands to what it was given.
class PreparedInflater final : public platform::Inflater {
public:
    explicit PreparedInflater(std::string result) : result_(std::move(result)) {}

    [[nodiscard]] std::optional<std::vector<std::byte>> expanded(std::span<const std::byte> packed,
                                                                 std::size_t limit) const override {
        ++calls;
        packedSize = packed.size();
        lastLimit = limit;
        const auto bytes = std::as_bytes(std::span(result_));
        return std::vector<std::byte>(bytes.begin(), bytes.end());
    }

    mutable int calls = 0;
    mutable std::size_t packedSize = 0;
    mutable std::size_t lastLimit = 0;

private:
    std::string result_;
};

class CompressedMovieHeader : public testing::Test {
protected:
    std::shared_ptr<PreparedInflater> install(const std::string& result) {
        auto inflater = std::make_shared<PreparedInflater>(result);
        services_->inflater = inflater;
        return inflater;
    }

private:
    platform::ScopedServices services_;
};

TEST_F(CompressedMovieHeader, IsExpanded) {
    const auto movie = describe(packedMovie(header()));
    EXPECT_EQ(tracks(movie), "1 1 0 0 0");
    ASSERT_TRUE(movie);
    EXPECT_EQ(movie->naturalWidth, 640);
}

TEST_F(CompressedMovieHeader, MayComeLast) {
    const std::string whole = packedMovie(header());
    const std::string moov = whole.substr(fileType().size());
    EXPECT_EQ(tracks(fileType() + box("mdat", zeros(100)) + moov), "1 1 0 0 0");
}

TEST_F(CompressedMovieHeader, LargerThanTheWindow) {
    std::string contents = movieHeader();
    for (int i = 0; i < 3000; ++i)
        contents += track("soun");
    EXPECT_EQ(tracks(packedMovie(box("moov", contents))), "0 3000 0 0 0");
}

TEST_F(CompressedMovieHeader, AnotherMethodIsRefused) {
    const auto inflater = install(header());
    EXPECT_EQ(tracks(packedMovie(header(), 1000, "bzip")), "none");
    EXPECT_EQ(inflater->calls, 0);
}

TEST_F(CompressedMovieHeader, DamagedOrCutStreamsAreRefused) {
    const std::string whole = packedMovie(header());
    std::string damaged = whole;
    damaged[whole.size() - header().size() / 2] ^= 0x20;
    EXPECT_EQ(tracks(damaged), "none");
    for (std::size_t cut = 0; cut < whole.size(); ++cut)
        EXPECT_EQ(tracks(whole.substr(0, cut)), "none") << cut;
}

TEST_F(CompressedMovieHeader, MoreThanItsStatedSizeIsRefused) {
    EXPECT_EQ(tracks(packedMovie(header(), static_cast<std::uint32_t>(header().size() - 1))),
              "none");
}

TEST_F(CompressedMovieHeader, TheStatedSizeIsTheLimit) {
    const auto inflater = install(header());
    EXPECT_EQ(tracks(packedMovie(header(), 5000)), "1 1 0 0 0");
    EXPECT_EQ(inflater->lastLimit, 5000U);
    EXPECT_EQ(inflater->packedSize, storedZlib(header()).size());
}

TEST_F(CompressedMovieHeader, SixtyFourMebibytesAreTheMost) {
    const auto inflater = install(header());
    // enough packed bytes for the size to be possible
    const std::string filler(100'000, 'q');
    EXPECT_EQ(tracks(packedMovie(filler, kMostExpandedHeader)), "1 1 0 0 0");
    EXPECT_EQ(inflater->calls, 1);
    EXPECT_EQ(tracks(packedMovie(filler, kMostExpandedHeader + 1)), "none");
    EXPECT_EQ(tracks(packedMovie(filler, UINT32_MAX)), "none");
    EXPECT_EQ(inflater->calls, 1);
}

TEST_F(CompressedMovieHeader, ASizeThatNoStreamCanReachIsRefusedUnopened) {
    const auto inflater = install(header());
    EXPECT_EQ(tracks(packedMovie("short", kMostExpandedHeader)), "none");
    EXPECT_EQ(inflater->calls, 0);
}

TEST_F(CompressedMovieHeader, ACompressedHeaderInsideACompressedHeaderIsRefused) {
    const std::string inner = packedMovie(header()).substr(fileType().size());
    EXPECT_EQ(tracks(packedMovie(inner)), "none");
}

TEST_F(CompressedMovieHeader, SomethingElseInsideIsRefused) {
    EXPECT_EQ(tracks(packedMovie(box("free", zeros(100)))), "none");
    EXPECT_EQ(tracks(packedMovie("")), "none");
    EXPECT_EQ(tracks(packedMovie(zeros(100))), "none");
}

TEST_F(CompressedMovieHeader, MissingPartsAreRefused) {
    const std::string packed = bigEndian32(10) + storedZlib("0123456789");
    for (const std::string& contents :
         {std::string(), box("dcom", "zlib"), box("cmvd", packed),
          box("dcom") + box("cmvd", packed), box("dcom", "zlib") + box("cmvd", "123")}) {
        EXPECT_EQ(tracks(box("moov", box("cmov", contents))), "none");
    }
}

}  // namespace
}  // namespace qrx
