#include "qrx/report/CardBuilder.h"

#include <algorithm>
#include <string_view>
#include <unordered_map>
#include <utility>

#include <fmt/core.h>

#include "qrx/report/ClipFacts.h"
#include "qrx/report/Unclaimed.h"
#include "qrx/spans/Series.h"
#include "volumes/ClipNumbers.h"

namespace qrx::tool {

namespace {

using Utility = QRXHDMediaVolumeUtilityObject;

/// One layout on one card, while it is put together.
struct LayoutDraft {
    const Utility* utility = nullptr;
    FilePaths clips{};  ///< in recording order after order()
    ReportTotals companions{};
};

struct CardDraft {
    FilePath root{};
    std::vector<LayoutDraft> layouts{};
    UnclaimedFiles unclaimed{};

    LayoutDraft& layout(const Utility* utility) {
        const auto known = std::find_if(layouts.begin(), layouts.end(),
                                        [&](const auto& each) { return each.utility == utility; });
        if (known != layouts.end()) return *known;
        layouts.push_back({.utility = utility});
        return layouts.back();
    }
};

ReportPiece missingPiece(const P2Link& clip) {
    return {.missingName = clip.clipName.value_or(clip.identifier), .missingCount = 1};
}

ReportPiece missingPiece(const NumberGap& gap) {
    const std::string rest = gap.first == gap.last ? "" : " to " + gap.lastName;
    return {.missingName = gap.firstName + rest,
            .missingCount = static_cast<std::size_t>(gap.last - gap.first) + 1};
}

class Building {
public:
    Building(std::vector<ReportedFile>& files, const std::atomic<bool>& isCancelled)
        : isCancelled_(isCancelled) {
        for (ReportedFile& file : files) {
            sort(file);
        }
    }

    std::vector<ReportCard> cards() {
        findSeries();
        std::vector<ReportCard> all;
        for (CardDraft& draft : cards_) {
            if (isCancelled_) break;
            all.push_back(card(draft));
        }
        return all;
    }

private:
    void sort(ReportedFile& file) {
        const auto [known, isNew] = cardAt_.emplace(file.card, cards_.size());
        if (isNew) cards_.push_back({.root = file.card});
        CardDraft& card = cards_[known->second];
        if (file.clip) {
            card.layout(file.claim.utility).clips.push_back(file.path);
            clips_.emplace(file.path, Found{.clip = std::move(file.clip), .card = known->second});
        } else if (file.companionOf != nullptr) {
            ReportTotals& companions = card.layout(file.companionOf).companions;
            ++companions.files;
            companions.bytes += bytesOf(file.path).value_or(0);
        } else {
            card.unclaimed.add(file.path, file.claim);
        }
    }

    // ---- spanned recordings, which may go over several cards

    void findSeries() {
        std::vector<std::pair<const Utility*, FilePaths>> byLayout;
        for (const CardDraft& card : cards_) {
            for (const LayoutDraft& layout : card.layouts) {
                auto known = std::find_if(byLayout.begin(), byLayout.end(), [&](const auto& each) {
                    return each.first == layout.utility;
                });
                if (known == byLayout.end()) {
                    known = byLayout.insert(known, {layout.utility, {}});
                }
                known->second.insert(known->second.end(), layout.clips.begin(), layout.clips.end());
            }
        }
        for (const auto& [utility, clips] : byLayout) {
            for (Series& series : seriesAmong(*utility, clips, isCancelled_)) {
                for (const FilePath& piece : series.pieces) {
                    seriesOf_.emplace(piece, series_.size());
                }
                series_.push_back(std::move(series));
            }
        }
    }

    // ---- cards

    ReportCard card(CardDraft& draft) {
        ReportCard card{.root = draft.root};
        for (LayoutDraft& layout : draft.layouts) {
            card.layouts.push_back(this->layout(layout));
            card.totals.add(card.layouts.back().totals);
        }
        card.unclaimed = draft.unclaimed.groups();
        return card;
    }

    ReportLayout layout(LayoutDraft& draft) {
        ReportLayout layout{.title = draft.utility->volumeTitle()};
        draft.clips = draft.utility->orderVolumeVideoFiles(draft.clips);
        std::size_t position = 0;
        for (const FilePath& clip : draft.clips) {
            clips_.at(clip).clip->position = ++position;
        }
        for (const FilePath& clip : draft.clips) {
            if (clips_.at(clip).clip) layout.recordings.push_back(recordingOf(clip));
        }
        for (const ReportRecording& recording : layout.recordings) {
            for (const ReportPiece& piece : recording.pieces) {
                if (piece.clip) layout.totals.add(*piece.clip);
            }
            layout.totals.missingPieces += recording.missing();
        }
        layout.totals.files += draft.companions.files;
        layout.totals.bytes += draft.companions.bytes;
        return layout;
    }

    ReportPiece taken(const FilePath& clip) {
        return {.clip = std::move(*std::exchange(clips_.at(clip).clip, nullptr))};
    }

    /// The whole recording of which the clip is the first to be met; takes its clips of this card.
    ReportRecording recordingOf(const FilePath& clip) {
        const auto inSeries = seriesOf_.find(clip);
        if (inSeries == seriesOf_.end()) {
            ReportRecording single;
            single.pieces.push_back(taken(clip));
            return single;
        }
        const Series& series = series_[inSeries->second];
        const std::size_t card = clips_.at(clip).card;
        ReportRecording recording{.spanKey = series.spanKey, .isComplete = series.isComplete};
        for (const FilePath& piece : series.pieces) {
            const Found& found = clips_.at(piece);
            if (found.card == card) {
                recording.pieces.push_back(taken(piece));
            } else {
                addOnce(recording.otherCards, cards_[found.card].root);
            }
        }
        for (const NumberGap& gap : series.missingNumbers) {
            putWhereItBelongs(recording, gap);
        }
        for (const P2Link& link : series.missingClips) {
            recording.pieces.push_back(missingPiece(link));
        }
        return recording;
    }

    static void addOnce(std::vector<std::string>& names, const std::string& name) {
        if (std::find(names.begin(), names.end(), name) == names.end()) names.push_back(name);
    }

    /// Names of one recording differ by a number of fixed width, so that texts compare like it.
    static void putWhereItBelongs(ReportRecording& recording, const NumberGap& gap) {
        const auto behind = std::find_if(
            recording.pieces.begin(), recording.pieces.end(), [&](const ReportPiece& piece) {
                return piece.clip && clipName(piece.clip->file) > gap.lastName;
            });
        recording.pieces.insert(behind, missingPiece(gap));
    }

    struct Found {
        std::unique_ptr<ReportClip> clip;  ///< null once it stands in a recording
        std::size_t card = 0;
    };

    const std::atomic<bool>& isCancelled_;
    std::vector<CardDraft> cards_;
    std::unordered_map<FilePath, std::size_t> cardAt_;
    std::unordered_map<FilePath, Found> clips_;
    std::vector<Series> series_;
    std::unordered_map<FilePath, std::size_t> seriesOf_;
};

}  // namespace

std::vector<ReportCard> cardsOf(std::vector<ReportedFile>& files,
                                const std::atomic<bool>& isCancelled) {
    return Building(files, isCancelled).cards();
}

}  // namespace qrx::tool
