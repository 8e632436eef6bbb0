#include "volumes/StructureCheck.h"

#include "foundation/PathText.h"
#include "foundation/Text.h"
#include "readers/QRXFFmpegTerminalWrapper.h"

namespace qrx {

const std::string& ExaminedPath::upperCased() {
    if (!upperCased_) {
        upperCased_ = qrx::upperCased(path_);
    }
    return *upperCased_;
}

const std::string& ExaminedPath::lowerCased() {
    if (!lowerCased_) {
        lowerCased_ = qrx::lowerCased(path_);
    }
    return *lowerCased_;
}

std::string_view ExaminedPath::fileName() const {
    return lastPathComponentView(path_);
}

std::string_view ExaminedPath::folderName() const {
    return lastPathComponentView(withoutLastPathComponentView(path_));
}

const QRXMetadataWrapper& ExaminedPath::ffmpegMetadata() {
    if (!ffmpegMetadata_) {
        ffmpegMetadata_ = QRXFFmpegTerminalWrapper().metadataWrapperForVideoFile(path_);
    }
    return *ffmpegMetadata_;
}

StructureFinding walkStructureChecks(std::span<const StructureCheck> checks,
                                     const QRXHDMediaVolumeUtilityObject& utility,
                                     ExaminedPath& path) {
    for (const StructureCheck& check : checks) {
        switch (check.ask(utility, path)) {
            case CheckVerdict::passes:
                break;
            case CheckVerdict::fails:
                return {.claimed = false, .decisive = &check};
            case CheckVerdict::decides:
                return {.claimed = true, .decisive = &check};
        }
    }
    return {.claimed = !checks.empty(), .decisive = nullptr};
}

}  // namespace qrx
