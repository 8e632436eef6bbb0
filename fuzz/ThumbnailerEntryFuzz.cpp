// Entries of thumbnailers: whatever the file says, a path reaches the program as part of one
// argument, never as several.

#include <cstdint>
#include <cstdlib>
#include <string>

#include "platform/linux/ThumbnailerEntry.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using qrx::platform::ThumbnailerEntry;
    const std::string text = "[Thumbnailer Entry]\nMimeType=video/mp4;\nExec=" +
                             std::string(reinterpret_cast<const char*>(data), size) + "\n";
    const auto entry = ThumbnailerEntry::parsed(text);
    if (!entry) return 0;
    const auto command =
        entry->commandFor({.input = "/a b\" 'c'.mov", .output = "/tmp/o.png", .size = 250});
    if (command.size() != entry->command.size() || command.empty()) std::abort();
    return 0;
}
