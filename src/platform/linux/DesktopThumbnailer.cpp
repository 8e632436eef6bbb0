#include "platform/linux/DesktopThumbnailer.h"

#include <algorithm>
#include <filesystem>
#include <span>
#include <system_error>
#include <utility>

#include "platform/linux/ContentType.h"
#include "platform/linux/PictureScaling.h"
#include "platform/linux/PrivateFolder.h"
#include "platform/linux/SmallFile.h"
#include "platform/linux/ThumbnailerEntry.h"
#include "platform/ports/Services.h"

namespace qrx::platform {

namespace {

using std::chrono::nanoseconds;
using std::chrono::steady_clock;

/// The sides of a thumbnail that is asked for; programs may take memory by its square.
constexpr std::uint32_t kLongestSide = 8192;
constexpr std::size_t kMostPictureBytes = std::size_t{256} << 20U;

bool knowsExactly(const ThumbnailerEntry& entry, const std::string& type) {
    return std::find(entry.mimeTypes.begin(), entry.mimeTypes.end(), type) != entry.mimeTypes.end();
}

bool knows(const ThumbnailerEntry& entry, const std::string& type) {
    return std::any_of(entry.mimeTypes.begin(), entry.mimeTypes.end(),
                       [&](const std::string& known) { return contentTypeIsA(type, known); });
}

/// Those for `type`, in the order in which they are tried.
std::vector<ThumbnailerEntry> fitting(std::vector<ThumbnailerEntry> entries,
                                      const std::string& type) {
    std::erase_if(entries, [&](const ThumbnailerEntry& entry) { return !knows(entry, type); });
    std::stable_partition(entries.begin(), entries.end(),
                          [&](const ThumbnailerEntry& entry) { return knowsExactly(entry, type); });
    return entries;
}

bool isInstalled(const ThumbnailerEntry& entry) {
    return entry.tryExec.empty() || executablePath(entry.tryExec);
}

/// What the entry's program makes of a file within `timeLimit`.
std::optional<Image> pictureBy(const ThumbnailerEntry& entry, const std::string& input,
                               unsigned size, nanoseconds timeLimit) {
    const PrivateFolder folder(temporaryParent());
    const std::string output = folder.path() + "/thumbnail.png";
    std::vector<std::string> command =
        entry.commandFor({.input = input, .output = output, .size = size});
    auto program = executablePath(command.front());
    if (!program) return std::nullopt;
    command.erase(command.begin());
    const ProcessResult result = processRunner().run({.program = std::move(*program),
                                                      .arguments = std::move(command),
                                                      .standardError = StandardError::captured,
                                                      .timeLimit = timeLimit});
    if (result.exitStatus != 0 || result.endedByTimeLimit) return std::nullopt;
    const auto file = smallFile(output, kMostPictureBytes, LastLink::refused);
    if (!file) return std::nullopt;
    return imageCodec().decoded(std::as_bytes(std::span(*file)));
}

}  // namespace

DesktopThumbnailer::DesktopThumbnailer(ThumbnailerOptions options) : options_(std::move(options)) {}

std::optional<Image> DesktopThumbnailer::byProgram(const std::string& path, const std::string& type,
                                                   unsigned size) const {
    const std::string input = std::filesystem::absolute(path).string();
    const auto endBy = steady_clock::now() + options_.timeLimit;
    const auto folders = options_.dataFolders ? *options_.dataFolders : desktopDataFolders();
    for (const ThumbnailerEntry& entry : fitting(thumbnailersBelow(folders), type)) {
        if (!isInstalled(entry)) continue;
        const nanoseconds left = endBy - steady_clock::now();
        if (left.count() <= 0) break;
        try {
            if (auto picture = pictureBy(entry, input, size, left)) return picture;
        } catch (const std::system_error&) {
            // It cannot be started; the next may do.
        }
    }
    return std::nullopt;
}

std::optional<Image> DesktopThumbnailer::thumbnail(const std::string& path,
                                                   std::uint32_t maximumWidth,
                                                   std::uint32_t maximumHeight) {
    const std::uint32_t width = std::min(maximumWidth, kLongestSide);
    const std::uint32_t height = std::min(maximumHeight, kLongestSide);
    if (width == 0 || height == 0) return std::nullopt;
    const auto begin = firstBytes(path, kContentTypeBytes);  // nothing for what is no regular file
    if (!begin || begin->empty()) return std::nullopt;
    const std::string type = contentType(path, *begin);
    const auto picture = isStillPicture(type) ? imageCodec().load(path)
                                              : byProgram(path, type, std::max(width, height));
    if (!picture) return std::nullopt;
    return fittedInto(*picture, width, height);
}

}  // namespace qrx::platform
