#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "metadata/QRXMXFMetadataWrapper.h"
#include "platform/linux/PlatformServices.h"
#include "readers/MxfKeySearch.h"

namespace {

constexpr std::array kStartTimecodeItem{
    std::byte{0x15}, std::byte{0x01}, std::byte{0x00}, std::byte{0x08},  // tag and length
    std::byte{0},    std::byte{0},    std::byte{0},    std::byte{0},     // 90000 frames,
    std::byte{0x00}, std::byte{0x01}, std::byte{0x5F}, std::byte{0x90},  //   big-endian
};
constexpr std::byte kFirstOfTag = kStartTimecodeItem[0];

using Fill = std::function<void(std::vector<std::byte>&)>;

// One search window with the item at its far end: the worst case that a real lookup meets, the same
// on every run and machine.
void valueAtEndOfWindow(benchmark::State& state, const Fill& fill) {
    std::vector<std::byte> window(qrx::kMxfWindowBytes);
    fill(window);
    std::copy(kStartTimecodeItem.begin(), kStartTimecodeItem.end(),
              window.end() - static_cast<std::ptrdiff_t>(kStartTimecodeItem.size()));
    const qrx::QRXMXFKey key = qrx::QRXMXFMetadataWrapper::mxfKeyForMetadataAttributeKey(
        qrx::QRXMediaMetadataStartTimecodeKey);
    for (auto _ : state) {
        const auto value = qrx::mxfValueInData(key, window, qrx::MxfValueForm::decimalText);
        if (value != "90000") {
            state.SkipWithError("item not found");
            break;
        }
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(window.size()));
}

void noise(std::vector<std::byte>& window) {
    std::mt19937 generator{20240229};
    for (std::byte& value : window) {
        value = static_cast<std::byte>(generator());
        if (value == kFirstOfTag) value = std::byte{0};  // no tag by chance
    }
}

void zeros(std::vector<std::byte>& window) {
    std::fill(window.begin(), window.end(), std::byte{0});
}

void firstByteOfTag(std::vector<std::byte>& window) {
    std::fill(window.begin(), window.end(), kFirstOfTag);
}

// The tag over and over, each time one byte short: as near a miss as there is.
void nearMisses(std::vector<std::byte>& window) {
    for (std::size_t i = 0; i < window.size(); ++i) {
        window[i] = kStartTimecodeItem[i % 3];
    }
}

BENCHMARK_CAPTURE(valueAtEndOfWindow, noise, noise)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(valueAtEndOfWindow, zeros, zeros)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(valueAtEndOfWindow, first_byte_of_tag, firstByteOfTag)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(valueAtEndOfWindow, near_misses, nearMisses)->Unit(benchmark::kMicrosecond);

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    qrx::platform::installPlatformServices();
    benchmark::RunSpecifiedBenchmarks();
}
