#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "nq/containers/index_hash_table.h"
#include "nq/core/string_pool.h"
#include "nq/oml/oml_object.h"
#include "tests/support/fake_system.h"
#include "tests/support/oml_reading.h"
#include "tests/support/test_peer.h"

namespace {

class Creation : public testing::Test {
 protected:
  NQFileCodeEnum read(const std::string& text, NQObject* top = nullptr,
                      nqLong topType = -1, int numbers = 0) {
    system.files["f"] = text;
    return reader.read("f", grammar, false, top, topType, numbers);
  }
  nqLong type(const char* name) const { return grammar.pObjTypePool()->lookup(name); }

  FakeSystem system;
  EverythingGrammar grammar;
  TestReader reader;
};

TEST_F(Creation, MakesParentsFirstAndFillsInReadingOrder) {
  reader.listEvents = true;
  EXPECT_EQ(read("version 3 graph 1 { count 1 node defaults { x 5 node 2 { node 3 } } "
                 "layout _ depth 4 node 4 }"),
            NQ_FILE_OK);
  EXPECT_EQ(reader.events,
            "check graph#$,1; check node#$,1,2; check node#$,1,2,3; check node#$,1,4; "
            "create graph#$,1; create node#$,1,2 in 1; create node#$,1,2,3 in 2; "
            "create node#$,1,4 in 1; "
            "pre $toplevel$#; version $toplevel$#; post $toplevel$#; "
            "pre graph#$,1 in 1; count graph#$,1 in 1; depth graph#$,1 in 1; "
            "depth graph#$,1 in 1; post graph#$,1 in 1; "
            "pre node#$,1,2 in 2; x node#$,1,2 in 2; post node#$,1,2 in 2; "
            "pre node#$,1,2,3 in 3; post node#$,1,2,3 in 3; "
            "pre node#$,1,4 in 4; post node#$,1,4 in 4; ");
}

// A field with wildcards is shown once for each section, as nodes that stay apart.
TEST_F(Creation, ShowsFieldsThatLastAsLongAsTheTree) {
  struct : TestReader {
    std::vector<const NQOMLSyntaxField*> shown;
    int vReadField(NQOMLSyntaxField* field, NQOMLSyntaxObject*, NQObject*) override {
      shown.push_back(field);
      return 1;
    }
  } keeping;
  system.files["f"] =
      "graph 1 { count 3 node defaults { _ pad 6 node 2 node 3 } _ _ depth 4 }";
  ASSERT_EQ(keeping.read("f", grammar), NQ_FILE_OK);
  std::string seen;
  for (const NQOMLSyntaxField* const field : keeping.shown) {
    seen +=
        std::to_string(field->intValue()) + "@" + std::to_string(field->sectionPath());
    EXPECT_EQ(field->pDefField()->nameIndex(), field->nameIndex());
    seen += ' ';
  }
  EXPECT_EQ(seen, "3@0 4@18 4@33 4@17 6@1 6@1 ");
  EXPECT_EQ(keeping.shown[4], keeping.shown[5]);  // a default that two objects inherit
}

TEST_F(Creation, TakesTheTopObjectGiven) {
  NQCounted top;
  EXPECT_EQ(read("graph 1 { node 2 }", &top, type("graph")), NQ_FILE_OK);
  EXPECT_EQ(reader.objects().size(), 1U);
  EXPECT_EQ(NQTestPeer::state(reader).top.object, &top);
  EXPECT_EQ(read("graph 1 { node 2 }", &top, type("node")), NQ_FILE_READ_ERROR);
  EXPECT_EQ(reader.objects().size(), 1U);
}

// Two objects on top: both are made, none is filled.
TEST_F(Creation, RefusesASecondTopObject) {
  reader.listEvents = true;
  EXPECT_EQ(read("version 1 graph 1 { node 3 } graph 2 { node 4 }"), NQ_FILE_READ_ERROR);
  EXPECT_EQ(reader.events.substr(reader.events.find("create")),
            "create graph#$,1; create node#$,1,3 in 1; create graph#$,2; ");
}

TEST_F(Creation, StopsBeforeObjectsThatAreNotAcceptable) {
  reader.listEvents = true;
  reader.refuse = true;
  EXPECT_EQ(read("graph 1 { node 2 { node 3 } node 4 }"), NQ_FILE_READ_ERROR);
  // What stands inside a refused object is still offered, what follows it is not.
  EXPECT_EQ(reader.events, "check graph#$,1; check node#$,1,2; check node#$,1,2,3; ");
}

TEST_F(Creation, KeepsTheNumbersOfObjects) {
  EXPECT_EQ(
      read("graph 7 { node a { } node -12 { } node { } node b13 { } }", nullptr, -1, 1),
      NQ_FILE_OK);
  NQIndexHashTable* const table = reader.pIndexHashTable();
  ASSERT_NE(table, nullptr);
  const nqInt64 numbers[] = {7, 0, -12, -2, 13};
  ASSERT_EQ(reader.objects().size(), std::size(numbers));
  for (std::size_t i = 0; i < std::size(numbers); ++i) {
    EXPECT_EQ(table->lookup(reinterpret_cast<nqInt64>(reader.objects()[i])), numbers[i]);
  }
  EXPECT_EQ(read("graph 8", nullptr, -1, 1), NQ_FILE_OK);
  EXPECT_EQ(reader.pIndexHashTable(), table);
  EXPECT_EQ(table->maxValueIndex(), 13);
  EXPECT_EQ(read("graph 8"), NQ_FILE_OK);
  EXPECT_EQ(reader.pIndexHashTable(), nullptr);
}

// A fatal error in any hook: no further one is called, and the reader goes on
// to read good files.
TEST_F(Creation, EndsWhereAFatalErrorArises) {
  const std::string good = "graph 1 { count 1 node 2 { x 1 } node 3 { x 2 } }";
  int hooks = 0;
  reader.atHook = [&hooks](const char*) { ++hooks; };
  EXPECT_EQ(read(good), NQ_FILE_OK);
  const int all = hooks;
  ASSERT_GT(all, 10);
  enum Way { kFatalError, kCleanup, kFlag };
  for (const Way way : {kFatalError, kCleanup, kFlag}) {
    for (int last = 1; last <= all; ++last) {
      hooks = 0;
      reader.atHook = [&, this](const char*) {
        if (++hooks != last) return;
        if (way == kFatalError) reader.errorMessage(nullptr, 1, "no more", 1);
        if (way == kCleanup) reader.cleanup(), reader.cleanup();
        if (way == kFlag) reader.setFatalError();
      };
      EXPECT_EQ(read(good), NQ_FILE_READ_ERROR) << last;
      EXPECT_EQ(hooks, last);
      reader.atHook = nullptr;
      ASSERT_EQ(read(good), NQ_FILE_OK) << last;
    }
  }
}

// An included file is asked for twice, as written and beside the including one, but
// not after a fatal error; nor is the file opened then, nor progress told.
TEST_F(Creation, AsksForNoIncludeAfterAFatalError) {
  system.files = {{"d/f", "include \"g\""}, {"d/g", "graph 1"}};
  std::string asked;
  reader.atHook = [&](const char* hook) { asked += *hook; };
  EXPECT_EQ(reader.read("d/f", grammar), NQ_FILE_OK);
  EXPECT_EQ(asked.substr(0, 3), "iic");
  for (const bool fatal : {true, false}) {
    asked.clear();
    const int reads = system.reads;
    reader.atHook = [&, this](const char* hook) {
      asked += *hook;
      if (fatal) reader.errorMessage(nullptr, 1, "no more", 1);
      if (!fatal) reader.cleanup();
    };
    EXPECT_EQ(reader.read("d/f", grammar), NQ_FILE_READ_ERROR);
    EXPECT_EQ(asked, "i");
    EXPECT_EQ(system.reads - reads, 2);  // "d/f" and its end
  }
}

class CleaningReader : public TestReader {
 public:
  void cleanup() override {
    if (atCleanup) atCleanup();
    NQOMLFile::cleanup();
  }
  std::function<void()> atCleanup;
  int nodes = 0;

 protected:
  void vSyntaxObjectCreated(NQOMLSyntaxObject*, nqLong, int) override { ++nodes; }
};

// Called before and after each read, when its results and texts are still there.
TEST_F(Creation, CleansUpWhenAllIsDone) {
  CleaningReader cleaning;
  std::string seen;
  int code = 0;
  cleaning.atCleanup = [&, this] {
    const NQOMLSyntaxObject* const root = NQTestPeer::root(cleaning);
    seen += root == nullptr || root->pObjectList() == nullptr
                ? "-"
                : root->pObjectList()->pObject()->nameString();
    seen += std::to_string(cleaning.objects().size()) + ' ';
    EXPECT_EQ(cleaning.readOMLFile("f", &grammar, nullptr, -1, 0, 0, 0),
              NQ_FILE_READ_ERROR);
    cleaning.initParser(nullptr, nullptr, -1, 0);
    if (code > 0 && !cleaning.objects().empty()) {
      cleaning.errorMessage(nullptr, code, "late", code == 9);
    }
  };
  system.files["f"] = "graph 1 { node 2 }";
  EXPECT_EQ(cleaning.read("f", grammar, false, nullptr, -1, 1), NQ_FILE_OK);
  EXPECT_EQ(seen, "-0 $,12 ");
  ASSERT_NE(cleaning.pIndexHashTable(), nullptr);
  EXPECT_EQ(cleaning.pIndexHashTable()->maxValueIndex(), 2);
  EXPECT_EQ(cleaning.errors(), "");
  // What it reports after a good read counts.
  for (const int last : {8, 9}) {
    code = 0;
    seen.clear();
    const std::size_t before = cleaning.objects().size();
    cleaning.atHook = [&](const char*) { code = last; };
    EXPECT_EQ(cleaning.read("f", grammar), NQ_FILE_READ_ERROR);
    EXPECT_EQ(cleaning.numberOfErrors(), 1);
    EXPECT_EQ(cleaning.objects().size(), before + 2);
    EXPECT_NE(cleaning.errors().find("late"), std::string::npos);
  }
  // A fatal error before one leaves nothing to be done.
  cleaning.nodes = 0;
  const int reads = system.reads;
  EXPECT_EQ(cleaning.read("f", grammar), NQ_FILE_READ_ERROR);
  EXPECT_EQ(cleaning.nodes, 0);
  EXPECT_EQ(system.reads, reads);
}

TEST_F(Creation, IsNotEnteredTwice) {
  NQFileCodeEnum inner = NQ_FILE_OK;
  reader.atHook = [&, this](const char*) {
    inner = reader.readOMLFile("f", &grammar, nullptr, -1, 0, 0, 0);
    reader.initParser(nullptr, nullptr, -1, 1);
    reader.NQOMLFile::execute();
  };
  EXPECT_EQ(read("graph 1 { count 1 }"), NQ_FILE_OK);
  EXPECT_EQ(inner, NQ_FILE_READ_ERROR);
  EXPECT_EQ(reader.tree, "graph#$,1{count=1}");
  EXPECT_EQ(reader.objects().size(), 1U);
  // Another reader may read meanwhile.
  TestReader other;
  reader.atHook = [&, this](const char*) {
    inner = other.readOMLFile("f", &grammar, nullptr, -1, 0, 0, 0);
  };
  EXPECT_EQ(read("graph 1 { count 1 }"), NQ_FILE_OK);
  EXPECT_EQ(inner, NQ_FILE_OK);
}

TEST_F(Creation, ReportsProgressOfAllFilesMetSoFar) {
  system.files["part"] = "count 1";
  EXPECT_EQ(read("graph 1 { include: \"part\"; }"), NQ_FILE_OK);
  // The end of each file is one more transfer.
  EXPECT_EQ(reader.progress, "28/28 35/35 35/35 35/35 ");
  reader.progress.clear();
  system.devices.insert("f");
  EXPECT_EQ(read("graph 1"), NQ_FILE_OK);
  EXPECT_EQ(reader.progress, "7/-1 7/-1 ");
}

TEST_F(Creation, IsBrokenOffByProgressOrException) {
  reader.stopAfter = 5;
  EXPECT_EQ(read("graph 1"), NQ_FILE_READ_ERROR);
  EXPECT_EQ(reader.errors(), "");
  EXPECT_EQ(reader.numberOfErrors(), 0);
  EXPECT_EQ(reader.objects().size(), 0U);
  EXPECT_EQ(system.openFiles(), 0);
  reader.stopAfter = -1;

  reader.atHook = [](const char*) { throw 5; };
  EXPECT_THROW((void)read("graph 1"), int);
  EXPECT_EQ(system.openFiles(), 0);
  reader.atHook = nullptr;
  EXPECT_EQ(read("graph 1"), NQ_FILE_OK);
}

TEST_F(Creation, RefusesMissingArguments) {
  EXPECT_EQ(reader.readOMLFile(nullptr, &grammar, nullptr, -1, 0, 0, 0),
            NQ_FILE_READ_ARGUMENT_ERROR);
  EXPECT_EQ(reader.readOMLFile("f", nullptr, nullptr, -1, 0, 0, 0),
            NQ_FILE_READ_ARGUMENT_ERROR);
  reader.initParser(nullptr, nullptr, -1, 1);
  reader.updateObject(nullptr, nullptr, nullptr);
  EXPECT_EQ(reader.pSyntaxObject(0), nullptr);
  EXPECT_EQ(reader.sectionIDIndex("layout"), -1);
  EXPECT_EQ(reader.line(), -1);
  EXPECT_STREQ(reader.pFileNameString(), "");
}

// The default hooks ask objects first, then the grammar's callbacks.
class Part : public NQOMLObject {
 public:
  int readField(NQOMLSyntaxField* field, NQOMLSyntaxObject*, NQOMLFile*) override {
    log += field->nameString();
    return field->intValue() == 1;
  }
  void preReadFields(NQOMLSyntaxObject*, NQOMLFile*) override { log += "("; }
  void postReadFields(NQOMLSyntaxObject*, NQOMLFile*) override { log += ")"; }

  std::string log;
};

Part* made = nullptr;

NQObject* makePart(void* file, NQOMLSyntaxObject* node, NQOMLSyntaxObject* parent,
                   NQObject*) {
  EXPECT_STREQ(static_cast<NQOMLFile*>(file)->pOMLStatic()->pObjTypePool()->decode(
                   node->typeIndex()),
               "GRAPH");
  EXPECT_EQ(parent, nullptr);
  return made = new Part;
}

int readPart(void*, NQOMLSyntaxField* field, NQOMLSyntaxObject*, NQObject* object) {
  static_cast<Part*>(object)->log += "?";
  return field->intValue() == 2;
}

int acceptsPart(void*, NQOMLSyntaxObject* node) {
  return node->searchField("title", nullptr) == nullptr;
}

TEST_F(Creation, AsksObjectsAndCallbacks) {
  grammar.installObjTypeID("graph", acceptsPart, makePart, readPart, nullptr);
  NQOMLFile plain;
  (void)plain.pErrorStringBuffer(1000);
  (void)plain.pWarningStringBuffer(1000);
  const auto plainRead = [&, this](const char* text) {
    system.files["f"] = text;
    return plain.readOMLFile("f", &grammar, nullptr, -1, 0, 0, 0);
  };
  EXPECT_EQ(plainRead("graph 1 { count { 1 2 3 } }"), NQ_FILE_OK);
  EXPECT_EQ(made->log, "(COUNTCOUNT?COUNT?)");
  EXPECT_STREQ(plain.pWarningStringBuffer(),
               "Warning # 49 unable to set fields in several objects !\n");
  delete made;
  EXPECT_EQ(plainRead("graph 1 { title \"x\" }"), NQ_FILE_READ_ERROR);
  EXPECT_STREQ(plain.pErrorStringBuffer(),
               "Error #034 several semantic errors detected !\n");
  // Nodes without callbacks are accepted, and nothing is made for them.
  EXPECT_EQ(plainRead("node 1 { node 2 }"), NQ_FILE_OK);
}

TEST_F(Creation, LetsHooksReplaceObjects) {
  const int live = NQCounted::live();
  reader.atHook = [this, live](const char* hook) {
    if (std::string(hook) != "x") return;
    NQOMLSyntaxObject* const node =
        const_cast<NQOMLSyntaxObject*>(NQTestPeer::root(reader))
            ->pObjectList()
            ->pObject()
            ->pObjectList()
            ->pObject();
    reader.updateObject(node, new NQCounted(1), reader.objects()[0]);
    reader.updateObject(node, reader.objects()[0], reader.objects()[0]);
    EXPECT_EQ(node->object(), reader.objects()[0]);
    EXPECT_EQ(NQCounted::live(), live + 2) << "an object replaces itself";
    EXPECT_EQ(reader.pSyntaxObject(node->objectIDIndex()), node);
    EXPECT_EQ(reader.sectionIDIndex("layout"), grammar.pSectionPool()->lookup("layout"));
  };
  EXPECT_EQ(read("graph 1 { node 2 { x 1 } }"), NQ_FILE_OK);
  EXPECT_EQ(NQCounted::live(), live + 2);
}

// Whoever replaces an object meets the new one from then on.
TEST_F(Creation, HandsOutObjectsThatWereReplaced) {
  const auto replace = [this](const char* at, std::size_t number) {
    reader.atHook = [this, at, number, done = false](const char* hook) mutable {
      if (done || std::string(hook) != at || reader.objects().size() < number) return;
      NQOMLSyntaxObject* const graph = NQTestPeer::root(reader)->pObjectList()->pObject();
      reader.updateObject(graph, nullptr, reader.objects()[number - 1]);
      done = true;
    };
  };
  reader.listEvents = true;
  replace("count", 2);
  EXPECT_EQ(read("graph 1 { count 1 title \"t\" node 2 }"), NQ_FILE_OK);
  EXPECT_NE(reader.events.find("count graph#$,1 in 1; title graph#$,1 in 2; post "
                               "graph#$,1 in 2; "),
            std::string::npos)
      << reader.events;
  replace("create", 4);  // those of the first read count on
  EXPECT_EQ(read("graph 1 { node 2 node 3 node 4 }"), NQ_FILE_OK);
  EXPECT_NE(reader.events.find("create node#$,1,2 in 3; create node#$,1,3 in 3; create "
                               "node#$,1,4 in 4; "),
            std::string::npos)
      << reader.events;
}

TEST_F(Creation, CopiesSettingsOnly) {
  reader.maxNumberOfErrors(3);
  EXPECT_EQ(read("% % % %"), NQ_FILE_READ_ERROR);
  const NQOMLFile& source = reader;
  const NQOMLFile copy(source);
  EXPECT_EQ(copy.maxNumberOfErrors(), 3);
  EXPECT_EQ(copy.numberOfErrors(), 0);
  EXPECT_EQ(copy.pErrorStringBuffer(), nullptr);
}

}  // namespace
