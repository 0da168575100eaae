// Checks the page engine's memcpy (hosts/web/block_copy.cpp), built for Node by
// scripts/build-web.sh, against a plain byte loop: every size up to 300 bytes and the
// sizes around its steps and its hand-over to script, from and to every alignment
// within 16 bytes. The bytes around the copy must stay as they were. Prints "ok", or
// the first copy that differs. Compiled with -fno-builtin, so that the byte loop stays
// a loop and is not made a call of the memcpy under test.
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <random>
#include <vector>

namespace {

constexpr std::size_t kMargin = 32;

// The sizes checked: the small ones all, then those around the steps of 64 and 16
// bytes and around 64 KiB, where copies are handed to script.
std::vector<std::size_t> Sizes() {
  std::vector<std::size_t> sizes;
  for (std::size_t n = 0; n <= 300; ++n) sizes.push_back(n);
  for (std::size_t n : {1023u, 1024u, 1025u, 4096u + 7u, 65535u, 65536u, 65537u, 200003u}) sizes.push_back(n);
  return sizes;
}

}  // namespace

int main() {
  std::mt19937 random(7);
  std::uniform_int_distribution<int> byte(0, 255);
  for (std::size_t size : Sizes()) {
    // Large copies at a few alignments only: their bytes are many already.
    const std::size_t alignments = size > 300 ? 3 : 16;
    std::vector<unsigned char> source(size + 16), target(size + 16 + 2 * kMargin), expected(target.size());
    for (std::size_t from = 0; from < alignments; ++from) {
      for (std::size_t to = 0; to < alignments; ++to) {
        for (unsigned char& b : source) b = static_cast<unsigned char>(byte(random));
        for (unsigned char& b : target) b = static_cast<unsigned char>(byte(random));
        for (std::size_t i = 0; i < target.size(); ++i) expected[i] = target[i];
        for (std::size_t i = 0; i < size; ++i) expected[kMargin + to + i] = source[from + i];
        volatile std::size_t count = size;  // not a size the compiler could see
        std::memcpy(target.data() + kMargin + to, source.data() + from, count);
        for (std::size_t i = 0; i < target.size(); ++i) {
          if (target[i] != expected[i]) {
            std::printf("size %zu from offset %zu to offset %zu: byte %zd is %d, not %d\n", size, from, to,
                        static_cast<std::ptrdiff_t>(i) - static_cast<std::ptrdiff_t>(kMargin + to), target[i],
                        expected[i]);
            return 1;
          }
        }
      }
    }
  }
  std::printf("ok\n");
  return 0;
}
