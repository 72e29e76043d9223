#include "tools/nqoml/reader.h"

#include "nq/oml/diagnostics/message_codes.h"
#include "tools/nqoml/input.h"
#include "tools/nqoml/progress.h"

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <utility>

namespace nqoml {

namespace fs = std::filesystem;

CheckingReader::CheckingReader(std::string path, std::string shownAs,
                               std::string includeRoot)
    : path_(std::move(path)),
      shownAs_(std::move(shownAs)),
      includeRoot_(std::move(includeRoot)) {
  sharedReading(1);
}

NQFileCodeEnum CheckingReader::read(NQOMLStatic* grammar, bool binary) {
  diagnostics_.clear();
  root_ = nullptr;
  open_ = {path_};
  tried_ = false;
  return readOMLFile(path_.c_str(), grammar, nullptr, -1, binary ? 1 : 0, 0, 0);
}

bool CheckingReader::mayInclude(const std::string& path) const {
  if (includeRoot_.empty()) return true;
  try {
    const fs::path root = fs::canonical(includeRoot_);
    const fs::path file = fs::weakly_canonical(path);
    const auto [rootEnd, rest] =
        std::mismatch(root.begin(), root.end(), file.begin(), file.end());
    return rootEnd == root.end() && rest != file.end();
  } catch (const std::exception&) {
    return false;  // a name that the system cannot make sense of
  }
}

int CheckingReader::vIncludeFile(const char* fileName) {
  const std::string including = pFileNameString();
  // Beside a copy stands nothing that belongs to it.
  if (including == path_ && path_ != shownAs_ &&
      fs::path(path_).parent_path() / open_.back() == fileName) {
    return 0;
  }
  while (open_.size() > 1 && open_.back() != including) open_.pop_back();
  open_.emplace_back(fileName);
  tried_ = true;
  return mayInclude(fileName) ? 1 : 0;
}

// What keeps a file from being included.
std::string CheckingReader::whyNotIncluded() {
  const std::string& path = open_.back();
  if (!tried_) {
    return "too many files are included, or too many within each other, or the name is "
           "too long";
  }
  if (!mayInclude(path)) {
    return "only files in the directory of the checked file, and below it, are included; "
           "--allow-includes lifts this";
  }
  const auto isSame = [&path](const std::string& other) {
    std::error_code code;
    return fs::equivalent(path, other, code);
  };
  if (std::any_of(open_.begin(), open_.end() - 1, isSame)) {
    return "a file cannot include itself, over whatever detour";
  }
  return "`" + path + "' " + whyClosed(path);
}

int CheckingReader::vReadProgress(nqInt64 bytesRead, nqInt64 bytesTotal) {
  tried_ = false;
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

// The limits are the library's.
void CheckingReader::vErrorMessage(const char* file, nqLong line, int column, int code,
                                   const char* text, int fatal) {
  collect(fatal != 0 ? Severity::kFatal : Severity::kError, file, line, column, code,
          text);
  NQOMLFile::vErrorMessage(file, line, column, code, text, fatal);
}

void CheckingReader::vWarningMessage(const char* file, nqLong line, int column, int code,
                                     const char* text) {
  collect(Severity::kWarning, file, line, column, code, text);
  NQOMLFile::vWarningMessage(file, line, column, code, text);
}

const char* CheckingReader::shown(const char* file) const {
  return file == nullptr ? "" : file == path_ ? shownAs_.c_str() : file;
}

void CheckingReader::collect(Severity severity, const char* file, nqLong line, int column,
                             int code, const char* text) {
  Diagnostic diagnostic;
  diagnostic.severity = severity;
  diagnostic.code = code;
  diagnostic.place = {shown(file), line, column};
  diagnostic.text = text;
  diagnostic.message = messageLine(diagnostic);
  if (code == nqdetail::kCannotOpen && diagnostic.place.known()) {
    diagnostic.notes.push_back({whyNotIncluded(), {}});
  }
  diagnostics_.push_back(std::move(diagnostic));
}

}  // namespace nqoml
