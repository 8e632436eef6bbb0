#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "platform/linux/LibxmlParser.h"
#include "readers/XmlMarkup.h"

namespace {

void require(bool holds) {
    if (!holds) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const qrx::platform::LibxmlParser parser;
    const auto document = parser.parse({reinterpret_cast<const char*>(data), size});
    if (!document) return 0;
    require(document->root != nullptr);
    const qrx::XmlMarkup markup(*document->root);
    if (!document->wellFormed) return 0;

    // What may be written back must be read again as it was.
    const auto bytes =
        parser.encoded(document->prolog + markup.text() + document->epilog, document->encoding);
    require(bytes.has_value());
    const auto again = parser.parse(*bytes);
    require(again && qrx::XmlMarkup(*again->root).text() == markup.text());
    return 0;
}
