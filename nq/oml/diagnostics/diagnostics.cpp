#include "nq/oml/diagnostics/diagnostics.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <string>

#include "nq/core/format_internal.h"
#include "nq/core/message_table.h"
#include "nq/oml/diagnostic.h"
#include "nq/oml/diagnostics/message_codes.h"

namespace nqdetail {

namespace {

constexpr char kCut[] = "...\n";
constexpr std::size_t kCutLength = sizeof kCut - 1;
constexpr std::size_t kReserve = 6;  // kept free of lines, so that kCut fits behind them

const char* textOf(const char* text) {
  return text == nullptr ? "" : text;
}

std::string lineOf(NQOMLSeverityEnum severity, const char* file, nqLong line, int column,
                   int code, const char* text) {
  NQOMLDiagnostic diagnostic;
  diagnostic.code = code;
  diagnostic.severity = severity;
  diagnostic.file = textOf(file);
  diagnostic.first = {line, column, -1};
  diagnostic.text = textOf(text);
  return diagnostic.message();
}

}  // namespace

void MessageBuffer::resize(unsigned size) {
  size_ = size;
  length_ = 0;
  text_.reset();
  if (size > 0) text_.reset(new (std::nothrow) char[size]);
  clear();
}

void MessageBuffer::clear() {
  length_ = 0;
  if (text_ != nullptr) text_[0] = '\0';
}

void MessageBuffer::append(const char* line) {
  if (text_ == nullptr || size_ < 2) return;
  // The end is where it was left, unless the user has emptied or cut the text.
  if (text_[0] == '\0') length_ = 0;
  if (text_[length_] != '\0' || (length_ > 0 && text_[length_ - 1] == '\0')) {
    length_ = strnlen(text_.get(), size_ - 1);
  }
  const std::size_t limit = size_ > kReserve ? size_ - kReserve : 0;
  if (length_ > limit) return;  // cut before

  const std::size_t whole = std::strlen(line);
  const std::size_t taken = std::min(whole, limit - length_);
  std::memcpy(text_.get() + length_, line, taken);
  length_ += taken;
  if (taken < whole && length_ + kCutLength < size_) {
    std::memcpy(text_.get() + length_, kCut, kCutLength);
    length_ += kCutLength;
  }
  text_[length_] = '\0';
}

void Diagnostics::reset() {
  numberOfErrors = 0;
  numberOfWarnings = 0;
  errorCode = NQ_FILE_OK;
  ended_ = false;
  errors.clear();
  warnings.clear();
}

void Diagnostics::end() {
  ended_ = true;
  errorCode = NQ_FILE_READ_ERROR;
}

void Diagnostics::report(const Place& place, int code, const char* format, const char* a1,
                         const char* a2, const char* a3, int fatal) {
  if (ended_) return;
  if (format == nullptr) format = getStringResource(code);
  error(sink_.sourceName(place.fileIndex), place.line, place.column, code, format, a1, a2,
        a3, fatal);
}

void Diagnostics::error(const char* file, nqLong line, int column, int code,
                        const char* format, const char* a1, const char* a2,
                        const char* a3, int fatal) {
  if (ended_) return;
  std::string text = format;
  FormatArgument arguments[3] = {a1, a2, a3};
  const auto last = std::remove_if(std::begin(arguments), std::end(arguments),
                                   [](const FormatArgument& argument) {
                                     return *argument.valueAs<const char*>() == nullptr;
                                   });
  if (last != arguments) {
    const std::span<const FormatArgument> given(arguments, last);
    text.resize(formatText(nullptr, 0, format, given));
    (void)formatText(text.data(), text.size() + 1, format, given);
  }
  ++numberOfErrors;
  errorCode = NQ_FILE_READ_ERROR;
  sink_.error(textOf(file), line, column, code, text.c_str(), fatal);
  // A limit may have ended the read meanwhile.
  if (fatal != 0 && !ended_) {
    ended_ = true;
    sink_.stop();
  }
}

void Diagnostics::warning(const Place& place, int code) {
  warning(sink_.sourceName(place.fileIndex), place.line, place.column, code,
          getStringResource(code));
}

void Diagnostics::warning(const char* file, nqLong line, int column, int code,
                          const char* text) {
  if (ended_) return;
  ++numberOfWarnings;
  sink_.warning(textOf(file), line, column, code, text);
}

void Diagnostics::storeError(const char* file, nqLong line, int column, int code,
                             const char* text, int fatal) {
  const NQOMLSeverityEnum severity = fatal != 0 ? NQ_OML_FATAL_ERROR : NQ_OML_ERROR;
  errors.append(lineOf(severity, file, line, column, code, text).c_str());
  if (fatal == 0 && numberOfErrors >= maxNumberOfErrors) {
    report({}, kTooManyErrors, nullptr, nullptr, nullptr, nullptr, 1);
  }
}

void Diagnostics::storeWarning(const char* file, nqLong line, int column, int code,
                               const char* text) {
  warnings.append(lineOf(NQ_OML_WARNING, file, line, column, code, text).c_str());
  if (numberOfWarnings >= maxNumberOfWarnings) {
    report({}, kTooManyWarnings, nullptr, nullptr, nullptr, nullptr, 1);
  }
}

}  // namespace nqdetail
