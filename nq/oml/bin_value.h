// bin_value.h -- the bytes of a binary value of an OML file.
//
// The object owns its buffer; pointers into it stay valid until the value grows,
// is emptied or dies. The bytes are not terminated. An operation for which
// memory is lacking, or whose result would be longer than the largest nqLong,
// changes nothing.

#ifndef NQ_OML_BIN_VALUE_H
#define NQ_OML_BIN_VALUE_H

#include <memory>

#include "nq/core/copy_protocol.h"

class NQ_EXPORT NQOMLBinValue : public NQObject {
  NQ_COPY_PROTOCOL(NQOMLBinValue)

 public:
  // A value of `length` bytes, copied from `bytes`; zero bytes when `bytes` is
  // null, and an empty value when `length` is below 1.
  explicit NQOMLBinValue(nqLong length = 0, const char* bytes = nullptr);
  ~NQOMLBinValue() override;

  nqLong length() const { return length_; }
  // The size of the buffer, never less than length().
  nqLong capacity() const { return capacity_; }
  // The buffer; null for an empty value.
  const char* pByteSequence() const { return bytes_.get(); }

  // Makes the value `length` bytes long and copies them from `bytes`, which may
  // lie in this value. The buffer is kept when it suffices, else replaced by one
  // of exactly that size. With null for `bytes` a kept buffer keeps its contents
  // and a new one holds zeros. A length below 1 frees the buffer.
  void fill(nqLong length, const char* bytes);
  // Appends the bytes of `other`, which may be this value. A buffer that does not
  // suffice is replaced by one of exactly the new size, so joining many pieces
  // in this way costs the square of their number. Null or an empty value changes
  // nothing.
  void concat(const NQOMLBinValue* other);

  // fill(length, nullptr); returns the new length.
  nqLong length(nqLong length);
  // Overwrites the value with length() bytes from `bytes` (null: no change) and
  // returns the buffer.
  char* pByteSequence(const char* bytes);

 protected:
  void init();

 private:
  void copyFields(const NQOMLBinValue& source);

  std::unique_ptr<char[]> bytes_;  // capacity_ bytes; null exactly when that is 0
  nqLong length_ = 0;              // 0..capacity_
  nqLong capacity_ = 0;
};

#endif  // NQ_OML_BIN_VALUE_H
