// string_table.h -- the strings of a read: values, and the names of its files.
//
// Labels seldom come twice, so a value is stored as often as it is read; looking for
// an equal one would cost more than it saves.

#ifndef NQ_OML_TREE_STRING_TABLE_H
#define NQ_OML_TREE_STRING_TABLE_H

#include <string_view>
#include <unordered_map>

#include "nq/core/memory_internal.h"
#include "nq/platform/types.h"

namespace nqdetail {

class StringTable {
 public:
  // Stores a copy. The answer is its index, or -1 when memory is exhausted.
  nqLong add(std::string_view text) {
    auto* const copy = static_cast<char*>(bytes_.allocate(text.size() + 1));
    if (copy == nullptr || texts_.append(copy) == nullptr) return -1;
    text.copy(copy, text.size());
    copy[text.size()] = '\0';
    return texts_.size() - 1;
  }

  // The same for a text that is stored only once, the name of a file. May throw when
  // memory is exhausted.
  nqLong addOnce(std::string_view text) {
    const auto known = once_.find(text);
    if (known != once_.end()) return known->second;
    const nqLong index = add(text);
    if (index >= 0) once_.emplace(texts_[index], index);
    return index;
  }

  // The text, valid as long as the table; "" for an index that is not in use.
  const char* decode(nqLong index) const {
    return index >= 0 && index < texts_.size() ? texts_[index] : "";
  }

 private:
  Arena bytes_;
  BlockArray<const char*> texts_;
  std::unordered_map<std::string_view, nqLong> once_;
};

}  // namespace nqdetail

#endif  // NQ_OML_TREE_STRING_TABLE_H
