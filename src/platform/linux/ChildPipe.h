#pragma once

#include <cstddef>
#include <string>

#include "platform/linux/FileDescriptor.h"

namespace qrx::platform {

/// One output stream of a child: the child writes into writeEnd(), we read what comes out.
class ChildPipe {
public:
    /// @param mostKept  bytes that are kept; what follows is read and dropped.
    /// Throws std::system_error when no pipe can be made.
    explicit ChildPipe(std::size_t mostKept);

    [[nodiscard]] int writeEnd() const { return writeEnd_.get(); }
    /// To be called once the child holds its own copy: only then can the end be seen.
    void closeWriteEnd() { writeEnd_.close(); }

    /// For poll; -1 once the end was seen.
    [[nodiscard]] int readEnd() const { return readEnd_.get(); }
    /// Reads what one read gives; blocks unless poll said that something is there.
    void readSome();
    /// Reads what lies in the pipe at this moment and no more, so that a writer who never stops
    /// cannot keep us.
    void readWhatIsThere();

    [[nodiscard]] std::string takeText() { return std::move(text_); }

private:
    std::size_t readAtMost(std::size_t count);

    FileDescriptor readEnd_;
    FileDescriptor writeEnd_;
    std::size_t mostKept_;
    std::string text_;
};

}  // namespace qrx::platform
