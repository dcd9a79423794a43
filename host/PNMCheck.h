/// Does a PNM file hold more than is printed?
#ifndef ZEL_HOST_PNMCHECK_H
#define ZEL_HOST_PNMCHECK_H

#include <string>

/// Whether another image follows the first one of a raw PBM, PGM or PPM file (netpbm's formats P4
/// to P6, whose images may stand one behind the other). False for every other file, and for one
/// that cannot be read.
[[nodiscard]] bool HasSecondPNMImage(const std::string &path);

#endif
