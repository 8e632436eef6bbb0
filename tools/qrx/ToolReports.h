#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "platform/ports/ProcessRunner.h"
#include "qrx/Console.h"

namespace qrx::tool {

/// Says on its way what the library keeps to itself: that a tool could not be started or crashed.
/// The library goes on without its answer, but whoever reads the result should know.
class ToolReports final : public platform::ProcessRunner {
public:
    using Say = std::function<void(const std::string& message)>;

    ToolReports(std::shared_ptr<platform::ProcessRunner> runner, Say say);

    [[nodiscard]] platform::ProcessResult run(const platform::ProcessRequest& request) override;
    void launch(const platform::ProcessRequest& request) override { runner_->launch(request); }
    void cancelAll() override { runner_->cancelAll(); }

private:
    std::shared_ptr<platform::ProcessRunner> runner_;
    Say say_;
};

/// Keeps what tools write to standard error to itself: the ffmpeg tool tells its progress there.
class QuietTools final : public platform::ProcessRunner {
public:
    explicit QuietTools(std::shared_ptr<platform::ProcessRunner> runner)
        : runner_(std::move(runner)) {}

    [[nodiscard]] platform::ProcessResult run(const platform::ProcessRequest& request) override {
        platform::ProcessRequest quiet = request;
        quiet.standardError = platform::StandardError::captured;
        return runner_->run(quiet);
    }
    void launch(const platform::ProcessRequest& request) override { runner_->launch(request); }
    void cancelAll() override { runner_->cancelAll(); }

private:
    std::shared_ptr<platform::ProcessRunner> runner_;
};

/// From now on names on the console every file for which the tool could not be run or crashed, and
/// says at once when there is no tool.
void reportToolProblems(Console& console);

/// "PATH: ffmpeg took longer than 120 seconds and was ended"
[[nodiscard]] std::string timeLimitMessage(const platform::ProcessRequest& request, double seconds);

}  // namespace qrx::tool
