// reading_file.h -- a file whose tables are filled by hand, for its nodes to read.

#ifndef NQ_TESTS_SUPPORT_READING_FILE_H
#define NQ_TESTS_SUPPORT_READING_FILE_H

#include <string>
#include <vector>

#include "nq/core/string_pool.h"
#include "nq/oml/grammar.h"
#include "nq/oml/oml_file.h"
#include "nq/oml/tree/string_table.h"
#include "tests/support/test_peer.h"

class HandMadeIDs : public nqdetail::ObjectIDs {
 public:
  void add(const std::string& text, NQOMLSyntaxObject* syntax, void* object) {
    entries_.push_back({text, syntax, static_cast<NQObject*>(object)});
  }
  const char* text(nqLong index) const override {
    return known(index) ? at(index).text.c_str() : "";
  }
  const char* writtenText(nqLong) const override { return ""; }
  NQOMLSyntaxObject* pSyntaxObject(nqLong index) const override {
    return known(index) ? at(index).syntax : nullptr;
  }
  NQObject* pObject(nqLong index) const override {
    return known(index) ? at(index).object : nullptr;
  }

 private:
  struct Entry {
    std::string text;
    NQOMLSyntaxObject* syntax;
    NQObject* object;
  };
  bool known(nqLong index) const {
    return index >= 0 && index < static_cast<nqLong>(entries_.size());
  }
  const Entry& at(nqLong index) const {
    return entries_[static_cast<std::size_t>(index)];
  }

  std::vector<Entry> entries_;
};

class ReadingFile {
 public:
  explicit ReadingFile(const NQOMLStatic& grammar) {
    NQTestPeer::state(file_).tables = {&grammar,        &strings, &declaredSections,
                                       &declaredFields, nullptr,  &ids};
  }
  NQOMLFile* pFile() { return &file_; }

  nqdetail::StringTable strings;
  NQStringPool declaredSections{9, 9, 0, 0};
  NQStringPool declaredFields{9, 9, 0, 0};
  HandMadeIDs ids;

 private:
  NQOMLFile file_;
};

#endif  // NQ_TESTS_SUPPORT_READING_FILE_H
