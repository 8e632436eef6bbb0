#include "app/QRXHDFileMatcherProxy.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <memory>
#include <stdexcept>
#include <string>
#include <system_error>
#include <utility>

#include <sys/mman.h>
#include <unistd.h>

#include "app/ClipRecord.h"
#include "app/RequestEncoding.h"
#include "foundation/Text.h"
#include "platform/ports/ServiceBus.h"

namespace qrx {

using platform::BusBytes;
using platform::BusDescriptor;
using platform::BusValue;
using platform::BusValues;

namespace {

/// A file that exists in memory alone, as long as anybody has it open.
BusDescriptor fileInMemory() {
    const int descriptor = ::memfd_create("qrx-answer", MFD_CLOEXEC);
    if (descriptor < 0) throw std::system_error(errno, std::generic_category(), "memfd_create");
    return {new int(descriptor), [](const int* file) {
                ::close(*file);
                delete file;
            }};
}

std::string contentsFromTheStart(int descriptor) {
    std::string contents;
    std::array<char, 65536> buffer{};
    ssize_t count = 0;
    while ((count = ::pread(descriptor, buffer.data(), buffer.size(),
                            static_cast<off_t>(contents.size()))) > 0) {
        contents.append(buffer.data(), static_cast<std::size_t>(count));
    }
    if (count < 0) throw std::system_error(errno, std::generic_category(), "the answer");
    return contents;
}

}  // namespace

std::vector<PathDictionary>
QRXHDFileMatcherProxy::filePathDictionariesForAllHDFilesAtFileSystemLocations(
    const FilePaths& locations) const {
    if (!std::all_of(locations.begin(), locations.end(),
                     [](const FilePath& location) { return isUtf8(location); })) {
        return streamedDictionaries(locations);
    }
    const BusValues results = call("filePathDictionariesForAllHDFilesAtFileSystemLocations", "as",
                                   {BusValue::List(locations.begin(), locations.end())});
    return decodedDictionaries(results.at(0));
}

std::vector<PathDictionary> QRXHDFileMatcherProxy::streamedDictionaries(
    const FilePaths& locations) const {
    BusValue::List bytes;
    for (const FilePath& location : locations) {
        bytes.emplace_back(BusBytes{location});
    }
    QRXHDFileMatcherProxy stream(*this);
    stream.setProtocolForProxy(kQRXHDFileMatcherStream);
    const BusDescriptor answer = fileInMemory();
    static_cast<void>(stream.call("streamFilePathDictionaries", "aaya{sv}h",
                                  {std::move(bytes), BusValue::Dictionary{}, answer}));
    try {
        return clipsOfLines(contentsFromTheStart(*answer));
    } catch (const std::invalid_argument& fault) {
        throw platform::BusError(platform::BusFault::refused, std::string(platform::kCallFailed),
                                 fault.what());
    }
}

bool QRXHDFileMatcherProxy::filePathIsQuickTime(const FilePath& file) const {
    const BusValues results = call("filePathIsQuickTime", "s", {file});
    const bool* isQuickTime = results.empty() ? nullptr : results.front().as<bool>();
    return isQuickTime != nullptr && *isQuickTime;
}

}  // namespace qrx
