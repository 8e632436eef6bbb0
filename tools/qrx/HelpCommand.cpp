#include <memory>
#include <string>

#include "qrx/Commands.h"

namespace qrx::tool {

namespace {

const CLI::App& commandNamed(const CLI::App& program, const std::string& name) {
    if (name.empty()) return program;
    const auto commands = program.get_subcommands([](const CLI::App*) { return true; });
    for (const CLI::App* const command : commands) {
        if (command->get_name() == name) return *command;
    }
    throw CLI::ValidationError("COMMAND", "there is no command " + name);
}

}  // namespace

void addHelpCommand(CLI::App& program, Job& job) {
    auto name = std::make_shared<std::string>();
    CLI::App& command = *program.add_subcommand("help", "Explain a command and its options");
    command.add_option("COMMAND", *name, "The command to explain; without it, the program");
    command.callback([name, &program, &job] {
        const CLI::App& wanted = commandNamed(program, *name);
        const std::string prefix = &wanted == &program ? "" : program.get_name();
        job.run = [text = wanted.help(prefix)](Session& session) {
            session.output.write(text);
            return kDone;
        };
    });
}

}  // namespace qrx::tool
