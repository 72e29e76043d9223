#include "nq/oml/binary_writer_internal.h"

#include <cmath>
#include <cstring>

#include "nq/core/string_pool.h"
#include "nq/oml/bin_value.h"
#include "nq/oml/encoding_internal.h"
#include "nq/oml/grammar.h"

namespace nqdetail {

namespace {

constexpr std::size_t kRecord = 5;  // the longest
constexpr std::size_t kPieceOfText = 4096;

// A real's mantissa has eight digits, or is 1e8.
constexpr double kSmallestMantissa = 1e7;
constexpr double kLargestMantissa = 1e8;

nqLong objectTypeIndex(const ReadTables& tables, const char* name) {
  return tables.pGrammar->pObjTypePool()->lookup(name);
}

nqLong sectionNameIndex(const ReadTables& tables, const char* name) {
  return sectionIndex(&tables, name);
}

nqLong fieldNameIndex(const ReadTables& tables, const char* name) {
  return fieldIndex(&tables, name);
}

nqLong enumeratorIndex(const ReadTables& tables, const char* name) {
  return tables.pGrammar->pEnumPool()->lookup(name);
}

}  // namespace

nqLong BinaryWriter::NameCache::index(const ReadTables& tables, const char* name) {
  const auto place = reinterpret_cast<std::uintptr_t>(name);
  Entry& entry = entries_[(place ^ place >> 6) % entries_.size()];
  if (entry.place != name || std::strcmp(entry.name.c_str(), name) != 0) {
    entry.place = name;
    entry.name = name;
    entry.index = lookup_(tables, name);
  }
  return entry.index;
}

BinaryWriter::BinaryWriter(const WriteSettings& settings)
    : Writer(settings),
      escapes_(settings.lossless ? kLosslessEscapes : kDoubledEscapes),
      objectTypes_(objectTypeIndex),
      sections_(sectionNameIndex),
      fields_(fieldNameIndex),
      enumerators_(enumeratorIndex) {}

char* BinaryWriter::putRecord(char* at, char letter, nqLong value) {
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

char* BinaryWriter::beginValue(const char* name, std::size_t count) {
  return putRecord(output_.room(kRecord + count), kFieldRecord,
                   fields_.index(tables(), name));
}

void BinaryWriter::text(char* at, char marker, std::string_view text) {
  *at++ = marker;
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
  char* const at = putRecord(output_.room(kRecord + 1), kObjectTypeRecord,
                             objectTypes_.index(tables(), type));
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
  output_.written(putRecord(output_.room(kRecord), kSectionRecord,
                            sections_.index(tables(), section)));
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
  char* const at = beginValue(name, kRecord);
  output_.written(putRecord(at, kEnumeratorRecord, enumerators_.index(tables(), word)));
}

void BinaryWriter::integer(const char* name, nqLong value) {
  if (name == nullptr) return;
  output_.written(putRecord(beginValue(name, kRecord), kIntegerRecord, value));
}

// The steps are multiplications and divisions by ten, one after the other, which
// decides about the last digit.
void BinaryWriter::real(const char* name, double value) {
  double mantissa = finite(value);
  if (name == nullptr) return;
  nqLong exponent = 0;
  if (mantissa != 0) {
    for (; std::fabs(mantissa) < kSmallestMantissa; --exponent) mantissa *= 10;
    for (; std::fabs(mantissa) > kLargestMantissa; ++exponent) mantissa /= 10;
  }
  char* at = beginValue(name, 2 * kRecord);
  at = putRecord(at, kRealRecord, static_cast<nqLong>(mantissa));
  output_.written(putRecord(at, kRealRecord, exponent));
}

void BinaryWriter::string(const char* name, std::string_view value) {
  if (name != nullptr) text(beginValue(name, 1), kQuote, value);
}

void BinaryWriter::ipAddress(const char* name, nqULong address) {
  if (name == nullptr) return;
  output_.written(putRecord(beginValue(name, kRecord), kIPAddressRecord,
                            static_cast<nqLong>(address)));
}

// The established record holds the low half of the value's place in memory where
// the length should be.
void BinaryWriter::binaryValue(const char* name, const NQOMLBinValue& value) {
  if (name == nullptr) return;
  char* at = beginValue(name, 1 + kRecord);
  *at++ = kBinaryValue;
  const nqLong place =
      static_cast<nqLong>(reinterpret_cast<std::uintptr_t>(&value) & 0xFFFFFFFF);
  output_.written(putRecord(at, kIntegerRecord, lossless() ? value.length() : place));
  output_.append({value.pByteSequence(), static_cast<std::size_t>(value.length())});
}

void BinaryWriter::address(const char* name, std::string_view ids, bool full) {
  char* const at = name == nullptr ? output_.room(1) : beginValue(name, 1);
  text(at, full ? kFullAddress : kObjectIDText, ids);
}

}  // namespace nqdetail
