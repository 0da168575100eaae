// Files a test writes into the temp folder, removed when the owner goes away.
#pragma once

#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "platform/platform.h"

inline std::vector<std::uint8_t> ReadFileBytes(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

class TempFiles {
 public:
  explicit TempFiles(std::string prefix) : prefix_(std::move(prefix)) {}
  ~TempFiles() {
    for (const std::string& path : paths_) std::remove(path.c_str());
  }
  TempFiles(const TempFiles&) = delete;
  TempFiles& operator=(const TempFiles&) = delete;

  // A bare file name unique to this process; its full path is then last().
  std::string Name(const std::string& name) {
    const std::string bare = prefix_ + std::to_string(::getpid()) + "_" + name;
    paths_.push_back(platform::TempFolder() + bare);
    return bare;
  }
  const std::string& last() const { return paths_.back(); }
  // Writes `data` to a new temp file; returns its full path.
  std::string Write(const std::string& name, const std::vector<std::uint8_t>& data) {
    Name(name);
    std::ofstream(last(), std::ios::binary)
        .write(reinterpret_cast<const char*>(data.data()), static_cast<std::streamsize>(data.size()));
    return last();
  }

 private:
  std::string prefix_;
  std::vector<std::string> paths_;
};
