#include <algorithm>
#include <cstddef>
#include <initializer_list>
#include <span>
#include <vector>

#include <gtest/gtest.h>

#include "platform/linux/PictureEnd.h"

namespace qrx::platform {
namespace {

using Bytes = std::vector<std::byte>;

Bytes bytes(std::initializer_list<int> values) {
    Bytes made;
    for (const int value : values) {
        made.push_back(static_cast<std::byte>(value));
    }
    return made;
}

bool isWhole(std::span<const std::byte> file) {
    PictureEnd end;
    end.feed(file);
    return end.isWhole();
}

const Bytes kJpeg = bytes({
    0xFF, 0xD8,                                      // start
    0xFF, 0xE1, 0x00, 0x08, 0xFF, 0xD8, 0xFF, 0xD9,  // application data: a thumbnail with an end
    0x00, 0x00,                                      //   of its own
    0xFF, 0xFF, 0xC2, 0x00, 0x03, 0x11,              // frame, after a fill byte
    0xFF, 0xDA, 0x00, 0x04, 0xFF, 0xD9,              // scan header that looks like an end
    0x12, 0xFF, 0x00, 0xFF, 0xD3, 0x34,              // data: a stuffed FF, a restart
    0xFF, 0xC4, 0x00, 0x04, 0xFF, 0xD9,              // table between scans
    0xFF, 0xDA, 0x00, 0x02, 0x56, 0xFF, 0xD9,        // last scan, end
});

const Bytes kPng = bytes({
    0x89, 'P', 'N', 'G', 0x0D, 0x0A, 0x1A, 0x0A,                          // signature
    0,    0,   0,   4,   'I',  'D',  'A',  'T',  'I',  'E',  'N',  'D',   // data like an end
    9,    9,   9,   9,                                                    // its checksum
    0,    0,   0,   0,   'I',  'E',  'N',  'D',  0xAE, 0x42, 0x60, 0x82,  // end
});

TEST(PictureEnd, NoTruncationIsWhole) {
    for (const Bytes& file : {kJpeg, kPng}) {
        for (std::size_t cut = 1; cut < file.size(); ++cut) {
            EXPECT_FALSE(isWhole(std::span(file).first(cut))) << cut;
        }
        EXPECT_TRUE(isWhole(file));
    }
}

TEST(PictureEnd, BytesBehindTheEndDoNotMatter) {
    for (Bytes file : {kJpeg, kPng}) {
        file.insert(file.end(), 100, std::byte{0xFF});
        EXPECT_TRUE(isWhole(file));
    }
}

TEST(PictureEnd, BlocksOfAnySizeAreOneFile) {
    for (const Bytes& file : {kJpeg, kPng}) {
        for (std::size_t block = 1; block < file.size(); ++block) {
            PictureEnd end;
            for (std::size_t at = 0; at < file.size(); at += block) {
                EXPECT_FALSE(end.isWhole() && at > 0);
                end.feed(std::span(file).subspan(at, std::min(block, file.size() - at)));
            }
            EXPECT_TRUE(end.isWhole()) << block;
        }
    }
}

TEST(PictureEnd, OtherFormatsHaveNoEndToMiss) {
    EXPECT_TRUE(isWhole(bytes({'B', 'M', 1, 2, 3})));
    EXPECT_TRUE(isWhole(bytes({'G', 'I', 'F'})));
}

TEST(PictureEnd, NoByteIsNotWhole) {
    EXPECT_FALSE(isWhole({}));
}

TEST(PictureEnd, LengthsTooSmallOrHugeAreSafe) {
    EXPECT_FALSE(isWhole(bytes({0xFF, 0xD8, 0xFF, 0xE1, 0x00, 0x00, 0xFF, 0xE1, 0xFF, 0xFF})));
    EXPECT_FALSE(isWhole(
        bytes({0x89, 'P', 'N', 'G', 0x0D, 0x0A, 0x1A, 0x0A, 0xFF, 0xFF, 0xFF, 0xFF, 1, 2, 3, 4})));
}

}  // namespace
}  // namespace qrx::platform
