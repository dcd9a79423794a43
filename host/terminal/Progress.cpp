#include "host/terminal/Progress.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <string>
#include <unistd.h>

namespace {

constexpr int kWidth = 30;
constexpr int64_t kInterval = 100; // milliseconds

int64_t Now() {
    using namespace std::chrono;
    return duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count();
}

} // namespace

Progress::Progress(int pages, bool quiet)
    : mPages(pages), mShown(!quiet && pages > 0 && isatty(STDERR_FILENO) != 0),
      // A job that is done at once needs no bar.
      mNext(mShown ? Now() + kInterval : 0) {}

Progress::~Progress() {
    if (mDrawn) (void)fprintf(stderr, "\r\033[K");
}

void Progress::Show(int page, int rows, int height) {
    if (!mShown) return;
    const int64_t now = Now();
    if (now < mNext) return;
    mNext = now + kInterval;
    mDrawn = true;
    const double done = (page - 1 + static_cast<double>(rows) / std::max(1, height)) / mPages;
    const int filled = std::clamp(static_cast<int>(done * kWidth), 0, kWidth);
    (void)fprintf(stderr, "\rpage %d of %d [%s%s] %3d%%", page, mPages,
                  std::string(filled, '#').c_str(), std::string(kWidth - filled, '.').c_str(),
                  static_cast<int>(done * 100));
    (void)fflush(stderr);
}
