// sources.h -- the files of one read, and where in them we are.
//
// Sources is a stack of open files; reading always goes on in the one on top.
// Each file has a window on its bytes that the lexer scans in place: at..end are
// the bytes not yet taken, and a zero byte stands behind them, so that a scan
// for a class of characters ends there by itself. more() moves the window on.
//
// Receives: names of files. Leaves, when a file cannot be opened, everything as
// it was. Files that are still open are closed with the object. What goes wrong
// later is only noted; whoever asks reports it.

#ifndef NQ_OML_READING_SOURCES_H
#define NQ_OML_READING_SOURCES_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "nq/file/transfer_internal.h"
#include "nq/oml/diagnostics/diagnostics.h"
#include "nq/platform/system_internal.h"
#include "nq/platform/types.h"

namespace nqdetail {

// What the owner of the files has to say about them.
struct SourceOwner {
  // The index under which a file's name is known from now on.
  virtual nqLong fileNameIndex(const char* name) = 0;
  // Whether a file that another one includes may be opened.
  virtual bool mayInclude(const char* name) = 0;
  // What is to be read in place of an included file of that name; null for the file.
  virtual std::unique_ptr<NQByteSource> includedSource(const char* name) = 0;
  // A file of so many bytes is opened; -1 for one that cannot tell.
  virtual void bytesExpected(std::int64_t size) = 0;
  // So many bytes have arrived; false ends the data as a failing read does.
  virtual bool bytesArrived(std::size_t count) = 0;

 protected:
  ~SourceOwner() = default;
};

// One open file and the window on it.
class Source {
 public:
  static constexpr std::size_t kFirstWindow = std::size_t{64} * 1024;

  // Opens the file of that name, for start() to make ready. In a text a zero byte ends
  // the data.
  Source(SourceOwner& owner, const std::string& name, Access access, bool text);
  // The same with a source, which is borrowed where `owned` is null.
  Source(SourceOwner& owner, NQByteSource& source, std::unique_ptr<NQByteSource> owned,
         const std::string& name, bool text);
  Source(const Source&) = delete;
  Source& operator=(const Source&) = delete;
  ~Source();

  bool isOpen() const { return channel_.handle != noHandle(); }
  bool isSameAs(const Source& other) const {
    return system().isSameFile(channel_.handle, other.channel_.handle);
  }
  // -1 for a file that cannot tell.
  std::int64_t size() const { return channel_.size(); }
  // Brings the file into the table of names, and an empty window on it.
  void start();

  const char* at = nullptr;   // the next byte; the lexer moves it on
  const char* end = nullptr;  // behind the last byte of the window; *end is 0

  const std::string& name() const { return name_; }
  nqLong fileIndex() const { return fileIndex_; }
  nqLong line() const { return line_; }
  // The column of a place within the window, or where `at` stands.
  nqLong column(const char* place) const;
  nqLong column() const { return column(at); }
  // Bytes taken so far.
  std::int64_t offset(const char* place) const {
    return base_ + (place - window_.data());
  }

  // Brings more bytes into the window, behind `end`. Those from `keep` (at most
  // `at`) on stay there; `at`, `end` and `keep` follow them to where they are
  // now. False at the end of the data.
  bool more(const char*& keep);
  bool more() {
    const char* keep = at;
    return more(keep);
  }
  // Whether a byte is there to be taken.
  bool hasByte() { return at != end || more(); }

  // Takes the line end that begins at `at`: a line feed, a carriage return, or
  // both in either order.
  void takeLineEnd();
  // The same for a scan that keeps the bytes from `keep` on.
  void takeLineEnd(const char*& keep);

  // The text went on behind a zero byte, which stood at the end of the window.
  bool cutByZero() const { return cutByZero_; }
  // All bytes are taken, and a read failed: that is not the end of the data.
  bool failed() const { return failed_ && at == end; }
  // Closes the file; false when that fails.
  bool close();

 private:
  void makeRoom(const char* keep);
  bool read(char* place, std::size_t room, std::size_t& count);

  SourceOwner& owner_;
  std::string name_;
  std::unique_ptr<NQByteSource> owned_;
  Channel channel_;
  nqLong fileIndex_ = -1;
  nqLong line_ = 1;
  bool text_;
  bool ended_ = false;
  bool failed_ = false;
  bool cutByZero_ = false;
  std::vector<char> window_;    // one byte more than it may hold, for the zero
  std::int64_t base_ = 0;       // bytes before the window
  std::int64_t lineStart_ = 0;  // bytes before the current line
};

// How many files a read may meet.
struct SourceLimits {
  int open = 64;      // at once
  int opened = 1000;  // in all
};

class Sources {
 public:
  static constexpr std::size_t kMaxName = 259;

  struct Bracket {
    char character;
    Place place;
  };

  // Files are opened for `access`.
  Sources(SourceOwner& owner, bool text, const SourceLimits& limits = {},
          Access access = Access::kRead)
      : owner_(owner), text_(text), limits_(limits), access_(access) {}

  // Opens a file on top of the stack. A relative name that cannot be opened as
  // it stands is tried in the directory of the file on top. False when it cannot
  // be opened, when the owner forbids it, or when a limit is reached.
  bool push(const char* name);
  // Puts a source, which is borrowed, on top of the stack; names of files that it
  // includes are relative to `name`.
  void push(NQByteSource& source, const char* name);
  // Closes the file on top; false when the close fails.
  bool pop();
  void clear();

  bool empty() const { return files_.empty(); }
  std::size_t depth() const { return files_.size(); }
  Source& top() { return *files_.back(); }
  const Source& top() const { return *files_.back(); }

  // Where the next character stands; no place when no file is open.
  Place place() const;

  // Brackets that are open, across files.
  std::vector<Bracket> brackets;

 private:
  bool open(const std::string& name);
  void add(std::unique_ptr<Source> source);

  SourceOwner& owner_;
  bool text_;
  SourceLimits limits_;
  Access access_;
  int opened_ = 0;
  std::vector<std::unique_ptr<Source>> files_;
};

}  // namespace nqdetail

#endif  // NQ_OML_READING_SOURCES_H
