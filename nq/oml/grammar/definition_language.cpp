#include "nq/oml/grammar/definition_language.h"

#include <algorithm>
#include <new>
#include <string>
#include <utility>

#include "nq/core/string_pool.h"
#include "nq/oml/grammar/section_path.h"

namespace nqdetail {

namespace {

constexpr std::size_t kMaxNameLength = 250;  // in files
// What the enumerations of a file may cost, whatever its lines ask for.
constexpr std::size_t kMaxInField = 10000;
constexpr std::size_t kMaxInAll = 1000000;

// The length of the token at the front of `text`, which is not blank.
std::size_t tokenLength(std::string_view text) {
  const auto endOf = [text](std::size_t from, auto belongs) {
    while (from < text.size() && belongs(text[from])) ++from;
    return from;
  };
  if (isNameCharacter(text.front())) return endOf(0, isNameCharacter);
  if (text.front() == '-' || text.front() == '+') return endOf(1, isDigit);
  if (text.starts_with("..")) return 2;
  // The other bytes of a character beyond ASCII.
  return endOf(1, [](char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; });
}

}  // namespace

bool DefinitionReader::readLine(const char* line) {
  try {
    tokenize(line, 0);
    return readTokens();
  } catch (const std::bad_alloc&) {
    levels_.clear();  // a level may be missing
    return false;
  }
}

void DefinitionReader::tokenize(std::string_view line, nqLong number) {
  tokens_.clear();
  for (std::size_t at = 0; at < line.size();) {
    if (line[at] == ' ' || line[at] == '\t') {
      ++at;
      continue;
    }
    const bool isKey = tokens_.empty() && !strict_;
    const std::size_t length = isKey ? 1 : tokenLength(line.substr(at));
    tokens_.push_back({line.substr(at, length), number, static_cast<nqLong>(at + 1)});
    at += length;
  }
}

const DefinitionToken& DefinitionReader::token(std::size_t index) const {
  static constexpr Token kNone;
  return index < tokens_.size() ? tokens_[index] : kNone;
}

bool DefinitionReader::refuse(const Token&, const char*, Arguments,
                              std::optional<NameKind>) {
  return false;
}

bool DefinitionReader::endsAfter(std::size_t count) {
  if (!strict_ || tokens_.size() <= count) return true;
  const Token& extra = tokens_[count];
  return refuse(extra,
                extra.opens() ? "`%s' must stand on a line of its own"
                              : "unexpected `%s' after the entry",
                {extra.text});
}

bool DefinitionReader::isName(const Token& token) {
  if (!strict_) return token.isWord();
  const char first = token.text.empty() ? '\0' : token.text.front();
  if (!isLetter(first) && first != '_') {
    return refuse(token, "`%s' is no name: names begin with a letter or `_'",
                  {token.text});
  }
  return token.text.size() <= kMaxNameLength ||
         refuse(token, "this name is longer than 250 characters", {});
}

bool DefinitionReader::isPair(const Token& opening, const Token& closing) {
  if ((opening.text == "[") == (closing.text == "]")) return true;
  refuse(closing, "`%s' closes the `%s' of line %s",
         {closing.text, opening.text, std::to_string(opening.line)});
  return note(opening, "opened here");
}

bool DefinitionReader::readTokens() {
  const Opening opening = std::exchange(opening_, kNothing);
  if (tokens_.empty()) return true;
  const Token& key = tokens_.front();
  if (key.opens() && opening != kNothing) {
    if (opening == kSkipped) levels_.emplace_back();
    levels_.back().bracket = key;
    return levels_.back().scope == nullptr || endsAfter(1);
  }
  if (key.is('O')) return beginObjectType();
  if (levels_.empty()) {
    if (strict_) opening_ = kSkipped;
    return refuse(key,
                  "unexpected `%s': a table (`types', `sections', `enumerators') or an "
                  "object type (`O name') begins here",
                  {key.text});
  }
  if (key.closes()) return endLevel();
  if (key.is('S')) return beginSection();
  // In a file the fault was reported where it began.
  return levels_.back().scope == nullptr ? strict_ : readEntry();
}

bool DefinitionReader::readEntry() {
  const Token& key = tokens_.front();
  if (key.is('F')) return readSimpleField();
  if (key.is('E')) return readEnumeration();
  if (key.is('R')) return readReference();
  if (key.is('T')) return readObjectType();
  if (strict_) opening_ = kSkipped;
  return refuse(key,
                "unknown entry `%s': an entry begins with F, E, R, T or S and a blank",
                {key.text});
}

// An object type begins wherever its line stands, and so ends another.
bool DefinitionReader::beginObjectType() {
  endLevels(&tokens_.front());
  const Token& name = token(1);
  if (strict_) opening_ = kSkipped;
  if (strict_ && name.text.empty()) {
    return refuse(tokens_.front(), "the name of the object type is missing", {});
  }
  const nqLong known = grammar_.pObjTypePool()->lookup(name.text);
  if (known != NQ_OML_TOPLEVEL_TYPE && !isName(name)) return false;
  type_ = grammar_.pObjTypeDefinition(install(name.text));
  levels_.push_back({type_, nullptr, name.text, {}});
  opening_ = kLevel;
  return endsAfter(2);
}

bool DefinitionReader::beginSection() {
  const Level outside = levels_.back();
  NQOMLDefSection* const section =
      outside.scope == nullptr ? nullptr : readSection(outside);
  levels_.push_back({section, section, token(1).text, {}});
  opening_ = kLevel;
  return section != nullptr || (strict_ && outside.scope == nullptr);
}

// The section that the line names; null when it cannot be made.
NQOMLDefSection* DefinitionReader::readSection(const Level& outside) {
  const auto refused = [this](const Token& at, const char* format, Arguments arguments) {
    refuse(at, format, arguments);
    return nullptr;
  };
  const Token* const name = entryName("section");
  if (name == nullptr) return nullptr;
  const nqLong known = grammar_.pSectionPool()->lookup(name->text);
  if (strict_ && known >= 0 && known < NQ_OML_BUILT_IN_SECTIONS) {
    return refused(*name, "`%s' has a meaning of its own in every file", {name->text});
  }
  if (strict_ && levels_.size() > kPathLevels) {
    return refused(*name, "sections stand at most 8 inside each other", {});
  }
  if (strict_ && known < 0) {
    refuse(*name, "`%s' is not in the table of sections", {name->text},
           NameKind::kSection);
  }
  endsAfter(2);
  NQOMLDefSection* const section =
      grammar_.addSection(*type_, outside.section, name->text);
  if (section == nullptr && strict_ && type_->hasRoomForSection(outside.section)) {
    throw std::bad_alloc();
  }
  return section != nullptr
             ? section
             : refused(tokens_.front(),
                       "this section does not fit: at most 14 stand on one level", {});
}

bool DefinitionReader::endLevel() {
  const Token& key = tokens_.front();
  const Level level = levels_.back();
  levels_.pop_back();
  if (!strict_ || level.scope == nullptr) return true;
  const bool holds = level.bracket.text.empty() || isPair(level.bracket, key);
  return endsAfter(1) && holds;
}

void DefinitionReader::endLevels(const Token* next) {
  std::string where;
  for (const Level& level : levels_) {
    if (!strict_ || level.scope == nullptr) break;
    where = (level.section == nullptr ? "`" : "section `") +
            std::string(grammar_.spelling(level.name)) +
            (where.empty() ? "'" : "' of " + where);
    if (level.bracket.text.empty()) continue;
    if (next == nullptr) {
      refuse(level.bracket, "`%s' of %s is not closed", {level.bracket.text, where});
    } else {
      refuse(level.bracket, "`%s' of %s is not closed before the object type in line %s",
             {level.bracket.text, where, std::to_string(next->line)});
    }
  }
  levels_.clear();
}

// The name of the entry; null (reported) when it has none.
const DefinitionToken* DefinitionReader::entryName(const char* what) {
  const Token& name = token(1);
  if (!name.isWord()) {
    refuse(name.text.empty() ? tokens_.front() : name, "the name of the %s is missing",
           {what});
    return nullptr;
  }
  return isName(name) ? &name : nullptr;
}

bool DefinitionReader::knowsType(const Token& type) {
  return !strict_ || isDeclaredType(type.text) ||
         refuse(type, "object type `%s' is not declared", {type.text},
                NameKind::kObjectType);
}

// The end of a field's entry from token `next` on: nothing, or R.
bool DefinitionReader::readRequired(std::size_t next, bool& required) {
  required = token(next).is('R');
  return endsAfter(required ? next + 1 : next);
}

bool DefinitionReader::readSimpleField() {
  constexpr std::string_view kLetters = "IBSRPX";
  constexpr NQFieldTypeEnum kTypes[] = {NQ_INTEGER_FIELD,    NQ_BOOLEAN_FIELD,
                                        NQ_STRING_FIELD,     NQ_REAL_FIELD,
                                        NQ_IP_ADDRESS_FIELD, NQ_BINARY_FIELD};
  const Token* const name = entryName("field");
  if (name == nullptr) return false;
  const Token& letter = token(2);
  const std::size_t type =
      letter.text.size() == 1 ? kLetters.find(upperCase(letter.text.front())) : 6;
  if (type >= kLetters.size()) {
    return refuse(letter.text.empty() ? *name : letter,
                  "the type of field `%s' must be I (integer), B (boolean), S (string), "
                  "R (real), P (IP address) or X (binary value)",
                  {name->text});
  }
  bool required = false;
  return readRequired(3, required) && addField(*name, kTypes[type], required) != nullptr;
}

bool DefinitionReader::readEnumeration() {
  const Token* const name = entryName("field");
  if (name == nullptr) return false;
  std::size_t next = 2;
  IndexList values;
  if (token(2).opens()) {
    if (!readEnumerators(*name, values, next)) return false;
  } else if (strict_) {
    return refuse(token(2).text.empty() ? *name : token(2),
                  "the enumerators of `%s' are missing: E name [first second ...]",
                  {name->text});
  }
  bool required = false;
  if (!readRequired(next, required)) return false;
  NQOMLDefField* const field = addField(*name, NQ_ENUMERATION_FIELD, required);
  return field != nullptr && setValues(*name, *field, values);
}

// The list in brackets that begins at token `next`, which is left behind it. In a
// compiled table, anything that cannot be part of the list counts as a blank.
bool DefinitionReader::readEnumerators(const Token& name, IndexList& values,
                                       std::size_t& next) {
  const Token& opening = tokens_[next++];
  inField_ = 0;
  for (; next < tokens_.size() && !tokens_[next].closes(); ++next) {
    const Token& sign = tokens_[next];
    if (sign.isWord()) {
      if (!addEnumerator(sign, values)) return false;
    } else if (sign.text == ".." && tokens_[next - 1].isWord() &&
               token(next + 1).isWord()) {
      ++next;
      if (!addRange(sign, tokens_[next - 2], tokens_[next], values)) return false;
    } else if (strict_ && sign.text != ",") {
      return refuse(sign, "unexpected `%s' among enumerators", {sign.text});
    }
  }
  const Token& closing = token(next++);
  if (!strict_) return true;
  if (closing.text.empty()) {
    return refuse(opening, "this list of enumerators is not closed", {});
  }
  if ((opening.text == "[") != (closing.text == "]")) {
    return refuse(closing, "`%s' closes a `%s'", {closing.text, opening.text});
  }
  return values.pFirst() != nullptr ||
         refuse(opening, "field `%s' has no enumerators", {name.text});
}

// An unknown enumerator is entered as -1.
bool DefinitionReader::addEnumerator(const Token& token, IndexList& values) {
  const nqLong index = grammar_.pEnumPool()->lookup(token.text);
  if (strict_ && index < 0) {
    return refuse(token, "`%s' is not in the table of enumerators", {token.text},
                  NameKind::kEnumerator);
  }
  ++inField_;
  if (strict_ && ++inAll_ > kMaxInAll) {
    return refuse(tokens_.front(),
                  "all enumeration fields together allow more than 1,000,000 enumerators",
                  {});
  }
  if (!values.add(index)) throw std::bad_alloc();
  return true;
}

// All from `first`, which is in the list, to `last`.
bool DefinitionReader::addRange(const Token& dots, const Token& first, const Token& last,
                                IndexList& values) {
  const NQStringPool& pool = *grammar_.pEnumPool();
  const nqLong from = pool.lookup(first.text);
  const nqLong to = pool.lookup(last.text);
  if (from >= 0 && to >= 0) {
    const auto between = static_cast<std::size_t>(from < to ? to - from : from - to);
    if (strict_ && between > kMaxInField - std::min(inField_, kMaxInField)) {
      return refuse(dots, "this range holds more than 10,000 enumerators", {});
    }
    inField_ += between;
    inAll_ += between;
    const nqLong step = from < to ? 1 : -1;
    for (nqLong index = from; index != to; index += step) {
      if (!values.add(index)) throw std::bad_alloc();
    }
  }
  return addEnumerator(last, values);
}

bool DefinitionReader::readReference() {
  const Token* const name = entryName("field");
  if (name == nullptr) return false;
  const Token& type = token(2).isWord() ? token(2) : token(tokens_.size());
  const bool any = type.text.empty() || type.text == "_";
  if (!any && !knowsType(type)) return false;
  bool required = false;
  if (!readRequired(type.text.empty() ? 2 : 3, required)) return false;
  NQOMLDefField* const field = addField(*name, NQ_REFERENCE_FIELD, required);
  if (field == nullptr) return false;
  IndexList values;
  if (!any && !values.add(install(type.text))) throw std::bad_alloc();
  return (any && !strict_) || setValues(*name, *field, values);
}

bool DefinitionReader::readObjectType() {
  const Token* const name = entryName("object type");
  if (name == nullptr || !knowsType(*name) || !endsAfter(2)) return false;
  if (!levels_.back().scope->objectTypes_.add(install(name->text)))
    throw std::bad_alloc();
  return true;
}

NQOMLDefField* DefinitionReader::addField(const Token& name, NQFieldTypeEnum type,
                                          bool required) {
  NQOMLDefScope& scope = *levels_.back().scope;
  const nqLong index = grammar_.fields_.enter(name.text);
  if (index < 0) throw std::bad_alloc();
  const NQOMLDefField* const known = scope.pField(index);
  NQOMLDefField* const field = type_->addField(scope, index, type, required);
  isNewField_ = known == nullptr;
  if (isNewField_ && field == nullptr) throw std::bad_alloc();
  if (isNewField_) fieldAdded(field);
  if (field == nullptr) refuseOther(name, *known);
  return field;
}

// A field of a file has its values from the line that made it; in a table the first
// line that has some decides.
bool DefinitionReader::setValues(const Token& name, NQOMLDefField& field,
                                 const IndexList& values) {
  if (isNewField_ || (!strict_ && field.pValueList() == nullptr)) {
    for (auto* node = values.pFirst(); node != nullptr; node = node->next) {
      if (!field.values_.add(node->index)) throw std::bad_alloc();
    }
  }
  return field.values_ == values || refuseOther(name, field);
}

bool DefinitionReader::refuseOther(const Token& name, const NQOMLDefField& first) {
  const Token key = keyOf(&first);
  refuse(name, "field `%s' is defined differently in line %s",
         {name.text, std::to_string(key.line)});
  return note(key, "first defined here");
}

// The index of an object type, which is installed when it is new.
nqLong DefinitionReader::install(std::string_view type) {
  if (grammar_.installObjType(type) == nullptr) throw std::bad_alloc();
  return grammar_.pObjTypePool()->lookup(type);
}

}  // namespace nqdetail
