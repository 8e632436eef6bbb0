#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qrx::platform {

/// What a thumbnailer is asked to do.
struct ThumbnailJob {
    std::string input;   ///< absolute path of the file
    std::string output;  ///< where the picture is to be written
    unsigned size = 0;   ///< pixels of its longer side
};

/// One program that makes thumbnails, as a desktop knows it: a `.thumbnailer` file.
///
///     [Thumbnailer Entry]
///     TryExec=ffmpegthumbnailer
///     Exec=ffmpegthumbnailer -i %i -o %o -s %s -f
///     MimeType=video/mp4;video/quicktime;
struct ThumbnailerEntry {
    std::string tryExec;               ///< empty: there is nothing to try
    std::vector<std::string> command;  ///< the program first; field codes still in it
    std::vector<std::string> mimeTypes;

    /// The entry in the text of a file; nothing when it is none, has no command, or its command
    /// would put a path inside a quoted argument, where the entry format leaves its meaning open
    /// (it would reach, for one, a shell as part of a script).
    [[nodiscard]] static std::optional<ThumbnailerEntry> parsed(std::string_view text);

    /// The command for one file, each element one argument: %i the file, %u its URI, %o the
    /// picture, %s the size, %% a percent sign; codes that nobody defines vanish.
    [[nodiscard]] std::vector<std::string> commandFor(const ThumbnailJob& job) const;
};

/// The thumbnailers below `dataFolders`, folder by folder, in each in the order of file names. A
/// file name that came in an earlier folder hides the later one.
[[nodiscard]] std::vector<ThumbnailerEntry> thumbnailersBelow(
    const std::vector<std::string>& dataFolders);

/// The folders in which the desktop looks for data of programs, the user's own first: XDG_DATA_HOME
/// and XDG_DATA_DIRS, or what stands for them where they are not set.
[[nodiscard]] std::vector<std::string> desktopDataFolders();

/// Path of the program, looked for along PATH when the name has no "/"; nothing where no regular
/// file may be executed there.
[[nodiscard]] std::optional<std::string> executablePath(const std::string& name);

}  // namespace qrx::platform
