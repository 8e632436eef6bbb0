#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "foundation/FilePath.h"

namespace qrx::tool {

enum class Existing { kept, replaced };

/// A new file that appears under its name when it is whole, and not at all before. Until then it
/// has no name where the file system can do without one, so that nothing is left behind however the
/// program ends.
class ReportFile {
public:
    /// Throws std::system_error when it cannot be made there, and, when existing files are kept,
    /// when there is one.
    ReportFile(FilePath path, Existing existing);
    ~ReportFile();
    ReportFile(const ReportFile&) = delete;
    ReportFile& operator=(const ReportFile&) = delete;

    /// Throws std::system_error when it cannot be written.
    void write(std::string_view text);
    /// Gives the file its name. Throws std::system_error when that fails; nothing is left then.
    void publish();

private:
    void open();
    void flush();
    void nameTemporarily();

    FilePath path_;
    FilePath temporary_{};  ///< its name for now; empty while it has none
    Existing existing_;
    int descriptor_ = -1;
    std::string pending_{};
};

}  // namespace qrx::tool
