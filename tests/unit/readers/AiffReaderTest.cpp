#include <string>

#include <gtest/gtest.h>

#include "MovieTestSupport.h"
#include "readers/AiffReader.h"
#include "support/BoxWriter.h"

namespace qrx {
namespace {

using test::bigChunk;
using test::bigEndian16;
using test::bigEndian32;
using test::describe;
using test::tracks;
using test::zeros;

std::string form(const std::string& kind, const std::string& contents) {
    return bigChunk("FORM", kind + contents);
}
std::string common(std::uint16_t channels = 1) {
    return bigChunk("COMM",
                    bigEndian16(channels) + bigEndian32(8000) + bigEndian16(16) + zeros(10));
}

TEST(Aiff, HasOneSoundTrack) {
    EXPECT_EQ(tracks(form("AIFF", common() + bigChunk("SSND", zeros(100)))), "0 1 0 0 0");
    EXPECT_EQ(tracks(form("AIFC", bigChunk("FVER", zeros(4)) + common() + bigChunk("SSND"))),
              "0 1 0 0 0");
}

TEST(Aiff, CommonChunkAfterTheSamples) {
    EXPECT_EQ(tracks(form("AIFF", bigChunk("SSND", zeros(101)) + common())), "0 1 0 0 0");
}

TEST(Aiff, NameChunk) {
    const auto movie = describe(form("AIFF", bigChunk("NAME", "Rain") + common()));
    ASSERT_TRUE(movie);
    EXPECT_EQ(movie->displayName, "Rain");
}

TEST(Aiff, WithoutACommonChunkOfAtLeastOneChannelItIsNone) {
    EXPECT_EQ(tracks(form("AIFF", "")), "none");
    EXPECT_EQ(tracks(form("AIFF", bigChunk("SSND", zeros(100)))), "none");
    EXPECT_EQ(tracks(form("AIFF", common(0))), "none");
    EXPECT_EQ(tracks(form("AIFF", bigChunk("COMM", bigEndian16(1) + zeros(15)))), "none");
}

TEST(Aiff, OtherFormsAreNone) {
    for (const char* kind : {"8SVX", "ILBM", "    "})
        EXPECT_EQ(tracks(form(kind, common())), "none") << kind;
    EXPECT_EQ(tracks("FORM"), "none");
    EXPECT_EQ(tracks("FORM 27 to be filled in: COMM"), "none");
}

TEST(Aiff, EveryTruncationAndEveryBitTurnedHasAnAnswer) {
    const std::string whole =
        form("AIFC", bigChunk("NAME", "Rain") + common() + bigChunk("SSND", zeros(20)));
    for (std::size_t cut = 0; cut < whole.size(); ++cut) {
        const auto movie = describe(whole.substr(0, cut));
        if (movie) {
            EXPECT_EQ(movie->tracks.size(), 1U);
        }
        for (unsigned bit = 0; bit < 8; ++bit) {
            std::string damaged = whole;
            damaged[cut] =
                static_cast<char>(static_cast<unsigned char>(damaged[cut]) ^ (1U << bit));
            const auto other = describe(damaged);
            if (other) {
                EXPECT_EQ(other->tracks.size(), 1U);
            }
        }
    }
}

}  // namespace
}  // namespace qrx
