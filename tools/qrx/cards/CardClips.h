#pragma once

#include <string>

#include "qrx/cards/AvchdIndex.h"

namespace qrx::tool {

/// The clips of one card, numbered from 0. Where there are four or more, the last three are the
/// pieces of one recording, each a second long.
class CardClips {
public:
    explicit CardClips(unsigned count);

    [[nodiscard]] unsigned count() const { return count_; }
    /// `count()` when no recording is in pieces.
    [[nodiscard]] unsigned firstPiece() const { return firstPiece_; }
    [[nodiscard]] bool isPiece(unsigned clip) const { return clip >= firstPiece_; }

    /// Number of the recording, and of the piece in it; both from 1 on.
    [[nodiscard]] unsigned takeOf(unsigned clip) const;
    [[nodiscard]] unsigned pieceOf(unsigned clip) const;

    /// Different for every clip; the pieces of a recording follow each other. Never one of the
    /// labels that drop frame leaves out, and good for 25 frames a second as well.
    [[nodiscard]] StartTimecode startOf(unsigned clip) const;

private:
    unsigned count_;
    unsigned firstPiece_;
};

/// HH:MM:SS:FF; the separator before the frames is ";" for drop frame.
[[nodiscard]] std::string timecodeText(const StartTimecode& time, char separator = ':');
/// Frames, seconds, minutes, hours: two digits each, nothing between them.
[[nodiscard]] std::string reversedDigits(const StartTimecode& time);
/// Label of the frame that comes `frames` (below one second) later, at `base` frames a second,
/// counted without skipping.
[[nodiscard]] StartTimecode later(StartTimecode time, unsigned frames, unsigned base);

/// A UMID of 32 bytes as 64 upper-case hex digits, different for every clip of a card.
[[nodiscard]] std::string madeUpUmid(unsigned clip);

}  // namespace qrx::tool
