#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <future>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "platform/linux/SpawnedChild.h"
#include "platform/linux/WarmParent.h"
#include "platform/linux/WarmableTool.h"

namespace qrx::platform {

/// What may be chosen about warm parents. The defaults are those of the programs.
struct WarmChoices {
    /// The library that makes them; without one every run is plain.
    std::optional<std::string> library = warmLibrary();
    /// At most so many at a time; 0: one for each processor, 16 at most.
    std::size_t parentsAtMost = 0;
    /// So many runs of a program are plain before the first warm one: it pays from the second run.
    std::uint64_t plainRunsFirst = 1;
    /// A parent that was of no use for so long is ended.
    std::chrono::nanoseconds idleLimit = std::chrono::seconds{60};
    /// A parent that says nothing for so long is given up.
    std::chrono::nanoseconds answerLimit = std::chrono::seconds{5};
    /// Told, in one line, why a program is run plainly. May be called from any thread.
    std::function<void(std::string_view)> onPlain;
};

/// How often what was done since the start.
struct WarmCounts {
    std::uint64_t warmRuns = 0;
    std::uint64_t parentsStarted = 0;
};

/// The warm parents of one program at a time: those of another are ended when the program, its
/// file or what it would start with changes.
class WarmPool {
public:
    explicit WarmPool(WarmChoices choices = {});
    ~WarmPool();
    WarmPool(const WarmPool&) = delete;
    WarmPool& operator=(const WarmPool&) = delete;

    /// A child that runs the request, or nothing when it is to be run plainly. Waits for a parent,
    /// and starts one, if need be. May be called from any thread.
    [[nodiscard]] std::optional<SpawnedChild> start(const ProcessRequest& request,
                                                    const ChildStreams& streams);

    /// Ends what waits in `start`, and makes every later call answer nothing.
    void giveUp();

    [[nodiscard]] WarmCounts counts() const;
    /// Process numbers of the parents that are at rest.
    [[nodiscard]] std::vector<pid_t> idleParents() const;

private:
    using Time = std::chrono::steady_clock::time_point;
    using Lock = std::unique_lock<std::mutex>;

    struct Idle {
        std::unique_ptr<WarmParent> parent;
        Time since;
    };
    /// A parent on loan, and which world it was started in.
    struct Loan {
        std::unique_ptr<WarmParent> parent;
        std::uint64_t generation = 0;
    };
    [[nodiscard]] bool isGivenUp() const;
    [[nodiscard]] bool isTurnOf(const ToolWorld& world, Lock& lock);
    [[nodiscard]] Loan borrowed(const std::string& program, Lock& lock);
    [[nodiscard]] std::unique_ptr<WarmParent> newParent(const std::string& program, Lock& lock);
    void giveBack(Loan loan, bool didStart);
    void fall(std::string_view program, std::string_view why, bool forGood, Lock& lock);
    void endIdleParents(Lock& lock);
    [[nodiscard]] Patience patience() const;

    [[nodiscard]] std::unique_ptr<WarmParent> madeByKeeper(const std::string& program);
    void keep();
    void sweep(Lock& lock);

    WarmChoices choices_;
    const pid_t owner_;

    mutable std::mutex mutex_;  // guards what follows
    std::condition_variable parentIsFree_;
    bool isGivenUp_ = false;
    std::optional<ToolWorld> world_;
    std::uint64_t generation_ = 0;  // of the world
    std::uint64_t runs_ = 0;        // of the program, in this world
    bool isCold_ = false;           // the program cannot be warmed
    unsigned failures_ = 0;         // one after the other
    std::size_t parents_ = 0;       // idle, on loan, or being started
    unsigned waits_ = 0;            // for one that is free
    std::vector<Idle> idle_;        // the longest idle first
    WarmCounts counts_;

    // The kernel ends a warm parent, and its children, when the thread that started it ends; so all
    // are started by one thread, which lives as long as the pool.
    std::condition_variable keeperHasWork_;
    std::vector<std::packaged_task<std::unique_ptr<WarmParent>()>> toMake_;
    bool keeperMayGo_ = false;
    std::thread keeper_;
};

}  // namespace qrx::platform
