#include <gtest/gtest.h>

#include "volumes/ClipNumbers.h"

namespace qrx {
namespace {

TEST(ClipNumbers, NameOfTheClip) {
    EXPECT_EQ(clipName("/V/DCIM/MVI_0042.MOV"), "MVI_0042");
    EXPECT_EQ(clipName("MVI_0042.MOV.MOV"), "MVI_0042.MOV");
    EXPECT_EQ(clipName(""), "");
}

TEST(ClipNumbers, PartsBetweenUnderscores) {
    EXPECT_EQ(underscorePart("MVI_0042", 0), "MVI");
    EXPECT_EQ(underscorePart("MVI_0042", 1), "0042");
    EXPECT_EQ(underscorePart("MVI_0042", 2), std::nullopt);
    EXPECT_EQ(underscorePart("clip", 0), "clip");
    EXPECT_EQ(underscorePart("clip", 1), std::nullopt);
    EXPECT_EQ(underscorePart("_", 1), "");
    EXPECT_EQ(underscorePart("", 0), "");
}

TEST(ClipNumbers, NumbersBetweenUnderscores) {
    EXPECT_EQ(underscoreNumber("MVI_0042", 1), 42);
    EXPECT_EQ(underscoreNumber("MVI_0042x_7", 1), 42);
    EXPECT_EQ(underscoreNumber("MVI_x42", 1), 0);
    EXPECT_EQ(underscoreNumber("MVI_", 1), 0);
    EXPECT_EQ(underscoreNumber("MVI_99999999999", 1), 2147483647);
    EXPECT_EQ(underscoreNumber("clip", 1), std::nullopt);
}

TEST(ClipNumbers, ClipAndPieceOfAJvcName) {
    EXPECT_EQ(clipAndPiece("/x/ABCD0012_03.MOV"), std::pair(12, 3));
    EXPECT_EQ(clipAndPiece("0012_.MOV"), std::pair(12, 0));
    EXPECT_EQ(clipAndPiece("012_03.MOV"), std::nullopt);
    EXPECT_EQ(clipAndPiece("ABCD0012.MOV"), std::nullopt);
    EXPECT_EQ(clipAndPiece(""), std::nullopt);
}

TEST(ClipNumbers, PiecesShareTheirSeries) {
    EXPECT_EQ(pieceSeries("/a_b/ABCD0012_03.MOV"), "ABCD0012");
    EXPECT_EQ(pieceSeries("ABCD0012.MOV"), "ABCD0012.MOV");
    EXPECT_EQ(pieceSeries("_03.MOV"), "");
}

}  // namespace
}  // namespace qrx
