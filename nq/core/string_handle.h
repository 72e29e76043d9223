// string_handle.h -- a growable buffer for text that is built piece by piece.
//
// The handle owns a NUL-terminated buffer of 254 bytes at first, which doubles
// when it is too small and never shrinks, so that appending a character takes
// constant time, amortised. Strings and buffers that the handle gives out stay
// valid until it grows.
//
// A change for which there is no memory, or after which the capacity would not
// fit an nqLong, is refused: the operation returns 0 (or null) and the text
// stays as it was, which goes for assignment too. Only the first buffer must be
// had: making a handle without memory for it throws std::bad_alloc.
//
// A handle that was moved from is empty and has no buffer, which makes its capacity 0;
// the next change gets one.
//
// How it works
//   The text's length is kept, so that nothing walks over the text to append.
//   Only after the buffer was handed out for writing is the end unknown: it is
//   then looked for, from the place that was handed out, by whichever operation
//   needs it, and known again after the next change.

#ifndef NQ_CORE_STRING_HANDLE_H
#define NQ_CORE_STRING_HANDLE_H

#include <memory>
#include <string_view>

#include "nq/core/copy_protocol.h"

// Both kinds of copy are the same: they take over the text and the capacity,
// even a smaller one. copyObject() calls the virtual copyAttributes(), so a
// derived class that overrides the second has changed the first as well.
class NQ_EXPORT NQStringHandle : public NQObject {
  NQ_COPY_PROTOCOL(NQStringHandle)

 public:
  NQStringHandle();
  NQStringHandle(NQStringHandle&& source) noexcept { take(source); }
  NQStringHandle& operator=(NQStringHandle&& source) noexcept;
  ~NQStringHandle() override { delete[] buffer_; }

  const char* pString() const { return buffer_ == nullptr ? "" : buffer_; }
  nqLong capacity() const { return capacity_; }
  // The text's length.
  nqLong strlenBuf() const;
  // capacity() + 24.
  virtual nqLong sizeOf() const;
  void internalDebugOutput(int) const {}

  // Makes room for a text of `n` characters.
  int needCapacity(nqLong n);
  // Makes room for `k` more characters and one byte to spare, which is why the
  // first buffer holds 252 characters before it grows.
  int increaseLength(nqLong k);

  // A zero character adds nothing.
  int appendChar(char c) {
    if (length_ > quickLength_ && !prepareForChar()) return 0;
    buffer_[length_] = c;
    if (c != '\0') buffer_[++length_] = '\0';
    return 1;
  }
  // `text` may be (part of) the handle's own. Null adds nothing and returns 0.
  int appendString(const char* text);
  // The same for a text that is not terminated and holds no zero byte.
  int appendText(std::string_view text) {
    if (static_cast<nqInt64>(text.size()) > quickLength_ - length_) {
      return appendAnyText(text);
    }
    text.copy(buffer_ + length_, text.size());
    length_ += static_cast<nqLong>(text.size());
    buffer_[length_] = '\0';
    return 1;
  }

  // Hands out the place of the terminator, where the caller may write up to `n`
  // characters and a terminator, until the handle is next changed. How much was
  // written shows by that terminator.
  char* obtainAppendBuffer(nqLong n);

  // Makes the text empty and keeps the buffer.
  void empty() {
    if (buffer_ != nullptr) setLength(0);
  }

 protected:
  void init();

 private:
  friend class NQTestPeer;
  friend class NQTextFile;  // edits lines in place

  // The whole buffer, to be written like one from obtainAppendBuffer().
  char* pChangeableString() { return needCapacity(0) != 0 ? handOut(0) : nullptr; }
  // Replace the buffer, or the figure, and nothing else.
  char* pString(char* buffer) { return buffer_ = buffer; }
  nqLong capacity(nqLong capacity) { return capacity_ = capacity; }

  // From here on the end is unknown, but not before `place`.
  char* handOut(nqLong place) {
    length_ = place;
    quickLength_ = -1;
    return buffer_ + place;
  }
  void take(NQStringHandle& source) noexcept;
  // The end is known: here.
  void setLength(nqLong length) {
    buffer_[length] = '\0';
    length_ = length;
    quickLength_ = capacity_ - 3;
  }
  int appendAnyText(std::string_view text);
  bool reserve(nqInt64 required, std::unique_ptr<char[]>* replaced);
  bool prepareForChar();

  char* buffer_ = nullptr;  // owned; capacity_ bytes, terminated; null for none
  nqLong capacity_ = 0;
  nqLong length_ = 0;        // while handed out, the place from where to look for the end
  nqLong quickLength_ = -1;  // up to which a character just fits; -1 while handed out
};

#endif  // NQ_CORE_STRING_HANDLE_H
