#pragma once

#include <exception>
#include <string_view>
#include <utility>

#include "platform/ports/ProcessRunner.h"

namespace qrx {

/// Writes one line on a fault to the system log; never throws.
void logFault(std::string_view where, std::string_view what) noexcept;

/// Runs `question`; a fault inside it is logged under `where` and becomes `neutral`. Put it at the
/// public edge of a class, once per operation, so the code inside may use ordinary throwing calls.
///
/// A cancelled run (Ctrl-C, terminate) is no fault of the question: it becomes the neutral answer
/// without a log line, and whoever asked for the end notices that by its own flag.
template <class Answer, class Question>
[[nodiscard]] Answer answerOr(Answer neutral, std::string_view where,
                              Question&& question) noexcept {
    try {
        return std::forward<Question>(question)();
    } catch (const platform::RunCancelled&) {
        // nothing to say
    } catch (const std::exception& fault) {
        logFault(where, fault.what());
    } catch (...) {
        logFault(where, "unknown fault");
    }
    return neutral;
}

}  // namespace qrx
