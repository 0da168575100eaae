// Reading the sample pictures of tests/data/imageio.
#pragma once

#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace imageio_test {

inline std::string SamplePath(const std::string& name) {
  return std::string(IE_TEST_DATA) + "/imageio/" + name;
}

inline std::vector<std::uint8_t> ReadSample(const std::string& name) {
  std::ifstream in(SamplePath(name), std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

}  // namespace imageio_test
