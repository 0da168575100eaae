// Reading the sample pictures of tests/data/imageio.
#pragma once

#include <string>
#include <vector>

#include "support/temp_files.h"

namespace imageio_test {

inline std::string SamplePath(const std::string& name) {
  return std::string(IE_TEST_DATA) + "/imageio/" + name;
}

inline std::vector<std::uint8_t> ReadSample(const std::string& name) {
  return ReadFileBytes(SamplePath(name));
}

}  // namespace imageio_test
