#include "nq/geometry/permil.h"

NQ_COPY_OPERATIONS_IMPL(NQPerMil)

std::string NQPerMil::asText() const {
  return NQTuple(x_, y_).asText() + "/1000";
}
