// A whole page through the page output session, beside a bare loop of `write` calls of as many
// bytes in pieces of 64 KiB. Prints the medians of alternating runs and their ratio.
//
// The bare loop writes one piece again and again, from the processor's cache. The page repeats an
// image of 1024 rows, 20 MB: with as much cache as that, or with few image rows, it also measures
// what a host sees that renders a band just before it hands it over.
//
//   page_bench [--dir FOLDER] [--runs N] [--separation NAME] [--image-rows N]
//
// The folder has to be on the file system to be measured. With a separation profile's name the
// page is also separated through that profile.
#include "Common/Src/PageOutput.h"
#include "support/CFRef.h"
#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <random>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace {

constexpr int32_t kWidth = 4960; // A4 at 600 dpi
constexpr int32_t kHeight = 7016;
constexpr int32_t kBandHeight = 128;
constexpr size_t kPiece = 65536;

/// An image without equal neighbours, as a photograph is: waves of colour and a little noise.
std::vector<uint8_t> MakePhotograph(int32_t height) {
    std::vector<uint8_t> pixels(size_t{kWidth} * static_cast<size_t>(height) * 4);
    std::minstd_rand random(1);
    std::array<uint8_t, kWidth> waves{};
    for (size_t x = 0; x < kWidth; ++x)
        waves.at(x) = static_cast<uint8_t>(110 + 100 * std::sin(static_cast<double>(x) / 300));
    uint8_t *out = pixels.data();
    for (int32_t y = 0; y < height; ++y) {
        const auto lift = static_cast<uint8_t>(y / 32);
        for (size_t x = 0; x < kWidth; ++x, out += 4) {
            const uint32_t noise = static_cast<uint32_t>(random()) >> 8;
            out[1] = static_cast<uint8_t>(waves.at(x) + lift + (noise & 7));
            out[2] = static_cast<uint8_t>(waves.at((x + 900) % kWidth) + (noise >> 3 & 7));
            out[3] = static_cast<uint8_t>(waves.at((x + 1900) % kWidth) / 2 + (noise >> 6 & 7));
        }
    }
    return pixels;
}

/// White with black marks on a tenth of it, as text is.
std::vector<uint8_t> MakeText(int32_t height) {
    std::vector<uint8_t> pixels(size_t{kWidth} * static_cast<size_t>(height) * 4, 255);
    std::minstd_rand random(2);
    for (int32_t y = 0; y < height; ++y) {
        if (y / 60 % 2 == 0) continue;
        for (int32_t x = 400; x < kWidth - 400; x += 8 + static_cast<int32_t>(random() % 40)) {
            std::memset(pixels.data() +
                            (size_t{kWidth} * static_cast<size_t>(y) + static_cast<size_t>(x)) * 4,
                        0, 32);
        }
    }
    return pixels;
}

struct Job {
    const char *name;
    int32_t colourMode; ///< as in OutputOptions
    uint16_t rowFormat; ///< of the rows that reach the writer; the host's bands are XRGB
    const char *separation;
};

struct Times {
    double wall, cpu; ///< milliseconds
};

double CPUMilliseconds() {
    timespec now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) * 1e3 + static_cast<double>(now.tv_nsec) / 1e6;
}

template <typename Action>
Times Measure(Action action) {
    const double cpu = CPUMilliseconds();
    const auto start = std::chrono::steady_clock::now();
    action();
    const std::chrono::duration<double, std::milli> wall = std::chrono::steady_clock::now() - start;
    return {wall.count(), CPUMilliseconds() - cpu};
}

double Median(std::vector<double> values) {
    std::nth_element(values.begin(), values.begin() + static_cast<ptrdiff_t>(values.size() / 2),
                     values.end());
    return values[values.size() / 2];
}

[[noreturn]] void Fail(const char *what) {
    std::perror(what);
    std::exit(1);
}

void PrintPage(const std::string &folder, const Job &job, const std::vector<uint8_t> &pixels) {
    const CFRef<CFURLRef> url(CFURLCreateFromFileSystemRepresentation(
        kCFAllocatorDefault, reinterpret_cast<const uint8_t *>(folder.data()),
        static_cast<CFIndex>(folder.size()), true));
    const CFRef<CFStringRef> separation(
        CFStringCreateWithCString(kCFAllocatorDefault, job.separation, kCFStringEncodingUTF8));
    const OutputGeometry geometry = {kWidth, kHeight, 210, 297};
    OutputOptions options = {};
    options.colourMode = job.colourMode;
    options.pixelFormat = job.rowFormat;
    options.separationName = separation.Get();
    PageOutputSession *session = nullptr;
    int16_t error =
        OpenDocument(CFSTR("page"), CFSTR("page.ps"), &geometry, kZELFormatXRGB32,
                     static_cast<int16_t>(job.rowFormat), &options, url.Get(), &session);
    if (error == 0) error = OpenPage(session, nullptr, nullptr);
    const auto imageHeight = static_cast<int32_t>(pixels.size() / (size_t{kWidth} * 4));
    for (int32_t top = 0; top < kHeight && error == 0; top += kBandHeight) {
        const ZELRect rect = {top, 0, std::min(top + kBandHeight, kHeight), kWidth};
        const uint8_t *rows =
            pixels.data() + size_t{kWidth} * 4 * static_cast<size_t>(top % imageHeight);
        const ZELBand band = {rows, rect, kWidth * 4, kZELFormatXRGB32};
        error = PrintBits(session, &band, &rect, &rect);
    }
    if (error == 0) error = ClosePage(session);
    if (error != 0) {
        std::fprintf(stderr, "the page failed with %d\n", error);
        std::exit(1);
    }
    (void)CloseDocument(session); // the size of the file is checked by the caller
}

size_t FileSize(const std::string &path) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0) Fail(path.c_str());
    return static_cast<size_t>(status.st_size);
}

void WriteBare(const std::string &path, size_t size) {
    static const std::vector<uint8_t> piece(kPiece, 'u');
    const int fd = open(path.c_str(), O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    if (fd < 0) Fail(path.c_str());
    for (size_t rest = size; rest > 0;) {
        const size_t length = std::min(kPiece, rest);
        if (write(fd, piece.data(), length) != static_cast<ssize_t>(length)) Fail("write");
        rest -= length;
    }
    close(fd);
}

void Compare(const std::string &folder, const Job &job, const std::vector<uint8_t> &pixels,
             int runs) {
    const std::string path = folder + "/page.ps";
    PrintPage(folder, job, pixels);
    const size_t size = FileSize(path);
    std::vector<double> bare;
    std::vector<double> page;
    std::vector<double> cpu;
    for (int run = 0; run < runs; ++run) {
        unlink(path.c_str()); // truncating a big file costs time of its own
        bare.push_back(Measure([&] { WriteBare(path, size); }).wall);
        unlink(path.c_str());
        const Times times = Measure([&] { PrintPage(folder, job, pixels); });
        page.push_back(times.wall);
        cpu.push_back(times.cpu);
        if (FileSize(path) != size) Fail("a page came out with another size");
    }
    unlink(path.c_str());
    std::printf("%-34s %7.1f MB  write %6.1f ms  page %6.1f ms (cpu %6.1f)  ratio %.2f\n", job.name,
                static_cast<double>(size) / 1e6, Median(bare), Median(page), Median(cpu),
                Median(page) / Median(bare));
}

} // namespace

int main(int argc, char **argv) {
    std::string folder = "/tmp";
    int runs = 11;
    int32_t imageHeight = 1024;
    const char *separation = nullptr;
    for (int i = 1; i + 1 < argc; i += 2) {
        if (std::strcmp(argv[i], "--dir") == 0)
            folder = argv[i + 1];
        else if (std::strcmp(argv[i], "--runs") == 0)
            runs = std::max(1, std::atoi(argv[i + 1]));
        else if (std::strcmp(argv[i], "--image-rows") == 0) // whole bands
            imageHeight = std::max(1, std::atoi(argv[i + 1]) / kBandHeight) * kBandHeight;
        else if (std::strcmp(argv[i], "--separation") == 0)
            separation = argv[i + 1];
    }
    folder += "/page-bench-XXXXXX";
    if (mkdtemp(folder.data()) == nullptr) Fail(folder.c_str());
    const Job rgb = {"RGB", 2, kZELFormatXRGB32, ""};
    const Job gray = {"Gray", 1, kZELFormatGray8, ""};
    const Job black = {"CMYK, black generation", 0, kZELFormatXRGB32, ""};
    const Job table = {"CMYK, separation profile", 0, kZELFormatXRGB32, separation};
    for (const bool text : {false, true}) {
        const std::vector<uint8_t> pixels =
            text ? MakeText(imageHeight) : MakePhotograph(imageHeight);
        std::puts(text ? "text page" : "photograph");
        Compare(folder, rgb, pixels, runs);
        Compare(folder, gray, pixels, runs);
        Compare(folder, black, pixels, runs);
        if (separation != nullptr) Compare(folder, table, pixels, runs);
    }
    rmdir(folder.c_str());
    return 0;
}
