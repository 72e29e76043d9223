// Writes a text file and reads it again, asking every time how it went.

#include <cstdio>
#include <string>

#include "nq/nq.h"

namespace {

int failed(const char* what) {
  std::printf("cannot %s\n", what);
  return 1;
}

}  // namespace

int main() {
  const char name[] = "files_example.txt";

  NQTextFile out;
  if (out.open(name, NQ_WRITE) != NQ_FILE_OK) return failed("create the file");
  out.writeLine("stations");
  out.writeLine(3);
  out.writeLine(12.5, "%.3f");
  out.writeLineTrueOrFalse(1);
  // Output is gathered: only a close that succeeds says that all of it is there.
  if (out.close() != NQ_FILE_OK) return failed("write the file");

  // From now on the old file stays until the new one is whole.
  out.safeWriting(1);
  if (out.open(name, NQ_WRITE) != NQ_FILE_OK) return failed("replace the file");
  out.writeLine("half of a new file");
  out.abandon();  // something went wrong; without this, close() would replace the file
  if (out.close() == NQ_FILE_OK) return failed("keep the file");

  NQTextFile in;
  if (in.open(name, NQ_READ) != NQ_FILE_OK) return failed("open the file");
  NQStringHandle title;
  int count = 0;
  double length = 0;
  int open = 0;
  if (in.readLine(title) != NQ_FILE_OK || in.readLine(count) != NQ_FILE_OK ||
      in.readLine(length) != NQ_FILE_OK || in.readLineTrueOrFalse(open) != NQ_FILE_OK) {
    return failed("read the file");
  }
  std::printf("%d %s, %.1f km, %s\n", count, title.pString(), length,
              open != 0 ? "open" : "closed");
  // No more lines is a result like any other; an error would set error().
  const bool more = in.readLine(title) == NQ_FILE_OK;
  std::printf("%s, %s\n", more ? "more" : "no more", in.error() ? "error" : "no error");

  // The same from memory to a string.
  NQMemorySource memory("forty\n2\n");
  if (in.attachSource(memory, NQ_READ) != NQ_FILE_OK) return failed("read from memory");
  std::string text;
  NQStringSink sink(text);
  if (out.attachSink(sink, NQ_WRITE) != NQ_FILE_OK) return failed("write to a string");
  while (in.readLine(title) == NQ_FILE_OK) out.writeLine(title.pString());
  if (out.detach(0) != NQ_FILE_OK) return failed("write to a string");
  std::printf("%zu bytes\n", text.size());
  return std::remove(name);
}
