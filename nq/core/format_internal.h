// format_internal.h -- the formatter of format.h with checked arguments and a
// bounded output, for formats and values that come from outside the library.

#ifndef NQ_CORE_FORMAT_INTERNAL_H
#define NQ_CORE_FORMAT_INTERNAL_H

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <span>
#include <variant>

namespace nqdetail {

// An argument that knows its type; implicit, so that a braced list of values is
// a list of arguments. Texts are borrowed.
class FormatArgument {
 public:
  template <std::integral Integer>
  FormatArgument(Integer value) : value_(static_cast<std::uint32_t>(value)) {}
  FormatArgument(double value) : value_(value) {}
  FormatArgument(const char* text) : value_(text) {}
  FormatArgument(const void* pointer) : value_(pointer) {}

  template <class Type>
  const Type* valueAs() const {
    return std::get_if<Type>(&value_);
  }

 private:
  std::variant<std::uint32_t, double, const char*, const void*> value_;
};

// Writes the formatted text into `output`, as much of it as `size` bytes hold
// with its terminator, and returns the length of the whole text (a size of 0
// only measures). A specification adds nothing when the arguments are used up
// or the next one, which it still takes, has another type.
std::size_t formatText(char* output, std::size_t size, const char* format,
                       std::span<const FormatArgument> arguments);

}  // namespace nqdetail

#endif  // NQ_CORE_FORMAT_INTERNAL_H
