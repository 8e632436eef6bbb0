#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "distributed/QRXDistributedAppController.h"
#include "platform/fake/FakeMainThread.h"
#include "platform/fake/FakeProcessRunner.h"
#include "platform/fake/FakeRunningApplications.h"
#include "platform/fake/FakeServiceBus.h"
#include "platform/fake/RecordingSystemLog.h"
#include "platform/ports/Services.h"

namespace qrx::test {

/// Ends a loop that never ends by itself.
struct EndOfTest {};

/// Time passes only by sleeping. Before each sleep a test may look around; the loop under test ends
/// with EndOfTest when the allowed sleeps are used up.
class SteppedClock final : public platform::Clock {
public:
    [[nodiscard]] Duration now() const override { return now_; }
    void sleepFor(Duration duration) override {
        sleeps.push_back(duration);
        if (beforeSleep) beforeSleep(sleeps.size());
        if (sleeps.size() >= mostSleeps) throw EndOfTest{};
        now_ += duration;
    }

    std::size_t mostSleeps = 1000;
    std::function<void(std::size_t pass)> beforeSleep;  ///< passes count from 1
    std::vector<Duration> sleeps;

private:
    Duration now_{0};
};

/// Keeps the work of new threads instead of starting them.
class ControllerUnderTest : public QRXDistributedAppController {
public:
    using QRXDistributedAppController::exportedMethods;
    using QRXDistributedAppController::interfaceDescriptions;

    std::vector<std::function<void()>> detached;

protected:
    void detachNewThread(std::function<void()> work) override {
        detached.push_back(std::move(work));
    }
};

/// A system of fakes for one test.
class DistributedTest : public testing::Test {
protected:
    static constexpr std::int32_t kSelf = platform::FakeRunningApplications::kOwnIdentifier;

    /// Where "ps" is found: any program that every machine has.
    static constexpr const char* kPs = "/bin/sh";

    DistributedTest() {
        services->mainThread = mainThread;
        services->clock = clock;
        services->systemLog = log;
        services->processRunner = runner;
        services->runningApplications = applications;
        services->serviceBus = bus;
        services->arguments = {"/opt/QRXHDFileMatcher", "MatcherConnection"};
        services->resourceFolder = "/opt/App.app/Contents/Resources";
        runner->answer("/usr/bin/whereis",
                       platform::FakeProcessRunner::wrote("ps: " + std::string(kPs) + "\n"));
    }

    /// "ps" lists `identifier` when asked for it, as it does for a process that lives.
    void psLists(std::int32_t identifier) const {
        const std::string text = std::to_string(identifier);
        runner->answer(kPs, {text},
                       platform::FakeProcessRunner::wrote("  PID TTY      STAT   TIME COMMAND\n " +
                                                          text + " ?        S      0:00 host\n"));
    }
    /// "ps" knows no such process.
    void psDoesNotList(std::int32_t identifier) const {
        runner->answer(kPs, {std::to_string(identifier)},
                       platform::FakeProcessRunner::wrote("  PID TTY      STAT   TIME COMMAND\n"));
    }

    [[nodiscard]] int timesTerminated() const { return mainThread->timesTerminated; }

    const platform::ScopedServices services;
    const std::shared_ptr<platform::FakeMainThread> mainThread =
        std::make_shared<platform::FakeMainThread>();
    const std::shared_ptr<SteppedClock> clock = std::make_shared<SteppedClock>();
    const std::shared_ptr<platform::RecordingSystemLog> log =
        std::make_shared<platform::RecordingSystemLog>();
    const std::shared_ptr<platform::FakeProcessRunner> runner =
        std::make_shared<platform::FakeProcessRunner>();
    const std::shared_ptr<platform::FakeRunningApplications> applications =
        std::make_shared<platform::FakeRunningApplications>();
    const std::shared_ptr<platform::FakeServiceBus> bus =
        std::make_shared<platform::FakeServiceBus>();
};

}  // namespace qrx::test
