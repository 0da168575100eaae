#include "pixels/pixel_steps.h"

#include <algorithm>
#include <cmath>
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
// WebAssembly estimates in fixed point first and sums in doubles only where the
// estimate cannot decide.
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

// The sums end as one word of blue, green, red and a zero byte: a 32-bit pixel takes
// it whole, a 24-bit one its three low bytes.
template <int Bpp>
void StorePixel(std::uint32_t word, BYTE* out) {
  if constexpr (Bpp == 4) {
    std::memcpy(out, &word, 4);
  } else {
    out[0] = static_cast<BYTE>(word);
    out[1] = static_cast<BYTE>(word >> 8);
    out[2] = static_cast<BYTE>(word >> 16);
  }
}

BYTE ToByte(double v) { return v < 0 ? 0 : v > 255 ? 255 : static_cast<BYTE>(v); }

// One pixel through the matrix, in doubles: the bytes every other way must give.
std::uint32_t MatrixWord(const Matrix& m, const BYTE* in) {
  const double* a = m.products[static_cast<std::size_t>(512 + in[2])].column;
  const double* b = m.products[static_cast<std::size_t>(256 + in[1])].column;
  const double* c = m.products[in[0]].column;
  std::uint32_t word = 0;
  for (int j = 0; j < 3; ++j)
    word |= std::uint32_t{ToByte(((a[j] + b[j]) + c[j]) + m.bias.column[j])} << (8 * j);
  return word;
}

std::uint32_t GrayWord(const Gray& gray, const BYTE* in) {
  const auto g = static_cast<BYTE>((gray.red[in[2]] + gray.blue[in[0]]) + gray.green[in[1]]);
  return g * 0x010101u;
}

#ifndef __wasm_simd128__
template <int Bpp>
void ApplyMatrix(const Matrix& m, const BYTE* in, BYTE* out, int count) {
  for (int x = 0; x < count; ++x, in += Bpp, out += Bpp) StorePixel<Bpp>(MatrixWord(m, in), out);
}

template <int Bpp>
void ApplyGray(const Gray& gray, const BYTE* in, BYTE* out, int count) {
  for (int x = 0; x < count; ++x, in += Bpp, out += Bpp) StorePixel<Bpp>(GrayWord(gray, in), out);
}
#endif

// The weights of `weights` (byte k into byte j, bias in row 3) in fixed point with
// 20 fraction bits (a shift by a number known only when the pass runs costs
// WebAssembly about three times the whole estimate). Rounding each weight and the
// bias to a unit puts an estimated sum at most 3 * 255 / 2 + 1 / 2 units from the exact
// one, and the doubles' sum is within a small fraction of a unit of that, so it lies
// strictly within the margin of the estimate. The estimate is usable when every sum
// and the margin around it fit in 32 bits: S = sum(255 |weight|) + |bias| below 2^11
// for each byte, as it is for every hue and saturation.
inline constexpr int kEstimateShift = 20;
inline constexpr std::int32_t kEstimateMargin = 512;

template <typename Word>
PixelSteps::Estimate EstimateOf(const ColorMatrix& weights, const Word& word) {
  PixelSteps::Estimate estimate{};
  for (std::size_t v = 0; v < 256; ++v) {
    const BYTE grey[3] = {static_cast<BYTE>(v), static_cast<BYTE>(v), static_cast<BYTE>(v)};
    estimate.grayWords[v] = word(grey);
  }
  double largest = 0;
  for (int j = 0; j < 3; ++j) {
    double sum = std::fabs(weights[3][j]);
    for (int k = 0; k < 3; ++k) sum += 255.0 * std::fabs(weights[k][j]);
    largest = std::max(largest, sum);
  }
  estimate.usable = std::ldexp(largest + 1, kEstimateShift) + 2 * kEstimateMargin < 0x1p31;
  if (!estimate.usable) return estimate;
  const auto unit = [](double value) {
    return static_cast<std::int32_t>(std::lround(std::ldexp(value, kEstimateShift)));
  };
  for (int j = 0; j < 3; ++j) {
    for (int k = 0; k < 3; ++k) estimate.weight[k][j] = unit(weights[k][j]);
    estimate.bias[j] = unit(weights[3][j]);
  }
  return estimate;
}

#ifdef __wasm_simd128__
// WebAssembly adds two doubles at once where AVX2 adds four, so each byte is first
// estimated in fixed point, four pixels at once, and the doubles are summed only for
// pixels whose estimate cannot decide: where a whole number lies within the margin of
// the estimate. That is about one group of four in a hundred, except for grey pixels,
// whose sums fall on whole numbers and are looked up.
template <int Bpp>
v128_t LoadFour(const BYTE* in) {
  if constexpr (Bpp == 4) {
    return wasm_v128_load(in);
  } else {
    alignas(16) BYTE bytes[16] = {};
    std::memcpy(bytes, in, 12);
    const v128_t packed = wasm_v128_load(bytes);
    return wasm_i8x16_shuffle(packed, packed, 0, 1, 2, 15, 3, 4, 5, 15, 6, 7, 8, 15, 9, 10, 11, 15);
  }
}

template <int Bpp>
void StoreFour(v128_t words, BYTE* out) {
  if constexpr (Bpp == 4) {
    wasm_v128_store(out, words);
  } else {
    alignas(16) BYTE bytes[16];
    wasm_v128_store(bytes,
                    wasm_i8x16_shuffle(words, words, 0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, 0, 0, 0, 0));
    std::memcpy(out, bytes, 12);
  }
}

// The estimate's numbers in every lane, taken once a row: the compiler must assume
// that a byte written to a pixel may change them, and would otherwise read them again
// for every four pixels.
struct EstimateLanes {
  v128_t weight[3][3];
  v128_t bias[3];
  explicit EstimateLanes(const PixelSteps::Estimate& e) {
    for (int j = 0; j < 3; ++j) {
      for (int k = 0; k < 3; ++k) weight[k][j] = wasm_i32x4_splat(e.weight[k][j]);
      bias[j] = wasm_i32x4_splat(e.bias[j]);
    }
  }
};

// Byte j of four pixels with bytes c0, c1, c2: the floor of the estimate less the
// margin; the lanes where the floor of the estimate plus the margin differs are
// marked in *unsure.
v128_t EstimateByte(const EstimateLanes& e, int j, v128_t c0, v128_t c1, v128_t c2, v128_t* unsure) {
  const v128_t sum = wasm_i32x4_add(
      wasm_i32x4_add(wasm_i32x4_add(wasm_i32x4_mul(c2, e.weight[2][j]), wasm_i32x4_mul(c1, e.weight[1][j])),
                     wasm_i32x4_mul(c0, e.weight[0][j])),
      e.bias[j]);
  const v128_t margin = wasm_i32x4_splat(kEstimateMargin);
  const v128_t low = wasm_i32x4_shr(wasm_i32x4_sub(sum, margin), kEstimateShift);
  const v128_t high = wasm_i32x4_shr(wasm_i32x4_add(sum, margin), kEstimateShift);
  *unsure = wasm_v128_or(*unsure, wasm_i32x4_ne(low, high));
  return low;
}

// `Grey` steps give one byte three times, so only byte 0 is estimated.
template <int Bpp, bool Grey, typename Exact>
void EstimateThenSum(const PixelSteps::Estimate& e, const Exact& exact, const BYTE* in, BYTE* out,
                     int count) {
  const auto exactPixel = [&](const BYTE* from, BYTE* to) {
    const bool grey = from[0] == from[1] && from[1] == from[2];
    StorePixel<Bpp>(grey ? e.grayWords[from[0]] : exact(from), to);
  };
  int x = 0;
  if (e.usable) {
    const EstimateLanes lanes(e);
    const v128_t byteMask = wasm_i32x4_splat(0xFF);
    const v128_t zero = wasm_i32x4_splat(0);
    for (; x + 4 <= count; x += 4, in += 4 * Bpp, out += 4 * Bpp) {
      const v128_t words = LoadFour<Bpp>(in);
      const v128_t c0 = wasm_v128_and(words, byteMask);
      const v128_t c1 = wasm_v128_and(wasm_u32x4_shr(words, 8), byteMask);
      const v128_t c2 = wasm_v128_and(wasm_u32x4_shr(words, 16), byteMask);
      v128_t unsure = zero;
      const v128_t b0 = EstimateByte(lanes, 0, c0, c1, c2, &unsure);
      const v128_t b1 = Grey ? b0 : EstimateByte(lanes, 1, c0, c1, c2, &unsure);
      const v128_t b2 = Grey ? b0 : EstimateByte(lanes, 2, c0, c1, c2, &unsure);
      if (wasm_v128_any_true(unsure)) {
        for (int i = 0; i < 4; ++i) exactPixel(in + i * Bpp, out + i * Bpp);
        continue;
      }
      // Narrowing with saturation keeps each byte within 0..255 as ToByte does. The
      // bytes come out as four blues, four greens, four reds and four zeros.
      const v128_t bytes =
          wasm_u8x16_narrow_i16x8(wasm_i16x8_narrow_i32x4(b0, b1), wasm_i16x8_narrow_i32x4(b2, zero));
      StoreFour<Bpp>(wasm_i8x16_shuffle(bytes, bytes, 0, 4, 8, 12, 1, 5, 9, 12, 2, 6, 10, 12, 3, 7, 11, 12),
                     out);
    }
  }
  for (; x < count; ++x, in += Bpp, out += Bpp) exactPixel(in, out);
}

template <int Bpp>
void ApplyMatrix(const Matrix& m, const BYTE* in, BYTE* out, int count) {
  EstimateThenSum<Bpp, false>(
      m.estimate, [&m](const BYTE* from) { return MatrixWord(m, from); }, in, out, count);
}

template <int Bpp>
void ApplyGray(const Gray& gray, const BYTE* in, BYTE* out, int count) {
  EstimateThenSum<Bpp, true>(
      gray.estimate, [&gray](const BYTE* from) { return GrayWord(gray, from); }, in, out, count);
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
    ApplyMatrix<Bpp>(matrix, in, out, count);
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
  step.estimate = EstimateOf(matrix, [&step](const BYTE* in) { return MatrixWord(step, in); });
  steps_.emplace_back(std::move(step));
}

void PixelSteps::AddGray() {
  Gray gray;
  for (std::size_t v = 0; v < 256; ++v) {
    gray.red[v] = static_cast<double>(v) * 0.299;
    gray.green[v] = static_cast<double>(v) * 0.587;
    gray.blue[v] = static_cast<double>(v) * 0.114;
  }
  // Byte 0 is the one estimated; the weights go by byte: blue, green, red.
  gray.estimate =
      EstimateOf(ColorMatrix{{{0.114, 0, 0, 0}, {0.587, 0, 0, 0}, {0.299, 0, 0, 0}, {0, 0, 0, 0}}},
                 [&gray](const BYTE* in) { return GrayWord(gray, in); });
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
