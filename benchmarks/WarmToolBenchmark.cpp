#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <regex>
#include <string>
#include <vector>

#include <unistd.h>

#include "platform/linux/PosixProcessRunner.h"
#include "platform/linux/WarmProcessRunner.h"

// What the warm tool saves on a file about which the tool has little to do: an XML sidecar.
//
//   benchmark_warm_tool [RUNS [TOOL]]
//
// Warm and plain runs take turns, so that both meet the same weather. Every report is compared.
// Prints the median of each and their ratio. Exit status 1 when a report or status differs, a run
// was not warm, or the warm run is not even twice as fast.

namespace {

using qrx::platform::PosixProcessRunner;
using qrx::platform::ProcessRequest;
using qrx::platform::ProcessResult;
using qrx::platform::ProcessRunner;
using qrx::platform::StandardError;
using qrx::platform::WarmProcessRunner;

constexpr double kLeastRatio = 2;

struct XmlFile {
    std::string path = "/tmp/qrx-warm-XXXXXX";

    XmlFile() {
        ::close(::mkstemp(path.data()));
        std::ofstream(path) << "<?xml version=\"1.0\"?>\n<NonRealTimeMeta>\n"
                               "<Duration value=\"250\"/></NonRealTimeMeta>\n";
    }
    ~XmlFile() { ::unlink(path.c_str()); }
    XmlFile(const XmlFile&) = delete;
    XmlFile& operator=(const XmlFile&) = delete;
};

/// Milliseconds of one run; its result goes to `result`.
double timed(ProcessRunner& runner, const ProcessRequest& request, ProcessResult& result) {
    const auto begun = std::chrono::steady_clock::now();
    result = runner.run(request);
    const std::chrono::duration<double, std::milli> taken =
        std::chrono::steady_clock::now() - begun;
    return taken.count();
}

double median(std::vector<double> values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

/// The tool names objects by their address, which differs from run to run.
std::string withoutAddresses(const std::string& report) {
    static const std::regex address("@ 0x[0-9a-f]+");
    return std::regex_replace(report, address, "@");
}

bool areSame(const ProcessResult& one, const ProcessResult& other) {
    return !one.standardError.empty() && one.exitStatus == other.exitStatus &&
           one.standardOutput == other.standardOutput &&
           withoutAddresses(one.standardError) == withoutAddresses(other.standardError);
}

int measure(unsigned long runs, const std::string& tool) {
    const XmlFile file;
    const ProcessRequest request{tool, {"-i", file.path}, StandardError::captured};
    PosixProcessRunner plain;
    WarmProcessRunner warm;
    (void)warm.run(request);  // the first is plain, the second starts the warm parent
    ProcessResult result;
    const double start = timed(warm, request, result);
    std::vector<double> plainTimes;
    std::vector<double> warmTimes;
    for (unsigned long run = 0; run < runs; ++run) {
        ProcessResult expected;
        plainTimes.push_back(timed(plain, request, expected));
        warmTimes.push_back(timed(warm, request, result));
        if (!areSame(result, expected)) {
            std::cerr << "the reports differ:\n" << expected.standardError << result.standardError;
            return EXIT_FAILURE;
        }
    }
    if (warm.pool().counts().warmRuns != runs + 1) {
        std::cerr << "not every run was warm\n";
        return EXIT_FAILURE;
    }
    const double ratio = median(plainTimes) / median(warmTimes);
    std::cout << "plain                     " << median(plainTimes) << " ms\n"
              << "warm                      " << median(warmTimes) << " ms\n"
              << "warm, with the start      " << start << " ms\n"
              << "plain / warm              " << ratio << "\n";
    return ratio >= kLeastRatio ? EXIT_SUCCESS : EXIT_FAILURE;
}

}  // namespace

int main(int argc, char** argv) {
    const unsigned long runs = argc > 1 ? std::strtoul(argv[1], nullptr, 10) : 100;
    if (runs == 0) {
        std::cerr << "usage: benchmark_warm_tool [RUNS [TOOL]]\n";
        return EXIT_FAILURE;
    }
    return measure(runs, argc > 2 ? argv[2] : "/usr/bin/ffmpeg");
}
