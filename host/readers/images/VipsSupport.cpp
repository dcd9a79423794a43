#include "host/readers/images/VipsSupport.h"

#include "host/readers/images/TIFFDamage.h"
#include "host/terminal/ExitStatus.h"

namespace {

void DropMessage(const gchar *, GLogLevelFlags, const gchar *, gpointer) {}

} // namespace

void StartVips() {
    if (VIPS_INIT("zelprint") != 0)
        throw HostError(ExitStatus::Driver, "cannot start libvips: " + TakeVipsError());
    // Warnings about odd files would otherwise land between our own lines. What libvips hands to
    // GLib of an absurd file is complained about there, too.
    for (const char *domain : {"VIPS", "GLib", "GLib-GObject"})
        g_log_set_handler(domain, static_cast<GLogLevelFlags>(G_LOG_LEVEL_MASK), DropMessage,
                          nullptr);
    HearTIFFDecoders();
    // Every page is read once; a cache would only keep files open.
    vips_cache_set_max(0);
}

std::string TakeVipsError() {
    std::string line;
    for (const char *c = vips_error_buffer(); *c != '\0'; ++c) {
        if (*c != '\n')
            line += *c;
        else if (c[1] != '\0')
            line += "; ";
    }
    vips_error_clear();
    return line.empty() ? "unknown error" : line;
}
