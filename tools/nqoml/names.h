// names.h -- the names of a grammar and where they are defined, as a person wrote
// them: what advice is made of.

#ifndef NQ_TOOLS_NQOML_NAMES_H
#define NQ_TOOLS_NQOML_NAMES_H

#include "nq/oml/grammar/names.h"

#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

namespace nqoml {

using nqdetail::kindText;
using nqdetail::NameKind;

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
  NQFieldTypeEnum kind = NQ_INTEGER_FIELD;
  bool required = false;
  // A reference's object type (none for any); an enumeration's enumerators. In upper
  // case.
  std::vector<std::string> values;
};

class Names {
 public:
  // Borrows the grammar, and knows all that it has now.
  explicit Names(const NQOMLStatic& grammar);

  // The kind that the reader takes `name` for; none for an unknown one.
  std::optional<NameKind> kindOf(std::string_view name) const;
  // How the name was written where it was declared; `name` itself when it
  // was not.
  std::string spelling(std::string_view name) const;
  std::string spelling(const Scope& scope) const;  // "section `a' of `node'"

  // The name that `word` was probably meant to be.
  std::optional<nqdetail::NearName> nearest(std::string_view word) const;

  std::vector<FieldEntry> fields;
  std::set<Scope> sections;
  std::multimap<std::string, Scope> containers;  // child type (upper case): allowed in

 private:
  void addScope(const NQOMLDefScope& definition, const Scope& scope);

  const NQOMLStatic& grammar_;
};

}  // namespace nqoml

#endif  // NQ_TOOLS_NQOML_NAMES_H
