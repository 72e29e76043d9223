#include "nq/core/message_table.h"

#include <cstddef>
#include <iterator>

namespace {

struct Message {
  int code;
  const char* text;
};

constexpr Message kMessages[] = {
#define NQ_MESSAGE(code, text) {code, text},
#include "nq/core/message_table.def"
#undef NQ_MESSAGE
};

constexpr bool everyCodeIsItsIndex() {
  for (std::size_t i = 0; i < std::size(kMessages); ++i) {
    if (kMessages[i].code != static_cast<int>(i)) return false;
  }
  return true;
}

static_assert(std::size(kMessages) == 52);
static_assert(everyCodeIsItsIndex());

}  // namespace

const char* getStringResource(int index) {
  if (index < 0 || index >= static_cast<int>(std::size(kMessages))) return "";
  return kMessages[index].text;
}
