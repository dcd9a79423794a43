#include "host/readers/PNMHeader.h"

#include <cmath>
#include <cstdlib>
#include <stdexcept>

namespace {

/// As for the other kinds of files. Two of them and a pixel of 12 bytes fit into 63 bits.
constexpr int kLongestSide = 10000000;
constexpr int kLargestSample = 65535;

bool IsSpace(int c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

[[noreturn]] void Refuse(const std::string &what) {
    throw std::runtime_error(what);
}

void RequireSpace(ByteReader &file) {
    if (!PassPNMSpace(file)) Refuse("its header is not one of a PNM file");
}

int HeaderNumber(ByteReader &file, const char *name, int most) {
    RequireSpace(file);
    int number = 0;
    bool any = false;
    for (; file.Peek() >= '0' && file.Peek() <= '9' && number <= most; any = true) {
        // Most is far below what ten times as much could overflow.
        number = number * 10 + (file.Next() - '0');
    }
    const bool whole = any && (IsSpace(file.Peek()) || file.Peek() == ByteReader::kEnd);
    if (!whole || number < 1 || number > most)
        Refuse(std::string(name) + " is not a number from 1 to " + std::to_string(most));
    return number;
}

/// The scale of a PFM file: its sign tells the order of bytes.
void PassScale(ByteReader &file) {
    RequireSpace(file);
    std::string word;
    while (file.Peek() != ByteReader::kEnd && !IsSpace(file.Peek()) && word.size() < 64)
        word += static_cast<char>(file.Next());
    char *end = nullptr;
    const double scale = strtod(word.c_str(), &end);
    if (word.empty() || *end != '\0' || !std::isfinite(scale) || scale == 0)
        Refuse("its scale is not a number");
}

} // namespace

int64_t PNMHeader::Samples() const {
    return width * height * (kind == '3' || kind == '6' || kind == 'F' ? 3 : 1);
}

int64_t PNMHeader::SampleBytes() const {
    if (kind == '4') return (width + 7) / 8 * height;
    return Samples() * (kind == 'f' || kind == 'F' ? 4 : most > 255 ? 2 : 1);
}

bool PassPNMSpace(ByteReader &file) {
    bool any = false;
    for (int c = file.Peek(); IsSpace(c) || c == '#'; c = file.Peek()) {
        any = true;
        (void)file.Next();
        if (c != '#') continue;
        while (file.Peek() != '\n' && file.Peek() != ByteReader::kEnd)
            (void)file.Next();
    }
    return any;
}

PNMHeader ReadPNMHeader(ByteReader &file) {
    PNMHeader header;
    const int magic = file.Next();
    const int kind = file.Next();
    if (magic != 'P' || !((kind >= '1' && kind <= '6') || kind == 'f' || kind == 'F'))
        Refuse("it does not begin as a PNM file");
    header.kind = static_cast<char>(kind);
    header.width = HeaderNumber(file, "its width", kLongestSide);
    header.height = HeaderNumber(file, "its height", kLongestSide);
    if (kind == 'f' || kind == 'F')
        PassScale(file);
    else if (!header.IsBits())
        header.most = HeaderNumber(file, "its largest sample", kLargestSample);
    // Exactly one byte of white space ends the header.
    if (!IsSpace(file.Next())) Refuse("it ends within its header");
    return header;
}

int ReadPNMNumber(ByteReader &file, int most) {
    (void)PassPNMSpace(file);
    int c = file.Peek();
    if (c == ByteReader::kEnd) Refuse("its samples end early");
    int number = 0;
    for (; c >= '0' && c <= '9' && number <= most; c = file.Peek()) {
        number = number * 10 + (c - '0');
        (void)file.Next();
    }
    if (c != ByteReader::kEnd && !IsSpace(c) && number <= most) Refuse("a sample is not a number");
    if (number > most) Refuse("a sample is larger than " + std::to_string(most));
    return number;
}

bool ReadPNMBit(ByteReader &file) {
    (void)PassPNMSpace(file);
    const int c = file.Next();
    if (c == ByteReader::kEnd) Refuse("its samples end early");
    if (c != '0' && c != '1') Refuse("a sample is neither 0 nor 1");
    return c == '1';
}
