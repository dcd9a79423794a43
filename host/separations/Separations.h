/// CMYK separations by name.
#pragma once

#include "host/driver/Driver.h"
#include <string>
#include <vector>

/// What the driver offers, "Standard" first.
[[nodiscard]] std::vector<std::string> SeparationNames(const DriverBundle &bundle);

/// Throws HostError (Input) that lists the choices when the driver does not offer `name`.
void CheckSeparation(const DriverBundle &bundle, const std::string &name);

/// The folder of the user's separation profiles; it need not exist. Throws HostError
/// (Output) when it cannot be told.
[[nodiscard]] std::string SeparationsFolder(const DriverBundle &bundle);

/// Why the driver could not load the separation profile `name`, as far as the file tells.
[[nodiscard]] std::string SeparationProblem(const DriverBundle &bundle, const std::string &name);
