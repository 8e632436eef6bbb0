#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "platform/linux/PlatformServices.h"
#include "readers/MovieReader.h"
#include "support/BoxWriter.h"
#include "support/TemporaryFolder.h"

namespace {

using qrx::test::box;
using qrx::test::fileType;
using qrx::test::track;
using qrx::test::zeros;

constexpr int kFiles = 2000;

/// A header of some 5 KB, as a camera writes it for a short clip: three tracks with sample tables,
/// user data.
std::string clipHeader() {
    return box("moov", qrx::test::movieHeader(1000, 2000) + track("vide", 1920, 1080) +
                           track("soun") + track("tmcd") + box("free", zeros(4000)) +
                           box("udta", box("name", "Clip")));
}

enum Layout { headerFirst, headerLast, noMovie };

std::string fileOf(Layout layout) {
    switch (layout) {
        case headerFirst:
            return fileType() + clipHeader() + box("mdat", zeros(20'000));
        case headerLast:
            return fileType() + box("wide") + box("mdat", zeros(20'000)) + clipHeader();
        case noMovie:
            break;
    }
    return std::string(20'000, 'x');
}

/// Many small files in one folder, gone at the end.
class Files {
public:
    explicit Files(Layout layout) {
        const std::string contents = fileOf(layout);
        for (int i = 0; i < kFiles; ++i)
            paths.push_back(folder_.write("clip" + std::to_string(i) + ".mp4", contents));
    }
    std::vector<std::string> paths;

private:
    qrx::test::TemporaryFolder folder_;
};

// Files a second on one core, every file opened afresh; the kernel has them in memory.
void openSmallFiles(benchmark::State& state, Layout layout) {
    const Files files(layout);
    const std::size_t expected = layout == noMovie ? 0 : 3;
    const qrx::MovieReader reader;
    std::int64_t opened = 0;
    for (auto _ : state) {
        for (const std::string& path : files.paths) {
            const auto movie = reader.open(path);
            if ((movie ? movie->tracks.size() : 0) != expected) {
                state.SkipWithError("a file has the wrong tracks");
                return;
            }
            ++opened;
        }
    }
    state.SetItemsProcessed(opened);
}
BENCHMARK_CAPTURE(openSmallFiles, headerFirst, headerFirst)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(openSmallFiles, headerLast, headerLast)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(openSmallFiles, noMovie, noMovie)->Unit(benchmark::kMillisecond);

// 100 GB with the header at the end, on a file without contents.
void openHundredGigabytes(benchmark::State& state) {
    constexpr std::uintmax_t kSize = 100'000'000'000;
    const qrx::test::TemporaryFolder folder;
    const std::string path = folder.write(
        "long.mov", fileType() + qrx::test::largeBoxStating(kSize - fileType().size(), "mdat"));
    std::filesystem::resize_file(path, kSize);
    const std::string header = clipHeader();
    std::filesystem::resize_file(path, kSize + header.size());
    {
        std::FILE* const file = std::fopen(path.c_str(), "r+b");
        if (file == nullptr) throw std::runtime_error("cannot write " + path);
        ::fseeko(file, static_cast<off_t>(kSize), SEEK_SET);
        std::fwrite(header.data(), 1, header.size(), file);
        std::fclose(file);
    }
    for (auto _ : state) {
        const auto movie = qrx::MovieReader().open(path);
        if (!movie || movie->tracks.size() != 3) {
            state.SkipWithError("the file has the wrong tracks");
            return;
        }
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(openHundredGigabytes)->Unit(benchmark::kMicrosecond);

}  // namespace

int main(int argc, char** argv) {
    qrx::platform::installPlatformServices();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
