#include "platform/linux/GlibMainThread.h"

#include <cstdlib>
#include <exception>
#include <future>
#include <utility>

#include <glib.h>

namespace qrx::platform {

/// Work on its way to the main thread, and what came of it.
class GlibMainThread::Job {
public:
    explicit Job(const std::function<void()>& work) : task_(work), done_(task_.get_future()) {}

    void perform() { task_(); }
    /// Throws what the work threw.
    void waitUntilDone() { done_.get(); }

private:
    std::packaged_task<void()> task_;
    std::future<void> done_;
};

struct GlibMainThread::Loop {
    Loop() : loop(g_main_loop_new(nullptr, FALSE)) {}
    ~Loop() { g_main_loop_unref(loop); }
    Loop(const Loop&) = delete;
    Loop& operator=(const Loop&) = delete;

    /// Not g_main_context_invoke: between the moment that serve() is announced and the one that
    /// the loop owns its context, that would do the work on the caller.
    ///
    /// @return  the number of the call, for g_source_remove.
    guint callSoon(GSourceFunc function, gpointer data, GDestroyNotify atItsEnd = nullptr) const {
        GSource* const source = g_idle_source_new();
        g_source_set_priority(source, G_PRIORITY_DEFAULT);
        g_source_set_callback(source, function, data, atItsEnd);
        const guint number = g_source_attach(source, nullptr);
        g_source_unref(source);
        return number;
    }

    GMainLoop* loop;
};

GlibMainThread::GlibMainThread(std::function<void()> beforeEnd, std::function<void()> endProcess)
    : beforeEnd_(std::move(beforeEnd)),
      endProcess_(std::move(endProcess)),
      loop_(std::make_unique<Loop>()) {}

GlibMainThread::~GlibMainThread() = default;

bool GlibMainThread::isCurrent() const {
    return owner_ == std::this_thread::get_id();
}

void GlibMainThread::runAndWait(const std::function<void()>& work) {
    if (isCurrent()) {
        work();
        return;
    }
    std::unique_lock lock(mutex_);
    ownership_.wait(lock, [this] { return ownerTakesWork_ || owner_.load() == std::thread::id(); });
    if (!ownerTakesWork_) {
        performAsOwner(work, lock);
        return;
    }
    const auto job = std::make_shared<Job>(work);
    handOver(job);
    lock.unlock();
    job->waitUntilDone();
}

void GlibMainThread::handOver(const std::shared_ptr<Job>& job) {
    queue_.push_back(job);
    news_.notify_all();
    if (!isServing_ || callOfLoop_ != 0) return;
    const auto perform = [](gpointer self) -> gboolean {
        auto& main = *static_cast<GlibMainThread*>(self);
        std::unique_lock lock(main.mutex_);
        main.performSome(lock);
        if (!main.queue_.empty()) return G_SOURCE_CONTINUE;  // in turn with the loop's other work
        main.callOfLoop_ = 0;
        return G_SOURCE_REMOVE;
    };
    callOfLoop_ = loop_->callSoon(perform, this);
}

void GlibMainThread::performAsOwner(const std::function<void()>& work,
                                    std::unique_lock<std::mutex>& lock) {
    owner_ = std::this_thread::get_id();
    lock.unlock();
    std::exception_ptr fault;
    try {
        work();
    } catch (...) {
        fault = std::current_exception();
    }
    lock.lock();
    leaveOwnership();
    if (fault) std::rethrow_exception(fault);
}

void GlibMainThread::performSome(std::unique_lock<std::mutex>& lock) {
    std::vector<std::shared_ptr<Job>> jobs;
    jobs.swap(queue_);
    lock.unlock();
    for (const std::shared_ptr<Job>& job : jobs) {
        job->perform();
    }
    lock.lock();
}

void GlibMainThread::performTheRest(std::unique_lock<std::mutex>& lock) {
    ownerTakesWork_ = false;
    while (!queue_.empty()) {
        performSome(lock);
    }
}

void GlibMainThread::leaveOwnership() {
    owner_ = std::thread::id();
    ownership_.notify_all();
}

void GlibMainThread::waitServing(const std::function<bool()>& isDone) {
    std::unique_lock lock(mutex_);
    if (!isCurrent()) {
        news_.wait(lock, isDone);
        return;
    }
    const bool tookWorkBefore = std::exchange(ownerTakesWork_, true);
    ownership_.notify_all();
    while (!isDone()) {
        if (queue_.empty()) {
            news_.wait(lock);
        } else {
            performSome(lock);
        }
    }
    if (!tookWorkBefore) performTheRest(lock);
}

void GlibMainThread::wake() {
    { const std::lock_guard whoeverAskedIsWaitingNow(mutex_); }
    news_.notify_all();
}

int GlibMainThread::serve() {
    {
        std::unique_lock lock(mutex_);
        ownership_.wait(lock, [this] { return owner_.load() == std::thread::id(); });
        owner_ = std::this_thread::get_id();
        ownerTakesWork_ = true;
        isServing_ = true;
        ownership_.notify_all();
    }
    g_main_loop_run(loop_->loop);
    std::unique_lock lock(mutex_);
    isServing_ = false;
    if (callOfLoop_ != 0) g_source_remove(std::exchange(callOfLoop_, 0));
    performTheRest(lock);  // what came too late for the loop has somebody waiting for it
    leaveOwnership();
    return EXIT_SUCCESS;
}

void GlibMainThread::terminate() {
    if (beforeEnd_) beforeEnd_();
    if (endProcess_) {
        endProcess_();
    } else {
        std::_Exit(EXIT_SUCCESS);
    }
    // As a source, since a loop that has not begun yet forgets that it was asked to quit. It may
    // outlive this object when the loop has ended by itself, and so holds the loop.
    const auto quit = [](gpointer loop) -> gboolean {
        g_main_loop_quit(static_cast<GMainLoop*>(loop));
        return G_SOURCE_REMOVE;
    };
    const auto letGo = [](gpointer loop) { g_main_loop_unref(static_cast<GMainLoop*>(loop)); };
    loop_->callSoon(quit, g_main_loop_ref(loop_->loop), letGo);
}

}  // namespace qrx::platform
