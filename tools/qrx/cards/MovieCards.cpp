#include "qrx/cards/MovieCards.h"

#include <algorithm>
#include <string>
#include <vector>

#include <fmt/core.h>

#include "foundation/Text.h"
#include "qrx/cards/CardClips.h"

namespace qrx::tool {

namespace {

constexpr unsigned kFrames = 30;

std::vector<std::string> movieOptions(const MediaTool& media, const std::string& format) {
    const std::string video = media.encoder({"libx264", "libopenh264", "mpeg4"});
    std::vector<std::string> options{"-c:v", video, "-c:a", media.encoder({"aac", "ac3"})};
    if (video == "libx264") options.insert(options.end(), {"-preset", "ultrafast"});
    if (format == "mov") options.insert(options.end(), {"-timecode", "01:00:00;02"});
    options.insert(options.end(), {"-f", format});
    return options;
}

/// The first of the files is encoded, the others are copies.
void makeMovies(NewCard& card, const MediaTool& media, const std::vector<std::string>& files,
                const std::vector<std::string>& options) {
    media.makeMovie(options, card.pathForNewFile(files.front()));
    for (std::size_t i = 1; i < files.size(); ++i) {
        card.copy(files.front(), files[i]);
    }
}

void makePictures(NewCard& card, const MediaTool& media, const std::vector<std::string>& files,
                  const std::string& size) {
    media.makeStill({"-s", size, "-c:v", media.encoder({"mjpeg"}), "-f", "mjpeg"},
                    card.pathForNewFile(files.front()));
    for (std::size_t i = 1; i < files.size(); ++i) {
        card.copy(files.front(), files[i]);
    }
}

template <class Name>
std::vector<std::string> namesOf(unsigned clips, const Name& name) {
    std::vector<std::string> names;
    for (unsigned clip = 0; clip < clips; ++clip) {
        names.push_back(name(clip));
    }
    return names;
}

std::string canonFile(unsigned clip, std::string_view extension) {
    return fmt::format("DCIM/100CANON/MVI_{:04}.{}", clip + 1, extension);
}

std::string goProFile(unsigned clip, std::string_view extension) {
    return fmt::format("DCIM/100GOPRO/GOPR{:04}.{}", clip + 1, extension);
}

std::string redFile(unsigned clip, std::string_view ending) {
    return fmt::format("A001.RDM/A001_C{0:03}_0503AB.RDC/A001_C{0:03}_0503AB_{1}", clip + 1,
                       ending);
}

std::string jvcName(const CardClips& clips, unsigned clip) {
    return fmt::format("ABCD{:04}_{:02}", clips.takeOf(clip), clips.pieceOf(clip));
}

std::string jvcSidecar(const std::string& name, unsigned clip, const StartTimecode& start) {
    // Without the attribute "dropFrame" a clip of this layout counts as drop frame.
    return fmt::format(
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<ClipMetadata>\n"
        "  <TargetClip name=\"{}\" umid=\"{}\"/>\n  <TimeCode startTc=\"{}\"/>\n"
        "  <Duration value=\"{}\"/>\n</ClipMetadata>\n",
        name, madeUpUmid(clip), replaceAll(timecodeText(start), ":", ""), kFrames);
}

}  // namespace

void makeCanonEosCard(NewCard& card, const MediaTool& media, unsigned clips) {
    const auto files = [&](std::string_view extension) {
        return namesOf(clips, [&](unsigned clip) { return canonFile(clip, extension); });
    };
    makeMovies(card, media, files("MOV"), movieOptions(media, "mov"));
    makePictures(card, media, files("THM"), "160x120");
    const unsigned photographs = std::min(clips, kMostCameraMovies - clips);
    if (photographs > 0) {
        const auto photograph = [&](unsigned number) {
            return fmt::format("DCIM/100CANON/IMG_{:04}.JPG", clips + number + 1);
        };
        makePictures(card, media, namesOf(photographs, photograph), "1920x1280");
    }
    card.makeFolder("MISC");
}

void makeGoProCard(NewCard& card, const MediaTool& media, unsigned clips) {
    const auto files = [&](std::string_view extension) {
        return namesOf(clips, [&](unsigned clip) { return goProFile(clip, extension); });
    };
    makeMovies(card, media, files("MP4"), movieOptions(media, "mp4"));
    std::vector<std::string> small = movieOptions(media, "mp4");
    small.insert(small.begin(), {"-s", "432x240"});
    makeMovies(card, media, files("LRV"), small);
    makePictures(card, media, files("THM"), "160x120");
}

void makeRedOneCard(NewCard& card, const MediaTool& media, unsigned clips) {
    const auto movie = [](unsigned clip) { return redFile(clip, "F.mov"); };
    makeMovies(card, media, namesOf(clips, movie), movieOptions(media, "mov"));
    for (unsigned clip = 0; clip < clips; ++clip) {
        card.write(redFile(clip, "001.R3D"), std::string(4096, '\xFF'));
    }
}

void makeJvcQtCard(NewCard& card, const MediaTool& media, unsigned count) {
    const CardClips clips(count);
    const auto movie = [&](unsigned clip) {
        return fmt::format("PRIVATE/JVC/CQAV/CLIP/{}.MOV", jvcName(clips, clip));
    };
    makeMovies(card, media, namesOf(count, movie), movieOptions(media, "mov"));
    std::string list;
    for (unsigned clip = 0; clip < count; ++clip) {
        const std::string name = jvcName(clips, clip);
        card.write(fmt::format("PRIVATE/JVC/CQAV/INFO/{}.XML", name),
                   jvcSidecar(name, clip, clips.startOf(clip)));
        list += fmt::format("    <Clip name=\"{}\" umid=\"{}\"/>\n", name, madeUpUmid(clip));
    }
    const std::string index = fmt::format(
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<MediaInfo>\n  <ClipInfo>\n{}  </ClipInfo>\n"
        "</MediaInfo>\n",
        list);
    card.write("PRIVATE/JVC/CQAV/MEDIAINF.XML", index);
    card.write("PRIVATE/JVC/CQAV/MEDIAINF.BAK", index);
}

}  // namespace qrx::tool
