// Owner of one CoreFoundation object, for the platform's own C++ files.
#pragma once
#include <CoreFoundation/CoreFoundation.h>
#include <memory>
#include <type_traits>

struct Releaser {
    void operator()(CFTypeRef cf) const { CFRelease(cf); }
};

template <class T>
using Owned = std::unique_ptr<std::remove_pointer_t<T>, Releaser>;
