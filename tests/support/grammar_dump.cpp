#include "tests/support/grammar_dump.h"

#include <algorithm>
#include <vector>

#include "nq/core/string_pool.h"

namespace {

// The elements of a list whose newest comes first, oldest first.
template <class T>
std::vector<T*> oldestFirst(T* first) {
  std::vector<T*> all;
  for (; first != nullptr; first = first->pNext()) all.push_back(first);
  std::reverse(all.begin(), all.end());
  return all;
}

std::string dumpField(const NQOMLStatic& grammar, const NQOMLDefField& field) {
  std::string text = grammar.pFieldPool()->decode(field.nameIndex());
  text += ':';
  text += "IBSOREPX"[field.fieldType()];
  if (field.fieldType() == NQ_ENUMERATION_FIELD) {
    std::string values;
    for (const auto* node = field.pValueList(); node != nullptr; node = node->next) {
      if (!values.empty()) values += ',';
      values += node->index < 0 ? "?" : grammar.pEnumPool()->decode(node->index);
    }
    text += '[' + values + ']';
  } else if (field.referencedTypeIndex() >= 0) {
    text += '<';
    text += grammar.pObjTypePool()->decode(field.referencedTypeIndex());
    text += '>';
  }
  if (field.required() != 0) text += '!';
  return text;
}

std::string dumpScope(const NQOMLStatic& grammar, const NQOMLDefScope& scope) {
  std::string text;
  const auto add = [&text](const std::string& entry) {
    if (!text.empty()) text += ' ';
    text += entry;
  };
  for (const NQOMLDefField* field : oldestFirst(scope.pFieldList())) {
    add(dumpField(grammar, *field));
  }
  for (const auto* node = scope.pObjectTypeList(); node != nullptr; node = node->next) {
    add(std::string("+") + grammar.pObjTypePool()->decode(node->index));
  }
  for (const NQOMLDefSection* section : oldestFirst(scope.pSectionList())) {
    add(grammar.pSectionPool()->decode(section->nameIndex()) +
        dumpScope(grammar, *section));
  }
  return '{' + text + '}';
}

class Checker {
 public:
  Checker(const NQOMLStatic& grammar, NQOMLDefObjType& type)
      : grammar_(grammar), type_(type) {}

  std::string run() {
    check(type_, 0, nullptr);
    nqLong listed = 0;
    const NQOMLDefField* field = type_.pRequiredList();
    for (; field != nullptr; field = field->pNextRequired(), ++listed) {
      expect(field->required() != 0, "a field that is not required is listed so");
      expect(field->requiredNumber() == type_.numberOfRequiredFields() - listed,
             "required fields are not numbered newest first");
    }
    expect(listed == required_, "the list of required fields is not complete");
    return fault_;
  }

 private:
  void expect(bool holds, const char* fault) {
    if (!holds && fault_.empty()) fault_ = fault;
  }

  void check(NQOMLDefScope& scope, nqULong path, const NQOMLDefSection* self) {
    expect(type_.pScope(path) == &scope, "a path does not lead to its scope");
    nqLong number = scope.numberOfFields();
    for (NQOMLDefField* field = scope.pFieldList(); field != nullptr;
         field = field->pNext(), --number) {
      expect(field->number() == number % 65536, "a field has a wrong number");
      expect(scope.pField(field->nameIndex()) == field, "a field is not found by name");
      expect(*grammar_.pFieldPool()->decode(field->nameIndex()) != '\0',
             "a field has no name");
      if (field->required() != 0) ++required_;
      for (const auto* node = field->pValueList(); node != nullptr; node = node->next) {
        expect(field->allowsValue(node->index) == (node->index >= 0 ? 1 : 0),
               "a listed value is not permitted");
      }
    }
    expect(number == 0, "a field is not listed");
    for (const auto* node = scope.pObjectTypeList(); node != nullptr; node = node->next) {
      expect(scope.allowsObjectType(node->index) != 0, "a listed type is not permitted");
      expect(grammar_.pObjTypeDefinition(node->index) != nullptr, "a type is unknown");
    }
    number = scope.numberOfSections();
    expect(number <= 14, "a level is overfull");
    for (NQOMLDefSection* section = scope.pSectionList(); section != nullptr;
         section = section->pNext(), --number) {
      const int depth = self == nullptr ? 1 : self->depth() + 1;
      expect(depth <= 8 && section->depth() == depth, "a section has a wrong depth");
      expect(section->pParent() == self, "a section has a wrong parent");
      const auto place = static_cast<nqULong>(number) << (4 * (depth - 1));
      expect(section->path() == (path | place), "a section has a wrong path");
      expect(scope.pSection(section->nameIndex()) == section, "a section is not found");
      check(*section, section->path(), section);
    }
    expect(number == 0, "a section is not listed");
  }

  const NQOMLStatic& grammar_;
  NQOMLDefObjType& type_;
  nqLong required_ = 0;
  std::string fault_;
};

}  // namespace

std::string dumpGrammar(const NQOMLStatic& grammar) {
  std::string text;
  for (nqLong index = 0; index < grammar.pObjTypePool()->decodeTableMax(); ++index) {
    const std::string entries = dumpScope(grammar, *grammar.pObjTypeDefinition(index));
    if (index == NQ_OML_TOPLEVEL_TYPE && entries == "{}") continue;
    if (!text.empty()) text += ' ';
    text += grammar.pObjTypePool()->decode(index) + entries;
  }
  return text;
}

std::string findFault(const NQOMLStatic& grammar) {
  for (nqLong index = 0; index < grammar.pObjTypePool()->decodeTableMax(); ++index) {
    NQOMLDefObjType* const type = grammar.pObjTypeDefinition(index);
    if (type == nullptr) return "an object type has no definition";
    std::string fault = Checker(grammar, *type).run();
    if (!fault.empty()) return fault;
  }
  return "";
}
