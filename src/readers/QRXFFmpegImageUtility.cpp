#include "readers/QRXFFmpegImageUtility.h"

#include <atomic>
#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

#include <unistd.h>

#include "foundation/FileQuestions.h"
#include "foundation/NeutralAnswer.h"
#include "foundation/PathText.h"
#include "foundation/QRXFileSystemUtility.h"
#include "foundation/Text.h"

namespace qrx {

namespace {

// The tool's picture writer reads "%d" anywhere in a path as the number of the frame, and has no
// way to say that a percent sign is meant. It takes a path as it stands, though, when the path
// holds a conversion that it does not know, such as the one in this name.
constexpr std::string_view kNameTakenAsItStands = "still%x-";

bool readsAsPattern(const FilePath& path) {
    return contains(path, "%");
}

FilePath freeName(const FilePath& path) {
    return QRXFileSystemUtility::fileSystemUtility().uniqueFileSystemPathForPath(path);
}

/// A free name of this call alone, in the same folder, under which the tool can write.
FilePath detourTo(const FilePath& folder) {
    static std::atomic<unsigned> count{0};
    const std::string name = std::string(kNameTakenAsItStands) + std::to_string(::getpid()) + "-" +
                             std::to_string(++count) + ".jpg";
    return freeName(joinedPath(folder, name));
}

void writeStill(const FilePath& tool, const FilePath& movie, const FilePath& image) {
    const std::vector<std::string> arguments{"-i",       movie, "-r",     "1",  "-t",
                                             "00:00:01", "-f",  "image2", image};
    // What the tool prints on its standard output is of no interest.
    static_cast<void>(
        QRXFileSystemUtility::fileSystemUtility().executeTerminalCommand(tool, arguments));
}

void writeStillBesideItsName(const FilePath& tool, const FilePath& movie, const FilePath& folder,
                             const FilePath& image) {
    const FilePath detour = detourTo(folder);
    writeStill(tool, movie, detour);
    if (itemExists(detour)) static_cast<void>(std::rename(detour.c_str(), image.c_str()));
}

}  // namespace

FilePath QRXFFmpegImageUtility::createImageFileForMovie(
    const FilePath& movie, const FilePath& imageOutputDirectory) const {
    return answerOr(FilePath{}, "createImageFileForMovie", [&] {
        FilePath image =
            freeName(joinedPath(imageOutputDirectory, lastPathComponent(movie) + "movieImage.jpg"));
        if (!mayBeShownToTool(movie)) return image;
        if (readsAsPattern(image)) {
            writeStillBesideItsName(pathOfToolToRun(), movie, imageOutputDirectory, image);
        } else {
            writeStill(pathOfToolToRun(), movie, image);
        }
        return image;
    });
}

}  // namespace qrx
