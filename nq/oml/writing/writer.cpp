#include "nq/oml/writing/writer.h"

#include <cstdint>
#include <cstring>
#include <utility>
#include <vector>

#include "nq/containers/index_hash_table.h"
#include "nq/oml/encoding/number_text.h"
#include "nq/oml/encoding/records.h"
#include "nq/oml/oml_object.h"
#include "nq/oml/writing/binary_writer.h"
#include "nq/oml/writing/text_writer.h"

namespace nqdetail {

void Output::makeRoom(std::size_t count) {
  flush();
  if (count <= free()) return;
  const bool failedBefore = std::exchange(failed_, true);  // also without memory
  block_.reset(new char[count + 1]);
  failed_ = failedBefore;
  at_ = block_.get();
  end_ = at_ + count;
}

void Output::append(std::string_view bytes) {
  while (!bytes.empty()) {
    if (free() == 0) flush();
    const std::string_view piece = bytes.substr(0, free());
    std::memcpy(at_, piece.data(), piece.size());
    at_ += piece.size();
    bytes.remove_prefix(piece.size());
  }
}

// The sink may throw, since an application may stand behind it.
void Output::flush() {
  if (sending_ || at_ == block_.get()) return;
  const auto count = static_cast<std::size_t>(at_ - block_.get());
  *std::exchange(at_, block_.get()) = '\0';
  if (failed_) return;
  struct Mark {
    explicit Mark(bool& flag) : flag_(flag) { flag_ = true; }
    Mark(const Mark&) = delete;
    Mark& operator=(const Mark&) = delete;
    ~Mark() { flag_ = false; }
    bool& flag_;
  } const mark(sending_);
  failed_ = true;  // also when the sink throws
  failed_ = !sink_.send(block_.get(), count);
}

std::unique_ptr<Writer> Writer::make(bool binary, const WriteSettings& settings) {
  if (binary) return std::make_unique<BinaryWriter>(settings);
  return std::make_unique<TextWriter>(settings);
}

Writer::Writer(const WriteSettings& settings)
    : output_(settings.sink), settings_(settings) {}

Writer::~Writer() = default;

void Writer::object(const char* type, const NQObject* object, bool singleLine,
                    bool withID) {
  if (type == nullptr) return;
  if (object == nullptr || (!withID && settings_.numbers == nullptr)) {
    objectStart(type, "", singleLine);
    return;
  }
  const nqInt64 own = object->graphFileID();
  const nqLong id = withID ? writtenID(*object, own) : static_cast<nqLong>(own);
  if (settings_.numbers != nullptr && id != 0) {
    settings_.numbers->update(
        static_cast<nqInt64>(reinterpret_cast<std::intptr_t>(object)), id);
  }
  char digits[kIntegerText];
  const char* const end = withID ? putInteger(digits, id) : digits;
  objectStart(type, {digits, end}, singleLine);
}

void Writer::reference(const char* name, const NQOMLObject* object,
                       const NQOMLObject* context, bool withName) {
  if (object == nullptr || (withName && name == nullptr)) return;
  const nqInt64 id = object->graphFileID();
  if (id == 0) return;
  if (!withName) name = nullptr;
  if (context != nullptr && context->pOMLOwner() == object->pOMLOwner()) {
    sibling(name, writtenID(*object, id));
  } else {
    orSpoil([&] { collectAddress(*object); });
    address(name, address_);
  }
}

// The owners up to the top. Where they stand in a circle, one of them comes again
// that was noted at the last power of two.
void Writer::collectAddress(const NQOMLObject& object) {
  std::vector<const NQOMLObject*> owners = {&object};
  const NQOMLObject* noted = &object;
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
    char digits[kIntegerText];
    address_.append(digits,
                    putInteger(digits, writtenID(**owner, (*owner)->graphFileID())));
  }
}

nqLong Writer::numberOf(const NQObject& object) {
  nqLong number = 0;
  orSpoil([&] {
    const auto next = static_cast<nqLong>(numbers_.size()) + 1;
    number = numbers_.try_emplace(&object, next).first->second;
  });
  return number;
}

}  // namespace nqdetail
