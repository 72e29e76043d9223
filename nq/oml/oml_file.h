// oml_file.h -- reading and writing files in the object format OML.
//
// readOMLFile() reads a file against a grammar (grammar.h), with all files that
// it includes, and turns it into the application's objects. The application takes
// part by deriving from NQOMLFile and overriding the v... hooks, by callbacks that
// it registers with its grammar, or by objects that derive from NQOMLObject; the
// default hooks call the latter two. Objects made belong to the application.
//
// What is wrong with a file is reported line by line through vErrorMessage(),
// which by default gathers the lines in a buffer, and in the result of the read.
// No object is made before the whole file has been parsed and checked; no hook is
// called after a fatal error. However a file is damaged, a read ends in a time and with
// memory in proportion to the file, within the limits that are set below. Running out of
// memory is fatal error 12.
//
// writeOMLFile() opens a file and calls vWriteObject(), where the application writes
// its objects by the write... operations, in the order in which the file is to have
// them: an object's or section's start, an opening bracket, what it contains, a
// closing bracket. The same calls give the text or the binary encoding. They report
// nothing; whether everything was written is the result of writeOMLFile(). A derived
// class may also open a file for writing itself, after initParser(), call the same
// operations, and close it: then the result is that of close().
//
// An NQOMLFile can read and write many files, one after the other. Hooks may not
// start another read or write with the file that calls them. Syntax nodes stay valid
// until the next read; their texts, and the objects they refer to, only until the read
// returns.
//
// How it works
//   A read goes through a row of rooms, each with a header of its own: sources
//   and lexer (reading/lexer.h), parser, semantic pass, creation, and diagnostics
//   on which all of them report. A fatal error only marks the read as ended; every
//   room then answers as if there were nothing more to do, and what they share
//   goes when the read returns. A write has a room for each encoding
//   (writing/writer.h) and gathers its output before it goes to the file.

#ifndef NQ_OML_OML_FILE_H
#define NQ_OML_OML_FILE_H

#include <memory>
#include <string_view>

#include "nq/file/byte_stream.h"
#include "nq/file/text_file.h"
#include "nq/oml/grammar.h"
#include "nq/oml/syntax_tree.h"

class NQIndexHashTable;
class NQOMLBinValue;
class NQOMLExtension;
class NQOMLObject;

namespace nqdetail {
struct FileState;
struct WriteState;
struct ReadTables;
const ReadTables* readTables(const NQOMLFile* file);
void announceSyntaxObject(NQOMLFile* file, NQOMLSyntaxObject* node, nqLong line,
                          int position);
}  // namespace nqdetail

class NQ_EXPORT NQOMLFile : public NQTextFile {
  NQ_COPY_PROTOCOL(NQOMLFile)

 public:
  NQOMLFile();
  ~NQOMLFile() override;

  nqLong sizeOf() const override;

  // While a file is written in the text encoding, texts given to these two, and bytes
  // in the binary encoding, follow what the writing operations have written so far.
  // All output passes through them in large pieces.
  NQFileCodeEnum writeString(const char* text) override;
  NQFileCodeEnum writeBinary(const char* data, int count) override;
  NQFileCodeEnum flush() override;
  [[nodiscard]] NQFileCodeEnum close() override;
  NQFileCodeEnum detach(int mark) override;

  // The virtual operations stand in the order of their slots, which derived
  // classes in other modules rely on: new ones go to the end.

  // Reads a file in the text encoding, or the binary one when `binary` is not 0.
  //   grammar            borrowed for the read
  //   top                what the outermost object is to fill; null has it created
  //   topTypeIndex       the type that the outermost object must have with `top`
  //   useIndexHashTable  whether the numbers at the end of ids are kept, see
  //                      pIndexHashTable()
  //   unused             accepted and ignored
  // The result is NQ_FILE_OK when nothing was reported; NQ_FILE_OPEN_ERROR when the
  // file or one it includes cannot be opened, because it is open elsewhere for instance;
  // NQ_FILE_READ_ERROR for everything else that was reported, for a read that was broken
  // off, and for a call out of a hook of this reader, which changes nothing;
  // NQ_FILE_READ_ARGUMENT_ERROR for a null name or grammar.
  virtual NQFileCodeEnum readOMLFile(const char* fileName, NQOMLStatic* grammar,
                                     NQObject* top, nqLong topTypeIndex, int binary,
                                     int useIndexHashTable, int unused);

  // Writes a file in the text encoding, or the binary one when `binary` is not 0: opens
  // it, calls vWriteObject() and closes it.
  //   grammar            borrowed for the write; its names are those of the file
  //   top                handed to vWriteObject(); full addresses begin with it
  //   useIndexHashTable  whether the ids of the objects written are kept, and known
  //                      ones used again, see pIndexHashTable()
  //   unused             accepted and ignored
  // The result is NQ_FILE_OK, and storedOnDisk() 1, when the whole file was written;
  // NQ_FILE_OPEN_ERROR when it cannot be created; NQ_FILE_WRITE_ERROR when a write
  // failed, whatever succeeded after it, a number could not be written, memory was
  // lacking, a fatal error was reported or an exception left the hook or an override, and
  // for a call out of a hook of this file, which changes nothing; NQ_FILE_CLOSE_ERROR
  // when only the close failed; NQ_FILE_WRITE_ARGUMENT_ERROR for a null name or grammar.
  [[nodiscard]] virtual NQFileCodeEnum writeOMLFile(const char* fileName,
                                                    NQOMLStatic* grammar, NQObject* top,
                                                    int binary, int useIndexHashTable,
                                                    int unused);

  // The same from a source and to a sink (nq/file/byte_stream.h), which are borrowed for
  // the call: from memory, a stream or standard input, to a string or a stream. `name`
  // stands for the source in messages, and included files are looked for as if it were
  // a file of that name. A source that fails is NQ_FILE_READ_ERROR, a sink that does is
  // NQ_FILE_WRITE_ERROR; of what was written then a part may have arrived.
  NQFileCodeEnum readOML(NQByteSource& source, const char* name, NQOMLStatic* grammar,
                         NQObject* top, nqLong topTypeIndex, int binary,
                         int useIndexHashTable);
  [[nodiscard]] NQFileCodeEnum writeOML(NQByteSink& sink, NQOMLStatic* grammar,
                                        NQObject* top, int binary, int useIndexHashTable);

  // The steps before and after a read, called by readOMLFile(). initParser()
  // forgets the last read, with a call of cleanup(), and makes the tables of the
  // next; cleanup() frees them, and an error that an override reports counts in the
  // result. In a hook, and after a fatal error, cleanup() only breaks the read or
  // write off, and is called once more at the end of a read; initParser() does
  // nothing there.
  virtual void initParser(NQOMLStatic* grammar, NQObject* top, nqLong topTypeIndex,
                          int useIndexHashTable);
  virtual void cleanup();

  // Reports an error or a warning that a hook or an object has found; fatal, not 0,
  // ends the read. `where` is the node at fault, null for none; `code` is only
  // printed. A null text stands for "", in a warning for "something wrong".
  void errorMessage(NQOMLSyntaxStruct* where, int code, const char* text, int fatal);
  void warningMessage(NQOMLSyntaxStruct* where, int code, const char* text);

  // Counts since the last read began. At the given numbers of errors or warnings
  // the read ends with a fatal error; 16 and 32000 at first.
  int numberOfErrors() const;
  int numberOfErrors(int number);
  int numberOfWarnings() const;
  int maxNumberOfErrors() const;
  int maxNumberOfErrors(int number);
  int maxNumberOfWarnings() const;
  int maxNumberOfWarnings(int number);
  // How deep blocks may nest, 256 at first; beyond 1024 it stays at that.
  int maxNestingDepth() const;
  int maxNestingDepth(int depth);
  // How many fields objects may inherit from defaults in one read, all objects together;
  // 50 million at first. 64 more are allowed for each byte read.
  nqInt64 maxInheritedFields() const;
  nqInt64 maxInheritedFields(nqInt64 number);
  // How many files may be open at once, and how many read in one read, included ones
  // among them; 64 and 1000 at first. Reaching beyond is error 13, beyond the other
  // limits fatal error 12.
  int maxNumberOfOpenFiles() const;
  int maxNumberOfOpenFiles(int number);
  int maxNumberOfFiles() const;
  int maxNumberOfFiles(int number);
  // Whether a file may take back what the grammar demands of it: 0, as at first, lets
  // it switch checks off with the comment "unchecked" and declare names of fields and
  // sections that are then passed over. Anything else makes that comment a comment,
  // and names that the grammar lacks stay unknown. For files of strangers.
  int strictReading() const;
  int strictReading(int strict);

  // How files are written. 0, as at first, gives the established encodings exactly,
  // which lose something here and there. Anything else gives what reads back equal:
  //   - control characters in strings are written as escapes, and strings in the
  //     binary encoding escaped once instead of twice
  //   - a binary value in the binary encoding is preceded by its length instead of
  //     the low half of its address in memory
  //   - a real in the text encoding has as many digits as it takes instead of six
  //     behind the point; one in the binary encoding keeps eight, rounded
  //   - ids are the numbers from 1 in the order in which objects are first mentioned
  //     instead of the low 32 bits of graphFileID(), which may coincide
  int losslessWriting() const;
  int losslessWriting(int lossless);

  // The writing operations, for use in vWriteObject(), or while the file is open in the
  // mode NQ_WRITE, NQ_WRITE_ASCII or NQ_APPEND (text encoding) or, with a grammar from
  // initParser(), NQ_WRITE_BINARY. At other times they only set error(). Lack of memory
  // is a failed write, and thrown as std::bad_alloc, which may leave the hook. For a null
  // name or text they do nothing. The binary encoding has the indices of the grammar's
  // names, -1 for unknown ones, and ignores blank lines and `singleLine`.

  // The start of an object of a type: with the id of `object` if `withID` is not 0,
  // else, and for any other NQObject, without one. Either way pIndexHashTable() keeps
  // the id, unless it is 0. From here to the next closing bracket everything stands on
  // one line if `singleLine` is not 0.
  void writeObjectStart(const char* type, const NQOMLObject* object, int singleLine,
                        int withID);
  void writeObjectStart(const char* type, const NQObject* object, int singleLine);
  // The same with an id that is a text; null or "" for none.
  void writeNamedObjectStart(const char* type, const char* id, int singleLine);
  // The start of a block of defaults for objects of a type.
  void writeObjectDefaultStart(const char* type);
  void writeSectionStart(const char* section, int singleLine);
  void writeOpeningBracket();
  // Always ends its line.
  void writeClosingBracket();
  void writeBlancLine();

  // A field's value: an enumerator or another word without quotes, an integer, a real
  // with six digits behind the point. An integer beyond the range of nqLong is a failed
  // write, and its low 32 bits are written in its place. A bool is an integer here:
  // writeBoolAttribute() writes truth values.
  void writeAttribute(const char* name, const char* word);
  void writeAttribute(const char* name, int value);
  void writeAttribute(const char* name, unsigned int value);
  void writeAttribute(const char* name, long value);
  void writeAttribute(const char* name, unsigned long value);
  void writeAttribute(const char* name, long long value);
  void writeAttribute(const char* name, unsigned long long value);
  void writeAttribute(const char* name, float value);
  void writeAttribute(const char* name, double value);
  // A reference, without its name if `withName` is 0: the id of `object` if it has the
  // same owner as `context`, the object to which the field belongs, else its address
  // from the top. Nothing for null and for an object without an id.
  void writeAttribute(const char* name, const NQOMLObject* object,
                      const NQOMLObject* context, int withName);
  void writeAttribute(const char* name, const NQOMLBinValue* value);
  void writeStringAttribute(const char* name, const char* text);
  // A reference by its address as a text: ids joined by ",", from the top if it begins
  // with "$".
  void writeAddressAttribute(const char* name, const char* address);
  // "true" or "false".
  void writeBoolAttribute(const char* name, int value);
  // The first byte of the address in the highest place.
  void writeIPBytesAttribute(const char* name, nqULong address);

  // Calls the write callback that the grammar has for the type of that name, and
  // returns its answer; 0 without a callback.
  int writeHook(const char* type, const NQObject* object);

  // The buffers that gather the lines of errors and warnings, emptied when a read
  // begins; null at first. The second form replaces a buffer by one of `size`
  // bytes, none for 0, and leaves it as it is for a negative size. Both return the
  // buffer, which stays the file's. A line that does not fit is cut, "...\n"
  // stands for the rest, and what follows is dropped.
  char* pErrorStringBuffer() const;
  char* pErrorStringBuffer(int size);
  char* pWarningStringBuffer() const;
  char* pWarningStringBuffer(int size);
  unsigned int errorStringBufferSize() const;
  unsigned int warningStringBufferSize() const;
  // The result of what was reported since the last read began.
  NQFileCodeEnum errorCode() const;
  // The number at the end of the id of each object made, and the id of each object
  // written, in 32 bits, under the object's address; null when the last read or write
  // was not to keep them. It lasts until one that is not to use it, and one that is
  // adds to it.
  NQIndexHashTable* pIndexHashTable() const;
  const NQOMLStatic* pOMLStatic() const;
  // The extension whose own file this is (oml_extension.h), null at first; borrowed,
  // and not copied.
  NQOMLExtension* pOMLExtension() const;
  NQOMLExtension* pOMLExtension(NQOMLExtension* extension);

  // The tree of the last read, of type 0: its children are the objects on top, its fields
  // those outside any object. Null while a file is parsed, and when that has failed.
  NQOMLSyntaxObject* pSyntaxRoot() const;
  // During a read: the node that defines an id, or null; and the index of a
  // section, counted as in syntax nodes, or -1.
  NQOMLSyntaxObject* pSyntaxObject(nqLong objectIDIndex) const;
  nqLong sectionIDIndex(const char* name) const;
  // Puts `replacement` in place of the object made for a node, and destroys `old`,
  // which may be null, unless it is `replacement` itself.
  void updateObject(NQOMLSyntaxObject* syntax, NQObject* old, NQObject* replacement);

  // Where reading stands: the source file, line and column of what comes next.
  // "" and -1 when no file is open.
  const char* pFileNameString() const;
  nqLong fileNameIndex() const;
  nqLong line() const;
  int position() const;

 protected:
  void init();

  // A slot without a purpose; does nothing.
  virtual void vReserved();

  // Called for each object of a file that is good so far, parents first; 0 means
  // that it is not acceptable, and the read ends with error 34. Asks the check
  // callback of the object's type; without one everything is acceptable.
  virtual int vCheckObject(NQOMLSyntaxObject* syntax);
  // Called when a node has been made, still without its fields and children.
  virtual void vSyntaxObjectCreated(NQOMLSyntaxObject* syntax, nqLong line, int position);
  // Called to make the object for a node; the object belongs to the application,
  // null is allowed. `owner` is the object made for the enclosing node, both null
  // for the outermost object. Asks the create callback of the type, if any.
  virtual NQObject* vCreateObject(NQOMLSyntaxObject* syntax,
                                  NQOMLSyntaxObject* ownerSyntax, NQObject* owner);
  // Called for each field of an object once all objects are made, those of its
  // defaults first; `object` is null for fields outside any object. 0 means that
  // the field was not taken: warning 49 follows at the end. Asks an NQOMLObject
  // itself, and if that answers 0 the read-field callback of the node's type.
  virtual int vReadField(NQOMLSyntaxField* field, NQOMLSyntaxObject* syntax,
                         NQObject* object);
  // Called before the first and after the last field of each object. Call the
  // operations of an NQOMLObject of the same names.
  virtual void vPreReadFields(NQOMLSyntaxObject* syntax, NQObject* object);
  virtual void vPostReadFields(NQOMLSyntaxObject* syntax, NQObject* object);

  // Called for each message; the texts live until the call returns. Without a
  // place `line` and `column` are -1. A bracket closed by one of another kind is
  // reported twice, as 50 where it was opened and as 51 where it is closed. They
  // store a line and see to the limits: an override that calls neither has none.
  virtual void vErrorMessage(const char* file, nqLong line, int column, int code,
                             const char* text, int fatal);
  virtual void vWarningMessage(const char* file, nqLong line, int column, int code,
                               const char* text);

 public:
  // Makes and fills the objects, when nothing was reported; called by
  // readOMLFile(), once for a read.
  virtual void execute();

 protected:
  // Called before a file that another one includes is opened, with the name that
  // is tried: first as it is written, then in the directory of the including file.
  // 0 forbids it, which counts as a file that cannot be opened. A tool that reads
  // files of strangers answers 0 to all names outside its own directory.
  virtual int vIncludeFile(const char* name);
  // Called about every 64 kilobytes with the number of bytes read so far and the
  // size of the files met so far, included ones among them; -1 when one of them
  // has none, as a pipe. 0 breaks the read off without a message.
  virtual int vReadProgress(nqInt64 bytesRead, nqInt64 bytesTotal);

  // Writes the top object of writeOMLFile(); nothing here.
  virtual void vWriteObject(NQObject* top);

  // Called after vIncludeFile() allowed a name, for what is to be read in place of the
  // file of that name: out of an archive, say, or what an editor has not saved yet. The
  // reader destroys it. Null, the default, has the file read.
  virtual std::unique_ptr<NQByteSource> vIncludedSource(const char* name);

  int isFatalError() const;
  void setFatalError();
  void clearFatalError();

  // Report a message of the message table (message_table.h), whose placeholders the
  // arguments that are not null replace in their order; fatal, not 0, ends the read.
  // The place is where reading stands; where a token stood, in the file of that index
  // (none for a null token); or the one given, with line -1 for none. The form with a
  // format takes that instead of the table's text.
  void internalErrorMessage(int code, const char* a1, const char* a2, const char* a3,
                            int fatal);
  void internalErrorMessage(nqLong fileNameIndex, const NQOMLToken* token, int code,
                            const char* a1, const char* a2, const char* a3, int fatal);
  void internalErrorMessage(const char* file, nqLong line, int column, int code,
                            const char* a1, const char* a2, const char* a3, int fatal);
  void internalErrorMessage(const char* file, nqLong line, int column, int code,
                            const char* format, const char* a1, const char* a2,
                            const char* a3, int fatal);
  void internalWarningMessage(const char* file, nqLong line, int column, int code);
  void internalWarningMessage(const char* file, nqLong line, int column, int code,
                              const char* text);
  // What the read answers when anything was reported; each error sets it to
  // NQ_FILE_READ_ERROR.
  NQFileCodeEnum errorCode(NQFileCodeEnum code);

 private:
  friend class ::NQTestPeer;
  friend struct nqdetail::FileState;
  friend struct nqdetail::WriteState;
  friend const nqdetail::ReadTables* nqdetail::readTables(const NQOMLFile* file);
  friend void nqdetail::announceSyntaxObject(NQOMLFile* file, NQOMLSyntaxObject* node,
                                             nqLong line, int position);

  void copyFields(const NQOMLFile& source);
  NQFileCodeEnum append(bool allowed, std::string_view bytes);
  NQFileCodeEnum writeTop(NQObject* top, bool binary);
  // The grammar's definition of a node's type, or null.
  const NQOMLDefObjType* definitionOf(const NQOMLSyntaxObject* syntax) const;
  NQFileCodeEnum readFrom(const char* name, NQByteSource* source, NQOMLStatic* grammar,
                          NQObject* top, nqLong topTypeIndex, int binary,
                          int useIndexHashTable);
  NQFileCodeEnum writeTo(const char* fileName, NQByteSink* sink, NQOMLStatic* grammar,
                         NQObject* top, int binary, int useIndexHashTable);
  void parse(const char* name, NQByteSource* source, bool binary);
  void checkSemantics();

  std::unique_ptr<nqdetail::FileState> state_;  // never null
};

#endif  // NQ_OML_OML_FILE_H
