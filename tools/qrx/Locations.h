#pragma once

#include <deque>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "qrx/Names.h"
#include "qrx/Session.h"
#include "volumes/FileMatcher.h"

namespace qrx::tool {

/// The places that a command was given to look at: its arguments, and then the names on standard
/// input, where it reads any. Wanted by a FileMatcher ahead of what it tells.
class Locations {
public:
    /// Both must outlive it.
    Locations(const std::vector<std::string>& arguments, Session& session);
    ~Locations();
    Locations(const Locations&) = delete;
    Locations& operator=(const Locations&) = delete;

    /// Further names come from the standard input that the program was started with.
    void readNames(char separator);

    /// The next location, absolute; empty in the place of one that is missing. Nothing at the end,
    /// and when the run that asks has ended or a signal has come. Any thread, one at a time.
    [[nodiscard]] std::optional<FilePath> next();

    struct Missing {
        std::string argument;  ///< as it was named
        std::string why;       ///< as a phrase for a message
    };
    /// What is missing at `location`. Asked once for each location that was found missing, in their
    /// order.
    [[nodiscard]] Missing missing(const FilePath& location);

private:
    [[nodiscard]] std::optional<std::string> nextArgument();

    const std::vector<std::string>& arguments_;
    Session& session_;
    std::size_t position_ = 0;
    std::unique_ptr<NameReader> names_;
    int runHasEnded_ = -1;  ///< becomes readable then
    std::mutex mutex_;      ///< guards what follows
    std::deque<Missing> missing_;
};

}  // namespace qrx::tool
