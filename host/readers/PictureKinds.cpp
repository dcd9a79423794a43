#include "host/readers/PictureKinds.h"

#include <algorithm>
#include <cstring>

namespace {

bool HasAt(const std::string &head, size_t at, const char *bytes, size_t count) {
    return head.size() >= at && head.compare(at, count, bytes, count) == 0;
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

/// A file or a bare codestream.
bool IsJPEG2000(const std::string &head) {
    return HasAt(head, 0, "\0\0\0\x0CjP  \r\n\x87\n", 12) || HasAt(head, 0, "\xFF\x4F\xFF\x51", 4);
}

/// The brands of still pictures coded as HEVC or AV1.
bool IsHEIF(const std::string &head) {
    if (!HasAt(head, 4, "ftyp", 4)) return false;
    constexpr const char *kBrands[] = {"heic", "heix", "heim", "heis", "hevc",
                                       "hevx", "mif1", "msf1", "avif", "avis"};
    return std::any_of(std::begin(kBrands), std::end(kBrands),
                       [&head](const char *brand) { return HasAt(head, 8, brand, 4); });
}

/// XML whose first element, as far as can be seen, is a drawing.
bool IsSVG(const std::string &head) {
    const size_t mark = HasAt(head, 0, "\xEF\xBB\xBF", 3) ? 3 : 0;
    const size_t start = head.find_first_not_of(" \t\r\n", mark);
    if (start == std::string::npos || head[start] != '<') return false;
    const size_t element = head.find("<svg", start);
    return element != std::string::npos && element + 4 < head.size() &&
           strchr(" \t\r\n>/:", head[element + 4]);
}

} // namespace

std::optional<FileKind> PictureKindOf(const std::string &head) {
    if (IsTIFF(head)) return FileKind::TIFF;
    if (HasAt(head, 0, "\x89PNG\r\n\x1a\n", 8)) return FileKind::PNG;
    if (HasAt(head, 0, "\xff\xd8\xff", 3)) return FileKind::JPEG;
    if (IsPNM(head)) return FileKind::PNM;
    if (HasAt(head, 0, "RIFF", 4) && HasAt(head, 8, "WEBP", 4)) return FileKind::WebP;
    if (HasAt(head, 0, "GIF87a", 6) || HasAt(head, 0, "GIF89a", 6)) return FileKind::GIF;
    if (IsJPEG2000(head)) return FileKind::JPEG2000;
    if (IsHEIF(head)) return FileKind::HEIF;
    if (IsSVG(head)) return FileKind::SVG;
    return std::nullopt;
}

bool MayHoldFrames(FileKind kind) {
    return kind == FileKind::GIF || kind == FileKind::WebP || kind == FileKind::HEIF;
}
