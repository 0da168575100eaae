// Steps that give each pixel a new value from its own old value alone: byte tables
// (one table for each byte of a pixel), the colour matrix and the grey. Steps that
// follow each other run together, a row at a time, so the pixels are read and written
// once for all of them; the rows are split over threads (row_split.h).
#pragma once

#include <array>
#include <cstdint>
#include <variant>
#include <vector>

#include "pixels/pixel_rows.h"

using LookupTable = std::array<BYTE, 256>;
using ColorMatrix = std::array<std::array<double, 4>, 4>;
struct ByteTables {
  LookupTable byte[3];
};

// Whether the matrix step may use AVX2 where the processor has it (the default); off,
// it takes the portable way, so that tests can hold that way to the same bytes.
void AllowAvx2(bool allowed);

class PixelSteps {
 public:
  // Tables right after tables are composed into one: each byte value goes through
  // them all in order.
  void AddTables(const ByteTables& tables);
  // For j = 0, 1, 2 byte j becomes ((c2 * M[2][j] + c1 * M[1][j]) + c0 * M[0][j]) +
  // M[3][j] of the old bytes c0, c1, c2, truncated and kept within 0..255.
  void AddMatrix(const ColorMatrix& matrix);
  // All three bytes become trunc((red * 0.299 + blue * 0.114) + green * 0.587).
  void AddGray();
  // Runs the steps over every pixel of the rows, which count as written afterwards.
  void Run(PixelRows& rows) const;

  // A table step; its tables also as 32-bit words already in their byte's place.
  struct Tables {
    ByteTables bytes;
    std::array<std::array<std::uint32_t, 256>, 3> words;
  };
  // Each product c_k * M[k][j] depends on one byte, so it is looked up instead of
  // multiplied: products[256 * k + c].column[j] holds the very double c * M[k][j]
  // (column 3 is 0), and bias.column[j] is M[3][j].
  struct alignas(32) ProductRow {
    double column[4];
  };
  // What a kernel that estimates the sums in fixed point first needs (the
  // WebAssembly one: it has two double lanes where AVX2 has four): the weights and
  // bias in units of 2^-20 (when they are small enough for 32-bit sums), and the
  // bytes of each grey pixel, whose sums fall on whole numbers, where an estimate
  // never decides.
  struct Estimate {
    bool usable;
    std::int32_t weight[3][3];  // weight[k][j] multiplies byte k into byte j
    std::int32_t bias[3];
    std::array<std::uint32_t, 256> grayWords;  // the result for bytes v, v, v
  };
  struct Matrix {
    std::vector<ProductRow> products;
    ProductRow bias;
    Estimate estimate;
  };
  // The grey's products looked up as the matrix's are: red[v] is the very double
  // v * 0.299, and so on.
  struct Gray {
    std::array<double, 256> red, green, blue;
    Estimate estimate;
  };

 private:
  std::vector<std::variant<Tables, Matrix, Gray>> steps_;
};
