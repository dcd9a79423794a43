#include "host/readers/images/TIFFDamage.h"

#include "host/readers/TIFFPages.h"
#include <sstream>
#include <vips/vips.h>

namespace {

void KeepDecodersWarning(const char *module, const char *format, va_list arguments) {
    if (IsFromDecoder(module)) vips_verror(module, format, arguments);
}

} // namespace

void HearTIFFDecoders() {
    TIFFSetWarningHandler(KeepDecodersWarning);
}

Damage TakeTIFFDamage() {
    std::istringstream lines(vips_error_buffer());
    vips_error_clear();
    for (std::string line; std::getline(lines, line);) {
        const std::string module = line.substr(0, line.find(':'));
        // JPEG strips are libvips' own to decode.
        if (IsFromDecoder(module.c_str()) || module == "VipsJpeg") return {line, true};
    }
    return {};
}
