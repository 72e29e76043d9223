// transfer_internal.h -- between a file and where its bytes go to and come from: output
// that is gathered, input that is fetched ahead.
//
// Both move blocks instead of single lines and bytes, and both can share() a handle of
// the system: they put it where it would be without them and keep nothing from then on,
// because somebody else uses the handle too.

#ifndef NQ_FILE_TRANSFER_INTERNAL_H
#define NQ_FILE_TRANSFER_INTERNAL_H

#include <cstddef>
#include <cstdint>
#include <memory>

#include "nq/core/string_handle.h"
#include "nq/file/byte_stream.h"
#include "nq/file/stop_search_internal.h"
#include "nq/platform/system_internal.h"

namespace nqdetail {

inline constexpr std::size_t kTransferBlock = 65536;

// A handle of the system, or in its place what an application attached. No exception of
// that gets any further.
struct Channel {
  Handle handle = noHandle();
  NQByteSource* source = nullptr;
  NQByteSink* sink = nullptr;

  // One transfer, as System::read.
  bool read(void* data, std::size_t count, std::size_t* transferred) const;
  // All of `data`, as writeAll().
  bool write(const char* data, std::size_t count, std::size_t* written) const;
  bool flush() const;
  // How many bytes there are to read in all; -1 when that is not known.
  std::int64_t size() const;
  // Moves the handle by so many bytes; false also where there is none.
  bool seekBy(std::int64_t distance) const;
};

// Nothing that write() accepted is ever dropped: what a failing transfer did not take
// stays gathered, in order, and is tried again.
class WriteBehind {
 public:
  // False when the system failed; the data is then not gathered, though a part
  // of more than a block may have arrived.
  bool write(const Channel& channel, const char* data, std::size_t count);

  // Sends what is gathered; false when some of it is left.
  bool send(const Channel& channel);

  void share(const Channel& channel);

 private:
  std::unique_ptr<char[]> block_;  // made by the first write
  std::size_t used_ = 0;
  bool shared_ = false;
};

class ReadAhead {
 public:
  static constexpr std::size_t kMaxLent = 10240;

  // As System::read, and with no more than one transfer of the system.
  bool read(const Channel& channel, void* data, std::size_t count,
            std::size_t* transferred);

  // The same without copying: moves `data` to a place where the `kept` bytes from
  // there on stand with `count` more behind them, or as many as there are. The place
  // is good until the next read. `kept` and `count` together are at most kMaxLent,
  // and the handle is not shared.
  bool lend(const Channel& channel, char*& data, std::size_t kept, std::size_t count,
            std::size_t* transferred);
  bool isShared() const { return shared_; }

  // The first byte of [first, last) that ends a line or the text, or `last`. The bytes
  // are among those lent last, as they were.
  const char* findStop(const char* first, const char* last) {
    return search_.find(first, last, block_.get() + last_);
  }

  // Puts the handle behind what was read; false when the system failed. A source cannot
  // take anything back.
  bool giveBack(const Channel& channel);

  void share(const Channel& channel);

 private:
  void makeBlock();
  std::size_t take(char* data, std::size_t count);
  bool fetch(const Channel& channel);

  // Made by the first read. A transfer goes behind the first kMaxLent bytes, which
  // are room for what is left of the one before.
  std::unique_ptr<char[]> block_;
  std::size_t first_ = kMaxLent;  // the bytes ahead are [first_, last_), no less
  std::size_t last_ = kMaxLent;
  bool shared_ = false;
  StopSearch search_;  // in the block
};

// nqInternalRead(), fetching ahead unless `ahead` is null.
int readTerminatedLine(const Channel& channel, ReadAhead* ahead, NQStringHandle& out,
                       unsigned int* count, int* end);

}  // namespace nqdetail

#endif  // NQ_FILE_TRANSFER_INTERNAL_H
