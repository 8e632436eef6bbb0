#include "platform/linux/XmlEncodings.h"

#include <algorithm>
#include <array>
#include <cstdint>

#include "platform/linux/Iconv.h"

namespace qrx::platform {

namespace {

using namespace std::string_view_literals;

struct Beginning {
    std::string_view bytes;
    std::string_view encoding;
    bool isMark;
};

// The longer beginnings stand before those that they begin with.
constexpr std::array kBeginnings{
    Beginning{"\xFF\xFE\0\0"sv, "UTF-32LE", true}, Beginning{"\0\0\xFE\xFF"sv, "UTF-32BE", true},
    Beginning{"\xEF\xBB\xBF"sv, "UTF-8", true},    Beginning{"\xFF\xFE"sv, "UTF-16LE", true},
    Beginning{"\xFE\xFF"sv, "UTF-16BE", true},     Beginning{"<\0\0\0"sv, "UTF-32LE", false},
    Beginning{"\0\0\0<"sv, "UTF-32BE", false},     Beginning{"<\0"sv, "UTF-16LE", false},
    Beginning{"\0<"sv, "UTF-16BE", false},
};

constexpr std::string_view kBlanks = " \t\r\n";

/// The encoding that the declaration states, or nothing: version, encoding, standalone, each with
/// its value in quotes.
std::optional<std::string> statedEncoding(std::string_view bytes) {
    const std::size_t start = bytes.find_first_not_of(kBlanks);
    if (start == std::string_view::npos || !bytes.substr(start).starts_with("<?xml")) {
        return std::nullopt;
    }
    const auto declaration = bytes.substr(0, bytes.find("?>"));
    const std::size_t label = declaration.find("encoding");
    if (label == std::string_view::npos) return std::nullopt;
    const std::size_t quote = declaration.find_first_of("\"'", label);
    if (quote == std::string_view::npos) return std::nullopt;
    const std::size_t end = declaration.find(declaration[quote], quote + 1);
    if (end == std::string_view::npos) return std::nullopt;
    return std::string(declaration.substr(quote + 1, end - quote - 1));
}

void appendLatin1(std::string& text, char byte) {
    const auto code = static_cast<unsigned char>(byte);
    if (code < 0x80) {
        text += byte;
    } else {
        text += static_cast<char>(0xC0U | (code >> 6U));
        text += static_cast<char>(0x80U | (code & 0x3FU));
    }
}

/// The bytes as text; nothing when the encoding is unknown.
std::optional<DecodedXml> decodedBy(const std::string& name, std::string_view bytes) {
    Iconv toUtf8("UTF-8", name);
    if (!toUtf8.isKnown()) return std::nullopt;
    DecodedXml decoded;
    decoded.encoding.name = name;
    decoded.text.reserve(bytes.size());
    while (!toUtf8.convert(bytes, decoded.text)) {
        decoded.exact = false;
        appendLatin1(decoded.text, bytes.front());
        bytes.remove_prefix(1);
    }
    return decoded;
}

DecodedXml decodedAsUtf8(std::string_view bytes) {
    return decodedBy("UTF-8", bytes).value();  // every C library knows it
}

/// The number of the UTF-8 character in front of `text`, which is removed.
std::uint32_t takeCharacter(std::string_view& text) {
    const auto first = static_cast<unsigned char>(text.front());
    const std::size_t length = first < 0x80 ? 1U : first < 0xE0 ? 2U : first < 0xF0 ? 3U : 4U;
    std::uint32_t code = length == 1 ? first : first & (0xFFU >> (length + 1U));
    for (std::size_t i = 1; i < length && i < text.size(); ++i) {
        code = (code << 6U) | (static_cast<unsigned char>(text[i]) & 0x3FU);
    }
    text.remove_prefix(std::min(length, text.size()));
    return code;
}

}  // namespace

DecodedXml decodedXml(std::string_view bytes) {
    for (const auto& beginning : kBeginnings) {
        if (!bytes.starts_with(beginning.bytes)) continue;
        const std::string_view mark = beginning.isMark ? beginning.bytes : ""sv;
        auto decoded = decodedBy(std::string(beginning.encoding), bytes.substr(mark.size()));
        if (!decoded) break;
        decoded->encoding.byteOrderMark = mark;
        return *std::move(decoded);
    }
    const auto stated = statedEncoding(bytes);
    if (!stated) return decodedAsUtf8(bytes);
    // The declaration was found byte by byte, so an encoding in which it reads otherwise is a lie.
    auto decoded = stated->empty() ? std::nullopt : decodedBy(*stated, bytes);
    if (decoded && statedEncoding(decoded->text) == stated) return *std::move(decoded);
    auto asUtf8 = decodedAsUtf8(bytes);
    asUtf8.exact = false;
    return asUtf8;
}

std::optional<std::string> encodedXml(std::string_view markup, const XmlEncoding& encoding) {
    Iconv fromUtf8(encoding.name, "UTF-8");
    if (!fromUtf8.isKnown()) return std::nullopt;
    std::string bytes = encoding.byteOrderMark;
    bytes.reserve(bytes.size() + markup.size());
    while (!fromUtf8.convert(markup, bytes)) {
        const std::string reference = "&#" + std::to_string(takeCharacter(markup)) + ";";
        std::string_view rest = reference;
        if (!fromUtf8.convert(rest, bytes)) return std::nullopt;
    }
    fromUtf8.finish(bytes);
    return bytes;
}

}  // namespace qrx::platform
