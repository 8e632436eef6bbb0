#include "qrx/Terminal.h"

#include <sys/ioctl.h>
#include <unistd.h>

namespace qrx::tool {

bool isTerminal(int descriptor) {
    return ::isatty(descriptor) == 1;
}

std::size_t terminalColumns(int descriptor) {
    constexpr std::size_t kUsualColumns = 80;
    winsize size{};
    if (::ioctl(descriptor, TIOCGWINSZ, &size) != 0 || size.ws_col == 0) return kUsualColumns;
    return size.ws_col;
}

}  // namespace qrx::tool
