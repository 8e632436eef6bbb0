// libqrxwarm.so: makes a warm parent of the program that it is preloaded into.
//
// It takes the place of the C library's start routine, which the program's own start code calls
// once every library is loaded and every constructor has run, and wraps main. Asked to serve, it
// waits for requests instead of running main; each is answered by a copy of the process, in which
// main then runs as if it had just been started. Not asked, it does nothing.
//
// Depends on the C library alone, and neither allocates nor throws: the copies must find the heap
// and the streams as the constructors left them.

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <sched.h>

#include <dirent.h>
#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/linux/WarmProtocol.h"
#include "platform/linux/warm/ShortEnd.h"

// Of <linux/prctl.h>, which older systems have without it.
#ifndef PR_GET_TID_ADDRESS
#define PR_GET_TID_ADDRESS 40
#endif

namespace {

using qrx::platform::warm::Answer;
using qrx::platform::warm::Kind;
using qrx::platform::warm::kMostArguments;
using qrx::platform::warm::kMostRequestBytes;
using qrx::platform::warm::kPreloadVariable;
using qrx::platform::warm::kSocket;
using qrx::platform::warm::kStandardStreams;
using qrx::platform::warm::kTunables;
using qrx::platform::warm::kTunablesVariable;
using qrx::platform::warm::kVariable;
using qrx::platform::warm::kVersion;
using qrx::platform::warm::Request;

using MainFunction = int (*)(int, char**, char**);
using Handler = void (*)();

constexpr int kCannotRun = 127;  // as shells answer; nobody is told of it
constexpr std::size_t kMostDescriptors = 1 + kStandardStreams;

MainFunction realMain = nullptr;

// -- what libraries want to have done around a fork ----------------------------------------------

struct ForkHandlers {
    Handler prepare;
    Handler parent;
    Handler child;
};

constexpr std::size_t kMostForkHandlers = 64;
ForkHandlers forkHandlers[kMostForkHandlers];
std::size_t forkHandlerCount = 0;  // more than there is room for: cannot serve

void callIfAny(Handler handler) {
    if (handler != nullptr) handler();
}

/// Newest first, as fork() does.
void prepareLibraries() {
    for (std::size_t left = forkHandlerCount; left > 0; --left) {
        callIfAny(forkHandlers[left - 1].prepare);
    }
}

void tellLibraries(bool isChild) {
    for (std::size_t i = 0; i < forkHandlerCount; ++i) {
        callIfAny(isChild ? forkHandlers[i].child : forkHandlers[i].parent);
    }
}

// -- the environment -----------------------------------------------------------------------------

/// What follows "NAME=" in `entry`; null when it is another variable.
char* valueOf(char* entry, const char* name) {
    const std::size_t length = std::strlen(name);
    const bool isIt = std::strncmp(entry, name, length) == 0 && entry[length] == '=';
    return isIt ? entry + length + 1 : nullptr;
}

char** find(const char* name) {
    for (char** entry = environ; entry != nullptr && *entry != nullptr; ++entry) {
        if (valueOf(*entry, name) != nullptr) return entry;
    }
    return nullptr;
}

/// Takes a variable out; its bytes too, since /proc shows them.
void remove(char** entry) {
    std::memset(*entry, 0, std::strlen(*entry));
    for (; *entry != nullptr; ++entry) {
        *entry = entry[1];
    }
}

/// The loader has put a copy in place of the variable and taken the original, which the kernel
/// shows, to pieces. It stands in front of `next`, as the client has placed it.
void hideTunables(char* next) {
    char** const entry = find(kTunablesVariable);
    if (entry == nullptr) return;
    if (std::strcmp(valueOf(*entry, kTunablesVariable), kTunables) != 0) return;  // the user's
    const std::size_t size = std::strlen(*entry) + 1;
    char* const shown = next - size;
    if (valueOf(shown, kTunablesVariable) != nullptr) std::memset(shown, 0, size);
    remove(entry);
}

/// Puts the environment back as it would be without us: our library stands first in its variable,
/// what was there before follows a colon.
void hideOurVariables() {
    if (char** const ours = find(kVariable)) {
        char* const shown = *ours;
        remove(ours);
        hideTunables(shown);
    }
    char** const preload = find(kPreloadVariable);
    if (preload == nullptr) return;
    char* const colon = std::strchr(*preload, ':');
    if (colon == nullptr) {
        remove(preload);
        return;
    }
    const std::size_t nameLength = sizeof kPreloadVariable;  // with "=" in place of the NUL
    char* const begin = colon + 1 - nameLength;
    char* const was = *preload;
    std::memcpy(begin, kPreloadVariable, nameLength - 1);
    begin[nameLength - 1] = '=';
    std::memset(was, 0, static_cast<std::size_t>(begin - was));
    *preload = begin;
}

// -- whether a copy of this process is the same as a new one -------------------------------------

/// What a thread of ours has in the kernel, which a raw clone does not hand on.
struct ThreadState {
    int* idAddress = nullptr;  ///< where the C library keeps the thread's number
    void* robustList = nullptr;
    std::size_t robustListSize = 0;
};

bool readThreadState(ThreadState& state) {
    if (::prctl(PR_GET_TID_ADDRESS, &state.idAddress, 0, 0, 0) != 0) return false;
    if (state.idAddress == nullptr || *state.idAddress != ::getpid()) return false;
    return ::syscall(SYS_get_robust_list, 0, &state.robustList, &state.robustListSize) == 0;
}

bool isSingleThread() {
    constexpr nlink_t kOneThread = 3;  // ".", ".." and the thread
    struct stat status {};
    return ::stat("/proc/self/task", &status) == 0 && status.st_nlink == kOneThread;
}

/// Numbers are what stands in /proc/self/fd; "." and ".." count as none.
int numberIn(const char* name) {
    return *name >= '0' && *name <= '9' ? static_cast<int>(std::strtol(name, nullptr, 10)) : -1;
}

struct RawEntry {  // as getdents64 gives them
    std::uint64_t inode;
    std::int64_t offset;
    unsigned short size;
    unsigned char type;
    char name[1];
};

/// Whether a constructor left a file open, whose position the copies would share.
bool hasForeignDescriptor() {
    const int folder = ::open("/proc/self/fd", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folder < 0) return true;
    alignas(RawEntry) char entries[4096];
    bool isForeign = false;
    long size = 0;
    while ((size = ::syscall(SYS_getdents64, folder, entries, sizeof entries)) > 0) {
        for (long at = 0; at < size;) {
            const auto* const entry = reinterpret_cast<const RawEntry*>(entries + at);
            const int number = numberIn(entry->name);
            if (number > kSocket && number != folder) isForeign = true;
            at += entry->size;
        }
    }
    ::close(folder);
    return isForeign || size < 0;
}

bool hasChildren() {
    siginfo_t info{};
    return ::waitid(P_ALL, 0, &info, WEXITED | WNOHANG | WNOWAIT) == 0 || errno != ECHILD;
}

bool hasTimer() {
    constexpr __itimer_which kTimers[]{ITIMER_REAL, ITIMER_VIRTUAL, ITIMER_PROF};
    for (const auto which : kTimers) {
        itimerval timer{};
        const bool isRunning = ::getitimer(which, &timer) != 0 || timer.it_value.tv_sec != 0 ||
                               timer.it_value.tv_usec != 0;
        if (isRunning) return true;
    }
    return false;
}

bool copiesWouldDiffer() {
    return forkHandlerCount > kMostForkHandlers || !isSingleThread() || hasForeignDescriptor() ||
           hasChildren() || hasTimer();
}

// -- talking to the client -----------------------------------------------------------------------

bool say(Kind kind, pid_t pid, int error = 0) {
    const Answer answer{kVersion, kind, pid, error};
    ssize_t sent = 0;
    do {
        sent = ::send(kSocket, &answer, sizeof answer, MSG_NOSIGNAL);
    } while (sent < 0 && errno == EINTR);
    return sent == static_cast<ssize_t>(sizeof answer);
}

// One request at a time. Static: the arguments live as long as the child.
alignas(Request) char requestBytes[kMostRequestBytes];
char* arguments[kMostArguments + 1];

struct Received {
    std::size_t size = 0;
    int descriptors[kMostDescriptors] = {-1, -1, -1, -1};
    std::size_t descriptorCount = 0;
    bool isWhole = false;

    void close() {
        for (std::size_t i = 0; i < descriptorCount; ++i) {
            ::close(descriptors[i]);
        }
        descriptorCount = 0;
    }
};

void takeDescriptors(msghdr& message, Received& received) {
    for (cmsghdr* part = CMSG_FIRSTHDR(&message); part != nullptr;
         part = CMSG_NXTHDR(&message, part)) {
        if (part->cmsg_level != SOL_SOCKET || part->cmsg_type != SCM_RIGHTS) continue;
        const std::size_t count = (part->cmsg_len - CMSG_LEN(0)) / sizeof(int);
        received.descriptorCount = count < kMostDescriptors ? count : kMostDescriptors;
        std::memcpy(received.descriptors, CMSG_DATA(part), received.descriptorCount * sizeof(int));
    }
}

/// False once there will be no request any more.
bool receive(Received& received) {
    alignas(cmsghdr) char control[CMSG_SPACE(sizeof(int) * kMostDescriptors)];
    iovec part{requestBytes, sizeof requestBytes};
    msghdr message{};
    message.msg_iov = &part;
    message.msg_iovlen = 1;
    message.msg_control = control;
    message.msg_controllen = sizeof control;
    ssize_t size = 0;
    do {
        size = ::recvmsg(kSocket, &message, MSG_CMSG_CLOEXEC);
    } while (size < 0 && errno == EINTR);
    if (size <= 0) return false;
    received.size = static_cast<std::size_t>(size);
    received.isWhole = (message.msg_flags & (MSG_TRUNC | MSG_CTRUNC)) == 0;
    takeDescriptors(message, received);
    return true;
}

std::size_t streamsIn(std::uint32_t given) {
    std::size_t count = 0;
    for (std::size_t stream = 0; stream < kStandardStreams; ++stream) {
        count += given >> stream & 1U;
    }
    return count;
}

/// Points `arguments` into the request; their number, or -1 when it is not as it should be.
int readArguments(const Received& received, Request& request) {
    if (!received.isWhole || received.size < sizeof request) return -1;
    std::memcpy(&request, requestBytes, sizeof request);
    const bool isUsual = request.version == kVersion && request.argumentCount >= 1 &&
                         request.argumentCount <= kMostArguments &&
                         received.descriptorCount == 1 + streamsIn(request.givenStreams);
    if (!isUsual || requestBytes[received.size - 1] != '\0') return -1;
    std::size_t at = sizeof request;
    for (std::uint32_t i = 0; i < request.argumentCount; ++i) {
        if (at >= received.size) return -1;
        arguments[i] = requestBytes + at;
        at += std::strlen(arguments[i]) + 1;
    }
    arguments[request.argumentCount] = nullptr;
    return at == received.size ? static_cast<int>(request.argumentCount) : -1;
}

// -- the child -----------------------------------------------------------------------------------

/// A copy of this process whose parent is the client, so that the client waits for it, ends it and
/// reaps it like every other child of its own. What fork() would have done for the C library is
/// asked of the kernel: the thread's number is written where the C library looks for it.
pid_t copyOfThisProcess(const ThreadState& thread) {
    constexpr unsigned long kFlags =
        CLONE_PARENT | CLONE_CHILD_SETTID | CLONE_CHILD_CLEARTID | SIGCHLD;
#if defined(__x86_64__)
    return static_cast<pid_t>(
        ::syscall(SYS_clone, kFlags, nullptr, nullptr, thread.idAddress, nullptr));
#elif defined(__aarch64__) || defined(__i386__) || defined(__arm__) || defined(__riscv)
    return static_cast<pid_t>(
        ::syscall(SYS_clone, kFlags, nullptr, nullptr, nullptr, thread.idAddress));
#else
    errno = ENOSYS;  // the order of the arguments is not known here
    return -1;
#endif
}

bool takeStreams(const Request& request, const Received& received) {
    std::size_t next = 1;
    for (std::size_t stream = 0; stream < kStandardStreams; ++stream) {
        const int number = static_cast<int>(stream);
        if ((request.givenStreams >> stream & 1U) == 0) {
            ::close(number);
        } else if (::dup2(received.descriptors[next++], number) < 0) {
            return false;
        }
    }
    return true;
}

/// Becomes what a newly started process is. Null when it cannot; then errno says why.
bool becomeTool(const Request& request, Received& received, const ThreadState& thread,
                pid_t client) {
    if (thread.robustList != nullptr &&
        ::syscall(SYS_set_robust_list, thread.robustList, thread.robustListSize) != 0) {
        return false;
    }
    if (::setpgid(0, 0) != 0) return false;
    if (::prctl(PR_SET_PDEATHSIG, SIGKILL) != 0) return false;
    if (::getppid() != client) ::_exit(kCannotRun);  // it ended before we asked to be told
    if (::fchdir(received.descriptors[0]) != 0) return false;
    ::umask(static_cast<mode_t>(request.fileCreationMask));
    if (!takeStreams(request, received)) return false;
    received.close();
    return true;
}

/// Answers requests until the client goes. Returns in children alone, with the number of
/// `arguments`.
int serve(const ThreadState& thread, pid_t client) {
    for (;;) {
        Received received;
        if (!receive(received)) ::_exit(0);
        Request request{};
        const int count = readArguments(received, request);
        if (count < 0) {
            received.close();
            say(Kind::refused, 0, EPROTO);
            continue;
        }
        prepareLibraries();
        const pid_t child = copyOfThisProcess(thread);
        const int error = errno;
        tellLibraries(child == 0);
        if (child == 0) {
            const bool isTool = becomeTool(request, received, thread, client);
            if (!isTool) say(Kind::refused, ::getpid(), errno);
            if (!isTool || !say(Kind::ready, ::getpid())) ::_exit(kCannotRun);
            ::close(kSocket);
            return count;
        }
        received.close();
        const bool isHeard = child < 0 ? say(Kind::refused, 0, error) : say(Kind::forked, child);
        if (!isHeard) ::_exit(0);
    }
}

/// Lets go of what a process that only waits must not hold: a card would stay busy, the streams
/// open.
bool standAside() {
    ::fcntl(kSocket, F_SETFD, FD_CLOEXEC);
    return ::chdir("/") == 0 && ::dup2(STDIN_FILENO, STDOUT_FILENO) >= 0 &&
           ::dup2(STDIN_FILENO, STDERR_FILENO) >= 0;
}

/// The client's process as the variable tells it; 0 when nobody asks us to serve.
pid_t clientThatAsks() {
    char** const entry = find(kVariable);
    if (entry == nullptr) return 0;
    char* end = nullptr;
    const char* const value = valueOf(*entry, kVariable);
    if (std::strtoul(value, &end, 10) != kVersion || *end != ':') return 0;
    const long client = std::strtol(end + 1, &end, 10);
    return *end == '\0' ? static_cast<pid_t>(client) : 0;
}

int mainOrService(int argc, char** argv, char** envp) {
    const pid_t client = clientThatAsks();
    if (client <= 0) return realMain(argc, argv, envp);
    hideOurVariables();
    ThreadState thread;
    const bool isLost = ::prctl(PR_SET_PDEATHSIG, SIGKILL) != 0 || ::getppid() != client;
    if (isLost || copiesWouldDiffer() || !readThreadState(thread) || !standAside()) {
        say(Kind::refused, ::getpid(), ENOTSUP);
        ::_exit(kCannotRun);
    }
    qrx::platform::warm::endWithoutLibraries();
    if (!say(Kind::hello, ::getpid())) ::_exit(kCannotRun);
    const int count = serve(thread, client);
    return realMain(count, arguments, environ);
}

}  // namespace

// The C library's names, which nobody but the dynamic linker calls here.
// NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" {

__attribute__((visibility("default"))) int __register_atfork(Handler prepare, Handler parent,
                                                             Handler child, void* library) {
    using Function = int (*)(Handler, Handler, Handler, void*);
    static const auto next = reinterpret_cast<Function>(::dlsym(RTLD_NEXT, "__register_atfork"));
    if (next == nullptr) return ENOSYS;
    if (forkHandlerCount < kMostForkHandlers) {
        forkHandlers[forkHandlerCount] = {prepare, parent, child};
    }
    ++forkHandlerCount;
    return next(prepare, parent, child, library);
}

__attribute__((visibility("default"))) int __libc_start_main(MainFunction mainFunction, int argc,
                                                             char** argv, Handler init,
                                                             Handler fini, Handler loaderFini,
                                                             void* stackEnd) {
    using Function = int (*)(MainFunction, int, char**, Handler, Handler, Handler, void*);
    const auto next = reinterpret_cast<Function>(::dlsym(RTLD_NEXT, "__libc_start_main"));
    if (next == nullptr) ::_exit(kCannotRun);
    realMain = mainFunction;
    return next(mainOrService, argc, argv, init, fini, loaderFini, stackEnd);
}
}
// NOLINTEND(bugprone-reserved-identifier)
