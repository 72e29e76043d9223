// writer.h -- from the calls of an application to the bytes of a file.
//
// A Writer lives as long as one write and receives every writing operation of the
// file. What both encodings share stands here: ids, addresses, the output buffer;
// a room for each encoding lays out the bytes. Nothing is reported but by
// failed(): from the first piece that the file does not take, nothing more is
// sent, and a number that cannot be written, or a failure that the owner reports by
// spoil(), counts as well.
//
// Names and texts are borrowed for the call. One that is null writes nothing.

#ifndef NQ_OML_WRITING_WRITER_H
#define NQ_OML_WRITING_WRITER_H

#include <cmath>
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "nq/platform/types.h"

class NQIndexHashTable;
class NQOMLBinValue;
class NQOMLObject;
class NQOMLStatic;
class NQObject;

namespace nqdetail {

// Takes full buffers.
class OutputSink {
 public:
  // `data` is followed by a zero byte. False when it could not be written.
  virtual bool send(const char* data, std::size_t count) = 0;

 protected:
  ~OutputSink() = default;
};

// Gathers the output of one write.
class Output {
 public:
  explicit Output(OutputSink& sink)
      : sink_(sink),
        block_(new char[kBlock + 1]),
        at_(block_.get()),
        end_(block_.get() + kBlock) {}

  // A place for up to `count` bytes; what is put there counts once written() tells
  // its end.
  char* room(std::size_t count) {
    if (count > free()) makeRoom(count);
    return at_;
  }
  void written(char* end) { at_ = end; }

  void append(std::string_view bytes);
  // Sends what is gathered.
  void flush();

  // Whether a piece was not taken.
  bool failed() const { return failed_; }
  // Whether a call of the sink is under way.
  bool sending() const { return sending_; }

 private:
  // Large enough for the file to pass it on without gathering it once more.
  static constexpr std::size_t kBlock = std::size_t{1} << 18;

  std::size_t free() const { return static_cast<std::size_t>(end_ - at_); }
  void makeRoom(std::size_t count);

  OutputSink& sink_;
  std::unique_ptr<char[]> block_;
  char* at_;   // where the next byte goes
  char* end_;  // of what may be filled; one more byte follows
  bool failed_ = false;
  bool sending_ = false;
};

struct WriteSettings {
  OutputSink& sink;
  const NQOMLStatic* grammar;  // may be null in the text encoding
  const NQObject* top;         // the outermost object; never looked into
  const std::unique_ptr<NQIndexHashTable>& numbers;  // keeps written ids; may be null
  bool lossless;
};

class Writer {
 public:
  static std::unique_ptr<Writer> make(bool binary, const WriteSettings& settings);
  virtual ~Writer();
  Writer(const Writer&) = delete;
  Writer& operator=(const Writer&) = delete;

  Output& output() { return output_; }
  // Whether the file is not what it should be.
  bool failed() const { return spoiled_ || output_.failed(); }
  void spoil() { spoiled_ = true; }

  // The start of an object, with the id of `object` or without one, as for null. The
  // table of numbers gets to know the id.
  void object(const char* type, const NQObject* object, bool singleLine, bool withID);
  // A reference to `object` as it reads in `context`.
  void reference(const char* name, const NQOMLObject* object, const NQOMLObject* context,
                 bool withName);

  // The start of an object whose id is that text, or that has none when it is empty.
  virtual void objectStart(const char* type, std::string_view id, bool singleLine) = 0;
  // The same of a block of defaults, in the mode that holds.
  virtual void defaultsStart(const char* type) = 0;
  virtual void sectionStart(const char* section, bool singleLine) = 0;
  virtual void openingBracket() = 0;
  virtual void closingBracket() = 0;
  virtual void blankLine() = 0;

  // An integer of any type; one that is not 32 bits long spoils the write.
  template <class Integer>
  void anyInteger(const char* name, Integer value) {
    if (!std::in_range<nqLong>(value)) spoil();
    integer(name, static_cast<nqLong>(value));
  }

  virtual void word(const char* name, const char* word) = 0;
  virtual void integer(const char* name, nqLong value) = 0;
  virtual void real(const char* name, double value) = 0;
  virtual void string(const char* name, std::string_view text) = 0;
  virtual void ipAddress(const char* name, nqULong address) = 0;
  virtual void binaryValue(const char* name, const NQOMLBinValue& value) = 0;
  // A reference to a sibling by its number, or by an address, which begins with "$" if
  // it is one from the top; a null name is left out.
  virtual void sibling(const char* name, nqLong id) = 0;
  virtual void address(const char* name, std::string_view address) = 0;

 protected:
  explicit Writer(const WriteSettings& settings);

  bool lossless() const { return settings_.lossless; }
  // 0 for a number that is not finite, which spoils the write.
  double finite(double value) {
    if (std::isfinite(value)) return value;
    spoil();
    return 0;
  }

  Output output_;

 private:
  // What stands in the file for an object with that graphFileID().
  nqLong writtenID(const NQObject& object, nqInt64 id) {
    return lossless() ? numberOf(object) : static_cast<nqLong>(id);
  }
  // Takes a step that needs memory; what it throws spoils the write and passes through.
  template <class Step>
  void orSpoil(const Step& step) {
    try {
      step();
    } catch (...) {
      spoil();
      throw;
    }
  }
  // The number of its first mention.
  nqLong numberOf(const NQObject& object);
  // Puts the address from the top together.
  void collectAddress(const NQOMLObject& object);

  WriteSettings settings_;
  bool spoiled_ = false;
  std::unordered_map<const NQObject*, nqLong> numbers_;  // given so far
  std::string address_;                                  // being put together
};

}  // namespace nqdetail

#endif  // NQ_OML_WRITING_WRITER_H
