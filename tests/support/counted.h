// counted.h -- an object that knows how many of its kind are alive.

#ifndef NQ_TESTS_SUPPORT_COUNTED_H
#define NQ_TESTS_SUPPORT_COUNTED_H

#include "nq/core/copy_protocol.h"

// Every ownership test takes live() before and compares it after.
class NQCounted : public NQObject {
  NQ_COPY_PROTOCOL(NQCounted)

 public:
  explicit NQCounted(int value = 0) : value_(value) { ++liveCount(); }
  ~NQCounted() override { --liveCount(); }

  int value() const { return value_; }
  static int live() { return liveCount(); }

 protected:
  void init() {
    value_ = 0;
    ++liveCount();
  }

 private:
  void copyFields(const NQCounted& source) { value_ = source.value_; }
  static int& liveCount() {
    static int count = 0;
    return count;
  }

  int value_;
};

#endif  // NQ_TESTS_SUPPORT_COUNTED_H
