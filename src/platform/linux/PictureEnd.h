#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace qrx::platform {

/// Watches the bytes of a picture file go by and tells whether its own end mark was among them.
///
/// The decoders make up what a cut-short JPEG lacks, and show an interlaced PNG after its first
/// pass; the end marks alone tell that nothing is missing. Other formats have no such mark.
class PictureEnd {
public:
    void feed(std::span<const std::byte> bytes);

    /// NO for a JPEG or PNG whose end has not gone by.
    [[nodiscard]] bool isWhole() const { return state_ == State::other || state_ == State::whole; }

private:
    enum class State {
        first,       ///< no byte yet
        other,       ///< neither JPEG nor PNG
        jpegMarker,  ///< between segments
        jpegCode,    ///< after FF
        jpegLengthHigh,
        jpegLengthLow,
        jpegScan,      ///< compressed picture data
        jpegScanCode,  ///< after FF there
        pngLength,
        pngType,
        whole,
    };

    void take(std::uint8_t byte);
    void takeJpegCode(std::uint8_t code);
    void takePngWord(std::uint8_t byte);

    State state_ = State::first;
    bool scanFollows_ = false;  // the segment at hand is the header of a scan
    bool endFollows_ = false;   // the chunk at hand is the last
    std::uint64_t toSkip_ = 0;
    std::uint32_t word_ = 0;
    int wordBytes_ = 0;
    std::uint32_t chunkLength_ = 0;
};

}  // namespace qrx::platform
