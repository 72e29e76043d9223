#include "nq/core/copy_protocol.h"

bool nqIsNull(const void* pointer) noexcept {
  return pointer == nullptr;
}
