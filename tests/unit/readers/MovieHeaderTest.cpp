#include <string>

#include <gtest/gtest.h>

#include "MovieTestSupport.h"
#include "readers/MovieHeader.h"
#include "support/BoxWriter.h"

namespace qrx {
namespace {

using namespace std::string_literals;
using test::bigEndian16;
using test::bigEndian32;
using test::box;
using test::describe;
using test::fileType;
using test::handlerBox;
using test::media;
using test::movieHeader;
using test::movieHeader64;
using test::track;
using test::trackHeader;
using test::tracks;
using test::zeros;

constexpr std::uint32_t kYear1970 = 2'082'844'800;  // seconds since 1904

std::string movieWith(const std::string& headerContents) {
    return fileType() + box("moov", headerContents);
}

struct HandlerCase {
    const char* name;
    const char* handler;
    TrackMedia media;
};
class HandlerOfTrack : public testing::TestWithParam<HandlerCase> {};

TEST_P(HandlerOfTrack, DecidesItsMedia) {
    const auto movie = describe(movieWith(movieHeader() + track(GetParam().handler)));
    ASSERT_TRUE(movie);
    ASSERT_EQ(movie->tracks.size(), 1U);
    EXPECT_EQ(movie->tracks.front().media, GetParam().media);
    EXPECT_EQ(movie->tracks.front().handlerType, GetParam().handler);
    EXPECT_EQ(movie->count(GetParam().media), 1U);
}

INSTANTIATE_TEST_SUITE_P(Table, HandlerOfTrack,
                         testing::Values(HandlerCase{"Video", "vide", TrackMedia::video},
                                         HandlerCase{"Sound", "soun", TrackMedia::sound},
                                         HandlerCase{"Timecode", "tmcd", TrackMedia::timecode},
                                         HandlerCase{"Text", "text", TrackMedia::text},
                                         HandlerCase{"Subtitle", "sbtl", TrackMedia::text},
                                         HandlerCase{"IsoSubtitle", "subt", TrackMedia::text},
                                         HandlerCase{"ClosedCaption", "clcp", TrackMedia::text},
                                         HandlerCase{"Metadata", "meta", TrackMedia::other},
                                         HandlerCase{"Picture", "pict", TrackMedia::other},
                                         HandlerCase{"Hint", "hint", TrackMedia::other},
                                         HandlerCase{"UpperCase", "VIDE", TrackMedia::other},
                                         HandlerCase{"Unknown", "abcd", TrackMedia::other}),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(MovieHeader, TracksKeepTheirOrder) {
    const auto movie =
        describe(movieWith(movieHeader() + track("soun") + track("tmcd") + track("vide")));
    ASSERT_TRUE(movie);
    ASSERT_EQ(movie->tracks.size(), 3U);
    EXPECT_EQ(movie->tracks[0].handlerType, "soun");
    EXPECT_EQ(movie->tracks[1].handlerType, "tmcd");
    EXPECT_EQ(movie->tracks[2].handlerType, "vide");
}

TEST(MovieHeader, WithoutMovieHeaderBoxATrackIsEnough) {
    EXPECT_EQ(tracks(movieWith(track("vide"))), "1 0 0 0 0");
}

TEST(MovieHeader, AMovieHeaderTooShortForItsTimesIsNone) {
    EXPECT_EQ(tracks(movieWith(box("mvhd", zeros(11)))), "none");
    EXPECT_EQ(tracks(movieWith(box("mvhd", zeros(12)))), "0 0 0 0 0");
    EXPECT_EQ(tracks(movieWith(box("mvhd", bigEndian32(0x01000000) + zeros(15)))), "none");
    EXPECT_EQ(tracks(movieWith(box("mvhd", bigEndian32(0x01000000) + zeros(16)))), "0 0 0 0 0");
}

std::optional<double> duration(const std::string& header) {
    const auto movie = describe(movieWith(header + track("vide")));
    return movie ? movie->durationSeconds : std::nullopt;
}

std::string header32(std::uint32_t unitsPerSecond, std::uint32_t units) {
    return box("mvhd", zeros(12) + bigEndian32(unitsPerSecond) + bigEndian32(units));
}

std::string header64(std::uint32_t unitsPerSecond, std::uint64_t units) {
    return box("mvhd", bigEndian32(0x01000000) + zeros(16) + bigEndian32(unitsPerSecond) +
                           test::bigEndian64(units));
}

TEST(MovieHeader, TellsTheDuration) {
    EXPECT_EQ(duration(movieHeader()), 1.0);
    EXPECT_EQ(duration(movieHeader64(0, 0)), 1.0);
    EXPECT_EQ(duration(header32(30000, 45045)), 1.5015);
    EXPECT_EQ(duration(header64(1, std::uint64_t{1} << 40U)), 1099511627776.0);
}

TEST(MovieHeader, ADurationThatIsNotSaidIsNotKnown) {
    for (const std::string& header :
         {header32(0, 600), header32(600, 0), header32(600, UINT32_MAX), header64(0, 600),
          header64(600, 0), header64(600, UINT64_MAX), std::string()}) {
        EXPECT_EQ(duration(header), std::nullopt);
    }
    for (std::size_t cut = 0; cut < 20; ++cut) {
        EXPECT_EQ(duration(box("mvhd", std::string(cut, '\1'))), std::nullopt) << cut;
    }
}

TEST(MovieHeader, ATrackWithoutHandlerIsNoTrack) {
    EXPECT_EQ(tracks(movieWith(movieHeader() + box("trak") + box("trak", trackHeader(1, 1)) +
                               box("trak", box("mdia")) +
                               box("trak", box("mdia", box("hdlr", zeros(11)))))),
              "0 0 0 0 0");
}

TEST(MovieHeader, TheMediaHandlerCountsAndNotTheDataHandler) {
    const std::string dataHandler = box("hdlr", bigEndian32(0) + "dhlralis" + zeros(12));
    const std::string mdia = box("mdia", box("minf", dataHandler) + handlerBox("soun"));
    EXPECT_EQ(tracks(movieWith(movieHeader() + box("trak", mdia))), "0 1 0 0 0");
}

TEST(MovieHeader, BoxesOfATrackInAnyOrder) {
    const auto movie =
        describe(movieWith(box("trak", media("vide") + box("edts") + trackHeader(320, 180))));
    ASSERT_TRUE(movie);
    EXPECT_EQ(movie->naturalWidth, 320);
    EXPECT_EQ(movie->naturalHeight, 180);
}

TEST(MovieHeader, CoverArtInTheUserDataIsNoTrack) {
    const std::string cover = box("covr", box("data", bigEndian32(13) + zeros(4) + "\xFF\xD8\xFF"));
    const std::string meta =
        box("meta", bigEndian32(0) + handlerBox("mdir") + box("ilst", cover) + track("vide"));
    EXPECT_EQ(tracks(movieWith(movieHeader() + track("soun") + box("udta", meta))), "0 1 0 0 0");
}

TEST(MovieHeader, ATrackInsideATrackIsNotCounted) {
    EXPECT_EQ(tracks(movieWith(movieHeader() + box("trak", track("vide") + media("soun")))),
              "0 1 0 0 0");
}

TEST(MovieHeader, ThousandsOfTracks) {
    std::string header = movieHeader();
    for (int i = 0; i < 5000; ++i)
        header += track(i % 2 == 0 ? "vide" : "soun");
    EXPECT_EQ(tracks(movieWith(header)), "2500 2500 0 0 0");
}

TEST(MovieHeader, CountsNoMoreTracksThanItsLimit) {
    const std::string one = box("trak", box("mdia", box("hdlr", zeros(8) + "soun")));
    std::string header = movieHeader();
    for (std::size_t i = 0; i < kMostTracks + 10; ++i)
        header += one;
    const auto movie = describe(movieWith(header));
    ASSERT_TRUE(movie);
    EXPECT_EQ(movie->tracks.size(), kMostTracks);
}

TEST(MovieHeader, NaturalSizeIsThatOfTheFirstVideoTrackThatHasOne) {
    const auto movie = describe(movieWith(movieHeader() + track("text", 100, 50) + track("vide") +
                                          track("vide", 1440, 1080) + track("vide", 64, 48)));
    ASSERT_TRUE(movie);
    EXPECT_EQ(movie->naturalWidth, 1440);
    EXPECT_EQ(movie->naturalHeight, 1080);
    EXPECT_EQ(movie->tracks[0].width, 100);
    EXPECT_EQ(movie->tracks[1].width, 0);
    EXPECT_EQ(movie->tracks[3].height, 48);
}

TEST(MovieHeader, NoNaturalSizeWithoutVideo) {
    const auto movie = describe(movieWith(movieHeader() + track("soun") + track("text", 9, 9)));
    ASSERT_TRUE(movie);
    EXPECT_EQ(movie->naturalWidth, 0);
    EXPECT_EQ(movie->naturalHeight, 0);
}

TEST(MovieHeader, SizesHaveFractions) {
    const std::string tkhd =
        box("tkhd", zeros(76) + bigEndian32(0x02D08000) + bigEndian32(0x01E04000));
    const auto movie = describe(movieWith(box("trak", tkhd + media("vide"))));
    ASSERT_TRUE(movie);
    EXPECT_EQ(movie->naturalWidth, 720.5);
    EXPECT_EQ(movie->naturalHeight, 480.25);
}

TEST(MovieHeader, TrackHeaderWith64BitTimes) {
    const std::string tkhd = box("tkhd", bigEndian32(0x01000007) + zeros(84) + bigEndian16(1280) +
                                             bigEndian16(0) + bigEndian16(720) + bigEndian16(0));
    const auto movie = describe(movieWith(box("trak", tkhd + media("vide"))));
    ASSERT_TRUE(movie);
    EXPECT_EQ(movie->naturalWidth, 1280);
    EXPECT_EQ(movie->naturalHeight, 720);
}

TEST(MovieHeader, SizeFromTheSampleDescriptionWhereTheTrackHeaderHasNone) {
    const std::string entry = box("avc1", zeros(24) + bigEndian16(1920) + bigEndian16(1088));
    const std::string stsd = box("stsd", bigEndian32(0) + bigEndian32(1) + entry);
    const std::string mdia =
        box("mdia", handlerBox("vide") + box("minf", box("vmhd") + box("stbl", stsd)));
    const auto movie = describe(movieWith(box("trak", trackHeader(0, 0) + mdia)));
    ASSERT_TRUE(movie);
    EXPECT_EQ(movie->naturalWidth, 1920);
    EXPECT_EQ(movie->naturalHeight, 1088);
}

TEST(MovieHeader, TimesCountFrom1904) {
    const auto movie =
        describe(movieWith(movieHeader(kYear1970 + 1'299'333'729, kYear1970 + 1'299'333'730)));
    ASSERT_TRUE(movie);
    EXPECT_EQ(movie->creationTime, 1'299'333'729);  // 2011-03-05 14:02:09
    EXPECT_EQ(movie->modificationTime, 1'299'333'730);
}

TEST(MovieHeader, ATimeOf0IsAbsent) {
    const auto movie = describe(movieWith(movieHeader(0, 1)));
    ASSERT_TRUE(movie);
    EXPECT_FALSE(movie->creationTime);
    EXPECT_EQ(movie->modificationTime, 1 - MovieTime{kYear1970});
}

TEST(MovieHeader, TimesOf32BitsReachTheYear2040) {
    const auto movie = describe(movieWith(movieHeader(UINT32_MAX, UINT32_MAX)));
    ASSERT_TRUE(movie);
    EXPECT_EQ(movie->creationTime, MovieTime{UINT32_MAX} - kYear1970);
}

TEST(MovieHeader, TimesOf64Bits) {
    const auto movie = describe(movieWith(movieHeader64(kYear1970 + 5'000'000'000ULL, UINT64_MAX)));
    ASSERT_TRUE(movie);
    EXPECT_EQ(movie->creationTime, 5'000'000'000);
    EXPECT_FALSE(movie->modificationTime) << "no time can be that late";
}

}  // namespace
}  // namespace qrx
