// copy_protocol_check.h -- one test of the copy protocol for every class.

#ifndef NQ_TESTS_SUPPORT_COPY_PROTOCOL_CHECK_H
#define NQ_TESTS_SUPPORT_COPY_PROTOCOL_CHECK_H

#include <gtest/gtest.h>

#include <memory>
#include <typeinfo>

#include "nq/core/copy_protocol.h"

// A null pointer that the compiler cannot see through.
template <class X>
X* opaqueNull() {
  X* volatile pointer = nullptr;
  return pointer;
}

// The only calls in the project that have a null receiver on purpose.
template <class X>
__attribute__((no_sanitize("undefined"))) void checkNullReceiver() {
  EXPECT_EQ(opaqueNull<X>()->cloneObject(), nullptr);
  EXPECT_EQ(opaqueNull<X>()->cloneAttributes(), nullptr);
}

// Runs every operation of the protocol on X.
//   sample      an object whose fields all differ from their defaults
//   makeOther   makes an X that differs from the sample (unique_ptr<X>)
//   deepEqual   whether its second argument is a proper deep copy of the first
//   attrEqual   the same for an attribute copy
// The sample must come out unchanged, and deepEqual(sample, sample) must hold
// when it is compared with a copy of itself.
template <class X, class Make, class DeepEqual, class AttrEqual>
void checkCopyProtocol(X& sample, Make makeOther, DeepEqual deepEqual,
                       AttrEqual attrEqual) {
  SCOPED_TRACE(typeid(X).name());
  const std::unique_ptr<X> witness(new X(sample, NQ_DEEP_COPY));
  ASSERT_FALSE(deepEqual(sample, *makeOther())) << "the other object must differ";
  const auto attributesOfOtherKind = static_cast<NQDeepFlagEnum>(7);

  EXPECT_TRUE(deepEqual(sample, *witness));
  EXPECT_TRUE(deepEqual(sample, X(sample)));
  EXPECT_TRUE(attrEqual(sample, X(sample, NQ_ATTRIBUTE_COPY)));
  EXPECT_TRUE(attrEqual(sample, X(sample, attributesOfOtherKind)));

  {
    const std::unique_ptr<X> target = makeOther();
    EXPECT_EQ(&(*target = sample), target.get());
    EXPECT_TRUE(deepEqual(sample, *target));
  }
  {
    const std::unique_ptr<X> target = makeOther();
    NQObject* const asRoot = target.get();
    asRoot->copyObject(&sample);
    EXPECT_TRUE(deepEqual(sample, *target));
  }
  {
    const std::unique_ptr<X> target = makeOther();
    NQObject* const asRoot = target.get();
    asRoot->copyAttributes(&sample);
    EXPECT_TRUE(attrEqual(sample, *target));
  }

  // Null and the object itself change nothing.
  X& self = sample;
  sample = self;
  sample.copyObject(nullptr);
  sample.copyAttributes(nullptr);
  sample.copyObject(&self);
  sample.copyAttributes(&self);
  EXPECT_TRUE(deepEqual(*witness, sample));

  // Clones have the dynamic type, and belong to the caller.
  const NQObject* const asRoot = &sample;
  EXPECT_EQ(X::castDown(asRoot), &sample);
  {
    const std::unique_ptr<X> typed(sample.cloneObject());
    const std::unique_ptr<NQObject> untyped(asRoot->cloneObject());
    ASSERT_NE(typed, nullptr);
    ASSERT_NE(untyped, nullptr);
    const NQObject& clone = *untyped;
    EXPECT_EQ(typeid(clone), typeid(X));
    EXPECT_NE(typed.get(), &sample);
    EXPECT_TRUE(deepEqual(sample, *typed));
    EXPECT_TRUE(deepEqual(sample, *X::castDown(untyped.get())));
  }
  {
    const std::unique_ptr<X> typed(sample.cloneAttributes());
    const std::unique_ptr<NQObject> untyped(asRoot->cloneAttributes());
    ASSERT_NE(typed, nullptr);
    ASSERT_NE(untyped, nullptr);
    const NQObject& clone = *untyped;
    EXPECT_EQ(typeid(clone), typeid(X));
    EXPECT_NE(typed.get(), &sample);
    EXPECT_TRUE(attrEqual(sample, *typed));
    EXPECT_TRUE(attrEqual(sample, *X::castDown(untyped.get())));
  }
  checkNullReceiver<X>();
}

// For classes whose two kinds of copy are the same.
template <class X, class Make, class Equal>
void checkCopyProtocol(X& sample, Make makeOther, Equal equal) {
  checkCopyProtocol(sample, makeOther, equal, equal);
}

#endif  // NQ_TESTS_SUPPORT_COPY_PROTOCOL_CHECK_H
