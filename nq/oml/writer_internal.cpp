#include "nq/oml/writer_internal.h"

#include <cmath>
#include <cstdint>
#include <cstring>
#include <vector>

#include "nq/containers/index_hash_table.h"
#include "nq/oml/binary_writer_internal.h"
#include "nq/oml/encoding_internal.h"
#include "nq/oml/number_text_internal.h"
#include "nq/oml/oml_object.h"
#include "nq/oml/text_writer_internal.h"

namespace nqdetail {

void Output::makeRoom(std::size_t count) {
  flush();
  if (count <= capacity_) return;
  block_.reset(new char[count + 1]);
  capacity_ = count;
}

void Output::append(std::string_view bytes) {
  while (!bytes.empty()) {
    if (used_ == capacity_) flush();
    const std::string_view piece = bytes.substr(0, capacity_ - used_);
    std::memcpy(block_.get() + used_, piece.data(), piece.size());
    used_ += piece.size();
    bytes.remove_prefix(piece.size());
  }
}

// The sink may throw, since an application may stand behind it.
void Output::flush() {
  if (sending_ || used_ == 0) return;
  const std::size_t count = used_;
  used_ = 0;
  if (failed_) return;
  block_[count] = '\0';
  struct Mark {
    explicit Mark(bool& flag) : flag_(flag) { flag_ = true; }
    Mark(const Mark&) = delete;
    Mark& operator=(const Mark&) = delete;
    ~Mark() { flag_ = false; }
    bool& flag_;
  } const mark(sending_);
  failed_ = !sink_.send(block_.get(), count);
}

std::unique_ptr<Writer> Writer::make(bool binary, const WriteSettings& settings) {
  if (binary) return std::make_unique<BinaryWriter>(settings);
  return std::make_unique<TextWriter>(settings);
}

Writer::Writer(const WriteSettings& settings)
    : output_(settings.sink), settings_(settings) {}

Writer::~Writer() = default;

void Writer::object(const char* type, const NQOMLObject* object, bool singleLine) {
  if (type == nullptr) return;
  address_.clear();
  if (object != nullptr) {
    appendID(*object);
    if (settings_.numbers != nullptr) {
      settings_.numbers->update(static_cast<nqInt64>(reinterpret_cast<std::intptr_t>(
                                    static_cast<const NQObject*>(object))),
                                idOf(*object));
    }
  }
  objectStart(type, address_, singleLine);
}

void Writer::reference(const char* name, const NQOMLObject* object,
                       const NQOMLObject* context, bool withName) {
  if (object == nullptr || object->graphFileID() == 0 || (withName && name == nullptr)) {
    return;
  }
  if (!withName) name = nullptr;
  if (context != nullptr && context->pOMLOwner() == object->pOMLOwner()) {
    sibling(name, idOf(*object));
    return;
  }
  // The owners up to the top. Where they stand in a circle, one of them comes again
  // that was noted at the last power of two.
  std::vector<const NQOMLObject*> owners = {object};
  const NQOMLObject* noted = object;
  std::size_t next = 2;
  while (owners.back() != settings_.top) {
    const NQOMLObject* const owner = owners.back()->pOMLOwner();
    if (owner == nullptr || owner == noted) break;
    owners.push_back(owner);
    if (owners.size() == next) {
      noted = owner;
      next *= 2;
    }
  }
  address_ = kFullAddress;
  for (auto owner = owners.rbegin(); owner != owners.rend(); ++owner) {
    if (owner != owners.rbegin()) address_ += kScopeSeparator;
    appendID(**owner);
  }
  address(name, address_);
}

double Writer::finite(double value) {
  if (std::isfinite(value)) return value;
  spoiled_ = true;
  return 0;
}

nqLong Writer::idOf(const NQOMLObject& object) {
  if (!lossless()) return static_cast<nqLong>(object.graphFileID());
  return lossless_.try_emplace(&object, static_cast<nqLong>(lossless_.size()) + 1)
      .first->second;
}

void Writer::appendID(const NQOMLObject& object) {
  char digits[kIntegerText];
  address_.append(digits, putInteger(digits, idOf(object)));
}

}  // namespace nqdetail
