#include "tools/nqoml/reader.h"

#include "tools/nqoml/progress.h"

#include <cstring>
#include <filesystem>
#include <system_error>
#include <utility>

namespace nqoml {

namespace {

constexpr int kCannotOpen = 13;

}  // namespace

CheckingReader::CheckingReader(std::string path, std::string shownAs,
                               std::string includeRoot)
    : path_(std::move(path)),
      shownAs_(std::move(shownAs)),
      includeRoot_(std::move(includeRoot)) {}

NQFileCodeEnum CheckingReader::read(NQOMLStatic* grammar, bool binary) {
  root_ = nullptr;
  const NQFileCodeEnum result =
      readOMLFile(path_.c_str(), grammar, nullptr, -1, binary ? 1 : 0, 0, 0);
  takeMessage();
  return result;
}

int CheckingReader::vIncludeFile(const char* fileName) {
  if (includeRoot_.empty()) return 1;
  namespace fs = std::filesystem;
  try {
    const fs::path root = fs::canonical(includeRoot_);
    const fs::path file = fs::weakly_canonical(fileName);
    const auto [rootEnd, rest] =
        std::mismatch(root.begin(), root.end(), file.begin(), file.end());
    if (rootEnd == root.end() && rest != file.end()) {
      refused_.clear();
      return 1;
    }
  } catch (const std::exception&) {
    // A name that the system cannot make sense of.
  }
  refused_ = fileName;
  return 0;
}

int CheckingReader::vReadProgress(nqInt64 bytesRead, nqInt64 bytesTotal) {
  if (progress_ != nullptr) progress_->at(bytesRead, bytesTotal);
  return 1;
}

void CheckingReader::vSyntaxObjectCreated(NQOMLSyntaxObject* syntax, nqLong, int) {
  if (root_ == nullptr) root_ = syntax;  // every other node comes after it
}

void CheckingReader::execute() {
  NQOMLFile::execute();
  if (useTree_ && root_ != nullptr && numberOfErrors() == 0 && isFatalError() == 0) {
    useTree_(*root_);
  }
}

NQObject* CheckingReader::vCreateObject(NQOMLSyntaxObject*, NQOMLSyntaxObject*,
                                        NQObject*) {
  return &object_;
}

int CheckingReader::vReadField(NQOMLSyntaxField*, NQOMLSyntaxObject*, NQObject*) {
  return 1;
}

void CheckingReader::vErrorMessage(const char* file, nqLong line, int column, int code,
                                   const char* text, int fatal) {
  collect(fatal != 0 ? Severity::kFatal : Severity::kError, file, line, column, code,
          text);
  (void)pErrorStringBuffer(
      static_cast<int>(std::strlen(text) + std::strlen(shown(file)) + 128));
  NQOMLFile::vErrorMessage(shown(file), line, column, code, text, fatal);
  takeMessage();
}

void CheckingReader::vWarningMessage(const char* file, nqLong line, int column, int code,
                                     const char* text) {
  collect(Severity::kWarning, file, line, column, code, text);
  (void)pWarningStringBuffer(
      static_cast<int>(std::strlen(text) + std::strlen(shown(file)) + 128));
  NQOMLFile::vWarningMessage(shown(file), line, column, code, text);
  takeMessage();
}

const char* CheckingReader::shown(const char* file) const {
  return file == nullptr ? "" : file == path_ ? shownAs_.c_str() : file;
}

void CheckingReader::collect(Severity severity, const char* file, nqLong line, int column,
                             int code, const char* text) {
  // A limit that is reached is reported from inside the message that reached it.
  takeMessage();
  Diagnostic diagnostic;
  diagnostic.severity = severity;
  diagnostic.code = code;
  diagnostic.place = {shown(file), line, column};
  diagnostic.text = text;
  if (code == kCannotOpen && !refused_.empty()) {
    diagnostic.notes.push_back(
        {"only files in the directory of the checked file, and below it, are included; "
         "--allow-includes lifts this",
         {}});
    refused_.clear();
  }
  diagnostics_.push_back(std::move(diagnostic));
}

// Each message has a buffer of its own, so that its line, formatted by the
// library, can be taken out of it whole.
void CheckingReader::takeMessage() {
  if (diagnostics_.empty() || !diagnostics_.back().message.empty()) return;
  Diagnostic& last = diagnostics_.back();
  const char* line =
      last.severity == Severity::kWarning ? pWarningStringBuffer() : pErrorStringBuffer();
  if (line == nullptr) return;
  last.message = line;
  while (!last.message.empty() && last.message.back() == '\n') last.message.pop_back();
}

}  // namespace nqoml
