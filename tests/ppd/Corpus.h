/// The printers' descriptions in the installed packages.
#pragma once

#include "tests/Quoted.h"

#include <cstdio>
#include <string>

/// Hands out one PPD file after the other, as list_ppds.py writes them.
class Corpus {
public:
    explicit Corpus(const std::string &script)
        : mPipe(popen(("python3 " + Quoted(script)).c_str(), "r")) {}
    ~Corpus() { Close(); }
    Corpus(const Corpus &) = delete;
    Corpus &operator=(const Corpus &) = delete;

    /// False at the end.
    bool Next(std::string &name, std::string &content) {
        char line[4096];
        if (!mPipe || !std::fgets(line, sizeof line, mPipe)) return false;
        size_t length = 0;
        int consumed = 0;
        if (std::sscanf(line, "%zu %n", &length, &consumed) != 1) return false;
        name = line + consumed;
        name.pop_back();
        content.resize(length);
        return std::fread(content.data(), 1, length, mPipe) == length;
    }

    /// Ends the script; its wait status.
    int Close() {
        const int status = mPipe ? pclose(mPipe) : -1;
        mPipe = nullptr;
        return status;
    }

private:
    std::FILE *mPipe;
};
