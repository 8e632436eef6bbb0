#include "qrx/Locations.h"

#include <cerrno>
#include <cstdint>
#include <stop_token>
#include <system_error>
#include <utility>

#include <sys/eventfd.h>
#include <unistd.h>

#include "platform/ports/ProcessRunner.h"

namespace qrx::tool {

namespace {

struct MakeReadable {
    int event;
    void operator()() const {
        const std::uint64_t one = 1;
        (void)!::write(event, &one, sizeof one);
    }
};

}  // namespace

Locations::Locations(const std::vector<std::string>& arguments, Session& session)
    : arguments_(arguments), session_(session) {}

Locations::~Locations() {
    if (runHasEnded_ >= 0) ::close(runHasEnded_);
}

void Locations::readNames(char separator) {
    runHasEnded_ = ::eventfd(0, EFD_CLOEXEC);
    if (runHasEnded_ < 0) throw std::system_error(errno, std::generic_category(), "eventfd");
    names_ =
        std::make_unique<NameReader>(session_.originalInput, separator,
                                     std::vector{session_.interruption.descriptor(), runHasEnded_});
}

std::optional<FilePath> Locations::next() {
    const auto argument = nextArgument();
    if (!argument) return std::nullopt;
    FilePath location = absolutePath(*argument);
    auto why = whyMissing(location);
    if (!why) return location;
    const std::lock_guard lock(mutex_);
    missing_.push_back({*argument, std::move(*why)});
    return FilePath();
}

std::optional<std::string> Locations::nextArgument() {
    if (position_ < arguments_.size()) return arguments_[position_++];
    if (!names_) return std::nullopt;
    // Names may be long in coming, and nobody may want them any more.
    const std::stop_callback giveUp(platform::RunsUntil::current(), MakeReadable{runHasEnded_});
    return names_->next();
}

Locations::Missing Locations::missing(const FilePath& location) {
    const std::lock_guard lock(mutex_);
    // Where there still was something when its turn came to be named.
    if (!location.empty() || missing_.empty()) {
        return {location, whyMissing(location).value_or("was not there")};
    }
    Missing first = std::move(missing_.front());
    missing_.pop_front();
    return first;
}

}  // namespace qrx::tool
