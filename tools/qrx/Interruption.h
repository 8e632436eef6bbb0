#pragma once

#include <atomic>
#include <csignal>
#include <functional>
#include <thread>

namespace qrx::tool {

/// Ctrl-C, a polite kill and a closed terminal, received by a thread of its own, so that what is to
/// be done then may take locks.
///
/// The first signal calls `onSignal` and leaves it to the rest of the program to come to its end;
/// when it has not done so after a second (it may be writing to a pipe that nobody reads), or at
/// the next signal, the process is ended on the spot. Either way its exit status is 128 + the
/// number of the signal. A signal that was ignored when the program was started stays ignored.
class Interruption {
public:
    /// Holds the signals back. Must be made before there is any other thread, which inherits that.
    Interruption();
    ~Interruption();
    Interruption(const Interruption&) = delete;
    Interruption& operator=(const Interruption&) = delete;

    /// From now on signals are received, and one that was held back at once.
    void start(std::function<void()> onSignal);

    /// Whether a signal came.
    [[nodiscard]] bool hasCome() const { return signal_ != 0; }
    /// 128 + the number of the signal.
    [[nodiscard]] int exitStatus() const { return 128 + signal_; }
    /// Becomes readable when a signal has come, and stays so.
    [[nodiscard]] int descriptor() const { return come_; }

private:
    void receive();
    /// Whether the program came to its own end in the time that it is given.
    [[nodiscard]] bool endsByItself() const;

    std::function<void()> onSignal_;
    std::atomic<int> signal_ = 0;
    sigset_t before_{};
    int signals_ = -1;  ///< readable when a signal waits
    int come_ = -1;
    int leave_ = -1;  ///< readable when the thread is to end
    std::thread receiver_;
};

}  // namespace qrx::tool
