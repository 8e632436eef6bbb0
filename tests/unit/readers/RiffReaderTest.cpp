#include <string>

#include <gtest/gtest.h>

#include "MovieTestSupport.h"
#include "readers/RiffReader.h"
#include "support/BoxWriter.h"

namespace qrx {
namespace {

using namespace std::string_literals;
using test::chunk;
using test::describe;
using test::list;
using test::littleEndian16;
using test::littleEndian32;
using test::riff;
using test::tracks;
using test::zeros;

std::string mainHeader(std::uint32_t width = 720, std::uint32_t height = 576) {
    return chunk("avih", zeros(32) + littleEndian32(width) + littleEndian32(height) + zeros(16));
}
std::string stream(const std::string& type, const std::string& format = {}) {
    return list("strl", chunk("strh", type + zeros(52)) + chunk("strf", format));
}
std::string picture(std::uint32_t width, std::uint32_t height) {
    return littleEndian32(40) + littleEndian32(width) + littleEndian32(height) + zeros(28);
}
std::string waveFormat(std::uint16_t channels = 2) {
    return chunk("fmt ", littleEndian16(1) + littleEndian16(channels) + littleEndian32(48000) +
                             littleEndian32(192000) + littleEndian16(4) + littleEndian16(16));
}
std::string avi(const std::string& headers) {
    return riff("AVI ", list("hdrl", headers) + list("movi", chunk("00dc", zeros(99))));
}

TEST(Avi, StreamsAreTracks) {
    const auto movie = describe(avi(mainHeader() + stream("vids", picture(640, 480)) +
                                    stream("auds") + stream("txts") + stream("mids")));
    EXPECT_EQ(tracks(movie), "1 1 0 1 1");
    ASSERT_TRUE(movie);
    EXPECT_EQ(movie->naturalWidth, 640);
    EXPECT_EQ(movie->naturalHeight, 480);
    EXPECT_EQ(movie->tracks[0].handlerType, "vids");
    EXPECT_EQ(movie->tracks[1].handlerType, "auds");
    EXPECT_FALSE(movie->creationTime);
    EXPECT_FALSE(movie->displayName);
}

TEST(Avi, DvWithItsSoundInsideIsVideo) {
    const auto movie = describe(avi(mainHeader() + stream("iavs", zeros(32))));
    EXPECT_EQ(tracks(movie), "1 0 0 0 0");
    ASSERT_TRUE(movie);
    EXPECT_EQ(movie->naturalWidth, 720);
    EXPECT_EQ(movie->naturalHeight, 576);
}

TEST(Avi, APictureThatStandsFromTheTopHasAHeightBelowZero) {
    const auto movie = describe(
        avi(mainHeader() + stream("vids", picture(640, static_cast<std::uint32_t>(-480)))));
    ASSERT_TRUE(movie);
    EXPECT_EQ(movie->naturalHeight, 480);
}

TEST(Avi, SizeOfTheMainHeaderWhereTheStreamHasNone) {
    const auto movie = describe(avi(mainHeader() + stream("vids")));
    ASSERT_TRUE(movie);
    EXPECT_EQ(movie->naturalWidth, 720);
}

TEST(Avi, OpenDml) {
    EXPECT_EQ(tracks(riff("AVI ", chunk("JUNK", zeros(5)) +
                                      list("hdrl", mainHeader() + stream("vids") + stream("auds") +
                                                       list("odml", chunk("dmlh", zeros(4)))) +
                                      list("movi", zeros(40))) +
                     riff("AVIX", list("movi", zeros(40)))),
              "1 1 0 0 0");
}

TEST(Avi, NameFromTheInformationList) {
    const auto movie = describe(
        riff("AVI ", list("hdrl", mainHeader() + stream("vids")) +
                         list("INFO", chunk("ISFT", "tool") + chunk("INAM", "Holiday\0"s)) +
                         list("movi", zeros(8))));
    ASSERT_TRUE(movie);
    EXPECT_EQ(movie->displayName, "Holiday");
}

TEST(Avi, TheSizeOfTheWholeIsNotAsked) {
    for (const std::uint32_t size : {0U, 1U, 100U, 0x7FFFFFFFU, 0xFFFFFFFFU}) {
        std::string file = avi(mainHeader() + stream("vids"));
        file.replace(4, 4, littleEndian32(size));
        EXPECT_EQ(tracks(file), "1 0 0 0 0") << size;
    }
}

TEST(Avi, HeaderWithoutStreamsIsAMovieWithoutTracks) {
    EXPECT_EQ(tracks(avi(mainHeader())), "0 0 0 0 0");
}

TEST(Avi, WithoutHeaderListItIsNone) {
    EXPECT_EQ(tracks(riff("AVI ", "")), "none");
    EXPECT_EQ(tracks(riff("AVI ", list("movi", zeros(40)))), "none");
    EXPECT_EQ(tracks(riff("AVI ", list("hdrl", ""))), "none");
    EXPECT_EQ(tracks(riff("AVI ", list("movi", "") + list("hdrl", mainHeader()))), "none");
}

TEST(Wav, HasOneSoundTrack) {
    const auto movie = describe(riff("WAVE", waveFormat() + chunk("data", zeros(100))));
    EXPECT_EQ(tracks(movie), "0 1 0 0 0");
    ASSERT_TRUE(movie);
    EXPECT_EQ(movie->naturalWidth, 0);
}

TEST(Wav, OtherChunksBeforeTheFormat) {
    const auto movie = describe(riff("WAVE", chunk("bext", zeros(603)) + chunk("JUNK", zeros(28)) +
                                                 list("INFO", chunk("INAM", "Atmo")) +
                                                 waveFormat() + chunk("data", zeros(100))));
    EXPECT_EQ(tracks(movie), "0 1 0 0 0");
    ASSERT_TRUE(movie);
    EXPECT_EQ(movie->displayName, "Atmo");
}

TEST(Wav, LargeFilesHaveTheirSizesInAChunkOfTheirOwn) {
    for (const char* form : {"RF64", "BW64"}) {
        SCOPED_TRACE(form);
        const std::string sizes =
            chunk("ds64", zeros(8) + littleEndian32(100) + littleEndian32(0) + zeros(12));
        std::string file = riff("WAVE", sizes + waveFormat() + chunk("data", zeros(100)));
        file.replace(0, 8, form + littleEndian32(UINT32_MAX));
        EXPECT_EQ(tracks(file), "0 1 0 0 0");

        std::string dataFirst =
            riff("WAVE", sizes + "data" + littleEndian32(UINT32_MAX) + zeros(100) + waveFormat());
        dataFirst.replace(0, 8, form + littleEndian32(UINT32_MAX));
        EXPECT_EQ(tracks(dataFirst), "0 1 0 0 0");
    }
}

TEST(Wav, FormatAfterTheSamples) {
    EXPECT_EQ(tracks(riff("WAVE", chunk("data", zeros(101)) + waveFormat())), "0 1 0 0 0");
}

TEST(Wav, WithoutAFormatOfAtLeastOneChannelItIsNone) {
    EXPECT_EQ(tracks(riff("WAVE", "")), "none");
    EXPECT_EQ(tracks(riff("WAVE", chunk("data", zeros(100)))), "none");
    EXPECT_EQ(tracks(riff("WAVE", waveFormat(0) + chunk("data"))), "none");
    EXPECT_EQ(tracks(riff("WAVE", chunk("fmt ", zeros(2) + "\x02\0"s + zeros(9)))), "none");
}

TEST(Riff, OtherFormsAreNone) {
    for (const char* form : {"WEBP", "RMID", "ACON", "AVIX", "CDXA", "    "})
        EXPECT_EQ(tracks(riff(form, waveFormat() + list("hdrl", mainHeader()))), "none") << form;
    EXPECT_EQ(tracks("RIFF"), "none");
    EXPECT_EQ(tracks("RIFF is a word that text may begin with, as in RIFF WAVE"), "none");
}

TEST(Riff, EveryTruncationAndEveryBitTurnedHasAnAnswer) {
    for (const std::string& whole :
         {avi(mainHeader() + stream("vids", picture(640, 480)) + stream("auds")),
          riff("WAVE",
               list("INFO", chunk("INAM", "Atmo")) + waveFormat() + chunk("data", "1234"))}) {
        for (std::size_t cut = 0; cut < whole.size(); ++cut) {
            const auto movie = describe(whole.substr(0, cut));
            if (movie) {
                EXPECT_LE(movie->tracks.size(), 2U);
            }
            for (unsigned bit = 0; bit < 8; ++bit) {
                std::string damaged = whole;
                damaged[cut] =
                    static_cast<char>(static_cast<unsigned char>(damaged[cut]) ^ (1U << bit));
                const auto other = describe(damaged);
                if (other) {
                    EXPECT_LE(other->tracks.size(), 2U);
                }
            }
        }
    }
}

}  // namespace
}  // namespace qrx
