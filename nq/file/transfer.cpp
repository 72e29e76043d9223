#include "nq/file/transfer_internal.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace nqdetail {

bool WriteBehind::write(Handle handle, const char* data, std::size_t count) {
  const bool taken = gather(handle, data, count);
  lostAny_ = lostAny_ || !taken;
  return taken;
}

bool WriteBehind::gather(Handle handle, const char* data, std::size_t count) {
  if (block_ == nullptr) block_.reset(new char[kTransferBlock]);
  if (shared_ || count > kTransferBlock - used_) {
    if (!send(handle)) return false;
    if (shared_ || count >= kTransferBlock) {
      std::size_t written;
      return writeAll(handle, data, count, &written);
    }
  }
  std::memcpy(block_.get() + used_, data, count);
  used_ += count;
  return true;
}

bool WriteBehind::send(Handle handle) {
  if (used_ == 0) return true;
  std::size_t written;
  const bool sent = writeAll(handle, block_.get(), used_, &written);
  used_ -= written;
  std::memmove(block_.get(), block_.get() + written, used_);
  return sent;
}

void WriteBehind::share(Handle handle) {
  (void)send(handle);
  shared_ = true;
}

bool ReadAhead::read(Handle handle, void* data, std::size_t count,
                     std::size_t* transferred) {
  if (shared_) return system().read(handle, data, count, transferred);
  makeBlock();
  char* const bytes = static_cast<char*>(data);
  *transferred = take(bytes, count);
  const std::size_t missing = count - *transferred;
  if (missing == 0) return true;
  if (missing >= kTransferBlock) {
    std::size_t more;
    const bool succeeded = system().read(handle, bytes + *transferred, missing, &more);
    *transferred += more;
    return succeeded;
  }
  first_ = kMaxLent;  // nothing is left
  const bool succeeded = fetch(handle);
  *transferred += take(bytes + *transferred, missing);
  return succeeded;
}

bool ReadAhead::lend(Handle handle, char*& data, std::size_t kept, std::size_t count,
                     std::size_t* transferred) {
  makeBlock();
  // What was lent before stands there already, unless it was taken away.
  char* const before = block_.get() + (first_ - kept);
  if (before != data) {
    std::memmove(before, data, kept);
    search_ = {};
  }
  data = before;
  const std::size_t left = last_ - first_;
  bool succeeded = true;
  if (left < count) {
    data = block_.get() + (kMaxLent - left - kept);
    std::memmove(data, before, kept + left);
    first_ = kMaxLent - left;
    succeeded = fetch(handle) || left > 0;  // a failure comes again
  }
  *transferred = std::min(count, last_ - first_);
  first_ += *transferred;
  return succeeded;
}

bool ReadAhead::giveBack(Handle handle) {
  if (first_ == last_) return true;
  if (!system().seekBy(handle, -static_cast<std::int64_t>(last_ - first_))) return false;
  first_ = last_ = kMaxLent;
  return true;
}

// What cannot be given back is still read first.
void ReadAhead::share(Handle handle) {
  shared_ = giveBack(handle);
}

void ReadAhead::makeBlock() {
  if (block_ == nullptr) block_.reset(new char[kMaxLent + kTransferBlock]);
}

// Adds a transfer to the bytes ahead, which end where transfers go.
bool ReadAhead::fetch(Handle handle) {
  search_ = {};
  std::size_t read;
  const bool succeeded =
      system().read(handle, block_.get() + kMaxLent, kTransferBlock, &read);
  last_ = kMaxLent + read;
  return succeeded;
}

std::size_t ReadAhead::take(char* data, std::size_t count) {
  const std::size_t taken = std::min(count, last_ - first_);
  std::memcpy(data, block_.get() + first_, taken);
  first_ += taken;
  return taken;
}

int readTerminatedLine(Handle handle, ReadAhead* ahead, NQStringHandle& out,
                       unsigned int* count, int* end) {
  unsigned int read = 0;
  bool ended = false;
  bool succeeded = true;
  out.empty();
  for (char previous = '\0', c = '\0'; succeeded && c != '\r'; previous = c) {
    std::size_t transferred = 0;
    succeeded = ahead != nullptr ? ahead->read(handle, &c, 1, &transferred)
                                 : system().read(handle, &c, 1, &transferred);
    ended = !succeeded || transferred == 0 || c == '\0';
    if (ended) break;
    ++read;
    succeeded = out.appendChar(c) != 0 && (previous != '\n' || c == '\r');
  }
  if (count != nullptr) *count = read;
  if (end != nullptr) *end = ended ? 1 : 0;
  return succeeded ? 1 : 0;
}

}  // namespace nqdetail
