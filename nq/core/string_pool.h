// string_pool.h -- texts interned to small dense codes.
//
// A pool gives every distinct text a code: 0 to the first, 1 to the second, and
// so on, so that codes serve as array indexes. It keeps a copy of each text,
// which stays where it is until the pool is destroyed or copied into. A pool may
// also keep one pointer per code for its user; it never owns what that points
// to.
//
// A pool without case holds its texts in upper case and finds them in any case.
// Case is that of ASCII whatever the locale: bytes above 127 are never changed.
//
// Interning and looking up cost one pass over the text and a constant, however
// many texts there are and whoever chose them; the index grows with the texts.
//
// A pool made with a hash table size below 1, or made by an attribute copy, has
// no tables: it finds nothing and takes nothing until it is copied into. Nor does
// one for which memory was exhausted; a copy then ends with the texts that fitted.

#ifndef NQ_CORE_STRING_POOL_H
#define NQ_CORE_STRING_POOL_H

#include <cstdint>
#include <memory>
#include <string_view>

#include "nq/core/copy_protocol.h"

class NQ_EXPORT NQStringPool : public NQObject {
  NQ_COPY_PROTOCOL(NQStringPool)

 public:
  // `hashTableSize` is the number of texts to prepare for, and need not be kept
  // to. There is room for `decodeTableSize` codes at first; negative counts as 0.
  NQStringPool(nqLong hashTableSize, nqLong decodeTableSize, int caseSensitive,
               int withPointers);
  ~NQStringPool() override;

  // The number of texts, which is the code that the next new one will get.
  nqLong decodeTableMax() const { return decodeTableMax_; }

  // The text of `code` as the pool holds it, not to be written to; "" for a code
  // that was not given out.
  char* decode(nqLong code) const;

  // The user's pointer for `code`, null until it is set. The second stores
  // `value` and returns it. Both answer null, and nothing is stored, for a code
  // that was not given out or in a pool made without pointers.
  void* pointer(nqLong code) const;
  void* pointer(nqLong code, void* value);

  // The code of `text`, or -1 when the pool does not hold it. Null is not held.
  // A view, which needs no terminator, ends at its first zero byte.
  nqLong lookup(const char* text) const;
  nqLong lookup(std::string_view text) const;

  // The code of `text`, which is added when the pool does not hold it. Returns
  // -1 and changes nothing for null, for a text of 2^31 - 1 characters or more,
  // when 2^31 - 1 texts are held, and when memory is exhausted.
  nqLong update(const char* text);
  nqLong update(std::string_view text);

  // Entry points kept for compatibility; they do nothing.
  void hashStatistics(const char* title) const;
  void debugOutput(int level) override;

 protected:
  void init();

 private:
  friend class NQTestPeer;

  struct Tables;

  nqLong hashTableSize() const { return hashTableSize_; }
  nqLong decodeTableSize() const { return decodeTableSize_; }
  int caseSensitive() const { return caseSensitive_ ? 1 : 0; }

  void makeTables(nqLong hashTableSize, nqLong decodeTableSize, bool withPointers);
  void increaseDecodeTable(nqInt64 size);
  bool isCode(nqLong code) const { return code >= 0 && code < decodeTableMax_; }
  bool hasPointer(nqLong code) const;
  nqLong insert(std::string_view text, std::uint32_t hash);
  void empty();

  std::unique_ptr<Tables> tables_;  // null: nothing can be found or taken
  nqLong hashTableSize_ = 0;        // as given; the index grows of itself
  nqLong decodeTableSize_ = 0;      // slots of the tables indexed by code
  nqLong decodeTableMax_ = 0;       // of which so many are in use
  bool caseSensitive_ = false;
};

#endif  // NQ_CORE_STRING_POOL_H
