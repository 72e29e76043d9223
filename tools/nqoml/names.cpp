#include "tools/nqoml/names.h"

#include "tools/nqoml/text.h"

#include <algorithm>
#include <cstdlib>

namespace nqoml {

namespace {

constexpr std::size_t kLongestWord = 64;  // longer ones are not compared

}  // namespace

const char* kindText(NameKind kind) {
  switch (kind) {
    case NameKind::kObjectType:
      return "object type";
    case NameKind::kSection:
      return "section";
    case NameKind::kField:
      return "field";
    case NameKind::kEnumerator:
      return "enumerator";
  }
  return "";
}

const char* kindText(FieldKind kind) {
  switch (kind) {
    case FieldKind::kInteger:
      return "integer";
    case FieldKind::kBoolean:
      return "boolean";
    case FieldKind::kString:
      return "string";
    case FieldKind::kReference:
      return "reference";
    case FieldKind::kReal:
      return "real number";
    case FieldKind::kEnumeration:
      return "enumeration";
    case FieldKind::kAddress:
      return "IP address";
    case FieldKind::kBinary:
      return "binary value";
  }
  return "";
}

void Names::add(NameKind kind, std::string_view spelling) {
  Entry& entry = entries_[upperCase(spelling)];
  if (entry.spelling.empty()) entry.spelling = spelling;
  entry.kinds.insert(kind);
}

bool Names::has(NameKind kind, std::string_view name) const {
  const auto entry = entries_.find(upperCase(name));
  return entry != entries_.end() && entry->second.kinds.count(kind) > 0;
}

std::optional<NameKind> Names::kindOf(std::string_view name) const {
  const auto entry = entries_.find(upperCase(name));
  if (entry == entries_.end()) return std::nullopt;
  return *entry->second.kinds.begin();
}

std::string Names::spelling(std::string_view name) const {
  const auto entry = entries_.find(upperCase(name));
  return entry == entries_.end() ? std::string(name) : entry->second.spelling;
}

std::string Names::spelling(const Scope& scope) const {
  std::string text;
  for (auto section = scope.sections.rbegin(); section != scope.sections.rend();
       ++section) {
    text += "section `" + spelling(*section) + "' of ";
  }
  return text + "`" + spelling(scope.type) + "'";
}

std::optional<Near> Names::nearest(std::string_view word,
                                   std::optional<NameKind> kind) const {
  if (word.size() < 2 || word.size() > kLongestWord) return std::nullopt;
  const std::string wanted = upperCase(word);
  int best = std::min(static_cast<int>((word.size() + 2) / 4), 3) + 1;
  std::optional<Near> near;
  for (const auto& [name, entry] : entries_) {
    if (kind && entry.kinds.count(*kind) == 0) continue;
    const int distance = editDistance(wanted, name, best - 1);
    if (distance > 0 && distance < best) {
      best = distance;
      near = Near{entry.spelling, kind.value_or(*entry.kinds.begin())};
    }
  }
  return near;
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

}  // namespace nqoml
