#include "nq/core/copy_protocol.h"

#include <gtest/gtest.h>

#include <concepts>
#include <memory>
#include <new>
#include <string>

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

// The shortest a class can be, and one derived from it.
class Place : public NQObject {
  NQ_COPY_MEMBERWISE(Place)

 public:
  explicit Place(const char* itsName = "") : name(itsName) {}
  std::string name;
};
class Square : public Place {
  NQ_COPY_MEMBERWISE(Square)

 public:
  explicit Square(const char* itsName = "", int itsTrees = 0)
      : Place(itsName), trees(itsTrees) {}
  int trees;
};

TEST(CopyProtocol, HoldsForClassesThatCopyTheirMembers) {
  Place place("here");
  checkCopyProtocol(
      place, [] { return std::make_unique<Place>("there"); },
      [](const Place& a, const Place& b) { return a.name == b.name; });
  Square square("market", 3);
  checkCopyProtocol(
      square, [] { return std::make_unique<Square>("old", 4); },
      [](const Square& a, const Square& b) {
        return a.name == b.name && a.trees == b.trees;
      });
  static_assert(std::copyable<Square>);
}

// A class whose copies need memory that there may not be.
class Hungry : public NQObject {
  NQ_COPY_MEMBERWISE(Hungry)

 public:
  Hungry() = default;

 private:
  struct Food {
    Food() = default;
    Food(const Food&) { throw std::bad_alloc(); }
    Food& operator=(const Food&) = default;
  } food_;
};

TEST(CopyProtocol, ClonesWithoutMemoryAreNull) {
  const Hungry hungry;
  EXPECT_EQ(hungry.cloneObject(), nullptr);
  EXPECT_EQ(hungry.cloneAttributes(), nullptr);
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
