#pragma once

#include <chrono>
#include <cstdint>

#include "platform/ports/ServiceBus.h"

namespace qrx {

/// Streams under way at one time; each has a thread of its own.
inline constexpr int kMostStreams = 8;
/// Most time that a reader may take nothing.
inline constexpr std::chrono::seconds kReaderStallLimit{30};

/// Serves one streamFilePathDictionaries call on the calling thread, which is not the main thread:
/// clips are written as they are found, progress goes to the caller. Throws platform::BusError.
[[nodiscard]] platform::BusAnswer streamFilePathDictionaries(
    const platform::BusCall& call, platform::Clock::Duration stallLimit = kReaderStallLimit);

}  // namespace qrx
