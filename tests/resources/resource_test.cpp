#include "nq/resources/resource.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "nq/geometry/point_list.h"
#include "nq/resources/color_resource.h"
#include "nq/resources/shape_resource.h"
#include "tests/resources/test_peer.h"
#include "tests/support/copy_protocol_check.h"
#include "tests/support/counted.h"
#include "tests/support/resource_check.h"

namespace {

constexpr nqLong kPermanent = 0x3FFFFFFF;

// Holds a number; the tens are the sort key, so that equal keys with unequal values
// are common.
class NumberResource : public NQResource {
  NQ_COPY_PROTOCOL(NumberResource)

 public:
  explicit NumberResource(NQResourceDB* database = nullptr, int value = 0)
      : NQResource(database), number_(value) {}

  int value() const { return number_.value(); }
  nqLong sortKey() const override { return value() / 10; }
  int isEqual(const NQResource* other) const override {
    return other != nullptr && castDown(other)->value() == value() ? 1 : 0;
  }

 protected:
  void init() { number_ = NQCounted(); }

 private:
  void copyFields(const NumberResource& source) { number_ = source.number_; }

  NQCounted number_;  // knows how many there are
};

NQ_COPY_PROTOCOL_IMPL(NumberResource)
NQ_COPY_ALIKE_IMPL(NumberResource, NQResource)

class NumberDB : public NQResourceDB {
 public:
  const NQResource* insertNumber(int value) {
    return insert(new NumberResource(this, value));
  }

 protected:
  NQResource* vNewResource() override { return new NumberResource(this, 55); }
};

// ---- Long sequences of operations beside a model

// What a database must do, told by walking.
class Model {
 public:
  using Entries = std::vector<ExpectedResource>;
  const Entries& entries() const { return entries_; }

  Entries::iterator find(const NQResource* probe) {
    return std::find_if(entries_.begin(), entries_.end(),
                        [probe](const ExpectedResource& entry) {
                          return valueOf(entry.resource) == valueOf(probe);
                        });
  }
  // What stands for an inserted resource is known only afterwards.
  void insert(const NQResource* answer) {
    const auto known = find(answer);
    if (known != entries_.end()) {
      ++known->holders;
      return;
    }
    const auto behind = std::find_if(
        entries_.begin(), entries_.end(), [answer](const ExpectedResource& entry) {
          return entry.resource->sortKey() > answer->sortKey();
        });
    entries_.insert(behind, {answer, 1, false});
  }
  // Whether the resource leaves.
  bool remove(const NQResource* resource) {
    const auto known = find(resource);
    if (known->holders > 0) --known->holders;
    if (known->holders > 0 || known->permanent) return false;
    erase(resource);
    return true;
  }
  void makeTransient(const NQResource* probe) {
    const auto known = find(probe);
    known->permanent = false;
    if (default_ == known->resource) default_ = nullptr;
    if (known->holders == 0) entries_.erase(known);
  }
  void makeDefault(const NQResource* answer) {
    if (default_ == nullptr) insert(answer);
    default_ = answer;
    find(answer)->permanent = true;
  }
  void erase(const NQResource* resource) {
    if (default_ == resource) default_ = nullptr;
    entries_.erase(find(resource));
  }
  void clear() { *this = Model(); }

 private:
  static int valueOf(const NQResource* resource) {
    return NumberResource::castDown(resource)->value();
  }

  Entries entries_;
  const NQResource* default_ = nullptr;
};

// Two databases whose resources wander between them.
struct Pair {
  explicit Pair(unsigned seed, int numberRange) : random(seed), range(numberRange) {}

  std::mt19937 random;
  int range;
  std::array<NumberDB, 2> databases;
  std::array<Model, 2> models;
  std::string log;

  int below(int limit) {
    return static_cast<int>(random() % static_cast<unsigned>(limit));
  }
  // A stored resource; null when there is none.
  const NQResource* anyStored(int which) {
    const auto& entries = models[static_cast<std::size_t>(which)].entries();
    if (entries.empty()) return nullptr;
    return entries[random() % entries.size()].resource;
  }
  void step();
  void insert(NumberDB& database, Model& model, const NQResource* resource);
  void remove(NumberDB& database, Model& model, const NQResource* resource);
};

void Pair::insert(NumberDB& database, Model& model, const NQResource* resource) {
  const bool held = resource->refCount() > 0;
  const int value = NumberResource::castDown(resource)->value();
  const auto known = model.find(resource);
  const NQResource* const stored =
      known == model.entries().end() ? nullptr : known->resource;
  const NQResource* const answer = database.insert(resource);
  ASSERT_NE(answer, nullptr);
  EXPECT_EQ(NumberResource::castDown(answer)->value(), value);
  if (stored != nullptr) {
    EXPECT_EQ(answer, stored);
  } else {
    EXPECT_EQ(answer == resource, !held) << "only what nobody holds is stored itself";
  }
  model.insert(answer);
}

void Pair::remove(NumberDB& database, Model& model, const NQResource* resource) {
  const int value = NumberResource::castDown(resource)->value();
  const bool leaves = model.remove(resource);
  const std::unique_ptr<NQResource> own(database.remove(resource));
  ASSERT_NE(own, nullptr);
  EXPECT_EQ(own.get() == resource, leaves);
  EXPECT_EQ(NumberResource::castDown(own.get())->value(), value);
  EXPECT_EQ(own->refCount(), 0);
  EXPECT_FALSE(NQTestPeer::isStored(*own));
  // Once more, it is not the database's any longer.
  EXPECT_EQ(database.remove(own.get()), own.get());
}

void Pair::step() {
  const int which = below(2);
  NumberDB& database = databases[static_cast<std::size_t>(which)];
  Model& model = models[static_cast<std::size_t>(which)];
  NumberDB& other = databases[static_cast<std::size_t>(1 - which)];
  Model& otherModel = models[static_cast<std::size_t>(1 - which)];
  const NumberResource probe(&database, below(range));
  const auto known = model.find(&probe);
  const bool isKnown = known != model.entries().end();
  const NQResource* const own = anyStored(which);
  const NQResource* const foreign = anyStored(1 - which);
  const int operation = below(100);
  log = "operation " + std::to_string(operation);
  if (operation < 30) {
    insert(database, model, new NumberResource(&other, probe.value()));
  } else if (operation < 40) {
    if (own != nullptr) insert(database, model, own);
  } else if (operation < 45) {
    if (foreign != nullptr) insert(database, model, foreign);
  } else if (operation < 75) {
    if (own != nullptr) remove(database, model, own);
  } else if (operation < 78) {
    // Neither its own nor an equal one is the very one.
    EXPECT_EQ(database.remove(&probe), &probe);
    EXPECT_EQ(database.remove(foreign), foreign);
  } else if (operation < 84) {
    EXPECT_EQ(database.makePermanent(&probe), isKnown ? 1 : 0);
    if (isKnown) known->permanent = true;
  } else if (operation < 88) {
    if (isKnown) model.makeTransient(&probe);  // while its resource is still there
    EXPECT_EQ(database.makeTransient(&probe), isKnown ? 1 : 0);
  } else if (operation < 92) {
    if (own != nullptr) {
      model.makeTransient(own);
      EXPECT_EQ(database.makeTransient(own), 1);
    }
  } else if (operation < 93) {
    database.makeAllPermanent();
    const auto all = model.entries();
    for (const ExpectedResource& entry : all)
      model.find(entry.resource)->permanent = true;
  } else if (operation < 95) {
    const auto all = model.entries();
    for (const ExpectedResource& entry : all) model.makeTransient(entry.resource);
    database.makeAllTransient();
  } else if (operation < 96) {
    EXPECT_EQ(database.copyPermanent(&other), 1);
    for (const ExpectedResource& entry : otherModel.entries()) {
      if (!entry.permanent) continue;
      const std::unique_ptr<NQResource> copy(entry.resource->cloneObject());
      const nqLong position = database.index(copy.get());
      ASSERT_GT(position, 0);
      const NQResource* const stored =
          NQResource::castDown(database.pResourceList()->pObjectInPosition(position));
      EXPECT_NE(stored, entry.resource);
      model.insert(stored);
      model.find(stored)->permanent = true;
    }
  } else if (operation < 98) {
    model.makeDefault(database.pDefaultResource());
  } else if (operation < 99) {
    if (own != nullptr) {
      model.erase(own);
      delete own;  // takes itself out
    }
  } else if (below(10) == 0) {
    database.empty();
    model.clear();
  }
}

TEST(NQResourceDB, DoesWhatItsModelDoes) {
  const int before = NQCounted::live();
  for (const int range : {20, 60, 2000}) {
    for (unsigned seed = 1; seed <= 4; ++seed) {
      Pair pair(seed, range);
      for (int step = 0; step < 2500; ++step) {
        pair.step();
        for (std::size_t which = 0; which < 2; ++which) {
          if (range == 2000 && step % 50 != 0) continue;
          const std::string fault =
              faultOf(pair.databases[which], pair.models[which].entries());
          ASSERT_EQ(fault, "") << "range " << range << ", seed " << seed << ", step "
                               << step << ", " << pair.log;
        }
        if (HasFailure()) return;
      }
      const auto stored =
          pair.models[0].entries().size() + pair.models[1].entries().size();
      EXPECT_EQ(NQCounted::live() - before, static_cast<int>(stored));
    }
    EXPECT_EQ(NQCounted::live(), before);
  }
}

// ---- Single rules

TEST(NQResourceDB, InternsEqualValues) {
  const int before = NQCounted::live();
  NumberDB database;
  const NQResource* const first = database.insertNumber(7);
  EXPECT_EQ(first->refCount(), 1);
  EXPECT_EQ(database.insertNumber(7), first);
  EXPECT_EQ(first->refCount(), 2);
  EXPECT_EQ(NQCounted::live(), before + 1) << "the second one is deleted";
  database.insertNumber(3);  // the same key: behind the first
  database.insertNumber(-40);
  EXPECT_EQ(first->index(), 2);
  EXPECT_EQ(database.pResourceList()->length(), 3);
  EXPECT_EQ(database.insert(nullptr), nullptr);
  EXPECT_EQ(database.remove(nullptr), nullptr);
  EXPECT_EQ(database.makePermanent(nullptr), 0);
  EXPECT_EQ(database.makeTransient(nullptr), 0);
  EXPECT_EQ(database.index(nullptr), -1);
  EXPECT_EQ(database.copyPermanent(nullptr), 0);
  EXPECT_EQ(database.copyPermanent(&database), 0);
  const NumberResource loose;
  EXPECT_EQ(loose.index(), -1);
}

TEST(NQResourceDB, KeepsPermanentResourcesThatNobodyHolds) {
  NumberDB database;
  const NQResource* const resource = database.insertNumber(1);
  EXPECT_EQ(database.makePermanent(resource), 1);
  EXPECT_EQ(database.makePermanent(resource), 1);
  EXPECT_EQ(resource->refCount(), kPermanent + 1);
  for (int round = 0; round < 3; ++round) {
    const std::unique_ptr<NQResource> own(database.remove(resource));
    EXPECT_NE(own.get(), resource);
    EXPECT_EQ(resource->refCount(), kPermanent);
  }
  const int before = NQCounted::live();
  EXPECT_EQ(database.makeTransient(resource), 1);
  EXPECT_EQ(NQCounted::live(), before - 1);
  EXPECT_EQ(database.pResourceList()->length(), 0);

  // So many holders that no more can be counted.
  const NQResource* const crowded = database.insertNumber(2);
  NQTestPeer::refCount(*crowded, 0x7FFFFFFF);
  EXPECT_EQ(database.insertNumber(2), crowded);
  EXPECT_EQ(crowded->refCount(), 0x7FFFFFFF);
}

TEST(NQResourceDB, ForgetsTheDefaultThatIsGone) {
  NumberDB database;
  const NQResource* const first = database.pDefaultResource();
  EXPECT_EQ(first->permanent(), 1);
  EXPECT_EQ(database.pDefaultResource(), first);
  EXPECT_EQ(first->refCount(), kPermanent + 1);
  database.makeTransient(first);
  EXPECT_EQ(first->refCount(), 1);
  EXPECT_EQ(database.pDefaultResource(), first) << "inserted once more";
  EXPECT_EQ(first->refCount(), kPermanent + 2);
  delete first;
  EXPECT_EQ(database.pResourceList()->length(), 0);
  const NQResource* const second = database.pDefaultResource();
  EXPECT_EQ(second->refCount(), kPermanent + 1);
  delete database.remove(second);
  database.makeAllTransient();
  EXPECT_EQ(database.pResourceList()->length(), 0);
  EXPECT_EQ(database.pDefaultResource()->permanent(), 1);
  database.empty();
  EXPECT_EQ(database.pResourceList()->length(), 0);
  EXPECT_EQ(database.pDefaultResource()->index(), 1);

  struct NoDefault : NQResourceDB {
    NQResource* vNewResource() override { return nullptr; }
  } none;
  EXPECT_EQ(none.pDefaultResource(), nullptr);
}

TEST(NQResource, CleansUpBehindItself) {
  NumberDB database;
  const NQResource* const stored = database.insertNumber(5);
  database.insertNumber(5);
  database.makePermanent(stored);
  auto* const resource = const_cast<NQResource*>(stored);
  resource->cleanup();
  EXPECT_EQ(resource->refCount(), 0);
  EXPECT_EQ(resource->pResourceDB(), nullptr);
  EXPECT_EQ(database.pResourceList()->length(), 0);
  resource->cleanup();
  EXPECT_EQ(database.insert(resource), resource) << "nobody holds it";
}

TEST(NQResource, CopiesStartWithNobody) {
  NumberDB database;
  NumberDB otherDatabase;
  NumberResource sample(&database, 12);
  checkCopyProtocol(
      sample, [&] { return std::make_unique<NumberResource>(nullptr, 3); },
      [](const NumberResource& a, const NumberResource& b) {
        return a.value() == b.value() && a.pResourceDB() == b.pResourceDB() &&
               b.refCount() == 0;
      });
  NumberResource bound(&otherDatabase, 1);
  bound = sample;
  EXPECT_EQ(bound.pResourceDB(), &otherDatabase) << "it had one";
  const NQResource* const stored = database.insertNumber(12);
  EXPECT_EQ(NumberResource(*NumberResource::castDown(stored)).refCount(), 0);

  // A stored resource that changes although it must not stays in its place.
  database.insertNumber(40);
  auto* const changed = NumberResource::castDown(stored);
  changed->copyObject(std::make_unique<NumberResource>(nullptr, 99).get());
  EXPECT_EQ(changed->refCount(), 1);
  EXPECT_EQ(changed->index(), 1);
  EXPECT_EQ(database.remove(changed), changed);
  delete changed;
  EXPECT_EQ(database.pResourceList()->length(), 1);
}

TEST(NQResourceDB, NumbersResourcesForFiles) {
  const int before = NQCounted::live();
  {
    NumberDB database;
    const NQResource* const a = database.insertNumber(1);
    const NQResource* const b = database.insertNumber(2);
    EXPECT_EQ(database.insertForFileSupport(a, 0), -1) << "not yet";
    EXPECT_EQ(database.pFileSupportResource(0), nullptr);
    EXPECT_EQ(database.pResourceListForFileSupport(), nullptr);
    for (int round = 0; round < 2; ++round) {
      database.preFileSupport();
      EXPECT_EQ(database.insertForFileSupport(nullptr, 1), -1);
      EXPECT_EQ(database.insertForFileSupport(b, 0), 0);
      EXPECT_EQ(database.insertForFileSupport(a, 1), 1);
      EXPECT_EQ(database.insertForFileSupport(b, 1), 2);
      EXPECT_EQ(database.insertForFileSupport(b, 0), 0) << "the first one";
      EXPECT_EQ(database.insertForFileSupport(a, 0), 1);
      const std::vector<const NQResource*> expected = {b, a, b};
      for (nqLong n = -1; n <= 3; ++n) {
        EXPECT_EQ(database.pFileSupportResource(n),
                  n < 0 || n > 2 ? nullptr : expected[static_cast<std::size_t>(n)]);
      }
      const NQSList& list = *database.pResourceListForFileSupport();
      EXPECT_TRUE(std::equal(list.begin(), list.end(), expected.begin(), expected.end()));
    }
    database.postFileSupport(0);
    database.postFileSupport(1);
    EXPECT_EQ(database.pResourceListForFileSupport(), nullptr);
    EXPECT_EQ(b->index(), 2);

    // Resources that are deleted with it: each once, stored or not.
    database.preFileSupport();
    const NQResource* const loose = new NumberResource(nullptr, 3);
    for (const NQResource* resource : {a, loose, a, loose}) {
      database.insertForFileSupport(resource, 1);
    }
    database.postFileSupport(1);
    EXPECT_EQ(b->index(), 1);
    EXPECT_EQ(NQCounted::live(), before + 1);
    database.preFileSupport();
    database.insertForFileSupport(b, 0);
    database.empty();
    EXPECT_EQ(database.pResourceListForFileSupport(), nullptr);
  }
  EXPECT_EQ(NQCounted::live(), before);
}

// ---- Colours and shapes

TEST(NQColorResource, IsEqualInChannelsAndTransparency) {
  NQColorResourceDB database;
  NQColor color(NQ_COLOR_DARK_RED);
  NQColorResource sample(&database, &color);
  checkCopyProtocol(
      sample, [] { return std::make_unique<NQColorResource>(); },
      [](const NQColorResource& a, const NQColorResource& b) {
        return a.isEqual(&b) == 1 && a.pResourceDB() == b.pResourceDB();
      });
  EXPECT_EQ(sample.sortKey(), 0x800000);
  EXPECT_EQ(sample.isEqual(nullptr), 0);
  const NQResource* const opaque = database.insert(sample.cloneObject());
  EXPECT_EQ(database.insert(color), opaque);
  EXPECT_EQ(opaque->refCount(), 2);
  color.transparent(1);
  const NQColorResource* const clear = database.insert(color);
  EXPECT_NE(clear, opaque);
  EXPECT_EQ(*clear->pColor(), color);
  EXPECT_EQ(clear->refCount(), 1);
  EXPECT_EQ(clear->pResourceDB(), &database);
  EXPECT_EQ(database.insert(new NQColorResource(&database, &color)), clear);
  EXPECT_EQ(clear->sortKey(), opaque->sortKey());
  EXPECT_EQ(clear->index(), opaque->index() + 1);

  const auto* const black = NQColorResource::castDown(database.pDefaultResource());
  EXPECT_EQ(black->pColor()->compare(std::make_unique<NQColor>().get()), 1);
  EXPECT_EQ(black->permanent(), 1);
  EXPECT_EQ(database.pDefaultResource(), black);
  EXPECT_EQ(black->index(), 1);
  EXPECT_EQ(NQColorResourceDB::castDown(&database), &database);
  EXPECT_EQ(NQResourceDB::castDown(&database), &database);
}

NQShape polygon(const std::vector<std::array<nqLong, 2>>& corners) {
  auto* const points = new NQPointDList;
  for (const auto& [x, y] : corners) points->appendPoint(new NQPoint(x, y));
  return NQShape(points);
}

TEST(NQShapeResource, IsEqualInItsWholeShape) {
  NQShapeResourceDB database;
  const NQShape triangle = polygon({{-1000, -1000}, {1000, -1000}, {0, 1000}});
  NQShapeResource sample(&database, &triangle);
  checkCopyProtocol(
      sample, [] { return std::make_unique<NQShapeResource>(); },
      [](const NQShapeResource& a, const NQShapeResource& b) {
        return a.isEqual(&b) == 1 && a.pResourceDB() == b.pResourceDB();
      });
  EXPECT_EQ(sample.isEqual(nullptr), 0);
  NQShape inset;
  inset.setInnerRect(NQRect(NQPoint(-500, -500), NQPoint(500, 500)));
  const struct {
    NQShape shape;
    nqLong key;
  } kRows[] = {
      {NQShape(static_cast<NQShapeTypeEnum>(9)), -1},
      {NQShape(NQShapeRectangle), 0},
      {inset, 0},
      {NQShape(NQShapeConvexPolygon), 0},
      {NQShape(NQShapeEllipse), 1},
      {NQShape(NQShapeNonConvexPolygon), 1},
      {triangle, 6},
      {polygon({{1000, -1000}, {0, 1000}, {-1000, -1000}}), 6},  // another order
      {polygon({{-999, -1000}, {1000, -1000}, {0, 1000}}), 6},
      {polygon({{-1000, -1000}, {1000, 1000}, {1000, -1000}, {-1000, 1000}}), 9},
  };
  nqLong position = 0;
  for (const auto& row : kRows) {
    const NQResource* const stored =
        database.insert(new NQShapeResource(&database, &row.shape));
    ++position;
    EXPECT_EQ(stored->sortKey(), row.key);
    EXPECT_EQ(stored->index(), position);
    EXPECT_EQ(database.insert(row.shape), stored);
    EXPECT_EQ(stored->refCount(), 2);
  }
  const auto* const byDefault = NQShapeResource::castDown(database.pDefaultResource());
  EXPECT_EQ(byDefault->pShape()->compare(std::make_unique<NQShape>().get()), 1);
  EXPECT_EQ(byDefault->index(), 2) << "the rectangle of before";
  EXPECT_EQ(NQShapeResourceDB::castDown(&database), &database);
}

// Equal whatever the order of the corners: what the class says, not the whole shape.
class AnyOrder : public NQShapeResource {
 public:
  using NQShapeResource::NQShapeResource;
  int isEqual(const NQResource* other) const override {
    return other != nullptr && other->sortKey() == sortKey();
  }
};

TEST(NQShapeResource, DerivedClassesSayWhatIsEqual) {
  NQShapeResourceDB database;
  const NQShape one = polygon({{-1000, -1000}, {1000, -1000}, {0, 1000}});
  const NQShape other = polygon({{1000, -1000}, {0, 1000}, {-1000, -1000}});
  const NQResource* const stored = database.insert(new AnyOrder(&database, &one));
  EXPECT_EQ(database.insert(new AnyOrder(&database, &other)), stored);
  EXPECT_EQ(stored->refCount(), 2);
}

TEST(NQShapeResource, ManyWithOneKeyAreFoundQuickly) {
  NQShapeResourceDB database;
  const NQResource* last = nullptr;
  for (nqLong x = 0; x < 20000; ++x) {
    const NQShape shape = polygon({{x, 0}, {x + 1, 0}, {0, 1}});
    last = database.insert(new NQShapeResource(&database, &shape));
    EXPECT_EQ(last->refCount(), 1);
  }
  EXPECT_EQ(last->index(), 20000);
  EXPECT_EQ(last->sortKey(), 6);
}

}  // namespace
