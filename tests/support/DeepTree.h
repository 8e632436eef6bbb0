#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace qrx::test {

/// Makes `count` folders called `name`, each in the one before, below the folder `start`, and an
/// empty file in the last. The path of the file may be longer than the system accepts; it is
/// answered all the same. Throws std::runtime_error on failure.
std::string makeDeepTree(const std::string& start, std::string_view name, std::size_t count,
                         std::string_view fileName = "clip.mov");

}  // namespace qrx::test
