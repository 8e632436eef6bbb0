#include "platform/linux/PlistPropertyList.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <memory>
#include <string_view>

#include <glib.h>
#include <plist/plist.h>

#include "platform/linux/PropertyListBounds.h"

namespace qrx::platform {

namespace {

constexpr std::string_view kBinarySignature = "bplist";
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr const char* kUidKey = "CF$UID";

struct PlistRelease {
    void operator()(void* node) const { plist_free(node); }
};
using Node = std::unique_ptr<void, PlistRelease>;

struct FreeRelease {
    void operator()(void* memory) const { std::free(memory); }
};
template <class Type>
using Allocated = std::unique_ptr<Type, FreeRelease>;

// ---- from libplist

/// The digits by which libplist itself writes the number: it hands out the bits alone, and only
/// there says whether they have a sign.
PropertyValue integerOf(plist_t node) {
    std::uint64_t bits = 0;
    plist_get_uint_val(node, &bits);
    if (bits <= std::uint64_t{INT64_MAX}) return bits;
    char* written = nullptr;
    std::uint32_t length = 0;
    plist_to_xml(node, &written, &length);
    const Allocated<char> markup(written);
    const bool negative = markup && std::string_view(markup.get(), length).find("<integer>-") !=
                                        std::string_view::npos;
    return negative ? PropertyValue(static_cast<std::int64_t>(bits)) : PropertyValue(bits);
}

class Reader {
public:
    explicit Reader(PropertyListFormat format) : format_(format) {}

    [[nodiscard]] std::optional<PropertyValue> valueOf(plist_t node) const {
        switch (plist_get_node_type(node)) {
            case PLIST_BOOLEAN:
                return truthOf(node);
            case PLIST_UINT:
                return integerOf(node);
            case PLIST_REAL:
                return realOf(node);
            case PLIST_STRING:
                return textOf(node);
            case PLIST_DATA:
                return dataOf(node);
            case PLIST_UID:
                return uidOf(node);
            case PLIST_ARRAY:
                return arrayOf(node);
            case PLIST_DICT:
                return dictionaryOf(node);
            default:
                return std::nullopt;
        }
    }

private:
    [[nodiscard]] static PropertyValue truthOf(plist_t node) {
        std::uint8_t truth = 0;
        plist_get_bool_val(node, &truth);
        return truth != 0;
    }

    [[nodiscard]] static std::optional<PropertyValue> realOf(plist_t node) {
        double number = 0;
        plist_get_real_val(node, &number);
        if (!std::isfinite(number)) return std::nullopt;
        return number;
    }

    [[nodiscard]] static PropertyValue textOf(plist_t node) {
        const char* const text = plist_get_string_ptr(node, nullptr);
        return std::string(text == nullptr ? "" : text);
    }

    [[nodiscard]] static PropertyValue dataOf(plist_t node) {
        std::uint64_t length = 0;
        const char* const bytes = plist_get_data_ptr(node, &length);
        if (bytes == nullptr) return PropertyValue::Data{};
        const auto* const first = reinterpret_cast<const std::byte*>(bytes);
        return PropertyValue::Data(first, first + length);
    }

    [[nodiscard]] static PropertyValue uidOf(plist_t node) {
        std::uint64_t index = 0;
        plist_get_uid_val(node, &index);
        return PropertyUid{index};
    }

    [[nodiscard]] std::optional<PropertyValue> arrayOf(plist_t node) const {
        PropertyValue::Array values;
        values.reserve(plist_array_get_size(node));
        plist_array_iter started = nullptr;
        plist_array_new_iter(node, &started);
        const Allocated<void> position(started);
        for (plist_t item = nullptr;;) {
            plist_array_next_item(node, position.get(), &item);
            if (item == nullptr) return values;
            auto value = valueOf(item);
            if (!value) return std::nullopt;
            values.push_back(std::move(*value));
        }
    }

    [[nodiscard]] std::optional<PropertyValue> dictionaryOf(plist_t node) const {
        PropertyValue::Dictionary values;
        plist_dict_iter started = nullptr;
        plist_dict_new_iter(node, &started);
        const Allocated<void> position(started);
        for (plist_t item = nullptr;;) {
            char* written = nullptr;
            plist_dict_next_item(node, position.get(), &written, &item);
            const Allocated<char> key(written);
            if (item == nullptr || !key) break;
            auto value = valueOf(item);
            if (!value) return std::nullopt;
            values.insert_or_assign(key.get(), std::move(*value));
        }
        if (const auto uid = uidWrittenAsDictionary(values)) return *uid;
        return values;
    }

    [[nodiscard]] std::optional<PropertyUid> uidWrittenAsDictionary(
        const PropertyValue::Dictionary& values) const {
        if (format_ != PropertyListFormat::xml || values.size() != 1) return std::nullopt;
        const auto& [key, value] = *values.begin();
        if (key != kUidKey) return std::nullopt;
        if (const auto* const index = value.largeInteger()) return PropertyUid{*index};
        const auto* const index = value.integer();
        if (index == nullptr || *index < 0) return std::nullopt;
        return PropertyUid{static_cast<std::uint64_t>(*index)};
    }

    PropertyListFormat format_;
};

// ---- to libplist

class Writer {
public:
    Writer(const PropertyListCodec& codec, PropertyListFormat format)
        : codec_(codec), format_(format) {}

    /// Null when the list cannot hold the value.
    [[nodiscard]] Node nodeOf(const PropertyValue& value, std::size_t depthLeft) {
        if (++objects_ > kMostPropertyListObjects) return nullptr;
        if (const auto* const values = value.array()) return arrayOf(*values, depthLeft);
        if (const auto* const values = value.dictionary()) return dictionaryOf(*values, depthLeft);
        if (const auto* const text = value.text()) {
            return codec_.holdsText(*text, format_) ? Node(plist_new_string(text->c_str()))
                                                    : nullptr;
        }
        if (const auto* const number = value.real()) {
            return std::isfinite(*number) ? Node(plist_new_real(*number)) : nullptr;
        }
        if (const auto* const bytes = value.data()) {
            return Node(
                plist_new_data(reinterpret_cast<const char*>(bytes->data()), bytes->size()));
        }
        if (const auto* const uid = value.uid()) return Node(plist_new_uid(uid->index));
        if (const auto* const truth = value.truth()) return Node(plist_new_bool(*truth ? 1 : 0));
        if (const auto* const number = value.largeInteger()) return largeInteger(*number);
        return Node(plist_new_uint(static_cast<std::uint64_t>(*value.integer())));
    }

private:
    /// Made from text: plist_new_uint() would write so large a number as a negative one.
    [[nodiscard]] static Node largeInteger(std::uint64_t number) {
        const std::string markup =
            "<plist version=\"1.0\"><integer>" + std::to_string(number) + "</integer></plist>";
        plist_t node = nullptr;
        plist_from_xml(markup.data(), static_cast<std::uint32_t>(markup.size()), &node);
        return Node(node);
    }

    [[nodiscard]] Node arrayOf(const PropertyValue::Array& values, std::size_t depthLeft) {
        if (depthLeft == 0) return nullptr;
        Node array(plist_new_array());
        for (const PropertyValue& value : values) {
            Node item = nodeOf(value, depthLeft - 1);
            if (!item) return nullptr;
            plist_array_append_item(array.get(), item.release());
        }
        return array;
    }

    [[nodiscard]] Node dictionaryOf(const PropertyValue::Dictionary& values,
                                    std::size_t depthLeft) {
        if (depthLeft == 0) return nullptr;
        Node dictionary(plist_new_dict());
        for (const auto& [key, value] : values) {
            if (++objects_ > kMostPropertyListObjects) return nullptr;
            if (!codec_.holdsText(key, format_)) return nullptr;
            Node item = nodeOf(value, depthLeft - 1);
            if (!item) return nullptr;
            plist_dict_set_item(dictionary.get(), key.c_str(), item.release());
        }
        return dictionary;
    }

    const PropertyListCodec& codec_;
    PropertyListFormat format_;
    std::size_t objects_ = 0;
};

}  // namespace

std::optional<PropertyValue> PlistPropertyList::read(std::span<const std::byte> bytes) const {
    if (bytes.size() > kMostPropertyListBytes) return std::nullopt;
    std::string_view list(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    const bool binary = list.starts_with(kBinarySignature);
    if (list.starts_with(kByteOrderMark)) list.remove_prefix(kByteOrderMark.size());
    if (!(binary ? isBoundedBinaryPropertyList(bytes) : isBoundedXmlPropertyList(list))) {
        return std::nullopt;
    }
    plist_t read = nullptr;
    const auto length = static_cast<std::uint32_t>(list.size());
    (binary ? plist_from_bin : plist_from_xml)(list.data(), length, &read);
    const Node node(read);
    if (!node) return std::nullopt;
    return Reader(binary ? PropertyListFormat::binary : PropertyListFormat::xml)
        .valueOf(node.get());
}

std::optional<std::vector<std::byte>> PlistPropertyList::written(const PropertyValue& value,
                                                                 PropertyListFormat format) const {
    const Node node = Writer(*this, format).nodeOf(value, kMostPropertyListDepth);
    if (!node) return std::nullopt;
    char* written = nullptr;
    std::uint32_t length = 0;
    (format == PropertyListFormat::binary ? plist_to_bin : plist_to_xml)(node.get(), &written,
                                                                         &length);
    const Allocated<char> list(written);
    if (!list || length > kMostPropertyListBytes) return std::nullopt;
    const auto* const first = reinterpret_cast<const std::byte*>(list.get());
    return std::vector<std::byte>(first, first + length);
}

bool PlistPropertyList::holdsText(const std::string& text, PropertyListFormat format) const {
    if (!g_utf8_validate_len(text.data(), text.size(), nullptr)) return false;
    if (format == PropertyListFormat::binary) return true;
    const bool hasControl = std::any_of(text.begin(), text.end(), [](char c) {
        return static_cast<unsigned char>(c) < 0x20 && c != '\t' && c != '\n';
    });
    // U+FFFE and U+FFFF: the two characters above the controls that XML leaves out.
    return !hasControl && text.find("\xEF\xBF\xBE") == std::string::npos &&
           text.find("\xEF\xBF\xBF") == std::string::npos;
}

}  // namespace qrx::platform
