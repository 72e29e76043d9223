#include <cstdio>

#include "nq/nq.h"

int main() {
  NQStringPool names(100, 100, /*caseSensitive=*/0, /*withPointers=*/0);
  NQDList codes;
  for (const char* name : {"north", "east", "NORTH", "south"}) {
    codes.appendObject(new NQLong(names.update(name)));  // equal names, equal codes
  }
  NQDList copy(codes, NQ_DEEP_COPY);  // clones the objects
  copy.reverse();
  for (const NQObject* object : copy) {
    std::printf("%s\n", names.decode(NQLong::castDown(object)->value()));
  }
  copy.deleteAllCellsAndObjects();
  codes.deleteAllCellsAndObjects();
}
