// binary_writer_internal.h -- the layout of the binary encoding.
//
// Names are written as their indices. Those of the last names are kept, found by
// where the caller's text stands, and used when the text there is still the same.

#ifndef NQ_OML_BINARY_WRITER_INTERNAL_H
#define NQ_OML_BINARY_WRITER_INTERNAL_H

#include <array>
#include <cstdint>
#include <string>

#include "nq/oml/escapes_internal.h"
#include "nq/oml/writer_internal.h"

namespace nqdetail {

class BinaryWriter final : public Writer {
 public:
  explicit BinaryWriter(const WriteSettings& settings);

  void objectStart(const char* type, std::string_view id, bool singleLine) override;
  void defaultsStart(const char* type) override;
  void sectionStart(const char* section, bool singleLine) override;
  void openingBracket() override;
  void closingBracket() override;
  void blankLine() override {}

  void word(const char* name, const char* word) override;
  void integer(const char* name, nqLong value) override;
  void real(const char* name, double value) override;
  void string(const char* name, std::string_view text) override;
  void ipAddress(const char* name, nqULong address) override;
  void binaryValue(const char* name, const NQOMLBinValue& value) override;
  void address(const char* name, std::string_view ids, bool full) override;

 private:
  // The indices of one kind of name.
  class NameCache {
   public:
    using Lookup = nqLong (*)(const ReadTables& tables, const char* name);
    explicit NameCache(Lookup lookup) : lookup_(lookup) {}
    nqLong index(const ReadTables& tables, const char* name);

   private:
    struct Entry {
      const char* place = nullptr;
      std::string name;
      nqLong index = -1;
    };
    Lookup lookup_;
    std::array<Entry, 64> entries_;
  };

  static char* putRecord(char* at, char letter, nqLong value);
  // A place with room for `count` bytes behind the record of the name.
  char* beginValue(const char* name, std::size_t count);
  void text(char* at, char marker, std::string_view text);

  const EscapeTable& escapes_;
  NameCache objectTypes_;
  NameCache sections_;
  NameCache fields_;
  NameCache enumerators_;
};

}  // namespace nqdetail

#endif  // NQ_OML_BINARY_WRITER_INTERNAL_H
