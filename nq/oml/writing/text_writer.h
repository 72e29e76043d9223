// text_writer.h -- the layout of the text encoding.
//
// Every operation takes a line of its own, indented by a tab for each open
// bracket. In single-line mode, which an object or a section begins and a closing
// bracket ends, it is set off from the one before by a single blank instead.

#ifndef NQ_OML_WRITING_TEXT_WRITER_H
#define NQ_OML_WRITING_TEXT_WRITER_H

#include "nq/oml/encoding/escapes.h"
#include "nq/oml/writing/writer.h"

namespace nqdetail {

class TextWriter final : public Writer {
 public:
  explicit TextWriter(const WriteSettings& settings);

  void objectStart(const char* type, std::string_view id, bool singleLine) override;
  void defaultsStart(const char* type) override;
  void sectionStart(const char* section, bool singleLine) override;
  void openingBracket() override;
  void closingBracket() override;
  void blankLine() override;

  void word(const char* name, const char* word) override;
  void integer(const char* name, nqLong value) override;
  void real(const char* name, double value) override;
  void string(const char* name, std::string_view text) override;
  void ipAddress(const char* name, nqULong address) override;
  void binaryValue(const char* name, const NQOMLBinValue& value) override;
  void sibling(const char* name, nqLong id) override;
  void address(const char* name, std::string_view address) override;

 private:
  // A place behind the indentation with room for `count` bytes and a line end.
  char* begin(std::size_t count);
  // The same behind the name and what stands between it and its value.
  char* beginValue(std::string_view name, std::size_t count);
  char* beginReference(const char* name, std::size_t count);
  // Ends what was begun there: with a line end unless in single-line mode.
  void end(char* at);
  void endLine(char* at);
  // Up to kBytesOfWideLine bytes in hexadecimal digits.
  static char* putBytes(char* at, std::string_view bytes);

  const EscapeTable& escapes_;
  nqLong depth_ = 0;  // open brackets; negative when more were closed than opened
  bool singleLine_ = false;
};

}  // namespace nqdetail

#endif  // NQ_OML_WRITING_TEXT_WRITER_H
