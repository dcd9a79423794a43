/// Owner of a CoreFoundation reference.
#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <utility>

/// Releases its reference when it goes; a copy retains. Null is allowed everywhere.
template <class T>
class CFRef {
public:
    CFRef() = default;
    /// Takes over a reference that the caller owns (from a Create or Copy function).
    explicit CFRef(T owned) : mRef(owned) {}
    /// Retains a reference that somebody else owns.
    static CFRef Retain(T ref) {
        if (ref) CFRetain(ref);
        return CFRef(ref);
    }

    CFRef(const CFRef &other) : CFRef(Retain(other.mRef)) {}
    CFRef(CFRef &&other) noexcept : mRef(std::exchange(other.mRef, nullptr)) {}
    CFRef &operator=(CFRef other) noexcept {
        std::swap(mRef, other.mRef);
        return *this;
    }
    ~CFRef() {
        if (mRef) CFRelease(mRef);
    }

    T Get() const { return mRef; }
    explicit operator bool() const { return mRef != nullptr; }
    /// Hands the reference over to the caller.
    [[nodiscard]] T Detach() { return std::exchange(mRef, nullptr); }

private:
    T mRef = nullptr;
};
