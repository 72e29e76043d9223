#include "nq/oml/id_table_internal.h"

#include <charconv>
#include <limits>

#include "nq/oml/encoding_internal.h"

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

constexpr std::uint32_t kRow = 64;  // numbers that are filed side by side

}  // namespace

IDTable::IDTable() : index_(this), names_(kNamesAtFirst, kNamesAtFirst, 1, 0) {
  (void)withName(kDefaultsID);
  (void)withName(std::string_view(&kFullAddress, 1));
}

nqLong IDTable::enter(nqLong scope, nqLong component, std::uint32_t flags) {
  // Neighbouring numbers are filed side by side, so that ids in a row are found in
  // the same few lines of the cache. Which rows meet, nobody outside can choose; a
  // step of 64 or more from number to number still fills all places of the rows.
  const auto number = static_cast<std::uint32_t>(component);
  const std::uint32_t row = number / kRow;
  const auto key =
      static_cast<std::uint64_t>(static_cast<std::uint32_t>(scope)) << 32 | row;
  const std::uint64_t mixed =
      mix((key ^ index_.seed().first) + (flags & kNumber), index_.seed().second);
  const std::uint32_t hash =
      static_cast<std::uint32_t>(mixed) / kRow * kRow + (number ^ row) % kRow;
  const nqLong found = index_.find(hash, [&](nqLong index) {
    const Entry& entry = entries_[index];
    return entry.scope == scope && entry.component == component &&
           (entry.flags & kNumber) == (flags & kNumber);
  });
  if (found >= 0) return found;

  const nqLong index = entries_.size();
  if (isEntry(scope)) flags |= entries_[scope].flags & kFull;
  if (!index_.reserve(static_cast<std::size_t>(index) + 1) ||
      entries_.append({scope, component, flags, -1, nullptr, nullptr}) == nullptr) {
    return kNone;
  }
  index_.insert(hash, index);
  return index;
}

nqLong IDTable::withName(std::string_view name, nqLong scope) {
  const nqLong component = names_.update(name);
  if (component < 0) return kNone;
  const bool full = scope == kNone && !name.empty() && name[0] == kFullAddress;
  return enter(scope, component, full ? std::uint32_t{kFull} : 0);
}

nqLong IDTable::withNumber(nqLong number, nqLong scope) {
  return enter(scope, number, kNumber);
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
  walkChain(id);
  nqLong result = scope;
  for (auto link = chain_.rbegin(); link != chain_.rend(); ++link) {
    const Entry& entry = entries_[*link];
    result = enter(result, entry.component, entry.flags & kNumber);
    if (result == kNone) return kNone;
  }
  return result;
}

nqInt64 IDTable::trailingNumber(nqLong id) const {
  if (!isEntry(id)) return 0;
  const Entry& entry = entries_[id];
  if ((entry.flags & kNumber) != 0) return entry.component;
  const std::string_view name = names_.decode(entry.component);
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

const char* IDTable::text(nqLong index) const {
  if (!isEntry(index)) return "";
  const auto [place, isNew] = texts_.try_emplace(index);
  std::string& text = place->second;
  if (isNew) {
    walkChain(index);
    for (auto link = chain_.rbegin(); link != chain_.rend(); ++link) {
      const Entry& entry = entries_[*link];
      if (link != chain_.rbegin()) text += kScopeSeparator;
      if ((entry.flags & kNumber) != 0) {
        text += std::to_string(entry.component);
      } else {
        text += names_.decode(entry.component);
      }
    }
  }
  return text.c_str();
}

}  // namespace nqdetail
