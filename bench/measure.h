// What the benchmarks measure with: milliseconds, medians and the process's peak.
#pragma once

#include <algorithm>
#include <chrono>
#include <fstream>
#include <string>
#include <vector>

using Clock = std::chrono::steady_clock;

inline double Milliseconds(Clock::duration d) { return std::chrono::duration<double, std::milli>(d).count(); }

inline double Median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  const std::size_t n = values.size();
  return n % 2 ? values[n / 2] : (values[n / 2 - 1] + values[n / 2]) / 2;
}

// The process's peak resident memory (VmHWM), -1 when it cannot be read.
inline double PeakMegabytes() {
  std::ifstream status("/proc/self/status");
  std::string line;
  while (std::getline(status, line)) {
    if (line.rfind("VmHWM:", 0) == 0) return std::stod(line.substr(6)) / 1024.0;
  }
  return -1;
}
