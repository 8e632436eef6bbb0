#include "qrx/Interruption.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <system_error>
#include <utility>

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/signalfd.h>
#include <unistd.h>

namespace qrx::tool {

namespace {

constexpr std::array kSignals{SIGINT, SIGTERM, SIGHUP};
constexpr int kGraceMilliseconds = 1000;
constexpr int kForEver = -1;

/// Those of kSignals that the program was not started to ignore.
sigset_t signalsToReceive() {
    sigset_t set;
    ::sigemptyset(&set);
    for (const int number : kSignals) {
        struct sigaction current {};
        ::sigaction(number, nullptr, &current);
        if (current.sa_handler != SIG_IGN) ::sigaddset(&set, number);
    }
    return set;
}

int checked(int descriptor, const char* what) {
    if (descriptor < 0) throw std::system_error(errno, std::generic_category(), what);
    return descriptor;
}

void makeReadable(int event) {
    const std::uint64_t one = 1;
    (void)!::write(event, &one, sizeof one);
}

/// Number of the signal that waits.
int takeSignal(int signals) {
    signalfd_siginfo info{};
    return ::read(signals, &info, sizeof info) == sizeof info ? static_cast<int>(info.ssi_signo)
                                                              : SIGTERM;
}

}  // namespace

Interruption::Interruption() {
    const sigset_t received = signalsToReceive();
    ::pthread_sigmask(SIG_BLOCK, &received, &before_);
    signals_ = checked(::signalfd(-1, &received, SFD_CLOEXEC), "signalfd");
    come_ = checked(::eventfd(0, EFD_CLOEXEC), "eventfd");
    leave_ = checked(::eventfd(0, EFD_CLOEXEC), "eventfd");
}

void Interruption::start(std::function<void()> onSignal) {
    onSignal_ = std::move(onSignal);
    receiver_ = std::thread([this] { receive(); });
}

Interruption::~Interruption() {
    makeReadable(leave_);
    if (receiver_.joinable()) receiver_.join();
    for (const int descriptor : {signals_, come_, leave_}) {
        ::close(descriptor);
    }
    ::pthread_sigmask(SIG_SETMASK, &before_, nullptr);
}

void Interruption::receive() {
    std::array<pollfd, 2> watched{pollfd{signals_, POLLIN, 0}, pollfd{leave_, POLLIN, 0}};
    while (::poll(watched.data(), watched.size(), kForEver) < 0) {
    }
    if (watched[0].revents == 0) return;
    signal_ = takeSignal(signals_);
    makeReadable(come_);
    onSignal_();
    if (!endsByItself()) ::_exit(exitStatus());
}

bool Interruption::endsByItself() const {
    std::array<pollfd, 2> watched{pollfd{signals_, POLLIN, 0}, pollfd{leave_, POLLIN, 0}};
    const int ready = ::poll(watched.data(), watched.size(), kGraceMilliseconds);
    return ready > 0 && watched[1].revents != 0;
}

}  // namespace qrx::tool
