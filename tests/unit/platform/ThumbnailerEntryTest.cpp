#include <cstdlib>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "platform/linux/ThumbnailerEntry.h"
#include "support/TemporaryFolder.h"

namespace qrx::platform {
namespace {

using Strings = std::vector<std::string>;

const ThumbnailJob kJob{.input = "/card/50%i $(x) \"a\".mov", .output = "/tmp/o.png", .size = 250};

std::string entryText(const std::string& exec) {
    return "[Thumbnailer Entry]\nExec=" + exec + "\nMimeType=video/mp4;video/x;\n";
}

/// The command for kJob; empty when there is no entry.
Strings commandOf(const std::string& exec) {
    const auto entry = ThumbnailerEntry::parsed(entryText(exec));
    return entry ? entry->commandFor(kJob) : Strings();
}

TEST(ThumbnailerEntry, IsReadAsItsFormatSays) {
    const auto entry = ThumbnailerEntry::parsed(
        "# comment\n\n[Thumbnailer Entry]\nTryExec=tool\nX-Other=1\n"
        "Exec=tool -s %s %u %o\nMimeType=video/mp4;video/quicktime\n[Other]\nExec=no\n");
    ASSERT_TRUE(entry);
    EXPECT_EQ(entry->tryExec, "tool");
    EXPECT_EQ(entry->mimeTypes, (Strings{"video/mp4", "video/quicktime"}));
    EXPECT_EQ(entry->command, (Strings{"tool", "-s", "%s", "%u", "%o"}));
}

struct ExecCase {
    const char* name;
    std::string exec;
    Strings command;
};

class ExecLine : public testing::TestWithParam<ExecCase> {};

INSTANTIATE_TEST_SUITE_P(
    Table, ExecLine,
    testing::Values(
        ExecCase{"PathIsOneArgumentAsItStands", "t %i %o", {"t", kJob.input, kJob.output}},
        ExecCase{"Uri", "t %u", {"t", "file:///card/50%25i%20$(x)%20%22a%22.mov"}},
        ExecCase{"CodeInsideAWord", "t --in=%i -s%s", {"t", "--in=" + kJob.input, "-s250"}},
        ExecCase{"PercentSign", "t %%i 100%%", {"t", "%i", "100%"}},
        ExecCase{"UnknownCodeVanishes", "t a%kb", {"t", "ab"}},
        ExecCase{"PercentAtTheEnd", "t a%", {"t", "a"}},
        ExecCase{"Quoted", R"(t "a b" "" "c\\"d\\$\\`\\\\")", {"t", "a b", "", "c\"d$`\\"}},
        ExecCase{"QuotesInsideAWord", R"(t a"b c"d)", {"t", "ab cd"}},
        ExecCase{"CodeAloneInQuotes", R"(t "%i" "%o")", {"t", kJob.input, kJob.output}},
        ExecCase{"SizeInsideQuotes", R"(t "a %s")", {"t", "a 250"}},
        ExecCase{"ManyBlanks", "  t    a  ", {"t", "a"}},
        ExecCase{"PathInsideAQuotedScript", R"(sh -c "convert %i %o")", {}},
        ExecCase{"UriInsideAQuotedScript", R"(sh -c "x %u")", {}},
        ExecCase{"QuotationWithoutEnd", R"(t "a b)", {}}, ExecCase{"Empty", "", {}},
        ExecCase{"EmptyProgram", R"("" a)", {}},
        ExecCase{"OverlayIsDropped",
                 "ffmpegthumbnailer -i %i -f -o %o",
                 {"ffmpegthumbnailer", "-i", kJob.input, "-o", kJob.output}},
        ExecCase{"OverlayIsDroppedAtAPath",
                 "/usr/bin/ffmpegthumbnailer -f",
                 {"/usr/bin/ffmpegthumbnailer"}},
        ExecCase{"SameFlagOfAnotherProgramStays", "t -f", {"t", "-f"}}),
    [](const auto& row) { return std::string(row.param.name); });

TEST_P(ExecLine, GivesTheseArguments) {
    EXPECT_EQ(commandOf(GetParam().exec), GetParam().command);
}

TEST(ThumbnailerEntry, WhatIsNoneGivesNothing) {
    EXPECT_FALSE(ThumbnailerEntry::parsed(""));
    EXPECT_FALSE(ThumbnailerEntry::parsed("Exec=t"));
    EXPECT_FALSE(ThumbnailerEntry::parsed("[Desktop Entry]\nExec=t\n"));
    EXPECT_FALSE(ThumbnailerEntry::parsed("[Thumbnailer Entry]\nMimeType=video/mp4\n"));
    EXPECT_FALSE(ThumbnailerEntry::parsed(std::string("\0\xFF\n", 3)));
}

TEST(ThumbnailerEntry, CutShortIsSafe) {
    const std::string whole = entryText(R"(t "a \\" b" %i --x=%o %)");
    for (std::size_t cut = 0; cut <= whole.size(); ++cut) {
        if (const auto entry = ThumbnailerEntry::parsed(whole.substr(0, cut))) {
            ASSERT_FALSE(entry->commandFor(kJob).empty()) << cut;
        }
    }
}

TEST(Thumbnailers, EarlierFolderHidesLaterFilesOfTheSameName) {
    const test::TemporaryFolder folder;
    folder.write("own/thumbnailers/b.thumbnailer", entryText("own-b"));
    folder.write("system/thumbnailers/b.thumbnailer", entryText("system-b"));
    folder.write("system/thumbnailers/a.thumbnailer", entryText("system-a"));
    folder.write("system/thumbnailers/c.txt", entryText("no"));
    folder.write("system/thumbnailers/d.thumbnailer", "no entry");
    folder.makeFolder("system/thumbnailers/e.thumbnailer");
    ASSERT_EQ(::mkfifo((folder / "system/thumbnailers/f.thumbnailer").c_str(), 0600), 0);
    Strings programs;
    for (const auto& entry :
         thumbnailersBelow({folder / "own", folder / "missing", folder / "system"})) {
        programs.push_back(entry.command.front());
    }
    EXPECT_EQ(programs, (Strings{"own-b", "system-a"}));
}

/// The variable `name` is set to `value`, or not at all, while this lives.
class ScopedVariable {
public:
    ScopedVariable(const char* name, const char* value) : name_(name) {
        if (const char* const before = std::getenv(name)) before_ = before;
        set(value);
    }
    ~ScopedVariable() { set(before_ ? before_->c_str() : nullptr); }
    ScopedVariable(const ScopedVariable&) = delete;
    ScopedVariable& operator=(const ScopedVariable&) = delete;

private:
    void set(const char* value) {
        if (value == nullptr) {
            ::unsetenv(name_);
        } else {
            ::setenv(name_, value, 1);
        }
    }
    const char* name_;
    std::optional<std::string> before_;
};

TEST(DesktopDataFolders, AreTheUsersThenTheSystems) {
    const ScopedVariable own("XDG_DATA_HOME", "/own");
    const ScopedVariable shared("XDG_DATA_DIRS", "/a::/b:relative");
    EXPECT_EQ(desktopDataFolders(), (Strings{"/own", "/a", "/b"}));
}

TEST(DesktopDataFolders, HaveDefaults) {
    const ScopedVariable own("XDG_DATA_HOME", nullptr);
    const ScopedVariable shared("XDG_DATA_DIRS", "");
    const ScopedVariable home("HOME", "/home/me");
    EXPECT_EQ(desktopDataFolders(),
              (Strings{"/home/me/.local/share", "/usr/local/share", "/usr/share"}));
    const ScopedVariable homeless("HOME", nullptr);
    EXPECT_EQ(desktopDataFolders(), (Strings{"/usr/local/share", "/usr/share"}));
}

TEST(ExecutablePath, IsLookedForAlongPath) {
    const test::TemporaryFolder folder;
    const std::string program = folder.write("two/tool");
    folder.write("one/tool");  // may not be executed
    folder.makeFolder("one/folder");
    ::chmod(program.c_str(), 0755);
    const std::string path = (folder / "one") + ":" + (folder / "two");
    const ScopedVariable search("PATH", path.c_str());
    EXPECT_EQ(executablePath("tool"), program);
    EXPECT_EQ(executablePath(program), program);
    EXPECT_FALSE(executablePath("folder"));
    EXPECT_FALSE(executablePath(folder / "one/tool"));
    EXPECT_FALSE(executablePath("missing"));
    EXPECT_FALSE(executablePath(""));
}

}  // namespace
}  // namespace qrx::platform
