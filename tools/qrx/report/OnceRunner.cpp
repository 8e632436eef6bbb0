#include "qrx/report/OnceRunner.h"

#include <string>

namespace qrx::tool {

namespace {

struct Latest {
    const void* runner = nullptr;
    std::string program;
    std::string file;
    platform::ProcessResult result;
};

bool describesAFile(const platform::ProcessRequest& request) {
    return request.arguments.size() == 2 && request.arguments.front() == "-i" &&
           request.standardError == platform::StandardError::captured;
}

}  // namespace

platform::ProcessResult OnceRunner::run(const platform::ProcessRequest& request) {
    if (!describesAFile(request)) {
        platform::ProcessRequest quiet = request;
        quiet.standardError = platform::StandardError::captured;
        return runner_->run(quiet);
    }
    thread_local Latest latest;
    const std::string& file = request.arguments.back();
    if (latest.runner != this || latest.program != request.program || latest.file != file) {
        latest.runner = nullptr;
        latest.result = runner_->run(request);
        latest.runner = this;
        latest.program = request.program;
        latest.file = file;
    }
    return latest.result;
}

}  // namespace qrx::tool
