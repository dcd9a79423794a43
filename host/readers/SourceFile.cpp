#include "host/readers/SourceFile.h"

#include "host/command/ExitStatus.h"
#include "host/readers/ImageModule.h"
#include "host/readers/PlainTIFF.h"
#include "host/readers/pdf/PDFFile.h"
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <optional>
#include <sys/stat.h>
#include <unistd.h>

namespace {

/// Readers of PDF files look for their beginning so far.
constexpr size_t kHeadBytes = 1024;

[[noreturn]] void Refuse(const std::string &path, const std::string &why) {
    throw HostError(ExitStatus::Input, path + ": " + why);
}

/// The first bytes of a regular file.
std::string ReadHead(const std::string &path) {
    struct stat info {};
    if (stat(path.c_str(), &info) != 0)
        Refuse(path, std::string(strerror(errno)) + "; check the name of the file to print");
    // Anything else could block, or end only when the power does.
    if (!S_ISREG(info.st_mode)) Refuse(path, "not a regular file; name an image or a PDF");
    if (info.st_size == 0) Refuse(path, "the file is empty");
    const int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) Refuse(path, std::string(strerror(errno)) + "; check its permissions");
    char head[kHeadBytes];
    const ssize_t count = read(fd, head, sizeof head);
    (void)close(fd);
    if (count < 0) Refuse(path, strerror(errno));
    return std::string(head, static_cast<size_t>(count));
}

/// Byte order, then 42 (or 43: BigTIFF) in it.
bool IsTIFF(const std::string &head) {
    if (head.size() < 4) return false;
    const bool little = head[0] == 'I' && head[1] == 'I';
    const bool big = head[0] == 'M' && head[1] == 'M';
    const char version = little ? head[2] : head[3];
    const char zero = little ? head[3] : head[2];
    return (little || big) && zero == 0 && (version == 42 || version == 43);
}

bool IsPNM(const std::string &head) {
    return head.size() > 2 && head[0] == 'P' && strchr("123456fF", head[1]) &&
           strchr(" \t\r\n#", head[2]);
}

/// A program, whose pages nobody can count or put in their place before it has run.
bool IsPostScript(const std::string &head) {
    return head.compare(0, 2, "%!") == 0 || head.compare(0, 4, "\xC5\xD0\xD3\xC6") == 0;
}

std::optional<FileKind> KindOf(const std::string &head) {
    const auto starts = [&head](const char *magic, size_t size) {
        return head.compare(0, size, magic, size) == 0;
    };
    if (IsTIFF(head)) return FileKind::TIFF;
    if (starts("\x89PNG\r\n\x1a\n", 8)) return FileKind::PNG;
    if (starts("\xff\xd8\xff", 3)) return FileKind::JPEG;
    if (head.find("%PDF-") != std::string::npos) return FileKind::PDF;
    if (IsPNM(head)) return FileKind::PNM;
    return std::nullopt;
}

} // namespace

SourceFile::SourceFile(std::string path, PDFOptions options)
    : mPath(std::move(path)), mOptions(std::move(options)) {
    const std::string head = ReadHead(mPath);
    const std::optional<FileKind> kind = KindOf(head);
    if (!kind && IsPostScript(head))
        Refuse(mPath, "PostScript and EPS are programs, whose pages cannot be counted or placed "
                      "before they run; convert it to PDF, with ps2pdf");
    if (!kind) Refuse(mPath, "not a TIFF, PNG, JPEG, PNM or PDF file; convert it to one of these");
    mKind = *kind;
    if (mKind == FileKind::TIFF) mPlain = OpenPlainTIFF(mPath);
}

ImageFile &SourceFile::Any() const {
    if (mPlain) return *mPlain;
    return Full();
}

ImageFile &SourceFile::Full() const {
    if (!mFull && mKind == FileKind::PDF)
        mFull = std::make_unique<PDFFile>(mPath, mOptions);
    else if (!mFull)
        mFull = OpenWithModule(mPath, mKind);
    return *mFull;
}

int SourceFile::PageCount() const {
    return Any().PageCount();
}

SourcePage SourceFile::Describe(int page) const {
    return Any().Describe(page);
}

PageImage SourceFile::OpenPage(int page, const PageTarget &target) const {
    if (mPlain) {
        PageImage image = mPlain->OpenPage(page, target);
        if (image.rows) return image;
    }
    return Full().OpenPage(page, target);
}

void SourceFile::Finish() const {
    if (mPlain) mPlain->Finish();
    if (mFull) mFull->Finish();
}
