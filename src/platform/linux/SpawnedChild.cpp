#include "platform/linux/SpawnedChild.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <string_view>
#include <system_error>
#include <utility>

#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace qrx::platform {

namespace {

/// FFREPORT makes ffmpeg write a file wherever it stands; the others colour its report or point it
/// to presets of a user.
constexpr std::array<std::string_view, 6> kClearedVariables{
    "FFREPORT",       "AV_LOG_FORCE_COLOR", "AV_LOG_FORCE_NOCOLOR", "AV_LOG_FORCE_256COLOR",
    "FFMPEG_DATADIR", "AVCONV_DATADIR"};

constexpr int kSocket = STDERR_FILENO + 1;

void require(int error, const std::string& what) {
    if (error != 0) throw std::system_error(error, std::generic_category(), what);
}

class FileActions {
public:
    explicit FileActions(const ChildStreams& streams) {
        require(::posix_spawn_file_actions_init(&actions_), "posix_spawn_file_actions_init");
        redirect(streams.standardInput, STDIN_FILENO);
        redirect(streams.standardOutput, STDOUT_FILENO);
        redirect(streams.standardError, STDERR_FILENO);
        redirect(streams.socket, kSocket);
        // Close-on-exec is not enough: a host may have opened descriptors without it.
        require(::posix_spawn_file_actions_addclosefrom_np(
                    &actions_, streams.socket < 0 ? kSocket : kSocket + 1),
                "posix_spawn_file_actions_addclosefrom_np");
    }
    ~FileActions() { ::posix_spawn_file_actions_destroy(&actions_); }
    FileActions(const FileActions&) = delete;
    FileActions& operator=(const FileActions&) = delete;

    [[nodiscard]] const posix_spawn_file_actions_t* get() const { return &actions_; }

private:
    void redirect(int from, int to) {
        if (from < 0) return;
        require(::posix_spawn_file_actions_adddup2(&actions_, from, to),
                "posix_spawn_file_actions_adddup2");
    }

    posix_spawn_file_actions_t actions_{};
};

class Attributes {
public:
    explicit Attributes(ChildGroup group) {
        require(::posix_spawnattr_init(&attributes_), "posix_spawnattr_init");
        sigset_t none;
        sigset_t all;
        ::sigemptyset(&none);
        ::sigfillset(&all);
        ::posix_spawnattr_setsigmask(&attributes_, &none);
        ::posix_spawnattr_setsigdefault(&attributes_, &all);
        ::posix_spawnattr_setpgroup(&attributes_, 0);
        const int belonging =
            group == ChildGroup::ownSession ? POSIX_SPAWN_SETSID : POSIX_SPAWN_SETPGROUP;
        const int flags = POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF | belonging;
        ::posix_spawnattr_setflags(&attributes_, static_cast<short>(flags));
    }
    ~Attributes() { ::posix_spawnattr_destroy(&attributes_); }
    Attributes(const Attributes&) = delete;
    Attributes& operator=(const Attributes&) = delete;

    [[nodiscard]] const posix_spawnattr_t* get() const { return &attributes_; }

private:
    posix_spawnattr_t attributes_{};
};

/// A text with a NUL would reach the program cut short.
void refuseNul(const std::string& text) {
    if (text.find('\0') != std::string::npos) require(EINVAL, "NUL in a command");
}

std::vector<char*> argumentPointers(const ProcessRequest& request) {
    std::vector<char*> pointers;
    pointers.reserve(request.arguments.size() + 2);
    const auto add = [&](const std::string& text) {
        refuseNul(text);
        pointers.push_back(const_cast<char*>(text.c_str()));  // posix_spawn does not write to it
    };
    add(request.program);
    std::for_each(request.arguments.begin(), request.arguments.end(), add);
    pointers.push_back(nullptr);
    return pointers;
}

bool isCleared(std::string_view entry) {
    const std::string_view name = entry.substr(0, entry.find('='));
    return std::find(kClearedVariables.begin(), kClearedVariables.end(), name) !=
           kClearedVariables.end();
}

int statusOf(int waited) {
    constexpr int kSignalBase = 128;  // as shells count
    return WIFSIGNALED(waited) ? kSignalBase + WTERMSIG(waited) : WEXITSTATUS(waited);
}

}  // namespace

std::vector<char*> childEnvironment() {
    std::vector<char*> kept;
    for (char** entry = ::environ; entry != nullptr && *entry != nullptr; ++entry) {
        if (!isCleared(*entry)) kept.push_back(*entry);
    }
    kept.push_back(nullptr);
    return kept;
}

SpawnedChild::SpawnedChild(const ProcessRequest& request, const ChildStreams& streams,
                           ChildGroup group, const std::vector<char*>& environment) {
    const std::vector<char*> arguments = argumentPointers(request);
    const FileActions actions(streams);
    const Attributes attributes(group);
    require(::posix_spawn(&pid_, request.program.c_str(), actions.get(), attributes.get(),
                          arguments.data(), environment.data()),
            request.program);
}

SpawnedChild::SpawnedChild(SpawnedChild&& other) noexcept : pid_(std::exchange(other.pid_, -1)) {}

SpawnedChild::~SpawnedChild() {
    if (pid_ <= 0) return;
    killGroup();
    ::kill(pid_, SIGKILL);  // it may not have come into its group yet
    int waited = 0;
    while (::waitpid(pid_, &waited, 0) < 0 && errno == EINTR) {
    }
}

bool SpawnedChild::hasExited() const {
    siginfo_t info{};
    const int answer = ::waitid(P_PID, static_cast<id_t>(pid_), &info, WEXITED | WNOHANG | WNOWAIT);
    return answer != 0 ? errno != EINTR : info.si_pid == pid_;
}

void SpawnedChild::killGroup() const {
    ::kill(-pid_, SIGKILL);
}

int SpawnedChild::reap() {
    const pid_t pid = std::exchange(pid_, -1);
    int waited = 0;
    while (::waitpid(pid, &waited, 0) < 0) {
        if (errno != EINTR) require(errno, "waitpid");
    }
    return statusOf(waited);
}

FileDescriptor exitDescriptor(pid_t pid) {
    return FileDescriptor(static_cast<int>(::syscall(SYS_pidfd_open, pid, 0)));
}

}  // namespace qrx::platform
