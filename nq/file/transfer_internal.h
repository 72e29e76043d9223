// transfer_internal.h -- what stands between a file opened by name and its
// handle: output that is gathered, input that is fetched ahead.
//
// Both move blocks instead of single lines and bytes, and both can share() the
// handle: they put it where it would be without them and keep nothing from then
// on, because somebody else uses the handle too.

#ifndef NQ_FILE_TRANSFER_INTERNAL_H
#define NQ_FILE_TRANSFER_INTERNAL_H

#include <cstddef>
#include <memory>

#include "nq/core/string_handle.h"
#include "nq/file/stop_search_internal.h"
#include "nq/platform/system_internal.h"

namespace nqdetail {

inline constexpr std::size_t kTransferBlock = 65536;

// Nothing that write() accepted is ever dropped: what a failing transfer did not take
// stays gathered, in order, and is tried again.
class WriteBehind {
 public:
  // False when the system failed; the data is then not gathered, though a part
  // of more than a block may have arrived.
  bool write(Handle handle, const char* data, std::size_t count);

  // Whether any write() failed, so that the file lacks something.
  bool lostAny() const { return lostAny_; }

  // Sends what is gathered; false when some of it is left.
  bool send(Handle handle);

  void share(Handle handle);

 private:
  bool gather(Handle handle, const char* data, std::size_t count);

  std::unique_ptr<char[]> block_;  // made by the first write
  std::size_t used_ = 0;
  bool shared_ = false;
  bool lostAny_ = false;
};

class ReadAhead {
 public:
  static constexpr std::size_t kMaxLent = 10240;

  // As System::read, and with no more than one transfer of the system.
  bool read(Handle handle, void* data, std::size_t count, std::size_t* transferred);

  // The same without copying: moves `data` to a place where the `kept` bytes from
  // there on stand with `count` more behind them, or as many as there are. The place
  // is good until the next read. `kept` and `count` together are at most kMaxLent,
  // and the handle is not shared.
  bool lend(Handle handle, char*& data, std::size_t kept, std::size_t count,
            std::size_t* transferred);
  bool isShared() const { return shared_; }

  // The first byte of [first, last) that ends a line or the text, or `last`. The bytes
  // are among those lent last, as they were.
  const char* findStop(const char* first, const char* last) {
    return search_.find(first, last, block_.get() + last_);
  }

  // Puts the handle behind what was read; false when the system failed.
  bool giveBack(Handle handle);

  void share(Handle handle);

 private:
  void makeBlock();
  std::size_t take(char* data, std::size_t count);
  bool fetch(Handle handle);

  // Made by the first read. A transfer goes behind the first kMaxLent bytes, which
  // are room for what is left of the one before.
  std::unique_ptr<char[]> block_;
  std::size_t first_ = kMaxLent;  // the bytes ahead are [first_, last_), no less
  std::size_t last_ = kMaxLent;
  bool shared_ = false;
  StopSearch search_;  // in the block
};

// nqInternalRead(), fetching ahead unless `ahead` is null.
int readTerminatedLine(Handle handle, ReadAhead* ahead, NQStringHandle& out,
                       unsigned int* count, int* end);

}  // namespace nqdetail

#endif  // NQ_FILE_TRANSFER_INTERNAL_H
