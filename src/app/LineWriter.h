#pragma once

#include <stdexcept>
#include <stop_token>
#include <string_view>

#include "platform/ports/BusValue.h"
#include "platform/ports/Clock.h"

namespace qrx {

/// Nobody has read for too long.
struct ReaderStalled : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// What is written can reach nobody any more.
struct ReaderGone : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// Whoever asked has gone.
struct WritingCancelled {};

/// Writes to a descriptor that somebody else made, and waits for its reader only so long. The
/// descriptor is used as it came, blocking or not.
class LineWriter {
public:
    /// @param stallLimit  most time without one byte being taken.
    LineWriter(platform::BusDescriptor descriptor, platform::Clock::Duration stallLimit,
               std::stop_token cancelled);

    /// All of `text`. Throws ReaderStalled, ReaderGone and WritingCancelled.
    void write(std::string_view text);

private:
    /// Until some bytes can be written at once.
    void waitForRoom() const;

    platform::BusDescriptor descriptor_;
    platform::Clock::Duration stallLimit_;
    std::stop_token cancelled_;
};

}  // namespace qrx
