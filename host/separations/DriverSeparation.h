/// The driver's own way from light to ink.
#pragma once

#include "host/driver/Driver.h"
#include <string>

class DriverSeparation {
public:
    /// Loads the separation `name` (empty: "Standard"). Throws HostError (Input) when it cannot be,
    /// or makes no ink. As long as it is there, documents are separated by the table that was
    /// loaded, if its file is not a new one.
    DriverSeparation(const DriverBundle &bundle, const std::string &name);
    ~DriverSeparation();
    DriverSeparation(const DriverSeparation &) = delete;
    DriverSeparation &operator=(const DriverSeparation &) = delete;

    /// Makes C, M, Y, K of `count` pixels x, R, G, B. Any thread.
    void Separate(const uint8_t *light, size_t count, uint8_t *ink) const;

private:
    [[nodiscard]] bool MakesInk() const;

    const DriverBundle &mBundle;
    ZELSeparation *mSeparation = nullptr;
};
