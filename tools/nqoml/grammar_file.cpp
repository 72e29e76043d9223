#include "tools/nqoml/grammar_file.h"

#include "tools/nqoml/source.h"
#include "tools/nqoml/text.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <utility>

namespace nqoml {

namespace {

constexpr std::size_t kMaxProblems = 50;
constexpr std::size_t kMaxNameLength = 250;
constexpr std::size_t kMaxSectionDepth = 8;
// What a grammar may cost, whatever its lines ask for.
constexpr std::size_t kMaxEnumerators = 10000;  // of one field
constexpr std::size_t kMaxAllowed = 1000000;    // of all fields together
// Sizes of the reader's tables: enough for files of some megabytes.
constexpr nqLong kTableSize = 10000;
constexpr char kTopLevel[] = "$toplevel$";
constexpr char kAnything[] = "_";

struct Token {
  std::string_view text;
  long column = 0;

  bool isWord() const { return !text.empty() && isNameChar(text.front()); }
  bool opens() const { return text == "[" || text == "{"; }
  bool closes() const { return text == "]" || text == "}"; }
};

struct Line {
  long number = 0;
  std::vector<Token> tokens;  // never empty
};

std::vector<Token> tokenize(std::string_view line) {
  std::vector<Token> tokens;
  for (std::size_t i = 0; i < line.size();) {
    if (line[i] == ' ' || line[i] == '\t') {
      ++i;
      continue;
    }
    if (line[i] == '#' || line.substr(i, 2) == "//") break;
    std::size_t end = i;
    while (end < line.size() && isNameChar(line[end])) ++end;
    if (end == i && (line[i] == '-' || line[i] == '+')) {
      ++end;
      while (end < line.size() && isDigit(line[end])) ++end;
    }
    if (end == i)
      end += line.substr(i, 2) == ".." ? 2 : firstCharacter(line.substr(i)).length;
    tokens.push_back({line.substr(i, end - i), static_cast<long>(i) + 1});
    i = end;
  }
  return tokens;
}

std::string quoted(std::string_view text) {
  return "`" + std::string(text.substr(0, kMaxNameLength)) + "'";
}

struct Enumerator {
  std::string name;
  nqLong value;
};

// An object type or a section that is being read.
struct Block {
  Scope scope;
  long line;
  std::string_view bracket;  // that opened it; empty when none did
};

class Parser {
 public:
  Parser(GrammarFile& result, const std::string& fileName, std::string_view text)
      : result_(result), fileName_(fileName), source_(std::string(text)) {
    readLines();
  }

  void run() {
    enterBuiltIns();
    declareTypes();
    while (at_ < lines_.size() && result_.problems.size() < kMaxProblems) readTopLevel();
    if (result_.problems.size() >= kMaxProblems) {
      report(Severity::kError, -1, 0, "too many errors in the grammar");
    } else if (!failed_) {
      checkWhole();
      build();
    }
    std::stable_sort(result_.problems.begin(), result_.problems.end(),
                     [](const Diagnostic& a, const Diagnostic& b) {
                       return a.place.known() && b.place.known() &&
                              a.place.line < b.place.line;
                     });
  }

 private:
  using Declared = std::map<std::string, long>;  // upper case, and the line

  // --- lines

  void readLines() {
    std::string_view text = source_;
    if (text.substr(0, 3) == "\xef\xbb\xbf") text.remove_prefix(3);
    forEachLine(text, [this](long number, std::string_view line) {
      std::vector<Token> tokens = tokenize(line);
      if (!tokens.empty()) lines_.push_back({number, std::move(tokens)});
    });
  }

  const Line& line() const { return lines_[at_]; }

  void report(Severity severity, long line, long column, std::string text) {
    if (severity == Severity::kWarning && result_.problems.size() >= kMaxProblems) return;
    Diagnostic problem;
    problem.severity = severity;
    problem.place = {fileName_, line, column};
    problem.text = std::move(text);
    problem.message = messageLine(problem);
    result_.problems.push_back(std::move(problem));
    if (severity != Severity::kWarning) failed_ = true;
  }
  void error(const Line& at, const Token& token, std::string text) {
    report(Severity::kError, at.number, token.column, std::move(text));
  }
  void error(const Line& at, std::string text) {
    error(at, at.tokens.front(), std::move(text));
  }

  // The same for a name that is not declared, with the nearest one that is.
  void undeclared(const Line& at, const Token& token, NameKind kind, std::string text) {
    error(at, token, std::move(text));
    if (const auto near = result_.names.nearest(token.text, kind)) {
      result_.problems.back().notes.push_back(
          {"did you mean " + quoted(near->name) + "?", {}});
    }
  }

  // True when the line has only its first `count` tokens.
  bool endsAfter(const Line& at, std::size_t count) {
    if (at.tokens.size() <= count) return true;
    const Token& extra = at.tokens[count];
    error(at, extra,
          extra.opens() ? quoted(extra.text) + " must stand on a line of its own"
                        : "unexpected " + quoted(extra.text) + " after the entry");
    return false;
  }

  // Complains about a word that cannot be a name in a file.
  bool isName(const Line& at, const Token& token) {
    const char first = token.text.empty() ? '\0' : token.text.front();
    if (!isLetter(first) && first != '_') {
      error(at, token,
            quoted(token.text) + " is no name: names begin with a letter or `_'");
      return false;
    }
    if (token.text.size() > kMaxNameLength) {
      error(at, token, "this name is longer than 250 characters");
      return false;
    }
    return true;
  }

  // --- tables

  void enterBuiltIns() {
    for (const char* name :
         {"include", "input", "comment", "section", "id", "name", "field"}) {
      result_.names.add(NameKind::kField, name);
    }
    for (const char* name : {"skip", "_"}) {
      result_.names.add(NameKind::kSection, name);
    }
    for (const Enumerator& truth : {Enumerator{"true", 1}, Enumerator{"false", 0}}) {
      addEnumerator(truth.name).value = truth.value;
    }
    builtInEnumerators_ = enumerators_.size();
  }

  Enumerator& addEnumerator(std::string_view name) {
    result_.names.add(NameKind::kEnumerator, name);
    enumeratorIndex_[upperCase(name)] = enumerators_.size();
    return enumerators_.emplace_back(Enumerator{std::string(name), 0});
  }

  // Object types may be used before the entry that defines them.
  void declareTypes() {
    for (const Line& candidate : lines_) {
      if (candidate.tokens.size() >= 2 && upperCase(candidate.tokens[0].text) == "O") {
        types_.insert(upperCase(candidate.tokens[1].text));
      }
    }
    types_.insert(upperCase(kTopLevel));
  }

  void readTopLevel() {
    const Line& at = line();
    const std::string key = upperCase(at.tokens[0].text);
    if (key == "TYPES" || key == "SECTIONS" || key == "ENUMERATORS") {
      readTable(key);
    } else if (key == "O") {
      readObjectType();
    } else {
      error(at, "unexpected " + quoted(at.tokens[0].text) +
                    ": a table (`types', `sections', `enumerators') or an object type "
                    "(`O name') begins here");
      ++at_;
      // What follows in brackets belongs to the line that was not understood.
      if (at_ < lines_.size() && line().tokens[0].opens()) skipBlock();
    }
  }

  void skipBlock() {
    long depth = 0;
    do {
      for (const Token& token : line().tokens) depth += token.opens() - token.closes();
      ++at_;
    } while (depth > 0 && at_ < lines_.size());
  }

  void readTable(const std::string& key) {
    const Line& head = line();
    endsAfter(head, 1);
    if (definitionsBegun_) {
      error(head, "the table " + quoted(head.tokens[0].text) +
                      " must stand in front of the object types");
    }
    ++at_;
    if (at_ >= lines_.size() || !line().tokens[0].opens()) {
      error(head, "`[' expected on the line after " + quoted(head.tokens[0].text));
      return;
    }
    const Line& opening = line();
    endsAfter(opening, 1);
    for (++at_; at_ < lines_.size() && !line().tokens[0].closes(); ++at_) {
      if (result_.problems.size() >= kMaxProblems) return;
      if (line().tokens[0].opens()) {
        error(line(), "unexpected " + quoted(line().tokens[0].text) + " in a table");
        continue;
      }
      readTableEntry(key);
    }
    if (at_ >= lines_.size()) {
      error(opening, "this table is not closed");
      return;
    }
    checkPair(opening, line());
    endsAfter(line(), 1);
    ++at_;
  }

  void readTableEntry(const std::string& key) {
    const Line& at = line();
    const Token& name = at.tokens[0];
    if (!isName(at, name)) return;
    const std::string upper = upperCase(name.text);
    const NameKind kind = key == "TYPES"      ? NameKind::kObjectType
                          : key == "SECTIONS" ? NameKind::kSection
                                              : NameKind::kEnumerator;
    const auto [known, isNew] = declared_[kind].emplace(upper, at.number);
    if (!isNew) {
      error(at, quoted(name.text) + " is declared already in line " +
                    std::to_string(known->second));
      return;
    }
    if (kind != NameKind::kObjectType && result_.names.has(kind, name.text)) {
      error(at, quoted(name.text) + " is built in");
      return;
    }
    if (kind == NameKind::kEnumerator) {
      readEnumerator(at, name);
      return;
    }
    result_.names.add(kind, name.text);
    endsAfter(at, 1);
    if (kind == NameKind::kObjectType) {
      types_.insert(upper);
      typeNames_.emplace_back(name.text);
    } else {
      sectionNames_.emplace_back(name.text);
    }
  }

  void readEnumerator(const Line& at, const Token& name) {
    Enumerator& entry = addEnumerator(name.text);
    if (at.tokens.size() < 2) {
      error(at, "the value of " + quoted(name.text) + " is missing");
      return;
    }
    const Token& value = at.tokens[1];
    std::string_view digits = value.text;
    if (digits.front() == '+') digits.remove_prefix(1);
    nqLong number = 0;
    const auto [end, code] =
        std::from_chars(digits.data(), digits.data() + digits.size(), number);
    if (code != std::errc() || end != digits.data() + digits.size()) {
      error(at, value,
            quoted(value.text) + " is no integer of 32 bits, the value of an enumerator");
      return;
    }
    entry.value = number;
    endsAfter(at, 2);
  }

  void checkPair(const Line& opening, const Line& closing) {
    const Token& open = opening.tokens[0];
    const Token& close = closing.tokens[0];
    if ((open.text == "[") != (close.text == "]")) {
      error(closing, quoted(close.text) + " closes the " + quoted(open.text) +
                         " of line " + std::to_string(opening.number));
    }
  }

  // --- object types

  void define(const Line& at, std::string text) {
    definitions_.push_back(std::move(text));
    definitionLines_.push_back(at.number);
  }

  void readObjectType() {
    definitionsBegun_ = true;
    const Line& head = line();
    ++at_;
    if (head.tokens.size() < 2) {
      error(head, "the name of the object type is missing");
      if (at_ < lines_.size() && line().tokens[0].opens()) skipBlock();
      return;
    }
    const Token& name = head.tokens[1];
    const bool topLevel = upperCase(name.text) == upperCase(kTopLevel);
    if (!topLevel) {
      if (!isName(head, name)) return;
      result_.names.add(NameKind::kObjectType, name.text);
    }
    endsAfter(head, 2);
    define(head, "O " + std::string(name.text));
    blocks_.push_back({{upperCase(name.text), {}}, head.number, {}});
    readBracket();

    while (!blocks_.empty() && at_ < lines_.size()) {
      if (result_.problems.size() >= kMaxProblems) return;
      if (!readEntry()) break;
    }
    for (const Block& block : blocks_) {
      if (block.bracket.empty()) continue;
      report(Severity::kError, block.line, 1,
             "`" + std::string(block.bracket) + "' of " +
                 result_.names.spelling(block.scope) + " is not closed" +
                 (at_ < lines_.size()
                      ? " before the object type in line " + std::to_string(line().number)
                      : std::string()));
    }
    blocks_.clear();
  }

  // An opening bracket on the line after the head of a block.
  void readBracket() {
    if (at_ >= lines_.size() || !line().tokens[0].opens()) return;
    endsAfter(line(), 1);
    blocks_.back().bracket = line().tokens[0].text;
    blocks_.back().line = line().number;
    define(line(), std::string(line().tokens[0].text));
    ++at_;
  }

  // Reads one line; false when it begins the next object type or table.
  bool readEntry() {
    const Line& at = line();
    const Token& key = at.tokens[0];
    const std::string upper = upperCase(key.text);
    if (upper == "O") return false;
    ++at_;
    if (key.closes()) {
      const Block& block = blocks_.back();
      if (!block.bracket.empty() && (block.bracket == "[") != (key.text == "]")) {
        error(at, quoted(key.text) + " closes the " + quoted(block.bracket) +
                      " of line " + std::to_string(block.line));
      }
      endsAfter(at, 1);
      define(at, std::string(key.text));
      blocks_.pop_back();
    } else if (upper == "F") {
      readField(at);
    } else if (upper == "E") {
      readEnumeration(at);
    } else if (upper == "R") {
      readReference(at);
    } else if (upper == "T") {
      readChild(at);
    } else if (upper == "S") {
      readSection(at);
    } else {
      error(at, "unknown entry " + quoted(key.text) +
                    ": an entry begins with F, E, R, T or S and a blank");
      if (at_ < lines_.size() && line().tokens[0].opens()) skipBlock();
    }
    return true;
  }

  // The name of the entry, its second token; null (reported) when it has none.
  const Token* entryName(const Line& at, const char* what) {
    if (at.tokens.size() < 2 || !at.tokens[1].isWord()) {
      error(at, at.tokens.size() < 2 ? at.tokens[0] : at.tokens[1],
            std::string("the name of the ") + what + " is missing");
      return nullptr;
    }
    return isName(at, at.tokens[1]) ? &at.tokens[1] : nullptr;
  }

  // The end of a field's entry from token `next` on: nothing, or R.
  bool readRequired(const Line& at, std::size_t next, bool& required) {
    required = next < at.tokens.size() && upperCase(at.tokens[next].text) == "R";
    return endsAfter(at, required ? next + 1 : next);
  }

  // `text` is the entry for the library, but for the R of a required field.
  void addField(const Line& at, FieldEntry field, std::string text) {
    if (field.required) text += " R";
    field.scope = blocks_.back().scope;
    field.line = at.number;
    const std::string key = upperCase(field.name);
    const auto [position, isNew] =
        fieldsByScope_.emplace(std::pair(field.scope, key), result_.names.fields.size());
    if (!isNew) {
      const FieldEntry& first = result_.names.fields[position->second];
      if (first.kind != field.kind || first.required != field.required ||
          first.values != field.values) {
        error(at, at.tokens[1],
              "field " + quoted(field.name) + " is defined differently in line " +
                  std::to_string(first.line));
      }
      return;
    }
    result_.names.add(NameKind::kField, field.name);
    result_.names.fields.push_back(std::move(field));
    define(at, std::move(text));
  }

  void readField(const Line& at) {
    const Token* name = entryName(at, "field");
    if (name == nullptr) return;
    static constexpr struct {
      char letter;
      FieldKind kind;
    } kKinds[] = {{'I', FieldKind::kInteger}, {'B', FieldKind::kBoolean},
                  {'S', FieldKind::kString},  {'R', FieldKind::kReal},
                  {'P', FieldKind::kAddress}, {'X', FieldKind::kBinary}};
    const std::string letter = at.tokens.size() > 2 ? upperCase(at.tokens[2].text) : "";
    const auto* const kind =
        std::find_if(std::begin(kKinds), std::end(kKinds), [&letter](const auto& k) {
          return letter.size() == 1 && letter.front() == k.letter;
        });
    if (kind == std::end(kKinds)) {
      error(at, at.tokens.size() > 2 ? at.tokens[2] : *name,
            "the type of field " + quoted(name->text) +
                " must be I (integer), B (boolean), S (string), R (real), P (IP address) "
                "or X (binary value)");
      return;
    }
    FieldEntry field;
    field.name = name->text;
    field.kind = kind->kind;
    if (!readRequired(at, 3, field.required)) return;
    addField(at, std::move(field), "F " + std::string(name->text) + " " + letter);
  }

  std::optional<std::size_t> enumerator(const Line& at, const Token& token) {
    const auto known = enumeratorIndex_.find(upperCase(token.text));
    if (known != enumeratorIndex_.end()) return known->second;
    undeclared(at, token, NameKind::kEnumerator,
               quoted(token.text) + " is not in the table of enumerators");
    return std::nullopt;
  }

  void readEnumeration(const Line& at) {
    const Token* name = entryName(at, "field");
    if (name == nullptr) return;
    const std::vector<Token>& tokens = at.tokens;
    if (tokens.size() < 3 || !tokens[2].opens()) {
      error(at, tokens.size() < 3 ? *name : tokens[2],
            "the enumerators of " + quoted(name->text) +
                " are missing: E name [first second ...]");
      return;
    }
    FieldEntry field;
    field.name = name->text;
    field.kind = FieldKind::kEnumeration;
    std::string text = "E " + std::string(name->text) + " [";
    std::vector<std::size_t> allowed;
    std::size_t next = 3;
    for (; next < tokens.size() && !tokens[next].closes(); ++next) {
      const Token& token = tokens[next];
      if (token.text == ",") continue;
      if (token.text == ".." && !allowed.empty() && next + 1 < tokens.size() &&
          tokens[next + 1].isWord()) {
        const auto last = enumerator(at, tokens[++next]);
        if (!last) return;
        const std::size_t first = allowed.back();
        const auto [low, high] = std::minmax({first, *last});
        if (high - low > kMaxEnumerators - std::min(allowed.size(), kMaxEnumerators)) {
          error(at, token, "this range holds more than 10,000 enumerators");
          return;
        }
        for (std::size_t i = low + 1; i < high; ++i) allowed.push_back(i);
        if (*last != first) allowed.push_back(*last);
        text += ".." + std::string(tokens[next].text);
        continue;
      }
      if (!token.isWord()) {
        error(at, token, "unexpected " + quoted(token.text) + " among enumerators");
        return;
      }
      const auto index = enumerator(at, token);
      if (!index) return;
      allowed.push_back(*index);
      text += " " + std::string(token.text);
    }
    if (next >= tokens.size()) {
      error(at, tokens[2], "this list of enumerators is not closed");
      return;
    }
    if ((tokens[2].text == "[") != (tokens[next].text == "]")) {
      error(at, tokens[next],
            quoted(tokens[next].text) + " closes a " + quoted(tokens[2].text));
      return;
    }
    if (allowed.empty()) {
      error(at, tokens[2], "field " + quoted(name->text) + " has no enumerators");
      return;
    }
    if (!readRequired(at, next + 1, field.required)) return;
    allowedInAll_ += allowed.size();
    if (allowedInAll_ > kMaxAllowed) {
      error(at, "all enumeration fields together allow more than 1,000,000 enumerators");
      at_ = lines_.size();
      return;
    }
    for (const std::size_t index : allowed) {
      field.values.push_back(upperCase(enumerators_[index].name));
    }
    addField(at, std::move(field), text + " ]");
  }

  bool knownType(const Line& at, const Token& token) {
    if (types_.count(upperCase(token.text)) > 0) return true;
    undeclared(at, token, NameKind::kObjectType,
               "object type " + quoted(token.text) + " is not declared");
    return false;
  }

  void readReference(const Line& at) {
    const Token* name = entryName(at, "field");
    if (name == nullptr) return;
    FieldEntry field;
    field.name = name->text;
    field.kind = FieldKind::kReference;
    std::string type = kAnything;
    std::size_t next = 2;
    if (next < at.tokens.size() && at.tokens[next].isWord()) {
      const Token& token = at.tokens[next++];
      type = token.text;
      if (type != kAnything) {
        if (!knownType(at, token)) return;
        field.values.push_back(upperCase(type));
      }
    }
    if (!readRequired(at, next, field.required)) return;
    addField(at, std::move(field), "R " + std::string(name->text) + " " + type);
  }

  void readChild(const Line& at) {
    const Token* name = entryName(at, "object type");
    if (name == nullptr || !knownType(at, *name) || !endsAfter(at, 2)) return;
    result_.names.containers.emplace(upperCase(name->text), blocks_.back().scope);
    define(at, "T " + std::string(name->text));
  }

  void readSection(const Line& at) {
    const Token* name = entryName(at, "section");
    if (name != nullptr && (name->text == "_" || upperCase(name->text) == "SKIP")) {
      error(at, *name, quoted(name->text) + " has a meaning of its own in every file");
      name = nullptr;
    } else if (name != nullptr && !result_.names.has(NameKind::kSection, name->text)) {
      undeclared(at, *name, NameKind::kSection,
                 quoted(name->text) + " is not in the table of sections");
    } else if (name != nullptr &&
               blocks_.back().scope.sections.size() >= kMaxSectionDepth) {
      error(at, *name, "sections stand at most 8 inside each other");
      name = nullptr;
    }
    if (name == nullptr) {
      if (at_ < lines_.size() && line().tokens[0].opens()) skipBlock();
      return;
    }
    endsAfter(at, 2);
    define(at, "S " + std::string(name->text));
    Block block{blocks_.back().scope, at.number, {}};
    block.scope.sections.push_back(upperCase(name->text));
    result_.names.sections.insert(block.scope);
    blocks_.push_back(std::move(block));
    readBracket();
  }

  // --- the whole

  // Names that a file cannot use, and a grammar that no file can follow.
  void checkWhole() {
    static const char* const kObjectID = "written by name it is the object's id";
    for (const FieldEntry& field : result_.names.fields) {
      const std::string upper = upperCase(field.name);
      const auto kind = result_.names.kindOf(field.name);
      const bool isID = upper == "ID" || upper == "NAME";
      if (kind != NameKind::kField) {
        report(Severity::kWarning, field.line, 1,
               "field " + quoted(field.name) + " cannot be written by name: the " +
                   kindText(*kind) + " of that name is read first");
      } else if (isID) {
        report(Severity::kWarning, field.line, 1,
               "field " + quoted(field.name) +
                   " can be given by position only: " + kObjectID);
      } else if (isBuiltInField(upper)) {
        report(Severity::kWarning, field.line, 1,
               "field " + quoted(field.name) +
                   " can be given by position only: that name is built in");
      }
    }
    for (const auto& [kind, names] : declared_) {
      if (kind == NameKind::kObjectType) continue;
      for (const auto& [name, number] : names) {
        const auto first = result_.names.kindOf(name);
        if (first == kind) continue;
        report(Severity::kWarning, number, 1,
               std::string(kindText(kind)) + " " + quoted(result_.names.spelling(name)) +
                   " cannot be written by name: the " + kindText(*first) +
                   " of that name is read first");
      }
    }
    const Scope top{upperCase(kTopLevel), {}};
    const auto inTop = [&top](const auto& entry) { return entry.second == top; };
    const auto& containers = result_.names.containers;
    if (std::none_of(containers.begin(), containers.end(), inTop)) {
      report(Severity::kError, -1, -1,
             "no object type may stand at the top of a file: `O $toplevel$' with a `T' "
             "entry "
             "for each one that may is missing");
    }
  }

  static bool isBuiltInField(const std::string& upper) {
    return upper == "INCLUDE" || upper == "INPUT" || upper == "COMMENT" ||
           upper == "SECTION" || upper == "FIELD";
  }

  void build() {
    if (failed_) return;
    const auto pointers = [](const std::vector<std::string>& texts) {
      std::vector<const char*> table;
      table.reserve(texts.size() + 1);
      for (const std::string& text : texts) table.push_back(text.c_str());
      table.push_back(nullptr);
      return table;
    };
    std::vector<NQOMLStaticVEStruct> values;
    for (std::size_t i = builtInEnumerators_; i < enumerators_.size(); ++i) {
      values.push_back({enumerators_[i].name.c_str(), enumerators_[i].value});
    }
    values.push_back({nullptr, 0});
    const auto size = [](std::size_t count) { return static_cast<nqLong>(count) + 16; };
    result_.grammar = std::make_unique<NQOMLStatic>(
        pointers(typeNames_).data(), pointers(sectionNames_).data(), values.data(),
        pointers(definitions_).data(), kTableSize, size(enumerators_.size()),
        size(types_.size()), size(sectionNames_.size()),
        size(result_.names.fields.size()), kTableSize);

    const NQOMLStatic& grammar = *result_.grammar;
    for (nqLong i = 0; i < grammar.numberOfRefusedLines(); ++i) {
      const auto index = static_cast<std::size_t>(grammar.refusedLine(i));
      if (index >= definitions_.size()) continue;
      report(Severity::kError, definitionLines_[index], 1,
             definitions_[index].starts_with("S ")
                 ? "this section does not fit: at most 14 stand on one level"
                 : "this entry adds nothing to the grammar");
    }
    if (failed_) result_.grammar.reset();
  }

  GrammarFile& result_;
  const std::string& fileName_;
  std::string source_;
  std::vector<Line> lines_;
  std::size_t at_ = 0;  // the next line to read
  bool failed_ = false;
  bool definitionsBegun_ = false;

  std::vector<std::string> typeNames_;
  std::vector<std::string> sectionNames_;
  std::vector<Enumerator> enumerators_;  // by index in the library's pool
  std::size_t builtInEnumerators_ = 0;
  std::size_t allowedInAll_ = 0;  // enumerators of all enumeration fields
  std::map<std::string, std::size_t> enumeratorIndex_;  // by upper case
  std::set<std::string> types_;                         // upper case
  std::map<NameKind, Declared> declared_;               // in tables

  std::vector<Block> blocks_;  // open ones, the innermost last
  std::map<std::pair<Scope, std::string>, std::size_t> fieldsByScope_;
  std::vector<std::string> definitions_;  // what the library is given
  std::vector<long> definitionLines_;     // and where each stood
};

}  // namespace

GrammarFile parseGrammar(const std::string& fileName, std::string_view text) {
  GrammarFile result;
  Parser(result, fileName, text).run();
  return result;
}

}  // namespace nqoml
