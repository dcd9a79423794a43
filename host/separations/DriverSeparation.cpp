#include "host/separations/DriverSeparation.h"

#include "host/separations/Separations.h"
#include "host/terminal/ExitStatus.h"
#include <algorithm>
#include <iterator>

DriverSeparation::DriverSeparation(const DriverBundle &bundle, const std::string &name)
    : mBundle(bundle) {
    // What is created must be released, and separates.
    (void)ZEL_CALL(bundle, ZELPrReleaseSeparation);
    (void)ZEL_CALL(bundle, ZELPrSeparate);
    const int32_t code =
        ZEL_CALL(bundle, ZELPrCreateSeparation)(MakeCFString(name).Get(), &mSeparation);
    if (code == kZELOutOfMemory) throw HostError(ExitStatus::Driver, "out of memory");
    if (code != kZELNoError)
        throw HostError(ExitStatus::Input, kAboutSeparation,
                        "the separation \"" + name +
                            "\" cannot be loaded: " + SeparationProblem(bundle, name));
    if (!MakesInk())
        throw HostError(ExitStatus::Input, kAboutSeparation,
                        "the separation \"" + name +
                            "\" makes no ink of any colour; print again, or make it anew");
}

/// The driver separates everything to no ink by a profile that it could not read at the second
/// time.
bool DriverSeparation::MakesInk() const {
    uint8_t corners[8 * 4] = {};
    uint8_t ink[sizeof corners] = {};
    for (unsigned corner = 0; corner < 8; ++corner)
        for (unsigned light = 0; light < 3; ++light)
            corners[4 * corner + 1 + light] = (corner >> light & 1) != 0 ? 255 : 0;
    Separate(corners, 8, ink);
    return std::any_of(std::begin(ink), std::end(ink), [](uint8_t amount) { return amount != 0; });
}

DriverSeparation::~DriverSeparation() {
    mBundle.Functions().ZELPrReleaseSeparation(mSeparation);
}

void DriverSeparation::Separate(const uint8_t *light, size_t count, uint8_t *ink) const {
    mBundle.Functions().ZELPrSeparate(mSeparation, light, count, ink);
}
