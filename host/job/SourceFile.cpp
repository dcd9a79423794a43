#include "host/job/SourceFile.h"

#include "host/readers/ImageModule.h"
#include "host/readers/PictureKinds.h"
#include "host/readers/PlainTIFF.h"
#include "host/readers/pdf/PDFFile.h"
#include "host/terminal/ExitStatus.h"
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

/// A program, whose pages nobody can count or put in their place before it has run.
bool IsPostScript(const std::string &head) {
    return head.compare(0, 2, "%!") == 0 || head.compare(0, 4, "\xC5\xD0\xD3\xC6") == 0;
}

std::optional<FileKind> KindOf(const std::string &head) {
    const std::optional<FileKind> picture = PictureKindOf(head);
    if (picture && *picture != FileKind::SVG) return picture;
    return head.find("%PDF-") != std::string::npos ? FileKind::PDF : picture;
}

} // namespace

SourceFile::SourceFile(const std::string &path, PDFOptions options, bool tolerant)
    : mInput(TakeInput(path)), mOptions(std::move(options)), mTolerant(tolerant) {
    const std::string head = ReadHead(mInput.path);
    const std::optional<FileKind> kind = KindOf(head);
    if (!kind && IsPostScript(head))
        Refuse(mInput.name, "PostScript and EPS are programs, whose pages cannot be counted or "
                            "placed before they run; convert it to PDF, with ps2pdf");
    if (!kind)
        Refuse(mInput.name, "not a TIFF, PNG, JPEG, PNM, WebP, GIF, JPEG 2000, HEIF, AVIF, SVG or "
                            "PDF file; convert it to one of these");
    mKind = *kind;
    if (mKind == FileKind::TIFF) mPlain = OpenPlainTIFF(mInput.path);
}

ImageFile &SourceFile::Any() const {
    if (mPlain) return *mPlain;
    return Full();
}

ImageFile &SourceFile::Full() const {
    if (!mFull && mKind == FileKind::PDF)
        mFull = std::make_unique<PDFFile>(mInput.path, mOptions);
    else if (!mFull)
        mFull = OpenWithModule(mInput.path, mKind, mInput.name, mTolerant);
    return *mFull;
}

void SourceFile::LookAhead() const {
    if (mKind == FileKind::PDF) (void)Full();
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

int SourceFile::FurtherFrames() const {
    return MayHoldFrames(mKind) ? Full().FurtherFrames() : 0;
}
