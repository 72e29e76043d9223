// object.h -- the root of every class that can be stored, cloned or written.
//
// NQObject has no data: it is a polymorphic identity. What a container does with
// its elements, it does through the virtual operations declared here.
//
// A derived class states how it is copied: with one line where its members copy
// themselves, NQ_COPY_MEMBERWISE, else with NQ_COPY_PROTOCOL (copy_protocol.h). One that
// does not is cloned as its base, which compiles and runs, and gives an object without
// the fields of the class.

#ifndef NQ_CORE_OBJECT_H
#define NQ_CORE_OBJECT_H

#include "nq/platform/export.h"
#include "nq/platform/types.h"

// The kind of copy that a copying constructor makes. Every value but 0 means
// NQ_ATTRIBUTE_COPY.
enum NQDeepFlagEnum : int {
  NQ_DEEP_COPY = 0,       // everything; what the object owns is cloned
  NQ_ATTRIBUTE_COPY = 1,  // plain attributes only; owned contents are not cloned
};

// The result of debug output to a file.
enum [[nodiscard]] NQErrorCodeEnum : int{NQ_NO_ERROR = 0};

class NQ_EXPORT NQObject {
 public:
  NQObject() = default;
  NQObject(const NQObject& source) noexcept;
  NQObject(const NQObject& source, int flag);
  const NQObject& operator=(const NQObject& source) noexcept;

  // Takes over `source`, everything or attributes only. The caller guarantees
  // that `source` has the type of this object; null and the object itself
  // change nothing.
  virtual void copyObject(const NQObject* source);
  virtual void copyAttributes(const NQObject* source);

  virtual ~NQObject() = default;

  // The number under which the object is known in a file: here its address.
  virtual nqInt64 graphFileID() const;
  // The object's number beside others of its kind; the smallest nqLong means
  // that it has none.
  virtual nqLong localID() const;
  // 1 for objects that read and write themselves as OML (NQOMLObject), else 0.
  virtual int isOMLObject() const;
  // An entry point kept for compatibility; does nothing here or in any class
  // of the library.
  virtual void debugOutput(int level);

  // A copy of the object's dynamic type, handed over to the caller. Null for a
  // null object (`static_cast<X*>(nullptr)->cloneObject()` is allowed) and when
  // memory is exhausted.
  NQObject* cloneObject() const;
  NQObject* cloneAttributes() const;

  // The same pointer, typed as the class; nothing is checked.
  static NQObject* castDown(const NQObject* object);

  // Debug output to files is compiled out: both write nothing and return
  // NQ_NO_ERROR. A null `mode` stands for "a".
  NQErrorCodeEnum fileOutput(const char* fileName, const char* text,
                             const char* mode) const;
  static NQErrorCodeEnum staticFileOutput(const char* fileName, const char* text,
                                          const char* mode);

 protected:
  // Called by cloneObject() and cloneAttributes() of every class: a new object
  // of the dynamic type, or null when memory is exhausted.
  virtual NQObject* vCloneObject() const;
  virtual NQObject* vCloneAttributes() const;

 private:
  friend class NQCopyAccess;

  // The ends of the chains of base-class calls.
  void NQObjectdeepCopy(const NQObject&) {}
  void NQObjectattributeCopy(const NQObject&) {}
  static void nqDeepRoutine(NQObject& target, const NQObject& source) {
    target.NQObjectdeepCopy(source);
  }
  static void nqAttributeRoutine(NQObject& target, const NQObject& source) {
    target.NQObjectattributeCopy(source);
  }
};

#endif  // NQ_CORE_OBJECT_H
