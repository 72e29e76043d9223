#include "tools/nqoml/advice.h"

#include "tools/nqoml/source.h"
#include "tools/nqoml/text.h"

#include <algorithm>
#include <set>

namespace nqoml {

namespace {

// The library's numbers of the messages that can be explained.
enum Code : int {
  kTooManyErrors = 10,
  kTooManyWarnings = 11,
  kMemoryExhausted = 12,
  kUnexpectedToken = 20,
  kUnexpectedIdentifier = 22,
  kUnexpectedValue = 23,
  kTypeExpected = 24,
  kOtherTypeExpected = 25,
  kIDExpected = 26,
  kOtherReferenceExpected = 27,
  kUndefinedObject = 28,
  kMissingField = 29,
  kFirstSectionMessage = 35,
  kLastSectionMessage = 37,
  kFirstObjectMessage = 38,
  kLastObjectMessage = 45,
  kFieldNotAllowed = 46,
  kFieldNotAllowedInSection = 47,
  kKeywordAsSection = 48,
  kOpenedOtherwise = 50,
  kClosedOtherwise = 51,
};

constexpr std::size_t kMaxUnknownWords = 1000;  // looked up for one run
constexpr std::size_t kMaxListed = 8;           // names in one piece of advice
constexpr char kTopLevel[] = "$TOPLEVEL$";

bool isBlank(char c) {
  return c == ' ' || c == '\t';
}

std::size_t skipBlanksBack(std::string_view line, std::size_t end) {
  while (end > 0 && isBlank(line[end - 1])) --end;
  return end;
}

// The name in front of position `at` and the ":" or "=" between them; empty when
// there is none.
std::string_view nameBefore(std::string_view line, std::size_t at) {
  std::size_t end = skipBlanksBack(line, std::min(at, line.size()));
  if (end == 0 || (line[end - 1] != ':' && line[end - 1] != '=')) return {};
  end = skipBlanksBack(line, end - 1);
  std::size_t begin = end;
  while (begin > 0 && isNameChar(line[begin - 1])) --begin;
  return nameAt(line.substr(0, end), begin);
}

// The word that follows the name at `at`, with at most ":" or "=" between them.
std::string_view valueAfter(std::string_view line, std::size_t at) {
  std::size_t begin = at + nameAt(line, at).size();
  const auto skipBlanks = [line, &begin] {
    while (begin < line.size() && isBlank(line[begin])) ++begin;
  };
  skipBlanks();
  if (begin < line.size() && (line[begin] == ':' || line[begin] == '=')) ++begin;
  skipBlanks();
  std::size_t end = begin;
  while (end < line.size() && (isNameChar(line[end]) || line[end] == ',')) ++end;
  return line.substr(begin, end - begin);
}

// A name as messages show it; of a very long one its beginning.
std::string quoted(std::string_view text) {
  constexpr std::size_t kLongest = 64;
  std::string name = "`";
  name += text.substr(0, kLongest);
  name += text.size() > kLongest ? "...'" : "'";
  return name;
}

// "a, b, c" of at most kMaxListed texts.
std::string listed(const std::vector<std::string>& texts) {
  std::string list;
  for (std::size_t i = 0; i < texts.size() && i < kMaxListed; ++i) {
    list += (i > 0 ? ", " : "") + texts[i];
  }
  return texts.size() > kMaxListed ? list + " ..." : list;
}

}  // namespace

std::vector<std::string> quotedPieces(std::string_view text) {
  std::vector<std::string> pieces;
  for (;;) {
    const std::size_t open = text.find('`');
    if (open == std::string_view::npos) return pieces;
    const std::size_t close = text.find('\'', open);
    if (close == std::string_view::npos) return pieces;
    pieces.emplace_back(text.substr(open + 1, close - open - 1));
    text.remove_prefix(close + 1);
  }
}

void Adviser::advise(std::vector<Diagnostic>& diagnostics) {
  const Diagnostic* previous = nullptr;
  std::set<std::string> given;  // the same advice twice helps nobody
  for (Diagnostic& diagnostic : diagnostics) {
    if (diagnostic.code == kClosedOtherwise && previous != nullptr &&
        previous->code == kOpenedOtherwise) {
      diagnostic.notes.push_back({"opened here", previous->place});
    }
    const SourceText* source =
        diagnostic.place.known() ? sources_.find(diagnostic.place.file) : nullptr;
    const std::string_view line =
        source == nullptr ? std::string_view() : source->line(diagnostic.place.line);
    std::string advice = adviceFor(diagnostic, line);
    const bool samePlace = previous != nullptr && diagnostic.place == previous->place;
    if (!advice.empty() && !(samePlace && given.count(advice) > 0)) {
      if (!samePlace) given.clear();
      given.insert(advice);
      diagnostic.notes.push_back({std::move(advice), {}});
    }
    previous = &diagnostic;
  }
}

std::string Adviser::adviceFor(const Diagnostic& diagnostic, std::string_view line) {
  const std::size_t at =
      static_cast<std::size_t>(std::max(diagnostic.place.column, 1L) - 1);
  const std::vector<std::string> pieces = quotedPieces(diagnostic.text);
  const std::string first = pieces.empty() ? std::string() : pieces.front();
  const std::string last = pieces.empty() ? std::string() : pieces.back();

  if (diagnostic.code >= kTypeExpected && diagnostic.code <= kIDExpected) {
    std::string advice = valueOfUnknown(line, at);
    if (!advice.empty()) return advice;
  }
  switch (diagnostic.code) {
    case kTooManyErrors:
      return "--max-errors N shows more of them";
    case kTooManyWarnings:
      return "--max-warnings N shows more of them";
    case kMemoryExhausted:
      return "blocks nest deeper than --max-depth allows, or a limit of the library is "
             "reached";
    case kUnexpectedToken:
      return oddToken(diagnostic, line, at);
    case kUnexpectedIdentifier:
      return unknownName(first);
    case kUnexpectedValue:
      return strayValue(line, at);
    case kTypeExpected:
      return wrongType(diagnostic.text, line, at);
    case kOtherTypeExpected:
      return allowedValues(line, at);
    case kIDExpected:
      return wrongID(line, at);
    case kOtherReferenceExpected: {
      const std::string_view word = valueAfter(line, at);
      if (word.empty()) return {};
      return "object " + quoted(word) + " is no " + quoted(names_.spelling(first));
    }
    case kUndefinedObject: {
      const std::string_view word = valueAfter(line, at);
      if (word.empty()) return {};
      return "no object " + quoted(word) +
             " stands beside this one; one inside another is named by the ids on the way "
             "to it, as in $,outer,inner";
    }
    case kMissingField:
      return missingField(first, nameAt(line, at));
    case kFieldNotAllowed:
    case kFieldNotAllowedInSection:
      return placeOfField(first, last);
    case kKeywordAsSection:
      return "is the value of " + quoted(names_.spelling(first)) + " missing?";
    default:
      break;
  }
  if (diagnostic.code >= kFirstSectionMessage && diagnostic.code <= kLastSectionMessage) {
    return placeOfSection(first, last);
  }
  if (diagnostic.code >= kFirstObjectMessage && diagnostic.code <= kLastObjectMessage) {
    return placeOfObject(first, last);
  }
  return {};
}

std::string Adviser::unknownName(std::string_view word) {
  if (word.empty() || names_.kindOf(word)) return {};
  const auto known = unknown_.find(word);
  if (known != unknown_.end()) return known->second;
  if (unknown_.size() >= kMaxUnknownWords) return {};
  std::string advice =
      quoted(word) + " is no name of the grammar and was read as an object id";
  if (const auto near = names_.nearest(word)) {
    advice += "; did you mean the " + std::string(kindText(near->kind)) + " " +
              quoted(near->name) + "?";
  }
  return unknown_[std::string(word)] = advice;
}

std::string Adviser::strayValue(std::string_view line, std::size_t at) {
  const std::string_view word = nameAt(line, at);
  if (!word.empty() && !names_.kindOf(word)) return unknownName(word);
  std::string advice = valueOfUnknown(line, at);
  if (!advice.empty()) return advice;
  return "no name of a field stands in front of this value";
}

std::string Adviser::valueOfUnknown(std::string_view line, std::size_t at) const {
  const std::string_view name = nameBefore(line, at);
  if (name.empty() || names_.kindOf(name)) return {};
  return "this is the value of " + quoted(name) + ", which is no name of the grammar";
}

std::string Adviser::wrongID(std::string_view line, std::size_t at) const {
  if (at < line.size() &&
      std::string_view(")>]}").find(line[at]) != std::string_view::npos) {
    return "a value is missing before this bracket";
  }
  const std::string_view word = nameAt(line, at);
  const auto kind = names_.kindOf(word);
  if (!kind) return {};
  const bool vowel = *kind == NameKind::kObjectType || *kind == NameKind::kEnumerator;
  return quoted(word) + " is the name of a" + (vowel ? "n " : " ") + kindText(*kind) +
         " and cannot be an id";
}

std::string Adviser::oddToken(const Diagnostic& diagnostic, std::string_view line,
                              std::size_t at) {
  if (at >= line.size()) return {};
  const char first = line[at];
  if (diagnostic.place.line == 1 && at == 0 &&
      (line.starts_with("\xef\xbb\xbf") || line.starts_with("\xff\xfe") ||
       line.starts_with("\xfe\xff"))) {
    return "the file begins with a byte order mark: save it as plain text without one";
  }
  if (isDigit(first) ||
      ((first == '-' || first == '+' || first == '.') && at + 1 < line.size() &&
       (isDigit(line[at + 1]) || line[at + 1] == '.'))) {
    return "this is no number: integers have 32 bits, real numbers one point or an "
           "exponent "
           "(1.5, 2e3), IP addresses four parts up to 255";
  }
  const Character character = firstCharacter(line.substr(at, 4));
  if (!character.valid && (first & '\xc0') == '\x80') return {};  // told at its lead byte
  if (character.valid && character.code < ' ') {
    return "control characters have no place in text; a file in the binary encoding is "
           "checked with --binary";
  }
  if (!character.valid || character.code > '~') {
    return "outside strings and comments only ASCII characters are allowed";
  }
  return {};
}

std::string Adviser::wrongType(const std::string& text, std::string_view line,
                               std::size_t at) {
  if (at >= line.size()) return {};
  const std::string_view word = nameAt(line, at);
  std::size_t digits = at + (line[at] == '-' || line[at] == '+' ? 1 : 0);
  const std::size_t firstDigit = digits;
  while (digits < line.size() && isDigit(line[digits])) ++digits;
  const bool integer = digits > firstDigit;
  if (text.starts_with("floating") && integer) {
    return "a real number has a point: " + std::string(line.substr(at, digits - at)) +
           ".0";
  }
  if (text.starts_with("string") && !word.empty()) {
    return "strings stand between quotation marks: \"" + std::string(word) + "\"";
  }
  return {};
}

std::string Adviser::allowedValues(std::string_view line, std::size_t at) {
  const std::string name = upperCase(nameBefore(line, at));
  const std::vector<std::string>* values = nullptr;
  for (const FieldEntry& field : names_.fields) {
    if (field.kind != NQ_ENUMERATION_FIELD || upperCase(field.name) != name) continue;
    if (values != nullptr && *values != field.values) return {};
    values = &field.values;
  }
  if (values == nullptr) return unknownName(nameAt(line, at));
  std::vector<std::string> spelt;
  for (const std::string& value : *values) spelt.push_back(names_.spelling(value));
  return "the values of " + quoted(names_.spelling(name)) + " are " + listed(spelt);
}

std::string Adviser::missingField(const std::string& field, std::string_view type) {
  const std::string name = upperCase(field);
  for (const FieldEntry& entry : names_.fields) {
    if (entry.required && upperCase(entry.name) == name &&
        entry.scope.type == upperCase(type)) {
      const std::string kind = kindText(entry.kind);
      const bool vowel =
          std::string_view("aeiouI").find(kind.front()) != std::string_view::npos;
      return quoted(entry.name) + " is a" + (vowel ? "n " : " ") + kind +
             " and must stand in " + names_.spelling(entry.scope);
    }
  }
  return {};
}

std::string Adviser::placeOfField(const std::string& field, std::string_view type) {
  const std::string name = upperCase(field);
  std::vector<std::string> here;
  std::set<std::string> elsewhere;
  for (const FieldEntry& entry : names_.fields) {
    if (upperCase(entry.name) != name) continue;
    if (entry.scope.type == upperCase(type)) {
      here.push_back(names_.spelling(entry.scope));
    } else {
      elsewhere.insert(quoted(names_.spelling(entry.scope.type)));
    }
  }
  if (!here.empty())
    return quoted(names_.spelling(field)) + " is a field of " + listed(here);
  if (elsewhere.empty()) return {};
  return quoted(names_.spelling(field)) + " is a field of " +
         listed({elsewhere.begin(), elsewhere.end()}) + " only";
}

std::string Adviser::placeOfSection(const std::string& section, const std::string& type) {
  std::vector<std::string> here;
  for (const Scope& scope : names_.sections) {
    if (scope.type == upperCase(type) && scope.sections.back() == upperCase(section)) {
      here.push_back(names_.spelling(
          {scope.type, {scope.sections.begin(), scope.sections.end() - 1}}));
    }
  }
  if (!here.empty())
    return quoted(names_.spelling(section)) + " is a section in " + listed(here);
  std::vector<std::string> others;
  for (const Scope& scope : names_.sections) {
    if (scope.type == upperCase(type) && scope.sections.size() == 1) {
      others.push_back(names_.spelling(scope.sections[0]));
    }
  }
  if (others.empty()) return quoted(names_.spelling(type)) + " has no sections";
  return "the sections of " + quoted(names_.spelling(type)) + " are " + listed(others);
}

std::string Adviser::placeOfObject(const std::string& what, const std::string& where) {
  // Both may be followed by " defaults".
  const std::string type = what.substr(0, what.find(' '));
  const std::string spelt = quoted(names_.spelling(type));
  if (where.ends_with(" defaults")) {
    return "in a `defaults' block stand fields, and objects of its own type";
  }
  if (where == kTopLevel) {
    std::vector<std::string> types;
    for (const auto& [child, scope] : names_.containers) {
      if (scope.type == kTopLevel) types.push_back(quoted(names_.spelling(child)));
    }
    return "outside any object stands " + listed(types) + " only";
  }
  std::vector<std::string> places;
  const auto [begin, end] = names_.containers.equal_range(type);
  for (auto container = begin; container != end; ++container) {
    places.push_back(container->second.type == kTopLevel
                         ? "outside any object"
                         : "in " + names_.spelling(container->second));
  }
  std::sort(places.begin(), places.end());
  places.erase(std::unique(places.begin(), places.end()), places.end());
  if (places.empty()) return "the grammar allows " + spelt + " nowhere";
  return spelt + " may stand " + listed(places) +
         "; is a closing bracket missing before it?";
}

}  // namespace nqoml
