# Warnings are errors everywhere; single-precision arithmetic of the timecode engine must never be
# fused or widened, so contraction is off for every target.
add_library(qrx_compile_options INTERFACE)
target_compile_options(
  qrx_compile_options
  INTERFACE -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror -ffp-contract=off
            -fno-omit-frame-pointer)
target_include_directories(qrx_compile_options INTERFACE "${PROJECT_SOURCE_DIR}/src")

# Line numbers in a backtrace are enough, and halve what the compiler has to write.
set(CMAKE_CXX_FLAGS_RELWITHDEBINFO "-O2 -g1 -DNDEBUG")

if(QRX_SANITIZE)
  # Not optimised: the sanitizers' checks take three times as long to compile at -O1.
  target_compile_options(qrx_compile_options INTERFACE "-fsanitize=${QRX_SANITIZE}"
                                                       -fno-sanitize-recover=all -O0 -g1)
  target_link_options(qrx_compile_options INTERFACE "-fsanitize=${QRX_SANITIZE}")
endif()
