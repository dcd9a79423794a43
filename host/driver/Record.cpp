#include "host/driver/Record.h"

#include "host/terminal/ExitStatus.h"
#include <algorithm>
#include <cstring>

namespace {

void Check(int32_t code) {
    if (code != kZELNoError)
        throw HostError(ExitStatus::Driver,
                        "the driver refuses the print record (code " + std::to_string(code) + ")");
}

/// What a record has no room for is left out.
void StoreName(char (&stored)[42], const std::string &name) {
    memset(stored, 0, sizeof stored);
    memcpy(stored, name.data(), std::min(name.size(), sizeof stored - 2));
}

} // namespace

std::string RangeOfDpi() {
    return std::to_string(int{kZELMinimumDpi}) + " to " + std::to_string(int{kZELMaximumDpi}) +
           " dpi";
}

ZELRecordSettings Record::Settings() const {
    ZELRecordSettings settings = {};
    settings.size = sizeof settings;
    Check(ZEL_CALL(mBundle, ZELPrGetRecordSettings)(mHandle, &settings));
    return settings;
}

void Record::Change(const ZELRecordSettings &settings) {
    Check(ZEL_CALL(mBundle, ZELPrSetRecordSettings)(nullptr, mHandle, &settings));
}

RecordPage Record::Page() const {
    const ZELRecordSettings settings = Settings();
    const bool custom = settings.pageIsCustom != 0;
    return {custom ? "" : settings.pageName, custom, settings.pageWidth, settings.pageHeight};
}

void Record::SetPage(const RecordPage &page) {
    ZELRecordSettings settings = Settings();
    StoreName(settings.pageName, page.custom ? std::string() : page.name);
    settings.pageIsCustom = page.custom;
    settings.pageWidth = page.width;
    settings.pageHeight = page.height;
    Change(settings);
}

RecordResolution Record::Resolution() const {
    const ZELRecordSettings settings = Settings();
    return {settings.resolutionName, settings.xDpi, settings.yDpi};
}

void Record::SetResolution(const RecordResolution &resolution) {
    ZELRecordSettings settings = Settings();
    StoreName(settings.resolutionName, resolution.name);
    settings.xDpi = resolution.x;
    settings.yDpi = resolution.y;
    Change(settings);
}

void Record::SetPages(int first, int last) {
    ZELRecordSettings settings = Settings();
    settings.firstPage = first;
    settings.lastPage = last;
    Change(settings);
}

bool Record::SetSeparation(const std::string &name) {
    ZELRecordSettings settings = Settings();
    if (name.size() >= sizeof settings.separationName) return false;
    memset(settings.separationName, 0, sizeof settings.separationName);
    memcpy(settings.separationName, name.data(), name.size());
    Change(settings);
    return true;
}
