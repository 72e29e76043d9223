// oml_object.h -- the base of objects that read and write themselves as OML.
//
// An application's class derives from NQOMLObject and overrides what it needs:
// the reading hooks, which a reader calls for each object of a file, and the
// operations around a write. During a write each object has a number under which
// it stands in the file, graphFileID(); between writes that is 0. Nothing here
// owns an object, and a copy does not take the number. NQOMLObjectTuple pairs an
// object with the one inside which a reference to it is written.

#ifndef NQ_OML_OML_OBJECT_H
#define NQ_OML_OML_OBJECT_H

#include "nq/containers/list_sort.h"
#include "nq/core/object_with_id.h"
#include "nq/file/file_codes.h"

class NQDList;
class NQIndexHashTable;
class NQOMLFile;
class NQOMLSyntaxField;
class NQOMLSyntaxObject;

class NQ_EXPORT NQOMLObject : public NQObjectWithID {
  NQ_COPY_PROTOCOL(NQOMLObject)

 public:
  NQOMLObject() = default;
  ~NQOMLObject() override;

  nqInt64 graphFileID() const override;
  int isOMLObject() const override;

  // The object that contains this one, of whose parts its address in a file is
  // made; null here.
  virtual NQOMLObject* pOMLOwner() const;

  // Called before and after the object is written. The first gives numbers to the
  // object and all its parts, first to last, and makes those of its parts differ;
  // the second takes them away, last to first. They are called for each part of
  // each object; but in one walk the parts of an object are visited only once,
  // however many objects it is a part of, itself among them.
  virtual void preFileWrite(NQOMLFile* file);
  virtual void postFileWrite(NQOMLFile* file, NQFileCodeEnum result);

  // Called by a reader: for each field that the object is to take, answering
  // non-zero when it has done so (here: 0), and before and after all of them.
  virtual int readField(NQOMLSyntaxField* field, NQOMLSyntaxObject* syntax,
                        NQOMLFile* file);
  virtual void preReadFields(NQOMLSyntaxObject* syntax, NQOMLFile* file);
  virtual void postReadFields(NQOMLSyntaxObject* syntax, NQOMLFile* file);

  // Takes the object's number away.
  virtual void finalizeIDForGraphFile();
  // Gives the object a number: the one that `table` holds for it, else, and when
  // `table` is null, its address.
  virtual void prepareIDForGraphFile(NQIndexHashTable* table);
  // Takes the number away after a write; called by postFileWrite().
  virtual void finalizeIDAfterWrite(NQOMLFile* file, NQFileCodeEnum result);
  // Appends the objects that this one writes as its parts; none here. The list
  // borrows them.
  virtual void collectOwnedOMLObjects(NQDList& parts);

  // Sets and returns the number.
  nqInt64 iUserField(nqInt64 id) { return iUserField_ = id; }
  nqInt64 iUserField() const { return iUserField_; }

  // Sorts a list of NQOMLObject by their numbers (quick sort) and gives new ones,
  // in steps of 8 above all that `table` knows, to those whose number would not
  // tell them apart in a file: its low 32 bits are those of an object before it,
  // or of the table's error value. In the file a new number is neither 0 nor one
  // that stands in the list; where there is none above the table's, it begins at 8.
  // Without a table or a list nothing happens.
  void makeIDsUniqueForGraphFile(NQIndexHashTable* table, NQDList* list);

 protected:
  void init();

 private:
  class Walk;
  struct Visit;

  void copyFields(const NQOMLObject&) {}

  nqInt64 iUserField_ = 0;
  Visit* visit_ = nullptr;  // by the walk over parts that has reached the object
};

// Sorts lists of NQOMLObject by their numbers; null objects come first.
class NQ_EXPORT NQIUserFieldDListSort : public NQDListSort {
 public:
  static NQIUserFieldDListSort* castDown(const NQObject* object) {
    return NQCopyAccess::castDown<NQIUserFieldDListSort>(object);
  }

 protected:
  int virtualCompare(NQDListCell* a, NQDListCell* b) override;
  void virtualDebugOutputElement(NQDListCell* cell) override;
};

// Two objects, borrowed; copies hold the same ones.
class NQ_EXPORT NQOMLObjectTuple : public NQObject {
  NQ_COPY_PROTOCOL(NQOMLObjectTuple)

 public:
  explicit NQOMLObjectTuple(NQOMLObject* first = nullptr, NQOMLObject* second = nullptr)
      : pFirst_(first), pSecond_(second) {}

  NQOMLObject* pFirstObject() const { return pFirst_; }
  NQOMLObject* pSecondObject() const { return pSecond_; }

 protected:
  void init();

 private:
  void copyFields(const NQOMLObjectTuple& source);

  NQOMLObject* pFirst_;
  NQOMLObject* pSecond_;
};

#endif  // NQ_OML_OML_OBJECT_H
