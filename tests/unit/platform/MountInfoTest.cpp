#include <string>

#include <gtest/gtest.h>

#include "platform/linux/MountInfo.h"

namespace qrx::platform {
namespace {

TEST(OctalEscapes, AreUndone) {
    EXPECT_EQ(octalEscapesUndone(R"(/media/CARD\0401)"), "/media/CARD 1");
    EXPECT_EQ(octalEscapesUndone(R"(a\011b\012c\134d\043e)"), "a\tb\nc\\d#e");
    EXPECT_EQ(octalEscapesUndone(R"(\303\234)"), "Ü");
    EXPECT_EQ(octalEscapesUndone(R"(\134040)"), R"(\040)") << "what came out is not read again";
}

TEST(OctalEscapes, WhatIsNoneStays) {
    for (const char* text : {"", "\\", "\\0", "\\04", "\\04a", "\\400", "\\8", "a\\"}) {
        EXPECT_EQ(octalEscapesUndone(text), text);
    }
}

TEST(MountInfo, FieldsAreTaken) {
    const auto lines = parsedMountInfo(
        "36 35 98:0 /mnt1 /media/CARD\\0401 rw,noatime master:1 propagate_from:2 - ext3 "
        "/dev/root\\0402 rw,errors=continue\n");
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_EQ(lines[0].deviceNumber, "98:0");
    EXPECT_EQ(lines[0].mountPoint, "/media/CARD 1");
    EXPECT_EQ(lines[0].fileSystemType, "ext3");
    EXPECT_EQ(lines[0].source, "/dev/root 2");
}

TEST(MountInfo, OptionalFieldsMayBeMissing) {
    const auto lines = parsedMountInfo("22 27 0:21 / /proc rw - proc proc rw\n");
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_EQ(lines[0].mountPoint, "/proc");
    EXPECT_EQ(lines[0].source, "proc");
}

TEST(MountInfo, DashAsMountPointIsNoSeparator) {
    const auto lines = parsedMountInfo("1 2 8:1 / - rw - ext4 /dev/sda1 rw\n");
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_EQ(lines[0].mountPoint, "-");
    EXPECT_EQ(lines[0].fileSystemType, "ext4");
}

TEST(MountInfo, EmptySourceIsKept) {
    const auto lines = parsedMountInfo("1 2 0:9 / /x rw - tmpfs  rw\n");
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_EQ(lines[0].source, "");
}

TEST(MountInfo, EveryTruncationOfALineIsSafe) {
    const std::string line = "1 2 8:1 / /mnt/a\\040b rw shared:1 - ext4 /dev/sda1 rw\n";
    const std::size_t sourceBegins = line.find("/dev/sda1");
    for (std::size_t cut = 0; cut <= line.size(); ++cut) {
        SCOPED_TRACE(cut);
        const auto lines = parsedMountInfo(line.substr(0, cut));
        EXPECT_EQ(lines.size(), cut >= sourceBegins ? 1U : 0U);
    }
}

TEST(MountInfo, MalformedLinesAreLeftOut) {
    const auto lines = parsedMountInfo(
        "\nnonsense\n1 2 8:1 / /a rw ext4 /dev/sda1 rw\n1 2 8:2 / /b rw - ext4 /dev/sda2 rw");
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_EQ(lines[0].mountPoint, "/b");
}

}  // namespace
}  // namespace qrx::platform
