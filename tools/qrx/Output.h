#pragma once

#include <string>
#include <string_view>

namespace qrx::tool {

/// Standard output. Collects what is written and hands it to the system in large pieces. A write
/// that fails (full disk, closed pipe) is remembered; nothing is written after it.
class Output {
public:
    explicit Output(int descriptor) : descriptor_(descriptor) {}
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;

    void write(std::string_view text);
    /// Hands over what was collected.
    void flush();
    /// Whether everything handed over so far was taken.
    [[nodiscard]] bool isGood() const { return error_ == 0; }
    /// Flushes, and lets the system report what it only finds out when a file is closed. Gives the
    /// number of the first error that ever occurred, 0 for none.
    [[nodiscard]] int finish();

private:
    int descriptor_;
    int error_ = 0;
    std::string pending_;
};

}  // namespace qrx::tool
