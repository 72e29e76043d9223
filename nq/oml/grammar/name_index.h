// name_index.h -- what a name means, by one look-up.
//
// A name may be known as several things; the first of these decides: an object
// type, a section of the grammar, a section that the file declared, a field of
// the grammar, a field that the file declared, an enumerator. The index holds for
// each name what it means now. Files repeat their names in much the same order,
// so a look-up first tries the name that followed the last one before.

#ifndef NQ_OML_GRAMMAR_NAME_INDEX_H
#define NQ_OML_GRAMMAR_NAME_INDEX_H

#include <deque>
#include <string>
#include <string_view>

#include "nq/core/hash_internal.h"
#include "nq/oml/token.h"

class NQOMLStatic;

namespace nqdetail {

struct NameMeaning {
  NQOMLTokenTagEnum tag = NQ_OML_UNRECOGNISED;
  nqLong index = -1;
  int declared = 0;  // a field that the file declared
};

class NameIndex {
 public:
  // Knows the grammar's names.
  explicit NameIndex(const NQOMLStatic& grammar);

  // The meaning of a name, without regard to the case of ASCII letters; null
  // when it has none.
  const NameMeaning* lookup(std::string_view name);

  // Names that the file declares, with their indices as tokens bear them.
  void declareSection(std::string_view name, nqLong index);
  void declareField(std::string_view name, nqLong index);

 private:
  // What decides first comes first.
  enum Rank {
    kObjectType,
    kSection,
    kDeclaredSection,
    kField,
    kDeclaredField,
    kEnumerator
  };

  struct Entry {
    std::string name;  // in upper case
    Rank rank;
    NameMeaning meaning;
    Entry* follower;  // looked up after this one the last time
  };

  void add(std::string_view name, Rank rank, const NameMeaning& meaning);
  Entry* find(std::string_view name, std::uint32_t hash);

  HashIndex index_;
  std::deque<Entry> entries_;
  Entry* last_ = nullptr;  // the name looked up last
};

}  // namespace nqdetail

#endif  // NQ_OML_GRAMMAR_NAME_INDEX_H
