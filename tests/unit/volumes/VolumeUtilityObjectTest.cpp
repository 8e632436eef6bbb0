#include <chrono>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "platform/fake/FakeImageCodec.h"
#include "platform/fake/FakeThumbnailer.h"
#include "platform/ports/Image.h"
#include "support/ReportingTool.h"
#include "support/TemporaryFolder.h"
#include "volumes/QRXHDMediaVolumeUtilityObject.h"

namespace qrx {
namespace {

const QRXHDMediaVolumeUtilityObject& base() {
    return QRXHDMediaVolumeUtilityObject::sharedInstance();
}

std::string reportOfRate(const std::string& rate) {
    return "Input #0, mov, from 'x':\n  Stream #0:0: Video: h264, 5000 kb/s, " + rate + "\n";
}

QRXVideoFrameRate rateReportedAs(const std::string& rate) {
    const test::ReportingTool tool(reportOfRate(rate));
    const test::TemporaryFolder folder;
    return base().framerateForVideoFile(folder.write("x.mov"));
}

TEST(VolumeUtilityObject, SharedObjectIsOneAndAliveAlways) {
    auto& first = QRXHDMediaVolumeUtilityObject::sharedInstance();
    EXPECT_EQ(&first, &QRXHDMediaVolumeUtilityObject::sharedInstance());
    std::vector<QRXHDMediaVolumeUtilityObject*> seen(8, nullptr);
    std::vector<std::thread> threads;
    threads.reserve(seen.size());
    for (auto*& slot : seen) {
        threads.emplace_back([&slot] { slot = &QRXHDMediaVolumeUtilityObject::sharedInstance(); });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(seen, std::vector<QRXHDMediaVolumeUtilityObject*>(8, &first));
}

TEST(VolumeUtilityObject, FactoryGivesANewObjectEachTime) {
    const auto one = QRXHDMediaVolumeUtilityObject::volumeUtility();
    const auto other = QRXHDMediaVolumeUtilityObject::volumeUtility();
    EXPECT_NE(one.get(), other.get());
    EXPECT_NE(one.get(), &base());
    EXPECT_EQ(one->volumeType(), 16U);
    EXPECT_EQ(one->volumeTitle(), "Volume");
}

TEST(VolumeUtilityObject, ClaimsNothing) {
    EXPECT_FALSE(base().filePathMatchesVolumeStructure("/Volumes/X/AVCHD/BDMV/STREAM/00001.MTS"));
    EXPECT_TRUE(base().structureChecks().empty());
    EXPECT_FALSE(base().drivePathMatchesVolumeStructure("/"));
    EXPECT_FALSE(base().pathContainsVideoFilesMatchingVolumeStructure("/"));
    EXPECT_FALSE(base().rootOfUniquePathIdenifier());
    EXPECT_FALSE(base().pathComponentsIndicatingTheVolumeHasBegun());
}

TEST(VolumeUtilityObject, FormattingAndReformattingDoNothing) {
    const test::CardTree card{"clip.mov"};
    EXPECT_FALSE(base().formatDriveToMatchValidVolumeStructure(card.path()));
    EXPECT_FALSE(base().reformatDrivePath(card.path()));
    EXPECT_EQ(test::fileContents(card / "clip.mov"), "");
}

TEST(VolumeUtilityObject, UniqueIdentifierIsTheNameWithoutExtension) {
    EXPECT_EQ(base().uniqueIdentifierForVideoFile("/Volumes/X/CLIP0001.MTS"), "CLIP0001");
    EXPECT_EQ(base().uniqueIdentifierForVideoFile("/Volumes/X/take.one.mov"), "take.one");
    EXPECT_EQ(base().uniqueIdentifierForVideoFile("/Volumes/X/.hidden"), ".hidden");
    EXPECT_EQ(base().uniqueIdentifierForVideoFile(""), "");
}

TEST(VolumeUtilityObject, VolumePartnerIsThePathOfTheFolder) {
    EXPECT_EQ(base().volumePartnerIdentifierForFilePath("/Volumes/X/CLIP0001.MTS"), "/Volumes/X");
    EXPECT_EQ(base().volumePartnerIdentifierForFilePath("/Volumes/X//CLIP0001.MTS"), "/Volumes/X");
    EXPECT_EQ(base().volumePartnerIdentifierForFilePath("/clip"), "/");
    EXPECT_EQ(base().volumePartnerIdentifierForFilePath("clip"), "");
}

TEST(VolumeUtilityObject, DefaultVolumeParentIsTheNameOfTheFolder) {
    EXPECT_EQ(base().defaultVolumeParentDirectoryForFileSystemPath("/Volumes/X/100/a.mov"), "100");
    EXPECT_EQ(base().defaultVolumeParentDirectoryForFileSystemPath("/a.mov"), "/");
    EXPECT_EQ(base().defaultVolumeParentDirectoryForFileSystemPath("a.mov"), "");
}

TEST(VolumeUtilityObject, SiblingsLieInOneFolder) {
    EXPECT_TRUE(base().filePathsAreVolumeSiblings({"/a/one.mov"}));
    EXPECT_TRUE(base().filePathsAreVolumeSiblings({"/a/one.mov", "/a/two.mov"}));
    EXPECT_TRUE(base().filePathsAreVolumeSiblings({"/a/one.mov", "/a//two.mov"}));
    EXPECT_FALSE(base().filePathsAreVolumeSiblings({"/a/one.mov", "/b/two.mov"}));
    EXPECT_FALSE(base().filePathsAreVolumeSiblings({"/a/one.mov", "/A/two.mov"}));
    EXPECT_FALSE(base().filePathsAreVolumeSiblings({}));
}

TEST(VolumeUtilityObject, SpannedSeriesKeepsElementsAndOrder) {
    const FilePaths files{"/a/3", "/a/1", "/a/2", "/a/1"};
    const FilePaths sorted = base().sortSpannedClipSeries(files);
    EXPECT_EQ(sorted, files);
    EXPECT_TRUE(base().sortSpannedClipSeries({}).empty());
    EXPECT_FALSE(base().clipSpanningSupported());
    EXPECT_FALSE(base().fileIsInASpannedSeries("/a/1"));
    EXPECT_FALSE(base().filesArePartOfTheSameSpanSeries(files));
    EXPECT_FALSE(base().spanPartnerIdentifierForPath("/a/1"));
}

TEST(VolumeUtilityObject, ClipHasNoSidecarNoSoundFilesAndTheDefaultTimecode) {
    EXPECT_FALSE(base().metadataFilePathForVideoFile("/a/1.mov"));
    const auto sounds = base().audioFilesForVideoFile("/a/1.mov");
    ASSERT_TRUE(sounds);
    EXPECT_TRUE(sounds->empty());
    EXPECT_EQ(base().startTimecodeForVideoFile("/a/1.mov"), "00:00:00:00");
    EXPECT_FALSE(base().endTimecodeForVideoFile("/a/1.mov"));
    EXPECT_FALSE(base().videoFileIsDropFrame("/a/1.mov"));
    EXPECT_EQ(base().sourceFilePathForReferenceFile("/a/1.mov"), "/a/1.mov");
}

TEST(VolumeUtilityObject, MetadataHasEveryKeyAndNoValue) {
    const QRXMetadataWrapper metadata = base().metadataWrapperForVideoFilePath("/a/1.mov");
    const auto table = QRXMetadataWrapper::keyDescriptionDictionary();
    EXPECT_EQ(metadata.metadataKeys().size(), table.size());
    for (const auto& row : table) {
        EXPECT_TRUE(metadata.keyExistsWithIdentifier(row.identifier)) << row.identifier;
        EXPECT_FALSE(metadata.valueForKey(row.identifier)) << row.identifier;
    }
}

TEST(VolumeUtilityObject, ClipsAreOrderedByCreationDate) {
    const test::TemporaryFolder folder;
    // Made one after the other, so that birth times ascend; modification times agree with them on
    // file systems without birth times.
    FilePaths made;
    made.reserve(3);
    for (const char* name : {"b.mov", "a.mov", "c.mov"}) {
        made.push_back(folder.write(name));
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    const FilePaths shuffled{made[2], made[0], made[1]};
    EXPECT_EQ(base().orderVolumeVideoFiles(shuffled), made);
}

TEST(VolumeUtilityObject, ExtensionIsValidUnlessItIsKnownToHoldNoVideo) {
    EXPECT_TRUE(base().filePathExtensionIsValid("/a/clip.MOV"));
    EXPECT_TRUE(base().filePathExtensionIsValid("/a/clip"));
    EXPECT_FALSE(base().filePathExtensionIsValid("/a/clip.THM"));
    EXPECT_FALSE(base().filePathExtensionIsValid("/a/notes.txt"));
}

TEST(VolumeUtilityObject, KeptExtensionNeedsNoDotToBeInvalid) {
    EXPECT_FALSE(base().filePathExtensionIsValid("/a/checkpoint"));
}

TEST(VolumeUtilityObject, FrameRateComesFromTheReport) {
    EXPECT_EQ(rateReportedAs("25 fps, 25 tbr, 90k tbn"), QRXVideoFrameRate25);
    EXPECT_EQ(rateReportedAs("29.97 fps, 29.97 tbr, 90k tbn"), QRXVideoFrameRate29_97);
}

TEST(VolumeUtilityObject, FrameRateIsUndefinedWhereTheReportNamesAnUnknownOne) {
    EXPECT_EQ(rateReportedAs("1k fps, 1k tbr, 90k tbn"), QRXVideoFrameRateUndefined);
}

TEST(VolumeUtilityObject, FrameRateIs30WhereTheReportDoesNotSay) {
    EXPECT_EQ(rateReportedAs("90k tbn"), QRXVideoFrameRate30);
    const test::ReportingTool tool("no such file");
    EXPECT_EQ(base().framerateForVideoFile("/nothing/here"), QRXVideoFrameRate30);
}

// ---- posters

/// What the codec of the test reads from a file: as many pixels in a row as the file has bytes.
class CountingCodec final : public platform::FakeImageCodec {
public:
    std::optional<platform::Image> load(const std::string& path) const override {
        const auto bytes = static_cast<std::uint32_t>(test::fileContents(path).size());
        if (bytes == 0) return std::nullopt;
        return platform::Image{bytes, 1, std::vector<std::byte>(std::size_t{bytes} * 4)};
    }
};

class Poster : public testing::Test {
protected:
    Poster() {
        services_->imageCodec = std::make_shared<CountingCodec>();
        services_->thumbnailer = thumbnailer_;
    }

    /// The poster where the tool writes `contents` as its picture; nothing written when absent.
    platform::Image posterOf(const std::optional<std::string>& contents) {
        const test::ReportingTool tool("", [&](const platform::ProcessRequest& request) {
            picture_ = request.arguments.back();
            if (contents) std::ofstream(picture_) << *contents;
        });
        return base().posterImageForFilePath(movies_.write("clip.mov"), pictures_.path());
    }

    platform::ScopedServices services_;
    std::shared_ptr<platform::FakeThumbnailer> thumbnailer_ =
        std::make_shared<platform::FakeThumbnailer>();
    test::TemporaryFolder movies_;
    test::TemporaryFolder pictures_;
    FilePath picture_;
};

TEST_F(Poster, IsTheThumbnailWhereThereIsOneAndTheToolIsNotAsked) {
    thumbnailer_->pictures[movies_ / "clip.mov"] = {3, 2, std::vector<std::byte>(3 * 2 * 4)};
    const platform::Image poster = posterOf("sixsix");
    EXPECT_EQ(poster.width, 3U);
    EXPECT_EQ(poster.height, 2U);
    EXPECT_TRUE(picture_.empty());
    const platform::FakeThumbnailer::Request asked{movies_ / "clip.mov", 250, 250};
    EXPECT_EQ(thumbnailer_->requests, std::vector{asked});
}

TEST_F(Poster, IsTheStillWhereTheThumbnailHasNoWidthOrNoHeight) {
    for (const auto& [width, height] : {std::pair{0U, 5U}, std::pair{5U, 0U}, std::pair{0U, 0U}}) {
        thumbnailer_->pictures[movies_ / "clip.mov"] = {width, height, {}};
        EXPECT_EQ(posterOf("sixsix").width, 6U);
    }
}

TEST_F(Poster, IsTheStillWhereTheThumbnailerFails) {
    thumbnailer_->before = [] { throw std::runtime_error("broken"); };
    EXPECT_EQ(posterOf("sixsix").width, 6U);
    thumbnailer_->before = [] { throw 5; };
    EXPECT_EQ(posterOf("sixsix").width, 6U);
}

TEST_F(Poster, IsTheStillOfTheToolWhichIsGoneAfterwards) {
    const platform::Image poster = posterOf("sixsix");
    EXPECT_EQ(poster.width, 6U);
    EXPECT_EQ(poster.height, 1U);
    EXPECT_EQ(picture_, pictures_ / "clip.movmovieImage.jpg");
    EXPECT_FALSE(std::filesystem::exists(picture_));
}

TEST_F(Poster, IsEmptyWhereTheToolWritesNothing) {
    EXPECT_TRUE(posterOf(std::nullopt).isEmpty());
}

TEST_F(Poster, IsEmptyWhereTheStillIsNoPictureAndTheFileIsGoneAllTheSame) {
    EXPECT_TRUE(posterOf("").isEmpty());
    EXPECT_FALSE(std::filesystem::exists(picture_));
}

TEST_F(Poster, LeavesAPictureAloneThatWasThereBefore) {
    const FilePath earlier = pictures_.write("clip.movmovieImage.jpg", "mine");
    EXPECT_EQ(posterOf("six").width, 3U);
    EXPECT_NE(picture_, earlier);
    EXPECT_EQ(test::fileContents(earlier), "mine");
}

}  // namespace
}  // namespace qrx
