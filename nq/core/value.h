// value.h -- what plain values have in common: they print, and they hash.
//
// A value is an object that == compares and that says what it is in two members:
//
//   std::string asText() const;     // for people
//   std::size_t hashValue() const;  // the same for equal values
//
// Then << writes it to a stream, containers such as std::unordered_set take it, and
// std::format() does, where the standard library has it (value_format.h). The
// library's values have these members; a class of an application that has them joins
// in.
//
//   std::unordered_map<NQPoint, NQObject*> nodes;
//   std::cout << std::setw(12) << nodes.begin()->first << '\n';  //      (3, -4)

#ifndef NQ_CORE_VALUE_H
#define NQ_CORE_VALUE_H

#include <bit>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <string>

#include "nq/platform/export.h"

template <class Value>
concept NQValue = requires(const Value& value) {
  { value.asText() } -> std::same_as<std::string>;
  { value.hashValue() } -> std::same_as<std::size_t>;
};

// As a text is written: in the width and with the fill that the stream has.
template <NQValue Value>
std::ostream& operator<<(std::ostream& out, const Value& value) {
  return out << value.asText();
}

#if !defined(NQ_DOCUMENTING)  // which Doxygen takes for a class of an unknown scope
template <NQValue Value>
struct std::hash<Value> {
  std::size_t operator()(const Value& value) const { return value.hashValue(); }
};
#endif

// One hash of several numbers, in their order. Equal numbers, as 0.0 and -0.0 are,
// have equal ones. For tables in memory: it may be another one in the next version.
// The mixing function is variant 13 of D. Stafford, "Better bit mixing".
template <class... Number>
constexpr std::size_t nqHashOf(Number... number) {
  std::uint64_t hash = 0;
  const auto add = [&hash](auto one) {
    if constexpr (std::floating_point<decltype(one)>) {
      hash += std::bit_cast<std::uint64_t>(one == 0 ? 0.0 : double{one});
    } else {
      hash += static_cast<std::uint64_t>(one);
    }
    hash += 0x9e3779b97f4a7c15U;
    hash = (hash ^ hash >> 30) * 0xbf58476d1ce4e5b9U;
    hash = (hash ^ hash >> 27) * 0x94d049bb133111ebU;
    hash ^= hash >> 31;
  };
  (add(number), ...);
  return static_cast<std::size_t>(hash);
}

// The shortest text that reads back to the same number, whatever the locale.
NQ_EXPORT std::string nqTextOf(double number);

#endif  // NQ_CORE_VALUE_H
