#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "foundation/FilePath.h"
#include "platform/linux/PlatformServices.h"
#include "volumes/QRXHDMediaVolumeAggregate.h"

namespace {

constexpr std::size_t kClips = 5000;

/// The clips of one card, none of which needs to exist.
qrx::FilePaths clipsIn(const std::string& folder) {
    qrx::FilePaths clips;
    for (std::size_t number = 0; number < kClips; ++number) {
        const std::string digits = std::to_string(100000 + number).substr(1);
        clips.push_back(folder + "/" + digits + ".MTS");
    }
    return clips;
}

// Paths that a layout claims by the path alone: no look at the disk, or one (Canon's folder).
void lookUp(benchmark::State& state, const std::string& folder, const std::string& title) {
    const qrx::FilePaths clips = clipsIn(folder);
    const auto aggregate = qrx::QRXHDMediaVolumeAggregate::hdAggregate();
    for (auto _ : state) {
        for (const qrx::FilePath& clip : clips) {
            if (aggregate.utilityForFileAtPath(clip).volumeTitle() != title) {
                state.SkipWithError("wrong layout");
                return;
            }
        }
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(kClips));
}
BENCHMARK_CAPTURE(lookUp, sony, "/Volumes/NO NAME/AVCHD/BDMV/STREAM", "Sony NXCAM AVCHD")
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(lookUp, panasonic, "/Volumes/NO NAME/PRIVATE/AVCHD/BDMV/STREAM",
                  "Panasonic AVCHD")
    ->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
    qrx::platform::installPlatformServices();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
