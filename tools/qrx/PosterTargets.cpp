#include "qrx/PosterTargets.h"

#include <algorithm>
#include <array>
#include <set>
#include <string_view>

#include <sys/stat.h>

#include "foundation/FileQuestions.h"
#include "foundation/PathText.h"
#include "foundation/Text.h"
#include "qrx/Names.h"
#include "qrx/ShownText.h"

namespace qrx::tool {

namespace {

using platform::ImageFormat;

struct FormatName {
    std::string_view ending;
    ImageFormat format;
};

constexpr std::array kFormatNames{
    FormatName{"png", ImageFormat::png},   FormatName{"jpg", ImageFormat::jpeg},
    FormatName{"jpeg", ImageFormat::jpeg}, FormatName{"tif", ImageFormat::tiff},
    FormatName{"tiff", ImageFormat::tiff},
};

PosterTargets refused(std::string why) {
    return {.targets = {}, .refusal = std::move(why)};
}

PosterTargets inFolder(const std::vector<FilePath>& clips, const FilePath& folder,
                       const std::string& format) {
    const std::string ending = format.empty() ? "png" : format;
    const auto chosen = formatOfName("poster." + ending);  // a leading point is no extension
    if (!chosen) return refused("there is no format " + shown(ending));
    PosterTargets all;
    std::set<FilePath> taken;
    for (const FilePath& clip : clips) {
        PosterTarget target{.path = joinedPath(folder, lastPathComponent(clip) + "." + ending),
                            .format = *chosen};
        if (!taken.insert(target.path).second) {
            return refused(shown(target.path) +
                           ": several of the clips would go there; use a folder for each card");
        }
        all.targets.push_back(std::move(target));
    }
    return all;
}

}  // namespace

std::optional<ImageFormat> formatOfName(const std::string& name) {
    const std::string ending = lowerCased(pathExtension(name));
    const auto* const found =
        std::find_if(kFormatNames.begin(), kFormatNames.end(),
                     [&](const FormatName& each) { return each.ending == ending; });
    if (found == kFormatNames.end()) return std::nullopt;
    return found->format;
}

PosterTargets posterTargets(const std::vector<FilePath>& clips, const std::string& output,
                            const std::string& format) {
    const FilePath path = absolutePath(output);
    if (folderExists(path)) return inFolder(clips, path, format);
    const std::string name = output.empty() ? "''" : shown(output);
    if (output.ends_with('/')) return refused(name + ": there is no such folder");
    if (clips.size() > 1) {
        return refused(name + ": several posters need a folder, and one that exists");
    }
    if (!format.empty()) {
        return refused("--format is for a folder; here the name of the file says the format");
    }
    const auto chosen = formatOfName(path);
    if (!chosen) {
        return refused(name + ": neither a folder, nor a name that ends in .png, .jpg or .tif");
    }
    return {.targets = {{.path = path, .format = *chosen}}, .refusal = {}};
}

std::optional<std::string> whyNotWritten(const FilePath& path, const std::vector<FilePath>& clips,
                                         bool replaces) {
    struct stat there {};
    if (::lstat(path.c_str(), &there) != 0) return std::nullopt;  // or writing it will tell
    if (!replaces) return "is there already (--force replaces it)";
    if (!S_ISREG(there.st_mode) && !S_ISLNK(there.st_mode)) return "is no file to replace";
    for (const FilePath& clip : clips) {
        struct stat file {};
        const bool isSame = ::stat(clip.c_str(), &file) == 0 && file.st_dev == there.st_dev &&
                            file.st_ino == there.st_ino;
        if (isSame || clip == path) return "is one of the clips, which are never written over";
    }
    return std::nullopt;
}

}  // namespace qrx::tool
