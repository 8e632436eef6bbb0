#pragma once

#include <cerrno>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "platform/ports/ProcessRunner.h"

namespace qrx::platform {

/// Starts nothing: each program answers what the test said, and every request is kept. A program
/// about which nothing was said cannot be started. Of two answers to one request the later counts.
/// May be used from several threads.
class FakeProcessRunner final : public ProcessRunner {
public:
    using Script = std::function<ProcessResult(const ProcessRequest&)>;

    /// What a program that ended well wrote.
    [[nodiscard]] static ProcessResult wrote(std::string standardOutput,
                                             std::string standardError = {}) {
        return {.standardOutput = std::move(standardOutput),
                .standardError = std::move(standardError)};
    }
    /// A program that wrote nothing and ended with `status`.
    [[nodiscard]] static ProcessResult ended(int status) {
        ProcessResult result;
        result.exitStatus = status;
        return result;
    }

    /// `program` called with exactly `arguments`.
    void answer(std::string program, std::vector<std::string> arguments, ProcessResult result) {
        add({std::move(program), std::move(arguments),
             [given = std::move(result)](const ProcessRequest&) { return given; }});
    }
    /// `program` called with any arguments.
    void answer(std::string program, ProcessResult result) {
        answerBy(std::move(program),
                 [given = std::move(result)](const ProcessRequest&) { return given; });
    }
    /// `program` called with any arguments; the script may throw.
    void answerBy(std::string program, Script script) {
        add({std::move(program), std::nullopt, std::move(script)});
    }

    [[nodiscard]] ProcessResult run(const ProcessRequest& request) override {
        Script script;
        {
            const std::lock_guard lock(mutex_);
            if (cancelled_) throw RunCancelled{};
            requests_.push_back(request);
            script = scriptFor(request);
        }
        return script(request);  // unlocked: it may run tools itself
    }
    void launch(const ProcessRequest& request) override {
        const std::lock_guard lock(mutex_);
        launched_.push_back(request);
        static_cast<void>(scriptFor(request));
    }
    void cancelAll() override {
        const std::lock_guard lock(mutex_);
        cancelled_ = true;
    }

    /// Every request of run, the failed ones too.
    [[nodiscard]] std::vector<ProcessRequest> requests() const {
        const std::lock_guard lock(mutex_);
        return requests_;
    }
    /// Every request of launch.
    [[nodiscard]] std::vector<ProcessRequest> launched() const {
        const std::lock_guard lock(mutex_);
        return launched_;
    }

private:
    struct Answer {
        std::string program;
        std::optional<std::vector<std::string>> arguments;  ///< nothing: whatever they are
        Script script;
    };

    void add(Answer answer) {
        const std::lock_guard lock(mutex_);
        answers_.push_back(std::move(answer));
    }

    [[nodiscard]] Script scriptFor(const ProcessRequest& request) const {
        for (auto answer = answers_.rbegin(); answer != answers_.rend(); ++answer) {
            const bool fits = !answer->arguments || *answer->arguments == request.arguments;
            if (answer->program == request.program && fits) return answer->script;
        }
        throw std::system_error(ENOENT, std::generic_category(), request.program);
    }

    mutable std::mutex mutex_;
    bool cancelled_ = false;
    std::vector<Answer> answers_;
    std::vector<ProcessRequest> requests_;
    std::vector<ProcessRequest> launched_;
};

}  // namespace qrx::platform
