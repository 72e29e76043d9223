#include "nq/oml/syntax_list.h"

#include <new>

#include "nq/oml/tree/syntax_arena.h"

using nqdetail::SyntaxArena;

NQOMLSyntaxObjectList::~NQOMLSyntaxObjectList() {
  destroyChain(pNext());
  if (object_ == nullptr) return;
  if (object_->arena() != nullptr) {
    object_->destroyContents();
  } else {
    delete object_;
  }
}

NQOMLSyntaxObjectList* NQOMLSyntaxObjectList::cellFor(NQOMLSyntaxObject* object) {
  NQOMLSyntaxObjectList* const own = SyntaxArena::cellOf(object);
  if (own == nullptr || own->link_.isInUse()) {
    return new (std::nothrow) NQOMLSyntaxObjectList(object);
  }
  own->link_.use();
  return own;
}

void NQOMLSyntaxObjectList::destroyChain(NQOMLSyntaxObjectList* first) {
  while (first != nullptr) {
    NQOMLSyntaxObjectList* const cell = first;
    first = cell->pNext();
    cell->link_.pNext(nullptr);
    destroyOne(cell);
  }
}

// What lies in an arena is only emptied.
void NQOMLSyntaxObjectList::destroyOne(NQOMLSyntaxObjectList* cell) {
  if (cell->link_.isPartOfNode()) {
    cell->pObject()->destroyContents();
  } else {
    delete cell;
  }
}

NQOMLSyntaxFieldList::~NQOMLSyntaxFieldList() {
  destroyChain(pNext());
  if (field_ != nullptr && field_->kind_->ofOneNode) delete field_;
}

NQOMLSyntaxFieldList* NQOMLSyntaxFieldList::cellFor(NQOMLSyntaxField* field) {
  NQOMLSyntaxFieldList* const own = SyntaxArena::cellOf(field);
  if (own == nullptr || own->link_.isInUse()) {
    return new (std::nothrow) NQOMLSyntaxFieldList(field);
  }
  own->link_.use();
  return own;
}

void NQOMLSyntaxFieldList::destroyChain(NQOMLSyntaxFieldList* first) {
  while (first != nullptr) {
    NQOMLSyntaxFieldList* const cell = first;
    first = cell->pNext();
    cell->link_.pNext(nullptr);
    destroyOne(cell);
  }
}

void NQOMLSyntaxFieldList::destroyOne(NQOMLSyntaxFieldList* cell) {
  if (!cell->link_.isPartOfNode()) delete cell;
}

NQOMLSyntaxDefaultList::~NQOMLSyntaxDefaultList() {
  destroyChain(next_);
}

void NQOMLSyntaxDefaultList::append(NQOMLSyntaxDefaultList* chain) {
  NQOMLSyntaxDefaultList* last = this;
  while (last != chain && last->next_ != nullptr) last = last->next_;
  if (last != chain) last->next_ = chain;
}

void NQOMLSyntaxDefaultList::destroyChain(NQOMLSyntaxDefaultList* first) {
  while (first != nullptr) {
    NQOMLSyntaxDefaultList* const node = first;
    first = node->next_;
    node->next_ = nullptr;
    if (!node->inArena_) delete node;
  }
}
