// oml_reading.h -- a grammar that has everything, and reads whose outcome is text.

#ifndef NQ_TESTS_SUPPORT_OML_READING_H
#define NQ_TESTS_SUPPORT_OML_READING_H

#include <functional>
#include <string>
#include <vector>

#include "nq/oml/oml_file.h"
#include "tests/support/counted.h"

// Object types graph, node, group and strict (two required fields), with fields
// of every type, sections three deep, and one field, `odd`, of no type at all.
class EverythingGrammar : public NQOMLStatic {
 public:
  EverythingGrammar();
};

// Reads files and writes down what happens. The tree is that of the semantic pass:
//   graph#$,1{count=3 layout.inner.depth=4 node#$,1,a{x=1}}
// with the fields that hold for each object, defaults and wildcards worked out, and
// "?" before unchecked ones. Objects of the application are NQCounted, numbered in
// the order of creation, and deleted with the reader.
class TestReader : public NQOMLFile {
 public:
  TestReader() { (void)pErrorStringBuffer(4000), (void)pWarningStringBuffer(1000); }
  ~TestReader() override;

  NQFileCodeEnum read(const std::string& name, NQOMLStatic& grammar, bool binary = false,
                      NQObject* top = nullptr, nqLong topType = -1, int numbers = 0) {
    tree.clear();
    events.clear();
    result = readOMLFile(name.c_str(), &grammar, top, topType, binary, numbers, 0);
    return result;
  }
  std::string errors() const { return pErrorStringBuffer(); }
  std::string warnings() const { return pWarningStringBuffer(); }
  std::vector<NQObject*> objects() const { return objects_; }

  NQFileCodeEnum result = NQ_FILE_OK;
  std::string tree;
  bool keepTree = true;
  std::string events;  // "check node#$,1; " and so on, when listed
  bool listEvents = false;
  // Called before every hook with its name.
  std::function<void(const char* hook)> atHook;
  bool refuse = false;       // what vCheckObject answers
  bool leaveFields = false;  // what vReadField answers
  std::string forbidden;     // a name that is not included
  nqInt64 stopAfter = -1;    // bytes
  std::string progress;      // "read/total " for each report

  using NQOMLFile::clearFatalError;
  using NQOMLFile::isFatalError;
  using NQOMLFile::setFatalError;

  void execute() override;

 protected:
  int vCheckObject(NQOMLSyntaxObject* syntax) override;
  NQObject* vCreateObject(NQOMLSyntaxObject* syntax, NQOMLSyntaxObject* ownerSyntax,
                          NQObject* owner) override;
  int vReadField(NQOMLSyntaxField* field, NQOMLSyntaxObject* syntax,
                 NQObject* object) override;
  void vPreReadFields(NQOMLSyntaxObject* syntax, NQObject* object) override;
  void vPostReadFields(NQOMLSyntaxObject* syntax, NQObject* object) override;
  int vIncludeFile(const char* name) override;
  int vReadProgress(nqInt64 bytes, nqInt64 total) override {
    progress += std::to_string(bytes) + "/" + std::to_string(total) + " ";
    return stopAfter < 0 || bytes < stopAfter;
  }

 private:
  void note(const char* hook, const NQOMLSyntaxObject* syntax, const NQObject* object);

  std::vector<NQObject*> objects_;
};

#endif  // NQ_TESTS_SUPPORT_OML_READING_H
