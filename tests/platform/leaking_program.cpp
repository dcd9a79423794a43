// leaking_program KIND: makes objects of a kind and releases all of them but one, which it forgets.
// "nothing" forgets none. A build with the address sanitizer has to tell of it.
#include <CoreFoundation/CoreFoundation.h>

#include <cstdint>
#include <cstdio>
#include <functional>
#include <map>
#include <string>
#include <thread>

namespace {

constexpr int kObjects = 100;

CFStringRef MakeString() {
    return CFStringCreateWithCString(nullptr, "text that nobody keeps", kCFStringEncodingUTF8);
}

CFTypeRef MakeDictionary() {
    return CFDictionaryCreateMutable(nullptr, 0, &kCFTypeDictionaryKeyCallBacks,
                                     &kCFTypeDictionaryValueCallBacks);
}

CFTypeRef MakeNumber() {
    const double value = 595.276;
    return CFNumberCreate(nullptr, kCFNumberDoubleType, &value);
}

CFTypeRef MakeURL() {
    return CFURLCreateWithFileSystemPath(nullptr, CFSTR("/hot/page.ps"), kCFURLPOSIXPathStyle,
                                         false);
}

CFTypeRef MakeData() {
    const UInt8 bytes[] = "bytes";
    return CFDataCreate(nullptr, bytes, sizeof bytes);
}

using Maker = std::function<CFTypeRef()>;

const std::map<std::string, Maker> &Makers() {
    static const std::map<std::string, Maker> makers = {
        {"string", MakeString},
        {"array", [] { return CFArrayCreateMutable(nullptr, 0, &kCFTypeArrayCallBacks); }},
        {"dictionary", MakeDictionary},
        {"number", MakeNumber},
        {"url", MakeURL},
        {"data", MakeData},
        {"nothing", nullptr},
    };
    return makers;
}

} // namespace

int main(int argc, char **argv) {
    const auto found = Makers().find(argc == 2 ? argv[1] : "");
    if (found == Makers().end()) {
        std::fprintf(stderr, "usage: leaking_program KIND\n");
        return 2;
    }
    const bool leaks = bool(found->second);
    const Maker make = leaks ? found->second : MakeString;
    // On a stack that is gone at the end, so that no address is left there.
    std::thread([&make, leaks] {
        for (int i = 0; i < kObjects; ++i) {
            const CFTypeRef object = make();
            if (!leaks || i != kObjects / 2) CFRelease(object);
        }
    }).join();
    return 0;
}
