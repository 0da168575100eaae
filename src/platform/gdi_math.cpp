#include <cstdint>
#include <limits>

#include "platform/types.h"

int MulDiv(int number, int numerator, int denominator) {
  if (denominator == 0) return -1;
  const std::int64_t product = static_cast<std::int64_t>(number) * numerator;
  const bool negative = (product < 0) != (denominator < 0);
  const std::uint64_t magnitude = product < 0 ? 0 - static_cast<std::uint64_t>(product) : product;
  const std::uint64_t divisor = denominator < 0
                                    ? 0 - static_cast<std::uint64_t>(static_cast<std::int64_t>(denominator))
                                    : static_cast<std::uint64_t>(denominator);
  // Half away from zero: round the magnitude, then apply the sign.
  const std::uint64_t quotient = (magnitude + divisor / 2) / divisor;
  if (quotient > static_cast<std::uint64_t>(std::numeric_limits<int>::max()) + (negative ? 1 : 0)) return -1;
  return negative ? static_cast<int>(-static_cast<std::int64_t>(quotient)) : static_cast<int>(quotient);
}
