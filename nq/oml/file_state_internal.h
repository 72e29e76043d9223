// file_state_internal.h -- what an NQOMLFile holds between and during its reads and
// writes.

#ifndef NQ_OML_FILE_STATE_INTERNAL_H
#define NQ_OML_FILE_STATE_INTERNAL_H

#include <cstdint>
#include <memory>
#include <new>
#include <optional>

#include "nq/containers/index_hash_table.h"
#include "nq/oml/diagnostics/diagnostics.h"
#include "nq/oml/oml_file.h"
#include "nq/oml/reading/creation.h"
#include "nq/oml/reading/lexer.h"
#include "nq/oml/reading/read_hooks.h"
#include "nq/oml/reading/sources.h"
#include "nq/oml/tree/read_tables.h"
#include "nq/oml/tree/syntax_arena.h"
#include "nq/oml/writing/writer.h"

namespace nqdetail {

struct FileState;

// What a write needs: of writeOMLFile(), or of an application that has opened the file
// for itself. Sends the output through the virtual operations of the file.
struct WriteState final : OutputSink {
  explicit WriteState(FileState& owner) : state(owner) {}

  bool send(const char* data, std::size_t count) override;
  // Has the file written in an encoding from here on.
  void start(bool inBinary, const NQObject* top);
  // The writer; null also while its output goes to the file.
  Writer* openWriter() const {
    return writer != nullptr && !writer->output().sending() ? writer.get() : nullptr;
  }
  // The same for a writing operation, which may be the first one since an application
  // opened the file for itself. Null, with error() set, when there is nothing to write
  // to: output is lost then, which spoils a write under way.
  Writer* writerForOperation();
  // Lets an operation use that writer. In place: it is called for every field.
  template <class Operation>
  [[gnu::always_inline]] inline void with(const Operation& operation) {
    if (Writer* const open = openWriter()) return operation(*open);
    if (Writer* const made = writerForOperation()) operation(*made);
  }
  // Sets error(), and spoils the write if there is one.
  void fail();
  // Ends a write of an application's own, before the file is closed; false when
  // something in it failed.
  bool endOwnWrite();

  FileState& state;
  bool lossless = false;           // as writes are to be
  bool binary = false;             // as the writer writes
  bool inHook = false;             // writeOMLFile() will look at the writer itself
  bool refused = false;            // an operation for the open file
  std::unique_ptr<Writer> writer;  // during a write
};

// What both share, and what a read needs. Also connects the rooms with the virtual
// operations of the file.
struct FileState final : MessageSink, SourceOwner, ReadHooks {
  explicit FileState(NQOMLFile& owner) : file(owner) {}

  // Frees all that belongs to one read or write but the tree and the writer.
  void release();
  // Reports fatal error 12, without a message where there is no memory for it either.
  void endForLackOfMemory();

  const char* sourceName(nqLong fileIndex) override;
  void error(const char* name, nqLong line, int column, int code, const char* text,
             int fatal) override;
  void warning(const char* name, nqLong line, int column, int code,
               const char* text) override;
  void stop() override;

  nqLong fileNameIndex(const char* name) override;
  bool mayInclude(const char* name) override;
  std::unique_ptr<NQByteSource> includedSource(const char* name) override;
  void bytesExpected(std::int64_t size) override;
  bool bytesArrived(std::size_t count) override;

  bool checkObject(NQOMLSyntaxObject* object) override;
  NQObject* createObject(NQOMLSyntaxObject* syntax, NQOMLSyntaxObject* ownerSyntax,
                         NQObject* owner) override;
  bool readField(NQOMLSyntaxField* field, NQOMLSyntaxObject* syntax,
                 NQObject* object) override;
  void preReadFields(NQOMLSyntaxObject* syntax, NQObject* object) override;
  void postReadFields(NQOMLSyntaxObject* syntax, NQObject* object) override;

  NQOMLFile& file;
  Diagnostics diagnostics{*this};
  int maxNestingDepth = 256;
  std::int64_t maxInheritedFields = 50'000'000;
  SourceLimits sourceLimits;
  bool strict = false;  // files cannot take back what the grammar demands
  std::unique_ptr<NQIndexHashTable> numbers;
  NQOMLExtension* extension = nullptr;  // borrowed

  NQOMLStatic* grammar = nullptr;  // borrowed
  // A read or write is somewhere up the stack; none may begin.
  bool busy = false;
  bool running = false;  // and its rooms are at work: cleanup() only breaks it off
  std::int64_t bytesRead = 0;
  std::int64_t bytesTotal = 0;  // of the files opened so far; -1 when unknown
  TopObject top;

  SyntaxArena tree;
  NQOMLSyntaxObject* root = nullptr;  // null when the tree is of no use
  bool mayExecute = false;            // it was found good, and no object is made yet

  std::optional<NameTables> names;
  std::optional<Sources> sources;
  ReadTables tables;  // the same tables, as the nodes see them; in a write its grammar

  WriteState write{*this};
};

// Marks a read or write for the time of a call, which a hook may leave by an
// exception.
class BusyMark {
 public:
  explicit BusyMark(FileState& state) : state_(state) { state_.busy = true; }
  BusyMark(const BusyMark&) = delete;
  BusyMark& operator=(const BusyMark&) = delete;
  ~BusyMark() {
    state_.busy = false;
    state_.running = false;
    state_.release();
  }

 private:
  FileState& state_;
};

}  // namespace nqdetail

#endif  // NQ_OML_FILE_STATE_INTERNAL_H
