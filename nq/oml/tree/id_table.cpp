#include "nq/oml/tree/id_table.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <limits>
#include <new>
#include <utility>

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

}  // namespace

IDTable::IDTable() : index_(this), names_(kNamesAtFirst, kNamesAtFirst, 1, 0), stems_(1) {
  (void)withName(kDefaultsID);
  (void)withName(std::string_view(&kFullAddress, 1));
}

nqLong* IDTable::placeOf(const Component& component) {
  Stem& stem = stems_[component.stem];
  if (isBare(component)) return &stem.bare;
  if (stem.numbers == kNone) {
    numbers_.emplace_back();
    stem.numbers = static_cast<nqLong>(numbers_.size()) - 1;
  }
  return numbers_[static_cast<std::size_t>(stem.numbers)].place(component.number,
                                                                index_.seed());
}

nqLong IDTable::enter(const Component& component) {
  nqLong* const place = placeOf(component);
  if (place == nullptr) return exhaust();
  if (*place != kNone) return *place;
  const nqLong index = components_.size();
  const bool full = *stemOf(component.stem) == kFullAddress;
  const Entry entry = {
      kNone,   component.number, component.stem & kMostStems, full, 0, 0, -1,
      nullptr, nullptr};
  if (index >= kChains / 2 || components_.append(entry) == nullptr) return exhaust();
  return *place = 2 * index;
}

nqLong IDTable::enter(nqLong scope, nqLong simple) {
  if (scope == kNone || simple == kNone) return simple;
  Entry& component = entry(simple);
  // A component that begins with "$" has a node of its own.
  if (!component.full) {
    if (component.scope == kNone) {
      component.scope = scope;
      component.sharedFull = isFull(scope) ? 1 : 0;
    }
    if (component.scope == scope) return simple + 1;
  }
  return enterChain(scope, {component.stem, component.number});
}

nqLong IDTable::enterChain(nqLong scope, const Component& component) {
  const HashSeed& seed = index_.seed();
  const auto hash = static_cast<std::uint32_t>(
      mix(seed.first ^ (std::uint64_t{static_cast<std::uint32_t>(scope)} << 32 |
                        static_cast<std::uint32_t>(component.number)),
          seed.second ^ component.stem));
  const nqLong found = index_.find(hash, [&](nqLong index) {
    const Entry& chain = chains_[index];
    return chain.scope == scope && chain.number == component.number &&
           chain.stem == component.stem;
  });
  if (found >= 0) return kChains + found;
  const nqLong index = chains_.size();
  const Entry chain = {
      scope,   component.number, component.stem & kMostStems, isFull(scope), 0, 0, -1,
      nullptr, nullptr};
  if (index >= kChains - 1 || !index_.reserve(static_cast<std::size_t>(index) + 1) ||
      chains_.append(chain) == nullptr) {
    return exhaust();
  }
  index_.insert(hash, index);
  return kChains + index;
}

// Names in a row often have the same stem.
std::uint32_t IDTable::stemFor(std::string_view text) {
  if (lastStem_ != kNoStem && text == stemOf(lastStem_)) return lastStem_;
  const nqLong index = names_.update(text);
  const std::uint32_t stem = static_cast<std::uint32_t>(index) + 1;
  if (index < 0 || stem > kMostStems) return kNoStem;
  if (stem == stems_.size()) stems_.emplace_back();
  return lastStem_ = stem;
}

nqLong IDTable::withName(std::string_view name, nqLong scope) {
  const nqLong number = takeNumber(name);
  const std::uint32_t stem = stemFor(name);
  return stem == kNoStem ? exhaust() : enter(scope, enter({stem, number}));
}

nqLong IDTable::withNumber(nqLong number, nqLong scope) {
  return enter(scope, enter({kNoStem, number}));
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
  for (nqLong link = id; link != kNone; link = scopeOf(link)) chain_.push_back(link);
}

nqLong IDTable::inScope(nqLong id, nqLong scope) {
  if (!isEntry(id)) return kNone;
  if (isComponent(id)) return enter(scope, id);
  walkChain(id);
  nqLong result = scope;
  for (auto link = chain_.rbegin(); link != chain_.rend(); ++link) {
    result = enter(result, simpleOf(*link));
    if (result == kNone) return kNone;
  }
  return result;
}

nqLong IDTable::referenceInScope(nqLong id, nqLong scope, nqLong& typeIndex) {
  const nqLong result = isFull(id) ? id : inScope(id, scope);
  typeIndex = isTarget(result) ? entry(result).typeIndex : -1;
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
    nqdetail::prefetch(&entry(token.integer()));
  }
}

nqInt64 IDTable::trailingNumber(nqLong id) const {
  if (!isEntry(id)) return 0;
  const Entry& last = entry(id);
  if (last.stem == kNoStem) return last.number;
  std::string name;
  appendComponent(name, last);
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

template <class Make>
const char* IDTable::kept(nqLong key, const Make& make) const {
  const auto known = texts_.find(key);
  if (known != texts_.end()) return known->second.c_str();
  try {
    std::string text;
    make(text);
    return texts_.emplace(key, std::move(text)).first->second.c_str();
  } catch (const std::bad_alloc&) {
    exhausted_ = true;
    return "";
  }
}

const char* IDTable::text(nqLong index) const {
  if (!isEntry(index)) return "";
  return kept(index, [this, index](std::string& text) {
    walkChain(index);
    for (auto link = chain_.rbegin(); link != chain_.rend(); ++link) {
      if (link != chain_.rbegin()) text += kScopeSeparator;
      appendComponent(text, entry(*link));
    }
  });
}

const char* IDTable::writtenText(nqLong index) const {
  if (isSimple(index)) return text(index);
  if (!isWritten(index)) return "";
  return kept(~index,
              [this, index](std::string& text) { appendComponent(text, entry(index)); });
}

}  // namespace nqdetail
