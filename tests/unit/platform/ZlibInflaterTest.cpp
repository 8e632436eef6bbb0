#include <cstddef>
#include <cstdint>
#include <random>
#include <span>
#include <vector>

#include <gtest/gtest.h>
#include <zlib.h>

#include "platform/linux/ZlibInflater.h"

namespace qrx::platform {
namespace {

using Bytes = std::vector<std::byte>;

Bytes packed(const Bytes& plain) {
    uLongf size = ::compressBound(static_cast<uLong>(plain.size()));
    Bytes bytes(size);
    EXPECT_EQ(
        ::compress(reinterpret_cast<Bytef*>(bytes.data()), &size,
                   reinterpret_cast<const Bytef*>(plain.data()), static_cast<uLong>(plain.size())),
        Z_OK);
    bytes.resize(size);
    return bytes;
}

/// Hardly compressible: the packed form is as long as the plain one.
Bytes noise(std::size_t size) {
    std::mt19937 source{20240229};
    Bytes bytes(size);
    for (std::byte& byte : bytes) {
        byte = static_cast<std::byte>(source() & 0xFFU);
    }
    return bytes;
}

TEST(ZlibInflater, GivesBackWhatWasPacked) {
    const ZlibInflater inflater;
    for (const std::size_t size : {0U, 1U, 100U, 65'535U, 65'536U, 65'537U, 300'000U}) {
        SCOPED_TRACE(size);
        const Bytes plain = noise(size);
        EXPECT_EQ(inflater.expanded(packed(plain), 1U << 20U), plain);
    }
}

TEST(ZlibInflater, LimitIsExact) {
    const ZlibInflater inflater;
    for (const std::size_t size : {0U, 1U, 65'536U, 131'072U, 200'000U}) {
        SCOPED_TRACE(size);
        const Bytes plain(size, std::byte{7});
        EXPECT_EQ(inflater.expanded(packed(plain), size), plain);
        EXPECT_EQ(inflater.expanded(packed(plain), SIZE_MAX), plain);
        if (size > 0) {
            EXPECT_FALSE(inflater.expanded(packed(plain), size - 1));
            EXPECT_FALSE(inflater.expanded(packed(plain), 0));
        }
    }
}

TEST(ZlibInflater, BombIsStoppedAtTheLimit) {
    const Bytes bomb = packed(Bytes(std::size_t{64} << 20U));
    EXPECT_LT(bomb.size(), 100'000U);
    EXPECT_FALSE(ZlibInflater().expanded(bomb, 1'000'000));
}

TEST(ZlibInflater, WhatFollowsTheStreamIsIgnored) {
    const Bytes plain = noise(1000);
    Bytes stream = packed(plain);
    stream.insert(stream.end(), 5000, std::byte{0xAB});
    EXPECT_EQ(ZlibInflater().expanded(stream, 1000), plain);
}

TEST(ZlibInflater, EveryTruncationGivesNothing) {
    const Bytes stream = packed(noise(700));
    for (std::size_t cut = 0; cut < stream.size(); ++cut) {
        ASSERT_FALSE(ZlibInflater().expanded(std::span(stream).first(cut), 1000)) << cut;
    }
}

TEST(ZlibInflater, EveryFlippedByteGivesNothingOrTheSame) {
    const Bytes plain = noise(300);
    const Bytes stream = packed(plain);
    for (std::size_t at = 0; at < stream.size(); ++at) {
        Bytes damaged = stream;
        damaged[at] ^= std::byte{0xFF};
        const auto answer = ZlibInflater().expanded(damaged, 1000);
        ASSERT_TRUE(!answer || *answer == plain) << at;
    }
}

}  // namespace
}  // namespace qrx::platform
