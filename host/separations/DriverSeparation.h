/// The driver's own way from light to ink.
#pragma once

#include "host/driver/Driver.h"
#include <string>

class DriverSeparation {
public:
    /// Loads the separation `name` (empty: "Standard"). Throws HostError (Input) when it cannot be.
    DriverSeparation(const DriverBundle &bundle, const std::string &name);
    ~DriverSeparation();
    DriverSeparation(const DriverSeparation &) = delete;
    DriverSeparation &operator=(const DriverSeparation &) = delete;

    /// Makes C, M, Y, K of `count` pixels x, R, G, B. Any thread.
    void Separate(const uint8_t *light, size_t count, uint8_t *ink) const;

private:
    const DriverBundle &mBundle;
    ZELSeparation *mSeparation = nullptr;
};
