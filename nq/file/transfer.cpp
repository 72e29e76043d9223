#include "nq/file/transfer_internal.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace nqdetail {

bool Channel::read(void* data, std::size_t count, std::size_t* transferred) const {
  if (source == nullptr) return system().read(handle, data, count, transferred);
  *transferred = 0;
  try {
    std::size_t copied = 0;
    const NQFileCodeEnum result = source->read(static_cast<char*>(data), count, copied);
    *transferred = std::min(copied, count);
    return result == NQ_FILE_OK && copied <= count;
  } catch (...) {
    return false;
  }
}

bool Channel::write(const char* data, std::size_t count, std::size_t* written) const {
  if (sink == nullptr) return writeAll(handle, data, count, written);
  *written = 0;
  try {
    if (sink->write(data, count) != NQ_FILE_OK) return false;
  } catch (...) {
    return false;
  }
  *written = count;
  return true;
}

bool Channel::flush() const {
  if (sink == nullptr) return true;
  try {
    return sink->flush() == NQ_FILE_OK;
  } catch (...) {
    return false;
  }
}

std::int64_t Channel::size() const {
  if (source == nullptr) return system().fileSize(handle);
  try {
    return source->size();
  } catch (...) {
    return -1;
  }
}

bool Channel::seekBy(std::int64_t distance) const {
  return handle != noHandle() && system().seekBy(handle, distance);
}

bool WriteBehind::write(const Channel& channel, const char* data, std::size_t count) {
  if (block_ == nullptr) block_.reset(new char[kTransferBlock]);
  if (shared_ || count > kTransferBlock - used_) {
    if (!send(channel)) return false;
    if (shared_ || count >= kTransferBlock) {
      std::size_t written;
      return channel.write(data, count, &written);
    }
  }
  std::memcpy(block_.get() + used_, data, count);
  used_ += count;
  return true;
}

bool WriteBehind::send(const Channel& channel) {
  if (used_ == 0) return true;
  std::size_t written;
  const bool sent = channel.write(block_.get(), used_, &written);
  used_ -= written;
  std::memmove(block_.get(), block_.get() + written, used_);
  return sent;
}

void WriteBehind::share(const Channel& channel) {
  (void)send(channel);
  shared_ = true;
}

bool ReadAhead::read(const Channel& channel, void* data, std::size_t count,
                     std::size_t* transferred) {
  if (shared_) return channel.read(data, count, transferred);
  makeBlock();
  char* const bytes = static_cast<char*>(data);
  *transferred = take(bytes, count);
  const std::size_t missing = count - *transferred;
  if (missing == 0) return true;
  if (missing >= kTransferBlock) {
    std::size_t more;
    const bool succeeded = channel.read(bytes + *transferred, missing, &more);
    *transferred += more;
    return succeeded;
  }
  first_ = kMaxLent;  // nothing is left
  const bool succeeded = fetch(channel);
  *transferred += take(bytes + *transferred, missing);
  return succeeded;
}

bool ReadAhead::lend(const Channel& channel, char*& data, std::size_t kept,
                     std::size_t count, std::size_t* transferred) {
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
    succeeded = fetch(channel) || left > 0;  // a failure comes again
  }
  *transferred = std::min(count, last_ - first_);
  first_ += *transferred;
  return succeeded;
}

bool ReadAhead::giveBack(const Channel& channel) {
  if (first_ == last_ || channel.source != nullptr) return true;
  if (!channel.seekBy(-static_cast<std::int64_t>(last_ - first_))) return false;
  first_ = last_ = kMaxLent;
  return true;
}

// What cannot be given back is still read first.
void ReadAhead::share(const Channel& channel) {
  shared_ = giveBack(channel);
}

void ReadAhead::makeBlock() {
  if (block_ == nullptr) block_.reset(new char[kMaxLent + kTransferBlock]);
}

// Adds a transfer to the bytes ahead, which end where transfers go.
bool ReadAhead::fetch(const Channel& channel) {
  search_ = {};
  std::size_t read;
  const bool succeeded = channel.read(block_.get() + kMaxLent, kTransferBlock, &read);
  last_ = kMaxLent + read;
  return succeeded;
}

std::size_t ReadAhead::take(char* data, std::size_t count) {
  const std::size_t taken = std::min(count, last_ - first_);
  std::memcpy(data, block_.get() + first_, taken);
  first_ += taken;
  return taken;
}

int readTerminatedLine(const Channel& channel, ReadAhead* ahead, NQStringHandle& out,
                       unsigned int* count, int* end) {
  unsigned int read = 0;
  bool ended = false;
  bool succeeded = true;
  out.empty();
  for (char previous = '\0', c = '\0'; succeeded && c != '\r'; previous = c) {
    std::size_t transferred = 0;
    succeeded = ahead != nullptr ? ahead->read(channel, &c, 1, &transferred)
                                 : channel.read(&c, 1, &transferred);
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
