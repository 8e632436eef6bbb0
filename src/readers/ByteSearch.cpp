#include "readers/ByteSearch.h"

#include <array>
#include <cstdint>
#include <cstring>

namespace qrx {

namespace {

constexpr std::size_t kLaneCount = 16;
constexpr std::size_t kRowsOfLanes = 4;
constexpr std::size_t kBlock = kLaneCount * kRowsOfLanes;  ///< places that are tested at once
constexpr std::size_t kProbes = 4;

// The compilers' own vectors: 16 bytes in one register on every 64-bit machine.
using Lanes = std::uint8_t __attribute__((vector_size(kLaneCount)));

Lanes lanesAt(const std::byte* place) {
    Lanes lanes;
    std::memcpy(&lanes, place, sizeof lanes);
    return lanes;
}

bool anySet(Lanes lanes) {
    std::array<std::uint64_t, 2> halves{};
    std::memcpy(halves.data(), &lanes, sizeof lanes);
    return (halves[0] | halves[1]) != 0;
}

/// Tells 64 places at once whether the pattern can begin at one of them, by four of its bytes: its
/// first, its last and two between. For patterns up to four bytes long that is certain.
class Filter {
public:
    explicit Filter(std::span<const std::byte> pattern) {
        const std::size_t last = pattern.size() - 1;
        offsets_ = {0, last / 3, last * 2 / 3, last};
        for (std::size_t probe = 0; probe < kProbes; ++probe) {
            wanted_[probe] = Lanes{} + std::to_integer<std::uint8_t>(pattern[offsets_[probe]]);
        }
    }

    /// `place` must have kBlock - 1 bytes and the pattern's length behind it.
    [[nodiscard]] bool mayBeginInBlock(const std::byte* place) const {
        Lanes any{};
        for (std::size_t row = 0; row < kRowsOfLanes; ++row) {
            const std::byte* const start = place + row * kLaneCount;
            Lanes differing = lanesAt(start + offsets_[0]) ^ wanted_[0];
            differing |= lanesAt(start + offsets_[1]) ^ wanted_[1];
            differing |= lanesAt(start + offsets_[2]) ^ wanted_[2];
            differing |= lanesAt(start + offsets_[3]) ^ wanted_[3];
            any |= reinterpret_cast<Lanes>(differing == Lanes{});
        }
        return anySet(any);
    }

private:
    std::array<std::size_t, kProbes> offsets_{};
    std::array<Lanes, kProbes> wanted_{};
};

/// First of the `count` places from `from` on where `pattern` stands. All of them must have the
/// pattern's length left.
std::optional<std::size_t> firstAmong(std::span<const std::byte> data,
                                      std::span<const std::byte> pattern, std::size_t from,
                                      std::size_t count) {
    for (std::size_t place = from; place < from + count; ++place) {
        if (data[place] == pattern[0] &&
            std::memcmp(data.data() + place, pattern.data(), pattern.size()) == 0) {
            return place;
        }
    }
    return std::nullopt;
}

}  // namespace

std::optional<std::size_t> firstOccurrence(std::span<const std::byte> data,
                                           std::span<const std::byte> pattern) {
    if (pattern.empty() || pattern.size() > data.size()) return std::nullopt;
    const std::size_t places = data.size() - pattern.size() + 1;
    const Filter filter(pattern);
    std::size_t place = 0;
    for (; places - place >= kBlock; place += kBlock) {
        if (!filter.mayBeginInBlock(data.data() + place)) continue;
        if (const auto found = firstAmong(data, pattern, place, kBlock)) return found;
    }
    return firstAmong(data, pattern, place, places - place);
}

}  // namespace qrx
