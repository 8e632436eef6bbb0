#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace qrx::test {

// Media files built by hand, as plain byte strings: write a file as the tree of its boxes.
//
//     box("moov", movieHeader() + track("vide", 1920, 1080) + track("soun"))

[[nodiscard]] std::string bigEndian16(std::uint16_t number);
[[nodiscard]] std::string bigEndian32(std::uint32_t number);
[[nodiscard]] std::string bigEndian64(std::uint64_t number);
[[nodiscard]] std::string littleEndian16(std::uint16_t number);
[[nodiscard]] std::string littleEndian32(std::uint32_t number);
[[nodiscard]] std::string zeros(std::size_t count);

/// A box with a 32-bit size. `type` has four characters.
[[nodiscard]] std::string box(std::string_view type, std::string_view contents = {});
/// A box with a 64-bit size.
[[nodiscard]] std::string largeBox(std::string_view type, std::string_view contents = {});
/// A box that states `size` whatever it holds; 0 reaches to the end of the file.
[[nodiscard]] std::string boxStating(std::uint32_t size, std::string_view type,
                                     std::string_view contents = {});
/// A box with a 64-bit size that states `size` whatever it holds.
[[nodiscard]] std::string largeBoxStating(std::uint64_t size, std::string_view type,
                                          std::string_view contents = {});

[[nodiscard]] std::string fileType(std::string_view brand = "qt  ");
/// `mvhd`; the times count seconds since 1904.
[[nodiscard]] std::string movieHeader(std::uint32_t created = 0, std::uint32_t modified = 0);
/// `mvhd` of version 1, with 64-bit times.
[[nodiscard]] std::string movieHeader64(std::uint64_t created, std::uint64_t modified);
/// `tkhd`; sizes in whole pixels.
[[nodiscard]] std::string trackHeader(std::uint16_t width, std::uint16_t height);
/// `mdia` with media header, handler and an empty sample table.
[[nodiscard]] std::string media(std::string_view handler);
/// `hdlr`, with a name of its own.
[[nodiscard]] std::string handlerBox(std::string_view handler);
/// `trak` with `trackHeader` and `media`.
[[nodiscard]] std::string track(std::string_view handler, std::uint16_t width = 0,
                                std::uint16_t height = 0);
/// A whole small movie: type box, header with a video track of 1920 x 1080, a sound track and a
/// timecode track, then 16 bytes of media.
[[nodiscard]] std::string smallMovie();

/// A RIFF chunk (little-endian), padded to an even length.
[[nodiscard]] std::string chunk(std::string_view type, std::string_view contents = {});
/// An IFF chunk (big-endian), padded to an even length.
[[nodiscard]] std::string bigChunk(std::string_view type, std::string_view contents = {});
/// A RIFF list of `kind`.
[[nodiscard]] std::string list(std::string_view kind, std::string_view contents);
/// A whole RIFF file of `form`.
[[nodiscard]] std::string riff(std::string_view form, std::string_view contents);

/// A zlib stream that holds `bytes` unpacked, in stored blocks.
[[nodiscard]] std::string storedZlib(std::string_view bytes);

}  // namespace qrx::test
