#include "nq/core/text.h"

#include <cstring>
#include <functional>
#include <new>
#include <string_view>
#include <utility>

#include "nq/core/message_table.h"
#include "nq/platform/system_internal.h"

namespace {

// Null when memory is exhausted.
std::unique_ptr<char[]> joined(std::string_view first, std::string_view second) {
  const std::size_t length = first.size() + second.size();
  std::unique_ptr<char[]> text(new (std::nothrow) char[length + 1]);
  if (text == nullptr) return text;
  std::memcpy(text.get(), first.data(), first.size());
  std::memcpy(text.get() + first.size(), second.data(), second.size());
  text[length] = '\0';
  return text;
}

}  // namespace

NQInternalText::NQInternalText(const char* text) {
  pString(text);
}

NQInternalText::NQInternalText(int textId) : NQInternalText(getStringResource(textId)) {}

NQInternalText::NQInternalText(const NQInternalText& source)
    : NQInternalText(source.pString()) {}

NQInternalText& NQInternalText::operator=(const NQInternalText& source) {
  if (this != &source) pString(source.pString());
  return *this;
}

nqLong NQInternalText::sizeOf() const {
  const std::size_t length = string_ == nullptr ? 0 : std::strlen(string_.get());
  return static_cast<nqLong>(length + 8);
}

std::strong_ordering operator<=>(const NQInternalText& a, const NQInternalText& b) {
  const char* const textA = a.pString();
  const char* const textB = b.pString();
  if (textA == nullptr || textB == nullptr) {
    return (textA != nullptr) <=> (textB != nullptr);
  }
  return std::strcmp(textA, textB) <=> 0;
}

std::size_t NQInternalText::hashValue() const {
  return std::hash<std::string_view>()(string_ == nullptr ? "" : string_.get());
}

std::string NQInternalText::asText() const {
  return string_ == nullptr ? "" : string_.get();
}

const char* NQInternalText::pString(const char* text) {
  if (text == nullptr) {
    string_.reset();
  } else if (auto copy = joined(text, "")) {
    string_ = std::move(copy);  // `text` may point into the old string
  }
  return string_.get();
}

const char* NQInternalText::appendString(const char* text) {
  if (text == nullptr) return string_.get();
  if (string_ == nullptr) return pString(text);
  if (auto longer = joined(string_.get(), text)) string_ = std::move(longer);
  return string_.get();
}

const char* NQInternalText::prependString(const char* text) {
  if (text == nullptr) return string_.get();
  if (string_ == nullptr) return pString(text);
  if (auto longer = joined(text, string_.get())) string_ = std::move(longer);
  return string_.get();
}

NQ_COPY_PROTOCOL_IMPL(NQText)

void NQText::NQTextdeepCopy(const NQText& source) {
  NQCopyAccess::deep<NQObject>(*this, source);
  text_ = source.text_;
}

void NQText::NQTextattributeCopy(const NQText& source) {
  NQCopyAccess::attributes<NQObject>(*this, source);
  text_.pString(nullptr);
}

nqLong NQText::sizeOf() const {
  return text_.sizeOf() + 8;
}

NQ_COPY_PROTOCOL_IMPL(NQErrorMsg)

void NQErrorMsg::NQErrorMsgdeepCopy(const NQErrorMsg& source) {
  NQCopyAccess::deep<NQText>(*this, source);
}

void NQErrorMsg::NQErrorMsgattributeCopy(const NQErrorMsg& source) {
  NQCopyAccess::attributes<NQText>(*this, source);
}

void NQErrorMsg::display() const {
  const char* const text = pString();
  if (text == nullptr) return;
  std::size_t written;
  (void)nqdetail::writeAll(nqdetail::system().standardError(), text, std::strlen(text),
                           &written);
}

void displayErrorMessage(const char* text) {
  NQErrorMsg(text).display();
}
