#include <memory>
#include <string>

#include "qrx/Commands.h"

namespace qrx::tool {

namespace {

/// App::help would explain the command that was chosen, this one.
std::string helpOf(const CLI::App& command, const std::string& name) {
    return command.get_formatter()->make_help(&command, name, CLI::AppFormatMode::Normal);
}

/// The empty name means the program.
std::string helpText(const CLI::App& program, const std::string& name) {
    if (name.empty()) return helpOf(program, program.get_name());
    // Without a filter only those are given that the command line chose.
    const auto commands = program.get_subcommands([](const CLI::App*) { return true; });
    for (const CLI::App* const command : commands) {
        if (command->get_name() == name) return helpOf(*command, program.get_name() + " " + name);
    }
    throw CLI::ValidationError("COMMAND", "there is no command " + name);
}

}  // namespace

void addHelpCommand(CLI::App& program, Job& job) {
    auto name = std::make_shared<std::string>();
    CLI::App& command = *program.add_subcommand("help", "Explain a command and its options");
    command.add_option("COMMAND", *name, "The command to explain; without it, the program");
    command.callback([name, &program, &job] {
        job.run = [text = helpText(program, *name)](Session& session) {
            session.output.write(text);
            return kDone;
        };
    });
}

}  // namespace qrx::tool
