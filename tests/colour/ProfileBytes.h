/// Separation profiles made in memory, right or wrong.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <string>

/// The fields of a profile file. The rows of numbers that the header promises are written by
/// functions of their indices; unless changed, curves are straight and all inks zero.
struct ProfileBytes {
    std::string signature = "mft2";
    uint8_t inputChannels = 3;
    uint8_t outputChannels = 8;
    uint8_t gridPoints = 2;
    uint16_t inputEntries = 2;
    uint16_t outputEntries = 2;

    std::function<uint16_t(int channel, int entry)> input = [this](int, int entry) {
        return Straight(entry, inputEntries);
    };
    std::function<uint16_t(int r, int g, int b, int ink)> grid = [](int, int, int, int) {
        return uint16_t{0};
    };
    std::function<uint16_t(int ink, int entry)> output = [this](int, int entry) {
        return Straight(entry, outputEntries);
    };

    ProfileBytes() = default;
    ProfileBytes(const ProfileBytes &) = delete;
    ProfileBytes &operator=(const ProfileBytes &) = delete;

    std::string Bytes() const {
        std::string bytes = signature + std::string(4, '\0');
        bytes += {static_cast<char>(inputChannels), static_cast<char>(outputChannels),
                  static_cast<char>(gridPoints), '\0'};
        for (int i = 0; i < 9; ++i)
            AppendWords(bytes, {uint16_t(i % 4 == 0), 0});
        AppendWords(bytes, {inputEntries, outputEntries});
        for (int c = 0; c < 3; ++c)
            for (int i = 0; i < inputEntries; ++i)
                AppendWords(bytes, {input(c, i)});
        AppendGrid(bytes);
        for (int ink = 0; ink < 8; ++ink)
            for (int i = 0; i < outputEntries; ++i)
                AppendWords(bytes, {output(ink, i)});
        return bytes;
    }

private:
    static uint16_t Straight(int entry, int entries) {
        return static_cast<uint16_t>(entries < 2 ? 65535 : entry * 65535 / (entries - 1));
    }
    static void AppendWords(std::string &bytes, std::initializer_list<uint16_t> words) {
        for (uint16_t word : words)
            bytes += {static_cast<char>(word >> 8), static_cast<char>(word & 0xFF)};
    }
    void AppendGrid(std::string &bytes) const {
        for (int r = 0; r < gridPoints; ++r)
            for (int g = 0; g < gridPoints; ++g)
                for (int b = 0; b < gridPoints; ++b)
                    for (int ink = 0; ink < 8; ++ink)
                        AppendWords(bytes, {grid(r, g, b, ink)});
    }
};
