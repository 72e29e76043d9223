#include "nq/file/file.h"

#include <algorithm>
#include <cstring>
#include <initializer_list>
#include <string>

#include "nq/file/replacement_internal.h"
#include "nq/file/system_calls.h"
#include "nq/file/transfer_internal.h"
#include "nq/platform/system_internal.h"

using nqdetail::noHandle;
using nqdetail::system;

namespace {

static_assert(nqdetail::ReadAhead::kMaxLent == NQFile::kBufferSize);

constexpr const char* kEndMarker = "__NQ_END_OF_FILE__";
constexpr const char* kEndMarkerLineEnd = "\n\r";  // as the unbuffered reader has it
constexpr const char* kSeparators = "/\\:";
constexpr int kLastUniqueNumber = 999;

constexpr bool isOneOf(NQFileModeEnum mode, std::initializer_list<NQFileModeEnum> modes) {
  return std::find(modes.begin(), modes.end(), mode) != modes.end();
}

constexpr bool isBuffered(NQFileModeEnum mode) {
  return isOneOf(mode, {NQ_READ, NQ_READ_BINARY, NQ_READ_ASCII});
}

constexpr bool isEmptying(NQFileModeEnum mode) {
  return isOneOf(mode, {NQ_WRITE, NQ_WRITE_BINARY, NQ_WRITE_ASCII});
}

constexpr bool isReading(NQFileModeEnum mode) {
  return isBuffered(mode) || mode == NQ_READ_WRITE;
}

bool fits(const char* name) {
  return std::memchr(name, '\0', NQFile::kNameSize) != nullptr;
}

void* openHandle(const char* name, NQFileModeEnum mode, bool shared,
                 NQByteOrderEnum* byteOrder) {
  using nqdetail::Access;
  using nqdetail::Creation;
  switch (mode) {
    case NQ_READ:
    case NQ_READ_BINARY:
    case NQ_READ_ASCII:
      return system().open(name, shared ? Access::kSharedRead : Access::kRead,
                           Creation::kExisting);
    case NQ_WRITE:
    case NQ_WRITE_BINARY:
    case NQ_WRITE_ASCII:
      return system().open(name, Access::kWrite, Creation::kTruncate);
    case NQ_READ_WRITE:
      return system().open(name, Access::kReadWrite, Creation::kIfMissing);
    case NQ_APPEND:
      return nqInternalOpenAppend(name, byteOrder);
  }
  return noHandle();
}

}  // namespace

NQ_COPY_PROTOCOL_IMPL(NQFile)

// A file that is in use is never shared: the copy of one is idle.
void NQFile::NQFiledeepCopy(const NQFile& source) {
  NQCopyAccess::deep<NQObject>(*this, source);
  makeIdle();
  sharedReading_ = source.sharedReading_;
  safeWriting_ = source.safeWriting_;
  if (source.isOpen() || source.hasHandle() || source.fileHandle_ != noHandle()) return;
  mode_ = source.mode_;
  bits_ = source.bits_;
  fileHandle_ = source.fileHandle_;
  pArchive_ = source.pArchive_;
  byteOrder_ = source.byteOrder_;
}

void NQFile::NQFileattributeCopy(const NQFile& source) {
  NQCopyAccess::attributes<NQObject>(*this, source);
  makeIdle();
  sharedReading_ = source.sharedReading_;
  safeWriting_ = source.safeWriting_;
}

NQFile::NQFile() {
  init();
}

NQFile::~NQFile() {
  makeIdle();
}

void NQFile::init() {
  mode_ = NQ_READ;
  bits_ = 0;
  fileHandle_ = noHandle();
  pArchive_ = nullptr;
  source_ = nullptr;
  sink_ = nullptr;
  lostOutput_ = false;
  pFileBuffer_.reset();
  discardBufferedBytes();
  byteOrder_ = NQ_DEFAULT_BYTE_ORDER;
  pFileName_.reset();
  pPathName_.reset();
  output_.reset();
  input_.reset();
  replacement_.reset();
}

void* NQFile::fileHandle() const {
  if (fileHandle_ == noHandle()) return fileHandle_;
  if (output_ != nullptr) output_->share(channel());
  if (input_ != nullptr) input_->share(channel());
  return fileHandle_;
}

const char* NQFile::pFileName() {
  if (pFileName_ == nullptr) pFileName_.reset(new char[kNameSize]{});
  return pFileName_.get();
}

const char* NQFile::pPathName() {
  if (pPathName_ == nullptr) pPathName_.reset(new char[kNameSize]{});
  return pPathName_.get();
}

int NQFile::fileExist(const char* name) {
  if (name == nullptr || !fits(name)) return 0;
  return system().exists(name) ? 1 : 0;
}

int NQFile::renameUnique(char* name) {
  if (name == nullptr || !fits(name)) return 0;
  const std::string_view whole = name;
  const std::size_t dot = std::min(whole.rfind('.'), whole.size());
  const std::string base(whole.substr(0, dot));
  const std::string extension(whole.substr(std::min(dot + 1, whole.size())));
  for (int number = 1;; ++number) {
    std::string candidate = base + std::to_string(number);
    candidate.append(".").append(extension);
    if (!fits(candidate.c_str())) return 0;
    const bool last = number == kLastUniqueNumber;
    if (!last && fileExist(candidate.c_str())) continue;
    std::memcpy(name, candidate.c_str(), candidate.size() + 1);
    return last ? 0 : 1;
  }
}

int NQFile::searchForToken(const char* text, const char* set, int direction) {
  if (text == nullptr || set == nullptr) return -1;
  const std::string_view whole = text;
  std::size_t found = std::string_view::npos;
  if (direction == '+') found = whole.find_first_of(set);
  if (direction == '-') found = whole.find_last_of(set);
  return found == std::string_view::npos ? -1 : static_cast<int>(found);
}

void NQFile::separatePathFromFile(const char* full, char* file, char* path) {
  if (full == nullptr || file == nullptr || path == nullptr) return;
  const auto length =
      static_cast<std::size_t>(searchForToken(full, kSeparators, '-')) + 1;
  std::strcpy(file, full + length);
  if (length == 0) return;
  std::memcpy(path, full, length);
  path[length] = '\0';
}

NQFileCodeEnum NQFile::open(const char* name, NQFileModeEnum newMode) {
  char ownName[kNameSize] = "";  // `name` may go with the buffers
  const bool nameFits = name != nullptr && fits(name);
  if (nameFits) std::strcpy(ownName, name);
  if (const NQFileCodeEnum emptied = empty(); emptied != NQ_FILE_OK) return emptied;
  error(1);
  if (name == nullptr) return NQ_FILE_OPEN_ERROR;

  NQByteOrderEnum order = NQ_DEFAULT_BYTE_ORDER;
  if (!nameFits) {
    fileHandle_ = noHandle();
  } else if (safeWriting_ != 0 && isEmptying(newMode)) {
    replacement_ = nqdetail::Replacement::begin(ownName);
    fileHandle_ = replacement_ == nullptr ? noHandle() : replacement_->handle();
  } else {
    fileHandle_ = openHandle(ownName, newMode, sharedReading_ != 0, &order);
  }
  byteOrder_ = order;
  mode_ = newMode;
  buffered(isBuffered(newMode));
  if (fileHandle_ == noHandle()) return NQ_FILE_OPEN_ERROR;

  isOpen(1);
  pFileName(ownName);
  if (buffered()) {
    makeBuffer();
  } else {
    output_ = std::make_unique<nqdetail::WriteBehind>();
  }
  // What is fetched ahead may have to be given back.
  if (isReading(newMode) && system().seekBy(fileHandle_, 0)) {
    input_ = std::make_unique<nqdetail::ReadAhead>();
  }
  return conclude(NQ_FILE_OK);
}

NQFileCodeEnum NQFile::close() {
  error(1);
  if (!isOpen()) return NQ_FILE_CLOSE_ERROR;
  const bool flushed = flush() == NQ_FILE_OK;
  const bool sent = sendOutput();  // also where an override does not flush
  const bool whole = flushed && sent && !lostOutput_;
  if (replacement_ != nullptr && !whole) replacement_->abandon();
  const bool closed =
      replacement_ == nullptr ? system().close(fileHandle_) : replacement_->commit();
  replacement_.reset();
  output_.reset();
  input_.reset();
  fileHandle_ = noHandle();
  isOpen(0);
  discardBufferedBytes();
  pFileName(nullptr);
  return conclude(whole && closed ? NQ_FILE_OK : NQ_FILE_CLOSE_ERROR);
}

NQFileCodeEnum NQFile::attach(NQArchiveClass* archive) {
  if (const NQFileCodeEnum emptied = empty(); emptied != NQ_FILE_OK) return emptied;
  isAttached(1);
  pArchive_ = archive;
  mode_ = NQ_WRITE;
  return conclude(NQ_FILE_OK);
}

NQFileCodeEnum NQFile::attach(void* handle, NQFileModeEnum newMode) {
  return attachChannel({.handle = handle}, newMode);
}

NQFileCodeEnum NQFile::attachSource(NQByteSource& source, NQFileModeEnum newMode) {
  if (!isBuffered(newMode)) return conclude(NQ_FILE_OPEN_ERROR);
  const NQFileCodeEnum result = attachChannel({.source = &source}, newMode);
  if (result == NQ_FILE_OK) input_ = std::make_unique<nqdetail::ReadAhead>();
  return result;
}

NQFileCodeEnum NQFile::attachSink(NQByteSink& sink, NQFileModeEnum newMode) {
  if (!isEmptying(newMode) && newMode != NQ_APPEND) return conclude(NQ_FILE_OPEN_ERROR);
  return attachChannel({.sink = &sink}, newMode);
}

NQFileCodeEnum NQFile::detach(int mark) {
  if (!isAttached()) return conclude(NQ_FILE_CLOSE_ERROR);
  if (mark != 0 && isOneOf(mode_, {NQ_WRITE, NQ_WRITE_ASCII})) writeEndOfFile();
  const bool whole = flush() == NQ_FILE_OK && !lostOutput_;
  isAttached(0);
  pArchive_ = nullptr;
  source_ = nullptr;
  sink_ = nullptr;
  fileHandle_ = noHandle();
  discardBufferedBytes();
  input_.reset();
  return conclude(whole ? NQ_FILE_OK : NQ_FILE_CLOSE_ERROR);
}

NQFileCodeEnum NQFile::flush() {
  if (sendOutput() && channel().flush()) return NQ_FILE_OK;
  error(1);
  return NQ_FILE_WRITE_ERROR;
}

void NQFile::abandon() {
  if (replacement_ != nullptr) replacement_->abandon();
}

NQFileCodeEnum NQFile::writeEndOfFile() {
  if (!isOneOf(mode_, {NQ_WRITE, NQ_WRITE_ASCII}) || !isAttached() ||
      pArchive_ == nullptr) {
    return NQ_FILE_OK;
  }
  NQFileCodeEnum result = writeString(kEndMarker);
  if (result == NQ_FILE_OK) result = writeString(kEndMarkerLineEnd);
  if (result != NQ_FILE_OK) error(1);
  return result;
}

NQFileCodeEnum NQFile::writeString(const char* text) {
  return writeNormalString(text);
}

NQFileCodeEnum NQFile::writeBinary(const char* data, int count) {
  const bool allowed = data != nullptr && count >= 0 && mode_ == NQ_WRITE_BINARY;
  const bool written =
      allowed && hasHandle() && writeBytes(data, static_cast<std::size_t>(count));
  return conclude(written ? NQ_FILE_OK : NQ_FILE_WRITE_ERROR);
}

NQFileCodeEnum NQFile::readString(NQStringHandle& out) {
  return readNormalString(out);
}

NQFileCodeEnum NQFile::readBinary(char* data, int& count) {
  if (data == nullptr || count <= 0 || endOfFile() || mode_ != NQ_READ_BINARY) {
    return conclude(NQ_FILE_READ_ERROR);
  }
  const int wanted = count;
  const NQFileCodeEnum result =
      buffered() ? readBufferedBytes(data, count) : unbufferedReadBinary(data, count);
  if (result == NQ_FILE_OK && count < wanted) endOfFile(1);
  return conclude(result);
}

// The figure that holds on every platform.
nqLong NQFile::sizeOf() const {
  std::size_t size = 72;
  if (pFileBuffer_ != nullptr) size += kBufferSize;
  if (pFileName_ != nullptr) size += std::strlen(pFileName_.get());
  if (pPathName_ != nullptr) size += std::strlen(pPathName_.get());
  return static_cast<nqLong>(size);
}

NQFileCodeEnum NQFile::empty() {
  NQFileCodeEnum result = NQ_FILE_OK;
  if (isAttached()) {
    result = detach(1);
  } else if (isOpen()) {
    result = close();
  }
  letGoOfHandle();
  lostOutput_ = false;
  pFileBuffer_.reset();
  discardBufferedBytes();
  pFileName_.reset();
  pPathName_.reset();
  buffered(0);
  endOfFile(0);
  storedOnDisk(0);
  return result;
}

// Where nobody can be answered.
void NQFile::makeIdle() {
  abandon();
  (void)empty();
}

void* NQFile::fileHandle(void* handle) {
  letGoOfHandle();
  replacement_.reset();
  return fileHandle_ = handle;
}

char* NQFile::pFileBuffer(char* buffer) {
  fillBuffer();
  pFileBuffer_.reset(buffer);
  return buffer;
}

char* NQFile::pTopBuffer(char* top) {
  fillBuffer();
  return pTopBuffer_ = top;
}

int NQFile::numberOfBufferedBytes(int number) {
  fillBuffer();
  return numberOfBufferedBytes_ = number;
}

const char* NQFile::pFileName(const char* name) {
  if (name == nullptr) name = "";
  (void)pFileName();
  if (!fits(name)) return pFileName_.get();
  std::memmove(pFileName_.get(), name, std::strlen(name) + 1);
  pPathName("");
  char file[kNameSize];
  separatePathFromFile(pFileName_.get(), file, pPathName_.get());
  return pFileName_.get();
}

const char* NQFile::pPathName(const char* path) {
  if (path == nullptr) path = "";
  (void)pPathName();
  if (fits(path)) std::memmove(pPathName_.get(), path, std::strlen(path) + 1);
  return pPathName_.get();
}

char* NQFile::pFileBuffer() const {
  fillBuffer();
  return pFileBuffer_.get();
}

char* NQFile::pTopBuffer() const {
  fillBuffer();
  return pTopBuffer_;
}

int NQFile::flag(Flag mask, int on) {
  bits_ = static_cast<unsigned short>(on != 0 ? bits_ | mask : bits_ & ~mask);
  return on;
}

// The flag that goes with the result of an operation.
NQFileCodeEnum NQFile::conclude(NQFileCodeEnum result) {
  error(result != NQ_FILE_OK);
  return result;
}

// What was gathered for a handle, or fetched from it, is that handle's alone.
void NQFile::letGoOfHandle() {
  fillBuffer();
  if (output_ != nullptr && !output_->send(channel())) error(1);
  if (input_ != nullptr && !input_->giveBack(channel())) error(1);
  output_.reset();
  input_.reset();
}

bool NQFile::hasHandle() const {
  return (fileHandle_ != noHandle() || source_ != nullptr || sink_ != nullptr) &&
         (isOpen() || isAttached());
}

nqdetail::Channel NQFile::channel() const {
  return {fileHandle_, source_, sink_};
}

NQFileCodeEnum NQFile::attachChannel(const nqdetail::Channel& channel,
                                     NQFileModeEnum newMode) {
  if (const NQFileCodeEnum emptied = empty(); emptied != NQ_FILE_OK) return emptied;
  isAttached(1);
  fileHandle_ = channel.handle;
  source_ = channel.source;
  sink_ = channel.sink;
  mode_ = newMode;
  buffered(isBuffered(newMode));
  if (buffered()) makeBuffer();
  return conclude(NQ_FILE_OK);
}

void NQFile::makeBuffer() {
  pFileBuffer_.reset(new char[kBufferSize]);
  std::memset(pFileBuffer_.get(), 0, 4);
  discardBufferedBytes();
}

// Puts what is lent into the buffer, for those who look at it.
void NQFile::fillBuffer() const {
  if (pLent_ == nullptr) return;
  const std::ptrdiff_t taken = pTopBuffer_ - pLent_;
  std::memcpy(pFileBuffer_.get(), pLent_,
              static_cast<std::size_t>(taken + numberOfBufferedBytes_));
  pTopBuffer_ = pFileBuffer_.get() + taken;
  pLent_ = nullptr;
}

void NQFile::discardBufferedBytes() {
  pLent_ = nullptr;
  pTopBuffer_ = pFileBuffer_.get();
  numberOfBufferedBytes_ = 0;
}

// Adds to the unread bytes, by more than one transfer when that is what it
// takes to look ahead. False, with the error flag set, when the system failed.
bool NQFile::refill() {
  int added = 0;
  do {
    if (!addToBuffer(&added)) return false;
  } while (added > 0 && numberOfBufferedBytes_ <= kLookAhead);
  return true;
}

// One transfer. What was fetched ahead is read where it stands, as if it were in the
// buffer.
bool NQFile::addToBuffer(int* added) {
  int& unread = numberOfBufferedBytes_;
  *added = kBufferSize - unread;
  if (input_ == nullptr || input_->isShared() || !mayRead()) {
    fillBuffer();
    std::memmove(pFileBuffer_.get(), pTopBuffer_, static_cast<std::size_t>(unread));
    pTopBuffer_ = pFileBuffer_.get();
    if (unbufferedReadBinary(pTopBuffer_ + unread, *added) != NQ_FILE_OK) return false;
  } else {
    std::size_t read;
    const bool succeeded =
        input_->lend(channel(), pTopBuffer_, static_cast<std::size_t>(unread),
                     static_cast<std::size_t>(*added), &read);
    pLent_ = pTopBuffer_;
    *added = static_cast<int>(read);
    if (!succeeded) {
      error(1);
      return false;
    }
  }
  unread += *added;
  return true;
}

bool NQFile::refillIfDue() {
  return hasRun() || endOfFile() || !hasHandle() || pFileBuffer_ == nullptr || refill();
}

char NQFile::nextCharAfterRefill() {
  if (!buffered()) {
    error(1);
    return '\0';
  }
  const bool refilled = refillIfDue();
  if (numberOfBufferedBytes_ < 1) {
    if (refilled) endOfFile(1);
    return '\0';
  }
  --numberOfBufferedBytes_;
  return *pTopBuffer_++;
}

// Of the "\n" that a buffered line ends with, `endLength` characters are kept.
NQFileCodeEnum NQFile::readNormalString(NQStringHandle& out, std::size_t endLength) {
  out.empty();
  if (endOfFile() || !isOneOf(mode_, {NQ_READ, NQ_READ_WRITE, NQ_READ_ASCII})) {
    return conclude(NQ_FILE_READ_ERROR);
  }
  if (buffered()) return readBufferedLine(out, endLength);
  if (isAttached() && pArchive_ != nullptr) return conclude(NQ_FILE_OK);  // always ""
  return readUnbufferedLine(out);
}

NQFileCodeEnum NQFile::readAsciiString(NQStringHandle& out) {
  out.empty();
  if (endOfFile() || mode_ != NQ_READ_ASCII) return conclude(NQ_FILE_READ_ERROR);
  if (isAttached() && pArchive_ != nullptr) return conclude(NQ_FILE_OK);
  return readUnbufferedLine(out);
}

// Nearly every line stands whole in what is lent, before the next refill.
NQFileCodeEnum NQFile::readBufferedLine(NQStringHandle& out, std::size_t endLength) {
  const int untilRefill = numberOfBufferedBytes_ - kEarlyRefill;
  if (pLent_ == nullptr || untilRefill <= 0) return readDividedLine(out, endLength);
  const char* const first = pTopBuffer_;
  const char* const last = first + untilRefill;
  const char* const stop = input_->findStop(first, last);
  if (stop + 1 >= last || *stop == '\0') return readDividedLine(out, endLength);
  const auto length = static_cast<std::size_t>(stop - first);
  takeBuffered(length + 1);
  bool stored;
  if (*stop == '\n') {
    if (stop[1] == '\r') takeBuffered(1);
    stored = out.appendText({first, length + endLength}) != 0;
  } else {
    if (stop[1] == '\n') takeBuffered(1);
    stored = out.appendText({first, length}) != 0 &&
             out.appendText(std::string_view("\n", endLength)) != 0;
  }
  return conclude(stored ? NQ_FILE_OK : NQ_FILE_READ_ERROR);
}

// Any other line: piece by piece, from refill to refill.
NQFileCodeEnum NQFile::readDividedLine(NQStringHandle& out, std::size_t endLength) {
  error(0);
  bool any = false;
  for (;;) {
    const std::string_view run = bufferedRun();
    const char* const end = run.data() + run.size();
    const auto length = static_cast<std::size_t>(
        nqdetail::StopSearch().find(run.data(), end, end) - run.data());
    bool stored = out.appendText(run.substr(0, length)) != 0;
    takeBuffered(length);
    const char stop = nextBufferedChar();
    any = any || length > 0 || stop != '\0';
    if (stop == '\n' || stop == '\r') {
      const char partner = stop == '\n' ? '\r' : '\n';
      if (lookAheadBufferedChar() == partner) (void)nextBufferedChar();
      stored = stored && out.appendText(std::string_view("\n", endLength)) != 0;
    } else if (stop == '\0') {
      if (!error()) endOfFile(1);  // a zero byte is an end; a failing system is none
    } else {
      stored = stored && out.appendChar(stop) != 0;
    }
    if (!stored) return conclude(NQ_FILE_READ_ERROR);
    if (nqdetail::isStop(stop)) break;
  }
  return conclude(any && !error() ? NQ_FILE_OK : NQ_FILE_READ_ERROR);
}

NQFileCodeEnum NQFile::readUnbufferedLine(NQStringHandle& out) {
  if (!hasHandle() || !sendOutput()) return conclude(NQ_FILE_READ_ERROR);
  fillBuffer();
  int end = 0;
  if (nqdetail::readTerminatedLine(channel(), input_.get(), out, nullptr, &end) == 0) {
    return conclude(NQ_FILE_READ_ERROR);
  }
  if (end != 0) {
    out.empty();
    endOfFile(1);
  }
  return conclude(NQ_FILE_OK);
}

NQFileCodeEnum NQFile::readBufferedBytes(char* data, int& count) {
  const int wanted = count;
  bool failed = false;
  for (count = 0; count < wanted && !failed;) {
    int length = static_cast<int>(bufferedRun().size());
    if (length == 0) {
      failed = !refillIfDue();
      // After a failure what the buffer holds is all that there is.
      length = failed ? numberOfBufferedBytes_ : std::min(numberOfBufferedBytes_, 1);
      if (length < 1) break;
    }
    length = std::min(length, wanted - count);
    std::memcpy(data + count, pTopBuffer_, static_cast<std::size_t>(length));
    takeBuffered(static_cast<std::size_t>(length));
    count += length;
  }
  return failed ? NQ_FILE_READ_ERROR : NQ_FILE_OK;
}

NQFileCodeEnum NQFile::unbufferedReadBinary(char* data, int& count) {
  std::size_t read = 0;
  bool succeeded = data != nullptr && count >= 0 && mayRead();
  if (succeeded) {
    fillBuffer();  // what is lent is good until the next read
    const auto wanted = static_cast<std::size_t>(count);
    succeeded = input_ != nullptr ? input_->read(channel(), data, wanted, &read)
                                  : channel().read(data, wanted, &read);
    count = static_cast<int>(read);
  }
  if (!succeeded) error(1);
  return succeeded ? NQ_FILE_OK : NQ_FILE_READ_ERROR;
}

bool NQFile::mayRead() const {
  return !endOfFile() && isReading(mode_) && hasHandle() && sendOutput();
}

NQFileCodeEnum NQFile::writeNormalString(const char* text) {
  if (!isOneOf(mode_, {NQ_WRITE, NQ_READ_WRITE, NQ_APPEND, NQ_WRITE_ASCII})) {
    return conclude(NQ_FILE_WRITE_ERROR);
  }
  return writeText(text);
}

NQFileCodeEnum NQFile::writeAsciiString(const char* text) {
  if (mode_ != NQ_WRITE_ASCII) return conclude(NQ_FILE_WRITE_ERROR);
  return writeText(text);
}

NQFileCodeEnum NQFile::writeText(const char* text) {
  if (text == nullptr) return conclude(NQ_FILE_WRITE_ERROR);
  if (isAttached() && pArchive_ != nullptr) return conclude(NQ_FILE_OK);
  const bool written = hasHandle() && writeBytes(text, std::strlen(text));
  return conclude(written ? NQ_FILE_OK : NQ_FILE_WRITE_ERROR);
}

bool NQFile::writeBytes(const char* data, std::size_t count) {
  std::size_t written;
  const bool taken = (input_ == nullptr || input_->giveBack(channel())) &&
                     (output_ != nullptr ? output_->write(channel(), data, count)
                                         : channel().write(data, count, &written));
  lostOutput_ = lostOutput_ || !taken;
  return taken;
}

bool NQFile::sendOutput() const {
  return output_ == nullptr || output_->send(channel());
}
