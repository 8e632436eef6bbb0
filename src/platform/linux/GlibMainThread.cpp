#include "platform/linux/GlibMainThread.h"

#include <cstdlib>
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
    void callSoon(GSourceFunc function, gpointer data) const {
        GSource* const source = g_idle_source_new();
        g_source_set_priority(source, G_PRIORITY_DEFAULT);
        g_source_set_callback(source, function, data, nullptr);
        g_source_attach(source, nullptr);
        g_source_unref(source);
    }

    GMainLoop* loop;
};

GlibMainThread::GlibMainThread(std::function<void()> beforeEnd, std::function<void()> endProcess)
    : beforeEnd_(std::move(beforeEnd)),
      endProcess_(std::move(endProcess)),
      loop_(std::make_unique<Loop>()) {}

GlibMainThread::~GlibMainThread() = default;

bool GlibMainThread::isCurrent() const {
    const std::thread::id caller = std::this_thread::get_id();
    return servant_ == caller || worker_ == caller;
}

void GlibMainThread::runAndWait(const std::function<void()>& work) {
    if (isCurrent()) {
        work();
        return;
    }
    const auto job = std::make_shared<Job>(work);
    while (!handedOver(job) && !performedHere(*job)) {
        // serve() began or ended between the two
    }
    job->waitUntilDone();
}

bool GlibMainThread::handedOver(const std::shared_ptr<Job>& job) {
    const std::lock_guard lock(queueMutex_);
    if (!serving_) return false;
    queue_.push_back(job);
    const auto performAll = [](gpointer self) -> gboolean {
        static_cast<GlibMainThread*>(self)->performHandedOver();
        return G_SOURCE_REMOVE;
    };
    loop_->callSoon(performAll, this);
    return true;
}

bool GlibMainThread::performedHere(Job& job) {
    const std::lock_guard lock(workMutex_);  // serve() waits for it, so that it cannot begin now
    if (servant_.load() != std::thread::id()) return false;
    worker_ = std::this_thread::get_id();
    job.perform();
    worker_ = std::thread::id();
    return true;
}

void GlibMainThread::performHandedOver() {
    std::vector<std::shared_ptr<Job>> jobs;
    {
        const std::lock_guard lock(queueMutex_);
        jobs.swap(queue_);
    }
    for (const std::shared_ptr<Job>& job : jobs) {
        job->perform();
    }
}

int GlibMainThread::serve() {
    {
        const std::scoped_lock noWorkElsewhere(workMutex_, queueMutex_);
        servant_ = std::this_thread::get_id();
        serving_ = true;
    }
    g_main_loop_run(loop_->loop);
    const std::lock_guard noWorkElsewhere(workMutex_);
    {
        const std::lock_guard lock(queueMutex_);
        serving_ = false;
    }
    performHandedOver();  // what came too late for the loop has somebody waiting for it
    servant_ = std::thread::id();
    return EXIT_SUCCESS;
}

void GlibMainThread::terminate() {
    if (beforeEnd_) beforeEnd_();
    if (endProcess_) {
        endProcess_();
    } else {
        std::_Exit(EXIT_SUCCESS);
    }
    // As a source, since a loop that has not begun yet forgets that it was asked to quit.
    const auto quit = [](gpointer loop) -> gboolean {
        g_main_loop_quit(static_cast<GMainLoop*>(loop));
        return G_SOURCE_REMOVE;
    };
    loop_->callSoon(quit, loop_->loop);
}

}  // namespace qrx::platform
