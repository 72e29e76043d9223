// Texts, a text built piece by piece, formatted numbers, and a pool of names.

#include <cstdio>

#include "nq/nq.h"

int main() {
  // No text and an empty text are two things.
  NQText title;
  std::printf("%s\n", title.pString() == nullptr ? "no title" : title.pString());
  title.pString("Stations");
  title.appendString(" of the north");

  // A handle grows as it is written to, without allocating for each piece.
  NQStringHandle report;
  report.appendString(title.pString());
  report.appendChar(':');
  for (const double length : {12.5, 3.25}) {
    nq_vs8_nqprintf(report.obtainAppendBuffer(40), " %.2f km", length);
  }
  std::printf("%s\n", report.pString());

  // A pool turns names into small numbers, which then index plain arrays.
  NQStringPool names(100, 100, /*caseSensitive=*/0, /*withPointers=*/0);
  int visits[3] = {};
  for (const char* const name : {"Hill", "Lake", "HILL", "Bridge", "lake", "hill"}) {
    ++visits[names.update(name)];
  }
  for (nqLong code = 0; code < names.decodeTableMax(); ++code) {
    std::printf("%s %d\n", names.decode(code), visits[code]);
  }
  std::printf("%s\n", names.lookup("Harbour") < 0 ? "no harbour" : "a harbour");
}
