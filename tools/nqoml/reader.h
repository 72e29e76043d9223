// reader.h -- reads a file as an application would, for its messages alone.

#ifndef NQ_TOOLS_NQOML_READER_H
#define NQ_TOOLS_NQOML_READER_H

#include "nq/oml/oml_file.h"
#include "tools/nqoml/diagnostic.h"

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace nqoml {

class Progress;

// Collects what the library reports; every object is accepted and every field
// taken, so that nothing but the file and the grammar decides.
class CheckingReader : public NQOMLFile {
 public:
  // Messages speak of the file at `path` as `shownAs`. Included files must lie
  // in the directory `includeRoot` or below it, links resolved; an empty one
  // allows any.
  CheckingReader(std::string path, std::string shownAs, std::string includeRoot);

  // Reads the file, beside others that read it so; afterwards the diagnostics stand in
  // the order in which they were reported.
  NQFileCodeEnum read(NQOMLStatic* grammar, bool binary);
  void execute() override;
  std::vector<Diagnostic>& diagnostics() { return diagnostics_; }
  // What is called with the tree of a file without errors, whose texts are valid
  // until it returns.
  using TreeUser = std::function<void(const NQOMLSyntaxObject& root)>;
  void onTree(TreeUser use) { useTree_ = std::move(use); }
  // Where the following reads report how far they are; borrowed, null for nowhere.
  void reportTo(Progress* progress) { progress_ = progress; }

 protected:
  int vIncludeFile(const char* fileName) override;
  int vReadProgress(nqInt64 bytesRead, nqInt64 bytesTotal) override;
  void vSyntaxObjectCreated(NQOMLSyntaxObject* syntax, nqLong line,
                            int position) override;
  NQObject* vCreateObject(NQOMLSyntaxObject* syntax, NQOMLSyntaxObject* ownerSyntax,
                          NQObject* owner) override;
  int vReadField(NQOMLSyntaxField* field, NQOMLSyntaxObject* syntax,
                 NQObject* object) override;
  void vErrorMessage(const char* file, nqLong line, int column, int code,
                     const char* text, int fatal) override;
  void vWarningMessage(const char* file, nqLong line, int column, int code,
                       const char* text) override;

 private:
  const char* shown(const char* file) const;
  bool mayInclude(const std::string& path) const;
  std::string whyNotIncluded();
  void collect(Severity severity, const char* file, nqLong line, int column, int code,
               const char* text);

  std::string path_;
  std::string shownAs_;
  std::string includeRoot_;
  Progress* progress_ = nullptr;
  TreeUser useTree_;
  NQOMLSyntaxObject* root_ = nullptr;  // of the read under way
  NQObject object_;                    // stands for every object of the file
  std::vector<Diagnostic> diagnostics_;
  // From path_ on, each included by the one before it; the last may be one that was
  // only tried.
  std::vector<std::string> open_;
  bool tried_ = false;  // the last of them, and no byte was read since
};

}  // namespace nqoml

#endif  // NQ_TOOLS_NQOML_READER_H
