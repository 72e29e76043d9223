// names.h -- what names are made of, the kinds of them, and which one was meant.

#ifndef NQ_OML_GRAMMAR_NAMES_H
#define NQ_OML_GRAMMAR_NAMES_H

#include <optional>
#include <string_view>

#include "nq/oml/definitions.h"

class NQOMLStatic;
class NQStringPool;

namespace nqdetail {

// The letters of ASCII only, whatever the locale.
constexpr char upperCase(char c) {
  return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}
constexpr bool isLetter(char c) {
  return upperCase(c) >= 'A' && upperCase(c) <= 'Z';
}
constexpr bool isDigit(char c) {
  return c >= '0' && c <= '9';
}
constexpr bool isNameCharacter(char c) {
  return isLetter(c) || isDigit(c) || c == '_' || c == '$';
}
// Whether `name`, in any case, is `stored`, which is in upper case.
bool isNamed(std::string_view stored, std::string_view name);

// The kinds of names, in the order in which a reader looks a name up: the first kind
// that knows it decides.
enum class NameKind { kObjectType, kSection, kField, kEnumerator };

const char* kindText(NameKind kind);         // "object type", "section", ...
const char* kindText(NQFieldTypeEnum type);  // "integer", "boolean", ...
const NQStringPool& poolOf(const NQOMLStatic& grammar, NameKind kind);

// The kind that a reader takes `name` for; none for an unknown one, and for
// "$toplevel$", which files cannot name.
std::optional<NameKind> kindOf(const NQOMLStatic& grammar, std::string_view name);

struct NearName {
  std::string_view name;  // as it was first written; the grammar's
  NameKind kind;
};

// The name that `word` was probably meant to be: the one with the fewest
// differences, if those are few for its length; among equals the first of the
// alphabet. Only names of `kind` when it is given. Takes time in proportion to the
// number of names, however long they are.
std::optional<NearName> nearestName(const NQOMLStatic& grammar, std::string_view word,
                                    std::optional<NameKind> kind = std::nullopt);

// The number of characters to insert, remove, replace or swap with their
// neighbour that turns `a` into `b`, or `limit` + 1 when it is above `limit`.
// (Optimal string alignment: F. Damerau, "A technique for computer detection
// and correction of spelling errors", 1964.)
int editDistance(std::string_view a, std::string_view b, int limit);

}  // namespace nqdetail

#endif  // NQ_OML_GRAMMAR_NAMES_H
