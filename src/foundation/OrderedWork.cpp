#include "foundation/OrderedWork.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <mutex>
#include <stop_token>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

#include "platform/ports/ProcessRunner.h"
#include "platform/ports/Services.h"
#include "platform/ports/SignalsBlocked.h"

namespace qrx {

unsigned workersFor(unsigned jobs) {
    if (jobs == WorkLimits::kAsChosen) jobs = platform::services().jobs;
    if (jobs == platform::Services::kOneJobPerCore) jobs = std::thread::hardware_concurrency();
    return std::clamp(jobs, 1U, WorkLimits::kMostJobs);
}

std::optional<unsigned> jobsNamed(std::string_view text) {
    unsigned jobs = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), jobs);
    const bool isNumber = error == std::errc() && end == text.data() + text.size();
    if (!isNumber || jobs < 1 || jobs > WorkLimits::kMostJobs) return std::nullopt;
    return jobs;
}

namespace detail {

namespace {

/// A turn that could not be fetched: its fault comes when it would have been announced.
class FaultyTurn final : public WorkTurn {
public:
    explicit FaultyTurn(std::exception_ptr what) { fault = std::move(what); }
    void announce() override { std::rethrow_exception(fault); }
    void perform() override {}
    void take() override {}
};

/// NO when cancelled.
bool performOnCaller(const WorkTurns& turns) {
    const auto isCancelled = [&turns] {
        return (turns.isCancelled && turns.isCancelled()) ||
               platform::RunsUntil::current().stop_requested();
    };
    while (!isCancelled()) {
        const auto turn = turns.next();
        if (!turn) return true;
        if (isCancelled()) return false;
        turn->announce();
        turn->perform();
        if (isCancelled()) return false;  // a tool that was ended half-way makes results a guess
        turn->take();
    }
    return false;
}

platform::MainThread* mainThreadIfCurrent() {
    platform::MainThread* const mainThread = platform::services().mainThread.get();
    return mainThread != nullptr && mainThread->isCurrent() ? mainThread : nullptr;
}

/// One run with threads. The caller leads: it announces and takes the turns at the front of the
/// window.
///
/// Where an item costs a few microseconds, handing it over to another thread costs more than the
/// item itself. So the caller begins alone, fetching and performing the turns, too. A worker looks
/// at its watch meanwhile; when it finds the caller to be at the same turn for longer than a tick,
/// the workers fetch what comes next to the back of the window and perform it, and the caller only
/// leads. After a row of turns that came quickly it is alone again.
///
/// A caller that does main-thread work never is: workers may be waiting for it to do some.
class WorkRun {
public:
    WorkRun(const WorkTurns& turns, unsigned jobs, std::size_t window)
        : turns_(turns),
          jobs_(jobs),
          window_(window),
          mainThread_(mainThreadIfCurrent()),
          isAlone_(mainThread_ == nullptr) {
        workers_.reserve(jobs);
    }
    ~WorkRun() { end(); }
    WorkRun(const WorkRun&) = delete;
    WorkRun& operator=(const WorkRun&) = delete;

    /// NO when no thread can be had.
    [[nodiscard]] bool start() {
        const platform::SignalsBlocked blocked;
        const std::lock_guard lock(mutex_);
        return startWorker();
    }

    /// NO when cancelled.
    bool lead() {
        const platform::RunsUntil untilTheEnd(ending_.get_token());
        while (WorkTurn* const turn = front()) {
            if (isCancelled()) return false;
            turn->announce();
            if (turn == callersTurn_) {
                turn->fault = faultIn(*turn);
                leaveTurn();
            } else {
                waitUntil([turn] { return turn->isDone; });
            }
            // A tool that was ended half-way makes results a guess.
            if (isCancelled()) return false;
            if (turn->fault) std::rethrow_exception(turn->fault);
            turn->take();
            if (isCancelled()) return false;  // the next item may be long in coming
            passFront();
        }
        return !isCancelled();
    }

private:
    using Clock = std::chrono::steady_clock;
    using Lock = std::unique_lock<std::mutex>;

    /// What a worker looks at its watch for; several times what it takes to wake one up.
    static constexpr std::chrono::milliseconds kTick{1};
    /// Turns in a row that are looked at together, and how long they take at most where the caller
    /// alone would be as quick.
    static constexpr std::uint64_t kRow = 64;
    static constexpr std::chrono::milliseconds kQuickRow{1};

    /// The turn that is taken next; null at the end.
    WorkTurn* front() {
        if (WorkTurn* const turn = fetchAlone()) return turn;
        waitUntil([this] { return !pending_.empty() || isClosed_; });
        const Lock lock(mutex_);
        return pending_.empty() ? nullptr : pending_.front().get();
    }

    /// The caller's own turn; null where workers have fetched or may, or there are no more.
    WorkTurn* fetchAlone() {
        Lock lock(mutex_);
        if (!isAlone_ || isFetching_ || isClosed_ || !pending_.empty()) return nullptr;
        isCallerBusy_ = true;
        callersTurn_ = fetchNext(lock);
        if (callersTurn_ == nullptr) isCallerBusy_ = false;
        return callersTurn_;
    }

    void leaveTurn() {
        const Lock lock(mutex_);
        isCallerBusy_ = false;
        callersTurn_ = nullptr;
        if (!isAlone_) room_.notify_one();
    }

    void passFront() {
        const Lock lock(mutex_);
        pending_.pop_front();
        ++passed_;
        if (isAlone_) return;
        room_.notify_one();
        if (passed_ % kRow != 0) return;
        const auto now = Clock::now();
        const bool wasQuick = now - rowBegan_ < kQuickRow;
        rowBegan_ = now;
        if (!wasQuick || mainThread_ != nullptr) return;
        isAlone_ = true;
        room_.notify_all();  // one of them has to look at its watch
    }

    /// On the main thread, with the work done that only it may do: workers may be waiting for that.
    template <class Condition>
    void waitUntil(const Condition& condition) {
        if (mainThread_ != nullptr) {
            mainThread_->waitServing([this, &condition] {
                const Lock lock(mutex_);
                return condition();
            });
        } else {
            Lock lock(mutex_);
            news_.wait(lock, condition);
        }
    }

    /// Not with mutex_ held.
    void tellCaller() {
        if (mainThread_ != nullptr) {
            mainThread_->wake();
        } else {
            news_.notify_one();
        }
    }

    [[nodiscard]] bool isCancelled() const {
        return (turns_.isCancelled && turns_.isCancelled()) || ending_.stop_requested();
    }

    /// With mutex_ held.
    bool startWorker() {
        try {
            workers_.emplace_back([this] { workUntilClosed(); });
            ++living_;
            return true;
        } catch (const std::system_error&) {
            return false;  // those that are there do the work
        }
    }

    void workUntilClosed() {
        const platform::RunsUntil untilTheEnd(ending_.get_token());
        while (WorkTurn* const turn = fetch()) {
            perform(*turn);
        }
        {
            const Lock lock(mutex_);
            --living_;
        }
        tellCaller();
    }

    /// A worker's next turn; null when there are no more.
    WorkTurn* fetch() {
        Lock lock(mutex_);
        waitForTurn(lock);
        if (isClosed_) return nullptr;
        ++busy_;
        WorkTurn* const fetched = fetchNext(lock);
        if (fetched == nullptr) --busy_;
        const bool isNews = pending_.size() == 1 || isClosed_;
        if (fetched != nullptr && busy_ == living_ && living_ < jobs_) startWorker();
        lock.unlock();
        if (isNews) tellCaller();
        return fetched;
    }

    /// Until a worker may fetch, or there is nothing more.
    void waitForTurn(Lock& lock) {
        const auto mayFetch = [this] {
            return !isAlone_ && !isFetching_ && pending_.size() < window_ &&
                   busy_ + (isCallerBusy_ ? 1 : 0) < jobs_;
        };
        while (!isClosed_ && !mayFetch()) {
            if (isAlone_ && !isWatched_) {
                watch(lock);
            } else {
                room_.wait(lock);
            }
        }
    }

    void watch(Lock& lock) {
        isWatched_ = true;
        while (isAlone_ && !isClosed_) {
            const std::uint64_t before = passed_;
            const bool isTick = room_.wait_for(lock, kTick) == std::cv_status::timeout;
            if (!isTick || passed_ != before) continue;
            isAlone_ = false;
            rowBegan_ = Clock::now();
            room_.notify_all();
        }
        isWatched_ = false;
    }

    /// The next turn, put to the back of the window. Null at the end, and then, as after a fault,
    /// nothing more is fetched. `lock` is given up meanwhile.
    WorkTurn* fetchNext(Lock& lock) {
        isFetching_ = true;
        lock.unlock();
        auto turn = isCancelled() ? nullptr : nextTurn();
        lock.lock();
        isFetching_ = false;
        const bool isFault = turn != nullptr && turn->fault != nullptr;
        const bool isLast = turn == nullptr || isFault;
        if (isClosed_) return nullptr;
        if (isLast) close();
        if (turn == nullptr) return nullptr;
        pending_.push_back(std::move(turn));
        if (!isAlone_) room_.notify_one();
        return isFault ? nullptr : pending_.back().get();
    }

    std::unique_ptr<WorkTurn> nextTurn() {
        try {
            return turns_.next();
        } catch (...) {
            return std::make_unique<FaultyTurn>(std::current_exception());
        }
    }

    static std::exception_ptr faultIn(WorkTurn& turn) {
        try {
            turn.perform();
            return nullptr;
        } catch (...) {
            return std::current_exception();
        }
    }

    void perform(WorkTurn& turn) {
        const std::exception_ptr fault = faultIn(turn);
        bool isFirst = false;
        {
            const Lock lock(mutex_);
            --busy_;
            turn.fault = fault;
            turn.isDone = true;
            if (fault) close();
            isFirst = &turn == pending_.front().get();
        }
        if (isFirst) tellCaller();
    }

    /// Nothing more is fetched. With mutex_ held.
    void close() {
        isClosed_ = true;
        room_.notify_all();
    }

    void end() {
        {
            const Lock lock(mutex_);
            close();
        }
        ending_.request_stop();
        waitUntil([this] { return living_ == 0; });
        for (std::thread& worker : workers_) {
            worker.join();
        }
    }

    const WorkTurns& turns_;
    const unsigned jobs_;
    const std::size_t window_;
    platform::MainThread* const mainThread_;  // null when the caller is another thread

    std::stop_source ending_;  // ends the tools of the workers, and of the caller
    struct EndToo {
        std::stop_source& ending;
        void operator()() const { ending.request_stop(); }
    };
    std::stop_callback<EndToo> withTheCallersRequest_{platform::RunsUntil::current(),
                                                      EndToo{ending_}};

    WorkTurn* callersTurn_ = nullptr;  // the caller's alone

    std::mutex mutex_;              // guards what follows, and the outcome of turns in the window
    std::condition_variable news_;  // for the caller
    std::condition_variable room_;  // for workers
    std::deque<std::unique_ptr<WorkTurn>> pending_;
    bool isAlone_;
    bool isWatched_ = false;
    bool isFetching_ = false;
    bool isCallerBusy_ = false;  // with a turn of its own
    bool isClosed_ = false;
    std::uint64_t passed_ = 0;
    Clock::time_point rowBegan_;
    std::vector<std::thread> workers_;
    unsigned living_ = 0;
    unsigned busy_ = 0;  // workers with a turn
};

}  // namespace

bool performTurns(const WorkTurns& turns, const WorkLimits& limits) {
    const unsigned jobs = workersFor(limits.jobs);
    if (jobs > 1) {
        const std::size_t window =
            limits.window > 0 ? limits.window : jobs * WorkLimits::kWindowPerJob;
        WorkRun run(turns, jobs, window);
        if (run.start()) return run.lead();
    }
    return performOnCaller(turns);
}

}  // namespace detail

}  // namespace qrx
