#pragma once

#include <cstddef>
#include <cstdint>

/// What a warm parent and its client say to each other, over one SOCK_SEQPACKET pair.
///
///     parent -> client   hello            once, before the tool's main would have run
///     client -> parent   Request          with descriptors: working folder, then the streams
///     parent -> client   forked           pid of the child
///     child  -> client   ready            in its own group, about to run main
///
/// In place of forked and ready comes refused, with an error number. Constants and plain records
/// only: one of the two ends is a library without the C++ library.
namespace qrx::platform::warm {

/// Changes with every change of what follows: an old service may meet a new library.
inline constexpr std::uint32_t kVersion = 2;

/// Set for the warm parent alone: "VERSION:PID-OF-THE-CLIENT".
inline constexpr char kVariable[] = "QRX_WARM_PARENT";
inline constexpr char kPreloadVariable[] = "LD_PRELOAD";
/// Of the GNU C library: decoders take megabytes that they clear at once, and give back what they
/// take again a moment later. Huge pages, and keeping what is given back, spare the kernel half of
/// its work on that. Set where the user has not set any.
inline constexpr char kTunablesVariable[] = "GLIBC_TUNABLES";
inline constexpr char kTunables[] =
    "glibc.malloc.hugetlb=1:glibc.malloc.mmap_threshold=33554432:"
    "glibc.malloc.trim_threshold=67108864";

/// Where the warm parent finds its end of the pair.
inline constexpr int kSocket = 3;

inline constexpr std::size_t kMostRequestBytes = std::size_t{64} << 10U;
inline constexpr std::size_t kMostArguments = 1024;
inline constexpr std::size_t kStandardStreams = 3;

/// Followed by the arguments, the program's own name first, each ended by a NUL.
struct Request {
    std::uint32_t version;
    std::uint32_t argumentCount;
    std::uint32_t fileCreationMask;
    std::uint32_t givenStreams;  ///< bit n: stream n is given; without it the child's is closed
};

enum class Kind : std::uint32_t { hello = 1, forked, ready, refused };

struct Answer {
    std::uint32_t version;
    Kind kind;
    std::int32_t pid;    ///< of the parent in hello, else of the child
    std::int32_t error;  ///< of refused, else 0
};

}  // namespace qrx::platform::warm
