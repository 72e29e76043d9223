// names.h -- the names of a grammar and where they are defined, kept as a
// person wrote them: what advice is made of.

#ifndef NQ_TOOLS_NQOML_NAMES_H
#define NQ_TOOLS_NQOML_NAMES_H

#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

namespace nqoml {

// In the order in which the reader looks a name up: the first kind that knows
// it decides.
enum class NameKind { kObjectType, kSection, kField, kEnumerator };

const char* kindText(NameKind kind);  // "object type", "section", ...

enum class FieldKind {
  kInteger,
  kBoolean,
  kString,
  kReference,
  kReal,
  kEnumeration,
  kAddress,
  kBinary
};

const char* kindText(FieldKind kind);  // "integer", "boolean", ...

// Where something stands in a grammar: in an object type, inside sections from
// the outermost on. Names in upper case.
struct Scope {
  std::string type;
  std::vector<std::string> sections;

  bool operator==(const Scope& other) const = default;
  bool operator<(const Scope& other) const {
    return std::tie(type, sections) < std::tie(other.type, other.sections);
  }
};

struct FieldEntry {
  Scope scope;
  std::string name;  // as written
  FieldKind kind = FieldKind::kInteger;
  bool required = false;
  // A reference's object type ("" for any); an enumeration's enumerators,
  // ranges written out, in upper case.
  std::vector<std::string> values;
  long line = 0;  // of the grammar file
};

struct Near {
  std::string name;
  NameKind kind;
};

class Names {
 public:
  // The kind is entered once for each name; `spelling` is how to show it.
  void add(NameKind kind, std::string_view spelling);
  bool has(NameKind kind, std::string_view name) const;
  // The kind that the reader takes `name` for; none for an unknown one.
  std::optional<NameKind> kindOf(std::string_view name) const;
  // How the name was written where it was declared; `name` itself when it
  // was not.
  std::string spelling(std::string_view name) const;
  std::string spelling(const Scope& scope) const;  // "`node', section `a' in `b'"

  // The name that `word` was probably meant to be: the one with the fewest
  // differences, if those are few for its length. Bounded in time, since a
  // file may hold any number of unknown words.
  // Only names of `kind` when it is given.
  std::optional<Near> nearest(std::string_view word,
                              std::optional<NameKind> kind = std::nullopt) const;

  std::vector<FieldEntry> fields;
  std::set<Scope> sections;
  std::multimap<std::string, Scope> containers;  // child type (upper case): allowed in

 private:
  struct Entry {
    std::string spelling;
    std::set<NameKind> kinds;
  };
  std::map<std::string, Entry, std::less<>> entries_;  // by upper case
};

// The number of characters to insert, remove, replace or swap with their
// neighbour that turns `a` into `b`, or `limit` + 1 when it is above `limit`.
// (Optimal string alignment: F. Damerau, "A technique for computer detection
// and correction of spelling errors", 1964.)
int editDistance(std::string_view a, std::string_view b, int limit);

}  // namespace nqoml

#endif  // NQ_TOOLS_NQOML_NAMES_H
