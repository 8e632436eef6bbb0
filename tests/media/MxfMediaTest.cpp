#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "readers/MxfClipQuestions.h"
#include "support/FfmpegMedia.h"
#include "support/TemporaryFolder.h"

namespace qrx {
namespace {

namespace fs = std::filesystem;
using Strings = std::vector<std::string>;

Strings bars(const std::string& size, const std::string& rate, const std::string& seconds) {
    return {"-f", "lavfi", "-i", "testsrc=size=" + size + ":rate=" + rate + ":duration=" + seconds};
}

Strings with(Strings arguments, const Strings& more) {
    arguments.insert(arguments.end(), more.begin(), more.end());
    return arguments;
}

Strings op1a(const std::string& rate, const std::string& timecode) {
    return with(bars("64x48", rate, "1"), {"-c:v", "mpeg2video", "-timecode", timecode});
}

// 50 Mbit/s of constant size, as the format wants it: a file of more than two search windows.
Strings d10() {
    return with(bars("720x608", "25", "1"), {"-pix_fmt",
                                             "yuv422p",
                                             "-c:v",
                                             "mpeg2video",
                                             "-b:v",
                                             "50M",
                                             "-minrate",
                                             "50M",
                                             "-maxrate",
                                             "50M",
                                             "-bufsize",
                                             "2000000",
                                             "-rc_init_occupancy",
                                             "2000000",
                                             "-intra_vlc",
                                             "1",
                                             "-non_linear_quant",
                                             "1",
                                             "-g",
                                             "1",
                                             "-dc",
                                             "10",
                                             "-qmin",
                                             "1",
                                             "-qmax",
                                             "12",
                                             "-lmin",
                                             "1*QP2LAMBDA",
                                             "-rc_max_vbv_use",
                                             "1",
                                             "-rc_min_vbv_use",
                                             "1",
                                             "-flags",
                                             "+ildct+low_delay",
                                             "-top",
                                             "1",
                                             "-timecode",
                                             "10:00:00:00",
                                             "-f",
                                             "mxf_d10"});
}

Strings opAtom() {
    return with(bars("1920x1080", "25", "0.4"),
                {"-pix_fmt", "yuv422p", "-c:v", "dnxhd", "-b:v", "120M", "-timecode", "02:00:00:12",
                 "-f", "mxf_opatom"});
}

struct MxfCase {
    const char* name;
    const char* file;
    Strings arguments;
    QRXVideoFrameRate rate;
    const char* start;
    bool dropFrame;
    std::int32_t editUnits;
    std::int32_t numerator;
    std::int32_t denominator;
};

class RealMxf : public testing::TestWithParam<MxfCase> {};

TEST_P(RealMxf, AnswersTheClipQuestions) {
    const MxfCase& row = GetParam();
    const std::string file = test::FfmpegMedia::shared().file(row.file, row.arguments);
    EXPECT_TRUE(mxfFileHasSignature(file));
    EXPECT_EQ(mxfFrameRate(file), row.rate);
    EXPECT_EQ(mxfStartTimecode(file), row.start);
    EXPECT_EQ(mxfIsDropFrame(file), row.dropFrame);
    EXPECT_EQ(mxfDurationInEditUnits(file), row.editUnits);
    EXPECT_EQ(mxfEditUnitNumerator(file), row.numerator);
    EXPECT_EQ(mxfEditUnitDenominator(file), row.denominator);

    const std::string umid = mxfUniqueIdentifier(file).value_or("");
    EXPECT_EQ(umid.size(), 64U);
    EXPECT_EQ(umid.substr(0, 16), "060a2b3401010105");
}

INSTANTIATE_TEST_SUITE_P(
    Written, RealMxf,
    testing::Values(
        MxfCase{"Op1aAt25", "op1a25.mxf", op1a("25", "01:00:00:00"), QRXVideoFrameRate25,
                "01:00:00:00", false, 25, 1, 25},
        MxfCase{"Op1aAt29_97Drop", "op1a2997.mxf", op1a("30000/1001", "00:01:00;02"),
                QRXVideoFrameRate30, "00:01:00;02", true, 30, 1001, 30000},
        // The flag is not asked: a base of 30 counts at 29.97, a base of 24 at 23.976.
        MxfCase{"Op1aAt29_97NonDrop", "op1a2997ndf.mxf", op1a("30000/1001", "00:01:00:02"),
                QRXVideoFrameRate30, "00:01:00;04", false, 30, 1001, 30000},
        MxfCase{"Op1aAt24", "op1a24.mxf", op1a("24", "00:00:10:00"), QRXVideoFrameRate24,
                "00:00:10;10", false, 24, 1, 24},
        MxfCase{"D10", "d10.mxf", d10(), QRXVideoFrameRate25, "10:00:00:00", false, 25, 1, 25},
        MxfCase{"OpAtom", "opatom.mxf", opAtom(), QRXVideoFrameRate25, "02:00:00:12", false, 10, 1,
                25}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(RealMxfFiles, OtherFilesAnswerNothing) {
    const std::string file = test::FfmpegMedia::shared().file("plain.mov", test::testPicture());
    EXPECT_FALSE(mxfFileHasSignature(file));
    EXPECT_EQ(mxfStartTimecode(file), "00:00:00:00");
    EXPECT_EQ(mxfUniqueIdentifier(file), std::nullopt);
}

TEST(RealMxfFiles, EveryCutOfTheHeaderIsAnswered) {
    const std::string file =
        test::FfmpegMedia::shared().file("op1a25.mxf", op1a("25", "01:00:00:00"));
    const std::string whole = test::fileContents(file);
    const test::TemporaryFolder folder;
    const std::string cut = folder.write("cut.mxf", whole);
    bool had = true;
    for (std::size_t size = std::min<std::size_t>(whole.size(), 8000); size > 0; size -= 37) {
        fs::resize_file(cut, size);
        // What is gone stays gone: the shorter file never knows more.
        const bool has = mxfStartTimecode(cut) == "01:00:00:00";
        EXPECT_TRUE(had || !has) << size;
        had = has;
        EXPECT_GE(mxfDurationInEditUnits(cut), 0) << size;
        if (size <= 37) break;
    }
    EXPECT_FALSE(had);
}

TEST(RealMxfFiles, SamplesHaveSignatureAndUmid) {
    const char* const samples = std::getenv("QRX_SAMPLES");
    if (samples == nullptr) GTEST_SKIP() << "QRX_SAMPLES names no folder of sample files";
    std::size_t seen = 0;
    for (const char* folder : {"mxf", "p2"}) {
        for (const auto& entry : fs::recursive_directory_iterator(fs::path(samples) / folder)) {
            const auto extension = entry.path().extension();
            if (extension != ".mxf" && extension != ".MXF") continue;
            const std::string file = entry.path().string();
            ++seen;
            EXPECT_TRUE(mxfFileHasSignature(file)) << file;
            EXPECT_EQ(mxfUniqueIdentifier(file).value_or("").size(), 64U) << file;
        }
    }
    EXPECT_GT(seen, 0U);
}

}  // namespace
}  // namespace qrx
