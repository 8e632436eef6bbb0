#include "support/BoxWriter.h"

#include <algorithm>
#include <stdexcept>

namespace qrx::test {

namespace {

std::string bigEndian(std::uint64_t number, std::size_t bytes) {
    std::string text(bytes, '\0');
    for (std::size_t i = 0; i < bytes; ++i)
        text[bytes - 1 - i] = static_cast<char>((number >> (8 * i)) & 0xFFU);
    return text;
}

std::string littleEndian(std::uint64_t number, std::size_t bytes) {
    std::string text = bigEndian(number, bytes);
    std::reverse(text.begin(), text.end());
    return text;
}

std::string fourCharacters(std::string_view type) {
    if (type.size() != 4) throw std::invalid_argument("a type has four characters");
    return std::string(type);
}

std::string padded(std::string_view contents) {
    return std::string(contents) + zeros(contents.size() % 2);
}

std::uint32_t size32(std::string_view contents) {
    return static_cast<std::uint32_t>(contents.size());
}

}  // namespace

std::string bigEndian16(std::uint16_t number) {
    return bigEndian(number, 2);
}
std::string bigEndian32(std::uint32_t number) {
    return bigEndian(number, 4);
}
std::string bigEndian64(std::uint64_t number) {
    return bigEndian(number, 8);
}
std::string littleEndian16(std::uint16_t number) {
    return littleEndian(number, 2);
}
std::string littleEndian32(std::uint32_t number) {
    return littleEndian(number, 4);
}
std::string zeros(std::size_t count) {
    return std::string(count, '\0');
}

std::string box(std::string_view type, std::string_view contents) {
    return boxStating(8 + size32(contents), type, contents);
}

std::string largeBox(std::string_view type, std::string_view contents) {
    return largeBoxStating(16 + contents.size(), type, contents);
}

std::string boxStating(std::uint32_t size, std::string_view type, std::string_view contents) {
    return bigEndian32(size) + fourCharacters(type) + std::string(contents);
}

std::string largeBoxStating(std::uint64_t size, std::string_view type, std::string_view contents) {
    return bigEndian32(1) + fourCharacters(type) + bigEndian64(size) + std::string(contents);
}

std::string fileType(std::string_view brand) {
    return box("ftyp", fourCharacters(brand) + bigEndian32(0) + fourCharacters(brand));
}

std::string movieHeader(std::uint32_t created, std::uint32_t modified) {
    return box("mvhd", bigEndian32(0)                                      // version and flags
                           + bigEndian32(created) + bigEndian32(modified)  //
                           + bigEndian32(600) + bigEndian32(600)           // one second
                           + zeros(76) + bigEndian32(2));                  // next track
}

std::string movieHeader64(std::uint64_t created, std::uint64_t modified) {
    return box("mvhd", bigEndian32(0x01000000)                             // version 1
                           + bigEndian64(created) + bigEndian64(modified)  //
                           + bigEndian32(600) + bigEndian64(600)           //
                           + zeros(76) + bigEndian32(2));
}

std::string trackHeader(std::uint16_t width, std::uint16_t height) {
    return box("tkhd", bigEndian32(7) + zeros(72)  // enabled; times, track number, matrix
                           + bigEndian16(width) + bigEndian16(0)     // 16.16
                           + bigEndian16(height) + bigEndian16(0));  //
}

std::string handlerBox(std::string_view handler) {
    return box("hdlr", bigEndian32(0) + "mhlr" + fourCharacters(handler) + zeros(12) + "Handler" +
                           zeros(1));
}

std::string media(std::string_view handler) {
    return box("mdia", box("mdhd", zeros(24)) + handlerBox(handler) +
                           box("minf", box("stbl", box("stsd", zeros(8)))));
}

std::string track(std::string_view handler, std::uint16_t width, std::uint16_t height) {
    return box("trak", trackHeader(width, height) + media(handler));
}

std::string smallMovie() {
    return fileType() +
           box("moov", movieHeader() + track("vide", 1920, 1080) + track("soun") + track("tmcd")) +
           box("mdat", zeros(16));
}

std::string chunk(std::string_view type, std::string_view contents) {
    return fourCharacters(type) + littleEndian32(size32(contents)) + padded(contents);
}

std::string bigChunk(std::string_view type, std::string_view contents) {
    return fourCharacters(type) + bigEndian32(size32(contents)) + padded(contents);
}

std::string list(std::string_view kind, std::string_view contents) {
    return chunk("LIST", fourCharacters(kind) + std::string(contents));
}

std::string riff(std::string_view form, std::string_view contents) {
    return chunk("RIFF", fourCharacters(form) + std::string(contents));
}

std::string storedZlib(std::string_view bytes) {
    constexpr std::size_t kLongestBlock = 65535;
    std::string stream = "\x78\x01";
    std::uint32_t low = 1;  // Adler-32 of the bytes
    std::uint32_t high = 0;
    for (const char c : bytes) {
        low = (low + static_cast<unsigned char>(c)) % 65521;
        high = (high + low) % 65521;
    }
    do {
        const std::string_view block = bytes.substr(0, kLongestBlock);
        bytes.remove_prefix(block.size());
        const auto size = static_cast<std::uint16_t>(block.size());
        stream += bytes.empty() ? '\x01' : '\x00';  // last block or not
        stream += littleEndian16(size) + littleEndian16(static_cast<std::uint16_t>(~size));
        stream += block;
    } while (!bytes.empty());
    return stream + bigEndian32((high << 16U) | low);
}

}  // namespace qrx::test
