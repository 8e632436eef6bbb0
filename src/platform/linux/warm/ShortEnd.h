#pragma once

namespace qrx::platform::warm {

/// Lets copies of this process end without the destructors of the shared libraries, which are half
/// of the cost of a run: each writes into memory of its own, which the kernel takes back anyway.
///
/// What was registered with atexit from now on, the destructors of the program itself and the
/// streams of the C library are seen to as ever, and in the same order. Where that cannot be told
/// apart, or the program may have streams of C++, nothing changes.
void endWithoutLibraries();

}  // namespace qrx::platform::warm
