#include <algorithm>
#include <chrono>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <fmt/core.h>
#include <unistd.h>

#include "app/QRXHDFileMatcherProxy.h"
#include "foundation/Text.h"
#include "platform/ports/Services.h"
#include "qrx/ClipWriter.h"
#include "qrx/Commands.h"
#include "qrx/Names.h"
#include "qrx/ShownText.h"
#include "qrx/Terminal.h"

namespace qrx::tool {

namespace {

constexpr const char* kFooter = R"(
Questions:
  files PATH...      the clips at the paths, as the service sees them; it passes
                     over a path at which nothing exists
  is-quicktime FILE  yes or no: it opens as a movie with a video or sound track
  pid                the service's process identifier
  lock               claims the service for this caller; nothing unlocks it
  quit               ends the service

NAME is the connection name that the service was started with.

Exit status: 0 the service answered; 1 there is no bus, no such service, it ended
or took too long, or it answered with an error; 2 wrong usage; 130 after Ctrl-C.

Examples:
  qrx call Cards files /media/me/CARD --format json
  qrx call Cards is-quicktime clip.mov --timeout 5
  qrx call Cards quit)";

struct CallOptions {
    std::string name;
    std::string question;
    std::vector<std::string> paths;
    std::string format = "table";
    double secondsAtMost = 0;  ///< 0: as long as it takes
};

std::unique_ptr<ClipWriter> makeWriter(const CallOptions& options, Output& output,
                                       const std::vector<PathDictionary>& clips) {
    if (options.format == "json") return makeClipJson(output);
    if (options.format == "ndjson") return makeClipNdjson(output);
    TableShape shape;
    for (const PathDictionary& clip : clips) {
        shape.titleColumns = std::max(shape.titleColumns, clip.volumeTitle.size());
    }
    if (isTerminal(STDOUT_FILENO)) shape.columns = terminalColumns(STDOUT_FILENO);
    return makeClipTable(output, shape);
}

/// One question to one service. An answer that does not come is a platform::BusError.
class Call {
public:
    Call(const CallOptions& options, Session& session, const platform::BusAddress& service)
        : options_(options), session_(session), service_(QRXDistributedProxy(service)) {
        using Seconds = std::chrono::duration<double>;
        if (options.secondsAtMost > 0) {
            service_.setTimeLimit(std::chrono::duration_cast<platform::Clock::Duration>(
                Seconds(options.secondsAtMost)));
        }
    }

    int run() {
        if (options_.question == "files") return files();
        if (options_.question == "is-quicktime") return isQuickTime();
        if (options_.question == "lock") return lock();
        if (options_.question == "quit") return quit();
        session_.output.write(fmt::format("{}\n", service_.distributedProcessIdentifier()));
        return kDone;
    }

private:
    int files() {
        // The service's working folder is another.
        FilePaths locations;
        for (const std::string& argument : options_.paths) {
            locations.push_back(absolutePath(argument));
        }
        const auto clips =
            service_.filePathDictionariesForAllHDFilesAtFileSystemLocations(locations);
        const auto writer = makeWriter(options_, session_.output, clips);
        for (const PathDictionary& clip : clips) {
            writer->add(clip);
        }
        writer->finish();
        return kDone;
    }

    int isQuickTime() {
        const FilePath path = absolutePath(options_.paths.front());
        if (!isUtf8(path)) {
            session_.console.say(shown(path) + ": not UTF-8, so a service cannot be asked for it");
            return kTrouble;
        }
        session_.output.write(service_.filePathIsQuickTime(path) ? "yes\n" : "no\n");
        return kDone;
    }

    int lock() {
        const bool wasLocked = service_.communicationLocked();
        service_.lockCommunication();
        session_.output.write(wasLocked ? "locked already\n" : "locked\n");
        return kDone;
    }

    int quit() {
        try {
            service_.killSelf();
        } catch (const platform::BusError& error) {
            // It was asked to go; that it went before it answered is what was wanted.
            if (error.fault() != platform::BusFault::vanished) throw;
        }
        return kDone;
    }

    const CallOptions& options_;
    Session& session_;
    QRXHDFileMatcherProxy service_;
};

std::string whatWentWrong(const CallOptions& options, const platform::BusError& error) {
    const std::string service = "the service '" + shown(options.name) + "'";
    switch (error.fault()) {
        case platform::BusFault::unreachable:
            return "cannot reach the session bus: " + shown(error.what());
        case platform::BusFault::vanished:
            return service + " ended before it answered";
        case platform::BusFault::timedOut:
            return fmt::format("{} did not answer within {} s", service, options.secondsAtMost);
        case platform::BusFault::refused:
            break;
    }
    return fmt::format("{} refused: {} ({})", service, shown(error.what()), shown(error.name()));
}

int ask(const CallOptions& options, Session& session) {
    try {
        const auto service = platform::serviceBus().rootProxy(options.name);
        if (service) return Call(options, session, *service).run();
        session.console.say("no service runs under the name '" + shown(options.name) + "'");
    } catch (const platform::BusError& error) {
        session.console.say(whatWentWrong(options, error));
    }
    return kTrouble;
}

/// The name as it was typed: one that begins with "[" has been taken for a path by then.
std::string connectionName(const std::string& argument) {
    constexpr std::string_view kPathMark = "./";
    const bool isMarked = argument.starts_with("./[");
    return isMarked ? argument.substr(kPathMark.size()) : argument;
}

/// Throws where a question has too many or too few paths.
void checkPaths(const CallOptions& options) {
    const std::size_t count = options.paths.size();
    if (options.question == "files") {
        if (count == 0) throw CLI::ValidationError("PATH", "files needs at least one");
    } else if (options.question == "is-quicktime") {
        if (count != 1) throw CLI::ValidationError("PATH", "is-quicktime needs exactly one");
    } else if (count != 0) {
        throw CLI::ValidationError("PATH", options.question + " takes none");
    }
}

}  // namespace

void addCallCommand(CLI::App& program, Job& job) {
    auto options = std::make_shared<CallOptions>();
    CLI::App& command = *program.add_subcommand("call", "Ask a running service");
    command.add_option("NAME", options->name, "The service's connection name")->required();
    command.add_option("QUESTION", options->question, "What to ask")
        ->type_name("files|is-quicktime|pid|lock|quit")
        ->required()
        ->check(CLI::IsMember({"files", "is-quicktime", "pid", "lock", "quit"}).description(""));
    command.add_option("PATH", options->paths, "Cards, folders or files to ask about");
    command.add_option("-f,--format", options->format, "How clips are written")
        ->type_name("table|json|ndjson")
        ->capture_default_str()
        ->check(CLI::IsMember({"table", "json", "ndjson"}).description(""));
    command.add_option("--timeout", options->secondsAtMost, "Give up after so long; 0: never")
        ->type_name("SECONDS")
        ->capture_default_str()
        ->check(CLI::Validator(whyNoDuration, ""));
    command.footer(kFooter);
    command.callback([options, &job] {
        options->name = connectionName(options->name);
        checkPaths(*options);
        job.run = [options](Session& session) { return ask(*options, session); };
    });
}

}  // namespace qrx::tool
