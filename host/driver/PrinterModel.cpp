#include "host/driver/PrinterModel.h"

#include "host/driver/PPDCheck.h"
#include "host/terminal/ExitStatus.h"
#include <algorithm>
#include <strings.h>

namespace {

const void *ValueOf(CFDictionaryRef dictionary, const char *key) {
    return CFDictionaryGetValue(dictionary, MakeCFString(key).Get());
}

std::string TextOf(CFDictionaryRef dictionary, const char *key) {
    return TextOfCFString(static_cast<CFStringRef>(ValueOf(dictionary, key)));
}

double NumberOf(CFTypeRef value) {
    double number = 0;
    if (value)
        (void)CFNumberGetValue(static_cast<CFNumberRef>(value), kCFNumberFloat64Type, &number);
    return number;
}

double NumberOf(CFDictionaryRef dictionary, const char *key) {
    return NumberOf(ValueOf(dictionary, key));
}

bool FlagOf(CFDictionaryRef dictionary, const char *key) {
    const void *value = ValueOf(dictionary, key);
    return value && CFBooleanGetValue(static_cast<CFBooleanRef>(value));
}

template <typename Use>
void ForEach(CFDictionaryRef dictionary, const char *key, const Use &use) {
    const auto *list = static_cast<CFArrayRef>(ValueOf(dictionary, key));
    for (CFIndex i = 0; list && i < CFArrayGetCount(list); ++i)
        use(static_cast<CFDictionaryRef>(CFArrayGetValueAtIndex(list, i)));
}

PrinterPage PageOf(CFDictionaryRef entry) {
    PrinterPage page{TextOf(entry, "name"), TextOf(entry, "ui_name")};
    const auto *area = static_cast<CFArrayRef>(ValueOf(entry, "area"));
    if (!area || CFArrayGetCount(area) != 4) return page;
    double *const corners[] = {&page.llx, &page.lly, &page.urx, &page.ury};
    for (CFIndex i = 0; i < 4; ++i)
        *corners[i] = NumberOf(CFArrayGetValueAtIndex(area, i));
    const auto *sheet = static_cast<CFArrayRef>(ValueOf(entry, "sheet"));
    if (!sheet || CFArrayGetCount(sheet) != 2) return page;
    page.sheetWidth = NumberOf(CFArrayGetValueAtIndex(sheet, 0));
    page.sheetHeight = NumberOf(CFArrayGetValueAtIndex(sheet, 1));
    return page;
}

PrinterModel ModelOf(CFDictionaryRef info) {
    PrinterModel model;
    model.colour = FlagOf(info, "colour");
    model.level2 = FlagOf(info, "level2");
    ForEach(info, "pages", [&](CFDictionaryRef page) { model.pages.push_back(PageOf(page)); });
    ForEach(info, "resolutions", [&](CFDictionaryRef entry) {
        model.resolutions.push_back({TextOf(entry, "name"), TextOf(entry, "ui_name"),
                                     NumberOf(entry, "x_dpi"), NumberOf(entry, "y_dpi")});
    });
    model.defaultPage = static_cast<size_t>(NumberOf(info, "default_page"));
    model.defaultResolution = static_cast<size_t>(NumberOf(info, "default_resolution"));
    if (const auto *custom = static_cast<CFDictionaryRef>(ValueOf(info, "custom")))
        model.custom = CustomLimits{NumberOf(custom, "min_width"), NumberOf(custom, "max_width"),
                                    NumberOf(custom, "min_height"), NumberOf(custom, "max_height")};
    return model;
}

template <typename T>
const T *Find(const std::vector<T> &list, const std::string &text) {
    const auto byName = [&](const T &entry) { return entry.name == text; };
    const auto byUIName = [&](const T &entry) { return entry.uiName == text; };
    const auto byEither = [&](const T &entry) {
        return strcasecmp(entry.name.c_str(), text.c_str()) == 0 ||
               strcasecmp(entry.uiName.c_str(), text.c_str()) == 0;
    };
    auto found = std::find_if(list.begin(), list.end(), byName);
    if (found == list.end()) found = std::find_if(list.begin(), list.end(), byUIName);
    if (found == list.end()) found = std::find_if(list.begin(), list.end(), byEither);
    return found == list.end() ? nullptr : &*found;
}

} // namespace

const PrinterPage *PrinterModel::FindPage(const std::string &text) const {
    return Find(pages, text);
}

const PrinterResolution *PrinterModel::FindResolution(const std::string &text) const {
    return Find(resolutions, text);
}

const PrinterResolution *PrinterModel::BestResolution(double x, double y) const {
    const PrinterResolution *best = nullptr;
    double bestDistance = 0;
    for (const PrinterResolution &entry : resolutions) {
        if (entry.xDpi < x || entry.yDpi < y) continue;
        const double distance =
            (entry.xDpi - x) * (entry.xDpi - x) + (entry.yDpi - y) * (entry.yDpi - y);
        if (best && distance >= bestDistance) continue;
        best = &entry;
        bestDistance = distance;
    }
    if (best) return best;
    return defaultResolution < resolutions.size() ? &resolutions[defaultResolution] : nullptr;
}

SessionPrinter PrinterOf(const DriverSession &session) {
    CFOwner<CFURLRef> url;
    const CFOwner<CFDictionaryRef> info(
        ZEL_CALL(session.Bundle(), ZELPrCopyPrinter)(session.Context(), url.Out()));
    if (!info) throw HostError(ExitStatus::Driver, "the driver does not tell its printer");
    SessionPrinter printer = {ModelOf(info.Get()), PathOfURL(url.Get())};
    printer.model.builtIn = printer.ppd.empty();
    return printer;
}

PrinterModel ReadPrinterModel(const DriverBundle &bundle, const std::string &ppd) {
    if (!ppd.empty()) CheckPPDName(ppd);
    const CFOwner<CFURLRef> url = ppd.empty() ? CFOwner<CFURLRef>() : MakeFileURL(ppd, false);
    CFOwner<CFStringRef> message;
    const CFOwner<CFDictionaryRef> info(
        ZEL_CALL(bundle, ZELPrCopyPrinterInfo)(url.Get(), message.Out()));
    if (!info) RefusePPD(ppd, message.Get());
    PrinterModel model = ModelOf(info.Get());
    model.builtIn = ppd.empty();
    return model;
}
