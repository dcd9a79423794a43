/// The printers' descriptions in the installed packages.
#pragma once

#include "tests/Quoted.h"

#include <cstdio>
#include <string>

/// Hands out one PPD file after the other, as list_ppds.py writes them.
class Corpus {
public:
    /// At most `ofEachKind` files of a kind, or all of them when it is 0.
    Corpus(const std::string &script, int ofEachKind)
        : mLeastFiles(ofEachKind > 0 ? kLeastOfKinds : kLeastOfAll),
          mPipe(popen(("python3 " + Quoted(script) + " " + std::to_string(ofEachKind)).c_str(),
                      "r")) {
        if (ofEachKind > 0)
            std::printf("Not all files, but %d of each kind, as they take too long here\n",
                        ofEachKind);
    }
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

    /// With fewer files something is not installed.
    [[nodiscard]] size_t LeastFiles() const { return mLeastFiles; }

private:
    static constexpr size_t kLeastOfAll = 5000, kLeastOfKinds = 100;

    size_t mLeastFiles;
    std::FILE *mPipe;
};
