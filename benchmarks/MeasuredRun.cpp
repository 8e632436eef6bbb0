// Runs one command to its end and writes what it took into a file, in one line: exit status,
// seconds, processor seconds, and the peak memory of its largest process in kilobytes.
//
//     measured_run REPORT PROGRAM [ARGUMENT...]
//
// A program of its own because the peak that the system tells of a process begins with that of the
// process which started it: under Python no figure would be below Python's own.

#include <chrono>
#include <cstdio>

#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr int kNotMeasured = 127;

double secondsOf(const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
}

int exitStatusOf(int status) {
    constexpr int kEndedBySignal = 128;
    return WIFEXITED(status) ? WEXITSTATUS(status) : kEndedBySignal + WTERMSIG(status);
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 3) {
        std::fputs("usage: measured_run REPORT PROGRAM [ARGUMENT...]\n", stderr);
        return kNotMeasured;
    }
    char** const command = argv + 2;
    const auto begun = std::chrono::steady_clock::now();
    pid_t child = 0;
    if (::posix_spawnp(&child, command[0], nullptr, nullptr, command, environ) != 0) {
        std::fprintf(stderr, "%s cannot be started\n", command[0]);
        return kNotMeasured;
    }
    int status = 0;
    rusage usage{};
    if (::wait4(child, &status, 0, &usage) != child) return kNotMeasured;
    const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - begun;

    std::FILE* const report = std::fopen(argv[1], "w");
    if (report == nullptr) return kNotMeasured;
    std::fprintf(report, "%d %.6f %.6f %ld\n", exitStatusOf(status), seconds.count(),
                 secondsOf(usage.ru_utime) + secondsOf(usage.ru_stime), usage.ru_maxrss);
    return std::fclose(report) == 0 ? 0 : kNotMeasured;
}
