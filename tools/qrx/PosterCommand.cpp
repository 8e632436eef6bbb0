#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "platform/ports/Services.h"
#include "qrx/ClipArguments.h"
#include "qrx/Commands.h"
#include "qrx/Names.h"
#include "qrx/NewFile.h"
#include "qrx/PosterTargets.h"
#include "qrx/ShownText.h"
#include "qrx/ToolReports.h"
#include "readers/QRXQuickTimeImageUtility.h"
#include "volumes/FFmpegStill.h"

namespace qrx::tool {

namespace {

constexpr const char* kFooter = R"(
Writes a still picture of each clip: the one that its card keeps where it keeps
one (P2), else a thumbnail by the desktop's thumbnailers (ffmpegthumbnailer, for
one), else a picture of the clip's first second by ffmpeg. The path of each
picture that was written goes to standard output.

OUT is a file, whose name says its format: .png, .jpg or .tif. For several clips
it is a folder that exists; each clip's picture is there under the clip's name
with .png behind it, or what --format says.

A picture is never enlarged; a longer side beyond --size is brought down to it.
Without --size the picture is as the layout gives it, 250 pixels at most; with a
larger one the clip itself is asked where the card's own picture is smaller.

Exit status: 0 every picture was written; 1 a file is missing or no clip, nobody
could make a picture of it, or one is there already (it is named on standard
error, the others are written); 2 wrong usage, nothing was written; 130 after
Ctrl-C.

Examples:
  qrx poster -o clip.png clip.mov
  qrx poster --size 640 --format jpg -o posters /media/me/CARD/CONTENTS/VIDEO/*.MXF)";

constexpr std::uint32_t kLargestSize = 8192;  // pixels

struct PosterOptions {
    std::vector<std::string> files;
    std::string output;
    std::uint32_t size = 0;  ///< pixels of the longer side; 0: as the layout gives it
    std::string format;
    bool replaces = false;
};

/// A folder of this run alone, gone at its end.
class ScratchFolder {
public:
    ScratchFolder() : path_((std::filesystem::temp_directory_path() / "qrx-XXXXXX").string()) {
        if (::mkdtemp(path_.data()) == nullptr) {
            throw std::system_error(errno, std::generic_category(), path_);
        }
    }
    ~ScratchFolder() {
        std::error_code fault;
        std::filesystem::remove_all(path_, fault);
    }
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    [[nodiscard]] const FilePath& path() const { return path_; }

private:
    FilePath path_;
};

std::uint32_t longerSide(const platform::Image& image) {
    return std::max(image.width, image.height);
}

/// The picture with its longer side brought down to `most`.
platform::Image broughtDown(platform::Image image, std::uint32_t most) {
    if (image.isEmpty() || longerSide(image) <= most) return image;
    const double factor = static_cast<double>(most) / longerSide(image);
    const auto side = [factor](std::uint32_t pixels) {
        return static_cast<std::uint32_t>(std::max(std::lround(pixels * factor), 1L));
    };
    return platform::imageCodec()
        .scaled(image, side(image.width), side(image.height))
        .value_or(platform::Image{});
}

class PosterMaker {
public:
    explicit PosterMaker(std::uint32_t size) : size_(size) {}

    /// The empty image when nobody makes one.
    [[nodiscard]] platform::Image poster(const FilePath& clip,
                                         const QRXHDMediaVolumeUtilityObject& utility) const {
        constexpr auto kUsual = static_cast<std::uint32_t>(QRXQuickTimeImageUtility::kPosterSide);
        platform::Image image = utility.posterImageForFilePath(clip, scratch_.path());
        if (longerSide(image) < size_) image = larger(std::move(image), thumbnail(clip));
        if (longerSide(image) < size_) {
            image = larger(std::move(image), ffmpegStill(clip, scratch_.path()));
        }
        return broughtDown(std::move(image), size_ == 0 ? kUsual : size_);
    }

private:
    [[nodiscard]] platform::Image thumbnail(const FilePath& clip) const {
        const auto data = QRXQuickTimeImageUtility::qtImageUtility().posterImageDataForFilePath(
            clip, size_, size_);
        if (data.empty()) return {};
        return platform::imageCodec().decoded(data).value_or(platform::Image{});
    }

    static platform::Image larger(platform::Image one, platform::Image other) {
        return longerSide(other) > longerSide(one) ? std::move(other) : std::move(one);
    }

    ScratchFolder scratch_;
    std::uint32_t size_;
};

class Posters {
public:
    Posters(const PosterOptions& options, Session& session)
        : options_(options), session_(session) {}

    int run() {
        for (const std::string& argument : options_.files) {
            clips_.push_back(absolutePath(argument));
        }
        PosterTargets planned = posterTargets(clips_, options_.output, options_.format);
        if (!planned.refusal.empty()) {
            session_.console.say(planned.refusal);
            return kUsage;
        }
        for (std::size_t i = 0; i < clips_.size(); ++i) {
            targets_[clips_[i]] = std::move(planned.targets[i]);
        }
        auto& runner = platform::services().processRunner;
        runner = std::make_shared<QuietTools>(runner);
        reportToolProblems(session_.console);
        const PosterMaker maker(options_.size);
        const int visited =
            visitClips(options_.files, session_,
                       [&](const std::string& argument, const FilePath& clip, const auto& utility) {
                           if (const auto why = write(clip, maker, utility)) {
                               complainOf(argument, *why, session_);
                               status_ = kTrouble;
                           }
                       });
        return std::max(visited, status_);
    }

private:
    /// What went wrong, as a phrase.
    std::optional<std::string> write(const FilePath& clip, const PosterMaker& maker,
                                     const QRXHDMediaVolumeUtilityObject& utility) {
        const PosterTarget& target = targets_.at(clip);
        if (const auto why = whyNotWritten(target.path, clips_, options_.replaces)) {
            return shown(target.path) + " " + *why;
        }
        const platform::Image image = maker.poster(clip, utility);
        if (session_.isCancelled) return std::nullopt;
        if (image.isEmpty()) return "no picture could be made of it";
        const auto file = platform::imageCodec().encoded(image, {.format = target.format});
        if (!file) return "its picture cannot be written in that format";
        try {
            writeNewFile(target.path, *file,
                         options_.replaces ? Existing::replaced : Existing::kept);
        } catch (const std::system_error& fault) {
            return shown(target.path) + ": " + fault.code().message();
        }
        session_.output.write(shown(target.path) + "\n");
        return std::nullopt;
    }

    const PosterOptions& options_;
    Session& session_;
    std::vector<FilePath> clips_;
    std::map<FilePath, PosterTarget> targets_;
    int status_ = kDone;
};

}  // namespace

void addPosterCommand(CLI::App& program, Job& job) {
    auto options = std::make_shared<PosterOptions>();
    auto tools = std::make_shared<ToolOptions>();
    CLI::App& command = *program.add_subcommand("poster", "Write a still picture of a clip");
    command.add_option("FILE", options->files, "The clips")->required();
    command.add_option("-o,--output", options->output, "The picture, or a folder for several")
        ->type_name("OUT")
        ->required();
    command.add_option("-s,--size", options->size, "Pixels of the longer side, at most")
        ->type_name("PIXELS")
        ->check(CLI::Range(std::uint32_t{1}, kLargestSize));
    command.add_option("-f,--format", options->format, "Format of pictures in a folder")
        ->type_name("png|jpg|tif")
        ->check(CLI::IsMember({"png", "jpg", "tif"}).description(""));
    command.add_flag("--force", options->replaces, "Replace a picture that is there already");
    addToolOptions(command, *tools);
    command.footer(kFooter);
    command.callback([options, tools, &job] {
        job.tools = *tools;
        job.run = [options](Session& session) { return Posters(*options, session).run(); };
    });
}

}  // namespace qrx::tool
