#pragma once

#include <memory>
#include <utility>

#include "platform/ports/ProcessRunner.h"

namespace qrx::tool {

/// Keeps what tools print from standard error, where the progress of the report stands, and lets a
/// tool describe each file once. What several questions about one clip ask (does ffmpeg know
/// it, its rate, its duration) they ask one after the other on one thread; each thread's latest
/// description is kept and answered again.
class OnceRunner final : public platform::ProcessRunner {
public:
    explicit OnceRunner(std::shared_ptr<platform::ProcessRunner> runner)
        : runner_(std::move(runner)) {}

    [[nodiscard]] platform::ProcessResult run(const platform::ProcessRequest& request) override;
    void launch(const platform::ProcessRequest& request) override { runner_->launch(request); }
    void cancelAll() override { runner_->cancelAll(); }

private:
    std::shared_ptr<platform::ProcessRunner> runner_;
};

}  // namespace qrx::tool
