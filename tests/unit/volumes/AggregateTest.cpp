#include <cstdint>
#include <span>
#include <string>
#include <typeindex>
#include <typeinfo>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "support/ReportingTool.h"
#include "support/TemporaryFolder.h"
#include "volumes/Precedence.h"
#include "volumes/QRXCanonAVCHDUtility.h"
#include "volumes/QRXCanonEOSUtility.h"
#include "volumes/QRXCanonXFUtility.h"
#include "volumes/QRXGoProUtility.h"
#include "volumes/QRXHDFFmpegUtility.h"
#include "volumes/QRXHDMediaVolumeAggregate.h"
#include "volumes/QRXMXFUtility.h"
#include "volumes/QRXPanasonicAVCHDUtility.h"
#include "volumes/QRXPanasonicP2Utility.h"
#include "volumes/QRXQTUtility.h"
#include "volumes/QRXSonyAVCHDUtility.h"
#include "volumes/QRXXDCAMUtility.h"

namespace qrx {
namespace {

constexpr const char* kVideoReport =
    "Input #0, mpegts, from 'x':\n"
    "  Duration: 00:00:01.00, start: 0.000000, bitrate: 5000 kb/s\n"
    "    Stream #0:0: Video: h264, yuv420p, 1920x1080, 5000 kb/s, 25 fps, 25 tbr, 90k tbn\n";
constexpr const char* kNoReport = "x: Invalid data found when processing input\n";

const QRXHDMediaVolumeAggregate& aggregate() {
    return QRXHDMediaVolumeAggregate::sharedInstance();
}

std::type_index classOf(const QRXHDMediaVolumeUtilityObject& utility) {
    return typeid(utility);
}

TEST(Aggregate, SharedObjectIsOne) {
    EXPECT_EQ(&QRXHDMediaVolumeAggregate::sharedInstance(),
              &QRXHDMediaVolumeAggregate::sharedInstance());
}

TEST(Aggregate, ListsHoldTheSharedObjectsInTheOrderOfTheirClasses) {
    using Lists =
        std::pair<QRXHDMediaVolumeAggregate::SharedUtilities, std::span<const VolumeUtilityClass>>;
    const std::vector<Lists> lists{
        {QRXHDMediaVolumeAggregate::hdUtilitiesOrderedByPrecedent(), classesByPrecedence()},
        {QRXHDMediaVolumeAggregate::allDefinedHDUtilities(), allDefinedClasses()},
        {QRXHDMediaVolumeAggregate::nativeQuickTimeUtilities(), nativeQuickTimeClasses()},
        {QRXHDMediaVolumeAggregate::navtiveFFmpegUtilities(), nativeFFmpegClasses()},
    };
    for (const auto& [utilities, classes] : lists) {
        ASSERT_EQ(utilities.size(), classes.size());
        for (std::size_t i = 0; i < classes.size(); ++i) {
            EXPECT_EQ(utilities[i], &classes[i].shared()) << classes[i].name;
        }
    }
}

TEST(Aggregate, ListsOfClassesAreInTheSameOrder) {
    const auto precedence = QRXHDMediaVolumeAggregate::hdUtilityClassesOrderedByPrecedent();
    const auto all = QRXHDMediaVolumeAggregate::allDefinedHDUtilityClasses();
    ASSERT_EQ(precedence.size(), 15U);
    ASSERT_EQ(all.size(), 15U);
    EXPECT_EQ(precedence.front().name, "QRXCanonAVCHDUtility");
    EXPECT_EQ(precedence.back().name, "QRXQTUtility");
    EXPECT_EQ(all.front().name, "QRXPanasonicP2Utility");
}

TEST(Aggregate, MakesNewObjectsOfClasses) {
    const auto classes = QRXHDMediaVolumeAggregate::allDefinedHDUtilityClasses();
    const auto made = QRXHDMediaVolumeAggregate::hdUtilitiesForClasses(classes);
    ASSERT_EQ(made.size(), classes.size());
    for (std::size_t i = 0; i < made.size(); ++i) {
        EXPECT_TRUE(classes[i].isClassOf(*made[i])) << classes[i].name;
        EXPECT_NE(made[i].get(), &classes[i].shared()) << classes[i].name;
    }
    EXPECT_TRUE(QRXHDMediaVolumeAggregate::hdUtilitiesForClasses({}).empty());
}

TEST(Aggregate, NamesOfTheDictionaryEntries) {
    EXPECT_EQ(QRXHDMediaVolumeAggregate::volumeTitleDictionaryKey(), "volumeTitle");
    EXPECT_EQ(QRXHDMediaVolumeAggregate::filePathDictionaryKey(), "filePath");
}

// ---- who has a file

TEST(UtilityForFile, IsTheBaseObjectWhereNobodyClaimsIt) {
    const test::ReportingTool tool(kNoReport);
    const test::TemporaryFolder folder;
    const FilePath file = folder.write("notes.txt", "words");
    auto& utility = aggregate().utilityForFileAtPath(file);
    EXPECT_EQ(&utility, &QRXHDMediaVolumeUtilityObject::sharedInstance());
    EXPECT_EQ(utility.volumeTitle(), "Volume");
    EXPECT_EQ(utility.volumeType(), 16U);
}

TEST(UtilityForFile, IsTheSharedObjectOfTheFirstThatClaimsIt) {
    EXPECT_EQ(&aggregate().utilityForFileAtPath("/x/AVCHD/BDMV/STREAM/00001.MTS"),
              &QRXSonyAVCHDUtility::sharedInstance());
}

TEST(UtilityForFile, LaterUtilitiesAreNotAsked) {
    const test::ReportingTool tool(kVideoReport);
    static_cast<void>(aggregate().utilityForFileAtPath("/x/AVCHD/BDMV/STREAM/00001.MTS"));
    EXPECT_EQ(tool.runs(), 0U);
}

TEST(UtilityForFile, FirstClaimWinsWhereTwoLayoutsOverlap) {
    const test::CardTree card{"PRIVATE/AVCHD/BDMV/STREAM/00001.MTS", "PRIVATE/AVCHD/CANON/"};
    const FilePath clip = card / "PRIVATE/AVCHD/BDMV/STREAM/00001.MTS";
    ASSERT_TRUE(QRXPanasonicAVCHDUtility().filePathMatchesVolumeStructure(clip));
    ASSERT_TRUE(QRXCanonAVCHDUtility().filePathMatchesVolumeStructure(clip));
    EXPECT_EQ(aggregate().utilityForFileAtPath(clip).volumeTitle(), "Canon AVCHD");

    const FilePath sonyClip = "/x/AVCHD/BDMV/STREAM/00001.MTS";
    ASSERT_TRUE(QRXPanasonicAVCHDUtility().filePathMatchesVolumeStructure(sonyClip));
    ASSERT_TRUE(QRXSonyAVCHDUtility().filePathMatchesVolumeStructure(sonyClip));
    EXPECT_EQ(aggregate().utilityForFileAtPath(sonyClip).volumeTitle(), "Sony NXCAM AVCHD");
}

TEST(UtilityForFile, MovieThatTheToolDescribesIsNotAskedOfQuickTime) {
    const test::ReportingTool tool(kVideoReport);
    const test::TemporaryFolder folder;
    const FilePath movie = folder.write("clip.mov");
    ASSERT_TRUE(QRXQTUtility().filePathMatchesVolumeStructure(movie));
    ASSERT_TRUE(QRXHDFFmpegUtility().filePathMatchesVolumeStructure(movie));
    EXPECT_EQ(aggregate().utilityForFileAtPath(movie).volumeTitle(), "General Movies");
}

TEST(UtilityForFile, MovieThatTheToolCannotDescribeIsQuickTimes) {
    const test::ReportingTool tool(kNoReport);
    const test::TemporaryFolder folder;
    EXPECT_EQ(aggregate().utilityForFileAtPath(folder.write("clip.mov")).volumeTitle(),
              "Apple QuickTime");
}

TEST(UtilityForFile, ToolRunsOnceForAFileThatNobodyClaims) {
    const test::ReportingTool tool(kNoReport);
    const test::TemporaryFolder folder;
    static_cast<void>(aggregate().utilityForFileAtPath(folder.write("notes.txt")));
    EXPECT_EQ(tool.runs(), 1U);
}

TEST(UtilityForFile, EqualsAskingTheUtilitiesOneByOne) {
    const test::ReportingTool tool(kNoReport);
    const test::CardTree card{"PRIVATE/AVCHD/BDMV/STREAM/00001.MTS", "a.mov", "a.txt", "b"};
    for (const char* name :
         {"PRIVATE/AVCHD/BDMV/STREAM/00001.MTS", "a.mov", "a.txt", "b", "none"}) {
        const FilePath file = card / name;
        const QRXHDMediaVolumeUtilityObject* expected =
            &QRXHDMediaVolumeUtilityObject::sharedInstance();
        for (const auto* utility : QRXHDMediaVolumeAggregate::hdUtilitiesOrderedByPrecedent()) {
            if (utility->filePathMatchesVolumeStructure(file)) {
                expected = utility;
                break;
            }
        }
        EXPECT_EQ(&aggregate().utilityForFileAtPath(file), expected) << name;
    }
}

// ---- titles and types

TEST(UtilityWithTitle, IsTheSharedObject) {
    EXPECT_EQ(aggregate().utilityWithTitle("Sony NXCAM AVCHD"),
              &QRXSonyAVCHDUtility::sharedInstance());
    for (auto* utility : QRXHDMediaVolumeAggregate::allDefinedHDUtilities()) {
        EXPECT_EQ(aggregate().utilityWithTitle(utility->volumeTitle()), utility);
    }
}

TEST(UtilityWithTitle, IsNullForTitlesOfTheBaseTheParentsAndUnknownOnes) {
    for (const char* title : {"Volume", "AVCHD", "XDCAM", "", "sony nxcam avchd", "MXF "}) {
        EXPECT_EQ(aggregate().utilityWithTitle(title), nullptr) << title;
    }
}

TEST(UtilityForVolumeType, IsANewObjectOfThatType) {
    for (std::uint64_t type = 0; type <= 14; ++type) {
        SCOPED_TRACE(type);
        const auto utility = aggregate().utilityForVolumeType(type);
        EXPECT_EQ(utility->volumeType(), type);
        const auto* const shared = aggregate().utilityWithTitle(utility->volumeTitle());
        ASSERT_NE(shared, nullptr);
        EXPECT_NE(utility.get(), shared);
        EXPECT_EQ(classOf(*utility), classOf(*shared));
    }
    EXPECT_EQ(classOf(*aggregate().utilityForVolumeType(0)),
              std::type_index(typeid(QRXPanasonicP2Utility)));
}

TEST(UtilityForVolumeType, IsANewBaseObjectForAnyOtherType) {
    for (const std::uint64_t type :
         {std::uint64_t{15}, std::uint64_t{16}, std::uint64_t{17}, ~std::uint64_t{0}}) {
        SCOPED_TRACE(type);
        const auto utility = aggregate().utilityForVolumeType(type);
        EXPECT_EQ(classOf(*utility), std::type_index(typeid(QRXHDMediaVolumeUtilityObject)));
        EXPECT_NE(utility.get(), &QRXHDMediaVolumeUtilityObject::sharedInstance());
    }
}

TEST(UtilityIsNativeQuickTime, HoldsForItsSubclassesAndForP2) {
    EXPECT_TRUE(aggregate().utilityIsNativeQT(QRXGoProUtility()));
    EXPECT_TRUE(aggregate().utilityIsNativeQT(QRXCanonEOSUtility()));
    EXPECT_TRUE(aggregate().utilityIsNativeQT(QRXQTUtility()));
    EXPECT_TRUE(aggregate().utilityIsNativeQT(QRXPanasonicP2Utility()));
    EXPECT_FALSE(aggregate().utilityIsNativeQT(QRXCanonXFUtility()));
    EXPECT_FALSE(aggregate().utilityIsNativeQT(QRXMXFUtility()));
    EXPECT_FALSE(aggregate().utilityIsNativeQT(QRXCanonAVCHDUtility()));
    EXPECT_FALSE(aggregate().utilityIsNativeQT(QRXXDCAMUtility()));
    EXPECT_FALSE(aggregate().utilityIsNativeQT(QRXHDMediaVolumeUtilityObject()));
}

// ---- volume dictionaries

class VolumeDictionaries : public testing::Test {
protected:
    test::ReportingTool tool_{kNoReport};
    test::CardTree card_{"PRIVATE/AVCHD/BDMV/STREAM/00001.MTS",
                         "PRIVATE/AVCHD/BDMV/STREAM/00002.MTS", "PRIVATE/AVCHD/CANON/",
                         "AVCHD/BDMV/STREAM/00003.MTS", "notes.txt"};
    FilePath canonClip_ = card_ / "PRIVATE/AVCHD/BDMV/STREAM/00001.MTS";
    FilePath sonyClip_ = card_ / "AVCHD/BDMV/STREAM/00003.MTS";
};

TEST_F(VolumeDictionaries, LeaveOutFoldersMissingAndUnclaimedFiles) {
    const FilePaths paths{card_.path(),        sonyClip_,  card_ / "AVCHD/BDMV/STREAM/00009.MTS",
                          card_ / "notes.txt", canonClip_, sonyClip_};
    const auto claimed =
        aggregate().hdVolumeDictionariesForListOfFileSystemPaths(paths, std::nullopt);
    EXPECT_EQ(claimed, (std::vector<VolumeDictionary>{{sonyClip_, "Sony NXCAM AVCHD"},
                                                      {canonClip_, "Canon AVCHD"},
                                                      {sonyClip_, "Sony NXCAM AVCHD"}}));
    EXPECT_EQ(aggregate().hdFilePathsInListOfFileSystemPaths(paths),
              (FilePaths{sonyClip_, canonClip_, sonyClip_}));
}

TEST_F(VolumeDictionaries, ConstraintKeepsExactlyTheClassesOfItsObjects) {
    const FilePaths paths{canonClip_, sonyClip_};
    const QRXCanonAVCHDUtility canon;
    const QRXAVCHDUtility parent;
    EXPECT_EQ(aggregate().hdFilePathsInListOfFileSystemPaths(paths, {{&canon}}),
              FilePaths{canonClip_});
    EXPECT_TRUE(aggregate().hdFilePathsInListOfFileSystemPaths(paths, {{&parent}}).empty());
    EXPECT_TRUE(aggregate().hdFilePathsInListOfFileSystemPaths(paths, {{nullptr}}).empty());
}

TEST_F(VolumeDictionaries, EmptyConstraintKeepsNothing) {
    using None = std::vector<const QRXHDMediaVolumeUtilityObject*>;
    EXPECT_TRUE(aggregate().hdFilePathsInListOfFileSystemPaths({canonClip_}, None{}).empty());
    EXPECT_TRUE(aggregate().hdFilePathsInListOfFileSystemPaths({}).empty());
}

}  // namespace
}  // namespace qrx
