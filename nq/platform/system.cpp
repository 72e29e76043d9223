#include "nq/platform/system_internal.h"

namespace nqdetail {

namespace {
const System* replacementInForce = nullptr;  // null: the host's table
}

const System& system() {
  return replacementInForce == nullptr ? hostSystem() : *replacementInForce;
}

void replaceSystem(const System* replacement) {
  replacementInForce = replacement;
}

bool writeAll(Handle handle, const char* data, std::size_t count, std::size_t* written) {
  *written = 0;
  while (*written < count) {
    std::size_t transferred = 0;
    const bool succeeded =
        system().write(handle, data + *written, count - *written, &transferred);
    *written += transferred;
    if (!succeeded || transferred == 0) return false;
  }
  return true;
}

}  // namespace nqdetail
