#include "nq/oml/grammar/definition_language.h"

#include <string_view>

#include "nq/core/string_pool.h"

namespace nqdetail {

namespace {

// The letters of ASCII only, whatever the locale.
char upper(char c) {
  return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

bool isBlank(char c) {
  return c == ' ' || c == '\t';
}

bool isWordCharacter(char c) {
  return (c >= '0' && c <= '9') || (upper(c) >= 'A' && upper(c) <= 'Z') || c == '$' ||
         c == '_';
}

bool isOpeningBracket(char c) {
  return c == '[' || c == '{';
}
bool isClosingBracket(char c) {
  return c == ']' || c == '}';
}

const char* skipBlanks(const char* cursor) {
  while (isBlank(*cursor)) ++cursor;
  return cursor;
}

// Takes the mark of a required field, if it is there.
bool readRequired(const char*& cursor) {
  const std::string word = makeCopyOfNextWord(cursor);
  return word.size() == 1 && upper(word.front()) == 'R';
}

}  // namespace

std::string makeCopyOfNextWord(const char*& cursor) {
  const char* const begin = skipBlanks(cursor);
  const char* end = begin;
  while (isWordCharacter(*end)) ++end;
  cursor = end;
  return {begin, end};
}

void DefinitionReader::read() {
  while (lines_[next_] != nullptr) {
    const nqLong number = next_++;
    if (!readLine(lines_[number])) grammar_.refusedLines_.push_back(number);
  }
}

// Whether the line holds: false for a line that has no effect and should have.
bool DefinitionReader::readLine(const char* line) {
  const char* const cursor = skipBlanks(line);
  const char key = upper(*cursor);
  if (key == '\0') return true;
  if (key == 'O') return beginObjectType(cursor + 1);
  if (levels_.empty()) return false;
  if (isClosingBracket(key)) {
    levels_.pop_back();
    return true;
  }
  if (key == 'S') return beginSection(cursor + 1);
  return levels_.back().scope != nullptr && readEntry(key, cursor + 1);
}

bool DefinitionReader::readEntry(char key, const char* cursor) {
  switch (key) {
    case 'F':
      return readSimpleField(cursor);
    case 'E':
      return readEnumeration(cursor);
    case 'R':
      return readReference(cursor);
    case 'T':
      return readObjectType(cursor);
    default:
      return false;
  }
}

// An object type begins wherever its line stands, and so ends another.
bool DefinitionReader::beginObjectType(const char* cursor) {
  levels_.clear();
  type_ = grammar_.installObjType(makeCopyOfNextWord(cursor).c_str());
  if (type_ == nullptr) return false;
  levels_.push_back({type_, nullptr});
  skipOpeningBracket();
  return true;
}

bool DefinitionReader::beginSection(const char* cursor) {
  const Level& outside = levels_.back();
  NQOMLDefSection* const section =
      outside.scope == nullptr ? nullptr
                               : grammar_.addSection(*type_, outside.section,
                                                     makeCopyOfNextWord(cursor).c_str());
  levels_.push_back({section, section});
  skipOpeningBracket();
  return section != nullptr;
}

bool DefinitionReader::readSimpleField(const char* cursor) {
  constexpr std::string_view kLetters = "IBSRPX";
  constexpr NQFieldTypeEnum kTypes[] = {NQ_INTEGER_FIELD,    NQ_BOOLEAN_FIELD,
                                        NQ_STRING_FIELD,     NQ_REAL_FIELD,
                                        NQ_IP_ADDRESS_FIELD, NQ_BINARY_FIELD};
  const std::string name = makeCopyOfNextWord(cursor);
  const std::string letter = makeCopyOfNextWord(cursor);
  if (letter.size() != 1) return false;
  const std::size_t type = kLetters.find(upper(letter.front()));
  if (type == std::string_view::npos) return false;
  return addField(name, kTypes[type], readRequired(cursor)) != nullptr;
}

bool DefinitionReader::readEnumeration(const char* cursor) {
  const std::string name = makeCopyOfNextWord(cursor);
  IndexList values;
  readEnumerators(cursor, values);
  NQOMLDefField* const field = addField(name, NQ_ENUMERATION_FIELD, readRequired(cursor));
  if (field == nullptr) return false;
  // A field that has its values keeps them.
  if (field->pValueList() == nullptr) {
    for (auto* node = values.pFirst(); node != nullptr; node = node->next) {
      field->values_.add(node->index);
    }
  }
  return field->values_ == values;
}

bool DefinitionReader::readReference(const char* cursor) {
  const std::string name = makeCopyOfNextWord(cursor);
  const std::string type = makeCopyOfNextWord(cursor);
  NQOMLDefField* const field = addField(name, NQ_REFERENCE_FIELD, readRequired(cursor));
  if (field == nullptr) return false;
  if (type.empty() || type == "_") return true;
  if (grammar_.installObjType(type.c_str()) == nullptr) return false;
  const nqLong index = grammar_.objTypePool_->lookup(type.c_str());
  if (field->pValueList() == nullptr) field->values_.add(index);
  return field->referencedTypeIndex() == index;
}

bool DefinitionReader::readObjectType(const char* cursor) {
  const std::string name = makeCopyOfNextWord(cursor);
  if (grammar_.installObjType(name.c_str()) == nullptr) return false;
  levels_.back().scope->objectTypes_.add(grammar_.objTypePool_->lookup(name.c_str()));
  return true;
}

// The list in brackets, with unknown enumerators as -1; what is no part of it
// separates as a blank does. Without an opening bracket nothing is taken.
void DefinitionReader::readEnumerators(const char*& cursor, IndexList& values) const {
  cursor = skipBlanks(cursor);
  if (!isOpeningBracket(*cursor)) return;
  ++cursor;
  while (*cursor != '\0' && !isClosingBracket(*cursor)) {
    if (!isWordCharacter(*cursor)) {
      ++cursor;
      continue;
    }
    const nqLong first = grammar_.enumPool_->lookup(makeCopyOfNextWord(cursor).c_str());
    values.add(first);
    const char* const dots = skipBlanks(cursor);
    if (dots[0] != '.' || dots[1] != '.') continue;
    cursor = dots + 2;
    const std::string word = makeCopyOfNextWord(cursor);
    if (word.empty()) continue;
    const nqLong last = grammar_.enumPool_->lookup(word.c_str());
    if (first >= 0 && last >= 0) {
      const nqLong step = first < last ? 1 : -1;
      for (nqLong index = first; index != last; index += step) values.add(index);
    }
    values.add(last);
  }
  if (*cursor != '\0') ++cursor;
}

NQOMLDefField* DefinitionReader::addField(const std::string& name, NQFieldTypeEnum type,
                                          bool required) {
  const Level& level = levels_.back();
  const nqLong index = grammar_.installFieldID(name.c_str());
  return index < 0 ? nullptr : type_->addField(*level.scope, index, type, required);
}

void DefinitionReader::skipOpeningBracket() {
  const char* const line = lines_[next_];
  if (line != nullptr && isOpeningBracket(*skipBlanks(line))) ++next_;
}

}  // namespace nqdetail
