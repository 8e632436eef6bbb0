#include <chrono>
#include <filesystem>
#include <memory>
#include <string>
#include <system_error>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include "platform/fake/FakeProcessRunner.h"
#include "platform/fake/RecordingSystemLog.h"
#include "platform/linux/PosixProcessRunner.h"
#include "platform/ports/Services.h"
#include "readers/QRXFFmpegTerminalWrapper.h"
#include "support/TemporaryFolder.h"

namespace qrx {
namespace {

using platform::FakeProcessRunner;
using Strings = std::vector<std::string>;

constexpr const char* kReport =
    "Input #0, mov, from 'a.mov':\n"
    "  Duration: 00:01:02.03, start: 0.000000, bitrate: 1234 kb/s\n"
    "  Stream #0:0: Video: h264, yuv420p, 1920x1080 [SAR 1:1 DAR 16:9], 5000 kb/s, 25 fps, 25 tbr\n"
    "  Stream #0:1: Audio: aac, 48000 Hz, stereo, 128 kb/s\n"
    "  Stream #0:2: Audio: aac, 48000 Hz, stereo, 128 kb/s\n"
    "At least one output file must be specified\n";

class FFmpegTerminalWrapper : public testing::Test {
protected:
    FFmpegTerminalWrapper() {
        services_->systemLog = log_;
        services_->ffmpegPath.clear();
    }

    platform::ScopedServices services_;
    test::TemporaryFolder folder_;
    std::string movie_ = folder_.write("a.mov");
    std::shared_ptr<platform::RecordingSystemLog> log_ =
        std::make_shared<platform::RecordingSystemLog>();
};

/// The tool answers what the test says.
class WithAFakeTool : public FFmpegTerminalWrapper {
protected:
    WithAFakeTool() {
        services_->processRunner = runner_;
        wrapper_.setFfmpegPath(tool_);
    }

    std::shared_ptr<FakeProcessRunner> runner_ = std::make_shared<FakeProcessRunner>();
    std::string tool_ = folder_.write("tool");
    QRXFFmpegTerminalWrapper wrapper_;
};

void expectNothingFound(const QRXMetadataWrapper& metadata) {
    EXPECT_EQ(metadata.metadataKeys().size(), 25U);
    for (const auto& key : metadata.metadataKeys()) {
        EXPECT_EQ(key->keyValue(), QRXMediaMetadataNotFound) << key->keyIdentifier().value();
    }
}

TEST_F(WithAFakeTool, HandsItTheOptionAndThePath) {
    runner_->answer(tool_, FakeProcessRunner::wrote("", kReport));
    EXPECT_EQ(wrapper_.runFFmpegInfoCommandForVideoFile(movie_), kReport);
    const auto requests = runner_->requests();
    ASSERT_EQ(requests.size(), 1U);
    EXPECT_EQ(requests[0].program, tool_);
    EXPECT_EQ(requests[0].arguments, (Strings{"-i", movie_}));
    EXPECT_EQ(requests[0].standardError, platform::StandardError::captured);
}

TEST_F(WithAFakeTool, HandsItAnyPathUnchanged) {
    runner_->answer(tool_, FakeProcessRunner::wrote("", kReport));
    const auto odd = folder_.write("it's \"a\" $(x) `y`;\n50%d -i.mov");
    static_cast<void>(wrapper_.runFFmpegInfoCommandForVideoFile(odd));
    ASSERT_EQ(runner_->requests().size(), 1U);
    EXPECT_EQ(runner_->requests()[0].arguments, (Strings{"-i", odd}));
}

TEST_F(WithAFakeTool, ReadsStandardOutputFirst) {
    runner_->answer(tool_, FakeProcessRunner::wrote("out", "err"));
    EXPECT_EQ(wrapper_.runFFmpegInfoCommandForVideoFile(movie_), "out");
}

TEST_F(WithAFakeTool, ReadsStandardErrorWhenStandardOutputIsEmpty) {
    runner_->answer(tool_, FakeProcessRunner::wrote("", "err"));
    EXPECT_EQ(wrapper_.runFFmpegInfoCommandForVideoFile(movie_), "err");
}

TEST_F(WithAFakeTool, ASilentToolGivesAnEmptyReport) {
    runner_->answer(tool_, FakeProcessRunner::wrote("", ""));
    EXPECT_EQ(wrapper_.runFFmpegInfoCommandForVideoFile(movie_), "");
    expectNothingFound(wrapper_.metadataWrapperForVideoFile(movie_));
}

TEST_F(WithAFakeTool, BytesThatAreNotUtf8LeaveTheReportUsable) {
    runner_->answer(tool_, FakeProcessRunner::wrote("", "caf\xE9\n" + std::string(kReport)));
    const auto metadata = wrapper_.metadataWrapperForVideoFile(movie_);
    EXPECT_EQ(metadata.valueForKey(QRXMediaMetadataVideoDurationKey), "00:01:02.03");
}

TEST_F(WithAFakeTool, AToolThatCannotBeStartedIsLoggedAndGivesNothing) {
    EXPECT_EQ(wrapper_.runFFmpegInfoCommandForVideoFile(movie_), std::nullopt);
    EXPECT_EQ(log_->notices(), Strings{"Ex"});
    expectNothingFound(wrapper_.metadataWrapperForVideoFile(movie_));
}

TEST_F(WithAFakeTool, ACancelledRunGivesNothingWithoutAWord) {
    runner_->cancelAll();
    EXPECT_EQ(wrapper_.runFFmpegInfoCommandForVideoFile(movie_), std::nullopt);
    expectNothingFound(wrapper_.metadataWrapperForVideoFile(movie_));
    EXPECT_TRUE(log_->notices().empty());
}

TEST_F(WithAFakeTool, AMissingToolIsNotStarted) {
    wrapper_.setFfmpegPath(folder_ / "missing");
    EXPECT_EQ(wrapper_.runFFmpegInfoCommandForVideoFile(movie_), std::nullopt);
    expectNothingFound(wrapper_.metadataWrapperForVideoFile(movie_));
    EXPECT_TRUE(runner_->requests().empty());
    EXPECT_TRUE(log_->notices().empty());
}

TEST_F(WithAFakeTool, TheToolOfTheHostIsRun) {
    services_->ffmpegPath = tool_;
    runner_->answer(tool_, FakeProcessRunner::wrote("", "err"));
    EXPECT_EQ(QRXFFmpegTerminalWrapper().runFFmpegInfoCommandForVideoFile(movie_), "err");
}

TEST_F(WithAFakeTool, AMissingFileIsLeftToTheTool) {
    runner_->answer(tool_, FakeProcessRunner::wrote("", "No such file or directory"));
    EXPECT_EQ(wrapper_.runFFmpegInfoCommandForVideoFile(folder_ / "missing.mov"),
              "No such file or directory");
}

TEST_F(WithAFakeTool, IsNeverShownAFifo) {
    const auto fifo = folder_ / "fifo.mov";
    ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
    const auto link = folder_.link("link.mov", fifo);
    for (const auto& path : {fifo, link}) {
        EXPECT_EQ(wrapper_.runFFmpegInfoCommandForVideoFile(path), std::nullopt);
        expectNothingFound(wrapper_.metadataWrapperForVideoFile(path));
    }
    EXPECT_TRUE(runner_->requests().empty());
}

TEST_F(WithAFakeTool, IsNeverShownASocket) {
    const auto path = folder_ / "socket.mov";
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    ASSERT_LT(path.size(), sizeof address.sun_path);
    path.copy(address.sun_path, path.size());
    const int socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    ASSERT_GE(socket, 0);
    ASSERT_EQ(::bind(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    EXPECT_EQ(wrapper_.runFFmpegInfoCommandForVideoFile(path), std::nullopt);
    EXPECT_TRUE(runner_->requests().empty());
    ::close(socket);
}

TEST_F(WithAFakeTool, IsNeverShownADevice) {
    EXPECT_EQ(wrapper_.runFFmpegInfoCommandForVideoFile("/dev/zero"), std::nullopt);
    EXPECT_TRUE(runner_->requests().empty());
}

TEST_F(WithAFakeTool, IsNeverShownAPathThatItWouldReadOtherwise) {
    EXPECT_EQ(wrapper_.runFFmpegInfoCommandForVideoFile(movie_ + std::string("\0.mov", 5)),
              std::nullopt);
    EXPECT_TRUE(runner_->requests().empty());
}

TEST_F(WithAFakeTool, TheReportBecomesMetadata) {
    runner_->answer(tool_, FakeProcessRunner::wrote("", kReport));
    const auto metadata = wrapper_.metadataWrapperForVideoFile(movie_);
    EXPECT_EQ(metadata.valueForKey(QRXMediaMetadataVideoDurationKey), "00:01:02.03");
    EXPECT_EQ(metadata.valueForKey(QRXMediaMetadataVideoBitRateKey), "1234 kb");
    EXPECT_EQ(metadata.valueForKey(QRXMediaMetadataVideoCodecTitleKey), "h264");
    EXPECT_EQ(metadata.valueForKey(QRXMediaMetadataCodecDimensionsKey), "1920x1080");
    EXPECT_EQ(metadata.valueForKey(QRXMediaMetadataCodecDimensionsDescriptionKey), "1920x1080");
    EXPECT_EQ(metadata.valueForKey(QRXMediaMetadataCodecWidthKey), "1920");
    EXPECT_EQ(metadata.valueForKey(QRXMediaMetadataCodecHeightKey), "1080");
    EXPECT_EQ(metadata.valueForKey(QRXMediaMetadataVideoFrameRate), " 25 ");
    EXPECT_EQ(metadata.valueForKey(QRXMediaMetadataAudioChannelsKey), "2");
    EXPECT_EQ(metadata.valueForKey(QRXMediaMetadataAudioCodecTitleKey), "aac");
    EXPECT_EQ(metadata.valueForKey(QRXMediaMetadataAudioBitRateKey), " 48000 ");
    EXPECT_EQ(metadata.valueForKey(QRXMediaMetadataUMIDKey), std::nullopt);
    EXPECT_EQ(metadata.metadataKeys().size(), 25U);
}

TEST_F(WithAFakeTool, TheReportIsLoggedForDebugging) {
    runner_->answer(tool_, FakeProcessRunner::wrote("", kReport));
    static_cast<void>(wrapper_.metadataWrapperForVideoFile(movie_));
    EXPECT_EQ(log_->debugTexts(), Strings{kReport});
    EXPECT_TRUE(log_->notices().empty());
}

TEST_F(WithAFakeTool, AReportWithoutAnInputIsLoggedAndGivesNothing) {
    runner_->answer(tool_, FakeProcessRunner::wrote("", "a.txt: Invalid data found"));
    expectNothingFound(wrapper_.metadataWrapperForVideoFile(movie_));
    EXPECT_EQ(log_->debugTexts(), Strings{"a.txt: Invalid data found"});
}

TEST_F(WithAFakeTool, EveryCallRunsItOnce) {
    runner_->answer(tool_, FakeProcessRunner::wrote("", kReport));
    static_cast<void>(wrapper_.metadataWrapperForVideoFile(movie_));
    static_cast<void>(wrapper_.metadataWrapperForVideoFile(movie_));
    EXPECT_EQ(runner_->requests().size(), 2U);
}

TEST_F(WithAFakeTool, KeptTheNumberOfAudioChannelsIsAlwaysZero) {
    runner_->answer(tool_, FakeProcessRunner::wrote("", kReport));
    EXPECT_EQ(wrapper_.numberOfAudioChannelsInVideoFile(movie_), 0U);
    EXPECT_TRUE(runner_->requests().empty());
}

TEST_F(WithAFakeTool, FieldsAreTakenAsTheReportReaderTakesThem) {
    EXPECT_EQ(wrapper_.valueFromResult("Duration: 00:01:02.03, start: 0.000000", "Duration: ", ","),
              "00:01:02.03");
    EXPECT_EQ(wrapper_.valueFromResult("start: 0.000000,", "Duration: ", ","), std::nullopt);
    EXPECT_EQ(wrapper_.valueFromResult("Duration: 1", "Duration: ", ","), std::nullopt);
}

/// The tool is a shell script, run by the real runner.
class WithAScript : public FFmpegTerminalWrapper {
protected:
    std::string tool(const std::string& script) const {
        std::string path = folder_.write("tool.sh", "#!/bin/sh\n" + script);
        std::filesystem::permissions(path, std::filesystem::perms::owner_all);
        return path;
    }
    std::string toolThatReports(const std::string& more) const {
        const auto report = folder_.write("report.txt", kReport);
        return tool("cat '" + report + "' >&2\n" + more);
    }
    std::optional<std::string> reportOf(const std::string& toolPath) const {
        QRXFFmpegTerminalWrapper wrapper;
        wrapper.setFfmpegPath(toolPath);
        return wrapper.runFFmpegInfoCommandForVideoFile(movie_);
    }
    void useTimeLimit(std::chrono::milliseconds limit) {
        platform::ToolLimits limits;
        limits.timeLimit = limit;
        services_->processRunner = std::make_shared<platform::PosixProcessRunner>(limits);
    }
};

TEST_F(WithAScript, SeesItsTwoArguments) {
    EXPECT_EQ(reportOf(tool("printf '%s|' \"$#\" \"$@\" >&2\n")), "2|-i|" + movie_ + "|");
}

TEST_F(WithAScript, ThatFailsIsReadAllTheSame) {
    EXPECT_EQ(reportOf(toolThatReports("exit 1\n")), kReport);
    EXPECT_TRUE(log_->notices().empty());
}

TEST_F(WithAScript, ThatCrashesIsReadAllTheSame) {
    EXPECT_EQ(reportOf(toolThatReports("kill -SEGV $$\n")), kReport);
}

TEST_F(WithAScript, ThatPrefersStandardOutputIsReadThere) {
    EXPECT_EQ(reportOf(toolThatReports("echo out\n")), "out\n");
}

TEST_F(WithAScript, ThatWritesMoreThanAPipeHoldsDoesNotBlock) {
    const auto report = reportOf(toolThatReports("head -c 20000000 /dev/zero >&2\n"));
    ASSERT_TRUE(report.has_value());
    EXPECT_EQ(report->size(), platform::ProcessRunner::kKeptBytesPerPipe);
    EXPECT_TRUE(report->starts_with(kReport));
}

TEST_F(WithAScript, ThatNeverStopsWritingIsEndedByTheTimeLimit) {
    useTimeLimit(std::chrono::milliseconds(300));
    EXPECT_EQ(reportOf(toolThatReports("while :; do echo more; done\n")), std::nullopt);
}

TEST_F(WithAScript, ThatIsSlowIsEndedByTheTimeLimit) {
    useTimeLimit(std::chrono::milliseconds(300));
    EXPECT_EQ(reportOf(toolThatReports("sleep 1000\n")), std::nullopt);
    EXPECT_TRUE(log_->notices().empty());
}

TEST_F(WithAScript, ThatIsSlowIsWaitedForWithoutATimeLimit) {
    EXPECT_EQ(reportOf(toolThatReports("sleep 0.3\n")), kReport);
}

TEST_F(WithAScript, ThatIsNoProgramIsLogged) {
    EXPECT_EQ(reportOf(folder_.write("not-executable", "#!/bin/sh\n")), std::nullopt);
    EXPECT_EQ(reportOf(folder_.makeFolder("folder")), std::nullopt);
    EXPECT_EQ(log_->notices(), (Strings{"Ex", "Ex"}));
}

TEST_F(WithAScript, GetsNoVariablesThatWouldRedirectItsReport) {
    ::setenv("FFREPORT", "file=/dev/null", 1);
    EXPECT_EQ(reportOf(tool("echo \"FFREPORT=${FFREPORT-none}\"\n")), "FFREPORT=none\n");
    ::unsetenv("FFREPORT");
}

}  // namespace
}  // namespace qrx
