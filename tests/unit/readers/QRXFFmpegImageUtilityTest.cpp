#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "platform/fake/FakeProcessRunner.h"
#include "platform/fake/RecordingSystemLog.h"
#include "platform/ports/Services.h"
#include "readers/QRXFFmpegImageUtility.h"
#include "support/TemporaryFolder.h"

namespace qrx {
namespace {

using platform::FakeProcessRunner;
using platform::ProcessRequest;
using Strings = std::vector<std::string>;

class FFmpegStill : public testing::Test {
protected:
    FFmpegStill() {
        services_->systemLog = log_;
        services_->processRunner = runner_;
        runner_->answerBy(tool_, [](const ProcessRequest& request) {
            std::ofstream(request.arguments.back()) << "picture";
            return FakeProcessRunner::wrote("");
        });
        utility_.setFfmpegPath(tool_);
    }

    [[nodiscard]] Strings onlyArguments() const {
        const auto requests = runner_->requests();
        return requests.size() == 1 ? requests.front().arguments : Strings{"not one request"};
    }

    platform::ScopedServices services_;
    test::TemporaryFolder folder_;
    std::shared_ptr<platform::RecordingSystemLog> log_ =
        std::make_shared<platform::RecordingSystemLog>();
    std::shared_ptr<FakeProcessRunner> runner_ = std::make_shared<FakeProcessRunner>();
    std::string tool_ = folder_.write("tool");
    QRXFFmpegImageUtility utility_;
};

TEST_F(FFmpegStill, AsksForOneSecondAsPictures) {
    const auto image = utility_.createImageFileForMovie("/card/clip.mov", folder_.path());
    EXPECT_EQ(image, folder_ / "clip.movmovieImage.jpg");
    EXPECT_EQ(onlyArguments(), (Strings{"-i", "/card/clip.mov", "-r", "1", "-t", "00:00:01", "-f",
                                        "image2", image}));
    EXPECT_EQ(test::fileContents(image), "picture");
}

TEST_F(FFmpegStill, HasANameOfItsOwn) {
    static_cast<void>(folder_.write("clip.movmovieImage.jpg", "old"));
    const auto image = utility_.createImageFileForMovie("/card/clip.mov", folder_.path());
    EXPECT_EQ(image, folder_ / "clip.movmovieImage-2.jpg");
    EXPECT_EQ(onlyArguments().back(), image);
    EXPECT_EQ(test::fileContents(folder_ / "clip.movmovieImage.jpg"), "old");
}

TEST_F(FFmpegStill, KeepsSlashesAsTheyAre) {
    const auto image = utility_.createImageFileForMovie("/card/clip.mov/", folder_ / "");
    EXPECT_EQ(image, (folder_ / "") + "/clip.movmovieImage.jpg");
}

TEST_F(FFmpegStill, KeptThePathIsAnsweredWhetherOrNotThereIsAPicture) {
    utility_.setFfmpegPath(folder_ / "missing");
    EXPECT_EQ(utility_.createImageFileForMovie("/card/clip.mov", folder_.path()),
              folder_ / "clip.movmovieImage.jpg");
    EXPECT_TRUE(runner_->requests().empty());
    EXPECT_TRUE(log_->notices().empty());

    runner_->answer(tool_, FakeProcessRunner::ended(1));
    utility_.setFfmpegPath(tool_);
    const auto image = utility_.createImageFileForMovie("/card/100%d.mov", folder_.path());
    EXPECT_EQ(image, folder_ / "100%d.movmovieImage.jpg");
    EXPECT_FALSE(std::filesystem::exists(image));
}

TEST_F(FFmpegStill, AToolThatCannotBeStartedIsLogged) {
    const auto broken = folder_.write("broken");
    utility_.setFfmpegPath(broken);
    EXPECT_EQ(utility_.createImageFileForMovie("/card/clip.mov", folder_.path()),
              folder_ / "clip.movmovieImage.jpg");
    EXPECT_EQ(log_->notices(), Strings{"Ex"});
}

TEST_F(FFmpegStill, OfAPercentNameIsWrittenAsideAndRenamed) {
    const auto image = utility_.createImageFileForMovie("/card/50%d.mov", folder_.path());
    EXPECT_EQ(image, folder_ / "50%d.movmovieImage.jpg");
    EXPECT_EQ(test::fileContents(image), "picture");
    auto arguments = onlyArguments();
    const std::string aside = arguments.back();
    arguments.pop_back();
    EXPECT_EQ(arguments,
              (Strings{"-i", "/card/50%d.mov", "-r", "1", "-t", "00:00:01", "-f", "image2"}));
    EXPECT_TRUE(aside.starts_with(folder_ / "still%x-")) << aside;
    EXPECT_FALSE(std::filesystem::exists(aside));
}

TEST_F(FFmpegStill, InAPercentFolderIsWrittenAsideToo) {
    const auto folder = folder_.makeFolder("take %03d");
    const auto image = utility_.createImageFileForMovie("/card/clip.mov", folder);
    EXPECT_EQ(image, folder + "/clip.movmovieImage.jpg");
    EXPECT_EQ(test::fileContents(image), "picture");
    EXPECT_TRUE(onlyArguments().back().starts_with(folder + "/still%x-"));
}

TEST_F(FFmpegStill, IsNeverAskedOfAFifoOrDevice) {
    const auto fifo = folder_ / "fifo.mov";
    ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
    EXPECT_EQ(utility_.createImageFileForMovie(fifo, folder_.path()),
              folder_ / "fifo.movmovieImage.jpg");
    static_cast<void>(utility_.createImageFileForMovie("/dev/zero", folder_.path()));
    EXPECT_TRUE(runner_->requests().empty());
}

}  // namespace
}  // namespace qrx
