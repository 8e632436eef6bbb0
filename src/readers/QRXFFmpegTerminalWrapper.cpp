#include "readers/QRXFFmpegTerminalWrapper.h"

#include <utility>

#include "foundation/NeutralAnswer.h"
#include "foundation/QRXFileSystemUtility.h"
#include "platform/ports/Services.h"
#include "readers/FfmpegReport.h"

namespace qrx {

namespace {

std::optional<std::string> reportOfTool(const FilePath& tool, const FilePath& file) {
    auto result =
        platform::processRunner().run({.program = tool,
                                       .arguments = {"-i", file},
                                       .standardError = platform::StandardError::captured});
    if (result.endedByTimeLimit) return std::nullopt;  // what it wrote so far may be cut anywhere
    const bool saidNothing = result.standardOutput.empty();
    return textOfToolOutput(std::move(saidNothing ? result.standardError : result.standardOutput));
}

}  // namespace

std::optional<std::string> QRXFFmpegTerminalWrapper::runFFmpegInfoCommandForVideoFile(
    const FilePath& file) const {
    try {
        const FilePath tool = pathOfToolToRun();
        const bool available =
            QRXFileSystemUtility::fileSystemUtility().terminalCommandPathIsAvailable(tool);
        if (!available || !mayBeShownToTool(file)) return std::nullopt;
        return reportOfTool(tool, file);
    } catch (const platform::RunCancelled&) {
        return std::nullopt;
    } catch (...) {
        platform::systemLog().notice("Ex");
        return std::nullopt;
    }
}

std::optional<std::string> QRXFFmpegTerminalWrapper::valueFromResult(
    std::string_view result, std::string_view identifier, std::string_view separator) const {
    return answerOr(std::optional<std::string>{}, "valueFromResult",
                    [&] { return reportField(result, identifier, separator); });
}

QRXMetadataWrapper QRXFFmpegTerminalWrapper::metadataWrapperForVideoFile(
    const FilePath& file) const {
    return answerOr(QRXMetadataWrapper{}, "metadataWrapperForVideoFile", [&] {
        QRXMetadataWrapper wrapper;
        const auto report = runFFmpegInfoCommandForVideoFile(file);
        if (!report) return wrapper;
        if (const auto values = valuesOfFfmpegReport(*report)) {
            for (const auto& [identifier, value] : *values) {
                wrapper.replaceValueForKeyEntryWithIdentifier(identifier, value);
            }
        }
        platform::systemLog().debug(*report);
        return wrapper;
    });
}

std::uint64_t QRXFFmpegTerminalWrapper::numberOfAudioChannelsInVideoFile(const FilePath&) const {
    return 0;
}

}  // namespace qrx
