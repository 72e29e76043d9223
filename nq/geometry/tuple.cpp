#include "nq/geometry/tuple.h"

NQ_COPY_FORWARDED_IMPL(NQTuple)
NQ_COPY_FORWARDED_IMPL(NQDTuple)

std::string NQTuple::asText() const {
  return "(" + std::to_string(x_) + ", " + std::to_string(y_) + ")";
}

std::string NQDTuple::asText() const {
  return "(" + nqTextOf(x_) + ", " + nqTextOf(y_) + ")";
}
