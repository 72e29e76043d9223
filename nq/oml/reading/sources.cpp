#include "nq/oml/reading/sources.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <new>
#include <utility>

namespace nqdetail {

namespace {

constexpr std::string_view kSeparators = "/\\:";

bool isRelative(std::string_view name) {
  const std::size_t separator = name.find_first_of(kSeparators);
  return separator == std::string_view::npos || (separator > 0 && name[separator] != ':');
}

}  // namespace

Source::Source(SourceOwner& owner, const std::string& name, Access access, bool text)
    : owner_(owner),
      name_(name),
      channel_{.handle = system().open(name.c_str(), access, Creation::kExisting)},
      text_(text) {}

Source::Source(SourceOwner& owner, NQByteSource& source,
               std::unique_ptr<NQByteSource> owned, const std::string& name, bool text)
    : owner_(owner),
      name_(name),
      owned_(std::move(owned)),
      channel_{.source = &source},
      text_(text) {}

Source::~Source() {
  (void)close();
}

void Source::start() {
  fileIndex_ = owner_.fileNameIndex(name_.c_str());
  if (fileIndex_ < 0) throw std::bad_alloc();
  window_.resize(kFirstWindow + 1);
  at = end = window_.data();
}

bool Source::close() {
  const Handle handle = std::exchange(channel_.handle, noHandle());
  return handle == noHandle() || system().close(handle);
}

nqLong Source::column(const char* place) const {
  const std::int64_t column = offset(place) - lineStart_ + 1;
  return static_cast<nqLong>(
      std::min<std::int64_t>(column, std::numeric_limits<nqLong>::max()));
}

// Makes room behind `end` for a good part of a window, such that what is moved
// and what is allocated stay in proportion to the bytes that arrive.
void Source::makeRoom(const char* keep) {
  const auto capacity = window_.size() - 1;
  const auto kept = static_cast<std::size_t>(end - keep);
  const auto taken = static_cast<std::size_t>(at - keep);
  const auto dropped = static_cast<std::size_t>(keep - window_.data());
  if (kept > 0 && capacity - dropped - kept >= capacity / 4) return;

  std::memmove(window_.data(), keep, kept);
  base_ += static_cast<std::int64_t>(dropped);
  const auto follow = [&] {
    at = window_.data() + taken;
    end = window_.data() + kept;
  };
  follow();  // before the resize, which may throw: the place must hold then, too
  if (capacity - kept < capacity / 2) window_.resize(2 * capacity + 1);
  follow();
}

bool Source::read(char* place, std::size_t room, std::size_t& count) {
  count = 0;
  failed_ = !channel_.read(place, room, &count) || !owner_.bytesArrived(count);
  if (failed_) count = 0;
  return count > 0;
}

bool Source::more(const char*& keep) {
  if (ended_) return false;
  const auto taken = at - keep;
  makeRoom(keep);
  keep = at - taken;

  const auto held = static_cast<std::size_t>(end - window_.data());
  char* const place = window_.data() + held;
  std::size_t count = 0;
  ended_ = !read(place, window_.size() - 1 - held, count);
  if (text_) {
    if (const void* const zero = std::memchr(place, '\0', count)) {
      ended_ = true;
      const auto length =
          static_cast<std::size_t>(static_cast<const char*>(zero) - place);
      char next;
      std::size_t following = 0;
      cutByZero_ = length + 1 < count || read(&next, 1, following);
      count = length;
    }
  }
  place[count] = '\0';
  end = place + count;
  return count > 0;
}

void Source::takeLineEnd(const char*& keep) {
  if (at + 1 == end) (void)more(keep);
  const char other = *at == '\n' ? '\r' : '\n';
  ++at;
  if (*at == other && at != end) ++at;
  ++line_;
  lineStart_ = offset(at);
}

void Source::takeLineEnd() {
  const char* keep = at;
  takeLineEnd(keep);
}

bool Sources::open(const std::string& name) {
  if (name.size() > kMaxName || opened_ >= limits_.opened ||
      static_cast<int>(files_.size()) >= limits_.open ||
      (!files_.empty() && !owner_.mayInclude(name.c_str()))) {
    return false;
  }
  if (!files_.empty()) {
    if (auto owned = owner_.includedSource(name.c_str())) {
      NQByteSource& bytes = *owned;
      add(std::make_unique<Source>(owner_, bytes, std::move(owned), name, text_));
      return true;
    }
  }
  auto source = std::make_unique<Source>(owner_, name, access_, text_);
  if (!source->isOpen()) return false;
  // No file includes itself, also where the system would open it once more.
  if (std::any_of(files_.begin(), files_.end(),
                  [&source](const auto& file) { return file->isSameAs(*source); })) {
    return false;
  }
  if (!files_.empty() && source->size() < 0) return false;
  add(std::move(source));
  return true;
}

void Sources::push(NQByteSource& source, const char* name) {
  add(std::make_unique<Source>(owner_, source, nullptr, name, text_));
}

void Sources::add(std::unique_ptr<Source> source) {
  source->start();
  files_.push_back(std::move(source));
  owner_.bytesExpected(top().size());
  ++opened_;
}

bool Sources::push(const char* name) {
  if (open(name)) return true;
  if (files_.empty() || !isRelative(name)) return false;
  const std::string& including = top().name();
  const std::size_t separator = including.find_last_of(kSeparators);
  return separator != std::string::npos &&
         open(including.substr(0, separator + 1) + name);
}

bool Sources::pop() {
  const bool closed = files_.back()->close();
  files_.pop_back();
  return closed;
}

void Sources::clear() {
  files_.clear();
  brackets.clear();
}

Place Sources::place() const {
  if (files_.empty()) return {};
  const Source& source = top();
  return {source.fileIndex(), source.line(), source.column()};
}

}  // namespace nqdetail
