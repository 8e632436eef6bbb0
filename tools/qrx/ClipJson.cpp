#include <nlohmann/json.hpp>

#include "qrx/ClipWriter.h"
#include "qrx/JsonText.h"

namespace qrx::tool {

namespace {

std::string clipText(const PathDictionary& clip) {
    nlohmann::ordered_json record;
    addPath(record, clip.filePath);
    record["volumeTitle"] = clip.volumeTitle;
    record["qt"] = clip.qt;
    return jsonText(record, -1);
}

class ClipJson final : public ClipWriter {
public:
    explicit ClipJson(Output& output) : output_(output) {}

    void add(const PathDictionary& clip) override {
        text_ += text_.empty() ? "[\n  " : ",\n  ";
        text_ += clipText(clip);
    }

    void finish() override {
        output_.write(text_.empty() ? "[]\n" : text_ + "\n]\n");
        output_.flush();
    }

private:
    Output& output_;
    std::string text_;
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
