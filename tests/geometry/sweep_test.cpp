#include "nq/geometry/sweep.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <memory>
#include <random>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "nq/geometry/hor_segment.h"
#include "nq/geometry/rect.h"
#include "tests/support/copy_protocol_check.h"
#include "tests/support/counted.h"
#include "tests/support/sorted_order.h"

namespace {

constexpr int kMax = std::numeric_limits<int>::max();
constexpr int kMin = std::numeric_limits<int>::min();

struct Segment : NQObject {
  Segment(char segmentName, int startsAt, int endsAt, int liesAt = 0)
      : name(segmentName), start(startsAt), end(endsAt), place(liesAt) {}
  char name;
  int start, end, place;
};

Segment& segment(NQObject* object) {
  return *static_cast<Segment*>(object);
}

// Writes down what happens: "+a" as a comes, "-a" as it leaves, "!" in front of a
// removal of what is not on the line.
class Diary : public NQSweep {
 public:
  explicit Diary(const NQDList* segments) : NQSweep(segments, NQ_SWEEP_VERTICAL) {}

  std::string text;
  long placesAsked = 0;
  std::function<void(NQObject*)> atInsertion = [](NQObject*) {};
  std::function<void(NQObject*)> atRemoval = [](NQObject*) {};

 protected:
  int virtualStartValue(NQObject* object) override { return segment(object).start; }
  int virtualEndValue(NQObject* object) override { return segment(object).end; }
  int virtualSweepLineValue(NQObject* object) override {
    ++placesAsked;
    return segment(object).place;
  }
  void virtualSegmentInserted(NQObject* object) override {
    EXPECT_EQ(pSweepLine()->searchObject(object), pInsertedCell());
    note("+", object);
    atInsertion(object);
  }
  void virtualSegmentRemoving(NQObject* object) override {
    EXPECT_EQ(pInsertedCell(), nullptr);
    note(pSweepLine()->searchObject(object) == nullptr ? "!-" : "-", object);
    atRemoval(object);
  }

 private:
  void note(const char* what, NQObject* object) {
    if (text.size() < 1000) text += std::string(what) + segment(object).name;
  }
};

std::string onTheLine(const NQSweep& sweep) {
  std::string names;
  for (NQObject* const each : *sweep.pSweepLine()) names += segment(each).name;
  return names;
}

NQDList listOf(std::vector<Segment>& segments) {
  NQDList list;
  for (Segment& each : segments) list.appendObject(&each);
  return list;
}

TEST(NQSweep, MeetsEventsInTheirOrder) {
  struct Row {
    std::vector<Segment> segments;
    const char* text;
    const char* left;  // on the line after the run
  };
  std::vector<Row> rows = {
      {{}, "", ""},
      {{{'a', 3, 3}}, "+a-a", ""},
      {{{'a', 0, 5}, {'b', 5, 9}}, "+a+b-a-b", ""},
      {{{'b', 5, 9}, {'a', 0, 4}}, "+a-a+b-b", ""},
      // It ends before it begins, and so stays.
      {{{'a', 5, 2}}, "!-a+a", "a"},
      {{{'a', 5, 2}, {'b', 0, 9}}, "+b!-a+a-b", "a"},
      // At the ends of the range.
      {{{'a', 0, kMax}}, "+a-a", ""},
      {{{'a', kMax, kMax}, {'b', kMin, kMax}}, "+b+a-a-b", ""},
      {{{'a', kMin, kMin}, {'b', kMax, kMin}}, "+a-a!-b+b", "b"},
      {{{'a', kMax, kMax}, {'b', kMax, 0}}, "!-b+a+b-a", "b"},
      // All alike: the order of the list.
      {{{'a', 1, 1, 7}, {'b', 1, 1, 7}, {'c', 1, 1, 7}}, "+a+b+c-a-b-c", ""},
  };
  for (Row& row : rows) {
    SCOPED_TRACE(row.text);
    NQDList list = listOf(row.segments);
    list.appendObject(nullptr);
    Diary sweep(&list);
    sweep.run();
    EXPECT_EQ(sweep.text, row.text);
    EXPECT_EQ(onTheLine(sweep), row.left);
    EXPECT_EQ(sweep.pEndSegmentList()->length(), 0);
    EXPECT_EQ(static_cast<std::size_t>(list.length()), row.segments.size() + 1);
    sweep.text.clear();
    sweep.run();
    EXPECT_EQ(sweep.text + onTheLine(sweep), "") << "the events are used up";
  }
  Diary none(nullptr);
  none.run();
  EXPECT_EQ(none.text, "");
}

TEST(NQSweep, NeedsALineToSweep) {
  std::vector<Segment> segments = {{'a', 0, 1}};
  const NQDList list = listOf(segments);
  Diary sweep(&list);
  EXPECT_EQ(sweep.pSweepLine(), nullptr);
  sweep.algorithmBody();
  EXPECT_EQ(sweep.pEndSegmentList()->length(), 1);
  sweep.run();
  EXPECT_EQ(sweep.text, "+a-a");
  EXPECT_EQ(sweep.sweepType(), NQ_SWEEP_VERTICAL);
}

// A segment that stands twice in the list comes and leaves twice.
TEST(NQSweep, TakesTheSameSegmentTwice) {
  std::vector<Segment> segments = {{'a', 0, 5, 3}, {'b', 2, 3, 3}};
  NQDList list = listOf(segments);
  list.appendObject(&segments[0]);
  struct Twice : Diary {
    using Diary::Diary;
    void virtualSegmentInserted(NQObject* object) override {
      text += segment(object).name;
    }
  } sweep(&list);
  sweep.run();
  EXPECT_EQ(sweep.text, "aab-b-a-a");
  EXPECT_EQ(sweep.pSweepLine()->length(), 0);
}

TEST(NQSweep, BearsHooksThatInterfere) {
  std::vector<Segment> segments = {{'a', 0, 9, 1}, {'b', 1, 8, 2}, {'c', 2, 7, 3}};
  const NQDList list = listOf(segments);
  {
    Diary sweep(&list);  // takes segments off the line by itself
    sweep.atRemoval = sweep.atInsertion = [&](NQObject* object) {
      auto& line = *sweep.pSweepLine();
      line.discardCell(line.searchObject(object));
    };
    sweep.run();
    EXPECT_EQ(sweep.text, "+a+b+c!-c!-b!-a");
  }
  {
    Diary sweep(&list);  // cancels the ends to come
    sweep.atRemoval = [&](NQObject*) { sweep.pEndSegmentList()->deleteAllCells(); };
    sweep.run();
    EXPECT_EQ(sweep.text, "+a+b+c-c");
    EXPECT_EQ(onTheLine(sweep), "ab");
  }
  {
    Diary sweep(&list);  // cancels one end, by the cell that it had from the beginning
    NQDListCell* const endOfA = sweep.pEndSegmentList()->pFirstCell();
    sweep.atInsertion = [&](NQObject* object) {
      if (segment(object).name == 'c') sweep.pEndSegmentList()->discardCell(endOfA);
    };
    sweep.run();
    EXPECT_EQ(sweep.text, "+a+b+c-c-b");
    EXPECT_EQ(onTheLine(sweep), "a");
  }
  {
    Diary sweep(&list);  // begins anew within the run
    sweep.atInsertion = [&](NQObject* object) {
      if (segment(object).name == 'b') sweep.run();
    };
    sweep.run();
    EXPECT_EQ(sweep.text, "+a+b+c-c!-b!-a");
  }
}

TEST(NQSegSortedBinTree, KnowsTheNeighbours) {
  std::vector<Segment> segments = {{'a', 0, 9, 30}, {'b', 1, 9, 10}, {'c', 2, 9, 20}};
  const NQDList list = listOf(segments);
  Diary sweep(&list);
  sweep.run();
  NQSegSortedBinTree line(&sweep);
  for (Segment& each : segments) line.addObject(&each);
  EXPECT_EQ(line.pPreceedingSegment(&segments[1]), nullptr);
  EXPECT_EQ(line.pSucceedingSegment(&segments[1]), &segments[2]);
  EXPECT_EQ(line.pPreceedingSegment(&segments[0]), &segments[2]);
  EXPECT_EQ(line.pSucceedingSegment(&segments[0]), nullptr);
  Segment foreign('d', 0, 0, 20);
  EXPECT_EQ(line.pPreceedingSegment(&foreign), nullptr);
  EXPECT_EQ(line.pSucceedingSegment(nullptr), nullptr);
}

TEST(NQSegSortedBinTree, FollowsTheCopyProtocol) {
  const int before = NQCounted::live();
  NQSegSortedBinTree sample;  // without an owner: by address
  NQCounted one(1);
  NQCounted two(2);
  for (NQCounted* const each : {&two, &one}) sample.addObject(each);
  std::vector<std::unique_ptr<NQObject>> clones;
  checkCopyProtocol(
      sample, [] { return std::make_unique<NQSegSortedBinTree>(); },
      [&](const NQSegSortedBinTree& a, const NQSegSortedBinTree& b) {
        const bool equal =
            a.length() == b.length() && b.exclusiveColors() == 1 &&
            std::equal(a.begin(), a.end(), b.begin(), [](auto* x, auto* y) {
              return NQCounted::castDown(x)->value() == NQCounted::castDown(y)->value();
            });
        for (NQObject* const each : b) {
          const bool known = each == &one || each == &two ||
                             std::any_of(clones.begin(), clones.end(), [&](auto& clone) {
                               return clone.get() == each;
                             });
          if (!known) clones.emplace_back(each);
        }
        return equal;
      },
      [](const NQSegSortedBinTree&, const NQSegSortedBinTree& b) {
        return b.length() == 0 && b.exclusiveColors() == 1;
      });
  clones.clear();
  EXPECT_EQ(NQCounted::live(), before + 2);
}

// Beside a model of the line, through random sweeps.
TEST(NQSweep, KeepsTheLineLikeAnOrderedSet) {
  std::mt19937 random(11);
  for (const int range : {1, 20, 100000}) {
    const auto below = [&](int bound) {
      return static_cast<int>(random() % static_cast<unsigned>(bound));
    };
    std::vector<Segment> segments;
    for (int i = 0; i < 400; ++i) {
      const int start = below(range);
      segments.emplace_back('s', start, start + below(range), below(range));
    }
    const NQDList list = listOf(segments);
    Diary sweep(&list);
    std::set<std::pair<int, NQObject*>> model;
    int last = kMin;
    const auto check = [&](NQObject* object, int value) {
      ASSERT_GE(value, last);
      last = value;
      const std::string fault =
          orderFault(*sweep.pSweepLine(), [](const auto* a, const auto* b) {
            const std::pair first(segment(a->pObject()).place, a->pObject());
            const std::pair second(segment(b->pObject()).place, b->pObject());
            return first < second ? -1 : 1;
          });
      ASSERT_EQ(fault, "");
      ASSERT_TRUE(std::equal(model.begin(), model.end(), sweep.pSweepLine()->begin(),
                             sweep.pSweepLine()->end(),
                             [](auto& a, NQObject* b) { return a.second == b; }));
      const auto own = model.find({segment(object).place, object});
      ASSERT_NE(own, model.end());
      EXPECT_EQ(sweep.pSweepLine()->pPreceedingSegment(object),
                own == model.begin() ? nullptr : std::prev(own)->second);
      EXPECT_EQ(sweep.pSweepLine()->pSucceedingSegment(object),
                std::next(own) == model.end() ? nullptr : std::next(own)->second);
    };
    sweep.atInsertion = [&](NQObject* object) {
      model.insert({segment(object).place, object});
      check(object, segment(object).start);
    };
    sweep.atRemoval = [&](NQObject* object) {
      check(object, segment(object).end);
      model.erase({segment(object).place, object});
    };
    sweep.run();
    EXPECT_TRUE(model.empty());
    EXPECT_EQ(sweep.pSweepLine()->length(), 0);
  }
}

// Pairs of rectangles that touch, found by a sweep: whoever comes looks at
// everybody who is there and not wholly above or below.
TEST(NQSweep, FindsTheOverlapsThatAllPairsGive) {
  class Overlaps : public NQSweep {
   public:
    explicit Overlaps(const NQDList* rects) : NQSweep(rects, NQ_SWEEP_HORIZONTAL) {}
    std::set<std::pair<const NQObject*, const NQObject*>> pairs;

   protected:
    static const NQRect& rect(const NQObject* object) {
      return *static_cast<const NQRect*>(object);
    }
    int virtualStartValue(NQObject* o) override { return rect(o).left(); }
    int virtualEndValue(NQObject* o) override { return rect(o).right(); }
    int virtualSweepLineValue(NQObject* o) override { return rect(o).bottom(); }
    void virtualSegmentInserted(NQObject* o) override {
      for (const NQObject* const other : *pSweepLine()) {
        if (rect(other).bottom() > rect(o).top()) break;
        if (other != o && rect(other).top() >= rect(o).bottom()) {
          EXPECT_TRUE(pairs.insert(std::minmax<const NQObject*>(o, other)).second);
        }
      }
    }
  };
  std::mt19937 random(17);
  for (const unsigned extent : {20U, 1000U, 100000U}) {
    std::vector<NQRect> rects;
    for (int i = 0; i < 300; ++i) {
      const auto below = [&](unsigned bound) {
        return static_cast<nqLong>(random() % bound) - static_cast<nqLong>(bound / 2);
      };
      const NQPoint corner(below(extent), below(extent));
      rects.emplace_back(corner.x(), corner.y(), corner.x() + below(extent / 4),
                         corner.y() + below(extent / 4));
    }
    NQDList list;
    for (NQRect& rect : rects) list.appendObject(&rect);
    Overlaps overlaps(&list);
    overlaps.run();
    decltype(overlaps.pairs) expected;
    for (const NQRect& a : rects) {
      for (const NQRect& b : rects) {
        if (&a < &b && a.left() <= b.right() && b.left() <= a.right() &&
            a.bottom() <= b.top() && b.bottom() <= a.top()) {
          expected.insert({&a, &b});
        }
      }
    }
    EXPECT_EQ(overlaps.pairs, expected);
  }
}

// The worst order for a tree without balance: every segment goes to the end.
TEST(NQSweep, StaysQuickWhenSegmentsComeInTheOrderOfTheirAddresses) {
  constexpr int kCount = 100000;
  std::vector<Segment> segments;
  segments.reserve(kCount);
  for (int i = 0; i < kCount; ++i) segments.emplace_back('s', i, kCount + i);
  const NQDList list = listOf(segments);
  // Without the diary's own searches.
  struct Counter : Diary {
    using Diary::Diary;
    void virtualSegmentInserted(NQObject*) override {}
    void virtualSegmentRemoving(NQObject*) override {}
  } sweep(&list);
  sweep.run();
  EXPECT_EQ(sweep.pSweepLine()->length(), 0);
  // Two values for each comparison, 2 log2(n + 1) levels, coming and leaving.
  EXPECT_LT(static_cast<double>(sweep.placesAsked),
            2 * 2 * kCount * 2 * std::log2(kCount + 1));
}

TEST(NQSweepSegmentSort, SortsByStartsEndsOrNotAtAll) {
  std::vector<Segment> segments = {{'a', 3, 5}, {'b', 1, 9}, {'c', 2, 5}, {'d', 1, kMin}};
  const char* const kExpected[] = {"bdca", "dacb", "abcd", "abcd"};
  Diary sweep(nullptr);
  for (int row = 0; row < 4; ++row) {
    NQDList list = listOf(segments);
    NQSweepSegmentSort(row == 3 ? nullptr : &sweep, row == 3 ? 0 : row)
        .quickSort(&list, 0);
    std::string names;
    for (NQObject* const each : list) names += segment(each).name;
    EXPECT_EQ(names, kExpected[row]) << row;
  }
}

TEST(NQHorSegment, FollowsTheCopyProtocol) {
  NQObject objects[3];
  NQHorSegment sample;
  sample.coordinate = 12;
  EXPECT_EQ(sample.sizeOf(), 48);
  for (NQObject& each : objects) sample.pList()->appendObject(&each);
  EXPECT_EQ(sample.sizeOf(), 144);
  checkCopyProtocol(
      sample,
      [] {
        auto other = std::make_unique<NQHorSegment>();
        other->pList()->appendObject(nullptr);
        return other;
      },
      [](const NQHorSegment& a, const NQHorSegment& b) {
        return a.coordinate == b.coordinate && a.pList()->compare(b.pList()) == 1;
      },
      [](const NQHorSegment& a, const NQHorSegment& b) {
        return a.coordinate == b.coordinate && b.pList()->length() == 0;
      });
}

}  // namespace
