#include <cstdlib>
#include <ctime>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "platform/fake/FakeMainThread.h"
#include "platform/fake/RecordingSystemLog.h"
#include "platform/ports/Services.h"
#include "support/BoxWriter.h"
#include "support/TemporaryFolder.h"
#include "volumes/QRXQTUtility.h"

namespace qrx {
namespace {

using test::box;
using test::movieHeader;
using test::TemporaryFolder;
using test::track;

constexpr MovieTime kAfternoon = 1'299'333'729;  // 2011-03-05 14:02:09 UTC

std::string movieWith(const std::string& tracks) {
    return test::fileType("mp42") + box("moov", movieHeader() + tracks);
}

/// Local time is GMT while it lives.
class GmtZone {
public:
    GmtZone() : before_(std::getenv("TZ") == nullptr ? "" : std::getenv("TZ")) { set("GMT"); }
    ~GmtZone() { set(before_); }
    GmtZone(const GmtZone&) = delete;
    GmtZone& operator=(const GmtZone&) = delete;

private:
    static void set(const std::string& zone) {
        if (zone.empty()) {
            ::unsetenv("TZ");
        } else {
            ::setenv("TZ", zone.c_str(), 1);
        }
        ::tzset();
    }
    std::string before_;
};

/// A main thread on which nothing can be done.
class FailingMainThread final : public platform::MainThread {
public:
    [[nodiscard]] bool isCurrent() const override { return false; }
    void runAndWait(const std::function<void()>&) override {
        throw std::runtime_error("no main thread");
    }
    void waitServing(const std::function<bool()>&) override {
        throw std::runtime_error("no main thread");
    }
    void wake() override {}
    int serve() override { return 0; }
    void terminate() override {}
};

class QTUtility : public testing::Test {
protected:
    QTUtility() {
        services_->mainThread = mainThread_;
        services_->systemLog = log_;
    }

    [[nodiscard]] bool claims(const std::string& path) const {
        return utility_.filePathMatchesVolumeStructure(path);
    }
    [[nodiscard]] bool claimsContents(const std::string& name, const std::string& contents) const {
        return claims(folder_.write(name, contents));
    }
    void failOnMainThread() { services_->mainThread = std::make_shared<FailingMainThread>(); }

    TemporaryFolder folder_;
    std::shared_ptr<platform::FakeMainThread> mainThread_ =
        std::make_shared<platform::FakeMainThread>();
    std::shared_ptr<platform::RecordingSystemLog> log_ =
        std::make_shared<platform::RecordingSystemLog>();
    QRXQTUtility utility_;

private:
    platform::ScopedServices services_;
};

TEST_F(QTUtility, Identity) {
    EXPECT_EQ(utility_.volumeType(), 11U);
    EXPECT_EQ(utility_.volumeTitle(), "Apple QuickTime");
    EXPECT_EQ(QRXQTUtility::volumeUtility()->volumeType(), 11U);
    EXPECT_NE(QRXQTUtility::volumeUtility().get(), &QRXQTUtility::sharedInstance());
    EXPECT_EQ(&QRXQTUtility::sharedInstance(), &QRXQTUtility::sharedInstance());
}

TEST_F(QTUtility, AMovIsClaimedWithoutBeingOpened) {
    EXPECT_TRUE(claims("/nowhere/clip.mov"));
    EXPECT_TRUE(claims("/nowhere/clip.MOV"));
    EXPECT_TRUE(claims("/nowhere/clip.MoV"));
    EXPECT_TRUE(claims(".mov"));
    EXPECT_TRUE(claimsContents("text.mov", "text"));
    EXPECT_TRUE(claims(folder_.makeFolder("folder.mov")));
    EXPECT_EQ(mainThread_->timesRun, 0);
}

TEST_F(QTUtility, AFifoCalledMovIsClaimedByItsNameAlone) {
    const std::string path = folder_ / "fifo.mov";
    ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
    EXPECT_TRUE(claims(path));
}

TEST_F(QTUtility, AnExtensionOfFilesWithoutVideoIsRejectedUnopened) {
    EXPECT_FALSE(claimsContents("movie.xml", movieWith(track("vide"))));
    EXPECT_FALSE(claimsContents("movie.txt", movieWith(track("vide"))));
    EXPECT_EQ(mainThread_->timesRun, 0);
}

TEST_F(QTUtility, VideoOrSoundMakesAMovie) {
    EXPECT_TRUE(claimsContents("a.mp4", movieWith(track("vide") + track("soun"))));
    EXPECT_TRUE(claimsContents("b.mp4", movieWith(track("vide"))));
    EXPECT_TRUE(claimsContents("c.m4a", movieWith(track("soun"))));
    EXPECT_TRUE(claimsContents("d.3gp", movieWith(track("tmcd") + track("soun"))));
    EXPECT_EQ(mainThread_->timesRun, 4);
}

TEST_F(QTUtility, OtherTracksAloneDoNot) {
    EXPECT_FALSE(claimsContents("a.mp4", movieWith("")));
    EXPECT_FALSE(claimsContents("b.mp4", movieWith(track("tmcd"))));
    EXPECT_FALSE(claimsContents("c.mp4", movieWith(track("text") + track("meta"))));
}

TEST_F(QTUtility, WhatDoesNotOpenIsNotClaimed) {
    EXPECT_FALSE(claims("/nowhere/clip.mp4"));
    EXPECT_FALSE(claims(""));
    EXPECT_FALSE(claimsContents("clip.mp4", "no movie at all"));
    EXPECT_FALSE(claims(folder_.makeFolder("folder.mp4")));
    const std::string fifo = folder_ / "fifo.mp4";
    ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
    EXPECT_FALSE(claims(fifo));
    EXPECT_FALSE(claims("/dev/zero"));
}

TEST_F(QTUtility, ThePathTestNamesItsSteps) {
    const std::string movie = folder_.write("a.mp4", movieWith(track("vide")));
    const std::string text = folder_.write("b.mp4", "text");
    const auto decisivePhrase = [&](const std::string& file) {
        ExaminedPath path(file);
        const StructureFinding finding = utility_.findStructure(path);
        return finding.decisive == nullptr ? std::string("all hold")
                                           : std::string(finding.decisive->phrase);
    };
    EXPECT_EQ(decisivePhrase("/x/a.mov"), "the file's name ends in .MOV");
    EXPECT_EQ(decisivePhrase("/x/a.xml"),
              "the file's name has no extension of files without video");
    EXPECT_EQ(decisivePhrase(text), "the file opens as a movie with a video or a sound track");
    EXPECT_EQ(decisivePhrase(movie), "all hold");
}

TEST_F(QTUtility, OneExaminationOpensTheFileOnce) {
    const std::string file = folder_.write("a.mp4", movieWith(track("vide")));
    ExaminedPath path(file);
    EXPECT_TRUE(utility_.examinedPathMatches(path));
    EXPECT_TRUE(QRXQTUtility().examinedPathMatches(path));
    EXPECT_EQ(mainThread_->timesRun, 1);
    EXPECT_TRUE(claims(file));
    EXPECT_EQ(mainThread_->timesRun, 2);
}

TEST_F(QTUtility, AProbeThatRaisesIsLoggedAndDoesNotMatch) {
    failOnMainThread();
    EXPECT_FALSE(claimsContents("a.mp4", movieWith(track("vide"))));
    EXPECT_EQ(log_->notices(), std::vector<std::string>{"QRXQT Exception"});
    EXPECT_FALSE(utility_.pathMatches());
    EXPECT_TRUE(claims("/nowhere/a.mov"));
}

TEST_F(QTUtility, TheProbeSetsPathMatchesAndThePathTestClearsIt) {
    const std::string movie = folder_.write("a.mp4", movieWith(track("vide")));
    EXPECT_FALSE(utility_.pathMatches());
    EXPECT_TRUE(utility_.attemptToAllocateAQTMovieFromFile(movie));
    EXPECT_TRUE(utility_.pathMatches());
    EXPECT_TRUE(claims(movie));
    EXPECT_FALSE(utility_.pathMatches());
}

TEST_F(QTUtility, AProbeThatFindsNothingLeavesPathMatchesAsItIs) {
    utility_.setPathMatches(true);
    EXPECT_FALSE(utility_.attemptToAllocateAQTMovieFromFile("/nowhere/a.mp4"));
    EXPECT_TRUE(utility_.pathMatches());
}

TEST_F(QTUtility, WhatAnEarlierProbeLeftInPathMatchesIsNotTheAnswer) {
    utility_.setPathMatches(true);
    EXPECT_FALSE(claims("/nowhere/a.mp4"));
    EXPECT_FALSE(utility_.pathMatches());
}

TEST_F(QTUtility, TwoThreadsNeverReadEachOthersAnswer) {
    const std::string movie = folder_.write("a.mp4", movieWith(track("vide")));
    const std::string text = folder_.write("b.mp4", "text");
    QRXQTUtility& shared = QRXQTUtility::sharedInstance();
    std::atomic<int> wrong = 0;
    const auto ask = [&](const std::string& file, bool expected) {
        for (int i = 0; i < 200; ++i) {
            if (shared.filePathMatchesVolumeStructure(file) != expected) ++wrong;
        }
    };
    std::thread first(ask, movie, true);
    std::thread second(ask, text, false);
    first.join();
    second.join();
    EXPECT_EQ(wrong, 0);
}

TEST_F(QTUtility, TheOlderProbeTellsByPathMatches) {
    utility_.openMovie(folder_.write("a.mp4", movieWith(track("soun"))));
    EXPECT_TRUE(utility_.pathMatches());
    EXPECT_TRUE(log_->notices().empty());
    utility_.setPathMatches(false);
    utility_.openMovie(folder_.write("b.mp4", movieWith(track("tmcd"))));
    EXPECT_FALSE(utility_.pathMatches());
    EXPECT_TRUE(log_->notices().empty());
}

TEST_F(QTUtility, TheOlderProbeLogsWhatDoesNotOpen) {
    utility_.openMovie("/nowhere/a.mp4");
    EXPECT_FALSE(utility_.pathMatches());
    ASSERT_EQ(log_->notices().size(), 1U);
    EXPECT_TRUE(log_->notices().front().starts_with("Error opening movie /nowhere/a.mp4, "));
}

TEST_F(QTUtility, TheMatchLockIsFree) {
    EXPECT_TRUE(utility_.matchLock().try_lock());
    utility_.matchLock().unlock();
}

TEST_F(QTUtility, KeptStartTimecodeIsZeroWhateverTheTimecodeTrackSays) {
    const std::string with = folder_.write("a.mov", movieWith(track("vide") + track("tmcd")));
    const std::string without = folder_.write("b.mov", movieWith(track("vide")));
    EXPECT_EQ(utility_.startTimecodeForVideoFile(with), "00:00:00:00");
    EXPECT_EQ(utility_.startTimecodeForVideoFile(without), "00:00:00:00");
    EXPECT_EQ(utility_.startTimecodeForVideoFile("/nowhere/a.mov"), "00:00:00:00");
}

/// The keys of `wrapper` that have a value.
std::vector<std::string> filledKeys(const QRXMetadataWrapper& wrapper) {
    std::vector<std::string> filled;
    for (const MetadataKeyDescription& row : QRXMetadataWrapper::keyDescriptionDictionary()) {
        if (wrapper.valueForKey(row.identifier)) filled.push_back(row.identifier);
    }
    return filled;
}

TEST_F(QTUtility, KeptMetadataOfAMovieThatOpensHoldsTheStartTimecodeAlone) {
    const QRXMetadataWrapper wrapper = utility_.metadataWrapperForVideoFilePath(
        folder_.write("a.mov", movieWith(track("vide", 1920, 1080))));
    EXPECT_EQ(filledKeys(wrapper), std::vector<std::string>{"QRXMediaMetadataStartTimecodeKey"});
    EXPECT_EQ(wrapper.valueForKey(QRXMediaMetadataStartTimecodeKey), "00:00:00:00");
}

TEST_F(QTUtility, MetadataOfWhatDoesNotOpenHoldsTheStartTimecodeAlone) {
    const std::vector<std::string> startOnly{"QRXMediaMetadataStartTimecodeKey"};
    EXPECT_EQ(filledKeys(utility_.metadataWrapperForVideoFilePath("/nowhere/a.mov")), startOnly);
    EXPECT_EQ(filledKeys(utility_.metadataWrapperForVideoFilePath(folder_.write("a.mov", "text"))),
              startOnly);
    failOnMainThread();
    EXPECT_EQ(filledKeys(utility_.metadataWrapperForVideoFilePath("/nowhere/a.mov")), startOnly);
}

TEST_F(QTUtility, MetadataAsksForTheStartTimecodeOfTheSubclass) {
    class Late final : public QRXQTUtility {
    public:
        [[nodiscard]] std::string startTimecodeForVideoFile(const FilePath&) const override {
            return "10:00:00:00";
        }
    };
    EXPECT_EQ(Late().metadataWrapperForVideoFilePath("/a.mov").valueForKey(
                  QRXMediaMetadataStartTimecodeKey),
              "10:00:00:00");
}

TEST_F(QTUtility, EachAttributeFillsOneKey) {
    const GmtZone gmt;
    QTMovieAttributes attributes;
    attributes.naturalSize = MovieSize{1920, 1080};
    attributes.modificationTime = kAfternoon;
    attributes.displayName = "Take 3";
    attributes.creationTime = 0;
    const QRXMetadataWrapper wrapper = utility_.metadataWrapperFromMovieAttributes(attributes);
    EXPECT_EQ(filledKeys(wrapper).size(), 4U);
    EXPECT_EQ(wrapper.valueForKey(QRXMediaMetadataCodecDimensionsDescriptionKey), "1920 x 1080");
    EXPECT_EQ(wrapper.valueForKey(QRXMediaMetadataModificationDateKey), "03-05-2011-14h-02m-09s");
    EXPECT_EQ(wrapper.valueForKey(QRXMediaMetadataVideoFileTitleKey), "Take 3");
    EXPECT_EQ(wrapper.valueForKey(QRXMediaMetadataCreationDateKey), "01-01-1970-00h-00m-00s");
}

TEST_F(QTUtility, AnAttributeThatIsMissingFillsNone) {
    EXPECT_TRUE(filledKeys(utility_.metadataWrapperFromMovieAttributes({})).empty());
    QTMovieAttributes attributes;
    attributes.displayName = "Take 3";
    EXPECT_EQ(filledKeys(utility_.metadataWrapperFromMovieAttributes(attributes)),
              std::vector<std::string>{"QRXMediaMetadataVideoFileTitleKey"});
}

TEST_F(QTUtility, SizesAreRoundedHalfToEven) {
    QTMovieAttributes attributes;
    attributes.naturalSize = MovieSize{720.5, 575.51};
    EXPECT_EQ(utility_.metadataWrapperFromMovieAttributes(attributes)
                  .valueForKey(QRXMediaMetadataCodecDimensionsDescriptionKey),
              "720 x 576");
}

TEST_F(QTUtility, ATimeThatNoCalendarReachesFillsNoKey) {
    QTMovieAttributes attributes;
    attributes.creationTime = INT64_MAX;
    EXPECT_TRUE(filledKeys(utility_.metadataWrapperFromMovieAttributes(attributes)).empty());
}

TEST_F(QTUtility, AttributesOfAMovie) {
    MovieDescription movie;
    EXPECT_FALSE(attributesOfMovie(movie).naturalSize);
    movie.naturalWidth = 640;
    movie.naturalHeight = 480;
    movie.displayName = "Take";
    movie.creationTime = 1;
    movie.modificationTime = 2;
    const QTMovieAttributes attributes = attributesOfMovie(movie);
    ASSERT_TRUE(attributes.naturalSize);
    EXPECT_EQ(attributes.naturalSize->width, 640);
    EXPECT_EQ(attributes.displayName, "Take");
    EXPECT_EQ(attributes.creationTime, 1);
    EXPECT_EQ(attributes.modificationTime, 2);
}

TEST_F(QTUtility, EverythingElseIsTheBaseObjects) {
    EXPECT_FALSE(utility_.drivePathMatchesVolumeStructure("/Volumes/X"));
    EXPECT_EQ(utility_.rootOfUniquePathIdenifier(), std::nullopt);
    EXPECT_EQ(utility_.pathComponentsIndicatingTheVolumeHasBegun(), std::nullopt);
    EXPECT_FALSE(utility_.formatDriveToMatchValidVolumeStructure(folder_.path()));
    EXPECT_EQ(utility_.uniqueIdentifierForVideoFile("/x/clip.mov"), "clip");
    EXPECT_EQ(utility_.metadataFilePathForVideoFile("/x/clip.mov"), std::nullopt);
    EXPECT_EQ(utility_.endTimecodeForVideoFile("/x/clip.mov"), std::nullopt);
    EXPECT_FALSE(utility_.clipSpanningSupported());
    EXPECT_EQ(utility_.volumePartnerIdentifierForFilePath("/x/clip.mov"), "/x");
}

}  // namespace
}  // namespace qrx
