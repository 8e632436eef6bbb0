#include <cstdint>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "platform/linux/PlatformServices.h"
#include "timecode/QRXTimecodeUtility.h"

namespace {

using qrx::QRXTimecodeUtility;

constexpr std::int32_t kFrames = 2585857;  // late on a day of 29.97, all fields in use

void timecodeFromFrames(benchmark::State& state) {
    for (auto _ : state) {
        const std::string timecode = QRXTimecodeUtility::timecodeFromFrames(
            kFrames, qrx::QRXVideoFrameRate29_97, qrx::QRXViewTypeStandard);
        if (timecode != "23:58:01;28") {
            state.SkipWithError("wrong timecode");
            break;
        }
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(timecodeFromFrames);

void framesFromTimecode(benchmark::State& state) {
    const std::string timecode = "23:59:28;00";
    for (auto _ : state) {
        const std::int32_t frames =
            QRXTimecodeUtility::framesRepresentedByTimecode(timecode, qrx::QRXVideoFrameRate29_97);
        if (frames != kFrames) {
            state.SkipWithError("wrong number of frames");
            break;
        }
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(framesFromTimecode);

void rateFromNumber(benchmark::State& state) {
    for (auto _ : state) {
        if (QRXTimecodeUtility::videoFrameRateFromNumericRate(24000.0 / 1001.0) !=
            qrx::QRXVideoFrameRate23_976) {
            state.SkipWithError("wrong rate");
            break;
        }
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(rateFromNumber);

// The largest count by the smallest usual measure: two billion steps if it were counted.
void fractionalDistributionOfAHugeCount(benchmark::State& state) {
    for (auto _ : state) {
        std::int32_t seconds = 0;
        const std::int32_t rest =
            QRXTimecodeUtility::framesRemainingAfterDistribution(INT32_MAX, &seconds, 1.0);
        if (rest != 0 || seconds != INT32_MAX) {
            state.SkipWithError("wrong distribution");
            break;
        }
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(fractionalDistributionOfAHugeCount);

// An hour of 25 frames a second.
void seriesOfAnHour(benchmark::State& state) {
    constexpr std::int32_t kCount = 90000;
    for (auto _ : state) {
        const std::vector<std::string> series =
            QRXTimecodeUtility::timecodeSeriesForFrames(kCount, 90000, 25.0F, false);
        if (series.size() != kCount || series.back() != "01:59:59:24") {
            state.SkipWithError("wrong series");
            break;
        }
    }
    state.SetItemsProcessed(state.iterations() * kCount);
}
BENCHMARK(seriesOfAnHour)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    qrx::platform::installPlatformServices();
    benchmark::RunSpecifiedBenchmarks();
}
