#include "platform/linux/WarmPool.h"

#include <algorithm>
#include <csignal>
#include <system_error>
#include <utility>

#include <unistd.h>

#include "platform/ports/SignalsBlocked.h"

namespace qrx::platform {

namespace {

using namespace std::chrono_literals;
using SteadyClock = std::chrono::steady_clock;

constexpr std::size_t kMostParents = 16;
constexpr unsigned kMostFailures = 3;
/// A parent is free again after a millisecond or two, a new one is ready after forty; so many
/// waits are about as long.
constexpr auto kRatherWait = 5ms;
constexpr unsigned kManyWaits = 32;

std::size_t parentsFor(std::size_t chosen) {
    if (chosen > 0) return chosen;
    return std::clamp<std::size_t>(std::thread::hardware_concurrency(), 1, kMostParents);
}

}  // namespace

WarmPool::WarmPool(WarmChoices choices) : choices_(std::move(choices)), owner_(::getpid()) {
    choices_.parentsAtMost = parentsFor(choices_.parentsAtMost);
}

WarmPool::~WarmPool() {
    if (::getpid() != owner_) {  // a copy of the process has neither the thread nor the children
        if (keeper_.joinable()) keeper_.detach();
        for (Idle& idle : idle_) {
            static_cast<void>(idle.parent.release());
        }
        return;
    }
    giveUp();
    {
        Lock lock(mutex_);
        endIdleParents(lock);
        keeperMayGo_ = true;
        keeperHasWork_.notify_all();
    }
    if (keeper_.joinable()) keeper_.join();
}

std::optional<SpawnedChild> WarmPool::start(const ProcessRequest& request,
                                            const ChildStreams& streams) {
    if (!choices_.library || ::getpid() != owner_) return std::nullopt;
    const std::optional<ToolWorld> world = worldOf(request.program);
    if (!world) return std::nullopt;
    Lock lock(mutex_);
    if (!isTurnOf(*world, lock)) return std::nullopt;
    Loan loan = borrowed(request.program, lock);
    lock.unlock();
    if (!loan.parent) return std::nullopt;
    std::optional<SpawnedChild> child = loan.parent->start(request, streams, patience());
    giveBack(std::move(loan), child.has_value());
    return child;
}

/// Counts the run, and says whether it may be warm. Parents of another world are ended.
bool WarmPool::isTurnOf(const ToolWorld& world, Lock& lock) {
    if (isGivenUp_) return false;
    if (world_ != world) {
        world_ = world;
        ++generation_;
        runs_ = 0;
        failures_ = 0;
        isCold_ = false;
        endIdleParents(lock);
        if (isGivenUp_ || world_ != world) return false;
    }
    return ++runs_ > choices_.plainRunsFirst && !isCold_;
}

WarmPool::Loan WarmPool::borrowed(const std::string& program, Lock& lock) {
    const std::uint64_t generation = generation_;
    for (;;) {
        if (isGivenUp_ || isCold_ || generation != generation_) return {};
        if (RunsUntil::current().stop_requested()) return {};
        if (!idle_.empty()) {
            Loan loan{std::move(idle_.back().parent), generation};  // the warmest
            idle_.pop_back();
            return loan;
        }
        const bool isTooEarly =
            parents_ > 0 && ++waits_ % kManyWaits != 0 &&
            parentIsFree_.wait_for(lock, kRatherWait) == std::cv_status::no_timeout;
        const bool mayBeStarted = generation == generation_ && idle_.empty() && !isGivenUp_ &&
                                  !isCold_ && parents_ < choices_.parentsAtMost;
        if (!isTooEarly && mayBeStarted) {
            ++parents_;
            Loan loan{newParent(program, lock), generation};
            if (!loan.parent) --parents_;
            return loan;
        }
    }
}

/// Nothing, and a word about it, when the program could not be made to wait. The lock is let go
/// meanwhile.
std::unique_ptr<WarmParent> WarmPool::newParent(const std::string& program, Lock& lock) {
    const std::optional<FileIdentity> before = world_->file;
    lock.unlock();
    std::optional<std::string> why = whyNotWarmable(program);
    bool isForGood = why.has_value();
    std::unique_ptr<WarmParent> parent;
    if (!why) {
        try {
            parent = madeByKeeper(program);
            why = parent->whyNotReady(patience());
            isForGood = why.has_value();
            if (!why && identityOf(program) != before) why = "changed while it was started";
        } catch (const std::system_error& fault) {
            why = fault.what();
        }
    }
    if (why) parent.reset();
    lock.lock();
    if (why && !isGivenUp_ && world_ && world_->file == before) {
        fall(program, *why, isForGood && !RunsUntil::current().stop_requested(), lock);
    }
    if (parent) ++counts_.parentsStarted;
    return parent;
}

void WarmPool::giveBack(Loan loan, bool didStart) {
    Lock lock(mutex_);
    const bool isKept = loan.parent->isUsable() && loan.generation == generation_ && !isGivenUp_;
    if (didStart) {
        ++counts_.warmRuns;
        failures_ = 0;
    } else if (!loan.parent->isUsable() && loan.generation == generation_ && !isGivenUp_) {
        fall(world_->program, "its warm parent ended", false, lock);
    }
    if (isKept) {
        if (idle_.empty()) keeperHasWork_.notify_one();
        idle_.push_back({std::move(loan.parent), SteadyClock::now()});
    } else {
        --parents_;
    }
    parentIsFree_.notify_one();
    lock.unlock();  // a parent that is not kept is ended without it
}

/// The program is run plainly: now, or from now on.
void WarmPool::fall(std::string_view program, std::string_view why, bool forGood, Lock& lock) {
    isCold_ = isCold_ || forGood || ++failures_ >= kMostFailures;
    parentIsFree_.notify_all();
    if (!choices_.onPlain) return;
    const std::string line = std::string(program) + " is run plainly" +
                             (isCold_ ? " from now on" : "") + ": " + std::string(why);
    lock.unlock();
    choices_.onPlain(line);
    lock.lock();
}

void WarmPool::endIdleParents(Lock& lock) {
    std::vector<Idle> ended;
    ended.swap(idle_);
    parents_ -= ended.size();
    lock.unlock();
    ended.clear();
    lock.lock();
}

void WarmPool::giveUp() {
    const std::lock_guard lock(mutex_);
    isGivenUp_ = true;
    parentIsFree_.notify_all();
}

bool WarmPool::isGivenUp() const {
    const std::lock_guard lock(mutex_);
    return isGivenUp_;
}

Patience WarmPool::patience() const {
    return {.limit = choices_.answerLimit,
            .isGivenUp = [this] { return isGivenUp() || RunsUntil::current().stop_requested(); }};
}

WarmCounts WarmPool::counts() const {
    const std::lock_guard lock(mutex_);
    return counts_;
}

std::vector<pid_t> WarmPool::idleParents() const {
    const std::lock_guard lock(mutex_);
    std::vector<pid_t> pids;
    for (const Idle& idle : idle_) {
        pids.push_back(idle.parent->pid());
    }
    return pids;
}

std::unique_ptr<WarmParent> WarmPool::madeByKeeper(const std::string& program) {
    std::packaged_task<std::unique_ptr<WarmParent>()> task(
        [&] { return std::make_unique<WarmParent>(program, *choices_.library); });
    auto made = task.get_future();
    {
        const Lock lock(mutex_);
        toMake_.push_back(std::move(task));
        if (!keeper_.joinable()) {
            const SignalsBlocked blocked;
            keeper_ = std::thread([this] { keep(); });
        }
        keeperHasWork_.notify_one();
    }
    return made.get();
}

/// The keeper's life: starts parents for others, and ends those that are of no use any more.
void WarmPool::keep() {
    Lock lock(mutex_);
    while (!keeperMayGo_) {
        while (!toMake_.empty()) {
            auto task = std::move(toMake_.back());
            toMake_.pop_back();
            lock.unlock();
            task();
            lock.lock();
        }
        sweep(lock);
        if (keeperMayGo_ || !toMake_.empty()) continue;
        if (idle_.empty()) {
            keeperHasWork_.wait(lock);
        } else {
            keeperHasWork_.wait_for(lock, choices_.idleLimit / 2);
        }
    }
}

void WarmPool::sweep(Lock& lock) {
    const Time old = SteadyClock::now() - choices_.idleLimit;
    const auto young = std::find_if(idle_.begin(), idle_.end(),
                                    [&](const Idle& idle) { return idle.since > old; });
    std::vector<Idle> ended(std::make_move_iterator(idle_.begin()), std::make_move_iterator(young));
    idle_.erase(idle_.begin(), young);
    parents_ -= ended.size();
    lock.unlock();
    ended.clear();
    lock.lock();
}

}  // namespace qrx::platform
