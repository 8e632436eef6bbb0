#include "foundation/KeyedArchive.h"

#include <algorithm>
#include <map>

#include "foundation/NeutralAnswer.h"
#include "platform/ports/Services.h"

namespace qrx {

namespace {

using platform::PropertyUid;
using platform::PropertyValue;

constexpr std::string_view kVersionKey = "$version";
constexpr std::string_view kArchiverKey = "$archiver";
constexpr std::string_view kTopKey = "$top";
constexpr std::string_view kObjectsKey = "$objects";
constexpr std::string_view kRootKey = "root";
constexpr std::string_view kClassKey = "$class";
constexpr std::string_view kClassNameKey = "$classname";
constexpr std::string_view kClassesKey = "$classes";
// How a changeable text stands in an archive: as an object with its text under this key.
constexpr std::string_view kTextClass = "NSString";
constexpr std::string_view kTextKey = "NS.string";

constexpr std::int64_t kVersion = 100000;
constexpr std::string_view kArchiver = "NSKeyedArchiver";
constexpr std::string_view kNull = "$null";

/// Keys that begin with "$" belong to the container; an object's own get a second one.
std::string fieldKey(std::string_view key) {
    return (key.starts_with('$') ? "$" : "") + std::string(key);
}

const PropertyValue* find(const PropertyValue::Dictionary& values, std::string_view key) {
    const auto entry = values.find(key);
    return entry == values.end() ? nullptr : &entry->second;
}

bool isText(const PropertyValue* value, std::string_view text) {
    return value != nullptr && value->text() != nullptr && *value->text() == text;
}

/// What `reference` names; null when it is no UID, names nothing or points past the list.
const PropertyValue* referenced(const PropertyValue::Array& objects,
                                const PropertyValue* reference) {
    const PropertyUid* const uid = reference == nullptr ? nullptr : reference->uid();
    if (uid == nullptr || uid->index == 0 || uid->index >= objects.size()) return nullptr;
    return &objects[static_cast<std::size_t>(uid->index)];
}

std::optional<std::uint64_t> wholePart(double number) {
    constexpr double kTwoTo64 = 18446744073709551616.0;
    constexpr double kTwoTo63 = 9223372036854775808.0;
    if (number >= 0 && number < kTwoTo64) return static_cast<std::uint64_t>(number);
    if (number < 0 && number >= -kTwoTo63) {
        return static_cast<std::uint64_t>(static_cast<std::int64_t>(number));
    }
    return std::nullopt;
}

/// Lays the objects of one archive into its list.
class ObjectList {
public:
    explicit ObjectList(PropertyListFormat format) : format_(format) {
        objects_.emplace_back(std::string(kNull));
    }

    PropertyUid add(const ArchiveRecord& record) {
        const PropertyUid place = append(PropertyValue());
        PropertyValue::Dictionary fields;
        for (const auto& field : record.fields()) {
            fields.emplace(
                field.key,
                std::visit([this](const auto& content) { return add(content); }, field.content));
        }
        fields.emplace(kClassKey, addClass(record.classes()));
        objects_[static_cast<std::size_t>(place.index)] = std::move(fields);
        return place;
    }

    [[nodiscard]] PropertyValue::Array taken() { return std::move(objects_); }

private:
    PropertyUid append(PropertyValue value) {
        objects_.push_back(std::move(value));
        return PropertyUid{objects_.size() - 1};
    }

    PropertyUid add(const std::shared_ptr<const ArchiveRecord>& record) { return add(*record); }

    PropertyUid add(const std::string& text) {
        const auto known = texts_.find(text);
        if (known != texts_.end()) return known->second;
        const PropertyUid place = append(textOrBytes(text));
        texts_.emplace(text, place);
        return place;
    }

    PropertyUid add(std::uint64_t number) { return append(number); }

    PropertyUid addClass(const ArchiveClasses& classes) {
        const auto known = classes_.find(classes.front());
        if (known != classes_.end()) return known->second;
        const PropertyUid place = append(PropertyValue::Dictionary{
            {std::string(kClassNameKey), classes.front()},
            {std::string(kClassesKey), PropertyValue::Array(classes.begin(), classes.end())}});
        classes_.emplace(classes.front(), place);
        return place;
    }

    [[nodiscard]] PropertyValue textOrBytes(const std::string& text) const {
        if (platform::propertyLists().holdsText(text, format_)) return text;
        const auto* const first = reinterpret_cast<const std::byte*>(text.data());
        return PropertyValue::Data(first, first + text.size());
    }

    PropertyListFormat format_;
    PropertyValue::Array objects_;
    std::map<std::string, PropertyUid> texts_;
    std::map<std::string, PropertyUid> classes_;
};

}  // namespace

void ArchiveRecord::encode(std::string_view key, Content content) {
    const std::string own = fieldKey(key);
    const auto same = std::find_if(fields_.begin(), fields_.end(),
                                   [&](const Field& field) { return field.key == own; });
    if (same == fields_.end()) {
        fields_.push_back({own, std::move(content)});
    } else {
        same->content = std::move(content);
    }
}

void ArchiveRecord::encodeText(std::string_view key, const std::optional<std::string>& text) {
    if (text) encode(key, *text);
}

void ArchiveRecord::encodeNumber(std::string_view key, std::uint64_t number) {
    encode(key, number);
}

void ArchiveRecord::encodeObject(std::string_view key, ArchiveRecord object) {
    encode(key, std::make_shared<const ArchiveRecord>(std::move(object)));
}

std::optional<ArchiveBytes> keyedArchiveOf(const ArchiveRecord& root, PropertyListFormat format) {
    return answerOr(std::optional<ArchiveBytes>(), "keyedArchiveOf", [&] {
        ObjectList list(format);
        const PropertyUid place = list.add(root);
        const PropertyValue::Dictionary archive{
            {std::string(kVersionKey), kVersion},
            {std::string(kArchiverKey), std::string(kArchiver)},
            {std::string(kTopKey), PropertyValue::Dictionary{{std::string(kRootKey), place}}},
            {std::string(kObjectsKey), list.taken()}};
        return platform::propertyLists().written(archive, format);
    });
}

std::optional<ArchivedObject> ArchivedObject::rootOfKeyedArchive(std::span<const std::byte> bytes) {
    auto read = platform::propertyLists().read(bytes);
    if (!read) return std::nullopt;
    const auto list = std::make_shared<const PropertyValue>(std::move(*read));
    const auto* const archive = list->dictionary();
    if (archive == nullptr) return std::nullopt;
    const PropertyValue* const version = find(*archive, kVersionKey);
    if (version == nullptr || *version != PropertyValue(kVersion)) return std::nullopt;
    if (!isText(find(*archive, kArchiverKey), kArchiver)) return std::nullopt;
    const PropertyValue* const top = find(*archive, kTopKey);
    const PropertyValue* const objects = find(*archive, kObjectsKey);
    if (top == nullptr || top->dictionary() == nullptr) return std::nullopt;
    if (objects == nullptr || objects->array() == nullptr) return std::nullopt;
    if (objects->array()->empty() || !isText(&objects->array()->front(), kNull)) {
        return std::nullopt;
    }
    return objectAt(Objects(list, objects->array()), find(*top->dictionary(), kRootKey));
}

std::optional<ArchivedObject> ArchivedObject::objectAt(const Objects& objects,
                                                       const PropertyValue* reference) {
    const PropertyValue* const value = referenced(*objects, reference);
    if (value == nullptr || value->dictionary() == nullptr) return std::nullopt;
    ArchivedObject object(objects, value->dictionary());
    if (!object.className()) return std::nullopt;
    return object;
}

const PropertyValue* ArchivedObject::valueFor(std::string_view key) const {
    return referenced(*objects_, find(*fields_, fieldKey(key)));
}

const ArchivedObject::Fields* ArchivedObject::classRecord() const {
    const PropertyValue* const record = referenced(*objects_, find(*fields_, kClassKey));
    return record == nullptr ? nullptr : record->dictionary();
}

std::optional<std::string> ArchivedObject::className() const {
    const Fields* const record = classRecord();
    const PropertyValue* const name = record == nullptr ? nullptr : find(*record, kClassNameKey);
    if (name == nullptr || name->text() == nullptr) return std::nullopt;
    return *name->text();
}

bool ArchivedObject::isOfClass(std::string_view name) const {
    if (className() == name) return true;
    const Fields* const record = classRecord();
    const PropertyValue* const chain = record == nullptr ? nullptr : find(*record, kClassesKey);
    if (chain == nullptr || chain->array() == nullptr) return false;
    return std::any_of(chain->array()->begin(), chain->array()->end(),
                       [&](const PropertyValue& ancestor) { return isText(&ancestor, name); });
}

std::optional<std::string> ArchivedObject::decodeText(std::string_view key) const {
    const PropertyValue* value = valueFor(key);
    if (const auto object = decodeObject(key); object && object->isOfClass(kTextClass)) {
        value = find(*object->fields_, kTextKey);
    }
    if (value == nullptr) return std::nullopt;
    if (const auto* const text = value->text()) return *text;
    const auto* const bytes = value->data();
    if (bytes == nullptr) return std::nullopt;
    return std::string(reinterpret_cast<const char*>(bytes->data()), bytes->size());
}

std::optional<std::uint64_t> ArchivedObject::decodeNumber(std::string_view key) const {
    const PropertyValue* const value = valueFor(key);
    if (value == nullptr) return std::nullopt;
    if (const auto* const number = value->integer()) return static_cast<std::uint64_t>(*number);
    if (const auto* const number = value->largeInteger()) return *number;
    if (const auto* const truth = value->truth()) return *truth ? 1 : 0;
    if (const auto* const number = value->real()) return wholePart(*number);
    return std::nullopt;
}

std::optional<ArchivedObject> ArchivedObject::decodeObject(std::string_view key) const {
    return objectAt(objects_, find(*fields_, fieldKey(key)));
}

}  // namespace qrx
