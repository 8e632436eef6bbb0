#include <random>
#include <string>

#include <gtest/gtest.h>

#include "MovieTestSupport.h"
#include "readers/QuickTimeReader.h"
#include "support/BoxWriter.h"

namespace qrx {
namespace {

using namespace std::string_literals;
using test::bigEndian32;
using test::box;
using test::boxStating;
using test::fileType;
using test::largeBox;
using test::largeBoxStating;
using test::movieHeader;
using test::track;
using test::tracks;
using test::zeros;

std::string header() {
    return movieHeader() + track("vide", 640, 480) + track("soun");
}
std::string moov() {
    return box("moov", header());
}
std::string mdat() {
    return box("mdat", zeros(100));
}

struct MovieCase {
    const char* name;
    std::string bytes;
};
class OpensAsMovie : public testing::TestWithParam<MovieCase> {};

TEST_P(OpensAsMovie, WithItsTwoTracks) {
    EXPECT_EQ(tracks(GetParam().bytes), "1 1 0 0 0");
}

INSTANTIATE_TEST_SUITE_P(
    Layouts, OpensAsMovie,
    testing::Values(
        MovieCase{"HeaderFirst", fileType() + moov() + mdat()},
        MovieCase{"HeaderLast", fileType() + mdat() + moov()},
        MovieCase{"HeaderBetween", fileType() + mdat() + moov() + mdat()},
        MovieCase{"WithoutTypeBox", moov() + mdat()},
        MovieCase{"WithoutTypeBoxMediaFirst", mdat() + moov()}, MovieCase{"OnlyAHeader", moov()},
        MovieCase{"InitSegment", fileType("iso5") + box("moov", header() + box("mvex"))},
        MovieCase{"Fragmented", fileType("iso5") + box("moov", header() + box("mvex")) +
                                    box("moof", zeros(40)) + mdat() + box("moof", zeros(40)) +
                                    mdat() + box("mfra")},
        MovieCase{"MediaSegmentBeforeItsHeader", box("styp", "msdh"s + zeros(4)) + box("sidx") +
                                                     box("moof", zeros(8)) + mdat() + moov()},
        MovieCase{"WideBeforeTheMedia", fileType() + box("wide") + mdat() + moov()},
        MovieCase{"WideFirst", box("wide") + mdat() + moov()},
        MovieCase{"SkipAndFreeAround", box("skip", zeros(5)) + box("free") + moov() + box("free")},
        MovieCase{"PreviewFirst", box("pnot", zeros(12)) + box("PICT", zeros(50)) + moov()},
        MovieCase{"UuidFirst", box("uuid", zeros(30)) + moov() + mdat()},
        MovieCase{"UnknownBoxesBetween",
                  fileType() + box("abcd", zeros(9)) + mdat() + box("\xA9xyz", "q") + moov()},
        MovieCase{"MotionJpeg2000", box("jP  ", "\r\n\x87\n") + fileType("mjp2") + moov()},
        MovieCase{"LargeMedia", fileType() + largeBox("mdat", zeros(100)) + moov()},
        MovieCase{"LargeHeader", fileType() + largeBox("moov", header()) + mdat()},
        MovieCase{"HeaderToTheEnd", fileType() + mdat() + boxStating(0, "moov", header())},
        MovieCase{"MediaToTheEnd", fileType() + moov() + boxStating(0, "mdat", zeros(100))},
        MovieCase{"LargeTracks",
                  fileType() + box("moov", movieHeader() +
                                               largeBox("trak", track("vide", 640, 480).substr(8)) +
                                               largeBox("trak", track("soun").substr(8)))},
        MovieCase{"MediaThatClaimsMoreThanTheFile",
                  fileType() + moov() + boxStating(0x7FFFFFFF, "mdat", zeros(100))},
        MovieCase{"HeaderThatClaimsMoreThanTheFile",
                  fileType() + boxStating(0x7FFFFFFF, "moov", header())},
        MovieCase{"LargeHeaderThatClaimsTheWholeNumberRange",
                  fileType() + largeBoxStating(UINT64_MAX, "moov", header())},
        MovieCase{"LastTrackThatClaimsMoreThanTheHeader",
                  fileType() +
                      box("moov", movieHeader() + track("vide", 640, 480) +
                                      boxStating(0x7FFFFFFF, "trak", track("soun").substr(8))) +
                      mdat()},
        MovieCase{"AnEmptyHeaderBeforeTheRealOne", fileType() + box("moov") + moov()},
        MovieCase{"JunkAfterTheHeader", fileType() + moov() + "junk that is no box at all"}),
    [](const auto& row) { return std::string(row.param.name); });

class IsNoMovie : public testing::TestWithParam<MovieCase> {};

TEST_P(IsNoMovie, AndOpensAsNone) {
    EXPECT_EQ(tracks(GetParam().bytes), "none");
}

INSTANTIATE_TEST_SUITE_P(
    Bytes, IsNoMovie,
    testing::Values(
        MovieCase{"EmptyFile", ""}, MovieCase{"OneByte", "m"}, MovieCase{"ThreeBytes", "moo"},
        MovieCase{"TypeBoxOnly", fileType()}, MovieCase{"MediaWithoutHeader", fileType() + mdat()},
        MovieCase{"UnfinishedRecording",
                  fileType() + box("wide") + boxStating(0, "mdat", zeros(300))},
        MovieCase{"HeaderInsideMediaThatClaimsIt",
                  fileType() + boxStating(0x7FFFFFFF, "mdat", zeros(8)) + moov()},
        MovieCase{"MediaToTheEndHidesTheHeader", fileType() + boxStating(0, "mdat") + moov()},
        MovieCase{"EmptyHeader", fileType() + box("moov")},
        MovieCase{"HeaderWithoutAnythingKnown", fileType() + box("moov", box("abcd", zeros(40)))},
        MovieCase{"HeaderInsideAnotherBox", fileType() + box("free", moov())},
        MovieCase{"StillPicture", fileType("heic") + box("meta", zeros(100)) + mdat()},
        MovieCase{"Text", "This is moov, free text about ftyp and mdat boxes.\n"},
        MovieCase{"TextWithATypeAtByteFour", "Any free text, and a moov further on"},
        MovieCase{"Xml", "<?xml version=\"1.0\"?><moov></moov>"},
        MovieCase{"Jpeg", "\xFF\xD8\xFF\xE0\0\x10JFIF\0\x01\x01"s + moov()},
        MovieCase{"TransportStream", "\x47\x40\0\x10"s + zeros(184) + "\x47" + zeros(187)},
        MovieCase{"TransportStreamOf192Bytes", zeros(4) + "\x47\x40\0\x10"s + zeros(184)},
        MovieCase{"Mxf",
                  "\x06\x0E\x2B\x34\x02\x05\x01\x01\x0D\x01\x02\x01\x01\x02\x04\0"s + zeros(100)},
        MovieCase{"Matroska", "\x1A\x45\xDF\xA3\x9F\x42\x86\x81"s + zeros(40)},
        MovieCase{"Mp3", "ID3\x04\0\0\0\0\0\x23TSSE"s + zeros(40)},
        MovieCase{"UnknownFirstBox", box("abcd", zeros(8)) + moov()},
        MovieCase{"Zeros", zeros(5000)}, MovieCase{"AllOnes", std::string(5000, '\xFF')}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(QuickTimeReader, AFileOf85BytesWithoutTracksIsAMovieWithoutTracks) {
    // movie header cut short behind its times, as some recorders leave it when nothing was taken
    const std::string header85 = box("mvhd", zeros(45));
    const std::string bytes =
        box("ftyp", "qt  "s + zeros(4) + "qt  ") + box("moov", header85) + bigEndian32(0);
    ASSERT_EQ(bytes.size(), 85U);
    EXPECT_EQ(tracks(bytes), "0 0 0 0 0");
}

TEST(QuickTimeReader, ARawPhotoBuiltLikeAMovieIsDescribedAsItsHeaderSays) {
    EXPECT_EQ(tracks(fileType("crx ") + box("moov", header()) + mdat()), "1 1 0 0 0");
}

TEST(QuickTimeReader, RandomBytesAreNoMovie) {
    std::mt19937 noise{20240229};
    for (int round = 0; round < 2000; ++round) {
        std::string bytes(noise() % 600, '\0');
        for (char& c : bytes)
            c = static_cast<char>(noise());
        ASSERT_EQ(tracks(bytes), "none") << round;
    }
}

TEST(QuickTimeReader, RandomBytesInsideAHeaderEndWell) {
    std::mt19937 noise{20240301};
    for (int round = 0; round < 2000; ++round) {
        std::string bytes(noise() % 600, '\0');
        for (char& c : bytes)
            c = static_cast<char>(noise());
        const auto movie = test::describe(fileType() + box("moov", header() + bytes));
        ASSERT_TRUE(movie);
        EXPECT_GE(movie->tracks.size(), 2U);
    }
}

TEST(QuickTimeReader, NestingOfAHundredThousandBoxes) {
    for (const char* type : {"moov", "trak", "mdia", "udta", "meta", "ilst", "cmov"}) {
        SCOPED_TRACE(type);
        constexpr std::uint32_t kDepth = 100'000;
        std::string nested;
        for (std::uint32_t left = kDepth; left > 0; --left)
            nested += boxStating(left * 8, type);
        EXPECT_EQ(tracks(fileType() + box("moov", movieHeader() + nested)),
                  type == "cmov"s ? "none" : "0 0 0 0 0");
        EXPECT_EQ(tracks(nested), "none");
    }
}

TEST(QuickTimeReader, AChainOfBoxesWithoutEndEnds) {
    std::string chain = fileType();
    for (int i = 0; i < 200'000; ++i)
        chain += box("free");
    EXPECT_EQ(tracks(chain), "none");
    EXPECT_EQ(tracks(chain + moov()), "1 1 0 0 0");
}

TEST(QuickTimeReader, AMillionBoxesAreTheMost) {
    std::string chain = fileType();
    const std::string free = box("free");
    chain.reserve(9'000'000);
    for (int i = 0; i < 1'000'000; ++i)
        chain += free;
    EXPECT_EQ(tracks(chain + moov()), "none");
}

// Positions at which a small movie is cut or damaged in the sweeps: all of them.
std::string sweptMovie() {
    return fileType() +
           box("moov", movieHeader(1000, 2000) + track("vide", 1920, 1080) + track("soun") +
                           track("tmcd") + box("udta", box("name", "Take"))) +
           mdat();
}

TEST(QuickTimeReader, EveryTruncationHasAnAnswerAndNeverMoreTracksThanALongerOne) {
    const std::string whole = sweptMovie();
    const std::size_t headerEnd = whole.size() - mdat().size();
    std::size_t before = 0;
    for (std::size_t cut = 0; cut <= whole.size(); ++cut) {
        SCOPED_TRACE(cut);
        const auto movie = test::describe(whole.substr(0, cut));
        const std::size_t count = movie ? movie->tracks.size() : 0;
        EXPECT_GE(count, before);
        EXPECT_LE(count, 3U);
        if (cut >= headerEnd) {
            EXPECT_EQ(tracks(movie), "1 1 1 0 0");
        }
        before = count;
    }
}

TEST(QuickTimeReader, EveryTruncationOfAMovieWithItsHeaderLast) {
    const std::string whole = fileType() + mdat() + moov();
    const std::size_t headerStart = whole.size() - moov().size();
    for (std::size_t cut = 0; cut <= whole.size(); ++cut) {
        SCOPED_TRACE(cut);
        const auto movie = test::describe(whole.substr(0, cut));
        if (cut < headerStart) {
            EXPECT_FALSE(movie);
        }
        if (cut == whole.size()) {
            EXPECT_EQ(tracks(movie), "1 1 0 0 0");
        }
    }
}

TEST(QuickTimeReader, EveryBitTurnedHasAnAnswer) {
    const std::string whole = sweptMovie();
    for (std::size_t at = 0; at < whole.size(); ++at) {
        for (unsigned bit = 0; bit < 8; ++bit) {
            SCOPED_TRACE(at);
            std::string damaged = whole;
            damaged[at] = static_cast<char>(static_cast<unsigned char>(damaged[at]) ^ (1U << bit));
            const auto movie = test::describe(damaged);
            if (movie) {
                EXPECT_LE(movie->tracks.size(), 3U);
            }
        }
    }
}

TEST(QuickTimeReader, EverySizeFieldSetToItsEdges) {
    const std::string whole = sweptMovie();
    for (std::size_t at = 0; at + 4 <= whole.size(); ++at) {
        for (const std::uint32_t value :
             {0U, 1U, 7U, 8U, 9U, 16U, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFF8U, 0xFFFFFFFFU}) {
            SCOPED_TRACE(at);
            std::string damaged = whole;
            damaged.replace(at, 4, bigEndian32(value));
            const auto movie = test::describe(damaged);
            if (movie) {
                EXPECT_LE(movie->tracks.size(), 3U);
            }
        }
    }
}

}  // namespace
}  // namespace qrx
