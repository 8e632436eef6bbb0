#pragma once

#include <cstddef>
#include <exception>
#include <functional>
#include <memory>
#include <optional>
#include <string_view>
#include <utility>

namespace qrx {

/// How many items are worked on at a time, and how far the walk over them runs ahead.
struct WorkLimits {
    /// As many as were chosen for the whole process (platform::Services::jobs).
    static constexpr unsigned kAsChosen = 0;
    /// Threads cost memory, and so do the tools that they run.
    static constexpr unsigned kMostJobs = 64;
    /// Items in the window for each worker, where no window is named. One slow item holds up what
    /// comes after it for as long as the window lasts.
    static constexpr std::size_t kWindowPerJob = 64;

    unsigned jobs = kAsChosen;  ///< most workers; 1 does everything on the calling thread
    std::size_t window = 0;     ///< most items fetched and not yet taken; 0: kWindowPerJob a job
};

/// The number of workers that `jobs` means: from 1 to kMostJobs; one per core that the process may
/// use where neither it nor the process has chosen.
[[nodiscard]] unsigned workersFor(unsigned jobs);

/// The number of workers that a text names: decimal digits, from 1 to kMostJobs; else nothing.
[[nodiscard]] std::optional<unsigned> jobsNamed(std::string_view text);

/// Work on a row of items, several at a time, of which an observer sees one at a time and in order.
///
///     performInOrder<FilePath, Facts>({
///         .next = [&] { return walk.next(); },                              // on any
///         .work = [](const FilePath& file) { return factsOf(file); },       // on any
///         .before = [&](const FilePath& file) { show(file); },              // on the caller
///         .take = [&](const FilePath& file, Facts&& f) { print(file, f); },  // on the caller
///         .isCancelled = [&] { return session.isCancelled.load(); },        // on any
///     }, {.jobs = 4});
///
/// `before` and `take` come in exactly the sequence that one worker would give: before(1), take(1),
/// before(2), take(2), ... A fault comes at its turn, too: what stands before it is still taken.
template <class Item, class Result>
struct OrderedWork {
    /// The next item, nothing at the end. Called by one thread at a time, not always by the same,
    /// and not again after the end or a fault. Where items may be long in coming it gives up when
    /// platform::RunsUntil::current() stops: the run has ended then.
    std::function<std::optional<Item>()> next;
    /// What comes of an item. Called for several items at the same time.
    std::function<Result(const Item&)> work;
    /// Before the item's turn to be taken; not after the last. May be empty.
    std::function<void(const Item&)> before;
    std::function<void(const Item&, Result&&)> take;
    /// YES ends the run: no further item is fetched or taken. Asked often, from any thread, and
    /// must stay YES. May be empty.
    std::function<bool()> isCancelled;
};

namespace detail {

/// One item on its way through the window.
class WorkTurn {
public:
    WorkTurn() = default;
    virtual ~WorkTurn() = default;
    WorkTurn(const WorkTurn&) = delete;
    WorkTurn& operator=(const WorkTurn&) = delete;

    virtual void announce() = 0;
    virtual void perform() = 0;
    virtual void take() = 0;

    // Belong to whoever leads the run.
    bool isDone = false;
    std::exception_ptr fault;
};

struct WorkTurns {
    std::function<std::unique_ptr<WorkTurn>()> next;  ///< null at the end
    std::function<bool()> isCancelled;                ///< may be empty
};

[[nodiscard]] bool performTurns(const WorkTurns& turns, const WorkLimits& limits);

template <class Item, class Result>
class WorkTurnOf final : public WorkTurn {
public:
    WorkTurnOf(const OrderedWork<Item, Result>& steps, Item&& item)
        : steps_(steps), item_(std::move(item)) {}

    void announce() override {
        if (steps_.before) steps_.before(item_);
    }
    void perform() override { result_.emplace(steps_.work(item_)); }
    void take() override { steps_.take(item_, std::move(*result_)); }

private:
    const OrderedWork<Item, Result>& steps_;
    Item item_;
    std::optional<Result> result_;
};

}  // namespace detail

/// Carries `steps` out and comes back when all is done and every worker has ended.
///
/// What a step throws ends the run and comes out here. A run that ends early, by a fault or because
/// it is cancelled, ends the tools that its workers are running (platform::RunsUntil) and waits for
/// what else is under way; so does the end of the request that the calling thread works for.
/// Workers take no signals; they may ask the main thread for work even where the caller is the main
/// thread. The caller does the work as long as it goes quickly, and where no thread can be started.
///
/// @return  NO when the run was cancelled before its end.
template <class Item, class Result>
bool performInOrder(const OrderedWork<Item, Result>& steps, const WorkLimits& limits = {}) {
    const auto next = [&steps]() -> std::unique_ptr<detail::WorkTurn> {
        std::optional<Item> item = steps.next();
        if (!item) return nullptr;
        return std::make_unique<detail::WorkTurnOf<Item, Result>>(steps, std::move(*item));
    };
    return detail::performTurns({.next = next, .isCancelled = steps.isCancelled}, limits);
}

}  // namespace qrx
