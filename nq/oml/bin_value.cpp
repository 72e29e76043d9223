#include "nq/oml/bin_value.h"

#include <cstring>
#include <limits>
#include <new>

NQ_COPY_PROTOCOL_IMPL(NQOMLBinValue)
NQ_COPY_ALIKE_IMPL(NQOMLBinValue, NQObject)

void NQOMLBinValue::copyFields(const NQOMLBinValue& source) {
  fill(source.length_, source.bytes_.get());
}

void NQOMLBinValue::init() {
  bytes_.reset();
  length_ = 0;
  capacity_ = 0;
}

NQOMLBinValue::NQOMLBinValue(nqLong length, const char* bytes) {
  fill(length, bytes);
}

NQOMLBinValue::~NQOMLBinValue() = default;

void NQOMLBinValue::fill(nqLong length, const char* bytes) {
  if (length < 1) {
    init();
    return;
  }
  const auto count = static_cast<std::size_t>(length);
  if (length <= capacity_) {
    if (bytes != nullptr) std::memmove(bytes_.get(), bytes, count);
  } else {
    // The old buffer goes last: `bytes` may point into it.
    std::unique_ptr<char[]> buffer(new (std::nothrow) char[count]);
    if (buffer == nullptr) return;
    if (bytes != nullptr) {
      std::memcpy(buffer.get(), bytes, count);
    } else {
      std::memset(buffer.get(), 0, count);
    }
    bytes_ = std::move(buffer);
    capacity_ = length;
  }
  length_ = length;
}

void NQOMLBinValue::concat(const NQOMLBinValue* other) {
  if (other == nullptr || other->length_ < 1) return;
  if (other->length_ > std::numeric_limits<nqLong>::max() - length_) return;
  const auto own = static_cast<std::size_t>(length_);
  const auto added = static_cast<std::size_t>(other->length_);
  if (own + added > static_cast<std::size_t>(capacity_)) {
    std::unique_ptr<char[]> buffer(new (std::nothrow) char[own + added]);
    if (buffer == nullptr) return;
    if (own > 0) std::memcpy(buffer.get(), bytes_.get(), own);
    std::memcpy(buffer.get() + own, other->bytes_.get(), added);
    bytes_ = std::move(buffer);
    capacity_ = static_cast<nqLong>(own + added);
  } else {
    std::memcpy(bytes_.get() + own, other->bytes_.get(), added);
  }
  length_ = static_cast<nqLong>(own + added);
}

nqLong NQOMLBinValue::length(nqLong length) {
  fill(length, nullptr);
  return length_;
}

char* NQOMLBinValue::pByteSequence(const char* bytes) {
  if (bytes != nullptr) fill(length_, bytes);
  return bytes_.get();
}
