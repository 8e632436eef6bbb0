#include "foundation/Base64.h"
#include "foundation/Text.h"
#include "qrx/ClipWriter.h"
#include "qrx/ShownText.h"

namespace qrx::tool {

namespace {

constexpr std::string_view kRecordEnd = "\r\n";

std::string field(std::string_view text) {
    if (!contains(text, ",") && !contains(text, "\"")) return std::string(text);
    return '"' + replaceAll(text, "\"", "\"\"") + '"';
}

bool mayStandPlainly(std::string_view path) {
    return path.find('\n') == std::string_view::npos && isPlainText(path);
}

class ClipCsv final : public ClipWriter {
public:
    explicit ClipCsv(Output& output) : output_(output) {}

    void add(const PathDictionary& clip) override {
        writeHeader();
        const bool plainly = mayStandPlainly(clip.filePath);
        output_.write((plainly ? field(clip.filePath) : std::string()) + "," +
                      field(clip.volumeTitle) + "," + (clip.qt ? "true" : "false") + "," +
                      (plainly ? std::string() : base64(clip.filePath)));
        output_.write(kRecordEnd);
    }

    void finish() override {
        writeHeader();
        output_.flush();
    }

private:
    void writeHeader() {
        if (hasHeader_) return;
        output_.write("filePath,volumeTitle,qt,filePathBytes");
        output_.write(kRecordEnd);
        hasHeader_ = true;
    }

    Output& output_;
    bool hasHeader_ = false;
};

}  // namespace

std::unique_ptr<ClipWriter> makeClipCsv(Output& output) {
    return std::make_unique<ClipCsv>(output);
}

}  // namespace qrx::tool
