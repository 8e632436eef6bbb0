#include <algorithm>
#include <cstdint>
#include <random>
#include <string>

#include <benchmark/benchmark.h>

#include "foundation/FileOrdering.h"

namespace {

constexpr std::uint32_t kPaths = 2000;

/// One large card's clips in an order that is the same on every run, every number twice.
qrx::FilePaths shuffledClips() {
    qrx::FilePaths paths;
    for (std::uint32_t i = 0; i < kPaths; ++i) {
        const std::string number = std::to_string(10'000 + i / 2).substr(1);
        paths.push_back("/media/camera/CARD/BPAV/CLPR/C" + number + (i % 2 == 0 ? "" : "B") +
                        ".MP4");
    }
    std::mt19937 noise{20240229};
    for (std::size_t i = paths.size() - 1; i > 0; --i) {
        std::swap(paths[i], paths[noise() % (i + 1)]);
    }
    return paths;
}

/// Whether every clip is there and the numbers go up by one every second clip. Looks at the four
/// digits alone, so that the check costs little beside what is measured.
bool isInOrder(const qrx::FilePaths& paths) {
    for (std::uint32_t i = 0; i < paths.size(); ++i) {
        const std::string expected = std::to_string(10'000 + i / 2);
        if (paths[i].compare(paths[i].rfind('C') + 1, 4, expected, 1, 4) != 0) return false;
    }
    return paths.size() == kPaths;
}

void byAscendingNumberOfTwoThousandClips(benchmark::State& state) {
    const qrx::FilePaths clips = shuffledClips();
    for (auto _ : state) {
        const qrx::FilePaths ordered = qrx::byAscendingNumber(clips);
        if (!isInOrder(ordered)) {
            state.SkipWithError("not in order");
            break;
        }
        benchmark::DoNotOptimize(ordered.data());
    }
    state.SetItemsProcessed(state.iterations() * kPaths);
}
BENCHMARK(byAscendingNumberOfTwoThousandClips)->Unit(benchmark::kMicrosecond);

void byCreationDateOfTwoThousandClips(benchmark::State& state) {
    const qrx::FilePaths clips = shuffledClips();
    // dates in memory: the order is measured, not the file system
    const auto dateOf = [](const qrx::FilePath& path) {
        return std::optional<qrx::FileDate>({qrx::orderingNumber(path), 0});
    };
    for (auto _ : state) {
        const qrx::FilePaths ordered = qrx::byCreationDate(clips, dateOf);
        if (!isInOrder(ordered)) {
            state.SkipWithError("not in order");
            break;
        }
        benchmark::DoNotOptimize(ordered.data());
    }
    state.SetItemsProcessed(state.iterations() * kPaths);
}
BENCHMARK(byCreationDateOfTwoThousandClips)->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
