#include "nq/oml/writing/binary_writer.h"

#include <cmath>
#include <cstdint>
#include <cstring>

#include "nq/core/string_pool.h"
#include "nq/oml/bin_value.h"
#include "nq/oml/encoding/number_text.h"
#include "nq/oml/encoding/records.h"
#include "nq/oml/grammar.h"

namespace nqdetail {

namespace {

// Texts up to this length take one look at the room that is left.
constexpr std::size_t kShortText = 32;
constexpr std::size_t kPieceOfText = 4096;
constexpr std::size_t kTextRoom = 2 + kShortText * kLongestEscape;

// A real's mantissa has eight digits, or is 1e8.
constexpr double kSmallestMantissa = 1e7;
constexpr double kLargestMantissa = 1e8;

inline char* putRecord(char* at, char letter, nqLong value) {
  const auto bits = static_cast<std::uint32_t>(value);
  if (bits <= 0xFF) {
    at[0] = shortForm(letter);
    at[1] = static_cast<char>(bits);
    return at + 2;
  }
  *at++ = letter;
  for (int shift = 24; shift >= 0; shift -= 8) *at++ = static_cast<char>(bits >> shift);
  return at;
}

}  // namespace

// A name that is too long to be kept is looked up each time, and so is an unknown
// one, which the hook may yet add to the grammar.
void BinaryWriter::NameCache::fill(Entry& entry, const char* name) {
  const std::size_t length = std::strlen(name);
  const nqLong index = names_.lookup(name);
  entry.place = index >= 0 && length < sizeof entry.name ? name : nullptr;
  if (entry.place != nullptr) std::memcpy(entry.name, name, length + 1);
  entry.length =
      static_cast<std::uint64_t>(putRecord(entry.record, letter_, index) - entry.record);
}

BinaryWriter::BinaryWriter(const WriteSettings& settings)
    : Writer(settings),
      escapes_(settings.lossless ? kLosslessEscapes : kDoubledEscapes),
      rounding_(settings.lossless ? 0.5 : 0),
      objectTypes_(*settings.grammar->pObjTypePool(), kObjectTypeRecord),
      sections_(*settings.grammar->pSectionPool(), kSectionRecord),
      fields_(*settings.grammar->pFieldPool(), kFieldRecord),
      enumerators_(*settings.grammar->pEnumPool(), kEnumeratorRecord) {}

inline char* BinaryWriter::beginValue(const char* name, std::size_t count) {
  return fields_.put(output_.room(kRecordRoom + count), name);
}

void BinaryWriter::text(char* at, char marker, std::string_view text) {
  *at++ = marker;
  if (text.size() <= kShortText) {
    at = putEscaped(at, text, escapes_);
    *at++ = kQuote;
    output_.written(at);
    return;
  }
  output_.written(at);
  while (!text.empty()) {
    const std::string_view piece = text.substr(0, kPieceOfText);
    at = output_.room(piece.size() * kLongestEscape);
    output_.written(putEscaped(at, piece, escapes_));
    text.remove_prefix(piece.size());
  }
  at = output_.room(1);
  *at++ = kQuote;
  output_.written(at);
}

void BinaryWriter::objectStart(const char* type, std::string_view id, bool) {
  if (type == nullptr) return;
  char* const at = objectTypes_.put(output_.room(kRecordRoom + kTextRoom), type);
  if (id.empty()) {
    output_.written(at);
  } else {
    text(at, kObjectIDText, id);
  }
}

void BinaryWriter::defaultsStart(const char* type) {
  objectStart(type, kDefaultsID, false);
}

void BinaryWriter::sectionStart(const char* section, bool) {
  if (section == nullptr) return;
  output_.written(sections_.put(output_.room(kRecordRoom), section));
}

void BinaryWriter::openingBracket() {
  char* at = output_.room(1);
  *at++ = kOpeningBracket;
  output_.written(at);
}

void BinaryWriter::closingBracket() {
  char* at = output_.room(1);
  *at++ = kClosingBracket;
  output_.written(at);
}

void BinaryWriter::word(const char* name, const char* word) {
  if (name == nullptr || word == nullptr) return;
  output_.written(enumerators_.put(beginValue(name, kRecordRoom), word));
}

void BinaryWriter::integer(const char* name, nqLong value) {
  if (name == nullptr) return;
  output_.written(putRecord(beginValue(name, kRecordRoom), kIntegerRecord, value));
}

// The steps are multiplications and divisions by ten, one after the other, which
// decides about the last digit. The established mantissa is cut off; rounded, a real of
// up to eight decimal digits reads back as it was.
void BinaryWriter::real(const char* name, double value) {
  value = finite(value);
  if (name == nullptr) return;
  char* at = beginValue(name, 2 * kRecordRoom);
  double size = std::fabs(value);
  nqLong exponent = 0;
  if (size != 0) {
    for (; size < kSmallestMantissa; --exponent) size *= 10;
    for (; size > kLargestMantissa; ++exponent) size /= 10;
  }
  size += rounding_;
  const auto mantissa = static_cast<nqLong>(std::copysign(size, value));
  at = putRecord(at, kRealRecord, mantissa);
  output_.written(putRecord(at, kRealRecord, exponent));
}

void BinaryWriter::string(const char* name, std::string_view value) {
  if (name != nullptr) text(beginValue(name, kTextRoom), kQuote, value);
}

void BinaryWriter::ipAddress(const char* name, nqULong address) {
  if (name == nullptr) return;
  output_.written(putRecord(beginValue(name, kRecordRoom), kIPAddressRecord,
                            static_cast<nqLong>(address)));
}

// The established record holds the low half of the value's place in memory where
// the length should be.
void BinaryWriter::binaryValue(const char* name, const NQOMLBinValue& value) {
  if (name == nullptr) return;
  char* at = beginValue(name, 1 + kRecordRoom);
  *at++ = kBinaryValue;
  const nqLong place =
      static_cast<nqLong>(reinterpret_cast<std::uintptr_t>(&value) & 0xFFFFFFFF);
  output_.written(putRecord(at, kIntegerRecord, lossless() ? value.length() : place));
  output_.append({value.pByteSequence(), static_cast<std::size_t>(value.length())});
}

char* BinaryWriter::beginReference(const char* name, std::size_t count) {
  return name == nullptr ? output_.room(count) : beginValue(name, count);
}

void BinaryWriter::sibling(const char* name, nqLong id) {
  char* at = beginReference(name, 2 + kIntegerText);
  *at++ = kObjectIDText;
  at = putInteger(at, id);
  *at++ = kQuote;
  output_.written(at);
}

void BinaryWriter::address(const char* name, std::string_view address) {
  const bool full = address.starts_with(kFullAddress);
  if (full) address.remove_prefix(1);
  text(beginReference(name, kTextRoom), full ? kFullAddress : kObjectIDText, address);
}

}  // namespace nqdetail
