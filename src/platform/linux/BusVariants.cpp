#include "platform/linux/BusVariants.h"

#include <limits>
#include <stdexcept>
#include <type_traits>
#include <utility>

#include <gio/gunixfdlist.h>

namespace qrx::platform {

namespace {

using Dictionary = BusValue::Dictionary;
using List = BusValue::List;

std::string textOf(const GVariantType* type) {
    return {g_variant_type_peek_string(type), g_variant_type_get_string_length(type)};
}

GlibHandle<GVariantType> typeOf(const std::string& text) {
    if (g_variant_type_string_is_valid(text.c_str()) == FALSE) {
        throw std::invalid_argument("no type: " + text);
    }
    return GlibHandle<GVariantType>(g_variant_type_new(text.c_str()));
}

GlibHandle<GVariantType> bodyType(const std::string& signature) {
    return typeOf("(" + signature + ")");
}

[[noreturn]] void refuse(const GVariantType* type) {
    throw std::invalid_argument("a value that is no " + textOf(type));
}

template <class Kind>
const Kind& the(const BusValue& value, const GVariantType* type) {
    const Kind* held = value.as<Kind>();
    if (held == nullptr) refuse(type);
    return *held;
}

/// Makes variants of values; each is floating.
class Writer {
public:
    explicit Writer(GUnixFDList* descriptors) : descriptors_(descriptors) {}

    [[nodiscard]] GVariant* tuple(const BusValues& values, const GVariantType* type) const {
        if (g_variant_type_n_items(type) != values.size()) refuse(type);
        Builder builder(type);
        const GVariantType* item = g_variant_type_first(type);
        for (const BusValue& value : values) {
            builder.add(one(value, item));
            item = g_variant_type_next(item);
        }
        return builder.end();
    }

private:
    class Builder {
    public:
        explicit Builder(const GVariantType* type) { g_variant_builder_init(&builder_, type); }
        ~Builder() { g_variant_builder_clear(&builder_); }
        Builder(const Builder&) = delete;
        Builder& operator=(const Builder&) = delete;

        void add(GVariant* floating) { g_variant_builder_add_value(&builder_, floating); }
        [[nodiscard]] GVariant* end() { return g_variant_builder_end(&builder_); }

    private:
        GVariantBuilder builder_{};
    };

    [[nodiscard]] GVariant* one(const BusValue& value, const GVariantType* type) const {
        switch (*g_variant_type_peek_string(type)) {
            case 'b':
                return g_variant_new_boolean(the<bool>(value, type) ? TRUE : FALSE);
            case 'i':
                return g_variant_new_int32(the<std::int32_t>(value, type));
            case 'u':
                return g_variant_new_uint32(the<std::uint32_t>(value, type));
            case 'x':
                return g_variant_new_int64(the<std::int64_t>(value, type));
            case 't':
                return g_variant_new_uint64(the<std::uint64_t>(value, type));
            case 'd':
                return g_variant_new_double(the<double>(value, type));
            case 's':
                return text(the<std::string>(value, type));
            case 'o':
                return objectPath(the<BusObjectPath>(value, type).text);
            case 'h':
                return handle(the<BusDescriptor>(value, type));
            case 'v': {
                const auto natural = typeOf(naturalSignature(value));
                return g_variant_new_variant(one(value, natural.get()));
            }
            case 'a':
                return array(value, type);
            case '(':
                return tuple(the<List>(value, type), type);
            default:
                refuse(type);
        }
    }

    [[nodiscard]] static GVariant* text(const std::string& utf8) {
        if (g_utf8_validate_len(utf8.data(), utf8.size(), nullptr) == FALSE) {
            throw std::invalid_argument("a text that is not UTF-8");
        }
        return g_variant_new_string(utf8.c_str());
    }

    [[nodiscard]] static GVariant* objectPath(const std::string& path) {
        if (g_variant_is_object_path(path.c_str()) == FALSE) {
            throw std::invalid_argument("no object path: " + path);
        }
        return g_variant_new_object_path(path.c_str());
    }

    [[nodiscard]] GVariant* handle(const BusDescriptor& descriptor) const {
        if (descriptors_ == nullptr || descriptor == nullptr) {
            throw std::invalid_argument("a descriptor that cannot be sent");
        }
        const gint index = g_unix_fd_list_append(descriptors_, *descriptor, nullptr);
        if (index < 0) throw std::invalid_argument("a descriptor that is not open");
        return g_variant_new_handle(index);
    }

    [[nodiscard]] GVariant* array(const BusValue& value, const GVariantType* type) const {
        const GVariantType* element = g_variant_type_element(type);
        if (const auto* bytes = value.as<BusBytes>()) {
            if (textOf(element) != "y") refuse(type);
            return g_variant_new_fixed_array(G_VARIANT_TYPE_BYTE, bytes->bytes.data(),
                                             bytes->bytes.size(), 1);
        }
        Builder builder(type);
        if (const auto* dictionary = value.as<Dictionary>()) {
            if (g_variant_type_is_dict_entry(element) == FALSE) refuse(type);
            for (const auto& [key, entry] : *dictionary) {
                GlibHandle<GVariant> name(g_variant_ref_sink(text(key)));
                GVariant* const held = one(entry, g_variant_type_value(element));
                builder.add(g_variant_new_dict_entry(name.get(), held));
            }
            return builder.end();
        }
        for (const BusValue& item : the<List>(value, type)) {
            builder.add(one(item, element));
        }
        return builder.end();
    }

    GUnixFDList* descriptors_;
};

BusValue valueOf(GVariant* value, const std::vector<BusDescriptor>& descriptors);

List childrenOf(GVariant* container, const std::vector<BusDescriptor>& descriptors) {
    List children;
    const gsize count = g_variant_n_children(container);
    children.reserve(count);
    for (gsize i = 0; i < count; ++i) {
        const GlibHandle<GVariant> child(g_variant_get_child_value(container, i));
        children.push_back(valueOf(child.get(), descriptors));
    }
    return children;
}

BusValue arrayOf(GVariant* array, const std::vector<BusDescriptor>& descriptors) {
    if (g_variant_is_of_type(array, G_VARIANT_TYPE_BYTESTRING) != FALSE) {
        gsize size = 0;
        const auto* bytes =
            static_cast<const char*>(g_variant_get_fixed_array(array, &size, sizeof(guchar)));
        return BusBytes{std::string(bytes, size)};
    }
    if (g_variant_is_of_type(array, G_VARIANT_TYPE("a{s*}")) == FALSE) {
        return childrenOf(array, descriptors);
    }
    Dictionary dictionary;
    const gsize count = g_variant_n_children(array);
    for (gsize i = 0; i < count; ++i) {
        const GlibHandle<GVariant> entry(g_variant_get_child_value(array, i));
        const GlibHandle<GVariant> key(g_variant_get_child_value(entry.get(), 0));
        const GlibHandle<GVariant> value(g_variant_get_child_value(entry.get(), 1));
        dictionary.emplace_back(g_variant_get_string(key.get(), nullptr),
                                valueOf(value.get(), descriptors));
    }
    return dictionary;
}

BusValue descriptorAt(gint32 index, const std::vector<BusDescriptor>& descriptors) {
    if (index < 0 || static_cast<std::size_t>(index) >= descriptors.size()) {
        throw std::invalid_argument("a descriptor that did not come with the message");
    }
    return descriptors[static_cast<std::size_t>(index)];
}

BusValue valueOf(GVariant* value, const std::vector<BusDescriptor>& descriptors) {
    switch (g_variant_classify(value)) {
        case G_VARIANT_CLASS_BOOLEAN:
            return g_variant_get_boolean(value) != FALSE;
        case G_VARIANT_CLASS_BYTE:
            return static_cast<std::uint32_t>(g_variant_get_byte(value));
        case G_VARIANT_CLASS_INT16:
            return static_cast<std::int32_t>(g_variant_get_int16(value));
        case G_VARIANT_CLASS_UINT16:
            return static_cast<std::uint32_t>(g_variant_get_uint16(value));
        case G_VARIANT_CLASS_INT32:
            return std::int32_t{g_variant_get_int32(value)};
        case G_VARIANT_CLASS_UINT32:
            return std::uint32_t{g_variant_get_uint32(value)};
        case G_VARIANT_CLASS_INT64:
            return std::int64_t{g_variant_get_int64(value)};
        case G_VARIANT_CLASS_UINT64:
            return std::uint64_t{g_variant_get_uint64(value)};
        case G_VARIANT_CLASS_DOUBLE:
            return g_variant_get_double(value);
        case G_VARIANT_CLASS_STRING:
        case G_VARIANT_CLASS_SIGNATURE:
            return g_variant_get_string(value, nullptr);
        case G_VARIANT_CLASS_OBJECT_PATH:
            return BusObjectPath{g_variant_get_string(value, nullptr)};
        case G_VARIANT_CLASS_HANDLE:
            return descriptorAt(g_variant_get_handle(value), descriptors);
        case G_VARIANT_CLASS_VARIANT: {
            const GlibHandle<GVariant> held(g_variant_get_variant(value));
            return valueOf(held.get(), descriptors);
        }
        case G_VARIANT_CLASS_ARRAY:
            return arrayOf(value, descriptors);
        case G_VARIANT_CLASS_TUPLE:
        case G_VARIANT_CLASS_DICT_ENTRY:
            return childrenOf(value, descriptors);
        case G_VARIANT_CLASS_MAYBE:
            break;
    }
    throw std::invalid_argument("a value of a type that is not for the bus");
}

std::size_t aligned(std::size_t offset, std::size_t boundary) {
    return (offset + boundary - 1) / boundary * boundary;
}

std::size_t alignmentOf(const GVariantType* type) {
    switch (*g_variant_type_peek_string(type)) {
        case 'y':
        case 'v':
        case 'g':
            return 1;
        case 'n':
        case 'q':
            return 2;
        case 'x':
        case 't':
        case 'd':
        case '(':
        case '{':
            return 8;
        default:
            return 4;
    }
}

std::size_t endOfTuple(std::size_t offset, const BusValues& values, const GVariantType* type);

/// Where a value ends that begins at `offset` or at the next boundary of its type.
std::size_t endOf(std::size_t offset, const BusValue& value, const GVariantType* type) {
    constexpr std::size_t kLength = 4;  // bytes of the length before texts and arrays
    const std::size_t start = aligned(offset, alignmentOf(type));
    switch (*g_variant_type_peek_string(type)) {
        case 'x':
        case 't':
        case 'd':
            return start + 8;
        case 's':
            return start + kLength + the<std::string>(value, type).size() + 1;
        case 'o':
            return start + kLength + the<BusObjectPath>(value, type).text.size() + 1;
        case 'v': {
            const auto natural = typeOf(naturalSignature(value));
            const std::size_t signature = g_variant_type_get_string_length(natural.get());
            return endOf(start + 1 + signature + 1, value, natural.get());
        }
        case 'a': {
            if (const auto* bytes = value.as<BusBytes>()) {
                return start + kLength + bytes->bytes.size();
            }
            const GVariantType* element = g_variant_type_element(type);
            std::size_t end = aligned(start + kLength, alignmentOf(element));
            if (const auto* dictionary = value.as<Dictionary>()) {
                for (const auto& [key, entry] : *dictionary) {
                    const std::size_t keyEnd = aligned(end, 8) + kLength + key.size() + 1;
                    end = endOf(keyEnd, entry, g_variant_type_value(element));
                }
                return end;
            }
            for (const BusValue& item : the<List>(value, type)) {
                end = endOf(end, item, element);
            }
            return end;
        }
        case '(':
            return endOfTuple(start, the<List>(value, type), type);
        default:
            return start + 4;  // b, i, u, h
    }
}

std::size_t endOfTuple(std::size_t offset, const BusValues& values, const GVariantType* type) {
    if (g_variant_type_n_items(type) != values.size()) refuse(type);
    const GVariantType* item = g_variant_type_first(type);
    for (const BusValue& value : values) {
        offset = endOf(offset, value, item);
        item = g_variant_type_next(item);
    }
    return offset;
}

}  // namespace

std::string naturalSignature(const BusValue& value) {
    return value.visit([](const auto& held) -> std::string {
        using Kind = std::decay_t<decltype(held)>;
        if constexpr (std::is_same_v<Kind, bool>) return "b";
        if constexpr (std::is_same_v<Kind, std::int32_t>) return "i";
        if constexpr (std::is_same_v<Kind, std::uint32_t>) return "u";
        if constexpr (std::is_same_v<Kind, std::int64_t>) return "x";
        if constexpr (std::is_same_v<Kind, std::uint64_t>) return "t";
        if constexpr (std::is_same_v<Kind, double>) return "d";
        if constexpr (std::is_same_v<Kind, std::string>) return "s";
        if constexpr (std::is_same_v<Kind, BusBytes>) return "ay";
        if constexpr (std::is_same_v<Kind, BusObjectPath>) return "o";
        if constexpr (std::is_same_v<Kind, BusDescriptor>) return "h";
        if constexpr (std::is_same_v<Kind, List>) return "av";
        return "a{sv}";
    });
}

GlibHandle<GVariant> bodyOf(const BusValues& values, const std::string& signature,
                            GUnixFDList* descriptors) {
    const auto type = bodyType(signature);
    return GlibHandle<GVariant>(g_variant_ref_sink(Writer(descriptors).tuple(values, type.get())));
}

BusValues valuesOf(GVariant* body, const std::vector<BusDescriptor>& descriptors) {
    if (body == nullptr) return {};
    return childrenOf(body, descriptors);
}

std::size_t wireSize(const BusValues& values, const std::string& signature) {
    const auto type = bodyType(signature);
    return endOfTuple(0, values, type.get());
}

}  // namespace qrx::platform
