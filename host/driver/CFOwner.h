/// Owner of a CoreFoundation reference.
#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <string>
#include <utility>

/// Releases the reference that it took over with its last breath. Move-only.
template <typename T>
class CFOwner {
public:
    CFOwner() = default;
    explicit CFOwner(T reference) : mReference(reference) {}
    CFOwner(CFOwner &&other) noexcept : mReference(std::exchange(other.mReference, nullptr)) {}
    CFOwner &operator=(CFOwner &&other) noexcept {
        std::swap(mReference, other.mReference);
        return *this;
    }
    CFOwner(const CFOwner &) = delete;
    CFOwner &operator=(const CFOwner &) = delete;
    ~CFOwner() {
        if (mReference) CFRelease(mReference);
    }

    [[nodiscard]] T Get() const { return mReference; }
    explicit operator bool() const { return mReference != nullptr; }
    /// Where a function that returns a new reference through a pointer puts it.
    [[nodiscard]] T *Out() { return &mReference; }

private:
    T mReference = nullptr;
};

/// A string of UTF-8 text; empty owner when the text is not UTF-8.
[[nodiscard]] CFOwner<CFStringRef> MakeCFString(const std::string &utf8);
/// UTF-8 text of a string; empty for null.
[[nodiscard]] std::string TextOfCFString(CFStringRef string);
/// A URL of a path as the file system has it.
[[nodiscard]] CFOwner<CFURLRef> MakeFileURL(const std::string &path, bool isFolder);
/// The path of a URL; empty when it has none or it is too long.
[[nodiscard]] std::string PathOfURL(CFURLRef url);
/// What a property list holds, if it is a dictionary; null for anything else, and for null.
[[nodiscard]] CFDictionaryRef AsDictionary(CFTypeRef value);
