// Checks the page engine's memcpy (hosts/web/block_copy.cpp) against a byte loop:
// every size up to 300 bytes (its steps and its hand-over to the bulk copy at 256
// bytes among them) and some larger ones, between every alignment within 16 bytes,
// the bytes around the copy untouched. Prints "ok" or the first copy that differs.
// Compiled with -fno-builtin, so that the byte loop is not made a call of the memcpy
// under test.
#include <cstdio>
#include <cstring>
#include <random>
#include <vector>

int main() {
  constexpr std::size_t kMargin = 32;
  std::vector<std::size_t> sizes;
  for (std::size_t n = 0; n <= 300; ++n) sizes.push_back(n);
  for (std::size_t n : {1023u, 1024u, 1025u, 4103u, 65535u, 65536u, 65537u, 200003u}) sizes.push_back(n);
  std::mt19937 random(7);
  for (std::size_t size : sizes) {
    const std::size_t alignments = size > 300 ? 3 : 16;  // large copies have bytes enough
    std::vector<unsigned char> source(size + 16), target(size + 16 + 2 * kMargin), expected(target.size());
    for (std::size_t from = 0; from < alignments; ++from) {
      for (std::size_t to = 0; to < alignments; ++to) {
        for (unsigned char& b : source) b = static_cast<unsigned char>(random());
        for (std::size_t i = 0; i < target.size(); ++i)
          expected[i] = target[i] = static_cast<unsigned char>(random());
        for (std::size_t i = 0; i < size; ++i) expected[kMargin + to + i] = source[from + i];
        volatile std::size_t count = size;  // not a size the compiler could see
        std::memcpy(target.data() + kMargin + to, source.data() + from, count);
        for (std::size_t i = 0; i < target.size(); ++i) {
          if (target[i] != expected[i]) {
            std::printf("size %zu from %zu to %zu: byte %zu of the target differs\n", size, from, to, i);
            return 1;
          }
        }
      }
    }
  }
  std::printf("ok\n");
  return 0;
}
