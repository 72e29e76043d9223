// unique_id.h -- which object, as a value that outlives the object.

#ifndef NQ_CORE_UNIQUE_ID_H
#define NQ_CORE_UNIQUE_ID_H

#include "nq/core/object.h"

// Two numbers: an object's address and its localID(), or 0 and 0 for none. Two
// live objects never have the same; once an object is gone, a new one may take
// its place and its id with it.
class NQ_EXPORT NQUniqueID {
 public:
  explicit NQUniqueID(nqInt64 firstID = 0, nqInt64 secondID = 0)
      : firstID_(firstID), secondID_(secondID) {}
  // The id of `object`, which must not be null and is not tested.
  explicit NQUniqueID(const NQObject* object);

  nqInt64 firstID() const { return firstID_; }
  nqInt64 secondID() const { return secondID_; }
  int isNullID() const { return firstID_ == 0 && secondID_ == 0 ? 1 : 0; }
  friend bool operator==(const NQUniqueID& a, const NQUniqueID& b) = default;

  // Writes "ID" and sixteen lower-case hexadecimal digits, the low 32 bits of
  // each number, into `buffer` (19 bytes) and returns it. The upper halves are
  // left out on purpose: the text has always had this form.
  char* idString(char* buffer) const;
  void debugOutput(int) const {}

  // Both take the id of `object`; null gives the null id.
  const NQUniqueID& operator=(const NQObject* object);
  void getObjectID(const NQObject* object);

 private:
  nqInt64 firstID_;
  nqInt64 secondID_;
};

#endif  // NQ_CORE_UNIQUE_ID_H
