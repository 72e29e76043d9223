#include "nq/oml/grammar/names.h"

#include <algorithm>
#include <cstdlib>
#include <string>
#include <vector>

#include "nq/core/hash_internal.h"
#include "nq/core/string_pool.h"
#include "nq/oml/grammar.h"

namespace nqdetail {

namespace {

constexpr std::size_t kLongestWord = 64;  // longer ones are not compared
constexpr NameKind kKinds[] = {NameKind::kObjectType, NameKind::kSection,
                               NameKind::kField, NameKind::kEnumerator};

}  // namespace

bool isNamed(std::string_view stored, std::string_view name) {
  return stored.size() == name.size() &&
         equalsText<true>(name.data(), stored.data(), name.size());
}

const char* kindText(NameKind kind) {
  static constexpr const char* kTexts[] = {"object type", "section", "field",
                                           "enumerator"};
  return kTexts[static_cast<std::size_t>(kind)];
}

const char* kindText(NQFieldTypeEnum type) {
  static constexpr const char* kTexts[] = {"integer",    "boolean",     "string",
                                           "reference",  "real number", "enumeration",
                                           "IP address", "binary value"};
  return kTexts[type];
}

const NQStringPool& poolOf(const NQOMLStatic& grammar, NameKind kind) {
  switch (kind) {
    case NameKind::kObjectType:
      return *grammar.pObjTypePool();
    case NameKind::kSection:
      return *grammar.pSectionPool();
    case NameKind::kField:
      return *grammar.pFieldPool();
    case NameKind::kEnumerator:
      break;
  }
  return *grammar.pEnumPool();
}

std::optional<NameKind> kindOf(const NQOMLStatic& grammar, std::string_view name) {
  for (const NameKind kind : kKinds) {
    const nqLong index = poolOf(grammar, kind).lookup(name);
    if (index > NQ_OML_TOPLEVEL_TYPE || (index == 0 && kind != NameKind::kObjectType)) {
      return kind;
    }
  }
  return std::nullopt;
}

std::optional<NearName> nearestName(const NQOMLStatic& grammar, std::string_view word,
                                    std::optional<NameKind> wanted) {
  if (word.size() < 2 || word.size() > kLongestWord) return std::nullopt;
  std::string upper(word);
  makeUpperCase(upper.data(), upper.size());
  const int most = std::min(static_cast<int>((word.size() + 2) / 4), 3);
  int best = most;
  std::string_view found;
  std::optional<NameKind> kind;
  for (const NameKind candidate : kKinds) {
    if (wanted && *wanted != candidate) continue;
    const NQStringPool& pool = poolOf(grammar, candidate);
    const nqLong first =
        candidate == NameKind::kObjectType ? NQ_OML_TOPLEVEL_TYPE + 1 : nqLong{0};
    for (nqLong index = first; index < pool.decodeTableMax(); ++index) {
      const std::string_view name = pool.decode(index);
      const int distance = editDistance(upper, name, best);
      if (distance == 0 || distance > best) continue;
      if (distance == best && kind && found <= name) continue;
      best = distance;
      found = name;
      kind = candidate;
    }
  }
  if (!kind) return std::nullopt;
  return NearName{grammar.spelling(found), *kind};
}

int editDistance(std::string_view a, std::string_view b, int limit) {
  const std::size_t rows = a.size();
  const std::size_t columns = b.size();
  const auto apart = rows > columns ? rows - columns : columns - rows;
  if (limit < 0 || apart > static_cast<std::size_t>(limit)) return limit + 1;

  // Rows i - 2, i - 1 and i of the table of distances between fronts.
  std::vector<int> older(columns + 1);
  std::vector<int> old(columns + 1);
  std::vector<int> row(columns + 1);
  for (std::size_t j = 0; j <= columns; ++j) old[j] = static_cast<int>(j);
  for (std::size_t i = 1; i <= rows; ++i) {
    row[0] = static_cast<int>(i);
    int least = row[0];
    for (std::size_t j = 1; j <= columns; ++j) {
      const int replaced = old[j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1);
      row[j] = std::min({replaced, old[j] + 1, row[j - 1] + 1});
      if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1]) {
        row[j] = std::min(row[j], older[j - 2] + 1);
      }
      least = std::min(least, row[j]);
    }
    if (least > limit) return limit + 1;
    older.swap(old);
    old.swap(row);
  }
  return std::min(old[columns], limit + 1);
}

}  // namespace nqdetail
