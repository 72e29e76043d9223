#include "nq/oml/grammar.h"

#include <gtest/gtest.h>

#include <memory>
#include <random>
#include <string>
#include <vector>

#include "nq/core/string_pool.h"
#include "tests/support/grammar_dump.h"

namespace {

std::string numbered(char letter, nqLong number) {
  return std::to_string(number).insert(0, 1, letter);
}

using Lines = std::vector<std::string>;

NQOMLStaticVEStruct kEnumerators[] = {
    {"small", 10}, {"medium", 20}, {"large", 30}, {"huge", -40}, {nullptr, 0}};

// A grammar that lets tests call what derived grammars may.
struct TestGrammar : NQOMLStatic {
  explicit TestGrammar(const Lines& lines = {}, nqLong size = 100)
      : NQOMLStatic(static_cast<NQOMLStaticOEStruct*>(nullptr), nullptr, kEnumerators,
                    nullptr, size, size, size, size, size, size) {
    install(lines);
  }
  void install(const Lines& lines) {
    // Copies of exactly their length, so that sanitizers see a step too far.
    std::vector<std::unique_ptr<char[]>> copies;
    std::vector<const char*> table;
    for (const std::string& line : lines) {
      copies.emplace_back(new char[line.size() + 1]);
      line.copy(copies.back().get(), line.size());
      copies.back()[line.size()] = '\0';
      table.push_back(copies.back().get());
    }
    table.push_back(nullptr);
    installDefinitionTable(table.data());
  }
  std::string refused() const {
    std::string text;
    for (nqLong n = 0; n < numberOfRefusedLines(); ++n) {
      if (n > 0) text += ' ';
      text += std::to_string(refusedLine(n));
    }
    return text;
  }
  nqLong field(const char* name) const { return pFieldPool()->lookup(name); }
  NQOMLDefObjType& type(const char* name) const {
    return *pObjTypeDefinition(pObjTypePool()->lookup(name));
  }

  using NQOMLStatic::addFieldDefinition;
  using NQOMLStatic::addObjectTypeDefinition;
  using NQOMLStatic::addSectionDefinition;
};

TEST(NQOMLStatic, ReadsDefinitionLines) {
  const struct {
    Lines lines;
    const char* dump;
    const char* refused;
  } kRows[] = {
      {{"O Graph", "[", "F name S", "E kind [small, medium, large] R", "T Node",
        "S layout", "[", "F spacing R", "]", "]"},
       "GRAPH{NAME:S KIND:E[SMALL,MEDIUM,LARGE]! +NODE LAYOUT{SPACING:R}} NODE{}",
       ""},
      // Every type of field, keys and names in any case, tabs, all four brackets.
      {{" o\tg", "{", "f a i", "F b B r", "\tF c S R", "F d R R", "F e P", "f F x", "}"},
       "G{A:I B:B! C:S! D:R! E:P F:X}",
       ""},
      {{"O g", "R a node R", "R b _", "R c", "r d _ R", "R e r"},
       "G{A:O<NODE>! B:O C:O D:O! E:O<R>} NODE{} R{}",
       ""},
      // Ranges follow the order of installation and work in both directions.
      {{"O g", "E a [small..large]", "E b{huge .. medium}R", "E c [small small..small]",
        "E d []", "E e", "E f [,.-small;..large"},
       "G{A:E[SMALL,MEDIUM,LARGE] B:E[HUGE,LARGE,MEDIUM]! C:E[SMALL] D:E[] E:E[] "
       "F:E[SMALL,LARGE]}",
       ""},
      // An unknown enumerator matches nothing and bounds nothing.
      {{"O g", "E a [tiny, small, tiny..large]"}, "G{A:E[?,SMALL,?,LARGE]}", ""},
      // What holds already is no fault; what contradicts it has no effect.
      {{"O g",         "F w I",       "F w I",       "F w S",         "F w I R", "T n",
        "T N",         "S s",         "]",           "S s",           "F w S",   "]",
        "E k [small]", "E k [small]", "E k [large]", "E k [small] R", "R r n",   "R r n",
        "R r g",       "R a",         "R a n",       "E w [small]"},
       "G{W:I K:E[SMALL] R:O<N> A:O<N> +N S{W:S}} N{}",
       "3 4 14 15 18 21"},
      // A line that cannot be understood adds nothing.
      {{"x", "]", "",  " ",   "O g",  "F",   "F a", "F a Q", "F a Int", "F a I now",
        "E", "R", "T", "T ?", "what", "F -", "O",   "F b I", "O g",     "F c I"},
       "G{A:I C:I}",
       "0 1 5 6 7 8 10 11 12 13 14 15 16 17"},
      // Blocks end with a bracket, with the next object type, or with the table.
      {{"O a", "S s", "S t", "F x I", "]", "F y I", "O b", "S u", "F z I", "]", "]",
        "F w I"},
       "A{S{Y:I T{X:I}}} B{U{Z:I}}",
       "11"},
      // A section without a name takes its entries with it.
      {{"O a", "[", "S", "[", "F x I", "S t", "{", "T n", "}", "]", "F y I", "]"},
       "A{Y:I}",
       "2 4 5 7"},
      {{"O $toplevel$", "T a_1$", "]", "O a_1$", "F _ I"},
       "$TOPLEVEL${+A_1$} A_1${_:I}",
       ""},
  };
  for (const auto& row : kRows) {
    const TestGrammar grammar(row.lines);
    EXPECT_EQ(dumpGrammar(grammar), row.dump);
    EXPECT_EQ(grammar.refused(), row.refused) << row.dump;
    EXPECT_EQ(findFault(grammar), "") << row.dump;
    EXPECT_EQ(grammar.refusedLine(-1), -1);
    EXPECT_EQ(grammar.refusedLine(grammar.numberOfRefusedLines()), -1);
  }
}

TEST(NQOMLStatic, EndsSafelyWhereverATableIsCutOffOrSpoilt) {
  const Lines whole = {
      "O Graph",    "[",        "F name S R", "E kind [small..large, huge] R",
      "R root n R", "S layout", "[",          "F spacing R",
      "S deep",     "{",        "T Node",     "]",
      "]",          "O $top$",  "S layout",   "F x P R"};
  for (std::size_t line = 0; line < whole.size(); ++line) {
    Lines table(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(line) + 1);
    for (std::size_t length = 0; length <= whole[line].size(); ++length) {
      table.back() = whole[line].substr(0, length);
      const TestGrammar grammar(table);
      ASSERT_EQ(findFault(grammar), "") << table.back();
    }
  }
  std::mt19937 random(5);
  const std::string characters = "OFERSTIBPX[]{}., \t_$az\xff\x80\r\n";
  for (int round = 0; round < 2000; ++round) {
    Lines table = whole;
    for (int spoilt = 0; spoilt < 6; ++spoilt) {
      std::string& line = table[random() % table.size()];
      if (line.empty()) continue;
      line[random() % line.size()] = characters[random() % characters.size()];
    }
    const TestGrammar grammar(table);
    ASSERT_EQ(findFault(grammar), "") << dumpGrammar(grammar);
  }
}

TEST(NQOMLStatic, RefusesSectionsBeyondTheLimits) {
  Lines wide = {"O g"};
  for (nqLong n = 1; n <= 16; ++n) {
    wide.insert(wide.end(), {numbered('s', n).insert(0, "S "), "F x I", "]"});
  }
  wide.emplace_back("S s3");  // still reached
  const TestGrammar level(wide);
  EXPECT_EQ(findFault(level), "");
  EXPECT_EQ(level.refused(), "43 44 46 47");
  EXPECT_EQ(level.type("g").numberOfSections(), 14);
  EXPECT_EQ(level.pSectionPool()->lookup("s15"), -1);
  EXPECT_EQ(level.type("g").pSection(level.pSectionPool()->lookup("s14"))->path(), 14U);

  TestGrammar deep(Lines(1, "O g"));
  nqULong path = 0;
  nqULong expected = 0;
  for (int depth = 0; depth < 8; ++depth) {
    path = deep.addSectionDefinition("g", path, "s");
    expected |= nqULong{1} << (4 * depth);
    ASSERT_EQ(path, expected);
  }
  EXPECT_EQ(deep.addSectionDefinition("g", path, "s"), 0U);
  EXPECT_EQ(deep.addSectionDefinition("g", path, "new"), 0U);
  EXPECT_EQ(deep.pSectionPool()->lookup("new"), -1);

  // Nesting that nobody can mean is passed over, not recursed into.
  Lines bottomless(100000, "S s");
  bottomless.insert(bottomless.begin(), "O g");
  const TestGrammar grammar(bottomless);
  EXPECT_EQ(grammar.numberOfRefusedLines(), 100000 - 8);
}

TEST(NQOMLStatic, KnowsItsBuiltInNamesWithoutAnyTable) {
  for (const nqLong size : {-2147483647, -1, 0, 1, 100, 2147483647}) {
    const NQOMLStatic grammar(static_cast<const char* const*>(nullptr), nullptr, nullptr,
                              nullptr, size, size, size, size, size, size);
    const char* const fields[] = {"Include", "INPUT", "comment", "section",
                                  "id",      "name",  "field"};
    for (nqLong index = 0; index < 7; ++index) {
      EXPECT_EQ(grammar.pFieldPool()->lookup(fields[index]), index);
    }
    EXPECT_EQ(grammar.pFieldPool()->decodeTableMax(), NQ_OML_BUILT_IN_FIELDS);
    EXPECT_EQ(grammar.pSectionPool()->lookup("Skip"), NQ_OML_SKIP_SECTION);
    EXPECT_EQ(grammar.pSectionPool()->lookup("_"), NQ_OML_WILDCARD_SECTION);
    EXPECT_EQ(grammar.enumValue(grammar.pEnumPool()->lookup("True")), 1);
    EXPECT_EQ(grammar.enumValue(grammar.pEnumPool()->lookup("False")), 0);
    EXPECT_EQ(grammar.enumValue(2), 0);
    EXPECT_EQ(grammar.enumValue(-1), 0);
    EXPECT_NE(grammar.pObjTypeDefinition(NQ_OML_TOPLEVEL_TYPE), nullptr);
    EXPECT_EQ(grammar.pObjTypeDefinition(1), nullptr);
    EXPECT_EQ(grammar.pObjTypeDefinition(-1), nullptr);
    EXPECT_EQ(grammar.definedSection(1), 1);
    EXPECT_EQ(grammar.definedSection(2), 0);
    EXPECT_EQ(grammar.definedSection(-1), 0);
    EXPECT_EQ(grammar.objectIDPoolSize(), size);
    EXPECT_EQ(grammar.objectIDHashSize(), NQOMLStatic::hashTableSize(size));
  }
}

TEST(NQOMLStatic, SizesHashTables) {
  const struct {
    nqLong size;
    nqLong hash;
  } kRows[] = {
      {-2147483647, 2},    {0, 2},       {1, 5},           {100, 751},
      {170, 1103},         {171, 751},   {300, 1103},      {341, 1103},
      {342, 751},          {1000, 1657}, {106800, 160201}, {106801, 15013},
      {2147483647, 15013},
  };
  for (const auto& row : kRows) {
    EXPECT_EQ(NQOMLStatic::hashTableSize(row.size), row.hash) << row.size;
  }
}

int check(void*, NQOMLSyntaxObject*) {
  return 1;
}
int write(void*, const NQObject*) {
  return 1;
}
int otherWrite(void*, const NQObject*) {
  return 2;
}
NQObject* create(void*, NQOMLSyntaxObject*, NQOMLSyntaxObject*, NQObject*) {
  return nullptr;
}
int readField(void*, NQOMLSyntaxField*, NQOMLSyntaxObject*, NQObject*) {
  return 1;
}

TEST(NQOMLStatic, KeepsCallbacksUntilTheyAreReplaced) {
  NQOMLStaticOEStruct types[] = {{"Graph", check, create, readField, write},
                                 {"", nullptr, nullptr, nullptr, nullptr},
                                 {"Node", nullptr, create, nullptr, nullptr},
                                 {nullptr, nullptr, nullptr, nullptr, nullptr}};
  const char* const sections[] = {"first", "", "second", nullptr};
  const char* const lines[] = {"O GRAPH", "T Node", "R x node", "]", nullptr};
  NQOMLStatic grammar(types, sections, kEnumerators, lines, 9, 9, 9, 9, 9, 9);
  EXPECT_EQ(dumpGrammar(grammar), "GRAPH{X:O<NODE> +NODE} NODE{}");
  EXPECT_EQ(grammar.pSectionPool()->lookup("second"), 3);

  NQOMLDefObjType* const graph =
      grammar.installObjTypeID("gRaph", nullptr, nullptr, nullptr, otherWrite);
  EXPECT_EQ(graph, grammar.pObjTypeDefinition(1));
  EXPECT_EQ(graph->checkFunction(), check);
  EXPECT_EQ(graph->createFunction(), create);
  EXPECT_EQ(graph->readFieldFunction(), readField);
  EXPECT_EQ(graph->writeFunction(), otherWrite);
  EXPECT_EQ(grammar.pObjTypeDefinition(2)->createFunction(), create);

  EXPECT_EQ(grammar.installObjTypeID(nullptr, check, create, readField, write), nullptr);
  EXPECT_EQ(grammar.installSectionID(nullptr), -1);
  EXPECT_EQ(grammar.installFieldID(""), -1);
  EXPECT_EQ(grammar.installEnumValueID("", 1), 0);
  EXPECT_EQ(grammar.installEnumValueID("SMALL", -2147483647), 1);
  EXPECT_EQ(grammar.enumValue(2), -2147483647);
  EXPECT_EQ(grammar.enumValue(5), -40);
}

TEST(NQOMLStatic, IsExtendedByDerivedGrammars) {
  TestGrammar grammar(Lines{"O node"});
  EXPECT_EQ(grammar.addSectionDefinition("g", "s"), 1U);
  EXPECT_EQ(grammar.addSectionDefinition("g", "t"), 2U);
  EXPECT_EQ(grammar.addSectionDefinition("G", "S"), 1U);
  EXPECT_EQ(grammar.addSectionDefinition("g", 2, "u"), 0x12U);
  EXPECT_EQ(grammar.addSectionDefinition("g", 3, "u"), 0U);
  EXPECT_EQ(grammar.addSectionDefinition("g", nullptr), 0U);
  EXPECT_EQ(grammar.addSectionDefinition(nullptr, "u"), 0U);

  EXPECT_EQ(grammar.addFieldDefinition("g", "a", NQ_REAL_FIELD, 5), 1);
  EXPECT_EQ(grammar.addFieldDefinition("g", "a", NQ_REAL_FIELD, 1), 1);
  EXPECT_EQ(grammar.addFieldDefinition("g", "a", NQ_REAL_FIELD, 0), 0);
  EXPECT_EQ(grammar.addFieldDefinition("g", "a", NQ_STRING_FIELD, 1), 0);
  EXPECT_EQ(grammar.addFieldDefinition("g", 0x12, "a", NQ_STRING_FIELD, 1), 1);
  EXPECT_EQ(grammar.addFieldDefinition("g", 0xF, "b", NQ_STRING_FIELD, 1), 0);
  EXPECT_EQ(grammar.addFieldDefinition("g", nullptr, NQ_STRING_FIELD, 1), 0);
  EXPECT_EQ(grammar.field("b"), -1);

  EXPECT_EQ(grammar.addFieldDefinition("g", "k", "small", 0), 1);
  EXPECT_EQ(grammar.addFieldDefinition("g", "k", "huge", 0), 1);
  EXPECT_EQ(grammar.addFieldDefinition("g", "k", "node", 0), 0);
  EXPECT_EQ(grammar.addFieldDefinition("g", 1, "n", "node", 1), 1);
  EXPECT_EQ(grammar.addFieldDefinition("g", 1, "n", "g", 1), 0);
  EXPECT_EQ(grammar.addFieldDefinition("g", "c", "nothing", 0), 0);
  EXPECT_EQ(grammar.addFieldDefinition("g", "c", static_cast<char*>(nullptr), 0), 0);

  EXPECT_EQ(grammar.addObjectTypeDefinition("g", "edge"), 1);
  EXPECT_EQ(grammar.addObjectTypeDefinition("g", "Edge"), 1);
  EXPECT_EQ(grammar.addObjectTypeDefinition("g", 2, "g"), 1);
  EXPECT_EQ(grammar.addObjectTypeDefinition("g", 9, "new"), 0);
  EXPECT_EQ(grammar.addObjectTypeDefinition("g", nullptr), 0);
  EXPECT_EQ(dumpGrammar(grammar),
            "NODE{} G{A:R! K:E[SMALL,HUGE] +EDGE S{N:O<NODE>!} T{+G U{A:S!}}} EDGE{}");
  EXPECT_EQ(findFault(grammar), "");
}

TEST(NQOMLStatic, HoldsMoreFieldsThanNumbers) {
  constexpr nqLong kFields = 65536 + 100;
  TestGrammar grammar;
  for (nqLong n = 1; n <= kFields; ++n) {
    const std::string name = numbered('f', n);
    grammar.addFieldDefinition("g", name.c_str(), NQ_INTEGER_FIELD, n % 2);
  }
  EXPECT_EQ(findFault(grammar), "");
  const NQOMLDefObjType& type = grammar.type("g");
  const struct {
    nqLong number;
    const char* field;
  } kRows[] = {
      {1, "f65537"}, {0, "f65536"}, {100, "f65636"}, {101, "f101"}, {65535, "f65535"}};
  for (const auto& row : kRows) {
    ASSERT_NE(type.pFieldNumbered(row.number), nullptr) << row.number;
    EXPECT_EQ(type.pFieldNumbered(row.number), type.pField(grammar.field(row.field)));
  }
  EXPECT_EQ(type.pFieldNumbered(-1), nullptr);
  EXPECT_EQ(type.pFieldNumbered(65536), nullptr);
  EXPECT_EQ(type.pField(-1), nullptr);
}

}  // namespace
