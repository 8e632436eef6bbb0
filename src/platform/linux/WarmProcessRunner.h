#pragma once

#include "platform/linux/PosixProcessRunner.h"
#include "platform/linux/WarmPool.h"
#include "platform/ports/ProcessRunner.h"

namespace qrx::platform {

/// Runs the media tool without loading its libraries anew each time; docs/warm-tool.md tells how.
///
/// Every run is still a process of its own that runs the tool's own main. Runs that ask the tool
/// about a file (their first argument is "-i") are warm where that can be done, every other one is
/// plain; what a caller sees is the same.
class WarmProcessRunner final : public ProcessRunner {
public:
    explicit WarmProcessRunner(ToolLimits limits = {}, WarmChoices choices = {});

    [[nodiscard]] ProcessResult run(const ProcessRequest& request) override;
    void launch(const ProcessRequest& request) override;
    void cancelAll() override;

    [[nodiscard]] const WarmPool& pool() const { return pool_; }

private:
    WarmPool pool_;
    PosixProcessRunner plain_;
};

}  // namespace qrx::platform
