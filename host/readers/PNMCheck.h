/// Is a PNM file whole, and does it hold more than is printed?
#pragma once

#include <string>

/// Throws HostError (Input) when the header of a PNM file makes no sense or some of its samples are
/// missing or no numbers: libvips reads on in all these cases and gives what is not there some
/// value. Plain samples are read for it, once; of others only the number is looked at.
void CheckPNM(const std::string &path);

/// Whether another image follows the first one of a raw PBM, PGM or PPM file (netpbm's formats P4
/// to P6, whose images may stand one behind the other). False for every other file, and for one
/// that cannot be read.
[[nodiscard]] bool HasSecondPNMImage(const std::string &path);
