#include "nq/geometry/size.h"

#if defined(_WIN32)
#include <windows.h>
#endif

NQ_COPY_FORWARDED_IMPL(NQSize)

NQSize::NQSize(tagSIZE record) : NQTuple(record.cx, record.cy) {}

nqLong NQSize::sizeOf() const {
  return static_cast<nqLong>(sizeof(NQSize));
}

std::string NQSize::asText() const {
  return std::to_string(width()) + " x " + std::to_string(height());
}
