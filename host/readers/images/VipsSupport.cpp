#include "host/readers/images/VipsSupport.h"

#include "host/readers/images/TIFFDamage.h"
#include "host/terminal/ExitStatus.h"
#include <atomic>
#include <cstring>
#include <iterator>

namespace {

std::atomic<bool> havePixelsBeenLost{false};

/// Lets no message land between our own lines.
void Hear(const gchar *, GLogLevelFlags, const gchar *message, gpointer) {
    if (message && std::strncmp(message, "error in tile", 13) == 0) havePixelsBeenLost = true;
}

/// Every step of libvips keeps as many rows as the larger of these, times the number of threads for
/// the strips. Its own choice of 128 rows takes a third more memory in all, and no less time.
void KeepFewRows() {
    char program[] = "zelprint";
    char tiles[] = "--vips-tile-height=24";
    char strips[] = "--vips-fatstrip-height=12";
    char *list[] = {program, tiles, strips, nullptr};
    char **arguments = list;
    int count = std::size(list) - 1;
    GOptionGroup *options = g_option_group_new("vips", "", "", nullptr, nullptr);
    vips_add_option_entries(options);
    GOptionContext *context = g_option_context_new(nullptr);
    g_option_context_set_main_group(context, options);
    (void)g_option_context_parse(context, &count, &arguments, nullptr);
    g_option_context_free(context);
}

} // namespace

void StartVips() {
    if (VIPS_INIT("zelprint") != 0)
        throw HostError(ExitStatus::Driver, "cannot start libvips: " + TakeVipsError());
    // Warnings about odd files would otherwise land between our own lines. What libvips hands to
    // GLib of an absurd file is complained about there, too. As the default: a handler for a domain
    // takes memory under GLib's lock, and GLib's complaint that there is none waits for that lock.
    g_log_set_default_handler(Hear, nullptr);
    HearTIFFDecoders();
    KeepFewRows();
    // Every page is read once; a cache would only keep files open.
    vips_cache_set_max(0);
}

bool TakeLostPixels() {
    return havePixelsBeenLost.exchange(false);
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
