#pragma once

#include <memory>
#include <string_view>
#include <typeinfo>

#include "volumes/QRXHDMediaVolumeUtilityObject.h"

namespace qrx {

/// A volume utility class as a value, for the lists of classes. Two are equal when they stand for
/// the same class.
struct VolumeUtilityClass {
    std::string_view name;
    /// A new object of the class.
    std::unique_ptr<QRXHDMediaVolumeUtilityObject> (*make)();
    /// The shared object of the class.
    QRXHDMediaVolumeUtilityObject& (*shared)();
    /// Whether the object is of exactly this class.
    bool (*isClassOf)(const QRXHDMediaVolumeUtilityObject&);
    /// Whether the object is of this class or of one derived from it.
    bool (*isKindOf)(const QRXHDMediaVolumeUtilityObject&);

    [[nodiscard]] friend constexpr bool operator==(const VolumeUtilityClass& a,
                                                   const VolumeUtilityClass& b) {
        return a.name == b.name;
    }
};

/// The value that stands for `Utility`, whose name is `name`.
template <class Utility>
[[nodiscard]] constexpr VolumeUtilityClass volumeUtilityClass(std::string_view name) {
    return {
        .name = name,
        .make = []() -> std::unique_ptr<QRXHDMediaVolumeUtilityObject> {
            return std::make_unique<Utility>();
        },
        .shared = []() -> QRXHDMediaVolumeUtilityObject& { return Utility::sharedInstance(); },
        .isClassOf =
            [](const QRXHDMediaVolumeUtilityObject& utility) {
                return typeid(utility) == typeid(Utility);
            },
        .isKindOf =
            [](const QRXHDMediaVolumeUtilityObject& utility) {
                return dynamic_cast<const Utility*>(&utility) != nullptr;
            },
    };
}

}  // namespace qrx
