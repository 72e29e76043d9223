#include "tools/nqoml/names.h"

#include "nq/core/string_pool.h"
#include "nq/oml/grammar.h"

namespace nqoml {

Names::Names(const NQOMLStatic& grammar) : grammar_(grammar) {
  const NQStringPool& types = *grammar.pObjTypePool();
  for (nqLong index = 0; index < types.decodeTableMax(); ++index) {
    addScope(*grammar.pObjTypeDefinition(index), {types.decode(index), {}});
  }
}

// Sections nest to a few levels only.
void Names::addScope(const NQOMLDefScope& definition, const Scope& scope) {
  for (nqLong number = 1; number <= definition.numberOfFields(); ++number) {
    const NQOMLDefField* const field = definition.pFieldNumbered(number);
    if (field == nullptr) break;
    FieldEntry entry{scope,
                     spelling(grammar_.pFieldPool()->decode(field->nameIndex())),
                     field->fieldType(),
                     field->required() != 0,
                     {}};
    const NQStringPool& values = field->fieldType() == NQ_ENUMERATION_FIELD
                                     ? *grammar_.pEnumPool()
                                     : *grammar_.pObjTypePool();
    for (auto* value = field->pValueList(); value != nullptr; value = value->next) {
      entry.values.emplace_back(values.decode(value->index));
    }
    fields.push_back(std::move(entry));
  }
  for (auto* type = definition.pObjectTypeList(); type != nullptr; type = type->next) {
    containers.emplace(grammar_.pObjTypePool()->decode(type->index), scope);
  }
  for (nqLong number = 1; number <= definition.numberOfSections(); ++number) {
    const NQOMLDefSection& section =
        *definition.pSectionNumbered(static_cast<nqULong>(number));
    Scope inner = scope;
    inner.sections.emplace_back(grammar_.pSectionPool()->decode(section.nameIndex()));
    sections.insert(inner);
    addScope(section, inner);
  }
}

std::optional<NameKind> Names::kindOf(std::string_view name) const {
  return nqdetail::kindOf(grammar_, name);
}

std::string Names::spelling(std::string_view name) const {
  return std::string(grammar_.spelling(name));
}

std::string Names::spelling(const Scope& scope) const {
  std::string text;
  for (auto section = scope.sections.rbegin(); section != scope.sections.rend();
       ++section) {
    text += "section `" + spelling(*section) + "' of ";
  }
  return text + "`" + spelling(scope.type) + "'";
}

std::optional<nqdetail::NearName> Names::nearest(std::string_view word) const {
  return nqdetail::nearestName(grammar_, word);
}

}  // namespace nqoml
