#include "support/PlainUser.h"

#include <array>
#include <cerrno>
#include <cstdlib>
#include <grp.h>
#include <stdexcept>

#include <sys/types.h>
#include <sys/wait.h>
#include <unistd.h>

namespace qrx::test {

namespace {

constexpr uid_t kNobody = 65534;

[[noreturn]] void answerAsNobody(const std::function<std::string()>& question, int pipe) {
    const bool plain =
        ::setgroups(0, nullptr) == 0 && ::setgid(kNobody) == 0 && ::setuid(kNobody) == 0;
    if (!plain) ::_exit(EXIT_FAILURE);
    try {
        const std::string answer = question();
        for (std::size_t sent = 0; sent < answer.size();) {
            const ssize_t count = ::write(pipe, answer.data() + sent, answer.size() - sent);
            if (count <= 0) ::_exit(EXIT_FAILURE);
            sent += static_cast<std::size_t>(count);
        }
    } catch (...) {
        ::_exit(EXIT_FAILURE);
    }
    ::_exit(EXIT_SUCCESS);
}

}  // namespace

std::string askedByPlainUser(const std::function<std::string()>& question) {
    if (::geteuid() != 0) return question();
    std::array<int, 2> pipe{};
    if (::pipe(pipe.data()) != 0) throw std::runtime_error("no pipe");
    const pid_t child = ::fork();
    if (child < 0) throw std::runtime_error("no child process");
    if (child == 0) answerAsNobody(question, pipe[1]);
    ::close(pipe[1]);
    std::string answer;
    std::array<char, 4096> buffer{};
    ssize_t count = 0;
    while ((count = ::read(pipe[0], buffer.data(), buffer.size())) > 0) {
        answer.append(buffer.data(), static_cast<std::size_t>(count));
    }
    ::close(pipe[0]);
    int status = 0;
    while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    if (status != 0) throw std::runtime_error("the child process failed");
    return answer;
}

}  // namespace qrx::test
