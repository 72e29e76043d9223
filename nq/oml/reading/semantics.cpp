#include "nq/oml/reading/semantics.h"

#include <new>
#include <string>

#include "nq/core/string_pool.h"
#include "nq/oml/diagnostics/message_codes.h"

namespace nqdetail {

namespace {

constexpr nqLong kFirstAnonymous = -2;

}  // namespace

void SemanticPass::checkSemantics(NQOMLSyntaxObject& root) {
  collectDefaultFields(root);
  registerWrittenIDs(root, IDTable::kTop);
  nqLong anonymousCounter = kFirstAnonymous;
  collectObjects(root, IDTable::kTop, anonymousCounter);
  if (!failed()) checkRequiredFields(root, IDTable::kTop, IDTable::kTop);
  if (!failed() && !checkObjectsForApplication(root)) {
    diagnostics_.error({}, kSeveralSemanticErrors);
  }
}

void SemanticPass::collectDefaultFields(NQOMLSyntaxObject& object) {
  for (NQOMLSyntaxObjectIter child(&object); child; ++child) {
    if (object.objectIDIndex() == IDTable::kDefaults) {
      NQOMLSyntaxFieldList* const fields = object.pFieldList();
      child.pObject()->addDefaultList(fields);
      const NQOMLSyntaxDefaultList* const added = child.pObject()->pDefaultList();
      if (fields != nullptr && (added == nullptr || added->pFieldList() != fields)) {
        throw std::bad_alloc();
      }
    }
    collectDefaultFields(*child.pObject());
  }
}

void SemanticPass::registerWrittenIDs(NQOMLSyntaxObject& object, nqLong scope) {
  for (NQOMLSyntaxObjectIter iter(&object); iter; ++iter) {
    NQOMLSyntaxObject& child = *iter.pObject();
    const nqLong id = child.objectIDIndex();
    if (id == IDTable::kDefaults) {
      registerWrittenIDs(child, scope);
    } else if (id != IDTable::kNone) {
      child.objectIDIndex(ids_.inScope(id, scope));
      ids_.markWritten(child.objectIDIndex());
      registerWrittenIDs(child, child.objectIDIndex());
    }
  }
}

nqLong SemanticPass::fullObjectScopeIDIndex(NQOMLSyntaxObject& object, nqLong scope,
                                            nqLong& anonymousCounter) {
  if (object.objectIDIndex() == IDTable::kNone) {
    nqLong full = ids_.withNumber(anonymousCounter--, scope);
    while (ids_.isWritten(full)) full = ids_.withNumber(anonymousCounter--, scope);
    object.objectIDIndex(full);
    registerWrittenIDs(object, full);
  }
  return object.objectIDIndex();
}

void SemanticPass::collectObjects(NQOMLSyntaxObject& object, nqLong scope,
                                  nqLong& anonymousCounter) {
  NQOMLSyntaxObjectList* before = nullptr;
  for (NQOMLSyntaxObjectList* cell = object.pObjectList(); cell != nullptr;) {
    NQOMLSyntaxObjectList* const next = cell->pNext();
    NQOMLSyntaxObject& child = *cell->pObject();
    const nqLong id = fullObjectScopeIDIndex(child, scope, anonymousCounter);
    if (ids_.exhausted()) {
      memoryExhausted(child);
      return;
    }
    bool joined = false;
    if (id == IDTable::kDefaults) {
      collectObjects(child, scope, anonymousCounter);
    } else {
      collectObjects(child, id, anonymousCounter);
      NQOMLSyntaxObject* const first = ids_.pSyntaxObject(id);
      if (first == nullptr) {
        ids_.pSyntaxObject(id, &child);
      } else if (first->typeIndex() != child.typeIndex()) {
        error(child, kDoubleObjectOfOtherType);
      } else {
        first->append(&child);
        object.deleteObjectItem(before);
        joined = true;
      }
    }
    if (!joined) before = cell;
    cell = next;
  }
}

void SemanticPass::checkRequiredFields(NQOMLSyntaxObject& object, nqLong objectID,
                                       nqLong scope) {
  if (diagnostics_.ended()) return;
  const NQOMLDefObjType* const type = object.pDefObjType();
  const nqLong required = type == nullptr ? 0 : type->numberOfRequiredFields();
  if (seen_.size() <= static_cast<std::size_t>(required)) {
    seen_.resize(static_cast<std::size_t>(required) + 1);
  }
  ++numberOfObjects_;
  nqLong missing = required;
  std::int64_t fields = 0;
  for (NQOMLSyntaxFieldIter iter(&object); iter; ++iter, ++fields) {
    const NQOMLDefField* const definition = iter.pField()->pDefField();
    if (definition == nullptr) continue;
    // Defaults may bring fields of another type, with numbers of their own.
    if (definition->pRequiringType() == type && type != nullptr) {
      auto& last = seen_[static_cast<std::size_t>(definition->requiredNumber())];
      if (last != numberOfObjects_) --missing;
      last = numberOfObjects_;
    }
    if (definition->fieldType() == NQ_REFERENCE_FIELD) {
      checkObjectDefinition(*iter.pWrittenField(), *definition, scope);
    }
  }
  if (object.pDefaultList() != nullptr) {
    inherited_ += fields;
    if (inherited_ - extraInherited_ > maxInherited_) {
      diagnostics_.fatalError(placeOf(object), kMemoryExhausted,
                              "memory exhausted: objects inherit more than %s fields "
                              "(maxInheritedFields)",
                              std::to_string(maxInherited_).c_str());
      return;
    }
  }
  if (objectID != IDTable::kDefaults && missing > 0) {
    const NQOMLDefField* field = type->pRequiredList();
    while (seen_[static_cast<std::size_t>(field->requiredNumber())] == numberOfObjects_) {
      field = field->pNextRequired();
    }
    error(object, kMissingAttribute, grammar_.pFieldPool()->decode(field->nameIndex()));
  }
  const nqLong inner = objectID == IDTable::kDefaults ? scope : objectID;
  for (NQOMLSyntaxObjectIter child(&object); child; ++child) {
    ids_.prefetchReferencesBehind(child);
    checkRequiredFields(*child.pObject(), child.pObject()->objectIDIndex(), inner);
  }
}

void SemanticPass::checkObjectDefinition(NQOMLSyntaxField& field,
                                         const NQOMLDefField& definition, nqLong scope) {
  const NQOMLToken token = field.token();
  nqLong id = token.integer();
  if (token.tag == NQ_OML_INTEGER) id = ids_.withNumber(id);
  nqLong type = -1;
  field.reference(ids_.referenceInScope(id, scope, type));
  const nqLong expected = definition.referencedTypeIndex();
  if (ids_.exhausted()) {
    memoryExhausted(field);
  } else if (type < 0) {
    error(field, kUndefinedObject);
  } else if (expected >= 0 && expected != type) {
    error(field, kReferenceExpected, grammar_.pObjTypePool()->decode(expected));
  }
}

bool SemanticPass::checkObjectsForApplication(NQOMLSyntaxObject& object) {
  bool accepted = true;
  for (NQOMLSyntaxObjectIter child(&object); child && accepted; ++child) {
    if (diagnostics_.ended()) return false;
    if (child.pObject()->objectIDIndex() != IDTable::kDefaults) {
      accepted = hooks_.checkObject(child.pObject());
    }
    accepted = checkObjectsForApplication(*child.pObject()) && accepted;
  }
  return accepted;
}

}  // namespace nqdetail
