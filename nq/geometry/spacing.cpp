#include "nq/geometry/spacing.h"

#include <algorithm>

nqLong NQSpacing::calculateOuterSize(const NQSpacing& a, const NQSpacing& b,
                                     nqLong inner) {
  const nqInt64 wanted = nqInt64{a.fixed_} + b.fixed_ + inner;
  const nqInt64 share = 1000 - a.proportional_ - b.proportional_;
  if (wanted < 1 || share <= 0) return 0;
  const auto left = [&](nqInt64 size) {
    return size - size * a.proportional_ / 1000 - size * b.proportional_ / 1000;
  };
  const auto answer = [](nqInt64 size) {
    return static_cast<nqLong>(
        std::min<nqInt64>(size, std::numeric_limits<nqLong>::max()));
  };

  // Bisection from a first guess. Which of several right sizes it meets first
  // is part of the result.
  const nqInt64 guess = (wanted - 2) * 1000 / share + 1;
  const nqInt64 above = (wanted - 1) * 1000 / share + 1;
  nqInt64 low = 3 * guess - 2 * above;
  nqInt64 high = 2 * above - guess;
  nqInt64 size = guess;
  do {
    const nqInt64 got = left(size);
    if (got == wanted) return answer(size);
    (got > wanted ? high : low) = size;
    size = (low + high) / 2;
  } while (low < size && size < high);

  // What is left grows with the size, but for the two truncations: the wanted
  // size is at most two units of it away from the share.
  size = std::max<nqInt64>((wanted - 2) * 1000 / share - 1, 0);
  while (left(size) < wanted) ++size;
  return answer(size);
}

std::string NQSpacing::asText() const {
  return std::to_string(fixed_) + " + " + std::to_string(proportional_) + "/1000";
}
