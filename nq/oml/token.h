// token.h -- the tokens into which the lexer cuts an OML file.
//
// A token is a plain record that is passed by value or by pointer. Only the
// value of a binary token owns anything: whoever drops the token for good calls
// deleteValue().

#ifndef NQ_OML_TOKEN_H
#define NQ_OML_TOKEN_H

#include <bit>
#include <cstdint>

#include "nq/platform/export.h"
#include "nq/platform/types.h"

class NQOMLBinValue;

// What a token is. The numbers are part of the interface to reading hooks.
enum NQOMLTokenTagEnum : int {
  NQ_OML_OPENING_BRACKET = 0,   // one of ( < [ {
  NQ_OML_CLOSING_BRACKET = 1,   // one of ) > ] }
  NQ_OML_COLON = 2,             // ":" or "="
  NQ_OML_SEMICOLON = 3,         // ";"
  NQ_OML_INTEGER = 4,           // a 32-bit integer
  NQ_OML_STRING = 5,            // index in the file's table of strings
  NQ_OML_ENUMERATOR = 6,        // index in the grammar's enumerators
  NQ_OML_OBJECT_TYPE_NAME = 7,  // index in the grammar's object types
  NQ_OML_SECTION_NAME = 8,      // index in the grammar's sections
  NQ_OML_FIELD_NAME = 9,        // index in the grammar's fields, or see declared
  NQ_OML_OBJECT_ID = 10,        // index in the file's table of object ids
  NQ_OML_REAL = 11,             // a double
  NQ_OML_IP_ADDRESS = 12,       // four bytes, the first in the highest place
  NQ_OML_BINARY_VALUE = 13,     // an NQOMLBinValue, owned by the token
  NQ_OML_UNRECOGNISED = 14,     // characters that make no token
};

// One token. The value is one 64-bit word that is read as the tag says; reading
// it otherwise gives meaningless numbers, never a fault.
struct NQ_EXPORT NQOMLToken {
  NQOMLTokenTagEnum tag = NQ_OML_UNRECOGNISED;
  nqLong line = -1;    // where the token began, from 1; -1 when no file is open
  nqLong column = -1;  // its first character, from 1; -1 when no file is open
  int declared = 0;    // non-zero: a field name that the file itself declared
  std::uint64_t word = 0;

  // The character of a bracket or punctuation mark, an integer, or an index.
  nqLong integer() const { return static_cast<nqLong>(static_cast<nqULong>(word)); }
  void integer(nqLong value) { word = static_cast<nqULong>(value); }

  nqULong address() const { return static_cast<nqULong>(word); }
  void address(nqULong value) { word = value; }

  double real() const { return std::bit_cast<double>(word); }
  void real(double value) { word = std::bit_cast<std::uint64_t>(value); }

  // The binary value; null for every other tag.
  NQOMLBinValue* pBinValue() const {
    return tag == NQ_OML_BINARY_VALUE ? reinterpret_cast<NQOMLBinValue*>(word) : nullptr;
  }
  void pBinValue(NQOMLBinValue* value) { word = reinterpret_cast<std::uint64_t>(value); }

  // Deletes the binary value that the token owns, if it has one.
  void deleteValue();
};

static_assert(sizeof(NQOMLToken) == 24);

#endif  // NQ_OML_TOKEN_H
