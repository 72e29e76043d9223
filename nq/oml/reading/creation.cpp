#include "nq/oml/reading/creation.h"

#include <cstdint>

#include "nq/oml/diagnostics/message_codes.h"

namespace nqdetail {

void updateObject(IDTable& ids, NQIndexHashTable* numbers, nqLong objectIDIndex,
                  NQObject* old, NQObject* replacement) {
  if (old != replacement) delete old;
  ids.pObject(objectIDIndex, replacement);
  if (numbers != nullptr && replacement != nullptr) {
    numbers->update(static_cast<nqInt64>(reinterpret_cast<std::intptr_t>(replacement)),
                    ids.trailingNumber(objectIDIndex));
  }
}

void ObjectCreation::execute(NQOMLSyntaxObject& root) {
  createAllObjects(root);
  if (!failed() && !setOwnedFields(root, root)) {
    diagnostics_.warning({}, kUnableToSetFields);
  }
}

void ObjectCreation::createAllObjects(NQOMLSyntaxObject& object) {
  for (NQOMLSyntaxObjectIter child(&object); child && !ended(); ++child) {
    if (child.pObject()->objectIDIndex() == IDTable::kDefaults) {
      createAllObjects(*child.pObject());
    } else {
      createTopObject(*child.pObject());
    }
  }
}

void ObjectCreation::createTopObject(NQOMLSyntaxObject& syntax) {
  NQObject* object = top_.given;
  if (object == nullptr) {
    object = hooks_.createObject(&syntax, nullptr, nullptr);
  } else if (syntax.typeIndex() != top_.givenType) {
    fatalError(syntax, kWrongTopLevelObject);
    return;
  }
  updateObject(ids_, numbers_, syntax.objectIDIndex(), nullptr, object);
  if (top_.type >= 0) {
    fatalError(syntax, kTwoTopLevelObjects);
    return;
  }
  top_.object = object;
  top_.type = syntax.typeIndex();
  createOwnedObjects(syntax, syntax);
}

void ObjectCreation::createOwnedObjects(NQOMLSyntaxObject& syntax,
                                        NQOMLSyntaxObject& ownerSyntax) {
  for (NQOMLSyntaxObjectIter iter(&syntax); iter && !ended(); ++iter) {
    NQOMLSyntaxObject& child = *iter.pObject();
    if (child.objectIDIndex() == IDTable::kDefaults) {
      createOwnedObjects(child, ownerSyntax);
      continue;
    }
    NQObject* const object =
        hooks_.createObject(&child, &ownerSyntax, objectOf(ownerSyntax));
    updateObject(ids_, numbers_, child.objectIDIndex(), nullptr, object);
    createOwnedObjects(child, child);
  }
}

bool ObjectCreation::setOwnedFields(NQOMLSyntaxObject& syntax,
                                    NQOMLSyntaxObject& ownerSyntax) {
  bool allTaken = true;
  if (syntax.objectIDIndex() != IDTable::kDefaults) {
    if (ended()) return allTaken;
    hooks_.preReadFields(&ownerSyntax, objectOf(ownerSyntax));
    for (NQOMLSyntaxFieldIter field(&syntax); field && !ended(); ++field) {
      allTaken =
          hooks_.readField(tree_.lasting(field), &ownerSyntax, objectOf(ownerSyntax)) &&
          allTaken;
    }
    if (ended()) return allTaken;
    hooks_.postReadFields(&ownerSyntax, objectOf(ownerSyntax));
  }
  for (NQOMLSyntaxObjectIter iter(&syntax); iter && !ended(); ++iter) {
    ids_.prefetchReferencesBehind(iter);
    NQOMLSyntaxObject& child = *iter.pObject();
    const bool taken = child.objectIDIndex() == IDTable::kDefaults
                           ? setOwnedFields(child, ownerSyntax)
                           : setOwnedFields(child, child);
    allTaken = taken && allTaken;
  }
  return allTaken;
}

}  // namespace nqdetail
