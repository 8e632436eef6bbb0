#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "platform/fake/FakeProcessRunner.h"
#include "platform/ports/Services.h"
#include "support/TemporaryFolder.h"

namespace qrx::test {

/// Stands in for the ffmpeg tool as long as it lives: every run writes the same report to standard
/// error, as the tool does. Nothing is started.
class ReportingTool {
public:
    using OnRun = std::function<void(const platform::ProcessRequest&)>;

    /// @param onRun  does what the tool would do besides, e.g. write a picture. May be empty.
    explicit ReportingTool(const std::string& report, const OnRun& onRun = {}) {
        services_->ffmpegPath = folder_.write("ffmpeg");
        services_->processRunner = runner_;
        runner_->answerBy(services_->ffmpegPath, [=](const platform::ProcessRequest& request) {
            if (onRun) onRun(request);
            return platform::FakeProcessRunner::wrote("", report);
        });
    }

    [[nodiscard]] std::size_t runs() const { return runner_->requests().size(); }

private:
    platform::ScopedServices services_;
    TemporaryFolder folder_;
    std::shared_ptr<platform::FakeProcessRunner> runner_ =
        std::make_shared<platform::FakeProcessRunner>();
};

}  // namespace qrx::test
