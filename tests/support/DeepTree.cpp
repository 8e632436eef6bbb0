#include "support/DeepTree.h"

#include <stdexcept>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace qrx::test {

std::string makeDeepTree(const std::string& start, std::string_view name, std::size_t count,
                         std::string_view fileName) {
    const std::string folderName(name);
    std::string path = start;
    int folder = ::open(start.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
    for (std::size_t i = 0; i < count && folder >= 0; ++i) {
        ::mkdirat(folder, folderName.c_str(), 0755);
        const int below = ::openat(folder, folderName.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
        ::close(folder);
        folder = below;
        path.append("/").append(name);
    }
    const int file =
        ::openat(folder, std::string(fileName).c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0644);
    if (folder >= 0) ::close(folder);
    if (file < 0) throw std::runtime_error("cannot make a deep tree below " + start);
    ::close(file);
    return path + "/" + std::string(fileName);
}

}  // namespace qrx::test
