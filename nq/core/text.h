// text.h -- owned texts: as a plain value, as an object, and as a message.
//
// All texts are 8-bit and NUL-terminated. No text and the empty text are two
// different states: the first is a null string. Each text takes exactly the
// memory it needs and is allocated anew on every change; to build a text piece
// by piece use NQStringHandle. A change for which there is no memory is not
// made.
//
// Texts compare by their bytes, no text before the empty one; they hash and print
// (value.h), no text as the empty one.

#ifndef NQ_CORE_TEXT_H
#define NQ_CORE_TEXT_H

#include <compare>
#include <concepts>
#include <memory>
#include <string>

#include "nq/core/copy_protocol.h"
#include "nq/core/value.h"

// A text as a plain value. Strings that it returns stay valid until it changes.
class NQ_EXPORT NQInternalText {
 public:
  explicit NQInternalText(const char* text = nullptr);
  // A copy of the library's message text with that number (getStringResource), of
  // which the low 32 bits count.
  explicit NQInternalText(int textId);
  template <std::integral Integer>
  explicit NQInternalText(Integer textId) : NQInternalText(static_cast<int>(textId)) {}
  NQInternalText(const NQInternalText& source);
  NQInternalText& operator=(const NQInternalText& source);
  // `source` has no text then.
  NQInternalText(NQInternalText&& source) noexcept = default;
  NQInternalText& operator=(NQInternalText&& source) noexcept = default;

  const char* pString() const { return string_.get(); }
  // 8, and the text's length if there is one.
  nqLong sizeOf() const;
  void debugOutput(int) const {}

  friend NQ_EXPORT std::strong_ordering operator<=>(const NQInternalText& a,
                                                    const NQInternalText& b);
  friend bool operator==(const NQInternalText& a, const NQInternalText& b) {
    return (a <=> b) == 0;
  }
  std::size_t hashValue() const;
  std::string asText() const;

  // Each returns the string after the change. `text` may be (part of) the
  // object's own. Appending or prepending null changes nothing.
  const char* pString(const char* text);
  const char* appendString(const char* text);
  const char* prependString(const char* text);

 private:
  std::unique_ptr<char[]> string_;
};

// A text as an object. Its text is owned contents: a deep copy has the source's
// text, an attribute copy has none, whatever it had before.
class NQ_EXPORT NQText : public NQObject {
  NQ_COPY_PROTOCOL(NQText)
  NQ_MOVE_MEMBERS(NQText)

 public:
  explicit NQText(const char* text = nullptr) : text_(text) {}

  const char* pString() const { return text_.pString(); }
  // 16, and the text's length if there is one.
  virtual nqLong sizeOf() const;

  friend auto operator<=>(const NQText& a, const NQText& b) {
    return a.text_ <=> b.text_;
  }
  friend bool operator==(const NQText& a, const NQText& b) { return a.text_ == b.text_; }
  std::size_t hashValue() const { return text_.hashValue(); }
  std::string asText() const { return text_.asText(); }

  // As in NQInternalText.
  const char* pString(const char* text) { return text_.pString(text); }
  const char* appendString(const char* text) { return text_.appendString(text); }
  const char* prependString(const char* text) { return text_.prependString(text); }

 protected:
  void init() { text_.pString(nullptr); }

 private:
  NQInternalText text_;
};

// A text that can show itself.
class NQ_EXPORT NQErrorMsg : public NQText {
  NQ_COPY_PROTOCOL(NQErrorMsg)
  NQ_MOVE_MEMBERS(NQErrorMsg)

 public:
  explicit NQErrorMsg(const char* text) : NQText(text) {}

  // Writes the text to the standard error stream, without a line end. Failures
  // go unnoticed: there is nowhere left to report them.
  void display() const;
};

// Displays `text` as an NQErrorMsg does.
NQ_EXPORT void displayErrorMessage(const char* text);

#endif  // NQ_CORE_TEXT_H
