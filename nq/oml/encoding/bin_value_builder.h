// bin_value_builder.h -- collecting a binary value piece by piece.

#ifndef NQ_OML_ENCODING_BIN_VALUE_BUILDER_H
#define NQ_OML_ENCODING_BIN_VALUE_BUILDER_H

#include <cstddef>
#include <limits>
#include <memory>
#include <new>
#include <string>
#include <string_view>

#include "nq/oml/bin_value.h"

namespace nqdetail {

// Gathers the pieces in which a file holds one binary value and makes the value
// when the last one is there, so that its cost is in proportion to its length
// however small the pieces are.
class BinValueBuilder {
 public:
  void append(char byte) { bytes_.push_back(byte); }
  void append(std::string_view bytes) { bytes_.append(bytes); }

  // Whether a value can be that long; check it while bytes arrive.
  bool fits() const { return bytes_.size() <= std::numeric_limits<nqLong>::max(); }

  // Forgets the bytes.
  void clear() {
    if (bytes_.capacity() > kKept) bytes_ = std::string();
    bytes_.clear();
  }

  // Hands over the value of all bytes since the last call; null when memory is
  // lacking or the bytes do not fit.
  NQOMLBinValue* finish() {
    const auto length = static_cast<nqLong>(bytes_.size());
    std::unique_ptr<NQOMLBinValue> value;
    if (fits()) value.reset(new (std::nothrow) NQOMLBinValue(length, bytes_.data()));
    if (value != nullptr && value->length() != length) value.reset();
    clear();
    return value.release();
  }

 private:
  static constexpr std::size_t kKept = 65536;  // a larger buffer is not kept

  std::string bytes_;
};

}  // namespace nqdetail

#endif  // NQ_OML_ENCODING_BIN_VALUE_BUILDER_H
