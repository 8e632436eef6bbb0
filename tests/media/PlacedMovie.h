#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "metadata/QRXMetadataWrapper.h"
#include "support/TemporaryFolder.h"

namespace qrx::test {

/// One movie as a clip of each camera that records QuickTime movies, all on one card.
class PlacedMovie {
public:
    explicit PlacedMovie(const std::string& movie) {
        for (const std::string& clip : {goPro(), canonEos(), redOne(), jvc()}) {
            std::filesystem::create_directories(std::filesystem::path(clip).parent_path());
            std::filesystem::copy_file(movie, clip);
        }
    }

    [[nodiscard]] const std::string& card() const { return card_.path(); }
    [[nodiscard]] std::string goPro() const { return card_ / "DCIM/100GOPRO/GOPR0001.MP4"; }
    [[nodiscard]] std::string canonEos() const { return card_ / "DCIM/100CANON/MVI_0001.MOV"; }
    [[nodiscard]] std::string redOne() const {
        return card_ / "A001.RDM/A001_C001.RDC/A001_C001_F.mov";
    }
    [[nodiscard]] std::string jvc() const {
        return card_ / "PRIVATE/JVC/CQAV/CLIP/ABCD0001_01.MOV";
    }

private:
    TemporaryFolder card_;
};

/// The identifiers of the metadata that have a value.
[[nodiscard]] inline std::vector<std::string> filledKeys(const QRXMetadataWrapper& wrapper) {
    std::vector<std::string> filled;
    for (const MetadataKeyDescription& row : QRXMetadataWrapper::keyDescriptionDictionary()) {
        if (wrapper.valueForKey(row.identifier)) filled.push_back(row.identifier);
    }
    return filled;
}

}  // namespace qrx::test
