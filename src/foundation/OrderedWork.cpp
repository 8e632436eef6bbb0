#include "foundation/OrderedWork.h"

#include <algorithm>
#include <charconv>
#include <condition_variable>
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
/// window, while workers fetch new ones to its back and perform them.
class WorkRun {
public:
    WorkRun(const WorkTurns& turns, unsigned jobs, std::size_t window)
        : turns_(turns), jobs_(jobs), window_(window), mainThread_(mainThreadIfCurrent()) {
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
        while (WorkTurn* const turn = front()) {
            if (isCancelled()) return false;
            turn->announce();
            waitUntil([turn] { return turn->isDone; });
            if (isCancelled()) return false;
            if (turn->fault) std::rethrow_exception(turn->fault);
            turn->take();
            if (isCancelled()) return false;  // the next item may be long in coming
            passFront();
        }
        return !isCancelled();
    }

private:
    /// The turn that is taken next; null at the end.
    WorkTurn* front() {
        waitUntil([this] { return !pending_.empty() || isClosed_; });
        const std::lock_guard lock(mutex_);
        return pending_.empty() ? nullptr : pending_.front().get();
    }

    void passFront() {
        {
            const std::lock_guard lock(mutex_);
            pending_.pop_front();
        }
        room_.notify_one();
    }

    /// On the main thread, with the work done that only it may do: workers may be waiting for that.
    template <class Condition>
    void waitUntil(const Condition& condition) {
        if (mainThread_ != nullptr) {
            mainThread_->waitServing([this, &condition] {
                const std::lock_guard lock(mutex_);
                return condition();
            });
        } else {
            std::unique_lock lock(mutex_);
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
            const std::lock_guard lock(mutex_);
            --living_;
        }
        tellCaller();
    }

    /// The next turn, at the back of the window; null when there are no more.
    WorkTurn* fetch() {
        const std::lock_guard oneAtATime(fetching_);
        if (!hasRoom()) return nullptr;
        auto turn = isCancelled() ? nullptr : nextTurn();
        WorkTurn* const fetched = turn.get();
        const bool isLast = fetched == nullptr || fetched->fault != nullptr;
        bool isFirst = false;
        {
            const std::lock_guard lock(mutex_);
            if (isClosed_) return nullptr;
            if (fetched != nullptr) pending_.push_back(std::move(turn));
            isFirst = pending_.size() == 1;
            isClosed_ = isLast;
            if (!isLast && ++busy_ == living_ && living_ < jobs_) startWorker();
        }
        if (isFirst || isLast) tellCaller();
        return isLast ? nullptr : fetched;
    }

    /// Waits for it; NO when nothing more is to be fetched.
    bool hasRoom() {
        std::unique_lock lock(mutex_);
        room_.wait(lock, [this] { return isClosed_ || pending_.size() < window_; });
        return !isClosed_;
    }

    std::unique_ptr<WorkTurn> nextTurn() {
        try {
            return turns_.next();
        } catch (...) {
            return std::make_unique<FaultyTurn>(std::current_exception());
        }
    }

    void perform(WorkTurn& turn) {
        std::exception_ptr fault;
        try {
            turn.perform();
        } catch (...) {
            fault = std::current_exception();
        }
        bool isFirst = false;
        {
            const std::lock_guard lock(mutex_);
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
            const std::lock_guard lock(mutex_);
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

    std::stop_source ending_;  // ends the tools of the workers
    struct EndToo {
        std::stop_source& ending;
        void operator()() const { ending.request_stop(); }
    };
    std::stop_callback<EndToo> withTheCallersRequest_{platform::RunsUntil::current(),
                                                      EndToo{ending_}};

    std::mutex fetching_;
    std::mutex mutex_;              // guards what follows, and the outcome of turns in the window
    std::condition_variable news_;  // for the caller
    std::condition_variable room_;  // for the worker that fetches
    std::deque<std::unique_ptr<WorkTurn>> pending_;
    bool isClosed_ = false;
    std::vector<std::thread> workers_;
    unsigned living_ = 0;
    unsigned busy_ = 0;
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
