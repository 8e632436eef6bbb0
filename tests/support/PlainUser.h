#pragma once

#include <functional>
#include <string>

namespace qrx::test {

/// What `question` answers when a user without privileges asks: permissions of files do not hold
/// root back. As root the question is asked in a child process of the user "nobody", else right
/// here. Throws std::runtime_error when the child fails.
[[nodiscard]] std::string askedByPlainUser(const std::function<std::string()>& question);

}  // namespace qrx::test
