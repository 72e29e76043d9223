#include <gtest/gtest.h>

#include <map>
#include <set>
#include <string>

#include "nq/oml/reading/lexer.h"
#include "nq/oml/tree/id_table.h"
#include "tests/support/fake_system.h"
#include "tests/support/oml_reading.h"
#include "tests/support/test_peer.h"

namespace {

const struct {
  const char* text;
  const char* tree;
} kRows[] = {
    // Full ids; objects without one count down from -2 in tree order.
    {"graph { node { node { } } node { } }",
     "graph#$,-2{node#$,-2,-3{node#$,-2,-3,-4} node#$,-2,-5}"},
    // They pass over numbers that siblings bear, later ones and those in defaults too.
    {"graph { node { } node -3 { } node { } node defaults { node -4 { } node { } } }",
     "graph#$,-2{node#$,-2,-5 node#$,-2,-3 node#$,-2,-6 node#defaults{node#$,-2,-4 "
     "node#$,-2,-7}}"},
    {"graph { node a { node { } } node a { node -3 { } } }",
     "graph#$,-2{node#$,-2,a{node#$,-2,a,-4 node#$,-2,a,-3}}"},
    {"graph -2 { } ", "graph#$,-2"},
    {"graph { any -2,-2 node -2 }", "graph#$,-2{any=->$,-2,-2 node#$,-2,-2}"},
    // An integer and a text that prints it are one id; case counts.
    {"graph 1 { id \"x\" }", nullptr},
    {"graph 12 { id 12 id +12 id 0012 }", "graph#$,12"},
    {"graph a { node b { x 1 } node B { x 2 } }",
     "graph#$,a{node#$,a,b{x=1} node#$,a,B{x=2}}"},
    // Blocks of the same id are joined in reading order.
    {"graph 1 { count 1 } graph 1 { node 2 { x 1 } count 2 } graph 1 { node 2 { x 3 } }",
     "graph#$,1{count=1 count=2 node#$,1,2{x=1 x=3}}"},
    {"graph 1 { node 2 { node 3 } node 2 { node 3 { x 1 } node 4 } }",
     "graph#$,1{node#$,1,2{node#$,1,2,3{x=1} node#$,1,2,4}}"},
    // Defaults: theirs first, then the object's own.
    {"graph 1 { node defaults { x 5 label \"d\" node a { x 1 } node b } }",
     "graph#$,1{node#defaults{x=5 label=\"d\" node#$,1,a{x=5 label=\"d\" x=1} "
     "node#$,1,b{x=5 label=\"d\"}}}"},
    {"graph 1 { node { id defaults x 5 node a } }",
     "graph#$,1{node#defaults{x=5 node#$,1,a{x=5}}}"},
    {"graph 1 { layout node defaults { node a } }",
     "graph#$,1{layout.node#defaults{layout.node#$,1,a}}"},
    // A list of defaults counts once for an object, several of them all count.
    {"graph 1 { node defaults { x 5 node a { x 1 } node a { x 2 } } }",
     "graph#$,1{node#defaults{x=5 node#$,1,a{x=5 x=1 x=2}}}"},
    {"graph 1 { node defaults { x 5 node a { x 1 } } node defaults { x 6 node a } }",
     "graph#$,1{node#defaults{x=5 node#$,1,a{x=5 x=6 x=1}} node#defaults{x=6}}"},
    {"graph defaults { count 1 graph 1 { count 2 } }",
     "graph#defaults{count=1 graph#$,1{count=1 count=2}}"},
    // Required fields, supplied by a default.
    {"graph 1 { strict a { first 1 second \"x\" } }",
     "graph#$,1{strict#$,1,a{first=1 second=\"x\"}}"},
    {"graph 1 { strict defaults { first 1 strict a { second \"x\" } } }",
     "graph#$,1{strict#defaults{first=1 strict#$,1,a{first=1 second=\"x\"}}}"},
    {"graph 1 { strict a { first 1 } strict a { second \"x\" } }",
     "graph#$,1{strict#$,1,a{first=1 second=\"x\"}}"},
    // References, in the scope that contains their object.
    {"graph a { node b { next c up $a } node c { next b } }",
     "graph#$,a{node#$,a,b{next=->$,a,c up=->$,a} node#$,a,c{next=->$,a,b}}"},
    {"graph alpha { link alpha,beta any $alpha,beta node beta { node p { next q } node q "
     "} }",
     "graph#$,alpha{link=->$,alpha,beta any=->$,alpha,beta node#$,alpha,beta{"
     "node#$,alpha,beta,p{next=->$,alpha,beta,q} node#$,alpha,beta,q}}"},
    {"graph 1 { node defaults { next 2 node 2 node 3 { next 2 } } }",
     "graph#$,1{node#defaults{next=->$,1,2 node#$,1,2{next=->$,1,2} "
     "node#$,1,3{next=->$,1,2 next=->$,1,2}}}"},
};

TEST(Semantics, GivesIDsJoinsBlocksAndResolvesReferences) {
  FakeSystem system;
  EverythingGrammar grammar;
  TestReader reader;
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.text);
    system.files["f"] = row.text;
    EXPECT_EQ(reader.read("f", grammar),
              row.tree != nullptr ? NQ_FILE_OK : NQ_FILE_READ_ERROR);
    EXPECT_EQ(reader.tree, row.tree != nullptr ? row.tree : "") << reader.errors();
  }
}

// What hooks see of it: the ids and words of the file beside what became of them.
TEST(Semantics, KeepsWhatIsWritten) {
  FakeSystem system;
  EverythingGrammar grammar;
  TestReader reader;
  EXPECT_EQ(reader.pSyntaxRoot(), nullptr);
  std::string seen;
  const auto look = [&seen](const NQOMLSyntaxObject& object,
                            const auto& lookInto) -> void {
    seen += std::string(object.writtenIDString()) + "(";
    for (NQOMLSyntaxFieldIter field(&object); field; ++field) {
      seen += std::string(field.pField()->wordString()) + " ";
    }
    for (NQOMLSyntaxObjectIter child(&object); child; ++child) {
      lookInto(*child.pObject(), lookInto);
    }
    seen += ")";
  };
  reader.atHook = [&](const char* hook) {
    if (seen.empty() && std::string(hook) == "create") look(*reader.pSyntaxRoot(), look);
  };
  system.files["f"] =
      "field \"mine\" graph g { size large flag true count 5 title \"t\" any $,g,12\n"
      "node { node k } node 0012 node defaults { next k7 node k7 }\n"
      "comment \"unchecked\" v: new w: mine x: small y: a,b z 5 }";
  EXPECT_EQ(reader.read("f", grammar), NQ_FILE_OK) << reader.errors();
  EXPECT_EQ(seen,
            "(g(LARGE TRUE   $,g,12 NEW MINE SMALL a,b  (k())12()"
            "defaults($,g,k7 k7($,g,k7 ))))");
  system.files["f"] = "graph {";
  EXPECT_EQ(reader.read("f", grammar), NQ_FILE_READ_ERROR);
  EXPECT_EQ(reader.pSyntaxRoot(), nullptr);
}

// Many objects may inherit much from their defaults, and end with error 34 here
// rather than for lack of memory.
TEST(Semantics, LimitsWhatIsInherited) {
  FakeSystem system;
  std::string text = "graph 1 { node defaults { ";
  for (int field = 0; field < 1000; ++field) text += "x 1 ";
  for (int object = 0; object < 55'000; ++object) text += "node{} ";
  system.files["f"] = text + "} }";
  EverythingGrammar grammar;
  TestReader reader;
  reader.refuse = true;
  EXPECT_EQ(reader.read("f", grammar), NQ_FILE_READ_ERROR);
  EXPECT_EQ(reader.errors(), "Error #034 several semantic errors detected !\n");

  // 1000 objects inherit 100 fields each.
  text = "graph 1 { node defaults { ";
  for (int field = 0; field < 100; ++field) text += "x 1 ";
  for (int object = 0; object < 1000; ++object) text += "node{} ";
  system.files["f"] = text += "} }";
  const auto extra = static_cast<nqInt64>(64 * text.size());
  reader.refuse = false;
  reader.keepTree = false;
  reader.maxInheritedFields(100'000 - extra);
  EXPECT_EQ(reader.read("f", grammar), NQ_FILE_OK);
  reader.maxInheritedFields(99'999 - extra);
  EXPECT_EQ(reader.read("f", grammar), NQ_FILE_READ_ERROR);
  EXPECT_NE(reader.errors().find("Fatal error #012 (f:1:7420) memory exhausted: objects "
                                 "inherit more than "),
            std::string::npos)
      << reader.errors();
}

TEST(NameTables, PrepareForNoMoreThanIsSensible) {
  constexpr nqLong kWild = 10'000'000;
  const NQOMLStatic grammar(static_cast<const char* const*>(nullptr), nullptr, nullptr,
                            nullptr, kWild, kWild, kWild, kWild, kWild, kWild);
  const nqdetail::NameTables names(grammar);
  for (const NQStringPool* const pool :
       {&names.declaredSections, &names.declaredFields, &names.ignoredFields}) {
    EXPECT_LE(NQTestPeer::places(*pool), 100'000);
  }
}

TEST(IDTable, KeepsChainsOfComponents) {
  nqdetail::IDTable ids;
  const nqLong ab = ids.withText("a,b");
  EXPECT_EQ(ids.withName("b", ids.withName("a")), ab);
  EXPECT_EQ(ids.withText("b", ids.withText("a")), ab);
  EXPECT_EQ(ids.inScope(ab, ids.withText("$,x")), ids.withText("$,x,a,b"));
  EXPECT_EQ(ids.withText("-7,0"), ids.withNumber(0, ids.withNumber(-7)));
  for (const char* const text : {"07", "+7", "-0", "2147483648", "", "7a", " 7", "--7",
                                 "a0", "a01", "a10", "a4294967295", "$12"}) {
    EXPECT_EQ(ids.withText(text), ids.withName(text)) << text;
    EXPECT_STREQ(ids.text(ids.withText(text)), text);
  }
  const struct {
    const char* text;
    bool simple;
    bool full;
    nqInt64 number;
  } rows[] = {
      {"defaults", true, false, 0}, {"$", false, true, 0},
      {"$,a,12", false, true, 12},  {"a,b-12", false, false, -12},
      {"a12b", true, false, 0},     {"", true, false, 0},
      {"a,", false, false, 0},      {"007", true, false, 7},
      {"$a", false, true, 0},       {"x99999999999999999999", true, false, INT64_MAX},
      {"-2", true, false, -2},      {"b-99999999999999999999", true, false, INT64_MIN},
  };
  for (const auto& row : rows) {
    const nqLong id = ids.withText(row.text);
    EXPECT_EQ(ids.isSimple(id), row.simple) << row.text;
    EXPECT_EQ(ids.isFull(id), row.full) << row.text;
    EXPECT_EQ(ids.trailingNumber(id), row.number) << row.text;
    EXPECT_STREQ(ids.text(id), row.text);
  }
  EXPECT_STREQ(ids.text(-1), "");
  EXPECT_STREQ(ids.text(1'000'000), "");
  EXPECT_FALSE(ids.isSimple(-1) || ids.isFull(1'000'000));
  EXPECT_EQ(ids.inScope(-1, 1), -1);
  EXPECT_EQ(ids.pObject(1'000'000), nullptr);
}

// Ids that end in numbers are found wherever they were filed: far from the others,
// before they came, or among them.
TEST(IDTable, KnowsNumberedNamesInAnyOrder) {
  constexpr nqLong kNumbers = 3000;
  const struct {
    nqLong step;
    nqLong start;
    nqLong factor;  // what the numbers are multiples of
    nqLong offset;
  } orders[] = {{1, 0, 1, 0},        {kNumbers - 1, kNumbers - 1, 1, 0},
                {1009, 17, 1, 0},    {1009, 5, 16, 7},
                {1009, 5, 65536, 0}, {7, 5, 1000, 3}};
  for (const auto& [step, start, factor, offset] : orders) {
    const auto text = [factor, offset](std::string stem, nqLong number) {
      return stem + std::to_string(number * factor + offset);
    };
    nqdetail::IDTable ids;
    std::map<std::string, nqLong> known;
    const nqLong scope = ids.withText("$,s");
    nqLong number = start;
    for (nqLong i = 0; i < kNumbers; ++i, number = (number + step) % kNumbers) {
      for (const char* const stem : {"", "-", "n", "$,s,n", "n-0", "n,"}) {
        const std::string name = text(stem, number);
        EXPECT_TRUE(known.emplace(name, ids.withText(name)).second) << name;
      }
    }
    std::set<nqLong> all;
    for (const auto& [name, id] : known) {
      EXPECT_TRUE(all.insert(id).second) << name;
      EXPECT_EQ(ids.withText(name), id) << name;
      ASSERT_STREQ(ids.text(id), name.c_str());
    }
    for (number = 0; number < kNumbers; ++number) {
      const nqLong id = known[text("n", number)];
      EXPECT_EQ(ids.inScope(id, scope), known[text("$,s,n", number)]);
      EXPECT_EQ(ids.inScope(id, nqdetail::IDTable::kTop),
                ids.withText(text("$,n", number)));
      EXPECT_EQ(ids.inScope(id, nqdetail::IDTable::kNone), id);
    }
  }
}

// A reference written once for several sections is resolved once, and in each of them.
TEST(Semantics, ResolvesReferencesWithWildcards) {
  const char* const definitions[] = {
      "O $toplevel$", "[", "T graph", "]",    "O graph",   "[", "T node", "]",
      "O node",       "[", "S a",     "[",    "R to node", "]", "S b",    "[",
      "R to node",    "]", "]",       nullptr};
  NQOMLStatic grammar(static_cast<const char* const*>(nullptr), nullptr, nullptr,
                      definitions, 10, 10, 10, 10, 10, 10);
  FakeSystem system;
  TestReader reader;
  system.files["f"] = "graph 1 { node p { _ to 7 } node 7 { _ to p } }";
  EXPECT_EQ(reader.read("f", grammar), NQ_FILE_OK) << reader.errors();
  EXPECT_EQ(reader.tree,
            "graph#$,1{node#$,1,p{b.to=->$,1,7 a.to=->$,1,7} "
            "node#$,1,7{b.to=->$,1,p a.to=->$,1,p}}");
  system.files["f"] = "graph 1 { node p { _ to 8 } node 7 { _ to p } }";
  EXPECT_EQ(reader.read("f", grammar), NQ_FILE_READ_ERROR);
  EXPECT_NE(reader.errors().find("Error #028 (f:1:22)"), std::string::npos);
}

// Fields of another type, with required fields of its own, may be made defaults by hand.
TEST(Semantics, RequiredFieldsOfOtherTypesCountForNothing) {
  const char* const definitions[] = {
      "O graph",     "[",       "F title S R", "F two I R",    "F three I R",
      "T node",      "T graph", "]",           "O node",       "[",
      "F label S R", "F x I",   "]",           "O $toplevel$", "[",
      "T graph",     "T node",  "]",           nullptr};
  NQOMLStatic grammar(static_cast<const char* const*>(nullptr), nullptr, nullptr,
                      definitions, 10, 10, 10, 10, 10, 10);
  struct : TestReader {
    void vSyntaxObjectCreated(NQOMLSyntaxObject* syntax, nqLong, int) override {
      if (graph != nullptr) syntax->addDefaultList(graph->pFieldList());
      if (syntax->typeIndex() == 1) graph = syntax;
    }
    NQOMLSyntaxObject* graph = nullptr;
  } reader;
  FakeSystem system;
  system.files["f"] = "graph { title=\"t\" two=1 three=1 node a { x=1 } }";
  EXPECT_EQ(reader.read("f", grammar), NQ_FILE_READ_ERROR);
  EXPECT_NE(reader.errors().find("missing attribute `LABEL'"), std::string::npos)
      << reader.errors();
}

}  // namespace
