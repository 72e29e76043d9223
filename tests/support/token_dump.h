// token_dump.h -- a file as the tokens that the lexer makes of it, in one line.

#ifndef NQ_TESTS_SUPPORT_TOKEN_DUMP_H
#define NQ_TESTS_SUPPORT_TOKEN_DUMP_H

#include <functional>
#include <string>

#include "nq/oml/reading/lexer.h"

// What a reader's rooms below the parser report and ask, for tests without a file
// above them.
class LexerHarness : nqdetail::MessageSink, nqdetail::SourceOwner {
 public:
  LexerHarness(const NQOMLStatic& grammar, bool binary)
      : names(grammar),
        diagnostics(*this),
        sources(*this, !binary),
        lexer(nqdetail::Lexer::make(binary, sources, names, diagnostics)) {}

  // The tokens to the end of the input, one word each: brackets and punctuation as
  // they are; integers; r1.5, s"text", ip1.2.3.4, x0a0b; t, S, f, e and a name; f!
  // for a declared one; #id; ? for what is unrecognised. Among them, in order, the
  // errors as !code@line:column.
  std::string dump();

  nqdetail::NameTables names;
  nqdetail::Diagnostics diagnostics;
  nqdetail::Sources sources;
  std::unique_ptr<nqdetail::Lexer> lexer;
  bool places = false;  // also where each token stood, as @line:column
  std::function<void(const nqdetail::SourceToken&)> afterToken;

 private:
  const char* sourceName(nqLong fileIndex) override;
  void error(const char* file, nqLong line, int column, int code, const char* text,
             int fatal) override;
  void warning(const char*, nqLong, int, int, const char*) override {}
  void stop() override {}
  nqLong fileNameIndex(const char* name) override { return names.strings.addOnce(name); }
  bool mayInclude(const char*) override { return true; }
  std::unique_ptr<NQByteSource> includedSource(const char*) override { return nullptr; }
  void bytesExpected(std::int64_t) override {}
  bool bytesArrived(std::size_t) override { return true; }
  void add(const std::string& word);

  std::string text_;
};

#endif  // NQ_TESTS_SUPPORT_TOKEN_DUMP_H
