#include "platform/linux/WarmParent.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <poll.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/linux/WarmableTool.h"

namespace qrx::platform {

namespace {

using std::chrono::milliseconds;
using SteadyClock = std::chrono::steady_clock;

constexpr milliseconds kLookWhetherGivenUp{50};
constexpr milliseconds kLastWords{2000};  // of a parent that has been ended
constexpr int kAboveItsOwn = 10;          // no number that the child gets by dup2

FileDescriptor checked(int descriptor, const char* what) {
    if (descriptor < 0) throw std::system_error(errno, std::generic_category(), what);
    return FileDescriptor(descriptor);
}

FileDescriptor outOfTheWay(FileDescriptor descriptor) {
    return checked(::fcntl(descriptor.get(), F_DUPFD_CLOEXEC, kAboveItsOwn), "warm parent");
}

/// Our own environment with what makes the tool a warm parent. Nothing moves by that: the library
/// is put in front of what is preloaded already, and the rest behind all others.
class ParentEnvironment {
public:
    explicit ParentEnvironment(const std::string& library)
        : preload_(std::string(warm::kPreloadVariable) + "="),
          asks_(std::string(warm::kVariable) + "=" + std::to_string(warm::kVersion) + ":" +
                std::to_string(::getpid())) {
        entries_.pop_back();  // the null behind them
        const auto before = entryOf(preload_);
        const bool isPreloaded = before != entries_.end();
        const std::string others = isPreloaded ? ":" + std::string(*before + preload_.size()) : "";
        preload_ += library + others;
        if (isPreloaded) {
            *before = preload_.data();
        } else {
            entries_.push_back(preload_.data());
        }
        // The library looks for it in front of the last.
        const bool isTuned = entryOf(tunables_) != entries_.end();
        tunables_ += warm::kTunables;
        if (!isTuned) entries_.push_back(tunables_.data());
        entries_.push_back(asks_.data());
        entries_.push_back(nullptr);
    }
    ParentEnvironment(const ParentEnvironment&) = delete;
    ParentEnvironment& operator=(const ParentEnvironment&) = delete;

    [[nodiscard]] const std::vector<char*>& entries() const { return entries_; }

private:
    /// @param start  the name and "=".
    [[nodiscard]] std::vector<char*>::iterator entryOf(std::string_view start) {
        return std::find_if(entries_.begin(), entries_.end(), [start](const char* entry) {
            return std::string_view(entry).starts_with(start);
        });
    }

    std::string preload_;
    std::string tunables_ = std::string(warm::kTunablesVariable) + "=";
    std::string asks_;
    std::vector<char*> entries_ = childEnvironment();
};

SpawnedChild startedTool(const std::string& program, const std::string& library, int socket,
                         int output) {
    const ParentEnvironment environment(library);
    const FileDescriptor nothing =
        outOfTheWay(checked(::open("/dev/null", O_RDWR | O_CLOEXEC), "/dev/null"));
    const ChildStreams streams{.standardInput = nothing.get(),
                               .standardOutput = output,
                               .standardError = output,
                               .socket = socket};
    return {{.program = program, .arguments = {}},
            streams,
            ChildGroup::ownGroup,
            environment.entries()};
}

/// The request as it goes over the socket; nothing when it is too long, or holds a NUL.
std::optional<std::string> messageFor(const ProcessRequest& request, std::uint32_t givenStreams) {
    const std::optional<std::uint32_t> mask = fileCreationMask();
    if (!mask) return std::nullopt;
    const warm::Request header{warm::kVersion,
                               static_cast<std::uint32_t>(request.arguments.size() + 1), *mask,
                               givenStreams};
    std::string message(sizeof header, '\0');
    std::memcpy(message.data(), &header, sizeof header);
    bool isSendable = request.arguments.size() < warm::kMostArguments;
    const auto add = [&](const std::string& text) {
        isSendable = isSendable && text.find('\0') == std::string::npos &&
                     text.size() < warm::kMostRequestBytes - message.size();
        if (isSendable) message.append(text.c_str(), text.size() + 1);
    };
    add(request.program);
    std::for_each(request.arguments.begin(), request.arguments.end(), add);
    if (!isSendable) return std::nullopt;
    return message;
}

/// Of the child's streams, those that are open, and a bit for each.
std::uint32_t openStreams(const ChildStreams& streams, std::vector<int>& descriptors) {
    const auto orOurs = [](int given, int own) { return given >= 0 ? given : own; };
    const std::array<int, warm::kStandardStreams> all{orOurs(streams.standardInput, STDIN_FILENO),
                                                      orOurs(streams.standardOutput, STDOUT_FILENO),
                                                      orOurs(streams.standardError, STDERR_FILENO)};
    std::uint32_t given = 0;
    for (std::size_t i = 0; i < all.size(); ++i) {
        if (::fcntl(all.at(i), F_GETFD) < 0) continue;
        given |= 1U << i;
        descriptors.push_back(all.at(i));
    }
    return given;
}

bool sent(int socket, const std::string& message, const std::vector<int>& descriptors) {
    alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof(int) * 4)> control{};
    iovec part{const_cast<char*>(message.data()), message.size()};  // sendmsg does not write to it
    msghdr header{};
    header.msg_iov = &part;
    header.msg_iovlen = 1;
    header.msg_control = control.data();
    const std::size_t size = descriptors.size() * sizeof(int);
    header.msg_controllen = CMSG_SPACE(size);
    cmsghdr* const rights = CMSG_FIRSTHDR(&header);
    rights->cmsg_level = SOL_SOCKET;
    rights->cmsg_type = SCM_RIGHTS;
    rights->cmsg_len = CMSG_LEN(size);
    std::memcpy(CMSG_DATA(rights), descriptors.data(), size);
    for (;;) {
        const ssize_t count = ::sendmsg(socket, &header, MSG_NOSIGNAL | MSG_DONTWAIT);
        if (count >= 0 || errno != EINTR) return count == static_cast<ssize_t>(message.size());
    }
}

}  // namespace

/// What was said about one child, in any order.
struct WarmParent::Reports {
    pid_t child = 0;
    bool isForked = false;
    bool isReady = false;
    bool isRefused = false;

    void add(const warm::Answer& answer) {
        if (answer.pid > 0) child = answer.pid;
        isForked = isForked || answer.kind == warm::Kind::forked;
        isReady = isReady || answer.kind == warm::Kind::ready;
        isRefused = isRefused || answer.kind == warm::Kind::refused;
    }
    /// Nothing more will be said about it.
    [[nodiscard]] bool isComplete() const {
        return (isForked && (isReady || isRefused)) || (isRefused && child == 0);
    }
};

WarmParent::Ends WarmParent::makeEnds() {
    std::array<int, 2> pair{};
    if (::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, pair.data()) != 0) {
        throw std::system_error(errno, std::generic_category(), "socketpair");
    }
    FileDescriptor ours(pair[0]);
    FileDescriptor theirs(pair[1]);
    return {outOfTheWay(std::move(ours)), outOfTheWay(std::move(theirs)),
            outOfTheWay(checked(::memfd_create("qrx-warm", MFD_CLOEXEC), "memfd_create"))};
}

WarmParent::WarmParent(const std::string& program, const std::string& library)
    : WarmParent(program, library, makeEnds()) {}

WarmParent::WarmParent(const std::string& program, const std::string& library, Ends ends)
    : socket_(std::move(ends.ours)),
      wrote_(std::move(ends.wrote)),
      process_(startedTool(program, library, ends.theirs.get(), wrote_.get())) {}

std::optional<std::string> WarmParent::whyNotReady(const Patience& patience) {
    const auto answer = nextAnswer(patience);
    struct stat output {};
    const bool isSilent = ::fstat(wrote_.get(), &output) == 0 && output.st_size == 0;
    wrote_.close();
    const bool isReady = answer && answer->version == warm::kVersion &&
                         answer->kind == warm::Kind::hello && answer->pid == process_.pid();
    if (isReady && isSilent) return std::nullopt;
    end();
    if (!answer) return "did not stop before its main function";
    return isReady ? "writes before its main function"
                   : "cannot be copied before its main function";
}

std::optional<warm::Answer> WarmParent::nextAnswer(const Patience& patience) const {
    const auto until = SteadyClock::now() + patience.limit;
    for (;;) {
        const auto left = std::chrono::ceil<milliseconds>(until - SteadyClock::now());
        const auto slice = std::clamp(left, milliseconds{0}, kLookWhetherGivenUp);
        pollfd watched{socket_.get(), POLLIN, 0};
        const int ready = ::poll(&watched, 1, static_cast<int>(slice.count()));
        if (ready > 0) break;
        if (ready < 0 && errno != EINTR) return std::nullopt;
        const bool isGivenUp = patience.isGivenUp && patience.isGivenUp();
        if (isGivenUp || left.count() <= 0) return std::nullopt;
    }
    warm::Answer answer{};
    const ssize_t size = ::recv(socket_.get(), &answer, sizeof answer, MSG_DONTWAIT);
    if (size != static_cast<ssize_t>(sizeof answer)) return std::nullopt;
    return answer;
}

WarmParent::Reports WarmParent::reportsOfOneStart(const Patience& patience) const {
    Reports reports;
    while (!reports.isComplete()) {
        const auto answer = nextAnswer(patience);
        if (!answer) break;
        reports.add(*answer);
    }
    return reports;
}

std::optional<SpawnedChild> WarmParent::start(const ProcessRequest& request,
                                              const ChildStreams& streams,
                                              const Patience& patience) {
    std::vector<int> descriptors;
    const std::uint32_t given = openStreams(streams, descriptors);
    const auto message = messageFor(request, given);
    FileDescriptor here(::open(".", O_PATH | O_DIRECTORY | O_CLOEXEC));
    if (!here.isOpen() || !message) return std::nullopt;
    const FileDescriptor workingFolder = outOfTheWay(std::move(here));
    descriptors.insert(descriptors.begin(), workingFolder.get());

    Reports reports;
    if (sent(socket_.get(), *message, descriptors)) reports = reportsOfOneStart(patience);
    if (!reports.isComplete()) {
        // Ended first, so that no child can come after what is read now.
        process_.killGroup();
        const Reports last = reportsOfOneStart({.limit = kLastWords, .isGivenUp = {}});
        if (last.child != 0) reports.child = last.child;
        reports.isReady = reports.isReady || last.isReady;
        end();
    }
    if (reports.child == 0) return std::nullopt;
    SpawnedChild child = SpawnedChild::adopted(reports.child);
    if (!reports.isReady) return std::nullopt;  // it is ended and reaped
    return child;
}

void WarmParent::end() {
    process_.killGroup();
    socket_.close();
}

}  // namespace qrx::platform
