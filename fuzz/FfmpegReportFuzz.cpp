#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "foundation/Text.h"
#include "readers/FfmpegReport.h"

namespace {

void require(bool holds) {
    if (!holds) std::abort();
}

// Random bytes seldom name an input: those that do not are tried again behind a made-up one.
constexpr std::string_view kInput = "Input #0, mov, from 'a.mov':\n";

void readReport(const std::string& bytes) {
    const std::string report = qrx::textOfToolOutput(bytes);
    require(qrx::isUtf8(report));
    const auto values = qrx::valuesOfFfmpegReport(report);
    require(values.has_value() == (report.find("Input #0,") != std::string::npos));
    if (!values) return;
    for (const auto& [identifier, value] : *values) {
        require(!identifier.empty());
        require(value.size() <= report.size() + 20);  // a count of streams is the one new text
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string bytes(data, data + size);
    readReport(bytes);
    readReport(std::string(kInput) + bytes);

    const std::size_t half = size / 2;
    const std::string_view text(bytes);
    const auto field = qrx::reportField(text.substr(half), text.substr(0, half / 2),
                                        text.substr(half / 2, half - half / 2));
    require(!field || field->size() <= text.size());
    return 0;
}
