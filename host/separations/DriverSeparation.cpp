#include "host/separations/DriverSeparation.h"

#include "host/separations/Separations.h"
#include "host/terminal/ExitStatus.h"

DriverSeparation::DriverSeparation(const DriverBundle &bundle, const std::string &name)
    : mBundle(bundle) {
    // What is created must be released, and separates.
    (void)ZEL_CALL(bundle, ZELPrReleaseSeparation);
    (void)ZEL_CALL(bundle, ZELPrSeparate);
    const int32_t code =
        ZEL_CALL(bundle, ZELPrCreateSeparation)(MakeCFString(name).Get(), &mSeparation);
    if (code == kZELOutOfMemory) throw HostError(ExitStatus::Driver, "out of memory");
    if (code != kZELNoError)
        throw HostError(ExitStatus::Input, "the separation \"" + name + "\" cannot be loaded: " +
                                               SeparationProblem(bundle, name));
}

DriverSeparation::~DriverSeparation() {
    mBundle.Functions().ZELPrReleaseSeparation(mSeparation);
}

void DriverSeparation::Separate(const uint8_t *light, size_t count, uint8_t *ink) const {
    mBundle.Functions().ZELPrSeparate(mSeparation, light, count, ink);
}
