// memcpy and memcmp for the engine in a page. The C library's hands every copy of 512 bytes or
// more to a script function (a typed array's copyWithin), and the call into script
// and back costs more than copying a row of a few kilobytes: a repaint that blits a
// 1024 x 768 view copies it row by row, hundreds of such calls for each move of a
// drag or a pan. This one copies in the engine itself: a block of kBulkCopy bytes or
// more with WebAssembly's bulk memory copy, which the browser runs as its own memmove
// (about twice as fast as a loop of vector copies on a view's rows), and a smaller one
// 16 bytes at a time with SIMD (unaligned loads and stores are allowed), which costs
// less than the instruction's own overhead. Being a strong definition it takes the
// place of the C library's weak one, for memmove's copies without overlap too. The
// C library's memcmp goes a byte at a time, and a blit compares rows before writing
// them (a row that holds its pixels already is left as it is): this one compares 16
// bytes at a time until they differ. The file is compiled with -fno-builtin so that
// the compiler does not turn its loops back into calls of memcpy or memcmp, and with
// bulk memory, which __builtin_memcpy then becomes.
#include <cstddef>
#include <cstdint>

#ifndef __wasm_bulk_memory__
#error "block_copy.cpp needs WebAssembly bulk memory (-mbulk-memory)"
#endif
#ifdef __wasm_simd128__
#include <wasm_simd128.h>
#endif

namespace {

// From this size on a copy is one bulk memory instruction.
constexpr std::size_t kBulkCopy = 256;
// Eight bytes at any address.
using UnalignedWord __attribute__((aligned(1), may_alias)) = std::uint64_t;

}  // namespace

extern "C" void* memcpy(void* __restrict dest, const void* __restrict src, std::size_t n) {
  if (n >= kBulkCopy) {
    __builtin_memcpy(dest, src, n);
    return dest;
  }
  auto* d = static_cast<unsigned char*>(dest);
  const auto* s = static_cast<const unsigned char*>(src);
#ifdef __wasm_simd128__
  for (; n >= 64; n -= 64, d += 64, s += 64) {
    const v128_t a = wasm_v128_load(s), b = wasm_v128_load(s + 16), c = wasm_v128_load(s + 32),
                 e = wasm_v128_load(s + 48);
    wasm_v128_store(d, a);
    wasm_v128_store(d + 16, b);
    wasm_v128_store(d + 32, c);
    wasm_v128_store(d + 48, e);
  }
  for (; n >= 16; n -= 16, d += 16, s += 16) wasm_v128_store(d, wasm_v128_load(s));
#endif
  for (; n >= 8; n -= 8, d += 8, s += 8)
    *reinterpret_cast<UnalignedWord*>(d) = *reinterpret_cast<const UnalignedWord*>(s);
  for (; n > 0; --n) *d++ = *s++;
  return dest;
}

extern "C" int memcmp(const void* a, const void* b, std::size_t n) {
  const auto* p = static_cast<const unsigned char*>(a);
  const auto* q = static_cast<const unsigned char*>(b);
#ifdef __wasm_simd128__
  // Up to the 16 bytes that hold the first difference, which the byte loop finds.
  for (; n >= 16; n -= 16, p += 16, q += 16) {
    if (!wasm_i8x16_all_true(wasm_i8x16_eq(wasm_v128_load(p), wasm_v128_load(q)))) break;
  }
#endif
  for (; n > 0; --n, ++p, ++q) {
    if (*p != *q) return *p - *q;
  }
  return 0;
}
