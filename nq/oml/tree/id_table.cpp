#include "nq/oml/tree/id_table.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <limits>

#include "nq/oml/encoding/records.h"
#include "nq/platform/prefetch.h"

namespace nqdetail {

namespace {

constexpr nqLong kNamesAtFirst = 64;

// Whether `text` is an integer exactly as it would be printed.
bool isPrintedInteger(std::string_view text, nqLong& value) {
  const char* const end = text.data() + text.size();
  const auto [last, code] = std::from_chars(text.data(), end, value);
  if (code != std::errc() || last != end) return false;
  const std::string_view digits = text.substr(value < 0 || text[0] == '-' ? 1 : 0);
  return digits[0] != '0' || text == "0";
}

// The number that ends a name, cut off it: digits that begin with none that is 0,
// so that stem and number always make the same text again. -1 when there is none.
nqLong takeNumber(std::string_view& name) {
  constexpr std::size_t kMostDigits = 9;  // any such number is an nqLong
  const std::size_t least = name.size() - std::min(name.size(), kMostDigits);
  std::size_t start = name.size();
  while (start > least && isOf(name[start - 1], kDigit)) --start;
  while (start < name.size() && name[start] == '0') ++start;
  if (start == name.size()) return -1;
  nqLong number = 0;
  for (const char digit : name.substr(start)) number = 10 * number + (digit - '0');
  name = name.substr(0, start);
  return number;
}

constexpr std::uint32_t kRow = 8;  // numbers that are filed side by side

}  // namespace

IDTable::IDTable()
    : index_(this), names_(kNamesAtFirst, kNamesAtFirst, 1, 0), families_(1) {
  (void)withName(kDefaultsID);
  (void)withName(std::string_view(&kFullAddress, 1));
}

nqLong* IDTable::placeOf(const Component& component) {
  Family& family = families_[component.stem];
  if (isBare(component)) return &family.bare;
  const auto number = static_cast<std::uint32_t>(component.number);
  if (number >= family.numbered.size()) {
    // No larger than in proportion to what is there, whatever the numbers.
    if (number / 4 > family.count) return nullptr;
    family.numbered.resize(std::bit_ceil(number + 1), kNone);
  }
  return &family.numbered[number];
}

nqLong IDTable::enter(nqLong scope, const Component& component) {
  Family& family = families_[component.stem];
  nqLong* const place = scope == kNone ? placeOf(component) : nullptr;
  if (place != nullptr && *place != kNone) return *place;
  std::uint32_t hash = 0;
  if (place == nullptr || family.scattered) {
    // Neighbouring numbers are filed side by side, so that ids in a row are found in
    // the same few lines of the cache; so are stems by themselves. Which rows meet,
    // nobody outside can choose; a step of 8 or more from number to number still
    // fills all places of the rows.
    const bool bare = isBare(component);
    const auto number =
        bare ? component.stem : static_cast<std::uint32_t>(component.number);
    const std::uint32_t row = number / kRow;
    const HashSeed& seed = index_.seed();
    const std::uint64_t mixed =
        mix(seed.first ^ (std::uint64_t{static_cast<std::uint32_t>(scope)} << 32 | row),
            seed.second ^ (bare ? kMostStems + 1 : component.stem));
    hash = static_cast<std::uint32_t>(mixed) / kRow * kRow + (number ^ row) % kRow;
    const nqLong found = index_.find(hash, [&](nqLong index) {
      const Entry& entry = entries_[index];
      return entry.scope == scope && entry.number == component.number &&
             entry.stem == component.stem;
    });
    if (found >= 0) return found;
  }

  const nqLong index = entries_.size();
  const bool full =
      isEntry(scope) ? entries_[scope].full : *stemOf(component.stem) == kFullAddress;
  Entry entry = {scope,     component.number, component.stem & kMostStems, full, 0, -1,
                 {nullptr}, nullptr};
  if (entry.isSimple()) entry.placed = {kNone, kNone};
  if (place == nullptr && !index_.reserve(numberInIndex_ + 1)) return exhaust();
  if (entries_.append(entry) == nullptr) return exhaust();
  if (scope == kNone && !isBare(component)) ++family.count;
  if (place != nullptr) {
    *place = index;
  } else {
    index_.insert(hash, index);
    ++numberInIndex_;
    if (scope == kNone) family.scattered = true;
  }
  return index;
}

nqLong IDTable::withName(std::string_view name, nqLong scope) {
  const nqLong number = takeNumber(name);
  const nqLong index = names_.update(name);
  const std::uint32_t stem = static_cast<std::uint32_t>(index) + 1;
  if (index < 0 || stem > kMostStems) return exhaust();
  if (stem == families_.size()) families_.emplace_back();
  return enter(scope, {stem, number});
}

nqLong IDTable::withNumber(nqLong number, nqLong scope) {
  return enter(scope, {kNoStem, number});
}

nqLong IDTable::withText(std::string_view text, nqLong scope) {
  nqLong id = scope;
  for (;;) {
    const std::size_t separator = text.find(kScopeSeparator);
    const std::string_view component = text.substr(0, separator);
    nqLong number = 0;
    id = isPrintedInteger(component, number) ? withNumber(number, id)
                                             : withName(component, id);
    if (separator == std::string_view::npos || id == kNone) return id;
    text.remove_prefix(separator + 1);
  }
}

void IDTable::walkChain(nqLong id) const {
  chain_.clear();
  for (nqLong link = id; link != kNone; link = entries_[link].scope) {
    chain_.push_back(link);
  }
}

nqLong IDTable::inScope(nqLong id, nqLong scope) {
  if (!isEntry(id)) return kNone;
  Entry& last = entries_[id];
  if (last.isSimple()) {
    if (scope == kNone) return id;
    if (last.placed.scope != scope) {
      last.placed = {scope, enter(scope, {last.stem, last.number})};
      last.typeIndex = -1;
    }
    return last.placed.id;
  }
  walkChain(id);
  nqLong result = scope;
  for (auto link = chain_.rbegin(); link != chain_.rend(); ++link) {
    const Entry& entry = entries_[*link];
    result = enter(result, {entry.stem, entry.number});
    if (result == kNone) return kNone;
  }
  return result;
}

nqLong IDTable::referenceInScope(nqLong id, nqLong scope, nqLong& typeIndex) {
  const nqLong result = isFull(id) ? id : inScope(id, scope);
  typeIndex = -1;
  if (!isEntry(result)) return result;
  // Noted with a simple id, the type spares the way to the other entry.
  Entry& written = entries_[id];
  const bool isNoted = written.isSimple() && written.typeIndex >= 0;
  typeIndex = isNoted ? written.typeIndex : entries_[result].typeIndex;
  if (written.isSimple()) written.typeIndex = typeIndex;
  return result;
}

void IDTable::prefetchReferencesBehind(const NQOMLSyntaxObjectIter& current) const {
  constexpr int kFields = 2;  // an edge begins with its two ends
  const NQOMLSyntaxObjectList* const next = current.pCell()->pNext();
  if (next == nullptr) return;
  const NQOMLSyntaxFieldList* cell = next->pObject()->pFieldList();
  for (int i = 0; i < kFields && cell != nullptr; ++i, cell = cell->pNext()) {
    const NQOMLSyntaxField* const field = cell->pField();
    const NQOMLToken token = field == nullptr ? NQOMLToken() : field->token();
    if (token.tag != NQ_OML_OBJECT_ID || !isEntry(token.integer())) continue;
    nqdetail::prefetch(&entries_[token.integer()]);
  }
}

nqInt64 IDTable::trailingNumber(nqLong id) const {
  if (!isEntry(id)) return 0;
  const Entry& entry = entries_[id];
  if (entry.stem == kNoStem) return entry.number;
  std::string name;
  appendComponent(name, entry);
  std::size_t digits = name.size();
  while (digits > 0 && isOf(name[digits - 1], kDigit)) --digits;
  if (digits == name.size()) return 0;
  if (digits > 0 && name[digits - 1] == '-') --digits;
  nqInt64 value = 0;
  const auto result =
      std::from_chars(name.data() + digits, name.data() + name.size(), value);
  if (result.ec == std::errc()) return value;
  return name[digits] == '-' ? std::numeric_limits<nqInt64>::min()
                             : std::numeric_limits<nqInt64>::max();
}

void IDTable::appendComponent(std::string& text, const Entry& entry) const {
  text += stemOf(entry.stem);
  if (!isBare({entry.stem, entry.number})) text += std::to_string(entry.number);
}

const char* IDTable::text(nqLong index) const {
  if (!isEntry(index)) return "";
  const auto [place, isNew] = texts_.try_emplace(index);
  std::string& text = place->second;
  if (isNew) {
    walkChain(index);
    for (auto link = chain_.rbegin(); link != chain_.rend(); ++link) {
      const Entry& entry = entries_[*link];
      if (link != chain_.rbegin()) text += kScopeSeparator;
      appendComponent(text, entry);
    }
  }
  return text.c_str();
}

}  // namespace nqdetail
