// advice.h -- what a person should try who reads a message of the library.
//
// The library's texts say what the reader met; the grammar and the source line
// often tell what was meant. Advice is a guess and says so by its tone: it
// never changes a message.

#ifndef NQ_TOOLS_NQOML_ADVICE_H
#define NQ_TOOLS_NQOML_ADVICE_H

#include "tools/nqoml/diagnostic.h"
#include "tools/nqoml/names.h"

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace nqoml {

class SourceCache;

class Adviser {
 public:
  // Both are borrowed for the adviser's life.
  Adviser(const Names& names, SourceCache& sources) : names_(names), sources_(sources) {}

  // Adds notes to the diagnostics of one file, which stand in reading order.
  void advise(std::vector<Diagnostic>& diagnostics);

 private:
  std::string adviceFor(const Diagnostic& diagnostic, std::string_view line);
  std::string unknownName(std::string_view word);
  std::string strayValue(std::string_view line, std::size_t at);
  std::string valueOfUnknown(std::string_view line, std::size_t at) const;
  std::string wrongID(std::string_view line, std::size_t at) const;
  std::string oddToken(const Diagnostic& diagnostic, std::string_view line,
                       std::size_t at);
  std::string wrongType(const std::string& text, std::string_view line, std::size_t at);
  std::string allowedValues(std::string_view line, std::size_t at);
  std::string missingField(const std::string& field, std::string_view type);
  std::string placeOfField(const std::string& field, std::string_view type);
  std::string placeOfSection(const std::string& section, const std::string& type);
  std::string placeOfObject(const std::string& what, const std::string& where);

  const Names& names_;
  SourceCache& sources_;
  std::map<std::string, std::string, std::less<>> unknown_;  // advice by word
};

// The pieces of a message between "`" and "'".
std::vector<std::string> quotedPieces(std::string_view text);

}  // namespace nqoml

#endif  // NQ_TOOLS_NQOML_ADVICE_H
