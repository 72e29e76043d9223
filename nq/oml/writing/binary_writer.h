// binary_writer.h -- the layout of the binary encoding.
//
// Names are written as their indices. Those of the last names are kept, found by
// where the caller's text stands, and used when the text there is still the same.

#ifndef NQ_OML_WRITING_BINARY_WRITER_H
#define NQ_OML_WRITING_BINARY_WRITER_H

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "nq/oml/encoding/escapes.h"
#include "nq/oml/writing/writer.h"

class NQStringPool;

namespace nqdetail {

// Room for a record, so that it can be copied as one word.
inline constexpr std::size_t kRecordRoom = 8;

class BinaryWriter final : public Writer {
 public:
  // The settings have a grammar.
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
  void sibling(const char* name, nqLong id) override;
  void address(const char* name, std::string_view address) override;

 private:
  // The records of one kind of name.
  class NameCache {
   public:
    NameCache(const NQStringPool& names, char letter) : names_(names), letter_(letter) {}

    // Writes the record of a name; there is room for kRecordRoom bytes.
    char* put(char* at, const char* name) {
      const auto place = reinterpret_cast<std::uintptr_t>(name);
      Entry& entry = entries_[(place ^ place >> 8) % kEntries];
      if (entry.place != name || !entry.isFor(name)) fill(entry, name);
      std::memcpy(at, entry.record, sizeof entry.record);
      return at + entry.length;
    }

   private:
    static constexpr std::size_t kEntries = 256;

    struct alignas(64) Entry {
      // A call of the C library's function would cost more: names are short.
      bool isFor(const char* asked) const {
        const char* known = name;
        for (; *known == *asked; ++known, ++asked) {
          if (*known == '\0') return true;
        }
        return false;
      }

      const char* place = nullptr;
      std::uint64_t length = 0;
      char record[kRecordRoom] = {};
      char name[40] = "";
    };

    [[gnu::noinline]] void fill(Entry& entry, const char* name);

    const NQStringPool& names_;
    char letter_;
    Entry entries_[kEntries];
  };

  // A place with room for `count` bytes behind the record of the name.
  char* beginValue(const char* name, std::size_t count);
  char* beginReference(const char* name, std::size_t count);
  // The rest of a text whose marker shall stand at `at`.
  void text(char* at, char marker, std::string_view text);

  const EscapeTable& escapes_;
  const double rounding_;  // added to the mantissa of a real before it is cut off
  NameCache objectTypes_;
  NameCache sections_;
  NameCache fields_;
  NameCache enumerators_;
};

}  // namespace nqdetail

#endif  // NQ_OML_WRITING_BINARY_WRITER_H
