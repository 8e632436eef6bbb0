#include <string>
#include <vector>

#include "foundation/Base64.h"
#include "foundation/Text.h"
#include "qrx/ClipWriter.h"
#include "qrx/JsonText.h"

namespace qrx::tool {

namespace {

std::string clipText(const PathDictionary& clip) {
    std::string text;
    if (isUtf8(clip.filePath)) {
        text.append(R"({"filePath":)").append(jsonString(clip.filePath));
    } else {
        text.append(R"({"filePathBytes":)").append(jsonString(base64(clip.filePath)));
    }
    text.append(R"(,"volumeTitle":)").append(jsonString(clip.volumeTitle));
    return text.append(R"(,"qt":)").append(clip.qt ? "true}" : "false}");
}

class ClipJson final : public ClipWriter {
public:
    explicit ClipJson(Output& output) : output_(output) {}

    void add(const PathDictionary& clip) override {
        const bool isFirst = pieces_.empty();
        if (isFirst || pieces_.back().size() >= kPieceBytes) startPiece();
        pieces_.back().append(isFirst ? "[\n  " : ",\n  ").append(clipText(clip));
    }

    void finish() override {
        for (const std::string& piece : pieces_) {
            output_.write(piece);
        }
        output_.write(pieces_.empty() ? "[]\n" : "\n]\n");
        output_.flush();
    }

private:
    static constexpr std::size_t kPieceBytes = std::size_t{64} << 10U;

    void startPiece() { pieces_.emplace_back().reserve(kPieceBytes + kPieceBytes / 16); }

    Output& output_;
    std::vector<std::string> pieces_;  ///< many: one long text would move, and be there twice
};

class ClipNdjson final : public ClipWriter {
public:
    explicit ClipNdjson(Output& output) : output_(output) {}

    void add(const PathDictionary& clip) override {
        output_.write(clipText(clip) + "\n");
        output_.flush();
    }

    void finish() override {}

private:
    Output& output_;
};

}  // namespace

std::unique_ptr<ClipWriter> makeClipJson(Output& output) {
    return std::make_unique<ClipJson>(output);
}

std::unique_ptr<ClipWriter> makeClipNdjson(Output& output) {
    return std::make_unique<ClipNdjson>(output);
}

}  // namespace qrx::tool
