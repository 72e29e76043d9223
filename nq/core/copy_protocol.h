// copy_protocol.h -- deep and attribute copies, the same in every class.
//
// Every class X with state offers the same dozen members: two copying
// constructors, assignment (always deep), copyObject and copyAttributes, two
// virtual and two typed clones, and castDown. A class states them with one
// line in its body and one in its source, and writes out only what differs:
// init(), which gives every field its default, and the two routines that copy
// its own fields.
//
//   class NQ_EXPORT NQInt : public NQObject {
//     NQ_COPY_PROTOCOL(NQInt)
//    ...
//    protected:
//     void init();
//   };
//
//   NQ_COPY_PROTOCOL_IMPL(NQInt)
//
//   void NQInt::NQIntdeepCopy(const NQInt& source) {
//     NQCopyAccess::deep<NQObject>(*this, source);  // the base comes first
//     value_ = source.value_;
//   }
//   void NQInt::NQIntattributeCopy(const NQInt& source) { ... }
//
// A class whose members all copy themselves, in the same way for both kinds of copy,
// needs one line, NQ_COPY_MEMBERWISE, and nothing else.
//
// Forgetting the line is not noticed: nothing in C++ tells the library that a class
// is not the base that it is copied as. Its clones are then objects of the nearest
// base that has the line, often a plain NQObject. The symptom is an object from a
// copied list, or from cloneObject(), whose own fields are unset or lie beyond its
// end: values change by themselves, and a sanitizer reports a heap overflow. Give the
// line to every class whose objects may be in a container.
//
// How it works
//   X(source, flag) runs the base's default constructor and X::init(), then
//   the routine that the flag names. Each routine begins with its base's
//   routine of the same kind, named in the call, and ends at NQObject's, which
//   do nothing. The routines have a class-specific name, so the macro adds a
//   private pair of static functions with a uniform one, through which
//   NQCopyAccess, a friend of every class, reaches them.
//
//   Typed clones answer null for a null receiver. Compilers may assume that
//   `this` is not null, so the test is made by nqIsNull(), which lives in the
//   library, and the library and its users are compiled with
//   -fno-delete-null-pointer-checks.
//
// A clone belongs to the caller. A class that departs from the pattern declares
// NQ_COPY_ROUTINES and writes the members that differ by hand.

#ifndef NQ_CORE_COPY_PROTOCOL_H
#define NQ_CORE_COPY_PROTOCOL_H

#include <new>
#include <type_traits>

#include "nq/core/object.h"

// Whether `pointer` is null, asked where the optimiser cannot answer.
NQ_EXPORT bool nqIsNull(const void* pointer) noexcept;

// The logic behind the macros, and the way from a class's copy routines to its
// base's.
class NQCopyAccess {
 public:
  // The base-class calls of the two copy routines.
  template <class Base>
  static void deep(Base& target, const Base& source) {
    checkRoutines<Base>();
    Base::nqDeepRoutine(target, source);
  }
  template <class Base>
  static void attributes(Base& target, const Base& source) {
    checkRoutines<Base>();
    Base::nqAttributeRoutine(target, source);
  }

  // The bodies of the members that the macros declare.
  template <class X>
  static void construct(X& target, const X& source, NQDeepFlagEnum flag) {
    target.init();
    if (flag == NQ_DEEP_COPY) {
      deep<X>(target, source);
    } else {
      attributes<X>(target, source);
    }
  }
  template <class X>
  static void copyObject(X& target, const NQObject* source) {
    if (source == nullptr || source == &target) return;
    deep<X>(target, *static_cast<const X*>(source));
  }
  template <class X>
  static void copyAttributes(X& target, const NQObject* source) {
    if (source == nullptr || source == &target) return;
    attributes<X>(target, *static_cast<const X*>(source));
  }
  template <class X>
  static NQObject* newCopy(const X& source, NQDeepFlagEnum flag) {
    try {
      // Where a class's own operator new answers null, the plain form also gives
      // the memory back when the constructor fails.
      if constexpr (requires { requires noexcept(X::operator new(sizeof(X))); }) {
        return new X(source, flag);
      } else {
        return new (std::nothrow) X(source, flag);
      }
    } catch (const std::bad_alloc&) {
      return nullptr;  // there was no memory for what it owns
    }
  }
  template <class X>
  static X* cloneObject(const X* source) {
    return nqIsNull(source) ? nullptr : static_cast<X*>(source->vCloneObject());
  }
  template <class X>
  static X* cloneAttributes(const X* source) {
    return nqIsNull(source) ? nullptr : static_cast<X*>(source->vCloneAttributes());
  }
  template <class X>
  static X* castDown(const NQObject* object) {
    return const_cast<X*>(static_cast<const X*>(object));
  }

 private:
  // A class without routines of its own would silently answer with its base's.
  template <class X>
  static constexpr void checkRoutines() {
    using Routine = void (*)(X&, const X&);
    static_assert(std::is_same_v<decltype(&X::nqDeepRoutine), Routine> &&
                      std::is_same_v<decltype(&X::nqAttributeRoutine), Routine>,
                  "the class lacks NQ_COPY_PROTOCOL or NQ_COPY_ROUTINES");
  }
};

// The way to the two copy routines of X for its derived classes.
#define NQ_COPY_ACCESS(X)                                      \
 private:                                                      \
  friend class ::NQCopyAccess;                                 \
  static void nqDeepRoutine(X& target, const X& source) {      \
    target.X##deepCopy(source);                                \
  }                                                            \
  static void nqAttributeRoutine(X& target, const X& source) { \
    target.X##attributeCopy(source);                           \
  }

// The two copy routines of X, reachable for its derived classes.
#define NQ_COPY_ROUTINES(X)          \
  NQ_COPY_ACCESS(X)                  \
  void X##deepCopy(const X& source); \
  void X##attributeCopy(const X& source);

// The other members of the protocol.
#define NQ_COPY_MEMBERS(X)                              \
 public:                                                \
  X(const X& source, NQDeepFlagEnum flag);              \
  X(const X& source);                                   \
  X& operator=(const X& source);                        \
  void copyObject(const NQObject* source) override;     \
  void copyAttributes(const NQObject* source) override; \
  X* cloneObject() const;                               \
  X* cloneAttributes() const;                           \
  static X* castDown(const NQObject* object);           \
                                                        \
 protected:                                             \
  NQObject* vCloneObject() const override;              \
  NQObject* vCloneAttributes() const override;          \
                                                        \
 private:

// All members of the protocol, as the first line of X's body.
#define NQ_COPY_PROTOCOL(X) \
  NQ_COPY_ROUTINES(X)       \
  NQ_COPY_MEMBERS(X)

// Their definitions, in X's source; X's two routines are written out beside it.
#define NQ_COPY_PROTOCOL_IMPL(X) \
  NQ_COPY_CONSTRUCTORS_IMPL(X)   \
  NQ_COPY_OPERATIONS_IMPL(X)

// The parts of them, for a class that writes out the others.
#define NQ_COPY_CONSTRUCTORS_IMPL(X)                 \
  X::X(const X& source, NQDeepFlagEnum flag) {       \
    NQCopyAccess::construct<X>(*this, source, flag); \
  }                                                  \
  X::X(const X& source) : X(source, NQ_DEEP_COPY) {} \
  X& X::operator=(const X& source) {                 \
    NQCopyAccess::copyObject<X>(*this, &source);     \
    return *this;                                    \
  }
#define NQ_COPY_TYPED_IMPL(X)                      \
  X* X::cloneObject() const {                      \
    return NQCopyAccess::cloneObject<X>(this);     \
  }                                                \
  X* X::cloneAttributes() const {                  \
    return NQCopyAccess::cloneAttributes<X>(this); \
  }                                                \
  X* X::castDown(const NQObject* object) {         \
    return NQCopyAccess::castDown<X>(object);      \
  }
#define NQ_COPY_OPERATIONS_IMPL(X)              \
  NQ_COPY_ATTRIBUTES_IMPL(X)                    \
  void X::copyObject(const NQObject* source) {  \
    NQCopyAccess::copyObject<X>(*this, source); \
  }
// Those of a class whose copyObject() hands on to the virtual copyAttributes().
#define NQ_COPY_FORWARDED_IMPL(X)              \
  NQ_COPY_ATTRIBUTES_IMPL(X)                   \
  void X::copyObject(const NQObject* source) { \
    copyAttributes(source);                    \
  }
#define NQ_COPY_ATTRIBUTES_IMPL(X)                             \
  NQ_COPY_TYPED_IMPL(X)                                        \
  void X::copyAttributes(const NQObject* source) {             \
    NQCopyAccess::copyAttributes<X>(*this, source);            \
  }                                                            \
  NQObject* X::vCloneObject() const {                          \
    return NQCopyAccess::newCopy<X>(*this, NQ_DEEP_COPY);      \
  }                                                            \
  NQObject* X::vCloneAttributes() const {                      \
    return NQCopyAccess::newCopy<X>(*this, NQ_ATTRIBUTE_COPY); \
  }

// The whole protocol, in X's body alone, for a class that both kinds of copy copy
// member by member; its bases must not copy differently either. As with any class that
// declares constructors, one without arguments needs `X() = default;` to stay.
#define NQ_COPY_MEMBERWISE(X)                                  \
 public:                                                       \
  X(const X& source) = default;                                \
  X(const X& source, NQDeepFlagEnum) : X(source) {}            \
  X& operator=(const X& source) = default;                     \
  void copyObject(const NQObject* source) override {           \
    NQCopyAccess::copyObject<X>(*this, source);                \
  }                                                            \
  void copyAttributes(const NQObject* source) override {       \
    NQCopyAccess::copyAttributes<X>(*this, source);            \
  }                                                            \
  X* cloneObject() const {                                     \
    return NQCopyAccess::cloneObject<X>(this);                 \
  }                                                            \
  X* cloneAttributes() const {                                 \
    return NQCopyAccess::cloneAttributes<X>(this);             \
  }                                                            \
  static X* castDown(const NQObject* object) {                 \
    return NQCopyAccess::castDown<X>(object);                  \
  }                                                            \
                                                               \
 protected:                                                    \
  NQObject* vCloneObject() const override {                    \
    return NQCopyAccess::newCopy<X>(*this, NQ_DEEP_COPY);      \
  }                                                            \
  NQObject* vCloneAttributes() const override {                \
    return NQCopyAccess::newCopy<X>(*this, NQ_ATTRIBUTE_COPY); \
  }                                                            \
                                                               \
 private:                                                      \
  friend class ::NQCopyAccess;                                 \
  static void nqDeepRoutine(X& target, const X& source) {      \
    target = source;                                           \
  }                                                            \
  static void nqAttributeRoutine(X& target, const X& source) { \
    target = source;                                           \
  }

// Beside any of these lines: moves that move each member and base, after which the
// source is as what these leave. Only for classes of which every base moves too.
#define NQ_MOVE_MEMBERS(X)                     \
 public:                                       \
  X(X&& source) noexcept = default;            \
  X& operator=(X&& source) noexcept = default; \
                                               \
 private:

// Both routines of a class whose two kinds of copy are the same: the base's
// routine of the same kind, then X's private copyFields(const X& source).
#define NQ_COPY_ALIKE_IMPL(X, BASE)                \
  void X::X##deepCopy(const X& source) {           \
    NQCopyAccess::deep<BASE>(*this, source);       \
    copyFields(source);                            \
  }                                                \
  void X::X##attributeCopy(const X& source) {      \
    NQCopyAccess::attributes<BASE>(*this, source); \
    copyFields(source);                            \
  }

// For a plain value, instead of NQ_COPY_PROTOCOL: both kinds of copy are the same
// (the base's routine, then the private copyFields(const X&)), and inline, so that
// a copy costs what copying the fields costs. The default constructor stands for
// init(), and copying a value onto itself must be harmless.
#define NQ_COPY_VALUE(X, BASE)                     \
  NQ_COPY_ACCESS(X)                                \
  void X##deepCopy(const X& source) {              \
    NQCopyAccess::deep<BASE>(*this, source);       \
    copyFields(source);                            \
  }                                                \
  void X##attributeCopy(const X& source) {         \
    NQCopyAccess::attributes<BASE>(*this, source); \
    copyFields(source);                            \
  }                                                \
  NQ_COPY_MEMBERS(X)

// Its constructors and assignment, below the class in the header;
// NQ_COPY_OPERATIONS_IMPL or NQ_COPY_FORWARDED_IMPL goes into the source.
#define NQ_COPY_VALUE_INLINE(X)                             \
  inline X::X(const X& source, NQDeepFlagEnum) {            \
    NQCopyAccess::deep<X>(*this, source);                   \
  }                                                         \
  inline X::X(const X& source) : X(source, NQ_DEEP_COPY) {} \
  inline X& X::operator=(const X& source) {                 \
    NQCopyAccess::deep<X>(*this, source);                   \
    return *this;                                           \
  }

#endif  // NQ_CORE_COPY_PROTOCOL_H
