#include "platform/linux/PictureEnd.h"

#include <algorithm>

namespace qrx::platform {

namespace {

constexpr std::uint8_t kJpegMark = 0xFF;
constexpr std::uint8_t kJpegFirstRestart = 0xD0;
constexpr std::uint8_t kJpegLastRestart = 0xD7;
constexpr std::uint8_t kJpegStart = 0xD8;
constexpr std::uint8_t kJpegEnd = 0xD9;
constexpr std::uint8_t kJpegScan = 0xDA;
constexpr std::uint8_t kJpegTemporary = 0x01;

constexpr std::uint8_t kPngFirst = 0x89;
constexpr std::uint64_t kPngSignatureRest = 7;
constexpr std::uint64_t kPngChecksum = 4;
constexpr std::uint32_t kPngLastChunk = 0x49454E44;  // "IEND"

bool isRestart(std::uint8_t code) {
    return code >= kJpegFirstRestart && code <= kJpegLastRestart;
}

}  // namespace

void PictureEnd::feed(std::span<const std::byte> bytes) {
    while (!bytes.empty() && state_ != State::other && state_ != State::whole) {
        const auto skipped =
            static_cast<std::size_t>(std::min<std::uint64_t>(toSkip_, bytes.size()));
        toSkip_ -= skipped;
        bytes = bytes.subspan(skipped);
        if (bytes.empty()) break;
        take(std::to_integer<std::uint8_t>(bytes.front()));
        bytes = bytes.subspan(1);
    }
    // The last chunk counts only with its checksum.
    if (endFollows_ && state_ == State::pngLength && toSkip_ == 0) state_ = State::whole;
}

void PictureEnd::take(std::uint8_t byte) {
    switch (state_) {
        case State::first:
            state_ = byte == kJpegMark   ? State::jpegCode
                     : byte == kPngFirst ? State::pngLength
                                         : State::other;
            if (state_ == State::pngLength) toSkip_ = kPngSignatureRest;
            break;
        case State::jpegMarker:
            if (byte == kJpegMark) state_ = State::jpegCode;
            break;
        case State::jpegCode:
            takeJpegCode(byte);
            break;
        case State::jpegLengthHigh:
            word_ = byte;
            state_ = State::jpegLengthLow;
            break;
        case State::jpegLengthLow:
            word_ = (word_ << 8U) | byte;
            toSkip_ = word_ < 2 ? 0 : word_ - 2;  // the length counts itself
            state_ = scanFollows_ ? State::jpegScan : State::jpegMarker;
            break;
        case State::jpegScan:
            if (byte == kJpegMark) state_ = State::jpegScanCode;
            break;
        case State::jpegScanCode:
            if (byte == 0 || isRestart(byte)) {
                state_ = State::jpegScan;
            } else {
                takeJpegCode(byte);
            }
            break;
        case State::pngLength:
        case State::pngType:
            takePngWord(byte);
            break;
        case State::other:
        case State::whole:
            break;
    }
}

void PictureEnd::takeJpegCode(std::uint8_t code) {
    if (code == kJpegMark) return;  // any number of them may stand before a code
    scanFollows_ = code == kJpegScan;
    if (code == kJpegEnd) {
        state_ = State::whole;
    } else if (code == kJpegStart || code == kJpegTemporary || isRestart(code)) {
        state_ = State::jpegMarker;
    } else {
        state_ = State::jpegLengthHigh;
    }
}

void PictureEnd::takePngWord(std::uint8_t byte) {
    if (endFollows_) {  // bytes behind the picture
        state_ = State::whole;
        return;
    }
    word_ = (word_ << 8U) | byte;
    if (++wordBytes_ < 4) return;
    wordBytes_ = 0;
    if (state_ == State::pngLength) {
        chunkLength_ = word_;
        state_ = State::pngType;
    } else {
        endFollows_ = word_ == kPngLastChunk;
        toSkip_ = std::uint64_t{chunkLength_} + kPngChecksum;
        state_ = State::pngLength;
    }
}

}  // namespace qrx::platform
