#include "tools/nqoml/dump.h"

#include "nq/core/string_pool.h"
#include "nq/oml/encoding/records.h"
#include "tools/nqoml/input.h"
#include "tools/nqoml/reading.h"
#include "tools/nqoml/source.h"
#include "tools/nqoml/terminal.h"
#include "tools/nqoml/text.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <optional>
#include <ostream>
#include <string>

namespace nqoml {

using namespace nqdetail;

namespace {

constexpr std::size_t kShownBytes = 16;  // of a binary value or a damaged place
constexpr std::size_t kShownText = 72;   // bytes of a text
constexpr std::size_t kDeepest = 40;     // levels that are indented

// One kind of numbered record, by its long letter.
struct RecordKind {
  char letter;
  const char* text;
  NQStringPool* (NQOMLStatic::*names)() const;  // null for plain numbers
};

constexpr RecordKind kRecordKinds[] = {
    {kEnumeratorRecord, "enumerator", &NQOMLStatic::pEnumPool},
    {kFieldRecord, "field", &NQOMLStatic::pFieldPool},
    {kIntegerRecord, "integer", nullptr},
    {kObjectTypeRecord, "object type", &NQOMLStatic::pObjTypePool},
    {kIPAddressRecord, "IP address", nullptr},
    {kRealRecord, "real", nullptr},
    {kSectionRecord, "section", &NQOMLStatic::pSectionPool},
};

class Dumper {
 public:
  Dumper(std::ostream& out, std::string_view bytes, const NQOMLStatic* grammar)
      : out_(out), bytes_(bytes), grammar_(grammar) {}

  long dump() {
    while (at_ < bytes_.size()) {
      const std::size_t start = at_;
      if (record()) continue;
      if (damagedLength_ == 0) damagedStart_ = start;
      at_ = start + 1;
      ++damagedLength_;
    }
    showDamage();
    return damages_;
  }

 private:
  bool record() {
    const std::size_t start = at_;
    const char letter = bytes_[at_++];
    if (isOf(letter, kOpening)) {
      line(start) << letter << '\n';
      ++depth_;
    } else if (isOf(letter, kClosing)) {
      showDamage();
      if (depth_ > 0) --depth_;
      line(start) << letter << '\n';
    } else if (letter == kQuote) {
      text(start, "string");
    } else if (letter == kObjectIDText) {
      text(start, "id");
    } else if (letter == kFullAddress) {
      text(start, "address from the top");
    } else if (letter == kBinaryValue) {
      binaryValue(start);
    } else {
      at_ = start;
      return number();
    }
    return true;
  }

  // The number of a record of `letter`, in its long or short form, if there is one.
  std::optional<std::int32_t> readNumber(char letter) {
    if (at_ == bytes_.size() || !isRecord(bytes_[at_]) ||
        longForm(bytes_[at_]) != letter) {
      return std::nullopt;
    }
    const std::size_t length = isLongForm(bytes_[at_]) ? 4 : 1;
    if (bytes_.size() - at_ - 1 < length) return std::nullopt;
    std::uint32_t value = 0;
    for (std::size_t i = 1; i <= length; ++i) {
      value = value << 8 | static_cast<unsigned char>(bytes_[at_ + i]);
    }
    at_ += 1 + length;
    return static_cast<std::int32_t>(value);
  }

  // Ends a line with what is wrong with its record.
  void damaged(const std::string& how) {
    out_ << " -- " << how << '\n';
    ++damages_;
  }

  bool number() {
    const std::size_t start = at_;
    if (!isRecord(bytes_[at_])) return false;
    const auto* const kind =
        std::find_if(std::begin(kRecordKinds), std::end(kRecordKinds),
                     [this](const RecordKind& known) {
                       return known.letter == longForm(bytes_[at_]);
                     });
    const auto value = readNumber(kind->letter);
    std::ostream& out = line(start) << kind->text;
    if (!value) {
      at_ = bytes_.size();
      damaged("the file ends within it");
      return true;
    }
    out << ' ';
    if (kind->letter == kIPAddressRecord) {
      const auto address = static_cast<std::uint32_t>(*value);
      out << (address >> 24) << '.' << (address >> 16 & 255) << '.'
          << (address >> 8 & 255) << '.' << (address & 255);
    } else {
      out << *value;
    }
    if (kind->names != nullptr) name(kind->names, *value);
    if (kind->letter == kRealRecord) {
      const auto exponent = readNumber(kRealRecord);
      if (!exponent) {
        damaged("has no exponent");
        return true;
      }
      out << 'e' << *exponent;
    }
    out << '\n';
    return true;
  }

  void name(NQStringPool* (NQOMLStatic::*names)() const, std::int32_t index) {
    if (grammar_ == nullptr) return;
    const NQStringPool& pool = *(grammar_->*names)();
    if (index < 0 || index >= pool.decodeTableMax()) {
      out_ << " (not in the grammar)";
    } else {
      out_ << " `" << grammar_->spelling(pool.decode(index)) << '\'';
    }
  }

  // A text and its closing quotation mark; without one it reaches to the end, as
  // readers take it.
  void text(std::size_t start, const char* kind) {
    const std::size_t begin = at_;
    while (at_ < bytes_.size() && bytes_[at_] != kQuote) {
      at_ += bytes_[at_] == kEscape ? 2 : 1;
    }
    const bool closed = at_ < bytes_.size();
    const std::size_t end = closed ? at_++ : bytes_.size();
    at_ = std::min(at_, bytes_.size());
    std::size_t length = end - begin;
    const bool cut = length > kShownText;
    if (cut) {
      length = kShownText;
      // A character is shown whole or not at all.
      while ((bytes_[begin + length] & '\xc0') == '\x80' && length > kShownText - 4)
        --length;
    }
    line(start) << kind << " \"" << printable(bytes_.substr(begin, length))
                << (cut ? "\"..." : "\"");
    if (cut) out_ << " (" << end - begin << " bytes)";
    if (closed) {
      out_ << '\n';
    } else {
      damaged("has no end");
    }
  }

  void binaryValue(std::size_t start) {
    std::ostream& out = line(start) << "binary value";
    const auto length = readNumber(kIntegerRecord);
    if (!length) return damaged("has no length");
    out << " of " << *length << " bytes";
    if (*length < 0) return damaged("no such length");
    const auto wanted = static_cast<std::size_t>(*length);
    const std::size_t there = bytes_.size() - at_;
    if (there < wanted) {
      // A length that cannot be true says nothing about what follows it.
      return damaged("only " + std::to_string(there) + " are there");
    }
    if (wanted > 0) out << ':';
    hex(bytes_.substr(at_, wanted));
    out << '\n';
    at_ += wanted;
  }

  void hex(std::string_view bytes) {
    for (const char c : bytes.substr(0, kShownBytes)) {
      const auto byte = static_cast<unsigned char>(c);
      out_ << ' ' << kHexDigits[byte >> 4] << kHexDigits[byte & 15];
    }
    if (bytes.size() > kShownBytes) out_ << " ...";
  }

  // Bytes that belong to no record, shown together.
  void showDamage() {
    if (damagedLength_ == 0) return;
    const std::size_t length = damagedLength_;
    damagedLength_ = 0;
    ++damages_;
    line(damagedStart_) << "-- " << length << (length == 1 ? " byte" : " bytes")
                        << (length == 1 ? " that is no record:" : " that are no record:");
    hex(bytes_.substr(damagedStart_, length));
    out_ << '\n';
  }

  // The beginning of a line for the record at `offset`.
  std::ostream& line(std::size_t offset) {
    showDamage();
    char digits[24];
    std::snprintf(digits, sizeof digits, "%08llx  ",
                  static_cast<unsigned long long>(offset));
    out_ << digits << std::string(2 * std::min(depth_, kDeepest), ' ');
    return out_;
  }

  std::ostream& out_;
  std::string_view bytes_;
  const NQOMLStatic* grammar_;
  std::size_t at_ = 0;
  std::size_t depth_ = 0;
  std::size_t damagedStart_ = 0;
  std::size_t damagedLength_ = 0;
  long damages_ = 0;
};

}  // namespace

long dumpRecords(std::ostream& out, std::string_view bytes, const NQOMLStatic* grammar) {
  return Dumper(out, bytes, grammar).dump();
}

int runDump(const DumpOptions& options, std::istream& in, std::ostream& out,
            std::ostream& err) {
  LoadedGrammar grammar;
  if (!options.grammar.empty()) {
    grammar = loadGrammar(options.grammar);
    if (!showGrammar(err, grammar, errorsShowColors())) return kTrouble;
  }
  const Content content = readContent(options.file, in);
  if (!content.trouble.empty()) {
    showTrouble(err, content.shownAs, content.trouble);
    return kTrouble;
  }
  const long damages = dumpRecords(out, content.bytes, grammar.grammar.get());
  return damages > 0 ? kErrorsFound : kClean;
}

}  // namespace nqoml
