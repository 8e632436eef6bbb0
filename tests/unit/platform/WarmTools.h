#pragma once

#include <chrono>
#include <filesystem>
#include <set>
#include <string>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

#include <unistd.h>

#include "platform/linux/WarmProcessRunner.h"
#include "support/TemporaryFolder.h"

namespace qrx::platform::test {

/// A tool of the test tree, copied into a folder of its own so that its processes can be told from
/// everybody else's.
class ToolCopy {
public:
    explicit ToolCopy(const std::string& built = QRX_WARM_TOOL) {
        std::filesystem::copy_file(built, path_);
    }

    [[nodiscard]] const std::string& path() const { return path_; }
    [[nodiscard]] const qrx::test::TemporaryFolder& folder() const { return folder_; }

    /// "-i" and `arguments`.
    [[nodiscard]] ProcessRequest asked(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), "-i");
        return {path_, std::move(arguments), StandardError::captured};
    }

    /// Processes that run it at this moment; one that has ended counts no more.
    [[nodiscard]] std::set<pid_t> processes() const {
        std::set<pid_t> found;
        for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
            std::error_code unreadable;
            const auto program = std::filesystem::read_symlink(entry.path() / "exe", unreadable);
            if (unreadable || program != path_) continue;
            found.insert(std::stoi(entry.path().filename().string()));
        }
        return found;
    }

private:
    qrx::test::TemporaryFolder folder_;
    std::string path_ = folder_ / "tool";
};

template <class Condition>
bool becomesTrue(const Condition& condition,
                 std::chrono::milliseconds within = std::chrono::seconds{20}) {
    const auto until = std::chrono::steady_clock::now() + within;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > until) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds{5});
    }
    return true;
}

/// Warm from the first run on.
inline WarmChoices warmAtOnce() {
    WarmChoices choices;
    choices.plainRunsFirst = 0;
    return choices;
}

}  // namespace qrx::platform::test
