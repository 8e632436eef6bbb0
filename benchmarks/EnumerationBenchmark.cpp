#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <stdexcept>
#include <string>

#include <benchmark/benchmark.h>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "foundation/Enumeration.h"
#include "foundation/Removal.h"
#include "platform/linux/PlatformServices.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr int kFiles = 100'000;

/// Empty files spread evenly over `folders` folders, gone at the end.
class Tree {
public:
    explicit Tree(int folders) {
        path_ = (std::filesystem::temp_directory_path() / "qrx-benchmark-XXXXXX").string();
        if (::mkdtemp(path_.data()) == nullptr) throw std::runtime_error("no temporary folder");
        for (int i = 0; i < folders; ++i) {
            const std::string folder = path_ + "/CLIPS" + std::to_string(100 + i);
            ::mkdir(folder.c_str(), 0755);
            for (int j = 0; j < kFiles / folders; ++j) {
                const std::string file = folder + "/C" + std::to_string(j) + ".MP4";
                if (::mknod(file.c_str(), S_IFREG | 0644, 0) != 0) {
                    throw std::runtime_error("cannot make " + file);
                }
            }
        }
    }
    ~Tree() { (void)qrx::removeItem(path_); }
    Tree(const Tree&) = delete;
    Tree& operator=(const Tree&) = delete;

    [[nodiscard]] const std::string& path() const { return path_; }

private:
    std::string path_;
};

/// The least that any walk must do: read every name, in no order, and keep none.
int bareWalk(int parent, const char* name) {
    const int descriptor = ::openat(parent, name, O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    DIR* const stream = ::fdopendir(descriptor);
    int files = 0;
    while (const dirent* const entry = ::readdir(stream)) {
        if (entry->d_type != DT_DIR) {
            ++files;
        } else if (entry->d_name[0] != '.') {
            files += bareWalk(descriptor, entry->d_name);
        }
    }
    ::closedir(stream);
    return files;
}

/// Made once for each shape: making it takes far longer than walking it.
const Tree& treeOf(int folders) {
    static std::map<int, Tree> trees;
    return trees.try_emplace(folders, folders).first->second;
}

double seconds(Clock::duration duration) {
    return std::chrono::duration<double>(duration).count();
}

/// Runs `walk`, which answers the number of files, beside the bare walk of the same tree. The
/// counter times_bare says how many bare walks one takes.
template <class Walk>
void besideBareWalk(benchmark::State& state, Walk walk) {
    const Tree& tree = treeOf(static_cast<int>(state.range(0)));
    double ours = 0;
    double bare = 0;
    for (auto _ : state) {
        const auto start = Clock::now();
        const int files = walk(tree.path());
        const auto middle = Clock::now();
        const int bareFiles = bareWalk(AT_FDCWD, tree.path().c_str());
        const auto end = Clock::now();
        if (files != kFiles || bareFiles != kFiles) {
            state.SkipWithError("files are missing");
            break;
        }
        state.SetIterationTime(seconds(middle - start));
        ours += seconds(middle - start);
        bare += seconds(end - middle);
    }
    state.SetItemsProcessed(state.iterations() * kFiles);
    state.counters["times_bare"] = bare > 0 ? ours / bare : 0;
}

void sourceFilesAsAList(benchmark::State& state) {
    besideBareWalk(state, [](const std::string& folder) {
        return static_cast<int>(qrx::sourceFiles(folder).size());
    });
}

void sourceFilesAsAStream(benchmark::State& state) {
    besideBareWalk(state, [](const std::string& folder) {
        int files = 0;
        qrx::forEachSourceFile(folder, [&files](const std::string& file) {
            files += file.ends_with(".MP4") ? 1 : 0;
            return true;
        });
        return files;
    });
}

void sourceFilesWithSizes(benchmark::State& state) {
    besideBareWalk(state, [](const std::string& folder) {
        return static_cast<int>(qrx::measuredSourceFiles(folder, qrx::Folders::left).files);
    });
}

// all in one folder, and a thousand to the folder
BENCHMARK(sourceFilesAsAList)->Arg(1)->Arg(100)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(sourceFilesAsAStream)->Arg(1)->Arg(100)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(sourceFilesWithSizes)->Arg(100)->UseManualTime()->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
    qrx::platform::installPlatformServices();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return EXIT_SUCCESS;
}
