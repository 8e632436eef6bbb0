#pragma once

#include <array>
#include <cstddef>

#include "timecode/VideoFrameRate.h"

namespace qrx {

enum class Scan { progressive, interlaced, neither };
enum class Broadcast { none, ntsc, pal };

/// Everything that is constant about one rate. Each conversion reads a column of this table; no
/// conversion carries a switch of its own.
struct VideoFrameRateFacts {
    QRXVideoFrameRate rate;
    double numeric;       ///< frames, of interlaced rates fields, per second
    double frameNumeric;  ///< the same for the frame view
    bool dropFrame;
    Scan scan;
    Broadcast broadcast;
    QRXVideoFrameRate nonDrop;
    QRXVideoFrameRate drop;
    QRXVideoFrameRate progressive;
    QRXVideoFrameRate interlaced;
};

// clang-format off
// KEPT: 50i and 50p have the numeric rate 59.94, not 50: hosts exchange times that were counted with
// it. Only the frame view of 50i, 25, is right.
inline constexpr std::array kVideoFrameRateFacts{
    //                  rate                        numeric  frame   drop   scan               broadcast        non-drop                    drop                        progressive                 interlaced
    VideoFrameRateFacts{QRXVideoFrameRate24,        24.0,    24.0,   false, Scan::progressive, Broadcast::none, QRXVideoFrameRate24,        QRXVideoFrameRate23_976,    QRXVideoFrameRate24,        QRXVideoFrameRateUndefined},
    VideoFrameRateFacts{QRXVideoFrameRate23_976,    23.976,  23.976, true,  Scan::progressive, Broadcast::ntsc, QRXVideoFrameRate24,        QRXVideoFrameRate23_976,    QRXVideoFrameRate23_976,    QRXVideoFrameRateUndefined},
    VideoFrameRateFacts{QRXVideoFrameRatePAL,       25.0,    25.0,   false, Scan::progressive, Broadcast::pal,  QRXVideoFrameRatePAL,       QRXVideoFrameRatePAL,       QRXVideoFrameRatePAL,       QRXVideoFrameRateUndefined},
    VideoFrameRateFacts{QRXVideoFrameRate25,        25.0,    25.0,   false, Scan::progressive, Broadcast::none, QRXVideoFrameRate25,        QRXVideoFrameRate25,        QRXVideoFrameRate25,        QRXVideoFrameRate50i},
    VideoFrameRateFacts{QRXVideoFrameRate50i,       59.94,   25.0,   false, Scan::interlaced,  Broadcast::none, QRXVideoFrameRate50i,       QRXVideoFrameRate50i,       QRXVideoFrameRate25,        QRXVideoFrameRate50i},
    VideoFrameRateFacts{QRXVideoFrameRate29_97,     29.97,   29.97,  true,  Scan::progressive, Broadcast::ntsc, QRXVideoFrameRate30,        QRXVideoFrameRate29_97,     QRXVideoFrameRate29_97,     QRXVideoFrameRate59_94i},
    VideoFrameRateFacts{QRXVideoFrameRate30,        30.0,    30.0,   false, Scan::progressive, Broadcast::none, QRXVideoFrameRate30,        QRXVideoFrameRate29_97,     QRXVideoFrameRate30,        QRXVideoFrameRateUndefined},
    VideoFrameRateFacts{QRXVideoFrameRate59_94i,    59.94,   29.97,  true,  Scan::interlaced,  Broadcast::ntsc, QRXVideoFrameRate60,        QRXVideoFrameRate59_94i,    QRXVideoFrameRate29_97,     QRXVideoFrameRate59_94i},
    VideoFrameRateFacts{QRXVideoFrameRate50p,       59.94,   59.94,  false, Scan::progressive, Broadcast::none, QRXVideoFrameRate50p,       QRXVideoFrameRate50p,       QRXVideoFrameRate50p,       QRXVideoFrameRateUndefined},
    VideoFrameRateFacts{QRXVideoFrameRate60,        60.0,    60.0,   false, Scan::progressive, Broadcast::none, QRXVideoFrameRate60,        QRXVideoFrameRate59_94i,    QRXVideoFrameRate60,        QRXVideoFrameRateUndefined},
    VideoFrameRateFacts{QRXVideoFrameRateUndefined, 0.0,     0.0,    false, Scan::neither,     Broadcast::none, QRXVideoFrameRateUndefined, QRXVideoFrameRateUndefined, QRXVideoFrameRateUndefined, QRXVideoFrameRateUndefined},
};
// clang-format on

namespace detail {
[[nodiscard]] constexpr bool rowsStandAtTheirOwnValue() {
    for (std::size_t row = 0; row < kVideoFrameRateFacts.size(); ++row) {
        if (kVideoFrameRateFacts[row].rate != row) return false;
    }
    return true;
}
}  // namespace detail
static_assert(kVideoFrameRateFacts.size() == QRXVideoFrameRateUndefined + 1);
static_assert(detail::rowsStandAtTheirOwnValue());

/// The row of `rate`. A number above 10 is its own equivalent of every kind but the interlaced one,
/// runs at rate 0 and belongs to no list.
[[nodiscard]] constexpr VideoFrameRateFacts factsOf(QRXVideoFrameRate rate) {
    if (rate < kVideoFrameRateFacts.size()) return kVideoFrameRateFacts[rate];
    return {rate,          0.0,
            0.0,           false,
            Scan::neither, Broadcast::none,
            rate,          rate,
            rate,          QRXVideoFrameRateUndefined};
}

}  // namespace qrx
