/// Profiles with one thing wrong each, by name.
#pragma once

#include "tests/colour/ProfileBytes.h"
#include <utility>
#include <vector>

using NamedBytes = std::pair<std::string, std::string>;

/// Begin with the signature, and still must not load.
inline std::vector<NamedBytes> DamagedProfiles() {
    std::vector<NamedBytes> all;
    const auto add = [&all](const char *name, auto change) {
        ProfileBytes profile;
        change(profile);
        all.emplace_back(name, profile.Bytes());
    };
    add("one input channel", [](ProfileBytes &p) { p.inputChannels = 1; });
    add("four input channels", [](ProfileBytes &p) { p.inputChannels = 4; });
    add("no input channel", [](ProfileBytes &p) { p.inputChannels = 0; });
    add("four output channels", [](ProfileBytes &p) { p.outputChannels = 4; });
    add("nine output channels", [](ProfileBytes &p) { p.outputChannels = 9; });
    add("no grid points", [](ProfileBytes &p) { p.gridPoints = 0; });
    add("no input entries", [](ProfileBytes &p) { p.inputEntries = 0; });
    add("no output entries", [](ProfileBytes &p) { p.outputEntries = 0; });

    const ProfileBytes good;
    const std::string bytes = good.Bytes();
    for (size_t length = 4; length < bytes.size(); ++length)
        all.emplace_back("cut to " + std::to_string(length), bytes.substr(0, length));

    const auto promise = [&](const char *name, size_t offset, const std::string &value) {
        std::string changed = bytes;
        changed.replace(offset, value.size(), value);
        all.emplace_back(name, changed);
    };
    promise("more grid points than there are", 10, "\x03");
    promise("255 grid points that are not there", 10, "\xFF");
    promise("65535 input entries that are not there", 48, "\xFF\xFF");
    promise("65535 output entries that are not there", 50, "\xFF\xFF");
    promise("all the largest numbers", 10, "\xFF" + std::string(37, '\0') + "\xFF\xFF\xFF\xFF");
    return all;
}

/// Do not begin with the signature.
inline std::vector<NamedBytes> NoProfiles() {
    const ProfileBytes good;
    std::string other = good.Bytes();
    other[3] = '1';
    return {{"empty", ""},
            {"a byte", "m"},
            {"three bytes", "mft"},
            {"the 8-bit format", other},
            {"capitals", "MFT2" + good.Bytes().substr(4)},
            {"signature further on", " " + good.Bytes()}};
}
