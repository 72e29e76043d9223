// The writing half of NQOMLFile.

#include <new>
#include <utility>

#include "nq/core/string_pool.h"
#include "nq/oml/file_state_internal.h"
#include "nq/oml/oml_file.h"
#include "nq/oml/oml_object.h"

namespace nqdetail {

bool WriteState::send(const char* data, std::size_t count) {
  return (binary ? state.file.writeBinary(data, static_cast<int>(count))
                 : state.file.writeString(data)) == NQ_FILE_OK;
}

void WriteState::start(bool inBinary, const NQObject* top) {
  binary = inBinary;
  writer =
      Writer::make(binary, {*this, state.tables.pGrammar, top, state.numbers, lossless});
}

Writer* WriteState::writerForOperation() {
  NQOMLFile& file = state.file;
  const bool isOpen = file.isOpen() || file.isAttached();
  const NQFileModeEnum mode = file.mode();
  const bool text = mode == NQ_WRITE || mode == NQ_WRITE_ASCII || mode == NQ_APPEND;
  const bool allowed =
      text || (mode == NQ_WRITE_BINARY && state.tables.pGrammar != nullptr);
  if (writer == nullptr && !state.busy && isOpen && allowed) {
    try {
      start(!text, state.top.given);
    } catch (const std::bad_alloc&) {
    }
  }
  Writer* const open = openWriter();
  if (open == nullptr) {
    fail();
    refused = isOpen;
  }
  return open;
}

void WriteState::fail() {
  if (writer != nullptr) writer->spoil();
  state.file.error(1);
}

bool WriteState::endOwnWrite() {
  if (inHook) return true;
  if (writer != nullptr) writer->output().flush();
  const bool failed = writer != nullptr && writer->failed();
  writer.reset();
  return !std::exchange(refused, false) && !failed;
}

}  // namespace nqdetail

NQFileCodeEnum NQOMLFile::writeString(const char* text) {
  nqdetail::Writer* const writer = state_->write.openWriter();
  if (writer == nullptr || state_->write.binary) {
    const NQFileCodeEnum result = NQTextFile::writeString(text);
    if (result != NQ_FILE_OK) state_->write.fail();
    return result;
  }
  return append(text != nullptr, text == nullptr ? "" : text);
}

NQFileCodeEnum NQOMLFile::writeBinary(const char* data, int count) {
  nqdetail::Writer* const writer = state_->write.openWriter();
  if (writer == nullptr || !state_->write.binary) {
    const NQFileCodeEnum result = NQTextFile::writeBinary(data, count);
    if (result != NQ_FILE_OK) state_->write.fail();
    return result;
  }
  const bool allowed = data != nullptr && count >= 0;
  return append(allowed, {data, allowed ? static_cast<std::size_t>(count) : 0});
}

NQFileCodeEnum NQOMLFile::append(bool allowed, std::string_view bytes) {
  nqdetail::Writer& writer = *state_->write.writer;
  writer.output().append(bytes);
  error(0);
  if (!allowed || writer.output().failed()) state_->write.fail();
  return error() ? NQ_FILE_WRITE_ERROR : NQ_FILE_OK;
}

NQFileCodeEnum NQOMLFile::flush() {
  auto* const writer = state_->write.openWriter();
  if (writer != nullptr) writer->output().flush();
  const NQFileCodeEnum result = NQTextFile::flush();
  return writer != nullptr && writer->output().failed() ? NQ_FILE_WRITE_ERROR : result;
}

NQFileCodeEnum NQOMLFile::close() {
  const bool whole = state_->write.endOwnWrite();
  if (!whole) abandon();
  const NQFileCodeEnum result = NQTextFile::close();
  if (!whole) error(1);
  return whole ? result : NQ_FILE_CLOSE_ERROR;
}

NQFileCodeEnum NQOMLFile::detach(int mark) {
  const bool whole = state_->write.endOwnWrite();
  const NQFileCodeEnum result = NQTextFile::detach(mark);
  if (!whole) error(1);
  return whole ? result : NQ_FILE_CLOSE_ERROR;
}

NQFileCodeEnum NQOMLFile::writeOMLFile(const char* fileName, NQOMLStatic* grammar,
                                       NQObject* top, int binary, int useIndexHashTable,
                                       int) {
  if (fileName == nullptr) return NQ_FILE_WRITE_ARGUMENT_ERROR;
  return writeTo(fileName, nullptr, grammar, top, binary, useIndexHashTable);
}

NQFileCodeEnum NQOMLFile::writeOML(NQByteSink& sink, NQOMLStatic* grammar, NQObject* top,
                                   int binary, int useIndexHashTable) {
  return writeTo(nullptr, &sink, grammar, top, binary, useIndexHashTable);
}

// To the sink, or to a file of that name where there is none.
NQFileCodeEnum NQOMLFile::writeTo(const char* fileName, NQByteSink* sink,
                                  NQOMLStatic* grammar, NQObject* top, int binary,
                                  int useIndexHashTable) {
  if (grammar == nullptr) return NQ_FILE_WRITE_ARGUMENT_ERROR;
  nqdetail::FileState& state = *state_;
  if (state.busy) return NQ_FILE_WRITE_ERROR;
  // The application may throw in its hook, and in overrides of what is called here.
  const auto attempt = [](const auto& step) {
    try {
      return step();
    } catch (...) {
      return NQ_FILE_WRITE_ERROR;
    }
  };
  state.release();
  NQFileCodeEnum result = attempt([&] {
    initParser(grammar, top, state.top.givenType, useIndexHashTable);
    return NQ_FILE_OK;
  });
  // An override may have left the tables as they were.
  if (state.tables.pGrammar == nullptr) state.tables.pGrammar = state.grammar = grammar;
  const nqdetail::BusyMark mark(state);
  state.running = true;
  bool opened = false;
  if (result == NQ_FILE_OK) {
    result = attempt([&] {
      const NQFileModeEnum newMode = binary != 0 ? NQ_WRITE_BINARY : NQ_WRITE;
      opened = (sink != nullptr ? attachSink(*sink, newMode) : open(fileName, newMode)) ==
               NQ_FILE_OK;
      return opened ? NQ_FILE_OK : NQ_FILE_OPEN_ERROR;
    });
  }
  if (opened) {
    state.write.inHook = true;
    result = attempt([&] { return writeTop(top, binary != 0); });
    state.write.inHook = false;
    state.write.writer.reset();
  }
  if (opened || isOpen()) {
    if (result != NQ_FILE_OK) abandon();
    const NQFileCodeEnum closed =
        attempt([&] { return sink != nullptr ? detach(0) : close(); });
    if (result == NQ_FILE_OK) result = closed;
  }
  state.top = {};
  storedOnDisk(result == NQ_FILE_OK);
  error(result != NQ_FILE_OK);
  return result;
}

NQFileCodeEnum NQOMLFile::writeTop(NQObject* top, bool binary) {
  nqdetail::FileState& state = *state_;
  state.top = {top, state.top.givenType, top, state.top.givenType};
  state.write.start(binary, top);
  vWriteObject(top);
  const bool failedInHook = error() != 0;
  state.write.writer->output().flush();  // also where an override of flush() does not
  const bool flushed = flush() == NQ_FILE_OK;
  const bool whole = !failedInHook && flushed && !state.write.writer->failed() &&
                     !state.diagnostics.ended();
  return whole ? NQ_FILE_OK : NQ_FILE_WRITE_ERROR;
}

int NQOMLFile::losslessWriting() const {
  return state_->write.lossless ? 1 : 0;
}

int NQOMLFile::losslessWriting(int lossless) {
  state_->write.lossless = lossless != 0;
  return lossless;
}

void NQOMLFile::writeObjectStart(const char* type, const NQOMLObject* object,
                                 int singleLine, int withID) {
  state_->write.with([&](nqdetail::Writer& writer) {
    writer.object(type, object, singleLine != 0, withID != 0);
  });
}

void NQOMLFile::writeObjectStart(const char* type, const NQObject* object,
                                 int singleLine) {
  state_->write.with([&](nqdetail::Writer& writer) {
    writer.object(type, object, singleLine != 0, false);
  });
}

void NQOMLFile::writeNamedObjectStart(const char* type, const char* id, int singleLine) {
  state_->write.with([&](nqdetail::Writer& writer) {
    writer.objectStart(type, id == nullptr ? "" : id, singleLine != 0);
  });
}

void NQOMLFile::writeObjectDefaultStart(const char* type) {
  state_->write.with([&](nqdetail::Writer& writer) { writer.defaultsStart(type); });
}

void NQOMLFile::writeSectionStart(const char* section, int singleLine) {
  state_->write.with(
      [&](nqdetail::Writer& writer) { writer.sectionStart(section, singleLine != 0); });
}

void NQOMLFile::writeOpeningBracket() {
  state_->write.with([](nqdetail::Writer& writer) { writer.openingBracket(); });
}

void NQOMLFile::writeClosingBracket() {
  state_->write.with([](nqdetail::Writer& writer) { writer.closingBracket(); });
}

void NQOMLFile::writeBlancLine() {
  state_->write.with([](nqdetail::Writer& writer) { writer.blankLine(); });
}

void NQOMLFile::writeAttribute(const char* name, const char* word) {
  state_->write.with([&](nqdetail::Writer& writer) { writer.word(name, word); });
}

void NQOMLFile::writeAttribute(const char* name, int value) {
  state_->write.with([&](nqdetail::Writer& writer) { writer.integer(name, value); });
}

void NQOMLFile::writeAttribute(const char* name, unsigned int value) {
  state_->write.with([&](nqdetail::Writer& writer) { writer.anyInteger(name, value); });
}

void NQOMLFile::writeAttribute(const char* name, long value) {
  state_->write.with([&](nqdetail::Writer& writer) { writer.anyInteger(name, value); });
}

void NQOMLFile::writeAttribute(const char* name, unsigned long value) {
  state_->write.with([&](nqdetail::Writer& writer) { writer.anyInteger(name, value); });
}

void NQOMLFile::writeAttribute(const char* name, long long value) {
  state_->write.with([&](nqdetail::Writer& writer) { writer.anyInteger(name, value); });
}

void NQOMLFile::writeAttribute(const char* name, unsigned long long value) {
  state_->write.with([&](nqdetail::Writer& writer) { writer.anyInteger(name, value); });
}

void NQOMLFile::writeAttribute(const char* name, float value) {
  writeAttribute(name, static_cast<double>(value));
}

void NQOMLFile::writeAttribute(const char* name, double value) {
  state_->write.with([&](nqdetail::Writer& writer) { writer.real(name, value); });
}

void NQOMLFile::writeAttribute(const char* name, const NQOMLObject* object,
                               const NQOMLObject* context, int withName) {
  state_->write.with([&](nqdetail::Writer& writer) {
    writer.reference(name, object, context, withName != 0);
  });
}

void NQOMLFile::writeAttribute(const char* name, const NQOMLBinValue* value) {
  state_->write.with([&](nqdetail::Writer& writer) {
    if (value != nullptr) writer.binaryValue(name, *value);
  });
}

void NQOMLFile::writeStringAttribute(const char* name, const char* text) {
  state_->write.with([&](nqdetail::Writer& writer) {
    if (text != nullptr) writer.string(name, text);
  });
}

void NQOMLFile::writeAddressAttribute(const char* name, const char* address) {
  state_->write.with([&](nqdetail::Writer& writer) {
    if (name != nullptr && address != nullptr) writer.address(name, address);
  });
}

void NQOMLFile::writeBoolAttribute(const char* name, int value) {
  writeAttribute(name, value != 0 ? "true" : "false");
}

void NQOMLFile::writeIPBytesAttribute(const char* name, nqULong address) {
  state_->write.with([&](nqdetail::Writer& writer) { writer.ipAddress(name, address); });
}

int NQOMLFile::writeHook(const char* type, const NQObject* object) {
  if (state_->write.writerForOperation() == nullptr) return 0;
  const NQOMLStatic* const grammar = state_->tables.pGrammar;
  if (grammar == nullptr) return 0;
  const NQOMLDefObjType* const definition =
      grammar->pObjTypeDefinition(grammar->pObjTypePool()->lookup(type));
  if (definition == nullptr || definition->writeFunction() == nullptr) return 0;
  return definition->writeFunction()(this, object);
}
