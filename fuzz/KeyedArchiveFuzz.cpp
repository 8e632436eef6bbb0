#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <span>

#include "metadata/MetadataArchive.h"
#include "platform/linux/PlistPropertyList.h"
#include "platform/linux/SyslogSystemLog.h"
#include "platform/ports/Services.h"
#include "timecode/QRXTimecodeDetailsWrapper.h"

namespace {

void require(bool holds) {
    if (!holds) std::abort();
}

bool installServices() {
    qrx::platform::services().propertyLists = std::make_shared<qrx::platform::PlistPropertyList>();
    qrx::platform::services().systemLog = std::make_shared<qrx::platform::SyslogSystemLog>();
    return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    [[maybe_unused]] static const bool installed = installServices();
    const auto bytes = std::as_bytes(std::span(data, size));
    const auto& lists = qrx::platform::propertyLists();
    if (const auto list = lists.read(bytes)) {
        // What was read can be written, unless sharing had kept it below the limit of bytes.
        const auto written = lists.written(*list, qrx::platform::PropertyListFormat::binary);
        if (written) require(lists.read(*written) == *list);
    }
    if (const auto wrapper = qrx::metadataWrapperOfArchive(bytes)) {
        require(wrapper->metadataKeys().size() <= 25);
        const auto archive = qrx::keyedArchiveOf(*wrapper);
        require(archive && qrx::metadataWrapperOfArchive(*archive));
    }
    (void)qrx::metadataKeyOfArchive(bytes);
    if (const auto details = qrx::QRXTimecodeDetailsWrapper::wrapperOfArchive(bytes)) {
        const auto archive = qrx::keyedArchiveOf(*details);
        require(archive && qrx::QRXTimecodeDetailsWrapper::wrapperOfArchive(*archive) == details);
    }
    return 0;
}
