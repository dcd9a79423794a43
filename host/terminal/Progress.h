/// A progress bar on standard error, if that is a terminal.
#pragma once

#include <cstdint>

class Progress {
public:
    /// `pages` to print; nothing is ever shown when `quiet`.
    Progress(int pages, bool quiet);
    /// Takes the bar away.
    ~Progress();
    Progress(const Progress &) = delete;
    Progress &operator=(const Progress &) = delete;

    /// `rows` of `height` rows of page `page` (from 1) are done. Drawn at most ten times a second.
    void Show(int page, int rows, int height);

private:
    int mPages;
    bool mShown;
    bool mDrawn = false;
    int64_t mNext = 0;
};
