// syntax_list.h -- the lists in which an object of an OML file holds what is below it.
//
// An object has a list of children, one of fields, and a chain of lists of defaults.
//
// How it works
//   A node that a reader made brings its cell along, which is a link only: that of a
//   field stands behind it, that of an object before it. Other cells are made with new.

#ifndef NQ_OML_SYNTAX_LIST_H
#define NQ_OML_SYNTAX_LIST_H

#include <cstdint>

#include "nq/oml/syntax_node.h"

namespace nqdetail {

// The way from a cell to the next one.
class CellLink {
 public:
  explicit CellLink(void* next) : word_(reinterpret_cast<std::uintptr_t>(next)) {}
  // That of a cell which is part of a node and not in use yet.
  static CellLink ofNode() {
    CellLink link(nullptr);
    link.word_ = kPartOfNode;
    return link;
  }

  bool isPartOfNode() const { return (word_ & kPartOfNode) != 0; }
  bool isInUse() const { return (word_ & kInUse) != 0; }
  void use() { word_ |= kInUse; }
  void* pNext() const { return reinterpret_cast<void*>(word_ & ~kFlags); }
  void pNext(void* next) {
    word_ = reinterpret_cast<std::uintptr_t>(next) | (word_ & kFlags);
  }

 private:
  // Cells lie at multiples of 8.
  static constexpr std::uintptr_t kPartOfNode = 1;
  static constexpr std::uintptr_t kInUse = 2;
  static constexpr std::uintptr_t kFlags = kPartOfNode | kInUse;

  std::uintptr_t word_;
};

}  // namespace nqdetail

// A cell in an object's list of children. Destroying one destroys those behind
// it, with their objects, and then its own object.
class NQ_EXPORT NQOMLSyntaxObjectList {
 public:
  explicit NQOMLSyntaxObjectList(NQOMLSyntaxObject* object,
                                 NQOMLSyntaxObjectList* next = nullptr)
      : link_(next), object_(object) {}
  NQOMLSyntaxObjectList(const NQOMLSyntaxObjectList&) = delete;
  NQOMLSyntaxObjectList& operator=(const NQOMLSyntaxObjectList&) = delete;
  ~NQOMLSyntaxObjectList();

  NQOMLSyntaxObject* pObject() const {
    return link_.isPartOfNode() ? reinterpret_cast<NQOMLSyntaxObject*>(
                                      const_cast<nqdetail::CellLink*>(&link_) + 1)
                                : object_;
  }
  NQOMLSyntaxObjectList* pNext() const {
    return static_cast<NQOMLSyntaxObjectList*>(link_.pNext());
  }

 private:
  friend class NQOMLSyntaxObject;
  friend class nqdetail::SyntaxArena;

  // The cell that a node brings along, if it is not in use yet; else a new one, or null
  // when memory is exhausted.
  static NQOMLSyntaxObjectList* cellFor(NQOMLSyntaxObject* object);
  // Destroy cells with their nodes, wherever these lie.
  static void destroyChain(NQOMLSyntaxObjectList* first);
  static void destroyOne(NQOMLSyntaxObjectList* cell);

  nqdetail::CellLink link_;
  NQOMLSyntaxObject* object_;  // absent from a cell that is part of its node
};

// A cell in an object's list of fields; like NQOMLSyntaxObjectList.
class NQ_EXPORT NQOMLSyntaxFieldList {
 public:
  explicit NQOMLSyntaxFieldList(NQOMLSyntaxField* field,
                                NQOMLSyntaxFieldList* next = nullptr)
      : link_(next), field_(field) {}
  NQOMLSyntaxFieldList(const NQOMLSyntaxFieldList&) = delete;
  NQOMLSyntaxFieldList& operator=(const NQOMLSyntaxFieldList&) = delete;
  ~NQOMLSyntaxFieldList();

  NQOMLSyntaxField* pField() const {
    return link_.isPartOfNode() ? reinterpret_cast<NQOMLSyntaxField*>(
                                      const_cast<nqdetail::CellLink*>(&link_)) -
                                      1
                                : field_;
  }
  NQOMLSyntaxFieldList* pNext() const {
    return static_cast<NQOMLSyntaxFieldList*>(link_.pNext());
  }

 private:
  friend class NQOMLSyntaxObject;
  friend class nqdetail::SyntaxArena;

  // The cell that a node brings along, if it is not in use yet; else a new one, or null
  // when memory is exhausted.
  static NQOMLSyntaxFieldList* cellFor(NQOMLSyntaxField* field);
  // Destroy cells with their nodes, wherever these lie.
  static void destroyChain(NQOMLSyntaxFieldList* first);
  static void destroyOne(NQOMLSyntaxFieldList* cell);

  nqdetail::CellLink link_;
  NQOMLSyntaxField* field_;  // absent from a cell that is part of its node
};

// A node in an object's chain of defaults. Destroying one destroys those behind
// it, never the lists of fields.
class NQ_EXPORT NQOMLSyntaxDefaultList {
 public:
  explicit NQOMLSyntaxDefaultList(NQOMLSyntaxFieldList* fields,
                                  NQOMLSyntaxDefaultList* next = nullptr)
      : fields_(fields), next_(next) {}
  NQOMLSyntaxDefaultList(const NQOMLSyntaxDefaultList&) = delete;
  NQOMLSyntaxDefaultList& operator=(const NQOMLSyntaxDefaultList&) = delete;
  ~NQOMLSyntaxDefaultList();

  NQOMLSyntaxFieldList* pFieldList() const { return fields_; }
  NQOMLSyntaxDefaultList* pNext() const { return next_; }
  // Links `chain` behind the last node.
  void append(NQOMLSyntaxDefaultList* chain);

 private:
  friend class NQOMLSyntaxObject;
  friend class nqdetail::SyntaxArena;

  static void destroyChain(NQOMLSyntaxDefaultList* first);

  NQOMLSyntaxFieldList* fields_;
  NQOMLSyntaxDefaultList* next_;
  bool inArena_ = false;
};

#endif  // NQ_OML_SYNTAX_LIST_H
