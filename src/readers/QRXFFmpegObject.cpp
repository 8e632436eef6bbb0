#include "readers/QRXFFmpegObject.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

#include <unistd.h>

#include "foundation/FileQuestions.h"
#include "foundation/PathText.h"
#include "foundation/Text.h"
#include "platform/ports/Services.h"
#include "readers/InvalidVideoExtensions.h"
#include "readers/QRXFFmpegDefinitions.h"

namespace qrx {

namespace {

constexpr std::string_view kToolName = "ffmpeg";

bool isProgram(const FilePath& path) {
    return fileExists(path) && ::access(path.c_str(), X_OK) == 0;
}

/// The first program of that name in the folders of PATH. Relative folders are passed over: a
/// program that lies in the current folder, perhaps a card, is never run.
std::optional<FilePath> programOnSearchPath(std::string_view name) {
    const char* const searchPath = std::getenv("PATH");
    if (searchPath == nullptr) return std::nullopt;
    for (const auto& folder : split(searchPath, ":")) {
        FilePath candidate = joinedPath(folder, name);
        if (folder.starts_with('/') && isProgram(candidate)) return candidate;
    }
    return std::nullopt;
}

bool endsInUpperCase(std::string_view upperCasedText, std::string_view lowerCaseEnd) {
    if (lowerCaseEnd.size() > upperCasedText.size()) return false;
    const auto end = upperCasedText.substr(upperCasedText.size() - lowerCaseEnd.size());
    return std::equal(end.begin(), end.end(), lowerCaseEnd.begin(), [](char upper, char lower) {
        const bool isLetter = lower >= 'a' && lower <= 'z';
        return upper == (isLetter ? static_cast<char>(lower - 'a' + 'A') : lower);
    });
}

}  // namespace

FilePath QRXFFmpegObject::ffmpegPath() const {
    const std::scoped_lock lock(mutex_);
    return ffmpegPath_.value_or(QRXFFmpegDefinitions::defaultFFmpegPath());
}

void QRXFFmpegObject::setFfmpegPath(FilePath path) {
    const std::scoped_lock lock(mutex_);
    ffmpegPath_ = std::move(path);
}

FilePath QRXFFmpegObject::pathOfToolToRun() const {
    {
        const std::scoped_lock lock(mutex_);
        if (ffmpegPath_) return *ffmpegPath_;
    }
    const FilePath& chosenByHost = platform::services().ffmpegPath;
    if (!chosenByHost.empty()) return chosenByHost;
    FilePath standard = QRXFFmpegDefinitions::defaultFFmpegPath();
    if (itemExists(standard)) return standard;
    return programOnSearchPath(kToolName).value_or(std::move(standard));
}

bool QRXFFmpegObject::mayBeShownToTool(const FilePath& file) {
    return !isSpecialFile(file) && file.find('\0') == FilePath::npos;
}

bool QRXFFmpegObject::filePathHasInvalidVideoFileExtension(std::string_view file) {
    return upperCasedFilePathHasInvalidVideoFileExtension(upperCased(file));
}

// KEPT: no dot is asked for before the extension, so that "PRINT" ends in "int"; hosts see the
// same files passed over as ever.
bool QRXFFmpegObject::upperCasedFilePathHasInvalidVideoFileExtension(
    std::string_view upperCasedFile) {
    return std::any_of(
        kInvalidVideoExtensions.begin(), kInvalidVideoExtensions.end(),
        [&](std::string_view extension) { return endsInUpperCase(upperCasedFile, extension); });
}

}  // namespace qrx
