#include "nq/oml/oml_object.h"

#include <gtest/gtest.h>

#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "nq/containers/dlist.h"
#include "nq/containers/index_hash_table.h"
#include "nq/oml/oml_file.h"
#include "tests/support/copy_protocol_check.h"
#include "tests/support/test_peer.h"

namespace {

nqInt64 addressOf(const NQObject& object) {
  return static_cast<nqInt64>(reinterpret_cast<std::intptr_t>(&object));
}

// Has parts, and writes down in which order it is visited.
struct Part : NQOMLObject {
  explicit Part(char partName, std::string* partLog = nullptr)
      : name(partName), log(partLog) {}

  void preFileWrite(NQOMLFile* file) override {
    *log += name;
    NQOMLObject::preFileWrite(file);
  }
  void postFileWrite(NQOMLFile* file, NQFileCodeEnum code) override {
    *log += static_cast<char>(name - 'a' + 'A');
    NQOMLObject::postFileWrite(file, code);
    result = code;
  }
  void collectOwnedOMLObjects(NQDList& list) override {
    for (NQObject* part : parts) list.appendObject(part);
  }

  char name;
  std::string* log;
  std::vector<NQObject*> parts;
  NQFileCodeEnum result = NQ_FILE_OK;
};

// A file that keeps numbers, as during a write.
struct NumberingFile : NQOMLFile {
  NumberingFile() {
    NQTestPeer::state(*this).numbers = std::make_unique<NQIndexHashTable>(53, 8, 0);
  }
};

TEST(NQOMLObject, CopiesDoNotTakeTheNumber) {
  NQOMLObject sample;
  sample.iUserField(5);
  EXPECT_EQ(sample.graphFileID(), 5);
  EXPECT_EQ(sample.isOMLObject(), 1);
  EXPECT_EQ(sample.localID(), 0);
  EXPECT_EQ(NQOMLObject(sample).graphFileID(), 0);
  const std::unique_ptr<NQOMLObject> clone(sample.cloneObject());
  EXPECT_EQ(clone->graphFileID(), 0);
  NQOMLObject target;
  target.iUserField(7);
  target = sample;
  target.copyAttributes(&sample);
  EXPECT_EQ(target.graphFileID(), 7);
  EXPECT_EQ(NQOMLObject::castDown(clone.get()), clone.get());
  checkNullReceiver<NQOMLObject>();
}

TEST(NQOMLObject, TakesTheNumberThatTheTableHolds) {
  NQOMLObject object;
  object.prepareIDForGraphFile(nullptr);
  EXPECT_EQ(object.iUserField(), addressOf(object));
  NQIndexHashTable table(53, 8, -1);
  object.prepareIDForGraphFile(&table);
  EXPECT_EQ(object.iUserField(), addressOf(object));
  table.update(addressOf(object), 0);
  object.prepareIDForGraphFile(&table);
  EXPECT_EQ(object.iUserField(), 0);
  object.iUserField(9);
  object.finalizeIDForGraphFile();
  EXPECT_EQ(object.iUserField(), 0);
  object.iUserField(9);
  object.finalizeIDAfterWrite(nullptr, NQ_FILE_OK);
  EXPECT_EQ(object.iUserField(), 0);
}

TEST(NQOMLObject, MakesNumbersUnique) {
  const struct {
    nqInt64 largest;  // in the table
    nqLong errorValue;
    std::vector<nqInt64> before;
    std::vector<nqInt64> after;
  } kRows[] = {
      {40, 0, {16, 16, 32}, {16, 48, 32}},
      {40, 0, {32, 16, 16, 32, 16}, {32, 16, 48, 64, 56}},
      {40, 0, {0, 8, 0}, {48, 8, 56}},                 // nothing may bear the error value
      {40, 48, {48, 8, 8}, {64, 8, 56}},               // nor get it
      {0, 0, {8, 8, 8, 16, 24}, {8, 32, 40, 16, 24}},  // nor what stands there already
      {40, 0, {-5, -5, 3}, {-5, 48, 3}},
      // In a file only 32 bits are told apart.
      {40, 0, {16, 16 + (nqInt64{1} << 32), nqInt64{1} << 33}, {16, 48, 56}},
      {(nqInt64{1} << 32) + 8, 0, {16, 16}, {16, (nqInt64{1} << 32) + 24}},
      {(nqInt64{1} << 32) - 8,
       -1,
       {8, 8},
       {8, (nqInt64{1} << 32) + 16}},  // 0 is no number
      // Above the largest number of all they begin again.
      {9223372036854775800, 0, {1, 1, 1}, {1, 8, 16}},
      {9223372036854775791, 0, {1, 1, 1}, {1, 9223372036854775799, 9223372036854775807}},
      {40, 0, {}, {}},
  };
  for (const auto& row : kRows) {
    NQIndexHashTable table(53, 8, row.errorValue);
    table.update(1, row.largest);
    std::vector<NQOMLObject> objects(row.before.size());
    NQDList list;
    list.appendObject(nullptr);
    for (std::size_t n = 0; n < objects.size(); ++n) {
      objects[n].iUserField(row.before[n]);
      list.appendObject(&objects[n]);
    }
    NQOMLObject().makeIDsUniqueForGraphFile(nullptr, &list);
    NQOMLObject().makeIDsUniqueForGraphFile(&table, nullptr);
    NQOMLObject().makeIDsUniqueForGraphFile(&table, &list);
    for (std::size_t n = 0; n < objects.size(); ++n) {
      EXPECT_EQ(objects[n].iUserField(), row.after[n])
          << "object " << n << " of " << testing::PrintToString(row.before);
    }
  }
}

TEST(NQOMLObject, SortsTheListByTheOldNumbers) {
  std::vector<NQOMLObject> objects(4);
  NQDList list;
  for (std::size_t n = 0; n < objects.size(); ++n) {
    objects[n].iUserField(static_cast<nqInt64>(24 - 8 * n));
    list.appendObject(&objects[n]);
  }
  NQIndexHashTable table;
  NQOMLObject().makeIDsUniqueForGraphFile(&table, &list);
  std::string order;
  for (NQDListIter iter(&list, NQ_FORWARD); iter; ++iter) {
    order += std::to_string(NQOMLObject::castDown(iter.pObject()) - objects.data());
  }
  EXPECT_EQ(order, "3210");
}

TEST(NQOMLObject, VisitsItsPartsBeforeAndAfterAWrite) {
  NumberingFile file;
  std::string log;
  Part a('a', &log);
  Part b('b', &log);
  Part c('c', &log);
  Part d('d', &log);
  a.parts = {&b, nullptr, &d};
  b.parts = {&c};
  NQIndexHashTable& table = *file.pIndexHashTable();
  for (NQObject* part : {static_cast<NQObject*>(&b), static_cast<NQObject*>(&d)}) {
    table.update(addressOf(*part), 16);
  }
  a.preFileWrite(&file);
  EXPECT_EQ(log, "abcd");
  EXPECT_EQ(a.graphFileID(), addressOf(a));
  EXPECT_EQ(c.graphFileID(), addressOf(c));
  EXPECT_EQ(b.graphFileID(), 16);
  EXPECT_EQ(d.graphFileID(), 24);
  log.clear();
  a.postFileWrite(&file, NQ_FILE_CLOSE_ERROR);
  EXPECT_EQ(log, "ADBC");
  for (const Part* part : {&a, &b, &c, &d}) {
    EXPECT_EQ(part->graphFileID(), 0);
    EXPECT_EQ(part->result, NQ_FILE_CLOSE_ERROR);
  }

  // Without a table, and without a file, numbers are addresses.
  const NQOMLFile plain;
  for (NQOMLFile* other :
       {const_cast<NQOMLFile*>(&plain), static_cast<NQOMLFile*>(nullptr)}) {
    a.preFileWrite(other);
    EXPECT_EQ(d.graphFileID(), addressOf(d));
    a.postFileWrite(other, NQ_FILE_OK);
  }
}

TEST(NQOMLObject, CirclesOfPartsEndTheWalk) {
  std::string log;
  Part a('a', &log);
  Part b('b', &log);
  a.parts = {&b, &a};
  b.parts = {&a};
  for (int round = 0; round < 2; ++round) {
    log.clear();
    a.preFileWrite(nullptr);
    EXPECT_EQ(log, "abaa");
    EXPECT_EQ(b.graphFileID(), addressOf(b));
    log.clear();
    a.postFileWrite(nullptr, NQ_FILE_OK);
    EXPECT_EQ(log, "AABA");
    EXPECT_EQ(a.graphFileID() + b.graphFileID(), 0);
  }
}

// Has parts like Part, all of one vector.
struct Knot : NQOMLObject {
  explicit Knot(std::vector<Knot>& knots) : all(&knots) {}

  void preFileWrite(NQOMLFile* file) override {
    ++visits;
    NQOMLObject::preFileWrite(file);
  }
  void postFileWrite(NQOMLFile* file, NQFileCodeEnum code) override {
    --visits;
    NQOMLObject::postFileWrite(file, code);
  }
  void collectOwnedOMLObjects(NQDList& list) override {
    for (Knot& knot : *all) list.appendObject(&knot);
  }

  std::vector<Knot>* all;
  std::size_t visits = 0;
};

TEST(NQOMLObject, VisitsTangledPartsInProportion) {
  std::vector<Knot> knots;
  knots.reserve(100);
  for (int n = 0; n < 100; ++n) knots.emplace_back(knots);
  for (int round = 0; round < 2; ++round) {
    knots[0].preFileWrite(nullptr);
    std::size_t visits = 0;
    for (const Knot& knot : knots) {
      EXPECT_EQ(knot.graphFileID(), addressOf(knot));
      visits += knot.visits;
    }
    EXPECT_EQ(visits, knots.size() * knots.size() + 1);
    knots[0].postFileWrite(nullptr, NQ_FILE_OK);
    for (const Knot& knot : knots) {
      EXPECT_EQ(knot.graphFileID(), 0);
      EXPECT_EQ(knot.visits, 0U);
    }
  }
}

// Makes its only part before a write and destroys it after, to some depth, where
// the writing may fail.
struct Maker : NQOMLObject {
  void preFileWrite(NQOMLFile* file) override {
    if (depth == 0 && fails) throw depth;
    if (depth > 0) {
      made = std::make_unique<Maker>();
      made->depth = depth - 1;
      made->fails = fails;
    }
    NQOMLObject::preFileWrite(file);
  }
  void postFileWrite(NQOMLFile* file, NQFileCodeEnum result) override {
    NQOMLObject::postFileWrite(file, result);
    made.reset();
  }
  void collectOwnedOMLObjects(NQDList& list) override {
    if (made != nullptr) list.appendObject(made.get());
  }

  std::unique_ptr<Maker> made;
  int depth = 0;
  bool fails = false;
};

TEST(NQOMLObject, WalksOutliveHooksThatDestroyAndThrow) {
  Maker top;
  top.depth = 3;
  top.preFileWrite(nullptr);
  EXPECT_EQ(top.made->made->made->graphFileID(), addressOf(*top.made->made->made));
  top.postFileWrite(nullptr, NQ_FILE_OK);
  EXPECT_EQ(top.made, nullptr);

  top.fails = true;
  EXPECT_THROW(top.preFileWrite(nullptr), int);
  top.iUserField(5);
  top.postFileWrite(nullptr, NQ_FILE_OK);
  EXPECT_EQ(top.graphFileID(), 0) << "the walk that was broken off is over";
}

TEST(NQIUserFieldDListSort, PutsNullObjectsFirst) {
  std::vector<NQOMLObject> objects(3);
  objects[0].iUserField(std::numeric_limits<nqInt64>::max());
  objects[1].iUserField(std::numeric_limits<nqInt64>::min());
  NQDList list;
  for (NQOMLObject* object : {&objects[0], &objects[1]}) list.appendObject(object);
  list.appendObject(nullptr);
  list.appendObject(&objects[2]);
  NQIUserFieldDListSort sorter;
  EXPECT_EQ(sorter.quickSort(&list, 1), 1);
  const std::vector<NQObject*> expected = {nullptr, &objects[1], &objects[2],
                                           &objects[0]};
  EXPECT_EQ(std::vector<NQObject*>(list.begin(), list.end()), expected);
  EXPECT_EQ(sorter.quickSort(&list, 1), 0);
}

TEST(NQOMLObjectTuple, CopiesShareTheObjects) {
  NQOMLObject first;
  NQOMLObject second;
  NQOMLObjectTuple sample(&first, &second);
  checkCopyProtocol(
      sample, [&] { return std::make_unique<NQOMLObjectTuple>(&second, &first); },
      [](const NQOMLObjectTuple& a, const NQOMLObjectTuple& b) {
        return a.pFirstObject() == b.pFirstObject() &&
               a.pSecondObject() == b.pSecondObject();
      });
}

}  // namespace
