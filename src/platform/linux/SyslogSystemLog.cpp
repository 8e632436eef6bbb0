#include "platform/linux/SyslogSystemLog.h"

#include <cstddef>
#include <syslog.h>

namespace qrx::platform {

namespace {

/// Bytes of the next message: never cuts through a UTF-8 character.
std::size_t lengthOfMessage(std::string_view text) {
    if (text.size() <= SyslogSystemLog::kLongestMessage) return text.size();
    std::size_t length = SyslogSystemLog::kLongestMessage;
    const auto continues = [&](std::size_t at) {
        return (static_cast<unsigned char>(text[at]) & 0xC0U) == 0x80U;
    };
    for (int step = 0; step < 3 && continues(length); ++step) {
        --length;
    }
    return length;
}

void send(int priority, std::string_view text) {
    do {
        const std::size_t length = lengthOfMessage(text);
        ::syslog(LOG_USER | priority, "%.*s", static_cast<int>(length), text.data());
        text.remove_prefix(length);
    } while (!text.empty());
}

}  // namespace

void SyslogSystemLog::notice(std::string_view text) {
    send(LOG_NOTICE, text);
}

void SyslogSystemLog::debug(std::string_view text) {
    send(LOG_DEBUG, text);
}

}  // namespace qrx::platform
