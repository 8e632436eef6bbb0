#include "qrx/cards/CardClips.h"

#include <algorithm>

#include <fmt/core.h>

namespace qrx::tool {

namespace {

constexpr unsigned kPieces = 3;
constexpr unsigned kSixty = 60;

StartTimecode atSecond(unsigned seconds, unsigned frames) {
    return {.hours = seconds / kSixty / kSixty,
            .minutes = seconds / kSixty % kSixty,
            .seconds = seconds % kSixty,
            .frames = frames};
}

}  // namespace

CardClips::CardClips(unsigned count)
    : count_(count), firstPiece_(count > kPieces ? count - kPieces : count) {}

unsigned CardClips::takeOf(unsigned clip) const {
    return std::min(clip, firstPiece_) + 1;
}

unsigned CardClips::pieceOf(unsigned clip) const {
    return isPiece(clip) ? clip - firstPiece_ + 1 : 1;
}

StartTimecode CardClips::startOf(unsigned clip) const {
    constexpr unsigned kOneOClock = 3600;
    constexpr unsigned kSecondsApart = 7;
    // Drop frame leaves out the labels 00 and 01 of most minutes; 25 frames a second end at 24.
    constexpr unsigned kFirstFrame = 2;
    constexpr unsigned kFrameLabels = 23;
    const unsigned take = takeOf(clip) - 1;
    return atSecond(kOneOClock + take * kSecondsApart + pieceOf(clip) - 1,
                    kFirstFrame + take * 5 % kFrameLabels);
}

std::string timecodeText(const StartTimecode& time, char separator) {
    return fmt::format("{:02}:{:02}:{:02}{}{:02}", time.hours, time.minutes, time.seconds,
                       separator, time.frames);
}

std::string reversedDigits(const StartTimecode& time) {
    return fmt::format("{:02}{:02}{:02}{:02}", time.frames, time.seconds, time.minutes, time.hours);
}

StartTimecode later(StartTimecode time, unsigned frames, unsigned base) {
    const unsigned frame = time.frames + frames;
    const unsigned seconds =
        (time.hours * kSixty + time.minutes) * kSixty + time.seconds + frame / base;
    return atSecond(seconds, frame % base);
}

std::string madeUpUmid(unsigned clip) {
    return fmt::format("060A2B340101010501010D4313000000{:032X}", clip + 1);
}

}  // namespace qrx::tool
