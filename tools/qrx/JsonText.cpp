#include "qrx/JsonText.h"

#include <nlohmann/json.hpp>

#include "foundation/Text.h"
#include "qrx/Base64.h"
#include "qrx/ShownText.h"

namespace qrx::tool {

void addPath(nlohmann::ordered_json& record, std::string_view path) {
    if (isUtf8(path)) {
        record["filePath"] = path;
    } else {
        record["filePathBytes"] = base64(path);
    }
}

std::string jsonText(const nlohmann::ordered_json& value, int indent) {
    const std::string text = value.dump(indent);
    // Control characters below 20 hex are escaped in any case; those above, such as DEL and the
    // eight-bit escape introducers, only when all text is to be ASCII.
    return isPlainText(text) ? text : value.dump(indent, ' ', true);
}

}  // namespace qrx::tool
