#pragma once

#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "foundation/FilePath.h"
#include "foundation/OrderedWork.h"
#include "qrx/Names.h"
#include "qrx/Session.h"

namespace qrx::tool {

/// What a command wants to know of each file that it was given.
template <class Answer>
struct FileQuestion {
    /// Asked for several files at a time, on threads of their own.
    std::function<Answer(const FilePath& file)> ask;
    /// In the order of the arguments, on the calling thread. `argument` is the file as it was
    /// named.
    std::function<void(const std::string& argument, const FilePath& file, Answer&&)> take;
    /// In its place: why there is no such file.
    std::function<void(const std::string& argument, const std::string& why)> complain;
};

/// Asks about every file that is named; NO when the session was cancelled before the end.
template <class Answer>
[[nodiscard]] bool askAboutFiles(const std::vector<std::string>& arguments, Session& session,
                                 const FileQuestion<Answer>& question) {
    struct Given {
        std::string argument;
        FilePath file;
        std::optional<std::string> whyNone;
    };
    auto next = arguments.begin();
    return performInOrder<Given, std::optional<Answer>>(
        {.next = [&]() -> std::optional<Given> {
             if (next == arguments.end()) return std::nullopt;
             const std::string& argument = *next++;
             FilePath file = absolutePath(argument);
             auto why = whyNoFile(file);
             return Given{argument, std::move(file), std::move(why)};
         },
         .work = [&](const Given& given) -> std::optional<Answer> {
             if (given.whyNone) return std::nullopt;
             return question.ask(given.file);
         },
         .before = {},
         .take =
             [&](const Given& given, std::optional<Answer>&& answer) {
                 if (answer) {
                     question.take(given.argument, given.file, std::move(*answer));
                 } else {
                     question.complain(given.argument, *given.whyNone);
                 }
             },
         .isCancelled = [&session] { return session.isCancelled.load(); }});
}

}  // namespace qrx::tool
