// file.h -- a file opened by name, or bytes from and to somewhere else.
//
// NQFile moves lines and bytes, and adds nothing: what is written is what
// stands in the file. The mode that a file is opened with decides what can be
// done with it (file_codes.h). Until it is closed, a file opened by name is shut to
// every other open through this library (on Windows, to every other program), unless all
// of them read it with sharedReading. What is attached, a handle, a source or a sink
// (byte_stream.h), belongs to somebody else and is never closed here.
//
// Every operation answers with an NQFileCodeEnum. Two flags outlive the call:
// error() tells whether the last operation failed, endOfFile() that a read ran
// out of data; the latter stays until the next open, attach or empty.
//
// Output to a file opened by name is gathered and sent on, in order, by flush,
// close, a read and destruction. When the system ever refuses any of it, close
// answers NQ_FILE_CLOSE_ERROR, and so does an open, attach or empty that closes the
// file: the results of single writes may be passed over, that of the close may not.
// Destruction and assignment cannot answer. Call flush before a fork: both processes
// would send on what is gathered. Input of a file opened by name is fetched ahead. What
// is attached is written through at once; in a buffered mode it is read ahead, and what
// is still unread then is lost to its owner at detach.
//
// How it works
//   The reading modes except NQ_READ_WRITE are buffered. The unread bytes are
//   numberOfBufferedBytes() from pTopBuffer() on. Before a byte is taken the
//   buffer is refilled when it holds at most 3 unread bytes, so that a line end
//   of two bytes is always seen whole, or exactly 256. A subclass may take the
//   bytes that bufferedRun() shows without asking for each.

#ifndef NQ_FILE_FILE_H
#define NQ_FILE_FILE_H

#include <memory>
#include <string_view>

#include "nq/core/copy_protocol.h"
#include "nq/core/string_handle.h"
#include "nq/file/file_codes.h"

class NQArchiveClass;  // a stream object of the application
class NQByteSink;
class NQByteSource;
class NQTestPeer;

namespace nqdetail {
struct Channel;
class ReadAhead;
class Replacement;
class WriteBehind;
}  // namespace nqdetail

class NQ_EXPORT NQFile : public NQObject {
  NQ_COPY_PROTOCOL(NQFile)

 public:
  static constexpr int kNameSize = 260;      // of a name's buffer, with terminator
  static constexpr int kBufferSize = 10240;  // of the read buffer

  NQFile();
  ~NQFile() override;

  NQFileModeEnum mode() const { return mode_; }
  NQByteOrderEnum byteOrder() const { return byteOrder_; }
  unsigned short bits() const { return bits_; }
  int isAttached() const { return flag(kIsAttached); }
  int isOpen() const { return flag(kIsOpen); }
  int buffered() const { return flag(kBuffered); }
  int error() const { return flag(kError); }
  int endOfFile() const { return flag(kEndOfFile); }
  // Whether the following opens let others read the file at the same time, if they say
  // so too; writers are kept out in any case. For the modes that only read, and for
  // what readers of formats built on this class open; 0 at first. Copies take it along.
  int sharedReading() const { return sharedReading_; }
  int sharedReading(int shared) { return sharedReading_ = shared; }

  // Whether the following opens for writing keep the old file, if there is one, until
  // the new one is whole and on disk: what is written goes to a file in the same folder,
  // which close() puts in the place of the old one in one step. Until then, and whenever
  // close() does not answer NQ_FILE_OK, the old file is as it was. For the modes that
  // empty a file; the others change it where it is. 0 at first. Copies take it along.
  //   A link stays one, and the file that it leads to is replaced. The new file has the
  //   old one's permissions, and owner and group where the system lets us; what the group
  //   was allowed is dropped with it. Other hard links keep the old contents. A device is
  //   written itself. Destruction and assignment abandon() a file that was not closed.
  int safeWriting() const { return safeWriting_; }
  int safeWriting(int safe) { return safeWriting_ = safe; }

  // Set by a writer when the file is complete.
  int storedOnDisk() const { return flag(kStoredOnDisk); }

  // The system's handle, all bits set when there is none. It is first put where
  // it would be if nothing were gathered or fetched ahead (close tells when
  // output could not be sent on), and from then on nothing is.
  void* fileHandle() const;
  NQArchiveClass* pArchive() const { return pArchive_; }

  // The name given to open, and its directory part with the separator at its
  // end; "" when there is none. The buffers stay until the next open, attach or
  // empty, the names until close. The query forms make no buffer, and answer null as long
  // as there is none.
  const char* pFileName();
  const char* pPathName();
  const char* pQueryFileName() const { return pFileName_.get(); }
  const char* pQueryPathName() const { return pPathName_.get(); }

  // Whether there is a file of that name, be it open or without permission to read;
  // 0 for directories and null. Asking disturbs nobody who has it open.
  static int fileExist(const char* name);
  // Changes `name`, a buffer of 260 bytes, to the first of base1.ext, base2.ext,
  // ... that is not the name of an existing file, and returns 1. It renames
  // nothing. The name is split at its last "."; one without ends in "." then.
  // After 998 names that are taken it returns 0 and leaves the untried one with
  // 999. Null and names that would not fit are refused: 0, unchanged.
  static int renameUnique(char* name);
  // The index of the first ('+') or last ('-') character of `text` that occurs
  // in `set`; -1 when there is none, for null, and for any other direction.
  static int searchForToken(const char* text, const char* set, int direction);
  // Splits a name behind its last slash, backslash or colon. Without one, `file`
  // receives the name and `path` stays as it was. The outputs are as large as
  // the name and do not overlap it; nothing is done when one is null.
  static void separatePathFromFile(const char* full, char* file, char* path);

  // Opens a file by name, after empty(); when that fails, its result is the answer and
  // nothing is opened. NQ_FILE_OPEN_ERROR for null, for a name of 260 bytes or more, for
  // directories and FIFOs, for a file that is open already through this library, and
  // for an unknown mode; the file is idle then, and mode() and buffered() tell of the
  // mode that was asked for. `name` may be this file's own pFileName().
  [[nodiscard]] virtual NQFileCodeEnum open(const char* name, NQFileModeEnum mode);
  // Failed or not, the file is idle afterwards and its names are "".
  // NQ_FILE_CLOSE_ERROR when it was not open, when gathered output could not be
  // written, or when the system reports a failure.
  [[nodiscard]] virtual NQFileCodeEnum close();
  // Both borrow their argument until detach, after empty(); when that fails, its result
  // is the answer and nothing is attached. An archive takes output (the mode is
  // NQ_WRITE) and drops it.
  virtual NQFileCodeEnum attach(NQArchiveClass* archive);
  virtual NQFileCodeEnum attach(void* handle, NQFileModeEnum mode);
  // The same for reading from a source, in the buffered modes, and for writing to a
  // sink, in the other modes but NQ_READ_WRITE. NQ_FILE_OPEN_ERROR for any other mode.
  NQFileCodeEnum attachSource(NQByteSource& source, NQFileModeEnum mode);
  NQFileCodeEnum attachSink(NQByteSink& sink, NQFileModeEnum mode);
  // Lets go of what is attached, unclosed; NQ_FILE_CLOSE_ERROR when nothing is, or when
  // any of the output was lost.
  // With `mark` not 0, writeEndOfFile() comes first in the modes 1 and 7.
  virtual NQFileCodeEnum detach(int mark);
  // Sends on what was gathered. NQ_FILE_WRITE_ERROR when the system does not take it
  // all; the next flush, or close, tries again with the rest.
  virtual NQFileCodeEnum flush();
  // Gives up the file that is being written under safeWriting: the next close removes
  // it, leaves the old one as it was and answers NQ_FILE_CLOSE_ERROR. Changes nothing
  // otherwise.
  void abandon();
  // Writes the end marker "__NQ_END_OF_FILE__" to an archive in the modes 1 and
  // 7; succeeds without effect otherwise.
  virtual NQFileCodeEnum writeEndOfFile();

  // Writes the text without its terminator, or the bytes.
  virtual NQFileCodeEnum writeString(const char* text);
  virtual NQFileCodeEnum writeBinary(const char* data, int count);
  // Reads a line into `out`. In the buffered modes each of "\n", "\r", "\r\n"
  // and "\n\r" ends it and becomes one "\n"; the last line may lack it. In
  // NQ_READ_WRITE lines end as nqInternalRead has them, and one that the end of
  // the data cuts off is dropped. A zero byte counts as the end of the data. After
  // a read error `out` holds what had arrived, and reading may go on.
  virtual NQFileCodeEnum readString(NQStringHandle& out);
  // Reads up to `count` bytes; `count` tells how many came. Fewer than asked for
  // set endOfFile() and are no failure.
  virtual NQFileCodeEnum readBinary(char* data, int& count);

  virtual nqLong sizeOf() const;

  // Makes the file idle (detach(1) or close(), whose result it returns) and
  // frees the buffer and the names.
  [[nodiscard]] NQFileCodeEnum empty();

 protected:
  void init();

  // Each stores its argument and returns it.
  NQFileModeEnum mode(NQFileModeEnum newMode) { return mode_ = newMode; }
  NQByteOrderEnum byteOrder(NQByteOrderEnum order) { return byteOrder_ = order; }
  unsigned short bits(unsigned short newBits) { return bits_ = newBits; }
  int isAttached(int on) { return flag(kIsAttached, on); }
  int isOpen(int on) { return flag(kIsOpen, on); }
  int buffered(int on) { return flag(kBuffered, on); }
  int error(int on) { return flag(kError, on); }
  int endOfFile(int on) { return flag(kEndOfFile, on); }
  int storedOnDisk(int on) { return flag(kStoredOnDisk, on); }
  void* fileHandle(void* handle);
  NQArchiveClass* pArchive(NQArchiveClass* archive) { return pArchive_ = archive; }
  // Keeps the buffer (from new[], of kBufferSize bytes) and frees the old one. Unread
  // bytes do not move along: set the other two as well.
  char* pFileBuffer(char* buffer);
  char* pTopBuffer(char* top);
  int numberOfBufferedBytes(int number);

  // Store a name with its directory part, or a directory alone, and return the
  // buffer. Null stands for ""; what does not fit changes nothing.
  const char* pFileName(const char* name);
  const char* pPathName(const char* path);

  // Bytes that were fetched ahead are mostly read where they stand; whoever looks at
  // the buffer gets them there first, a copy at most once for each refill.
  char* pFileBuffer() const;
  char* pTopBuffer() const;
  int numberOfBufferedBytes() const { return numberOfBufferedBytes_; }

  // Take the next byte, in the buffered modes. 0 with endOfFile() set after the
  // last one; 0 with error() set when the system failed and no byte is left, and
  // in the other modes. Neither clears error(), so that it still tells of a
  // failure after any number of calls.
  char nextBufferedByte() { return nextBufferedChar(); }
  char nextBufferedChar() {
    if (!hasRun() || !buffered()) return nextCharAfterRefill();
    --numberOfBufferedBytes_;
    return *pTopBuffer_++;
  }
  // The byte that comes next, without taking it; 0 when none is in the buffer.
  char lookAheadBufferedChar() const {
    return buffered() && numberOfBufferedBytes_ > 0 ? *pTopBuffer_ : '\0';
  }

  // NQFile::readString, without the line end in the buffered modes.
  NQFileCodeEnum readBareString(NQStringHandle& out) { return readNormalString(out, 0); }

  // The bytes that can be taken before the next refill is due, and taking some
  // of them. Empty says nothing: nextBufferedChar() then refills and tells.
  std::string_view bufferedRun() const {
    if (!hasRun() || !buffered()) return {};
    const int kept = numberOfBufferedBytes_ > kEarlyRefill ? kEarlyRefill : kLookAhead;
    return {pTopBuffer_, static_cast<std::size_t>(numberOfBufferedBytes_ - kept)};
  }
  void takeBuffered(std::size_t count) {
    pTopBuffer_ += count;
    numberOfBufferedBytes_ -= static_cast<int>(count);
  }

 private:
  friend class ::NQTestPeer;

  enum Flag : unsigned short {
    kIsAttached = 0x0001,
    kIsOpen = 0x0002,
    kBuffered = 0x0004,
    kError = 0x0008,
    kEndOfFile = 0x0010,
    kStoredOnDisk = 0x0020,
  };
  static constexpr int kLookAhead = 3;      // refilled at this many bytes or fewer,
  static constexpr int kEarlyRefill = 256;  // and at exactly this many

  int flag(Flag mask) const { return (bits_ & mask) != 0; }
  int flag(Flag mask, int on);
  NQFileCodeEnum conclude(NQFileCodeEnum result);
  bool hasRun() const {
    return numberOfBufferedBytes_ > kLookAhead && numberOfBufferedBytes_ != kEarlyRefill;
  }
  void letGoOfHandle();
  void makeIdle();
  bool hasHandle() const;
  nqdetail::Channel channel() const;
  NQFileCodeEnum attachChannel(const nqdetail::Channel& channel, NQFileModeEnum newMode);

  void makeBuffer();
  void fillBuffer() const;
  void discardBufferedBytes();
  bool refillIfDue();
  bool refill();
  bool addToBuffer(int* added);
  char nextCharAfterRefill();

  NQFileCodeEnum readNormalString(NQStringHandle& out, std::size_t endLength = 1);
  NQFileCodeEnum readAsciiString(NQStringHandle& out);
  NQFileCodeEnum readBufferedLine(NQStringHandle& out, std::size_t endLength);
  NQFileCodeEnum readDividedLine(NQStringHandle& out, std::size_t endLength);
  NQFileCodeEnum readUnbufferedLine(NQStringHandle& out);
  NQFileCodeEnum readBufferedBytes(char* data, int& count);
  NQFileCodeEnum unbufferedReadBinary(char* data, int& count);
  bool mayRead() const;
  NQFileCodeEnum writeNormalString(const char* text);
  NQFileCodeEnum writeAsciiString(const char* text);
  NQFileCodeEnum writeText(const char* text);
  bool writeBytes(const char* data, std::size_t count);
  bool sendOutput() const;

  NQFileModeEnum mode_;
  unsigned short bits_;
  void* fileHandle_;
  NQByteSource* source_ = nullptr;  // these three are not owned
  NQByteSink* sink_ = nullptr;
  NQArchiveClass* pArchive_;
  std::unique_ptr<char[]> pFileBuffer_;  // null, or kBufferSize bytes
  mutable char* pTopBuffer_;             // the next unread byte
  mutable char* pLent_;                  // what the buffer would hold; null: it does
  int numberOfBufferedBytes_;            // unread ones
  NQByteOrderEnum byteOrder_;
  bool lostOutput_ = false;  // some of what was written since the open or attach
  int sharedReading_ = 0;
  int safeWriting_ = 0;
  std::unique_ptr<char[]> pFileName_;                   // null, or kNameSize bytes
  std::unique_ptr<char[]> pPathName_;                   // the same
  std::unique_ptr<nqdetail::WriteBehind> output_;       // while open by name to write,
  std::unique_ptr<nqdetail::ReadAhead> input_;          // or to read, and for a source
  std::unique_ptr<nqdetail::Replacement> replacement_;  // while open under safeWriting
};

#endif  // NQ_FILE_FILE_H
