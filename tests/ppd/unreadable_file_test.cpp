// Printer descriptions on a disk that fails: the functions of the system that they are read with
// are replaced in this program.
#include "ppd/ParserError.h"
#include "ppd/PostscriptPrinterInfo.h"
#include "tests/ppd/PPDFile.h"

#include <cerrno>
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/types.h>

namespace {

/// The first byte that cannot be read; -1: all can.
off_t gBadByte = -1;
/// Whether reading there fails, or finds the end.
bool gFails = true;
/// Which call of fstat from now on fails; 0: none.
int gFailingStat = 0;

constexpr const char *kPPD = "*PPD-Adobe: \"4.3\"\n"
                             "*LanguageLevel: \"2\"\n"
                             "*ColorDevice: True\n"
                             "*DefaultResolution: 600dpi\n"
                             "*Resolution 600dpi: \"600\"\n"
                             "*DefaultPageSize: A4\n"
                             "*PageSize A4: \"a4\"\n"
                             "*PageSize Letter: \"letter\"\n"
                             "*ImageableArea A4: \"10 10 585 832\"\n"
                             "*ImageableArea Letter: \"10 10 602 782\"\n"
                             "*Resolution 1200dpi: \"1200\"\n";

std::string ErrorOf(const PPDFile &file) {
    try {
        const PostscriptPrinterInfo printer(file.URL().Get());
    } catch (const PPD::ParserError &error) {
        return error.ErrorMessage();
    }
    return "none";
}

std::string ErrorWithBadByte(off_t byte) {
    const PPDFile file(kPPD);
    gBadByte = byte;
    std::string message = ErrorOf(file);
    gBadByte = -1;
    return message;
}

class UnreadableFile : public testing::TestWithParam<bool> {
protected:
    UnreadableFile() { gFails = GetParam(); }
};

TEST_P(UnreadableFile, IsRefusedWhereverReadingEnds) {
    const auto size = static_cast<off_t>(std::string_view(kPPD).size());
    EXPECT_EQ(ErrorWithBadByte(size), "none");
    for (off_t byte = 0; byte < size; ++byte)
        EXPECT_EQ(ErrorWithBadByte(byte), "Not a PPD file") << byte;
}

TEST(FileOfUnknownSize, IsRefused) {
    const PPDFile file(kPPD);
    int call = 1;
    for (;; ++call) {
        gFailingStat = call;
        const std::string message = ErrorOf(file);
        if (gFailingStat > 0) break; // it asks no more often
        EXPECT_EQ(message, "Not a PPD file") << call;
    }
    gFailingStat = 0;
    EXPECT_GT(call, 3); // it is read more than once
}

INSTANTIATE_TEST_SUITE_P(Read, UnreadableFile, testing::Values(true, false),
                         [](const auto &info) { return info.param ? "Fails" : "FindsNoMore"; });

} // namespace

extern "C" ssize_t pread(int fd, void *bytes, size_t count, off_t offset) {
    if (gBadByte >= 0 && offset + static_cast<off_t>(count) > gBadByte) {
        if (offset >= gBadByte) {
            errno = EIO;
            return gFails ? -1 : 0;
        }
        count = static_cast<size_t>(gBadByte - offset);
    }
    static auto *const real =
        reinterpret_cast<ssize_t (*)(int, void *, size_t, off_t)>(dlsym(RTLD_NEXT, "pread"));
    return real(fd, bytes, count, offset);
}

extern "C" int fstat(int fd, struct stat *info) noexcept {
    if (gFailingStat > 0 && --gFailingStat == 0) {
        errno = EIO;
        return -1;
    }
    static auto *const real =
        reinterpret_cast<int (*)(int, struct stat *)>(dlsym(RTLD_NEXT, "fstat"));
    return real(fd, info);
}
