#include "foundation/OpenFolder.h"

#include <cerrno>

#include <fcntl.h>
#include <unistd.h>

namespace qrx {

OpenFolder::OpenFolder(int parent, const char* name, LastLink lastLink) {
    const int noFollow = lastLink == LastLink::refuse ? O_NOFOLLOW : 0;
    const int descriptor =
        ::openat(parent, name, O_RDONLY | O_DIRECTORY | O_CLOEXEC | O_NONBLOCK | noFollow);
    if (descriptor < 0) return;
    stream_.reset(::fdopendir(descriptor));
    if (!stream_) {
        const int reason = errno;
        ::close(descriptor);
        errno = reason;
    }
}

}  // namespace qrx
