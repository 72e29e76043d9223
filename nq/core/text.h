// text.h -- owned texts: as a plain value, as an object, and as a message.
//
// All texts are 8-bit and NUL-terminated. No text and the empty text are two
// different states: the first is a null string. Each text takes exactly the
// memory it needs and is allocated anew on every change; to build a text piece
// by piece use NQStringHandle. A change for which there is no memory is not
// made.

#ifndef NQ_CORE_TEXT_H
#define NQ_CORE_TEXT_H

#include <concepts>
#include <memory>

#include "nq/core/copy_protocol.h"

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
  const NQInternalText& operator=(const NQInternalText& source);

  const char* pString() const { return string_.get(); }
  // 8, and the text's length if there is one.
  nqLong sizeOf() const;
  void debugOutput(int) const {}

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

 public:
  explicit NQText(const char* text = nullptr) : text_(text) {}

  const char* pString() const { return text_.pString(); }
  // 16, and the text's length if there is one.
  virtual nqLong sizeOf() const;

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

 public:
  explicit NQErrorMsg(const char* text) : NQText(text) {}

  // Writes the text to the standard error stream, without a line end. Failures
  // go unnoticed: there is nowhere left to report them.
  void display() const;
};

// Displays `text` as an NQErrorMsg does.
NQ_EXPORT void displayErrorMessage(const char* text);

#endif  // NQ_CORE_TEXT_H
