#include "nq/oml/oml_file.h"

#include <algorithm>
#include <new>
#include <utility>

#include "nq/core/message_table.h"
#include "nq/core/string_pool.h"
#include "nq/oml/diagnostics/message_codes.h"
#include "nq/oml/file_state_internal.h"
#include "nq/oml/oml_object.h"
#include "nq/oml/reading/parser.h"
#include "nq/oml/reading/semantics.h"

namespace nqdetail {

void FileState::release() {
  mayExecute = false;
  tables = ReadTables();
  sources.reset();
  names.reset();
}

void FileState::endForLackOfMemory() {
  const int errors = diagnostics.numberOfErrors;
  const Place place = sources ? sources->place() : Place();
  try {
    diagnostics.fatalError(place, kMemoryExhausted);
  } catch (const std::bad_alloc&) {
    if (diagnostics.numberOfErrors == errors) ++diagnostics.numberOfErrors;
    diagnostics.end();
  }
  if (root == nullptr) tree.clear();
}

const char* FileState::sourceName(nqLong fileIndex) {
  return names ? names->strings.decode(fileIndex) : "";
}

void FileState::error(const char* name, nqLong line, int column, int code,
                      const char* text, int fatal) {
  file.vErrorMessage(name, line, column, code, text, fatal);
}

void FileState::warning(const char* name, nqLong line, int column, int code,
                        const char* text) {
  file.vWarningMessage(name, line, column, code, text);
}

void FileState::stop() {
  file.cleanup();
}

nqLong FileState::fileNameIndex(const char* name) {
  return names->strings.addOnce(name);
}

bool FileState::mayInclude(const char* name) {
  return !diagnostics.ended() && file.vIncludeFile(name) != 0 && !diagnostics.ended();
}

std::unique_ptr<NQByteSource> FileState::includedSource(const char* name) {
  return diagnostics.ended() ? nullptr : file.vIncludedSource(name);
}

void FileState::bytesExpected(std::int64_t size) {
  bytesTotal = size < 0 || bytesTotal < 0 ? -1 : bytesTotal + size;
}

bool FileState::bytesArrived(std::size_t count) {
  if (diagnostics.ended()) return false;
  bytesRead += static_cast<std::int64_t>(count);
  if (file.vReadProgress(bytesRead, bytesTotal) == 0) diagnostics.end();
  return !diagnostics.ended();
}

bool FileState::checkObject(NQOMLSyntaxObject* object) {
  return file.vCheckObject(object) != 0;
}

NQObject* FileState::createObject(NQOMLSyntaxObject* syntax,
                                  NQOMLSyntaxObject* ownerSyntax, NQObject* owner) {
  return file.vCreateObject(syntax, ownerSyntax, owner);
}

bool FileState::readField(NQOMLSyntaxField* field, NQOMLSyntaxObject* syntax,
                          NQObject* object) {
  return file.vReadField(field, syntax, object) != 0;
}

void FileState::preReadFields(NQOMLSyntaxObject* syntax, NQObject* object) {
  file.vPreReadFields(syntax, object);
}

void FileState::postReadFields(NQOMLSyntaxObject* syntax, NQObject* object) {
  file.vPostReadFields(syntax, object);
}

const ReadTables* readTables(const NQOMLFile* file) {
  return file == nullptr ? nullptr : &file->state_->tables;
}

void announceSyntaxObject(NQOMLFile* file, NQOMLSyntaxObject* node, nqLong line,
                          int position) {
  if (file != nullptr) file->vSyntaxObjectCreated(node, line, position);
}

}  // namespace nqdetail

namespace {

constexpr int kDeepestNesting = 1024;  // what the stack surely holds
constexpr nqLong kObjectSpacing = 8;   // addresses are multiples of it

}  // namespace

NQ_COPY_PROTOCOL_IMPL(NQOMLFile)
NQ_COPY_ALIKE_IMPL(NQOMLFile, NQTextFile)

NQOMLFile::NQOMLFile() {
  init();
}

// The output that is still gathered goes to the file while there is somebody to send it.
NQOMLFile::~NQOMLFile() {
  (void)empty();
}

void NQOMLFile::init() {
  state_ = std::make_unique<nqdetail::FileState>(*this);
}

// A copy takes the settings, nothing of what the source has read.
void NQOMLFile::copyFields(const NQOMLFile& source) {
  maxNumberOfErrors(source.maxNumberOfErrors());
  maxNumberOfWarnings(source.maxNumberOfWarnings());
  maxNestingDepth(source.maxNestingDepth());
  maxInheritedFields(source.maxInheritedFields());
  maxNumberOfOpenFiles(source.maxNumberOfOpenFiles());
  maxNumberOfFiles(source.maxNumberOfFiles());
  strictReading(source.strictReading());
  losslessWriting(source.losslessWriting());
}

nqLong NQOMLFile::sizeOf() const {
  return NQTextFile::sizeOf() + static_cast<nqLong>(sizeof state_) +
         static_cast<nqLong>(errorStringBufferSize() + warningStringBufferSize());
}

NQFileCodeEnum NQOMLFile::readOMLFile(const char* fileName, NQOMLStatic* grammar,
                                      NQObject* top, nqLong topTypeIndex, int binary,
                                      int useIndexHashTable, int) {
  return readFrom(fileName, nullptr, grammar, top, topTypeIndex, binary,
                  useIndexHashTable);
}

NQFileCodeEnum NQOMLFile::readOML(NQByteSource& source, const char* name,
                                  NQOMLStatic* grammar, NQObject* top,
                                  nqLong topTypeIndex, int binary,
                                  int useIndexHashTable) {
  return readFrom(name, &source, grammar, top, topTypeIndex, binary, useIndexHashTable);
}

// From the source, or from the file of that name where there is none.
NQFileCodeEnum NQOMLFile::readFrom(const char* name, NQByteSource* source,
                                   NQOMLStatic* grammar, NQObject* top,
                                   nqLong topTypeIndex, int binary,
                                   int useIndexHashTable) {
  if (grammar == nullptr || name == nullptr) return NQ_FILE_READ_ARGUMENT_ERROR;
  if (state_->busy) return NQ_FILE_READ_ERROR;
  initParser(grammar, top, topTypeIndex, useIndexHashTable);
  const nqdetail::BusyMark mark(*state_);
  state_->running = true;
  error(0);
  try {
    parse(name, source, binary != 0);
    checkSemantics();
    execute();
    if (state_->names && state_->names->ids.exhausted()) throw std::bad_alloc();
  } catch (const std::bad_alloc&) {
    state_->endForLackOfMemory();
  }
  state_->running = false;
  cleanup();
  const nqdetail::Diagnostics& diagnostics = state_->diagnostics;
  if (!diagnostics.failed() && !diagnostics.ended() && error() == 0) return NQ_FILE_OK;
  error(1);
  return diagnostics.errorCode == NQ_FILE_OK ? NQ_FILE_READ_ERROR : diagnostics.errorCode;
}

void NQOMLFile::initParser(NQOMLStatic* grammar, NQObject* top, nqLong topTypeIndex,
                           int useIndexHashTable) {
  nqdetail::FileState& state = *state_;
  if (state.busy) return;
  state.diagnostics.reset();
  try {
    pPathName("");
    {
      const nqdetail::BusyMark mark(state);  // an override may begin no read
      cleanup();
    }
    state.tree.clear();
    state.root = nullptr;
    state.bytesRead = 0;
    state.bytesTotal = 0;
    state.grammar = grammar;
    state.top = {top, topTypeIndex, nullptr, -1};
    if (useIndexHashTable == 0) {
      state.numbers.reset();
    } else if (state.numbers == nullptr && grammar != nullptr) {
      state.numbers = std::make_unique<NQIndexHashTable>(grammar->objectIDHashSize(),
                                                         kObjectSpacing, 0);
    }
    state.tables.pGrammar = grammar;
  } catch (const std::bad_alloc&) {
    state.endForLackOfMemory();
  }
}

void NQOMLFile::cleanup() {
  if (state_->running) {
    state_->diagnostics.end();
  } else {
    state_->release();
  }
}

void NQOMLFile::parse(const char* name, NQByteSource* source, bool binary) {
  nqdetail::FileState& state = *state_;
  state.root = nullptr;
  state.tree.clear();
  if (state.tables.pGrammar == nullptr) {  // an override of initParser() has made nothing
    state.diagnostics.end();
    return;
  }
  state.names.emplace(*state.grammar);
  state.tables = {state.grammar,
                  &state.names->strings,
                  &state.names->declaredSections,
                  &state.names->declaredFields,
                  &state.names->ignoredFields,
                  &state.names->ids};
  state.sources.emplace(
      state, !binary, state.sourceLimits,
      sharedReading() != 0 ? nqdetail::Access::kSharedRead : nqdetail::Access::kRead);
  const auto lexer =
      nqdetail::Lexer::make(binary, *state.sources, *state.names, state.diagnostics);
  nqdetail::Parser parser(this, *state.sources, *lexer, *state.names, state.diagnostics,
                          state.tree, std::min(state.maxNestingDepth, kDeepestNesting),
                          state.strict);
  if (source != nullptr) state.sources->push(*source, name);
  state.root = parser.parse(name);
  // The files are free again before the application is called.
  state.sources.reset();
  if (state.root == nullptr) state.tree.clear();
}

void NQOMLFile::checkSemantics() {
  nqdetail::FileState& state = *state_;
  if (state.root == nullptr) return;
  nqdetail::SemanticPass pass(state, *state.grammar, state.names->ids, state.diagnostics,
                              state.maxInheritedFields, state.bytesRead);
  pass.checkSemantics(*state.root);
  state.mayExecute = !state.diagnostics.failed() && !state.diagnostics.ended();
}

void NQOMLFile::execute() {
  nqdetail::FileState& state = *state_;
  if (!std::exchange(state.mayExecute, false) || state.diagnostics.failed() ||
      state.diagnostics.ended()) {
    return;
  }
  nqdetail::ObjectCreation creation(state, state.tree, state.names->ids,
                                    state.diagnostics, state.top, state.numbers.get());
  creation.execute(*state.root);
}

void NQOMLFile::errorMessage(NQOMLSyntaxStruct* where, int code, const char* text,
                             int fatal) {
  state_->diagnostics.error(
      where == nullptr ? "" : where->fileNameString(),
      where == nullptr ? -1 : where->line(), where == nullptr ? -1 : where->column(),
      code, text == nullptr ? "" : text, nullptr, nullptr, nullptr, fatal);
}

void NQOMLFile::warningMessage(NQOMLSyntaxStruct* where, int code, const char* text) {
  state_->diagnostics.warning(
      where == nullptr ? "" : where->fileNameString(),
      where == nullptr ? -1 : where->line(), where == nullptr ? -1 : where->column(),
      code, text == nullptr ? getStringResource(nqdetail::kSomethingWrong) : text);
}

int NQOMLFile::numberOfErrors() const {
  return state_->diagnostics.numberOfErrors;
}

int NQOMLFile::numberOfErrors(int number) {
  return state_->diagnostics.numberOfErrors = number;
}

int NQOMLFile::numberOfWarnings() const {
  return state_->diagnostics.numberOfWarnings;
}

int NQOMLFile::maxNumberOfErrors() const {
  return state_->diagnostics.maxNumberOfErrors;
}

int NQOMLFile::maxNumberOfErrors(int number) {
  return state_->diagnostics.maxNumberOfErrors = number;
}

int NQOMLFile::maxNumberOfWarnings() const {
  return state_->diagnostics.maxNumberOfWarnings;
}

int NQOMLFile::maxNumberOfWarnings(int number) {
  return state_->diagnostics.maxNumberOfWarnings = number;
}

int NQOMLFile::maxNestingDepth() const {
  return state_->maxNestingDepth;
}

int NQOMLFile::maxNestingDepth(int depth) {
  return state_->maxNestingDepth = depth;
}

nqInt64 NQOMLFile::maxInheritedFields() const {
  return state_->maxInheritedFields;
}

nqInt64 NQOMLFile::maxInheritedFields(nqInt64 number) {
  return state_->maxInheritedFields = number;
}

int NQOMLFile::maxNumberOfOpenFiles() const {
  return state_->sourceLimits.open;
}

int NQOMLFile::maxNumberOfOpenFiles(int number) {
  return state_->sourceLimits.open = number;
}

int NQOMLFile::maxNumberOfFiles() const {
  return state_->sourceLimits.opened;
}

int NQOMLFile::maxNumberOfFiles(int number) {
  return state_->sourceLimits.opened = number;
}

int NQOMLFile::strictReading() const {
  return state_->strict ? 1 : 0;
}

int NQOMLFile::strictReading(int strict) {
  state_->strict = strict != 0;
  return strict;
}

char* NQOMLFile::pErrorStringBuffer() const {
  return state_->diagnostics.errors.text();
}

char* NQOMLFile::pErrorStringBuffer(int size) {
  if (size >= 0) state_->diagnostics.errors.resize(static_cast<unsigned>(size));
  return pErrorStringBuffer();
}

char* NQOMLFile::pWarningStringBuffer() const {
  return state_->diagnostics.warnings.text();
}

char* NQOMLFile::pWarningStringBuffer(int size) {
  if (size >= 0) state_->diagnostics.warnings.resize(static_cast<unsigned>(size));
  return pWarningStringBuffer();
}

unsigned int NQOMLFile::errorStringBufferSize() const {
  return state_->diagnostics.errors.size();
}

unsigned int NQOMLFile::warningStringBufferSize() const {
  return state_->diagnostics.warnings.size();
}

NQFileCodeEnum NQOMLFile::errorCode() const {
  return state_->diagnostics.errorCode;
}

NQFileCodeEnum NQOMLFile::errorCode(NQFileCodeEnum code) {
  return state_->diagnostics.errorCode = code;
}

NQIndexHashTable* NQOMLFile::pIndexHashTable() const {
  return state_->numbers.get();
}

const NQOMLStatic* NQOMLFile::pOMLStatic() const {
  return state_->grammar;
}

NQOMLExtension* NQOMLFile::pOMLExtension() const {
  return state_->extension;
}

NQOMLExtension* NQOMLFile::pOMLExtension(NQOMLExtension* extension) {
  return state_->extension = extension;
}

NQOMLSyntaxObject* NQOMLFile::pSyntaxRoot() const {
  return state_->root;
}

NQOMLSyntaxObject* NQOMLFile::pSyntaxObject(nqLong objectIDIndex) const {
  return state_->names ? state_->names->ids.pSyntaxObject(objectIDIndex) : nullptr;
}

nqLong NQOMLFile::sectionIDIndex(const char* name) const {
  return nqdetail::sectionIndex(&state_->tables, name);
}

void NQOMLFile::updateObject(NQOMLSyntaxObject* syntax, NQObject* old,
                             NQObject* replacement) {
  if (syntax == nullptr || !state_->names) return;
  nqdetail::updateObject(state_->names->ids, state_->numbers.get(),
                         syntax->objectIDIndex(), old, replacement);
}

const char* NQOMLFile::pFileNameString() const {
  return state_->sourceName(fileNameIndex());
}

nqLong NQOMLFile::fileNameIndex() const {
  return state_->sources ? state_->sources->place().fileIndex : -1;
}

nqLong NQOMLFile::line() const {
  return state_->sources ? state_->sources->place().line : -1;
}

int NQOMLFile::position() const {
  return state_->sources ? state_->sources->place().column : -1;
}

void NQOMLFile::vReserved() {}

const NQOMLDefObjType* NQOMLFile::definitionOf(const NQOMLSyntaxObject* syntax) const {
  if (state_->grammar == nullptr || syntax == nullptr) return nullptr;
  return state_->grammar->pObjTypeDefinition(syntax->typeIndex());
}

int NQOMLFile::vCheckObject(NQOMLSyntaxObject* syntax) {
  const NQOMLDefObjType* const type = definitionOf(syntax);
  if (type == nullptr) return 0;
  const NQOMLCheckFunction check = type->checkFunction();
  return check == nullptr ? 1 : check(this, syntax);
}

void NQOMLFile::vSyntaxObjectCreated(NQOMLSyntaxObject*, nqLong, int) {}

NQObject* NQOMLFile::vCreateObject(NQOMLSyntaxObject* syntax,
                                   NQOMLSyntaxObject* ownerSyntax, NQObject* owner) {
  const NQOMLDefObjType* const type = definitionOf(syntax);
  if (type == nullptr || type->createFunction() == nullptr) return nullptr;
  return type->createFunction()(this, syntax, ownerSyntax, owner);
}

int NQOMLFile::vReadField(NQOMLSyntaxField* field, NQOMLSyntaxObject* syntax,
                          NQObject* object) {
  if (object != nullptr && object->isOMLObject() != 0) {
    const int taken = static_cast<NQOMLObject*>(object)->readField(field, syntax, this);
    if (taken != 0) return taken;
  }
  const NQOMLDefObjType* const type = definitionOf(syntax);
  if (type == nullptr || type->readFieldFunction() == nullptr) return 0;
  return type->readFieldFunction()(this, field, syntax, object);
}

void NQOMLFile::vPreReadFields(NQOMLSyntaxObject* syntax, NQObject* object) {
  if (object == nullptr || object->isOMLObject() == 0) return;
  static_cast<NQOMLObject*>(object)->preReadFields(syntax, this);
}

void NQOMLFile::vPostReadFields(NQOMLSyntaxObject* syntax, NQObject* object) {
  if (object == nullptr || object->isOMLObject() == 0) return;
  static_cast<NQOMLObject*>(object)->postReadFields(syntax, this);
}

void NQOMLFile::vErrorMessage(const char* file, nqLong line, int column, int code,
                              const char* text, int fatal) {
  state_->diagnostics.storeError(file, line, column, code, text, fatal);
}

void NQOMLFile::vWarningMessage(const char* file, nqLong line, int column, int code,
                                const char* text) {
  state_->diagnostics.storeWarning(file, line, column, code, text);
}

int NQOMLFile::vIncludeFile(const char*) {
  return 1;
}

std::unique_ptr<NQByteSource> NQOMLFile::vIncludedSource(const char*) {
  return nullptr;
}

int NQOMLFile::vReadProgress(nqInt64, nqInt64) {
  return 1;
}

void NQOMLFile::vWriteObject(NQObject*) {}

int NQOMLFile::isFatalError() const {
  return state_->diagnostics.ended() ? 1 : 0;
}

void NQOMLFile::setFatalError() {
  state_->diagnostics.end();
}

void NQOMLFile::clearFatalError() {
  state_->diagnostics.resume();
}

void NQOMLFile::internalErrorMessage(int code, const char* a1, const char* a2,
                                     const char* a3, int fatal) {
  internalErrorMessage(pFileNameString(), line(), position(), code, a1, a2, a3, fatal);
}

void NQOMLFile::internalErrorMessage(nqLong fileNameIndex, const NQOMLToken* token,
                                     int code, const char* a1, const char* a2,
                                     const char* a3, int fatal) {
  internalErrorMessage(state_->sourceName(fileNameIndex),
                       token == nullptr ? -1 : token->line,
                       token == nullptr ? -1 : token->column, code, a1, a2, a3, fatal);
}

void NQOMLFile::internalErrorMessage(const char* file, nqLong line, int column, int code,
                                     const char* a1, const char* a2, const char* a3,
                                     int fatal) {
  internalErrorMessage(file, line, column, code, getStringResource(code), a1, a2, a3,
                       fatal);
}

void NQOMLFile::internalErrorMessage(const char* file, nqLong line, int column, int code,
                                     const char* format, const char* a1, const char* a2,
                                     const char* a3, int fatal) {
  state_->diagnostics.error(file, line, column, code, format == nullptr ? "" : format, a1,
                            a2, a3, fatal);
}

void NQOMLFile::internalWarningMessage(const char* file, nqLong line, int column,
                                       int code) {
  internalWarningMessage(file, line, column, code, getStringResource(code));
}

void NQOMLFile::internalWarningMessage(const char* file, nqLong line, int column,
                                       int code, const char* text) {
  state_->diagnostics.warning(file, line, column, code, text);
}
