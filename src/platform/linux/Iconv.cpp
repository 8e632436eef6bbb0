#include "platform/linux/Iconv.h"

#include <array>
#include <cerrno>

namespace qrx::platform {

namespace {

// What iconv_open gives for an unknown encoding: (iconv_t)-1.
const iconv_t kUnknown = reinterpret_cast<iconv_t>(-1);  // NOLINT(performance-no-int-to-ptr)
constexpr auto kFailed = static_cast<std::size_t>(-1);

}  // namespace

Iconv::Iconv(const std::string& to, const std::string& from)
    : conversion_(::iconv_open(to.c_str(), from.c_str())) {}

Iconv::~Iconv() {
    if (isKnown()) ::iconv_close(conversion_);
}

bool Iconv::isKnown() const {
    return conversion_ != kUnknown;
}

bool Iconv::convert(std::string_view& input, std::string& output) {
    std::array<char, 16384> buffer{};
    while (!input.empty()) {
        char* from = const_cast<char*>(input.data());  // iconv's signature; it only reads
        std::size_t left = input.size();
        char* to = buffer.data();
        std::size_t room = buffer.size();
        const std::size_t outcome = ::iconv(conversion_, &from, &left, &to, &room);
        const int fault = errno;
        output.append(buffer.data(), buffer.size() - room);
        input.remove_prefix(input.size() - left);
        if (outcome == kFailed && fault != E2BIG) return false;
    }
    return true;
}

void Iconv::finish(std::string& output) {
    std::array<char, 64> buffer{};
    char* to = buffer.data();
    std::size_t room = buffer.size();
    ::iconv(conversion_, nullptr, nullptr, &to, &room);
    output.append(buffer.data(), buffer.size() - room);
}

}  // namespace qrx::platform
