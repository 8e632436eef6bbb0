#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "ProbedTracks.h"
#include "readers/MovieReader.h"

namespace qrx {
namespace {

namespace fs = std::filesystem;

// Files of real cameras, in the subfolders movies, mts, mxf and p2 of the folder that the variable
// QRX_SAMPLES names. They are too large and too mixed in their licences to travel with the sources.
class MovieSamples : public testing::Test {
protected:
    void SetUp() override {
        const char* const folder = std::getenv("QRX_SAMPLES");
        if (folder == nullptr) GTEST_SKIP() << "QRX_SAMPLES names no folder of sample files";
        folder_ = folder;
    }

    [[nodiscard]] std::vector<std::string> filesBelow(const std::string& name) const {
        std::vector<std::string> files;
        for (const auto& entry : fs::recursive_directory_iterator(fs::path(folder_) / name)) {
            if (entry.is_regular_file()) files.push_back(entry.path().string());
        }
        std::sort(files.begin(), files.end());
        EXPECT_FALSE(files.empty()) << "no files in " << name;
        return files;
    }

private:
    std::string folder_;
};

TEST_F(MovieSamples, MoviesHaveTheTracksThatFfprobeSees) {
    for (const std::string& file : filesBelow("movies"))
        EXPECT_EQ(test::tracksOf(MovieReader().open(file)), test::probedTracks(file)) << file;
}

TEST_F(MovieSamples, OtherFilesAreNoMovies) {
    for (const char* folder : {"mts", "mxf", "p2"}) {
        for (const std::string& file : filesBelow(folder))
            EXPECT_FALSE(MovieReader().open(file)) << file;
    }
}

}  // namespace
}  // namespace qrx
