#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "platform/linux/GlibHandles.h"
#include "platform/ports/BusValue.h"

namespace qrx::platform {

/// `values` as the body of a message of `signature` ("ssb", no brackets around). Descriptors go
/// into `descriptors`, which may be null where the signature has none. Throws std::invalid_argument
/// when a value is not of its type, or a text is not UTF-8.
[[nodiscard]] GlibHandle<GVariant> bodyOf(const BusValues& values, const std::string& signature,
                                          GUnixFDList* descriptors);

/// The body of a message as values. A value within a variant is told as what it is. Throws
/// std::invalid_argument on a type that BusValue has no room for, or a descriptor that did not
/// come.
[[nodiscard]] BusValues valuesOf(GVariant* body, const std::vector<BusDescriptor>& descriptors);

/// Bytes of that body on the wire.
[[nodiscard]] std::size_t wireSize(const BusValues& values, const std::string& signature);

/// What a variant that holds `value` is typed as.
[[nodiscard]] std::string naturalSignature(const BusValue& value);

}  // namespace qrx::platform
