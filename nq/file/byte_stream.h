// byte_stream.h -- bytes that are not a file with a name: memory, streams, pipes.
//
// A source is read and a sink is written by the operations of a file after
// NQFile::attachSource and attachSink, or whole by readers and writers of formats. Both
// are borrowed, and so is what they are made on. Derive from them for whatever else holds
// bytes.
//
// A read or write that throws counts as one that failed; no exception gets further.

#ifndef NQ_FILE_BYTE_STREAM_H
#define NQ_FILE_BYTE_STREAM_H

#include <cstddef>
#include <iosfwd>
#include <string>
#include <string_view>

#include "nq/file/file_codes.h"
#include "nq/platform/export.h"
#include "nq/platform/types.h"

class NQ_EXPORT NQByteSource {
 public:
  NQByteSource() = default;
  NQByteSource(const NQByteSource&) = delete;
  NQByteSource& operator=(const NQByteSource&) = delete;
  virtual ~NQByteSource();

  // Copies the next bytes to `data`, at least one and at most `count` (which is not 0),
  // and tells how many. None with NQ_FILE_OK is the end of the data.
  virtual NQFileCodeEnum read(char* data, std::size_t count, std::size_t& copied) = 0;
  // How many bytes there are in all, for reports on progress; -1 when that is not known.
  virtual nqInt64 size() const;
};

class NQ_EXPORT NQByteSink {
 public:
  NQByteSink() = default;
  NQByteSink(const NQByteSink&) = delete;
  NQByteSink& operator=(const NQByteSink&) = delete;
  virtual ~NQByteSink();

  // Takes all of the bytes. With any other answer than NQ_FILE_OK a part may have
  // arrived.
  virtual NQFileCodeEnum write(const char* data, std::size_t count) = 0;
  // Sends on what it gathered, if it does so; called at detach, too.
  virtual NQFileCodeEnum flush();
};

// Memory, of any length, which is not copied as a whole. Null with the length 0 is empty,
// with any other length it cannot be read.
class NQ_EXPORT NQMemorySource final : public NQByteSource {
 public:
  NQMemorySource(const void* data, std::size_t length);
  explicit NQMemorySource(std::string_view bytes);

  NQFileCodeEnum read(char* data, std::size_t count, std::size_t& copied) override;
  nqInt64 size() const override;

 private:
  std::string_view rest_;
  nqInt64 size_;  // -1 when it cannot be read
};

// A stream from where it stands, which is read in blocks: a person at a terminal is
// better served by NQHandleSource. One that has failed already cannot be read.
class NQ_EXPORT NQStreamSource final : public NQByteSource {
 public:
  explicit NQStreamSource(std::istream& stream) : stream_(stream) {}

  NQFileCodeEnum read(char* data, std::size_t count, std::size_t& copied) override;

 private:
  std::istream& stream_;
};

// A file, pipe or terminal that somebody else opened, by the system's handle (see
// system_calls.h), and standard input. Reads what has arrived and does not wait for more.
class NQ_EXPORT NQHandleSource final : public NQByteSource {
 public:
  NQHandleSource();  // standard input
  explicit NQHandleSource(void* handle) : handle_(handle) {}

  NQFileCodeEnum read(char* data, std::size_t count, std::size_t& copied) override;
  nqInt64 size() const override;

 private:
  void* handle_;
  bool ended_ = false;  // a terminal would go on behind its end
};

// Appends to a string.
class NQ_EXPORT NQStringSink final : public NQByteSink {
 public:
  explicit NQStringSink(std::string& text) : text_(text) {}

  NQFileCodeEnum write(const char* data, std::size_t count) override;

 private:
  std::string& text_;
};

class NQ_EXPORT NQStreamSink final : public NQByteSink {
 public:
  explicit NQStreamSink(std::ostream& stream) : stream_(stream) {}

  NQFileCodeEnum write(const char* data, std::size_t count) override;
  NQFileCodeEnum flush() override;

 private:
  std::ostream& stream_;
};

#endif  // NQ_FILE_BYTE_STREAM_H
