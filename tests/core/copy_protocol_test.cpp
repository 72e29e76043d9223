#include "nq/core/copy_protocol.h"

#include <gtest/gtest.h>

#include <memory>

#include "tests/support/copy_protocol_check.h"
#include "tests/support/counted.h"

namespace {

// A class as an application would write one, two levels below the root, that
// owns a part: deep copies clone it, attribute copies leave it out.
class Labelled : public NQCounted {
  NQ_COPY_PROTOCOL(Labelled)

 public:
  explicit Labelled(int value = 0, NQCounted* part = nullptr)
      : NQCounted(value), part_(part) {}

  const NQCounted* pPart() const { return part_.get(); }

 protected:
  void init() { part_.reset(); }

 private:
  std::unique_ptr<NQCounted> part_;
};

NQ_COPY_PROTOCOL_IMPL(Labelled)

void Labelled::LabelleddeepCopy(const Labelled& source) {
  NQCopyAccess::deep<NQCounted>(*this, source);
  part_.reset(source.part_ ? source.part_->cloneObject() : nullptr);
}

void Labelled::LabelledattributeCopy(const Labelled& source) {
  NQCopyAccess::attributes<NQCounted>(*this, source);
}

TEST(CopyProtocol, HoldsForAnApplicationsClassWithOwnedParts) {
  const int before = NQCounted::live();
  {
    Labelled sample(5, new NQCounted(6));
    checkCopyProtocol(
        sample, [] { return std::make_unique<Labelled>(1); },
        [](const Labelled& a, const Labelled& b) {
          return a.value() == b.value() && b.pPart() != nullptr &&
                 a.pPart() != b.pPart() && a.pPart()->value() == b.pPart()->value();
        },
        [](const Labelled& a, const Labelled& b) {
          return a.value() == b.value() && b.pPart() == nullptr;
        });
  }
  EXPECT_EQ(NQCounted::live(), before);
}

TEST(CopyProtocol, ClonesThroughABaseHaveTheDynamicType) {
  const Labelled sample(5);
  const NQCounted& base = sample;
  const std::unique_ptr<NQCounted> clone(base.cloneObject());
  EXPECT_NE(dynamic_cast<Labelled*>(clone.get()), nullptr);
}

TEST(NQObject, IsAPlainIdentity) {
  NQObject object;
  const NQObject copy(object, NQ_DEEP_COPY);
  EXPECT_EQ(object.graphFileID(), reinterpret_cast<nqInt64>(&object));
  EXPECT_NE(copy.graphFileID(), object.graphFileID());
  EXPECT_EQ(object.localID(), -2147483647 - 1);
  EXPECT_EQ(object.isOMLObject(), 0);
  EXPECT_EQ(&(object = copy), &object);
  const std::unique_ptr<NQObject> clone(object.cloneObject());
  EXPECT_NE(clone.get(), &object);
  checkNullReceiver<NQObject>();
  EXPECT_EQ(object.fileOutput("never_made", "text", nullptr), NQ_NO_ERROR);
}

}  // namespace
