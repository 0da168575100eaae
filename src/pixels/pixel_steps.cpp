#include "pixels/pixel_steps.h"

#include <cstring>

#include "pixels/row_split.h"

// x86 processors with AVX2 add the four columns of a matrix row at once; the choice is
// made when the pass runs, so the build itself stays portable. The sums are the same
// IEEE additions in the same order whichever way they are done (this file is built
// without contraction into fused multiply-adds).
#if (defined(__x86_64__) || defined(__i386__)) && !defined(__EMSCRIPTEN__)
#include <immintrin.h>
#define IE_PIXELS_AVX2 1
#endif
// WebAssembly adds two columns at once, in the same order.
#ifdef __wasm_simd128__
#include <wasm_simd128.h>
#endif

namespace {

using Tables = PixelSteps::Tables;
using Matrix = PixelSteps::Matrix;
using Gray = PixelSteps::Gray;
using ProductRow = PixelSteps::ProductRow;

Tables TablesOf(const ByteTables& bytes) {
  Tables tables{bytes, {}};
  for (int k = 0; k < 3; ++k) {
    for (std::size_t v = 0; v < 256; ++v)
      tables.words[k][v] = static_cast<std::uint32_t>(bytes.byte[k][v]) << (8 * k);
  }
  return tables;
}

template <int Bpp>
void ApplyTables(const Tables& tables, const BYTE* in, BYTE* out, int count) {
  if constexpr (Bpp == 4) {
    // Three byte loads index the tables sooner than shifts and masks of one word load
    // do: about 30 % less time in WebAssembly, a little less natively.
    const auto& w = tables.words;
    for (int x = 0; x < count; ++x, in += 4, out += 4) {
      const std::uint32_t q = w[0][in[0]] | w[1][in[1]] | w[2][in[2]];
      std::memcpy(out, &q, 4);
    }
  } else {
    const auto& t = tables.bytes.byte;
    for (int x = 0; x < count; ++x, in += 3, out += 3) {
      out[0] = t[0][in[0]];
      out[1] = t[1][in[1]];
      out[2] = t[2][in[2]];
    }
  }
}

// The vector sums end as one word of blue, green, red and a zero byte: a 32-bit
// pixel takes it whole, a 24-bit one its three low bytes.
template <int Bpp>
[[maybe_unused]] void StorePixel(std::uint32_t word, BYTE* out) {
  if constexpr (Bpp == 4) {
    std::memcpy(out, &word, 4);
  } else {
    out[0] = static_cast<BYTE>(word);
    out[1] = static_cast<BYTE>(word >> 8);
    out[2] = static_cast<BYTE>(word >> 16);
  }
}

#ifndef __wasm_simd128__
BYTE ToByte(double v) { return v < 0 ? 0 : v > 255 ? 255 : static_cast<BYTE>(v); }

template <int Bpp>
void ApplyMatrix(const Matrix& m, const BYTE* in, BYTE* out, int count) {
  const ProductRow* t0 = m.products.data();
  const ProductRow* t1 = t0 + 256;
  const ProductRow* t2 = t0 + 512;
  for (int x = 0; x < count; ++x, in += Bpp, out += Bpp) {
    const double* a = t2[in[2]].column;
    const double* b = t1[in[1]].column;
    const double* c = t0[in[0]].column;
    BYTE bytes[3];
    for (int j = 0; j < 3; ++j) bytes[j] = ToByte(((a[j] + b[j]) + c[j]) + m.bias.column[j]);
    std::memcpy(out, bytes, 3);
    if constexpr (Bpp == 4) out[3] = 0;
  }
}
#endif

#ifdef IE_PIXELS_AVX2
// The same sums four columns at a time; column 3 adds up to 0, the fourth byte.
// Clamping to [0, 255] before truncating gives what the comparisons give.
template <int Bpp>
__attribute__((target("avx2"))) void ApplyMatrixAvx2(const Matrix& m, const BYTE* in, BYTE* out, int count) {
  const ProductRow* t0 = m.products.data();
  const ProductRow* t1 = t0 + 256;
  const ProductRow* t2 = t0 + 512;
  const __m256d bias = _mm256_load_pd(m.bias.column);
  const __m256d low = _mm256_setzero_pd();
  const __m256d high = _mm256_set1_pd(255.0);
  for (int x = 0; x < count; ++x, in += Bpp, out += Bpp) {
    const __m256d sum = _mm256_add_pd(
        _mm256_add_pd(_mm256_add_pd(_mm256_load_pd(t2[in[2]].column), _mm256_load_pd(t1[in[1]].column)),
                      _mm256_load_pd(t0[in[0]].column)),
        bias);
    const __m128i whole = _mm256_cvttpd_epi32(_mm256_min_pd(_mm256_max_pd(sum, low), high));
    const __m128i bytes = _mm_packus_epi16(_mm_packs_epi32(whole, whole), whole);
    const auto word = static_cast<std::uint32_t>(_mm_cvtsi128_si32(bytes));
    StorePixel<Bpp>(word, out);
  }
}

bool g_avx2Allowed = true;

bool UseAvx2() {
  static const bool has = __builtin_cpu_supports("avx2");
  return has && g_avx2Allowed;
}
#endif

#ifdef __wasm_simd128__
// The sums two columns at a time. Truncating with saturation and then narrowing with
// saturation keeps each byte within 0..255 as the comparisons do: a sum in (-1, 0)
// truncates to 0, one below that to a negative that narrows to 0.
template <int Bpp>
void ApplyMatrixSimd128(const Matrix& m, const BYTE* in, BYTE* out, int count) {
  const ProductRow* t0 = m.products.data();
  const ProductRow* t1 = t0 + 256;
  const ProductRow* t2 = t0 + 512;
  const v128_t biasLow = wasm_v128_load(m.bias.column);
  const v128_t biasHigh = wasm_v128_load(m.bias.column + 2);
  for (int x = 0; x < count; ++x, in += Bpp, out += Bpp) {
    const double* a = t2[in[2]].column;
    const double* b = t1[in[1]].column;
    const double* c = t0[in[0]].column;
    const v128_t low = wasm_f64x2_add(
        wasm_f64x2_add(wasm_f64x2_add(wasm_v128_load(a), wasm_v128_load(b)), wasm_v128_load(c)), biasLow);
    const v128_t high = wasm_f64x2_add(
        wasm_f64x2_add(wasm_f64x2_add(wasm_v128_load(a + 2), wasm_v128_load(b + 2)), wasm_v128_load(c + 2)),
        biasHigh);
    const v128_t whole = wasm_i32x4_shuffle(wasm_i32x4_trunc_sat_f64x2_zero(low),
                                            wasm_i32x4_trunc_sat_f64x2_zero(high), 0, 1, 4, 5);
    const v128_t shorts = wasm_i16x8_narrow_i32x4(whole, whole);
    const auto word =
        static_cast<std::uint32_t>(wasm_i32x4_extract_lane(wasm_u8x16_narrow_i16x8(shorts, shorts), 0));
    StorePixel<Bpp>(word, out);
  }
}
#endif

template <int Bpp>
void ApplyGray(const Gray& gray, const BYTE* in, BYTE* out, int count) {
  for (int x = 0; x < count; ++x, in += Bpp, out += Bpp) {
    const BYTE g = static_cast<BYTE>((gray.red[in[2]] + gray.blue[in[0]]) + gray.green[in[1]]);
    out[0] = out[1] = out[2] = g;
    if constexpr (Bpp == 4) out[3] = 0;
  }
}

// One row through one step.
template <int Bpp>
struct StepOnRow {
  const BYTE* in;
  BYTE* out;
  int count;
  bool avx2;
  void operator()(const Tables& tables) const { ApplyTables<Bpp>(tables, in, out, count); }
  void operator()(const Matrix& matrix) const {
#ifdef IE_PIXELS_AVX2
    if (avx2) return ApplyMatrixAvx2<Bpp>(matrix, in, out, count);
#endif
#ifdef __wasm_simd128__
    ApplyMatrixSimd128<Bpp>(matrix, in, out, count);
#else
    ApplyMatrix<Bpp>(matrix, in, out, count);
#endif
  }
  void operator()(const Gray& gray) const { ApplyGray<Bpp>(gray, in, out, count); }
};

template <int Bpp, typename Steps>
void RunRows(const Steps& steps, const PixelRows& rows) {
#ifdef IE_PIXELS_AVX2
  const bool avx2 = UseAvx2();
#else
  const bool avx2 = false;
#endif
  SplitRows(rows.height(), rows.width, [&](int first, int end) {
    for (int y = first; y < end; ++y) {
      const BYTE* in = rows.in[static_cast<std::size_t>(y)];
      BYTE* out = rows.out[static_cast<std::size_t>(y)];
      // The first step reads the row where it is; the others work on what it wrote.
      for (const auto& step : steps) {
        std::visit(StepOnRow<Bpp>{in, out, rows.width, avx2}, step);
        in = out;
      }
    }
  });
}

}  // namespace

void AllowAvx2([[maybe_unused]] bool allowed) {
#ifdef IE_PIXELS_AVX2
  g_avx2Allowed = allowed;
#endif
}

void PixelSteps::AddTables(const ByteTables& tables) {
  if (!steps_.empty()) {
    if (const auto* last = std::get_if<Tables>(&steps_.back())) {
      ByteTables composed;
      for (int k = 0; k < 3; ++k) {
        for (std::size_t v = 0; v < 256; ++v) composed.byte[k][v] = tables.byte[k][last->bytes.byte[k][v]];
      }
      steps_.back() = TablesOf(composed);
      return;
    }
  }
  steps_.emplace_back(TablesOf(tables));
}

void PixelSteps::AddMatrix(const ColorMatrix& matrix) {
  Matrix step{std::vector<ProductRow>(3 * 256), ProductRow{}};
  for (int k = 0; k < 3; ++k) {
    for (int v = 0; v < 256; ++v) {
      for (int j = 0; j < 3; ++j)
        step.products[static_cast<std::size_t>(256 * k + v)].column[j] = v * matrix[k][j];
    }
  }
  for (int j = 0; j < 3; ++j) step.bias.column[j] = matrix[3][j];
  steps_.emplace_back(std::move(step));
}

void PixelSteps::AddGray() {
  Gray gray;
  for (std::size_t v = 0; v < 256; ++v) {
    gray.red[v] = static_cast<double>(v) * 0.299;
    gray.green[v] = static_cast<double>(v) * 0.587;
    gray.blue[v] = static_cast<double>(v) * 0.114;
  }
  steps_.emplace_back(gray);
}

void PixelSteps::Run(PixelRows& rows) const {
  if (rows.empty() || steps_.empty()) return;
  if (rows.bytesPerPixel == 4) {
    RunRows<4>(steps_, rows);
  } else {
    RunRows<3>(steps_, rows);
  }
  rows.Written();
}
