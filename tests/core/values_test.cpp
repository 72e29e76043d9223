#include <gtest/gtest.h>

#include <algorithm>
#include <compare>
#include <concepts>
#include <limits>
#include <memory>
#include <sstream>
#include <string>
#include <type_traits>
#include <unordered_set>
#include <vector>

#include "nq/core/algorithm.h"
#include "nq/core/boxed_values.h"
#include "nq/core/object_with_id.h"
#include "nq/core/text.h"
#include "nq/core/unique_id.h"
#include "tests/support/copy_protocol_check.h"

namespace {

// Each value is below the next, and equal to itself alone in every respect.
template <class Value>
void expectValues(const std::vector<Value>& ascending,
                  const std::vector<std::string>& texts) {
  static_assert(std::copyable<Value> && std::three_way_comparable<Value>);
  std::vector<Value> sorted(ascending.rbegin(), ascending.rend());
  std::sort(sorted.begin(), sorted.end());
  EXPECT_EQ(sorted, ascending);
  const std::unordered_set<Value> all(ascending.begin(), ascending.end());
  EXPECT_EQ(all.size(), ascending.size());
  for (std::size_t i = 0; i < ascending.size(); ++i) {
    EXPECT_TRUE(all.contains(ascending[i]));
    std::ostringstream out;
    out << ascending[i];
    EXPECT_EQ(out.str(), texts[i]);
  }
}

TEST(Texts, AreValues) {
  const std::vector<std::string> texts = {"", "", "Z", "a", "ab", "\xe9"};
  expectValues<NQText>(
      {NQText(), NQText(""), NQText("Z"), NQText("a"), NQText("ab"), NQText("\xe9")},
      texts);
  expectValues<NQInternalText>(
      {NQInternalText(nullptr), NQInternalText(""), NQInternalText("Z"),
       NQInternalText("a"), NQInternalText("ab"), NQInternalText("\xe9")},
      texts);
}

template <class Box, class Value>
void checkBox(Value value) {
  Box box(value);
  checkCopyProtocol(
      box, [] { return std::make_unique<Box>(); },
      [](const Box& a, const Box& b) { return a.value() == b.value(); });
  EXPECT_EQ(Box().value(), Value{0});
  EXPECT_EQ(box.value(Value{7}), Value{7});
  EXPECT_EQ(box.value(), Value{7});
  expectValues<Box>({Box(Value{-1}), Box(), Box(Value{5}), Box(Value{40})},
                    {"-1", "0", "5", "40"});
}

TEST(BoxedValues, BothKindsOfCopyTakeTheValue) {
  checkBox<NQInt>(std::numeric_limits<int>::min());
  checkBox<NQLong>(std::numeric_limits<nqLong>::max());
  checkBox<NQDouble>(-1.5e300);
}

TEST(NQObjectWithID, HasLocalIdZeroAndKeepsItInClones) {
  const NQObjectWithID object;
  EXPECT_EQ(object.localID(), 0);
  EXPECT_EQ(object.graphFileID(), reinterpret_cast<nqInt64>(&object));
  const std::unique_ptr<NQObjectWithID> clones[] = {
      std::unique_ptr<NQObjectWithID>(object.cloneObject()),
      std::unique_ptr<NQObjectWithID>(object.cloneAttributes())};
  for (const auto& clone : clones) {
    ASSERT_NE(clone, nullptr);
    EXPECT_EQ(clone->localID(), 0) << "not a plain NQObject";
    EXPECT_NE(clone.get(), &object);
  }
  checkNullReceiver<NQObjectWithID>();
}

TEST(NQUniqueID, NamesAnObjectByAddressAndLocalId) {
  const NQObject plain;
  const NQObjectWithID withID;
  const auto addressOf = [](const NQObject& o) { return reinterpret_cast<nqInt64>(&o); };

  const NQUniqueID id(&plain);
  EXPECT_EQ(id.firstID(), addressOf(plain));
  EXPECT_EQ(id.secondID(), nqInt64{-2147483648LL}) << "sign-extended";
  EXPECT_EQ(id.isNullID(), 0);

  NQUniqueID other;
  EXPECT_EQ(other.isNullID(), 1);
  EXPECT_EQ(NQUniqueID(0, 1).isNullID(), 0);
  EXPECT_EQ(NQUniqueID(1).isNullID(), 0);
  other.getObjectID(&withID);
  EXPECT_EQ(other, NQUniqueID(addressOf(withID), 0));
  EXPECT_NE(other, id);
  EXPECT_EQ(&(other = &plain), &other);
  EXPECT_EQ(other, id);
  other.getObjectID(nullptr);
  EXPECT_EQ(other.isNullID(), 1);
  other = id;
  other = static_cast<const NQObject*>(nullptr);
  EXPECT_EQ(other.isNullID(), 1);
}

TEST(NQUniqueID, WritesTheLowHalvesAsText) {
  const struct {
    NQUniqueID id;
    const char* text;
  } kRows[] = {
      {NQUniqueID(0x123456789, 5), "ID2345678900000005"},
      {NQUniqueID(), "ID0000000000000000"},
      {NQUniqueID(-1, -2147483648LL), "IDffffffff80000000"},
      {NQUniqueID(0x7fffabcd00000000, 0xA0), "ID00000000000000a0"},
  };
  for (const auto& row : kRows) {
    char buffer[20] = "...................";  // one byte more than the text takes
    EXPECT_EQ(row.id.idString(buffer), buffer);
    EXPECT_STREQ(buffer, row.text);
    EXPECT_EQ(buffer[18], '\0');
  }
}

// Writes down its steps.
class Recorder : public NQMORAlgorithm {
 public:
  void emptyInformation() override { steps += "empty "; }
  void initialize() override { steps += "initialize "; }
  void algorithmBody() override { steps += "body "; }
  void finalize() override { steps += "finalize "; }

  std::string steps;
};

class BodyOnly : public NQMORAlgorithm {
 public:
  void algorithmBody() override { ++runs; }

  int runs = 0;
};

TEST(NQMORAlgorithm, RunsItsStepsInOrder) {
  Recorder recorder;
  NQMORAlgorithm& algorithm = recorder;
  algorithm.run();
  EXPECT_EQ(recorder.steps, "empty initialize body finalize ");
  BodyOnly bodyOnly;
  bodyOnly.run();
  bodyOnly.run();
  EXPECT_EQ(bodyOnly.runs, 2);
}

TEST(NQMORAlgorithm, IsNotAValue) {
  static_assert(!std::is_copy_constructible_v<Recorder>);
  Recorder source;
  source.run();
  Recorder target;
  NQMORAlgorithm& algorithm = target;
  algorithm = source;
  algorithm.copyObject(&source);
  algorithm.copyAttributes(&source);
  EXPECT_EQ(target.steps, "");
  const std::unique_ptr<NQObject> clone(source.cloneObject());
  EXPECT_EQ(dynamic_cast<NQMORAlgorithm*>(clone.get()), nullptr);
  EXPECT_EQ(NQMORAlgorithm::castDown(static_cast<NQObject*>(&source)), &source);
}

}  // namespace
