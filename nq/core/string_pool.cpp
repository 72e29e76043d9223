#include "nq/core/string_pool.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <new>

#include "nq/core/hash_internal.h"
#include "nq/core/memory_internal.h"

namespace {

constexpr nqLong kLargest = std::numeric_limits<nqLong>::max();
constexpr nqLong kMostPreparedFor = 4096;  // texts; an empty pool stays small

// A text is kept behind its length, in one piece.
using Length = std::uint32_t;

Length lengthOf(const char* stored) {
  Length length;
  std::memcpy(&length, stored - sizeof length, sizeof length);
  return length;
}

}  // namespace

struct NQStringPool::Tables {
  nqdetail::HashIndex index;
  nqdetail::HeapArray<char*> decode;
  nqdetail::HeapArray<void*> pointers;  // null in a pool without pointers
  nqdetail::Arena texts;

  Tables() : index(this) {}

  std::uint32_t hash(std::string_view text, bool caseSensitive) const {
    return caseSensitive
               ? nqdetail::hashText<false>(text.data(), text.size(), index.seed())
               : nqdetail::hashText<true>(text.data(), text.size(), index.seed());
  }
  nqLong find(std::string_view text, std::uint32_t hash, bool caseSensitive) const {
    return index.find(hash, [this, text, caseSensitive](nqLong code) {
      const char* const stored = decode[static_cast<std::size_t>(code)];
      if (lengthOf(stored) != text.size()) return false;
      return caseSensitive ? nqdetail::equalsText<false>(text.data(), stored, text.size())
                           : nqdetail::equalsText<true>(text.data(), stored, text.size());
    });
  }
};

NQ_COPY_PROTOCOL_IMPL(NQStringPool)

NQStringPool::NQStringPool(nqLong hashTableSize, nqLong decodeTableSize,
                           int caseSensitive, int withPointers)
    : caseSensitive_(caseSensitive != 0) {
  makeTables(hashTableSize, decodeTableSize, withPointers != 0);
}

NQStringPool::~NQStringPool() = default;

char* NQStringPool::decode(nqLong code) const {
  if (!isCode(code)) return const_cast<char*>("");
  return tables_->decode[static_cast<std::size_t>(code)];
}

void* NQStringPool::pointer(nqLong code) const {
  if (!hasPointer(code)) return nullptr;
  return tables_->pointers[static_cast<std::size_t>(code)];
}

void* NQStringPool::pointer(nqLong code, void* value) {
  if (!hasPointer(code)) return nullptr;
  return tables_->pointers[static_cast<std::size_t>(code)] = value;
}

nqLong NQStringPool::lookup(const char* text) const {
  return text == nullptr ? -1 : lookup(std::string_view(text));
}

// No text that is held has a zero byte, so only one that was not found can need
// to be cut at one.
nqLong NQStringPool::lookup(std::string_view text) const {
  if (text.data() == nullptr || tables_ == nullptr) return -1;
  const std::uint32_t hash = tables_->hash(text, caseSensitive_);
  const nqLong code = tables_->find(text, hash, caseSensitive_);
  if (code >= 0) return code;
  const std::size_t zero = text.find('\0');
  return zero == std::string_view::npos ? -1 : lookup(text.substr(0, zero));
}

nqLong NQStringPool::update(const char* text) {
  return text == nullptr ? -1 : update(std::string_view(text));
}

nqLong NQStringPool::update(std::string_view text) {
  if (text.data() == nullptr || tables_ == nullptr) return -1;
  const std::uint32_t hash = tables_->hash(text, caseSensitive_);
  const nqLong code = tables_->find(text, hash, caseSensitive_);
  if (code >= 0) return code;
  const std::size_t zero = text.find('\0');
  return zero == std::string_view::npos ? insert(text, hash)
                                        : update(text.substr(0, zero));
}

void NQStringPool::hashStatistics(const char*) const {}

void NQStringPool::debugOutput(int) {}

void NQStringPool::init() {
  empty();
  caseSensitive_ = false;
}

// Tables for which there is not enough memory now start smaller and grow.
void NQStringPool::makeTables(nqLong hashTableSize, nqLong decodeTableSize,
                              bool withPointers) {
  hashTableSize_ = hashTableSize;
  if (hashTableSize < 1) return;
  tables_.reset(new (std::nothrow) Tables);
  if (tables_ == nullptr) return;
  const nqLong preparedFor = std::min(hashTableSize, kMostPreparedFor);
  (void)tables_->index.reserve(static_cast<std::size_t>(preparedFor));
  if (withPointers && !nqdetail::resize(tables_->pointers, 0)) {
    tables_.reset();  // rather none than one that cannot keep its promise
    return;
  }
  increaseDecodeTable(decodeTableSize);
}

// Does nothing when `size` is not larger than the table, or memory is exhausted.
void NQStringPool::increaseDecodeTable(nqInt64 size) {
  size = std::min(size, nqInt64{kLargest});
  if (size <= decodeTableSize_) return;
  const auto slots = static_cast<std::size_t>(size);
  if (!nqdetail::resize(tables_->decode, slots)) return;
  if (tables_->pointers != nullptr && !nqdetail::resize(tables_->pointers, slots)) return;
  decodeTableSize_ = static_cast<nqLong>(size);
}

bool NQStringPool::hasPointer(nqLong code) const {
  return isCode(code) && tables_->pointers != nullptr;
}

nqLong NQStringPool::insert(std::string_view text, std::uint32_t hash) {
  if (text.size() >= static_cast<std::size_t>(kLargest)) return -1;
  const nqLong code = decodeTableMax_;
  if (code >= decodeTableSize_ - 1) increaseDecodeTable(nqInt64{code} * 3 / 2 + 5);
  if (code >= decodeTableSize_) return -1;
  if (!tables_->index.reserve(static_cast<std::size_t>(code) + 1)) return -1;

  const auto length = static_cast<Length>(text.size());
  void* const piece = tables_->texts.allocate(sizeof length + length + 1);
  if (piece == nullptr) return -1;
  char* const stored = static_cast<char*>(piece) + sizeof length;
  std::memcpy(piece, &length, sizeof length);
  std::memcpy(stored, text.data(), length);
  stored[length] = '\0';
  if (!caseSensitive_) nqdetail::makeUpperCase(stored, length);

  const auto slot = static_cast<std::size_t>(code);
  tables_->decode[slot] = stored;
  if (tables_->pointers != nullptr) tables_->pointers[slot] = nullptr;
  tables_->index.insert(hash, code);
  ++decodeTableMax_;
  return code;
}

// The case flag stays.
void NQStringPool::empty() {
  tables_.reset();
  hashTableSize_ = 0;
  decodeTableSize_ = 0;
  decodeTableMax_ = 0;
}

void NQStringPool::NQStringPooldeepCopy(const NQStringPool& source) {
  NQCopyAccess::deep<NQObject>(*this, source);
  empty();
  caseSensitive_ = source.caseSensitive_;
  if (source.tables_ == nullptr) return;
  const bool withPointers = source.tables_->pointers != nullptr;
  makeTables(source.hashTableSize_, source.decodeTableSize_, withPointers);
  for (nqLong code = 0; code < source.decodeTableMax_; ++code) {
    const char* const text = source.decode(code);
    if (update(std::string_view(text, lengthOf(text))) != code) return;
    if (withPointers) pointer(code, source.pointer(code));
  }
}

void NQStringPool::NQStringPoolattributeCopy(const NQStringPool& source) {
  NQCopyAccess::attributes<NQObject>(*this, source);
  empty();
  caseSensitive_ = source.caseSensitive_;
}
