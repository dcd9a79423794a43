// Numbers and booleans.
#include "CFBridge.h"
#include <cmath>
#include <cstring>
#include <limits>

static NSNumber *Number(CFTypeRef cf) { return As<NSNumber>([NSNumber class], cf); }

bool IsFloat(NSNumber *number) {
    const char type = number ? *[number objCType] : 0;
    return type == 'd' || type == 'f';
}

static int64_t IntegerFromDouble(double value, bool *exact) {
    constexpr double limit = 9223372036854775808.0; // 2^63
    *exact = value >= -limit && value < limit && std::trunc(value) == value;
    if (std::isnan(value)) return 0;
    if (value >= limit) return std::numeric_limits<int64_t>::max();
    if (value < -limit) return std::numeric_limits<int64_t>::min();
    return (int64_t)value;
}

int64_t IntegerValue(NSNumber *number, bool *exact) {
    if (IsFloat(number)) return IntegerFromDouble([number doubleValue], exact);
    const bool isUnsigned = number && *[number objCType] == 'Q';
    *exact = !isUnsigned || [number unsignedLongLongValue] >> 63 == 0;
    return *exact ? [number longLongValue] : std::numeric_limits<int64_t>::max();
}

namespace {

template <class T> NSNumber *FromInteger(const void *valuePtr) {
    T value;
    std::memcpy(&value, valuePtr, sizeof value);
    // Never numberWithChar: it may answer a boolean.
    return [NSNumber numberWithLongLong:value];
}

template <class T> NSNumber *FromFloat(const void *valuePtr) {
    T value;
    std::memcpy(&value, valuePtr, sizeof value);
    return [NSNumber numberWithDouble:(double)value];
}

template <class T> Boolean StoreInteger(NSNumber *number, void *valuePtr) {
    bool exact = false;
    const int64_t wide = IntegerValue(number, &exact);
    constexpr int64_t low = std::numeric_limits<T>::min();
    constexpr int64_t high = std::numeric_limits<T>::max();
    const T value = (T)(wide < low ? low : wide > high ? high : wide);
    std::memcpy(valuePtr, &value, sizeof value);
    return exact && value == wide;
}

template <class T> Boolean StoreFloat(NSNumber *number, void *valuePtr) {
    const double wide = [number doubleValue];
    const T value = (T)wide;
    std::memcpy(valuePtr, &value, sizeof value);
    return (double)value == wide || std::isnan(wide);
}

NSNumber *MakeNumber(CFNumberType type, const void *valuePtr) {
    switch (type) {
        case kCFNumberSInt8Type:
        case kCFNumberCharType:
            return FromInteger<SInt8>(valuePtr);
        case kCFNumberSInt16Type:
        case kCFNumberShortType:
            return FromInteger<SInt16>(valuePtr);
        case kCFNumberSInt32Type:
        case kCFNumberIntType:
            return FromInteger<SInt32>(valuePtr);
        case kCFNumberSInt64Type:
        case kCFNumberLongType:
        case kCFNumberLongLongType:
        case kCFNumberCFIndexType:
            return FromInteger<SInt64>(valuePtr);
        case kCFNumberFloat32Type:
        case kCFNumberFloatType:
            return FromFloat<float>(valuePtr);
        case kCFNumberFloat64Type:
        case kCFNumberDoubleType:
            return FromFloat<double>(valuePtr);
        default:
            return nil;
    }
}

Boolean StoreNumber(NSNumber *number, CFNumberType type, void *valuePtr) {
    switch (type) {
        case kCFNumberSInt8Type:
        case kCFNumberCharType:
            return StoreInteger<SInt8>(number, valuePtr);
        case kCFNumberSInt16Type:
        case kCFNumberShortType:
            return StoreInteger<SInt16>(number, valuePtr);
        case kCFNumberSInt32Type:
        case kCFNumberIntType:
            return StoreInteger<SInt32>(number, valuePtr);
        case kCFNumberSInt64Type:
        case kCFNumberLongType:
        case kCFNumberLongLongType:
        case kCFNumberCFIndexType:
            return StoreInteger<SInt64>(number, valuePtr);
        case kCFNumberFloat32Type:
        case kCFNumberFloatType:
            return StoreFloat<float>(number, valuePtr);
        case kCFNumberFloat64Type:
        case kCFNumberDoubleType:
            return StoreFloat<double>(number, valuePtr);
        default:
            return 0;
    }
}

} // namespace

extern "C" {

CFNumberRef CFNumberCreate(CFAllocatorRef, CFNumberType theType, const void *valuePtr) {
    return (CFNumberRef)Create([&] { return MakeNumber(theType, valuePtr); });
}

Boolean CFNumberGetValue(CFNumberRef number, CFNumberType theType, void *valuePtr) {
    @autoreleasepool {
        NSNumber *object = Number(number);
        return object ? StoreNumber(object, theType, valuePtr) : 0;
    }
}

Boolean CFNumberIsFloatType(CFNumberRef number) { return IsFloat(Number(number)) ? 1 : 0; }

Boolean CFBooleanGetValue(CFBooleanRef boolean) { return [Number(boolean) boolValue] ? 1 : 0; }
}
