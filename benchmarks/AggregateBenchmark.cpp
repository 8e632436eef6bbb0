#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>

#include <benchmark/benchmark.h>
#include <sys/stat.h>

#include "foundation/FilePath.h"
#include "platform/linux/PlatformServices.h"
#include "volumes/QRXHDMediaVolumeAggregate.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::size_t kClips = 5000;

struct Layout {
    std::string folder;
    std::string extension;
    std::string title;
};

/// The clips of one card, none of which needs to exist.
qrx::FilePaths clipsOf(const Layout& layout) {
    qrx::FilePaths clips;
    for (std::size_t number = 0; number < kClips; ++number) {
        const std::string digits = std::to_string(100000 + number).substr(1);
        clips.push_back(layout.folder + "/" + digits + layout.extension);
    }
    return clips;
}

/// How many of the clips do not exist, asked of the system one by one: the least that anything
/// which looks at a file costs.
std::size_t missing(const qrx::FilePaths& clips) {
    std::size_t count = 0;
    for (const qrx::FilePath& clip : clips) {
        struct stat item {};
        count += ::lstat(clip.c_str(), &item) != 0 ? 1 : 0;
    }
    return count;
}

std::size_t claimed(const qrx::FilePaths& clips, const std::string& title) {
    const auto aggregate = qrx::QRXHDMediaVolumeAggregate::hdAggregate();
    std::size_t count = 0;
    for (const qrx::FilePath& clip : clips) {
        count += aggregate.utilityForFileAtPath(clip).volumeTitle() == title ? 1 : 0;
    }
    return count;
}

// Paths that a layout claims by the path alone: no look at the disk, or one (Canon's folder). The
// counter times_lstat says how many single questions to the system one look-up takes.
void lookUp(benchmark::State& state, const Layout& layout) {
    const qrx::FilePaths clips = clipsOf(layout);
    Clock::duration ours{};
    Clock::duration floor{};
    for (auto _ : state) {
        const auto start = Clock::now();
        const std::size_t found = claimed(clips, layout.title);
        const auto middle = Clock::now();
        const std::size_t absent = missing(clips);
        const auto end = Clock::now();
        if (found != kClips || absent != kClips) {
            state.SkipWithError("wrong layout, or a clip that is there");
            return;
        }
        state.SetIterationTime(std::chrono::duration<double>(middle - start).count());
        ours += middle - start;
        floor += end - middle;
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(kClips));
    state.counters["times_lstat"] =
        std::chrono::duration<double>(ours).count() / std::chrono::duration<double>(floor).count();
}

#define QRX_LOOK_UP(name, ...)                          \
    BENCHMARK_CAPTURE(lookUp, name, Layout __VA_ARGS__) \
        ->UseManualTime()                               \
        ->Unit(benchmark::kMillisecond)

QRX_LOOK_UP(sony, {"/Volumes/NO NAME/AVCHD/BDMV/STREAM", ".MTS", "Sony NXCAM AVCHD"});
QRX_LOOK_UP(panasonic, {"/Volumes/NO NAME/PRIVATE/AVCHD/BDMV/STREAM", ".MTS", "Panasonic AVCHD"});
QRX_LOOK_UP(p2, {"/Volumes/NO NAME/CONTENTS/VIDEO", ".MXF", "Panasonic P2"});
QRX_LOOK_UP(canonEos, {"/Volumes/NO NAME/DCIM/100EOS1D", ".MOV", "Canon EOS"});
QRX_LOOK_UP(canonEosOnAnAccentedCard, {"/Volumes/ÉTÉ/DCIM/100EOS1D", ".MOV", "Canon EOS"});

}  // namespace

int main(int argc, char** argv) {
    qrx::platform::installPlatformServices();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
