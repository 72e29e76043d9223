#include "nq/oml/grammar_file.h"

#include <algorithm>
#include <charconv>
#include <new>
#include <string>
#include <unordered_map>
#include <utility>

#include "nq/core/message_table.h"
#include "nq/core/string_pool.h"
#include "nq/file/file.h"
#include "nq/oml/diagnostics/message_codes.h"
#include "nq/oml/encoding/lines.h"
#include "nq/oml/grammar/definition_language.h"

namespace nqdetail {

namespace {

constexpr std::size_t kMaxProblems = 50;
constexpr std::size_t kLongestShown = 250;  // of a text in a message

constexpr struct {
  std::string_view key;
  NameKind kind;
} kTables[] = {{"TYPES", NameKind::kObjectType},
               {"SECTIONS", NameKind::kSection},
               {"ENUMERATORS", NameKind::kEnumerator}};

// `format` with its "%s" replaced.
std::string filledIn(std::string_view format, const std::vector<std::string>& arguments) {
  std::string text;
  for (const std::string& argument : arguments) {
    const std::size_t place = format.find("%s");
    if (place == std::string_view::npos) break;
    text.append(format.substr(0, place)).append(argument);
    format.remove_prefix(place + 2);
  }
  return text.append(format);
}

class GrammarFileReader : public DefinitionReader {
 public:
  GrammarFileReader(NQOMLStatic& grammar, std::string_view text, const char* displayName,
                    std::vector<NQOMLDiagnostic>& diagnostics)
      : DefinitionReader(grammar, kFile),
        text_(text),
        displayName_(displayName == nullptr ? "" : displayName),
        diagnostics_(diagnostics),
        types_(64, 64, 0, 0) {}

  // Whether the text is a grammar.
  bool read() {
    eachLine([this] { declareType(); });
    eachLine([this] { readLine(); });
    if (diagnostics_.size() < kMaxProblems) readEnd();
    if (diagnostics_.size() >= kMaxProblems) {
      report(NQ_OML_ERROR, {}, "too many errors in the grammar", {});
    } else if (!failed_) {
      checkNames();
      checkTopLevel();
    }
    std::stable_sort(diagnostics_.begin(), diagnostics_.end(),
                     [](const NQOMLDiagnostic& a, const NQOMLDiagnostic& b) {
                       return a.first.isKnown() &&
                              (!b.first.isKnown() || a.first.line < b.first.line);
                     });
    return !failed_;
  }

 private:
  // A name that a line of a table declared, or a field that a definition line made.
  struct Origin {
    Token key;  // the first of the line
    std::string_view name;
    NameKind kind;
  };
  struct Table {
    NameKind kind;
    Token head;
    Token bracket;  // empty as long as none has opened the table
  };

  // Calls `use` with the tokens of each line that has some, until there are too many
  // errors.
  template <class Use>
  void eachLine(Use use) {
    std::size_t start = text_.starts_with("\xef\xbb\xbf") ? 3 : 0;
    std::size_t length = 0;
    nqLong number = 0;
    while (start < text_.size() && diagnostics_.size() < kMaxProblems) {
      const std::size_t next = nextLine(text_, start, length);
      std::string_view line = text_.substr(start, length);
      line = line.substr(0, std::min(line.find('#'), line.find("//")));
      tokenize(line, ++number);
      if (!tokens().empty()) use();
      start = next;
    }
  }

  // Object types may be used before the entry that defines them.
  void declareType() {
    if (token(0).is('O') && !token(1).text.empty()) declare(token(1).text);
  }
  void declare(std::string_view type) {
    if (types_.update(type) < 0) throw std::bad_alloc();
  }
  bool isDeclaredType(std::string_view type) const override {
    return types_.lookup(type) >= 0 ||
           grammar_.pObjTypePool()->lookup(type) == NQ_OML_TOPLEVEL_TYPE;
  }

  void readLine() {
    if (table_ && readTableLine()) return;
    if (isOutside()) {
      const auto* const table = std::find_if(
          std::begin(kTables), std::end(kTables),
          [this](const auto& row) { return isNamed(row.key, token(0).text); });
      if (table != std::end(kTables)) return beginTable(table->kind);
    }
    if (token(0).is('O')) definitionsBegun_ = true;
    readTokens();
  }

  void readEnd() {
    if (table_ && table_->bracket.text.empty()) {
      missingBracket();
    } else if (table_) {
      refuse(table_->bracket, "this table is not closed", {});
    }
    endLevels(nullptr);
  }

  // --- tables

  void beginTable(NameKind kind) {
    table_ = {kind, token(0), {}};
    endsAfter(1);
    if (definitionsBegun_) {
      refuse(token(0), "the table `%s' must stand in front of the object types",
             {token(0).text});
    }
  }

  void missingBracket() {
    refuse(table_->head, "`[' expected on the line after `%s'", {table_->head.text});
  }

  // False when the line does not belong to the table.
  bool readTableLine() {
    const Token& first = token(0);
    if (table_->bracket.text.empty()) {
      if (!first.opens()) {
        missingBracket();
        table_.reset();
        return false;
      }
      table_->bracket = first;
      endsAfter(1);
    } else if (first.closes()) {
      isPair(table_->bracket, first);
      endsAfter(1);
      table_.reset();
    } else if (first.opens()) {
      refuse(first, "unexpected `%s' in a table", {first.text});
    } else {
      readName();
    }
    return true;
  }

  void readName() {
    const Token& name = token(0);
    const NQStringPool& pool = poolOf(grammar_, table_->kind);
    if (!isName(name)) return;
    const nqLong known = pool.lookup(name.text);
    if (const Origin* const first = originOf(pool.decode(known)); first != nullptr) {
      refuse(name, "`%s' is declared already in line %s",
             {name.text, std::to_string(first->key.line)});
      note(first->key, "first declared here");
      return;
    }
    if (known >= 0 && table_->kind != NameKind::kObjectType) {
      refuse(name, "`%s' is built in", {name.text});
      return;
    }
    const std::string text(name.text);
    bool entered = false;
    switch (table_->kind) {
      case NameKind::kObjectType:
        declare(name.text);
        entered = grammar_.installObjTypeID(text.c_str(), nullptr, nullptr, nullptr,
                                            nullptr) != nullptr;
        break;
      case NameKind::kSection:
        entered = grammar_.installSectionID(text.c_str()) >= 0;
        break;
      default:
        // In case of an error it is known nevertheless.
        entered = grammar_.installEnumValueID(text.c_str(), readValue()) != 0;
    }
    if (!entered) throw std::bad_alloc();
    addOrigin(pool.decode(pool.lookup(name.text)), name, table_->kind);
    if (table_->kind != NameKind::kEnumerator) endsAfter(1);
  }

  // The number behind an enumerator; 0 after an error.
  nqLong readValue() {
    const Token& value = token(1);
    if (value.text.empty()) {
      refuse(token(0), "the value of `%s' is missing", {token(0).text});
      return 0;
    }
    const char* const end = value.text.data() + value.text.size();
    nqLong number = 0;
    const auto [stop, code] = std::from_chars(
        value.text.data() + (value.text.front() == '+' ? 1 : 0), end, number);
    if (code != std::errc() || stop != end) {
      refuse(value, "`%s' is no integer of 32 bits, the value of an enumerator",
             {value.text});
      return 0;
    }
    endsAfter(2);
    return number;
  }

  // --- the whole

  void addOrigin(const void* thing, const Token& name, NameKind kind) {
    originsByThing_.emplace(thing, origins_.size());
    origins_.push_back({token(0), name.text, kind});
  }
  // The origin of a name, known by its text in the pool, or of a field; null for
  // others.
  const Origin* originOf(const void* thing) const {
    const auto found = originsByThing_.find(thing);
    return found == originsByThing_.end() ? nullptr : &origins_[found->second];
  }
  void fieldAdded(const NQOMLDefField* field) override {
    addOrigin(field, token(1), NameKind::kField);
  }
  Token keyOf(const NQOMLDefField* field) const override { return originOf(field)->key; }

  // Warns of names that a file cannot use.
  void checkNames() {
    const auto warn = [this](const Token& at, const char* format, Arguments arguments) {
      if (diagnostics_.size() < kMaxProblems) {
        report(NQ_OML_WARNING, at, format, arguments);
      }
    };
    for (const auto& [key, name, kind] : origins_) {
      const NameKind first = *kindOf(grammar_, name);
      const nqLong field = grammar_.pFieldPool()->lookup(name);
      if (kind == NameKind::kObjectType) continue;
      if (first != kind) {
        warn(key, "%s `%s' cannot be written by name: the %s of that name is read first",
             {kindText(kind), grammar_.spelling(name), kindText(first)});
      } else if (kind != NameKind::kField || field >= NQ_OML_BUILT_IN_FIELDS) {
        continue;
      } else if (field == NQ_OML_ID_FIELD || field == NQ_OML_NAME_FIELD) {
        warn(key,
             "field `%s' can be given by position only: written by name it is the "
             "object's id",
             {name});
      } else {
        warn(key, "field `%s' can be given by position only: that name is built in",
             {name});
      }
    }
  }

  // Complains about a grammar that no file can follow.
  void checkTopLevel() {
    if (grammar_.pObjTypeDefinition(NQ_OML_TOPLEVEL_TYPE)->pObjectTypeList() != nullptr) {
      return;
    }
    refuse({},
           "no object type may stand at the top of a file: `O $toplevel$' with a `T' "
           "entry for each one that may is missing",
           {});
  }

  // --- diagnostics

  bool refuse(const Token& at, const char* format, Arguments arguments,
              std::optional<NameKind> similar = std::nullopt) override {
    report(NQ_OML_ERROR, at, format, arguments);
    failed_ = true;
    if (const auto near =
            similar ? nearestName(grammar_, at.text, similar) : std::nullopt) {
      diagnostics_.back().hint = "did you mean `" + std::string(near->name) + "'?";
    }
    return false;
  }
  bool note(const Token& at, const char* text) override {
    diagnostics_.back().notes.push_back({text, displayName_, placeOf(at, 0)});
    return false;
  }

  void report(NQOMLSeverityEnum severity, const Token& at, const char* format,
              Arguments arguments) {
    NQOMLDiagnostic diagnostic;
    diagnostic.severity = severity;
    diagnostic.file = displayName_;
    if (at.line > 0) {
      diagnostic.first = placeOf(at, 0);
      diagnostic.last = placeOf(at, at.text.size() - 1);
    }
    for (const std::string_view argument : arguments) {
      diagnostic.arguments.emplace_back(argument.substr(0, kLongestShown));
    }
    diagnostic.text = filledIn(format, diagnostic.arguments);
    diagnostics_.push_back(std::move(diagnostic));
  }

  // A byte of a token, which belongs to the text.
  NQOMLDiagnosticPlace placeOf(const Token& token, std::size_t byte) const {
    return {token.line, token.column + static_cast<nqLong>(byte),
            token.text.data() - text_.data() + static_cast<std::ptrdiff_t>(byte)};
  }

  const std::string_view text_;
  const std::string displayName_;
  std::vector<NQOMLDiagnostic>& diagnostics_;
  bool failed_ = false;
  bool definitionsBegun_ = false;
  std::optional<Table> table_;  // that is being read
  NQStringPool types_;          // all that are declared, wherever
  std::vector<Origin> origins_;
  std::unordered_map<const void*, std::size_t> originsByThing_;
};

// What is wrong with the whole file, when nothing more can be said.
std::unique_ptr<NQOMLStatic> refuseWhole(const char* file, int code, std::string text,
                                         std::vector<NQOMLDiagnostic>& diagnostics) {
  NQOMLDiagnostic diagnostic;
  diagnostic.code = code;
  diagnostic.severity = NQ_OML_FATAL_ERROR;
  diagnostic.file = file == nullptr ? "" : file;
  diagnostic.text = std::move(text);
  diagnostics.clear();
  diagnostics.push_back(std::move(diagnostic));
  return nullptr;
}

// `read`, and a diagnostic when memory is exhausted.
template <class Read>
std::unique_ptr<NQOMLStatic> whileMemoryLasts(const char* file,
                                              std::vector<NQOMLDiagnostic>& diagnostics,
                                              Read read) {
  try {
    diagnostics.clear();
    return read();
  } catch (const std::bad_alloc&) {
  }
  try {
    return refuseWhole(file, kMemoryExhausted, getStringResource(kMemoryExhausted),
                       diagnostics);
  } catch (const std::bad_alloc&) {
    diagnostics.clear();
    return nullptr;
  }
}

}  // namespace

}  // namespace nqdetail

std::unique_ptr<NQOMLStatic> nqReadGrammarText(
    std::string_view text, const char* displayName,
    std::vector<NQOMLDiagnostic>& diagnostics) {
  using namespace nqdetail;
  return whileMemoryLasts(
      displayName, diagnostics, [&]() -> std::unique_ptr<NQOMLStatic> {
        if (text.size() > NQ_OML_LARGEST_GRAMMAR_FILE) {
          return refuseWhole(displayName, NQ_OML_NO_CODE,
                             "a grammar file has at most 16 megabytes", diagnostics);
        }
        auto grammar = std::make_unique<NQOMLStatic>();
        GrammarFileReader reader(*grammar, text, displayName, diagnostics);
        return reader.read() ? std::move(grammar) : nullptr;
      });
}

std::unique_ptr<NQOMLStatic> nqReadGrammarFile(
    const char* fileName, std::vector<NQOMLDiagnostic>& diagnostics) {
  using namespace nqdetail;
  return whileMemoryLasts(fileName, diagnostics, [&]() -> std::unique_ptr<NQOMLStatic> {
    NQFile file;
    file.sharedReading(1);
    if (file.open(fileName, NQ_READ_BINARY) != NQ_FILE_OK) {
      const std::string name = fileName == nullptr ? "" : fileName;
      refuseWhole(fileName, kCannotOpen, filledIn(getStringResource(kCannotOpen), {name}),
                  diagnostics);
      diagnostics.back().arguments = {name};
      return nullptr;
    }
    std::string text;
    while (file.endOfFile() == 0 && text.size() <= NQ_OML_LARGEST_GRAMMAR_FILE) {
      char piece[4096];
      int count = sizeof piece;
      if (file.readBinary(piece, count) != NQ_FILE_OK) {
        return refuseWhole(fileName, kSomethingWrong, getStringResource(kSomethingWrong),
                           diagnostics);
      }
      text.append(piece, static_cast<std::size_t>(count));
    }
    (void)file.close();
    return nqReadGrammarText(text, fileName, diagnostics);
  });
}
