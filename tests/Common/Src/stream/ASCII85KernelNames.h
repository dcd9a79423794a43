/// Parameters for tests that run with every base-85 kernel of this processor.
#pragma once

#include "Common/Src/stream/ASCII85.h"

#include <cctype>
#include <gtest/gtest.h>
#include <string>
#include <vector>

inline std::vector<ASCII85NamedKernel> AllASCII85Kernels() {
    const auto kernels = ASCII85Kernels();
    return {kernels.begin(), kernels.end()};
}

inline std::string ASCII85KernelTestName(const testing::TestParamInfo<ASCII85NamedKernel> &info) {
    std::string name = info.param.name;
    std::erase_if(name, [](char c) { return std::isalnum(static_cast<unsigned char>(c)) == 0; });
    return name;
}
