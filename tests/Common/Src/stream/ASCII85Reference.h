/// The image data encoding in its plainest form, and its inverse.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

/// The text of one image: `data` in base 85 with the writer's own final group, "~>" and a line
/// feed, in lines of 80 characters.
inline std::string ReferenceASCII85(const std::vector<uint8_t> &data) {
    std::string text;
    for (size_t i = 0; i < data.size(); i += 4) {
        const size_t count = std::min<size_t>(4, data.size() - i);
        uint32_t value = 0;
        for (size_t k = 0; k < count; ++k)
            value |= uint32_t{data[i + k]} << (24 - 8 * k);
        std::string digits; // lowest first
        for (uint32_t v = value; digits.size() < 5; v /= 85)
            digits += static_cast<char>('!' + v % 85);
        if (count == 4 && value == 0)
            text += 'z';
        else if (count == 4)
            text.append(digits.rbegin(), digits.rend());
        else
            for (size_t k = count; k > 0; --k)
                text += digits[k];
    }
    text += "~>\n";
    std::string lines;
    for (size_t i = 0; i < text.size(); i += 80) {
        lines += text.substr(i, 80);
        if (text.size() - i >= 80) lines += '\n';
    }
    return lines;
}

/// The image data of every page of a document, as text: what follows each "image" operator up to
/// the end mark, lines joined.
inline std::vector<std::string> ImageTexts(const std::string &document) {
    std::vector<std::string> images;
    for (size_t at = 0; (at = document.find("\nimage\n", at)) != std::string::npos;) {
        at += 7;
        std::string text;
        while (at < document.size() && (text.size() < 2 || text.substr(text.size() - 2) != "~>"))
            if (const char c = document[at++]; c != '\n') text += c;
        images.push_back(text);
    }
    return images;
}

/// Decodes such a text. Only whole groups: give pages a multiple of four bytes.
inline std::vector<uint8_t> DecodeASCII85(const std::string &text) {
    std::vector<uint8_t> data;
    for (size_t i = 0; i < text.size() && text[i] != '~';) {
        uint64_t value = 0;
        if (text[i] == 'z')
            ++i;
        else
            for (size_t k = 0; k < 5; ++k)
                value = value * 85 + static_cast<uint64_t>(text[i++] - '!');
        for (int shift = 24; shift >= 0; shift -= 8)
            data.push_back(static_cast<uint8_t>(value >> shift));
    }
    return data;
}
