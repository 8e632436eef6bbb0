#include "platform/linux/WarmProcessRunner.h"

#include <utility>

namespace qrx::platform {

namespace {

/// The report of a file, and the still. Nothing else that we run is run for file after file.
bool asksAboutAFile(const ProcessRequest& request) {
    return !request.arguments.empty() && request.arguments.front() == "-i";
}

}  // namespace

WarmProcessRunner::WarmProcessRunner(ToolLimits limits, WarmChoices choices)
    : pool_(std::move(choices)), plain_(std::move(limits)) {}

ProcessResult WarmProcessRunner::run(const ProcessRequest& request) {
    if (!asksAboutAFile(request)) return plain_.run(request);
    return plain_.run(request, [&](const ChildStreams& streams) {
        auto child = pool_.start(request, streams);
        if (child) return std::move(*child);
        return SpawnedChild(request, streams, ChildGroup::ownGroup);
    });
}

void WarmProcessRunner::launch(const ProcessRequest& request) {
    plain_.launch(request);
}

void WarmProcessRunner::cancelAll() {
    plain_.cancelAll();
    pool_.giveUp();
}

}  // namespace qrx::platform
