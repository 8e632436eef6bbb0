#include <cstdint>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/linux/PosixProcessRunner.h"

// What a run of a tool costs beside the tool itself.

namespace {

using qrx::platform::PosixProcessRunner;
using qrx::platform::ProcessRequest;
using qrx::platform::ProcessResult;
using qrx::platform::StandardError;

constexpr const char* kTool = "/bin/true";

/// The floor: the system's own calls, nothing read, nothing kept apart.
void bareSpawnAndWait(benchmark::State& state) {
    std::string name = kTool;
    char* arguments[] = {name.data(), nullptr};
    for (auto _ : state) {
        pid_t child = 0;
        int status = -1;
        if (::posix_spawn(&child, kTool, nullptr, nullptr, arguments, ::environ) != 0 ||
            ::waitpid(child, &status, 0) != child || status != 0) {
            state.SkipWithError("the tool failed");
            break;
        }
    }
}
BENCHMARK(bareSpawnAndWait)->Unit(benchmark::kMicrosecond)->UseRealTime();

void runWithBothPipes(benchmark::State& state) {
    PosixProcessRunner runner;
    const ProcessRequest request{kTool, {}, StandardError::captured};
    for (auto _ : state) {
        if (runner.run(request).exitStatus != 0) {
            state.SkipWithError("the tool failed");
            break;
        }
    }
}
BENCHMARK(runWithBothPipes)->Unit(benchmark::kMicrosecond)->UseRealTime();

/// A long report: how fast it is taken in.
void runThatWritesEightMebibytes(benchmark::State& state) {
    constexpr std::int64_t kReport = std::int64_t{8} << 20U;
    PosixProcessRunner runner;
    const ProcessRequest request{
        "/usr/bin/head", {"-c", std::to_string(kReport), "/dev/zero"}, StandardError::captured};
    for (auto _ : state) {
        const ProcessResult result = runner.run(request);
        if (result.standardOutput.size() != static_cast<std::size_t>(kReport)) {
            state.SkipWithError("the report is incomplete");
            break;
        }
    }
    state.SetBytesProcessed(state.iterations() * kReport);
}
BENCHMARK(runThatWritesEightMebibytes)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace

BENCHMARK_MAIN();
