// definitions.h -- what a grammar says about object types, sections and fields.
//
// A grammar (grammar.h) makes and owns these records; they stay valid as long as
// the grammar does, and nothing in them changes while files are read or written,
// so that any number of readers may share them. All lists are the grammar's own:
// fields and sections stand newest first, permitted values and object types in
// the order in which they were defined.
//
// Looking up a field, a permitted value or a permitted object type costs one
// hash probe; looking up a section costs at most fourteen steps for each level.

#ifndef NQ_OML_DEFINITIONS_H
#define NQ_OML_DEFINITIONS_H

#include <cstdint>
#include <memory>
#include <vector>

#include "nq/platform/export.h"
#include "nq/platform/types.h"

class NQObject;
class NQOMLDefObjType;
class NQOMLDefScope;
class NQOMLDefSection;
class NQOMLSyntaxField;
class NQOMLSyntaxObject;

// The type of a field's values.
enum NQFieldTypeEnum : int {
  NQ_INTEGER_FIELD = 0,
  NQ_BOOLEAN_FIELD = 1,
  NQ_STRING_FIELD = 2,
  NQ_REFERENCE_FIELD = 3,  // a reference to an object
  NQ_REAL_FIELD = 4,
  NQ_ENUMERATION_FIELD = 5,
  NQ_IP_ADDRESS_FIELD = 6,
  NQ_BINARY_FIELD = 7,
};

// The callbacks of an object type. `file` is the reading or writing NQOMLFile.
using NQOMLCheckFunction = int (*)(void* file, NQOMLSyntaxObject* node);
using NQOMLCreateFunction = NQObject* (*)(void* file, NQOMLSyntaxObject* node,
                                          NQOMLSyntaxObject* parentNode,
                                          NQObject* parentObject);
using NQOMLReadFieldFunction = int (*)(void* file, NQOMLSyntaxField* field,
                                       NQOMLSyntaxObject* node, NQObject* object);
using NQOMLWriteFunction = int (*)(void* file, const NQObject* object);

// One node of a list of indices.
struct NQOMLDefIndexNode {
  nqLong index;
  NQOMLDefIndexNode* next;
};

namespace nqdetail {

class DefinitionReader;

// A hash table from indices to positions, by open addressing. It only grows.
class IndexTable {
 public:
  // The position stored for `key`, or -1.
  nqLong find(nqLong key) const {
    if (slots_.empty()) return -1;
    for (std::uint32_t at = home(key);; at = (at + 1) & mask()) {
      const Slot& slot = slots_[at];
      if (slot.position < 0 || slot.key == key) return slot.position;
    }
  }
  // Stores `position` (0 or more) for a key that has none.
  void insert(nqLong key, nqLong position);

 private:
  struct Slot {
    nqLong key = 0;
    nqLong position = -1;  // negative: the slot is free
  };

  std::uint32_t mask() const { return static_cast<std::uint32_t>(slots_.size()) - 1; }
  std::uint32_t home(nqLong key) const {
    return ((static_cast<std::uint32_t>(key) * 0x9E3779B9U) >> 7) & mask();
  }
  void place(Slot slot);

  std::vector<Slot> slots_;  // a power of two, at most half of them taken
  std::uint32_t taken_ = 0;
};

// A list of distinct indices in the order in which they were added. The index
// -1, which stands for an unknown name, is listed each time but never found.
class IndexList {
 public:
  IndexList() = default;
  ~IndexList();
  IndexList(const IndexList&) = delete;
  IndexList& operator=(const IndexList&) = delete;

  NQOMLDefIndexNode* pFirst() const { return pFirst_; }
  bool contains(nqLong index) const { return table_.find(index) >= 0; }
  // Appends `index` unless it is listed. False when memory is exhausted.
  bool add(nqLong index);
  // Whether both list the same indices in the same order.
  bool operator==(const IndexList& other) const;

 private:
  NQOMLDefIndexNode* pFirst_ = nullptr;
  NQOMLDefIndexNode* pLast_ = nullptr;
  IndexTable table_;
};

}  // namespace nqdetail

// One field of an object type or section.
class NQ_EXPORT NQOMLDefField {
 public:
  // The name, in the grammar's pool of fields.
  nqLong nameIndex() const { return nameIndex_; }
  NQFieldTypeEnum fieldType() const { return fieldType_; }
  int required() const { return required_; }
  // The field's place among the fields of its type or section, counted from 1 in
  // the order of definition (and from 0 again after 65535).
  int number() const { return number_; }
  // The next older field of the same type or section.
  NQOMLDefField* pNext() const { return pNext_; }

  // For an enumeration the permitted enumerators, for a reference one node with
  // the object type it must lead to; null where anything is permitted.
  const NQOMLDefIndexNode* pValueList() const { return values_.pFirst(); }
  // Whether `index` is in the value list.
  int allowsValue(nqLong index) const { return values_.contains(index) ? 1 : 0; }
  // Whether both permit the same values, listed in the same order.
  int sameValuesAs(const NQOMLDefField& other) const {
    return values_ == other.values_ ? 1 : 0;
  }
  // The object type that a reference must lead to; -1 for any, and for fields
  // of another type.
  nqLong referencedTypeIndex() const {
    return fieldType_ == NQ_REFERENCE_FIELD && values_.pFirst() != nullptr
               ? values_.pFirst()->index
               : -1;
  }

  // The next older required field of the same object type.
  NQOMLDefField* pNextRequired() const { return pNextRequired_; }
  // A required field's place among those of its object type, counted from 1 in
  // the order of definition; 0 for a field that is not required.
  nqLong requiredNumber() const { return requiredNumber_; }
  // The type on whose list it stands; null for a field that is not required.
  const NQOMLDefObjType* pRequiringType() const { return requiringType_; }

 private:
  friend class NQOMLDefObjType;
  friend class NQOMLDefScope;
  friend class NQOMLStatic;
  friend class nqdetail::DefinitionReader;

  NQOMLDefField(nqLong nameIndex, NQFieldTypeEnum fieldType, int required)
      : nameIndex_(nameIndex), fieldType_(fieldType), required_(required != 0) {}

  nqLong nameIndex_;
  NQFieldTypeEnum fieldType_;
  nqdetail::IndexList values_;
  bool required_;
  std::uint16_t number_ = 0;
  NQOMLDefField* pNext_ = nullptr;
  NQOMLDefField* pNextRequired_ = nullptr;
  nqLong requiredNumber_ = 0;
  const NQOMLDefObjType* requiringType_ = nullptr;
};

// Where fields, sections and objects may stand: an object type or a section.
class NQ_EXPORT NQOMLDefScope {
 public:
  NQOMLDefScope(const NQOMLDefScope&) = delete;
  NQOMLDefScope& operator=(const NQOMLDefScope&) = delete;

  // The heads of the three lists; null when empty.
  NQOMLDefField* pFieldList() const {
    return fields_.empty() ? nullptr : fields_.back().get();
  }
  NQOMLDefSection* pSectionList() const {
    return sections_.empty() ? nullptr : sections_.back().get();
  }
  const NQOMLDefIndexNode* pObjectTypeList() const { return objectTypes_.pFirst(); }

  nqLong numberOfFields() const { return static_cast<nqLong>(fields_.size()); }
  nqLong numberOfSections() const { return static_cast<nqLong>(sections_.size()); }

  // The field of that name that stands directly here, or null.
  NQOMLDefField* pField(nqLong nameIndex) const {
    const nqLong position = fieldTable_.find(nameIndex);
    return position < 0 ? nullptr : fields_[static_cast<std::size_t>(position)].get();
  }
  // The field whose number() is `number`, the newest if there are several, or null.
  NQOMLDefField* pFieldNumbered(nqLong number) const;
  // The section of that name that stands directly here, or null.
  NQOMLDefSection* pSection(nqLong nameIndex) const;
  // The section with that number (1 to 14) that stands directly here, or null.
  NQOMLDefSection* pSectionNumbered(nqULong number) const {
    return number - 1 < sections_.size() ? sections_[number - 1].get() : nullptr;
  }
  // Whether objects of the type may stand directly here.
  int allowsObjectType(nqLong typeIndex) const {
    return objectTypes_.contains(typeIndex) ? 1 : 0;
  }

 protected:
  NQOMLDefScope();
  ~NQOMLDefScope();

 private:
  friend class NQOMLDefObjType;
  friend class NQOMLStatic;
  friend class nqdetail::DefinitionReader;

  // In the order of definition; each field's and section's next pointer leads to
  // the element before it.
  std::vector<std::unique_ptr<NQOMLDefField>> fields_;
  std::vector<std::unique_ptr<NQOMLDefSection>> sections_;
  nqdetail::IndexTable fieldTable_;  // name indices to positions in fields_
  nqdetail::IndexList objectTypes_;
};

// One section of an object type.
class NQ_EXPORT NQOMLDefSection : public NQOMLDefScope {
 public:
  // The name, in the grammar's pool of sections.
  nqLong nameIndex() const { return nameIndex_; }
  // Four bits for each level, the outermost lowest; each holds the number of the
  // section among its siblings, from 1.
  nqULong path() const { return path_; }
  // The levels of path(), 1 to 8.
  int depth() const { return depth_; }
  // The next older section on the same level.
  NQOMLDefSection* pNext() const { return pNext_; }
  // The enclosing section; null on the top level.
  NQOMLDefSection* pParent() const { return pParent_; }

 private:
  friend class NQOMLDefObjType;

  NQOMLDefSection(nqLong nameIndex, nqULong path, int depth, NQOMLDefSection* next,
                  NQOMLDefSection* parent)
      : nameIndex_(nameIndex),
        path_(path),
        depth_(depth),
        pNext_(next),
        pParent_(parent) {}

  nqLong nameIndex_;
  nqULong path_;
  int depth_;
  NQOMLDefSection* pNext_;
  NQOMLDefSection* pParent_;
};

// One object type.
class NQ_EXPORT NQOMLDefObjType : public NQOMLDefScope {
 public:
  NQOMLDefObjType() = default;
  ~NQOMLDefObjType() = default;

  // Where a section path leads: the type itself for 0, else the section with
  // exactly that path; null when there is none.
  NQOMLDefScope* pScope(nqULong sectionPath);
  // The section with exactly that path, or null.
  NQOMLDefSection* pSectionAt(nqULong sectionPath) const;

  // All required fields, those of sections on any level included, newest first.
  NQOMLDefField* pRequiredList() const { return pRequiredList_; }
  nqLong numberOfRequiredFields() const {
    return pRequiredList_ == nullptr ? 0 : pRequiredList_->requiredNumber();
  }

  // The callbacks; each may be null.
  NQOMLCreateFunction createFunction() const { return create_; }
  NQOMLReadFieldFunction readFieldFunction() const { return readField_; }
  NQOMLCheckFunction checkFunction() const { return check_; }
  NQOMLWriteFunction writeFunction() const { return write_; }

 private:
  friend class NQOMLStatic;
  friend class nqdetail::DefinitionReader;

  // The field of that name in `scope`, which belongs to this type, made when
  // there is none; null when it is defined there with another type or flag, or when
  // memory is exhausted.
  NQOMLDefField* addField(NQOMLDefScope& scope, nqLong nameIndex,
                          NQFieldTypeEnum fieldType, int required);
  // Whether one more section may be made inside `parent`, a section of this type,
  // or for null directly in the type; and such a section, of a name that is new
  // there.
  bool hasRoomForSection(const NQOMLDefSection* parent) const;
  NQOMLDefSection* addSection(NQOMLDefSection* parent, nqLong nameIndex);

  NQOMLDefField* pRequiredList_ = nullptr;
  NQOMLCreateFunction create_ = nullptr;
  NQOMLReadFieldFunction readField_ = nullptr;
  NQOMLCheckFunction check_ = nullptr;
  NQOMLWriteFunction write_ = nullptr;
};

#endif  // NQ_OML_DEFINITIONS_H
