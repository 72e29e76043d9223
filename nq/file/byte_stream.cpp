#include "nq/file/byte_stream.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <istream>
#include <ostream>

#include "nq/platform/system_internal.h"

NQByteSource::~NQByteSource() = default;

nqInt64 NQByteSource::size() const {
  return -1;
}

NQByteSink::~NQByteSink() = default;

NQFileCodeEnum NQByteSink::flush() {
  return NQ_FILE_OK;
}

NQMemorySource::NQMemorySource(const void* data, std::size_t length)
    : size_(data == nullptr && length > 0 ? -1 : static_cast<nqInt64>(length)) {
  if (size_ > 0) rest_ = {static_cast<const char*>(data), length};
}

NQMemorySource::NQMemorySource(std::string_view bytes)
    : NQMemorySource(bytes.data(), bytes.size()) {}

// No memory is longer than what a signed number of 64 bits can say.
NQFileCodeEnum NQMemorySource::read(char* data, std::size_t count, std::size_t& copied) {
  copied = 0;
  if (size_ < 0) return NQ_FILE_READ_ERROR;
  copied = std::min(count, rest_.size());
  if (copied > 0) std::memcpy(data, rest_.data(), copied);
  rest_.remove_prefix(copied);
  return NQ_FILE_OK;
}

nqInt64 NQMemorySource::size() const {
  return size_;
}

// A stream may be told to throw at its end, which is no failure.
NQFileCodeEnum NQStreamSource::read(char* data, std::size_t count, std::size_t& copied) {
  copied = 0;
  try {
    stream_.read(data, static_cast<std::streamsize>(count));
  } catch (...) {
    if (!stream_.eof()) return NQ_FILE_READ_ERROR;
  }
  copied = static_cast<std::size_t>(stream_.gcount());
  return stream_.bad() || (stream_.fail() && !stream_.eof()) ? NQ_FILE_READ_ERROR
                                                             : NQ_FILE_OK;
}

NQHandleSource::NQHandleSource() : NQHandleSource(nqdetail::system().standardInput()) {}

NQFileCodeEnum NQHandleSource::read(char* data, std::size_t count, std::size_t& copied) {
  copied = 0;
  if (ended_) return NQ_FILE_OK;
  const bool succeeded = nqdetail::system().read(handle_, data, count, &copied);
  ended_ = succeeded && copied == 0;
  return succeeded ? NQ_FILE_OK : NQ_FILE_READ_ERROR;
}

nqInt64 NQHandleSource::size() const {
  return nqdetail::system().fileSize(handle_);
}

NQFileCodeEnum NQStringSink::write(const char* data, std::size_t count) {
  text_.append(data, count);
  return NQ_FILE_OK;
}

NQFileCodeEnum NQStreamSink::write(const char* data, std::size_t count) {
  stream_.write(data, static_cast<std::streamsize>(count));
  return stream_ ? NQ_FILE_OK : NQ_FILE_WRITE_ERROR;
}

NQFileCodeEnum NQStreamSink::flush() {
  stream_.flush();
  return stream_ ? NQ_FILE_OK : NQ_FILE_WRITE_ERROR;
}
