#include "nq/core/string_handle.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <new>
#include <utility>

namespace {

constexpr nqLong kFirstCapacity = 254;

// What a text needs besides its characters: the terminator and the spare byte.
constexpr nqInt64 kOverhead = 2;

}  // namespace

NQStringHandle::NQStringHandle() {
  init();
}

void NQStringHandle::init() {
  delete[] std::exchange(buffer_, nullptr);
  pString(new char[kFirstCapacity]);
  capacity(kFirstCapacity);
  empty();
}

NQStringHandle& NQStringHandle::operator=(NQStringHandle&& source) noexcept {
  if (&source != this) {
    delete[] buffer_;
    take(source);
  }
  return *this;
}

void NQStringHandle::take(NQStringHandle& source) noexcept {
  buffer_ = std::exchange(source.buffer_, nullptr);
  capacity_ = std::exchange(source.capacity_, 0);
  length_ = std::exchange(source.length_, 0);
  quickLength_ = std::exchange(source.quickLength_, -1);
}

NQ_COPY_CONSTRUCTORS_IMPL(NQStringHandle)
NQ_COPY_TYPED_IMPL(NQStringHandle)

// The copies and the clones are written out because one kind goes by the other.
void NQStringHandle::copyObject(const NQObject* source) {
  copyAttributes(source);
}

void NQStringHandle::copyAttributes(const NQObject* source) {
  NQCopyAccess::copyAttributes<NQStringHandle>(*this, source);
}

NQObject* NQStringHandle::vCloneObject() const {
  return vCloneAttributes();
}

NQObject* NQStringHandle::vCloneAttributes() const {
  NQObject* const clone = NQCopyAccess::newCopy<NQStringHandle>(*this, NQ_ATTRIBUTE_COPY);
  if (clone == nullptr || castDown(clone)->capacity_ == capacity_) return clone;
  delete clone;  // there was no memory for the text
  return nullptr;
}

void NQStringHandle::NQStringHandledeepCopy(const NQStringHandle& source) {
  NQStringHandleattributeCopy(source);
}

void NQStringHandle::NQStringHandleattributeCopy(const NQStringHandle& source) {
  NQCopyAccess::attributes<NQObject>(*this, source);
  if (source.buffer_ == nullptr) {
    delete[] buffer_;
    buffer_ = nullptr;
    capacity_ = length_ = 0;
    quickLength_ = -1;
    return;
  }
  if (capacity_ != source.capacity_) {
    const auto size = static_cast<std::size_t>(source.capacity_);
    char* const fresh = new (std::nothrow) char[size];
    if (fresh == nullptr) return;
    delete[] std::exchange(buffer_, fresh);
    capacity(source.capacity_);
  }
  const nqLong length = source.strlenBuf();
  std::memcpy(buffer_, source.buffer_, static_cast<std::size_t>(length));
  setLength(length);
}

nqLong NQStringHandle::strlenBuf() const {
  if (quickLength_ >= 0) return length_;
  if (buffer_ == nullptr) return 0;
  // A caller that wrote no terminator is not followed out of the buffer.
  const std::size_t place = static_cast<std::size_t>(length_);
  const std::size_t rest = static_cast<std::size_t>(capacity_ - 1) - place;
  const void* const end = std::memchr(buffer_ + place, '\0', rest);
  if (end == nullptr) return capacity_ - 1;
  return static_cast<nqLong>(static_cast<const char*>(end) - buffer_);
}

nqLong NQStringHandle::sizeOf() const {
  return capacity_ + 24;
}

int NQStringHandle::needCapacity(nqLong n) {
  std::unique_ptr<char[]> replaced;
  return reserve(nqInt64{n} + 1, &replaced) ? 1 : 0;
}

int NQStringHandle::increaseLength(nqLong k) {
  std::unique_ptr<char[]> replaced;
  return reserve(nqInt64{strlenBuf()} + k + kOverhead, &replaced) ? 1 : 0;
}

int NQStringHandle::appendString(const char* text) {
  return text == nullptr ? 0 : appendText(text);
}

int NQStringHandle::appendAnyText(std::string_view text) {
  if (quickLength_ < 0 && buffer_ != nullptr) setLength(strlenBuf());
  const auto added = static_cast<nqInt64>(text.size());
  std::unique_ptr<char[]> replaced;  // which `text` may point into
  if (!reserve(length_ + added + kOverhead, &replaced)) return 0;
  text.copy(buffer_ + length_, text.size());
  setLength(length_ + static_cast<nqLong>(added));
  return 1;
}

char* NQStringHandle::obtainAppendBuffer(nqLong n) {
  const nqLong length = strlenBuf();
  std::unique_ptr<char[]> replaced;
  if (!reserve(nqInt64{length} + n + 1 + kOverhead, &replaced)) return nullptr;
  setLength(length);
  return handOut(length);
}

// Makes the capacity at least `required`; the buffer that was outgrown, if any,
// goes to `replaced`.
bool NQStringHandle::reserve(nqInt64 required, std::unique_ptr<char[]>* replaced) {
  if (required <= capacity_) return true;
  nqInt64 wanted = std::max(capacity_, kFirstCapacity);
  while (wanted < required) wanted *= 2;
  if (wanted > std::numeric_limits<nqLong>::max()) return false;
  char* const grown = new (std::nothrow) char[static_cast<std::size_t>(wanted)];
  if (grown == nullptr) return false;
  const nqLong length = strlenBuf();
  std::memcpy(grown, NQStringHandle::pString(), static_cast<std::size_t>(length));
  replaced->reset(buffer_);
  pString(grown);
  capacity(static_cast<nqLong>(wanted));
  setLength(length);
  return true;
}

// Finds the end if it is unknown and makes room for one more character.
bool NQStringHandle::prepareForChar() {
  if (buffer_ != nullptr) setLength(strlenBuf());
  return increaseLength(1) != 0;
}
