#include "readers/FfmpegReport.h"

#include <utility>

#include "foundation/Text.h"
#include "metadata/MetadataIdentifiers.h"

namespace qrx {

namespace {

constexpr std::string_view kInput = "Input #0,";
constexpr std::string_view kStream = "Stream #";
constexpr std::string_view kPerSecond = "/s";
constexpr std::string_view kTimesSign = "x";

/// Calls `use` with each piece of `text` between separators, as a view: a report of 16 MiB can
/// consist of separators alone.
template <class Use>
void forEachPiece(std::string_view text, std::string_view separator, Use&& use) {
    for (std::size_t end = text.find(separator); end != std::string_view::npos;
         end = text.find(separator)) {
        if (!use(text.substr(0, end))) return;
        text.remove_prefix(end + separator.size());
    }
    use(text);
}

std::string_view textBefore(std::string_view text, std::string_view end) {
    return text.substr(0, text.find(end));
}

/// What stands before `unit` in the last piece that has it.
std::optional<std::string> lastQuantity(std::string_view text, std::string_view unit) {
    std::optional<std::string_view> found;
    forEachPiece(text, ",", [&](std::string_view piece) {
        if (contains(piece, unit)) found = textBefore(piece, unit);
        return true;
    });
    if (!found) return std::nullopt;
    return std::string(*found);
}

/// KEPT: the codec piece is searched like any other, so that a codec tag such as "0x31637661" is
/// taken for the dimensions; hosts know these values.
std::optional<std::string> dimensions(std::string_view videoLine) {
    std::optional<std::string> found;
    forEachPiece(videoLine, ",", [&](std::string_view piece) {
        if (!contains(piece, kTimesSign)) return true;
        found = trimBlanksAndLineEnds(textBefore(piece, "["));
        return false;
    });
    return found;
}

std::string numberOfAudioStreams(std::string_view input) {
    std::size_t count = 0;
    forEachPiece(input, kStream, [&](std::string_view stream) {
        if (contains(stream, "Audio:")) ++count;
        return true;
    });
    return std::to_string(count);
}

/// Collects the values that were found.
class Values {
public:
    void add(std::string_view identifier, std::optional<std::string> value) {
        if (value) values_.push_back({identifier, std::move(*value)});
    }
    [[nodiscard]] std::vector<ReportedValue> taken() { return std::move(values_); }

private:
    std::vector<ReportedValue> values_;
};

void addWidthAndHeight(Values& values, const std::string& dimensions) {
    const auto parts = split(dimensions, kTimesSign);
    if (parts.size() != 2) return;
    values.add(QRXMediaMetadataCodecWidthKey, parts[0]);
    values.add(QRXMediaMetadataCodecHeightKey, parts[1]);
}

void addVideo(Values& values, std::string_view input) {
    // KEPT: a video line without a bit rate runs on to the "/s" of a later line; without any, there
    // is no codec. The same holds for the audio line.
    const auto line = reportField(input, "Video: ", kPerSecond);
    if (!line) return;
    values.add(QRXMediaMetadataVideoCodecTitleKey, std::string(textBefore(*line, ",")));
    const auto size = dimensions(*line);
    if (!size) return;
    values.add(QRXMediaMetadataCodecDimensionsDescriptionKey, size);
    values.add(QRXMediaMetadataCodecDimensionsKey, size);
    addWidthAndHeight(values, *size);
}

void addAudio(Values& values, std::string_view input) {
    const auto line = reportField(input, "Audio: ", kPerSecond);
    if (!line) return;
    values.add(QRXMediaMetadataAudioCodecTitleKey, std::string(textBefore(*line, ",")));
    // KEPT: the sample rate under the bit rate's identifier, where hosts look for it.
    values.add(QRXMediaMetadataAudioBitRateKey, lastQuantity(*line, "Hz"));
}

}  // namespace

std::optional<std::string> reportField(std::string_view report, std::string_view label,
                                       std::string_view separator) {
    const auto start = find(report, label);
    if (!start) return std::nullopt;
    const auto rest = report.substr(*start);
    // KEPT: the separator is sought from the start of the label, so one inside the label ends the
    // field there; the callers' labels have none.
    const auto end = find(rest, separator);
    if (!end) return std::nullopt;
    return replaceAll(rest.substr(0, *end), label, "");
}

std::optional<std::vector<ReportedValue>> valuesOfFfmpegReport(std::string_view report) {
    const std::size_t lastInput = report.rfind(kInput);
    if (lastInput == std::string_view::npos) return std::nullopt;
    const auto input = report.substr(lastInput + kInput.size());

    Values values;
    values.add(QRXMediaMetadataVideoDurationKey, reportField(input, "Duration: ", ","));
    values.add(QRXMediaMetadataVideoBitRateKey, reportField(input, "bitrate: ", kPerSecond));
    addVideo(values, input);
    values.add(QRXMediaMetadataVideoFrameRate, lastQuantity(input, "tbr"));
    values.add(QRXMediaMetadataAudioChannelsKey, numberOfAudioStreams(input));
    addAudio(values, input);
    return values.taken();
}

std::string textOfToolOutput(std::string bytes) {
    if (isUtf8(bytes)) return bytes;
    return fromUtf16Units(utf16Units(bytes));
}

}  // namespace qrx
