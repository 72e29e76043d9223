// syntax_iter.h -- walks over the children and the fields of an object of an OML file.

#ifndef NQ_OML_SYNTAX_ITER_H
#define NQ_OML_SYNTAX_ITER_H

#include <optional>

#include "nq/core/copy_protocol.h"
#include "nq/oml/syntax_list.h"
#include "nq/oml/syntax_node.h"

// Goes through the children of an object in the order in which they were added.
class NQ_EXPORT NQOMLSyntaxObjectIter : public NQObject {
  NQ_COPY_PROTOCOL(NQOMLSyntaxObjectIter)

 public:
  NQOMLSyntaxObjectIter() = default;
  explicit NQOMLSyntaxObjectIter(const NQOMLSyntaxObject* object) { init(object); }
  void init(const NQOMLSyntaxObject* object) {
    cell_ = object == nullptr ? nullptr : object->pObjectList();
  }

  // Whether there is a current child.
  operator int() const { return cell_ != nullptr ? 1 : 0; }
  NQOMLSyntaxObjectIter& operator++() {
    if (cell_ != nullptr) cell_ = cell_->pNext();
    return *this;
  }
  // The current child, or null at the end.
  NQOMLSyntaxObject* pObject() const {
    return cell_ != nullptr ? cell_->pObject() : nullptr;
  }
  // The cell of the current child, or null at the end.
  NQOMLSyntaxObjectList* pCell() const { return cell_; }

 protected:
  void init() { cell_ = nullptr; }

 private:
  void copyFields(const NQOMLSyntaxObjectIter& source) { cell_ = source.cell_; }

  NQOMLSyntaxObjectList* cell_ = nullptr;
};

// Goes through the fields that hold for an object: first those of its defaults,
// the list added last before the others, then its own.
//
// A field with wildcards in its section path comes once for each section they
// stand for that defines it, in tree order; pField() is then a view of the field
// with the definition, section and path of that section, valid until the iterator
// moves on (the view that a reading hook receives lives as long as the tree). The field
// in the tree is never changed. A field that has no definition anywhere is passed over.
class NQ_EXPORT NQOMLSyntaxFieldIter : public NQObject {
  NQ_COPY_PROTOCOL(NQOMLSyntaxFieldIter)

 public:
  NQOMLSyntaxFieldIter() = default;
  explicit NQOMLSyntaxFieldIter(const NQOMLSyntaxObject* object) { init(object); }
  void init(const NQOMLSyntaxObject* object);

  // Whether there is a current field.
  operator int() const { return cell_ != nullptr ? 1 : 0; }
  NQOMLSyntaxFieldIter& operator++() {
    if (cell_ != nullptr && (section_ == nullptr || !settleInNextSection())) {
      cell_ = cell_->pNext();
      settle();
    }
    return *this;
  }
  // The current field, or null at the end.
  NQOMLSyntaxField* pField() const {
    return section_ != nullptr ? const_cast<NQOMLSyntaxField*>(&view_->field)
                               : pWrittenField();
  }
  // The same as it stands in the tree, wildcards and all.
  NQOMLSyntaxField* pWrittenField() const {
    return cell_ != nullptr ? cell_->pField() : nullptr;
  }

 protected:
  void init();

 private:
  friend class nqdetail::SyntaxArena;

  void copyFields(const NQOMLSyntaxFieldIter& source);

  // A field as it reads in one of the sections that its wildcards stand for.
  struct View {
    View(const NQOMLSyntaxField& written, const NQOMLDefSection& section,
         NQOMLDefField* defField);
    View(const View&) = delete;
    View& operator=(const View&) = delete;

    nqdetail::NodeKind kind;
    NQOMLSyntaxField field;
  };

  void settle();
  bool enterNextList();
  bool settleInNextSection();
  bool settleIn(NQOMLDefSection* section);

  NQOMLSyntaxFieldList* cell_ = nullptr;
  const NQOMLSyntaxDefaultList* defaults_ = nullptr;  // still to be entered
  NQOMLSyntaxFieldList* ownFields_ = nullptr;         // still to be entered
  NQOMLDefObjType* defObjType_ = nullptr;
  NQOMLDefSection* section_ = nullptr;  // where a wildcard walk stands
  std::optional<View> view_;            // the field as it reads there
};

#endif  // NQ_OML_SYNTAX_ITER_H
