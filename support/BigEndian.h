/// Conversion between native numbers and the big-endian words that the print record stores.
#pragma once

#include <bit>
#include <cstdint>

constexpr uint16_t SwapBigEndian(uint16_t word) {
    return std::endian::native == std::endian::little ? __builtin_bswap16(word) : word;
}
constexpr uint32_t SwapBigEndian(uint32_t word) {
    return std::endian::native == std::endian::little ? __builtin_bswap32(word) : word;
}
constexpr uint64_t SwapBigEndian(uint64_t word) {
    return std::endian::native == std::endian::little ? __builtin_bswap64(word) : word;
}

/// An IEEE 754 binary64 stored most significant byte first. Every bit pattern survives, NaNs too.
constexpr double DoubleFromBigEndian(uint64_t word) {
    return std::bit_cast<double>(SwapBigEndian(word));
}
constexpr uint64_t DoubleToBigEndian(double value) {
    return SwapBigEndian(std::bit_cast<uint64_t>(value));
}

constexpr int16_t Int16FromBigEndian(int16_t word) {
    return static_cast<int16_t>(SwapBigEndian(static_cast<uint16_t>(word)));
}
constexpr int16_t Int16ToBigEndian(int16_t value) {
    return Int16FromBigEndian(value);
}
