#pragma once

#include <atomic>

namespace qrx {

/// The process-wide instance of `Class`, made on first use and never destroyed: its destructor is
/// out of every caller's reach. Each class has a slot of its own; subclasses never share their
/// parent's. No lock is taken: the slot is filled by one compare-and-swap, and a thread that loses
/// the race deletes its own object and answers the winner's.
template <class Class>
[[nodiscard]] Class& sharedInstanceOf() {
    static std::atomic<Class*> slot{nullptr};
    Class* published = slot.load(std::memory_order_seq_cst);
    while (published == nullptr) {
        auto* const candidate = new Class();
        if (slot.compare_exchange_strong(published, candidate, std::memory_order_seq_cst)) {
            published = candidate;
        } else {
            delete candidate;  // `published` now holds the winner
        }
    }
    return *published;
}

}  // namespace qrx
