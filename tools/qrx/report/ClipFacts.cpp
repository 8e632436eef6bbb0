#include "qrx/report/ClipFacts.h"

#include <cmath>
#include <string_view>
#include <utility>

#include <sys/stat.h>

#include "foundation/FolderListing.h"
#include "foundation/PathText.h"
#include "foundation/Text.h"
#include "metadata/MetadataIdentifiers.h"
#include "metadata/QRXMXFMetadataWrapper.h"
#include "qrx/ClipInfo.h"
#include "qrx/report/Durations.h"
#include "qrx/report/LtcText.h"
#include "qrx/report/PictureSize.h"
#include "readers/MovieReader.h"
#include "readers/MxfClipQuestions.h"
#include "readers/MxfKeySearch.h"
#include "readers/QRXFFmpegTerminalWrapper.h"
#include "readers/QRXXmlUtility.h"
#include "timecode/QRXTimecodeUtility.h"
#include "volumes/QRXAVCHDUtility.h"
#include "volumes/QRXCanonAVCHDUtility.h"
#include "volumes/QRXCanonEOSUtility.h"
#include "volumes/QRXJVCQTUtility.h"
#include "volumes/QRXMXFUtility.h"
#include "volumes/QRXPanasonicP2Utility.h"
#include "volumes/QRXQTUtility.h"
#include "volumes/QRXREDOneUtility.h"
#include "volumes/QRXXDCAMUtility.h"

namespace qrx::tool {

namespace {

using Utility = QRXHDMediaVolumeUtilityObject;

/// The text between the tags of an element, which is found with its tags.
std::optional<std::string> elementText(const std::optional<std::string>& element) {
    if (!element) return std::nullopt;
    const auto begin = element->find('>');
    if (begin == std::string::npos) return *element;
    const auto end = element->find('<', begin);
    return element->substr(begin + 1, end == std::string::npos ? end : end - begin - 1);
}

std::optional<std::uint32_t> pixels(double size) {
    constexpr double kMost = 1e6;
    if (!(size >= 1) || size > kMost) return std::nullopt;
    return static_cast<std::uint32_t>(std::lround(size));
}

/// "h264" of "h264 (Constrained Baseline) (avc1 / 0x31637661)".
std::string nameOfCodec(const std::string& title) {
    return title.substr(0, title.find(" ("));
}

/// Asks about one clip. What costs most, a run of the ffmpeg tool, comes last and only for what
/// nobody else knows.
class Facts {
public:
    Facts(const FilePath& file, const Utility& utility)
        : file_(file),
          utility_(utility),
          isP2_(dynamic_cast<const QRXPanasonicP2Utility*>(&utility) != nullptr),
          isMxf_(dynamic_cast<const QRXMXFUtility*>(&utility) != nullptr),
          xdcam_(dynamic_cast<const QRXXDCAMUtility*>(&utility)),
          info_(infoOf(file, utility)) {}

    ReportClip clip() {
        openMovie();
        takeNames();
        takeTimecodes();
        takeFrameRate();
        takeDuration();
        takeSoundAndPicture();
        takeCompanions();
        return std::move(clip_);
    }

private:
    void openMovie() {
        const bool mayBeMovie =
            !isMxf_ && dynamic_cast<const QRXAVCHDUtility*>(&utility_) == nullptr;
        if (mayBeMovie) movie_ = MovieReader().open(file_);
    }

    void takeNames() {
        clip_.file = file_;
        clip_.bytes = bytesOf(file_);
        // Canon EOS answers the name of the folder above the card for every clip.
        const bool isOfClip = dynamic_cast<const QRXCanonEOSUtility*>(&utility_) == nullptr;
        if (isOfClip && info_.uniqueIdentifier && !info_.uniqueIdentifier->empty()) {
            clip_.uniqueIdentifier = info_.uniqueIdentifier;
        }
        if (const auto codec = found(QRXMediaMetadataVideoCodecTitleKey)) {
            clip_.codec = nameOfCodec(*codec);
        }
    }

    // ---- timecode

    void takeTimecodes() {
        if (xdcam_ != nullptr) {
            takeLtc();
            return;
        }
        const std::string& start = info_.startTimecode;
        if (start == QRXTimecodeUtility::defaultTimecode() && !readsTimecode()) return;
        clip_.startTimecode = start;
        clip_.endTimecode = info_.endTimecode;
        const bool readsDropFrame =
            isMxf_ || dynamic_cast<const QRXJVCQTUtility*>(&utility_) != nullptr;
        if (QRXTimecodeUtility::timecodeIsDropFrame(start)) {
            clip_.isDropFrame = true;
        } else if (readsDropFrame) {
            clip_.isDropFrame = info_.isDropFrame;
        }
    }

    /// The layout's answer takes the flags in the frames for digits, and gives 44 for frame 4 of a
    /// recording in drop frame. Hosts count on that; whoever reads a report does not.
    void takeLtc() {
        const auto at = [this](std::string_view status) {
            const auto digits =
                xdcam_->xmlValueForFile(file_, "<LtcChange frameCount=", status, "value=\"");
            return digits ? readLtc(*digits) : std::nullopt;
        };
        const auto start = at("status=\"increment\"");
        const auto end = at("status=\"end\"");
        if (start) {
            clip_.startTimecode = start->timecode;
            clip_.isDropFrame = start->isDropFrame;
        } else if (info_.startTimecode != QRXTimecodeUtility::defaultTimecode()) {
            clip_.startTimecode = info_.startTimecode;
        }
        clip_.endTimecode = end ? std::optional(end->timecode) : info_.endTimecode;
    }

    /// Whether the start timecode, when it is 00:00:00:00, was read and not assumed.
    [[nodiscard]] bool readsTimecode() const {
        if (isP2_ && sidecarText("<StartTimecode>")) return true;
        if (isMxf_) {
            return mxfValueInFile(QRXMXFMetadataWrapper::mxfKeyForMetadataAttributeKey(
                                      QRXMediaMetadataStartTimecodeKey),
                                  file_, MxfValueForm::decimalText)
                .has_value();
        }
        if (dynamic_cast<const QRXJVCQTUtility*>(&utility_) != nullptr) {
            return sidecarText("<TimeCode").has_value();
        }
        // The clip information file of AVCHD always has the four bytes; Canon's is not read.
        const bool isAvchd = dynamic_cast<const QRXAVCHDUtility*>(&utility_) != nullptr;
        const bool isCanon = dynamic_cast<const QRXCanonAVCHDUtility*>(&utility_) != nullptr;
        return isAvchd && !isCanon && info_.sidecar.has_value();
    }

    // ---- frame rate

    [[nodiscard]] bool tellsFrameRate() const {
        if (isMxf_) return true;  // undefined where nothing was found
        if (xdcam_ != nullptr && sidecarRate()) return true;
        return reported(QRXMediaMetadataVideoFrameRate).has_value();
    }

    void takeFrameRate() {
        if (info_.frameRate >= QRXVideoFrameRateUndefined) return;
        const bool isAssumed =
            info_.frameRate == QRXTimecodeUtility::defaultVideoFrameRate() && !tellsFrameRate();
        if (!isAssumed) clip_.frameRate = rateName(info_.frameRate);
    }

    [[nodiscard]] std::optional<std::string> sidecarRate() const {
        auto rate = xdcam_->xmlValueForFile(file_, "<VideoFrame", "formatFps=", "formatFps=");
        return rate ? rate : xdcam_->xmlValueForFile(file_, "<LtcChangeTable", "tcFps=", "tcFps=");
    }

    // ---- duration

    /// The first that knows wins. The sidecar's count of frames is what the camera says it
    /// recorded, exact to the frame; then the headers of the media; then the timecodes, which skip
    /// where recording paused. The ffmpeg tool's report is rounded to hundredths and costs a
    /// process.
    void takeDuration() {
        clip_.seconds = sidecarSeconds();
        if (!clip_.seconds && movie_) clip_.seconds = movie_->durationSeconds;
        if (!clip_.seconds && isMxf_) clip_.seconds = mxfSeconds();
        if (!clip_.seconds) clip_.seconds = timecodeSeconds();
        if (clip_.seconds) return;
        if (const auto text = reported(QRXMediaMetadataVideoDurationKey)) {
            clip_.seconds = secondsOfClock(*text);
        }
    }

    [[nodiscard]] std::optional<double> sidecarSeconds() const {
        if (isP2_) {
            const auto units = elementText(sidecarText("<Duration>"));
            const auto unit = elementText(sidecarText("<EditUnit>"));
            if (units && unit) return secondsOfEditUnits(*units, *unit);
        }
        if (xdcam_ == nullptr) return std::nullopt;
        const auto frames = xdcam_->xmlValueForFile(file_, "<Duration", "value=", "value=");
        const auto name = frames ? sidecarRate() : std::nullopt;
        const auto rate = name ? framesPerSecond(*name) : std::nullopt;
        const auto count = frames ? int64Value(*frames) : 0;
        if (!rate || count <= 0) return std::nullopt;
        return static_cast<double>(count) / *rate;
    }

    [[nodiscard]] std::optional<double> mxfSeconds() const {
        const std::int32_t units = mxfDurationInEditUnits(file_);
        const std::int32_t numerator = mxfEditUnitNumerator(file_);
        const std::int32_t denominator = mxfEditUnitDenominator(file_);
        if (units <= 0 || numerator <= 0 || denominator <= 0) return std::nullopt;
        return static_cast<double>(units) * numerator / denominator;
    }

    [[nodiscard]] std::optional<double> timecodeSeconds() const {
        if (!clip_.startTimecode || !clip_.endTimecode || !clip_.frameRate) return std::nullopt;
        const auto rate = framesPerSecond(*clip_.frameRate);
        if (!rate) return std::nullopt;
        return secondsBetween(*clip_.startTimecode, *clip_.endTimecode, *rate,
                              clip_.isDropFrame.value_or(false));
    }

    // ---- sound and picture

    void takeSoundAndPicture() {
        if (info_.audioFiles) clip_.audioFiles = info_.audioFiles->size();
        if (isP2_ && !info_.audioFiles) clip_.audioFiles = 0;
        if (movie_) {
            clip_.audioStreams = movie_->count(TrackMedia::sound);
            clip_.width = pixels(movie_->naturalWidth);
            clip_.height = pixels(movie_->naturalHeight);
        }
        if (!wasReported_) return;
        if (const auto streams = reported(QRXMediaMetadataAudioChannelsKey); streams && !movie_) {
            clip_.audioStreams = static_cast<std::size_t>(int32Value(*streams));
        }
        if (const auto codec = reported(QRXMediaMetadataVideoCodecTitleKey);
            codec && !clip_.codec) {
            clip_.codec = nameOfCodec(*codec);
        }
        if (clip_.width) return;
        // The text, because the values that hosts are given take a codec's tag for the size.
        const auto text = QRXFFmpegTerminalWrapper().runFFmpegInfoCommandForVideoFile(file_);
        const auto size = text ? pictureSizeIn(*text) : std::nullopt;
        if (!size) return;
        clip_.width = size->width;
        clip_.height = size->height;
    }

    // ---- what belongs to the clip

    void takeCompanions() {
        if (info_.sidecar) clip_.companions.push_back(*info_.sidecar);
        if (info_.audioFiles) {
            clip_.companions.insert(clip_.companions.end(), info_.audioFiles->begin(),
                                    info_.audioFiles->end());
        }
        if (dynamic_cast<const QRXREDOneUtility*>(&utility_) != nullptr) takeRawFootage();
    }

    /// The segments of raw footage that the reference movie stands for.
    void takeRawFootage() {
        const FilePath folder = withoutLastPathComponent(file_);
        for (const std::string& name : namesInFolder(folder).value_or(FilePaths{})) {
            if (upperCased(pathExtension(name)) == "R3D") {
                clip_.companions.push_back(joinedPath(folder, name));
            }
        }
    }

    // ---- sources

    [[nodiscard]] std::optional<std::string> found(std::string_view identifier) const {
        for (const MetadataEntry& each : info_.metadata) {
            if (each.identifier == identifier && each.value != "") return each.value;
        }
        return std::nullopt;
    }

    [[nodiscard]] std::optional<std::string> sidecarText(std::string_view tag) const {
        return info_.sidecar ? QRXXmlUtility::findXmlTagInfo(tag, *info_.sidecar) : std::nullopt;
    }

    /// From the ffmpeg tool's report.
    [[nodiscard]] std::optional<std::string> reported(std::string_view identifier) const {
        if (!report_) {
            report_ = QRXFFmpegTerminalWrapper().metadataWrapperForVideoFile(file_);
            wasReported_ = true;
        }
        auto value = report_->valueForKey(identifier);
        return value ? std::optional(trimBlanksAndLineEnds(*value)) : std::nullopt;
    }

    const FilePath& file_;
    const Utility& utility_;
    bool isP2_;
    bool isMxf_;
    const QRXXDCAMUtility* xdcam_;
    ClipInfo info_;
    std::optional<MovieDescription> movie_;
    mutable std::optional<QRXMetadataWrapper> report_;
    mutable bool wasReported_ = false;
    ReportClip clip_;
};

}  // namespace

std::optional<std::uint64_t> bytesOf(const FilePath& file) {
    struct stat status {};
    if (::stat(file.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) return std::nullopt;
    return static_cast<std::uint64_t>(status.st_size);
}

ReportClip factsOf(const FilePath& file, const Utility& utility) {
    return Facts(file, utility).clip();
}

}  // namespace qrx::tool
