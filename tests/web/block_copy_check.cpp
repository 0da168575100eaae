// Checks the page engine's memcpy and memcmp (hosts/web/block_copy.cpp) against byte
// loops: every size up to 300 bytes (its steps and its hand-over to the bulk copy at
// 256 bytes among them) and some larger ones, between every alignment within 16
// bytes, the bytes around the copy untouched; and comparisons of blocks that differ
// at every place (or nowhere) in either direction. Prints "ok" or the first case
// that differs.
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
  for (std::size_t size : {0u, 1u, 15u, 16u, 17u, 31u, 32u, 33u, 100u, 4103u}) {
    std::vector<unsigned char> a(size + 16), b(size + 16);
    for (std::size_t offset = 0; offset < 16; offset += 5) {
      for (std::size_t place = 0; place <= size; ++place) {
        for (unsigned char& x : a) x = static_cast<unsigned char>(random());
        b = a;
        // Differing at `place`, or nowhere when it is `size`; by more than 127 too,
        // where a signed byte would give the wrong sign.
        const int delta = place % 2 ? 1 : 200;
        if (place < size) b[offset + place] = static_cast<unsigned char>(a[offset + place] + delta);
        volatile std::size_t count = size;
        const int result = std::memcmp(a.data() + offset, b.data() + offset, count);
        const int expected = place < size ? a[offset + place] - b[offset + place] : 0;
        if ((result < 0) != (expected < 0) || (result == 0) != (expected == 0)) {
          std::printf("size %zu offset %zu differing at %zu: memcmp says %d\n", size, offset, place, result);
          return 1;
        }
      }
    }
  }
  std::printf("ok\n");
  return 0;
}
