#include <algorithm>

#include "qrx/ClipWriter.h"
#include "qrx/ShownText.h"

namespace qrx::tool {

namespace {

constexpr std::size_t kQtColumns = 3;
constexpr std::size_t kGap = 2;
/// On a terminal narrower than this makes room for, paths run over instead.
constexpr std::size_t kLeastPathColumns = 20;

class ClipTable final : public ClipWriter {
public:
    ClipTable(Output& output, const TableShape& shape) : output_(output), shape_(shape) {
        const std::size_t before = shape.titleColumns + kGap + kQtColumns + kGap;
        if (shape.columns >= before + kLeastPathColumns) pathColumns_ = shape.columns - before;
    }

    void add(const PathDictionary& clip) override {
        if (!hasHeader_) row("LAYOUT", "QT", "PATH");
        hasHeader_ = true;
        row(clip.volumeTitle, clip.qt ? "yes" : "no",
            pathColumns_ == 0 ? shown(clip.filePath)
                              : ShownText(clip.filePath).fitted(pathColumns_));
        if (shape_.flushesEachRow) output_.flush();
    }

    void finish() override { output_.flush(); }

private:
    void row(std::string_view layout, std::string_view qt, std::string_view path) {
        line_.clear();
        addCell(layout, shape_.titleColumns);
        addCell(qt, kQtColumns);
        line_.append(path).push_back('\n');
        output_.write(line_);
    }

    /// The text, which is ASCII, in a column of that width, and the gap after it.
    void addCell(std::string_view text, std::size_t columns) {
        line_.append(text).append(std::max(columns, text.size()) - text.size() + kGap, ' ');
    }

    Output& output_;
    TableShape shape_;
    std::string line_;             ///< under work; kept for its memory
    std::size_t pathColumns_ = 0;  ///< 0: any number
    bool hasHeader_ = false;
};

}  // namespace

std::unique_ptr<ClipWriter> makeClipTable(Output& output, const TableShape& shape) {
    return std::make_unique<ClipTable>(output, shape);
}

}  // namespace qrx::tool
