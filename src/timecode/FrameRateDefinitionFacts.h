#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "timecode/VideoFrameRate.h"

namespace qrx {

/// Everything that is constant about one of the older rate definitions.
struct FrameRateDefinitionFacts {
    QRXFrameRateDefinition definition;
    QRXVideoFrameRate rate;       ///< among the new rates
    std::int32_t numeric;         ///< whole frames per second
    std::string_view rateString;  ///< as written into movies
};

// clang-format off
// KEPT: 111 has the numeric rate and string 30 although it is 25 progressive, 112 and 113 have the
// string "30" although they are 24 and 60, and 109 pairs 50 with "25": stored movies carry them so.
inline constexpr std::array kFrameRateDefinitionFacts{
    //                       definition                              rate                        numeric  string
    FrameRateDefinitionFacts{QRXFrameRateDefinition2997DropFrame,    QRXVideoFrameRate29_97,     30,      "2997"},
    FrameRateDefinitionFacts{QRXFrameRateDefinition2997NonDropFrame, QRXVideoFrameRate30,        30,      "2997"},
    FrameRateDefinitionFacts{QRXFrameRateDefinitionPAL,              QRXVideoFrameRatePAL,       25,      "25"},
    FrameRateDefinitionFacts{QRXFrameRateDefinition24,               QRXVideoFrameRate24,        24,      "24"},
    FrameRateDefinitionFacts{QRXFrameRateDefinition5994,             QRXVideoFrameRate59_94i,    60,      "5994"},
    FrameRateDefinitionFacts{QRXFrameRateDefinition50,               QRXVideoFrameRate50p,       50,      "50"},
    FrameRateDefinitionFacts{QRXFrameRateDefinitionUnmapped,         QRXVideoFrameRateUndefined, 30,      "30"},
    FrameRateDefinitionFacts{QRXFrameRateDefinitionUndefined,        QRXVideoFrameRateUndefined, 30,      "30"},
    FrameRateDefinitionFacts{QRXFrameRateDefinition5994Second,       QRXVideoFrameRate59_94i,    60,      "5994"},
    FrameRateDefinitionFacts{QRXFrameRateDefinition50i,              QRXVideoFrameRate50i,       50,      "25"},
    FrameRateDefinitionFacts{QRXFrameRateDefinition30,               QRXVideoFrameRate30,        30,      "30"},
    FrameRateDefinitionFacts{QRXFrameRateDefinition25,               QRXVideoFrameRate25,        30,      "30"},
    FrameRateDefinitionFacts{QRXFrameRateDefinition24Second,         QRXVideoFrameRate24,        24,      "30"},
    FrameRateDefinitionFacts{QRXFrameRateDefinition60,               QRXVideoFrameRate60,        60,      "30"},
};
// clang-format on

/// The definitions in the order in which a new rate looks for its old one; the first match wins, so
/// 106 stands before 104 and each first code before its second. 107 is no definition.
inline constexpr std::array kOldFrameRateSearchOrder{
    QRXFrameRateDefinition2997DropFrame,
    QRXFrameRateDefinition2997NonDropFrame,
    QRXFrameRateDefinitionPAL,
    QRXFrameRateDefinition24,
    QRXFrameRateDefinitionUnmapped,
    QRXFrameRateDefinition5994,
    QRXFrameRateDefinition50,
    QRXFrameRateDefinition5994Second,
    QRXFrameRateDefinition50i,
    QRXFrameRateDefinition30,
    QRXFrameRateDefinition25,
    QRXFrameRateDefinition24Second,
    QRXFrameRateDefinition60,
};

/// The rates that a movie can be given, in the order in which they are offered.
inline constexpr std::array kMovieRates{
    QRXFrameRateDefinition2997NonDropFrame,
    QRXFrameRateDefinition2997DropFrame,
    QRXFrameRateDefinition30,
    QRXFrameRateDefinitionPAL,
    QRXFrameRateDefinition24,
    QRXFrameRateDefinition5994,
    QRXFrameRateDefinition50,
};

namespace detail {
[[nodiscard]] constexpr bool definitionRowsStandInValueOrder() {
    for (std::size_t row = 0; row < kFrameRateDefinitionFacts.size(); ++row) {
        const auto value = static_cast<std::size_t>(kFrameRateDefinitionFacts[row].definition);
        if (value != row + QRXFrameRateDefinition2997DropFrame) return false;
    }
    return true;
}

[[nodiscard]] constexpr bool everyDefinitionIsSearchedOnce() {
    return std::all_of(
        kFrameRateDefinitionFacts.begin(), kFrameRateDefinitionFacts.end(),
        [](const FrameRateDefinitionFacts& facts) {
            const auto times = std::count(kOldFrameRateSearchOrder.begin(),
                                          kOldFrameRateSearchOrder.end(), facts.definition);
            return times == (facts.definition == QRXFrameRateDefinitionUndefined ? 0 : 1);
        });
}
}  // namespace detail
static_assert(kFrameRateDefinitionFacts.size() ==
              QRXFrameRateDefinition60 - QRXFrameRateDefinition2997DropFrame + 1);
static_assert(detail::definitionRowsStandInValueOrder());
static_assert(detail::everyDefinitionIsSearchedOnce());

/// The row of `definition`; any number that is none answers as 107 does.
[[nodiscard]] constexpr FrameRateDefinitionFacts factsOfDefinition(std::int32_t definition) {
    for (const FrameRateDefinitionFacts& facts : kFrameRateDefinitionFacts) {
        if (facts.definition == definition) return facts;
    }
    return factsOfDefinition(QRXFrameRateDefinitionUndefined);
}

}  // namespace qrx
