#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "platform/linux/PlatformServices.h"
#include "readers/ByteSource.h"
#include "readers/MovieHeader.h"
#include "readers/MovieReader.h"

namespace {

using namespace std::string_view_literals;

void require(bool holds) {
    if (!holds) std::abort();
}

void describe(const std::string& bytes) {
    const qrx::MemoryByteSource source(std::as_bytes(std::span(bytes)));
    const auto movie = qrx::describeMovie(source);
    if (!movie) return;
    require(movie->tracks.size() <= qrx::kMostTracks);
    require(movie->naturalWidth >= 0 && movie->naturalHeight >= 0);
    require(!movie->displayName || !movie->displayName->empty());
    for (const qrx::MovieTrack& track : movie->tracks)
        require(track.handlerType.size() == 4);
}

// Random bytes seldom begin like a movie: each input is read as it is and as the rest of a file
// that does.
constexpr std::array kFronts{
    ""sv,
    "\0\0\0\0moov"sv,
    "\0\0\0\0moov\0\0\0\x14mvhd\0\0\0\0\0\0\0\x01\0\0\0\x01"sv,
    "\0\0\0\0moov\0\0\0\0trak\0\0\0\0mdia"sv,
    "\0\0\0\0moov\0\0\0\x14mvhd\0\0\0\0\0\0\0\x01\0\0\0\x01\0\0\0\0udta"sv,
    "\0\0\0\0moov\0\0\0\x14mvhd\0\0\0\0\0\0\0\x01\0\0\0\x01\0\0\0\0meta\0\0\0\0"sv,
    "\0\0\0\0moov\0\0\0\0cmov\0\0\0\x0C"
    "dcomzlib\0\0\0\0cmvd\0\0\x10\0"sv,
    "RIFF\0\0\0\0AVI LIST\xFF\xFF\xFF\xFFhdrl"sv,
    "RIFF\0\0\0\0WAVE"sv,
    "FORM\0\0\0\0AIFC"sv,
};

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    qrx::platform::installPlatformServices();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string bytes(data, data + size);
    for (const std::string_view front : kFronts)
        describe(std::string(front) + bytes);
    return 0;
}
