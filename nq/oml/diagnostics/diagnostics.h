// diagnostics.h -- errors and warnings: lines, counts and limits.
//
// Receives a code of the message table or a text, a place, and up to three
// arguments; hands each message to the virtual vErrorMessage or vWarningMessage
// of the file it works for, whose own bodies call store...() here. Lines are
// gathered in two buffers of sizes that the user chooses, or dropped.
//
// A fatal error silences everything that follows it until the next read.

#ifndef NQ_OML_DIAGNOSTICS_DIAGNOSTICS_H
#define NQ_OML_DIAGNOSTICS_DIAGNOSTICS_H

#include <cstddef>
#include <memory>

#include "nq/file/file_codes.h"
#include "nq/platform/types.h"

namespace nqdetail {

// A place in a file; line -1 means none.
struct Place {
  nqLong fileIndex = -1;
  nqLong line = -1;
  nqLong column = -1;
};

// To whom messages go, and who knows the names of files.
struct MessageSink {
  virtual const char* sourceName(nqLong fileIndex) = 0;
  virtual void error(const char* file, nqLong line, int column, int code,
                     const char* text, int fatal) = 0;
  virtual void warning(const char* file, nqLong line, int column, int code,
                       const char* text) = 0;
  // A fatal error has been reported.
  virtual void stop() = 0;

 protected:
  ~MessageSink() = default;
};

// A text of bounded size that takes whole lines, and cuts the one with which it
// is full.
class MessageBuffer {
 public:
  unsigned size() const { return size_; }
  char* text() const { return text_.get(); }
  // Replaces the buffer by an empty one of `size` bytes; 0 for none.
  void resize(unsigned size);
  void clear();
  void append(const char* line);

 private:
  std::unique_ptr<char[]> text_;
  unsigned size_ = 0;
  std::size_t length_ = 0;  // where the text ended last; its user may have cut it
};

class Diagnostics {
 public:
  explicit Diagnostics(MessageSink& sink) : sink_(sink) {}

  // Counts, result and buffers as before any message.
  void reset();

  // Messages of the table. Arguments that are null count as not given.
  void error(const Place& place, int code, const char* a1 = nullptr,
             const char* a2 = nullptr, const char* a3 = nullptr) {
    report(place, code, nullptr, a1, a2, a3, 0);
  }
  void fatalError(const Place& place, int code, const char* a1 = nullptr) {
    report(place, code, nullptr, a1, nullptr, nullptr, 1);
  }
  // The same with another text than the table's.
  void fatalError(const Place& place, int code, const char* format, const char* a1) {
    report(place, code, format, a1, nullptr, nullptr, 1);
  }
  void warning(const Place& place, int code);

  // Messages with a text of their own, in which arguments stand for each "%s";
  // without arguments it is taken as it stands. A null `file` names none.
  void error(const char* file, nqLong line, int column, int code, const char* format,
             const char* a1, const char* a2, const char* a3, int fatal);
  void warning(const char* file, nqLong line, int column, int code, const char* text);

  // What the file's own vErrorMessage and vWarningMessage do: store one line, and
  // raise a fatal error when a limit is reached.
  void storeError(const char* file, nqLong line, int column, int code, const char* text,
                  int fatal);
  void storeWarning(const char* file, nqLong line, int column, int code,
                    const char* text);

  // Whether the read has ended early: every room then gives its empty answer.
  bool ended() const { return ended_; }
  // Ends the read without a message.
  void end();
  // Takes that back.
  void resume() { ended_ = false; }
  // Whether errors keep the tree from growing and the next stage from starting.
  bool failed() const { return numberOfErrors > 0; }

  int numberOfErrors = 0;
  int numberOfWarnings = 0;
  int maxNumberOfErrors = 16;
  int maxNumberOfWarnings = 32000;
  NQFileCodeEnum errorCode = NQ_FILE_OK;
  MessageBuffer errors;
  MessageBuffer warnings;

 private:
  void report(const Place& place, int code, const char* format, const char* a1,
              const char* a2, const char* a3, int fatal);

  MessageSink& sink_;
  bool ended_ = false;
};

}  // namespace nqdetail

#endif  // NQ_OML_DIAGNOSTICS_DIAGNOSTICS_H
