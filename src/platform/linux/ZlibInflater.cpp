#include "platform/linux/ZlibInflater.h"

#include <algorithm>
#include <limits>
#include <new>

#include <zlib.h>

namespace qrx::platform {

namespace {

constexpr std::size_t kFirstRoom = std::size_t{64} << 10U;

class Stream {
public:
    Stream() {
        if (::inflateInit(&stream_) != Z_OK) throw std::bad_alloc();
    }
    ~Stream() { ::inflateEnd(&stream_); }
    Stream(const Stream&) = delete;
    Stream& operator=(const Stream&) = delete;

    /// Takes from `packed` and fills `room`, both of which shrink by what was used.
    int inflate(std::span<const std::byte>& packed, std::span<std::byte>& room) {
        const uInt given = counted(packed.size());
        const uInt offered = counted(room.size());
        // zlib's interface predates const; it only reads its input.
        stream_.next_in = const_cast<Bytef*>(reinterpret_cast<const Bytef*>(packed.data()));
        stream_.avail_in = given;
        stream_.next_out = reinterpret_cast<Bytef*>(room.data());
        stream_.avail_out = offered;
        const int answer = ::inflate(&stream_, Z_NO_FLUSH);
        packed = packed.subspan(given - stream_.avail_in);
        room = room.subspan(offered - stream_.avail_out);
        return answer;
    }

private:
    static uInt counted(std::size_t size) {
        return static_cast<uInt>(std::min<std::size_t>(size, std::numeric_limits<uInt>::max()));
    }

    z_stream stream_{};
};

}  // namespace

std::optional<std::vector<std::byte>> ZlibInflater::expanded(std::span<const std::byte> packed,
                                                             std::size_t limit) const {
    Stream stream;
    std::vector<std::byte> bytes;
    std::size_t used = 0;
    for (;;) {
        if (used > limit) return std::nullopt;
        if (used == bytes.size()) {
            // One byte more than allowed: whether the stream wants it tells that it is too large.
            const std::size_t most = std::max(limit, limit + 1);
            bytes.resize(std::min(most, std::max(kFirstRoom, 2 * bytes.size())));
        }
        std::span<std::byte> room = std::span(bytes).subspan(used);
        const std::size_t leftBefore = packed.size() + room.size();
        const int answer = stream.inflate(packed, room);
        used = bytes.size() - room.size();
        if (answer == Z_STREAM_END) break;
        const bool stalled = packed.size() + room.size() == leftBefore;
        if (answer != Z_OK || stalled) return std::nullopt;
    }
    if (used > limit) return std::nullopt;
    bytes.resize(used);
    return bytes;
}

}  // namespace qrx::platform
