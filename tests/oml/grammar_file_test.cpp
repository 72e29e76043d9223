#include "nq/oml/grammar_file.h"

#include <gtest/gtest.h>

#include <new>
#include <random>
#include <string>

#include "nq/oml/grammar/names.h"
#include "tests/support/failing_memory.h"
#include "tests/support/fake_system.h"
#include "tests/support/grammar_dump.h"

namespace {

struct GrammarFile {
  std::vector<NQOMLDiagnostic> problems;
  std::unique_ptr<NQOMLStatic> grammar;

  bool hasErrors() const { return grammar == nullptr; }
};

GrammarFile parseGrammar(const char* name, std::string_view text) {
  GrammarFile file;
  file.grammar = nqReadGrammarText(text, name, file.problems);
  return file;
}

// A small grammar with everything; rows put their lines in place of "@".
std::string grammarAround(const std::string& lines) {
  return "types\n[\nnode\n]\nsections\n{\nlayout\nline\n}\n"
         "enumerators\n[\nred 1\ngreen 2\nblue 3\n]\n"
         "O $toplevel$\n[\nT node\n]\nO node\n[\n" +
         lines + "]\n";
}
constexpr long kFirst = 22;  // the line where "@" begins

// The problems as "line:column text", one a line, with a hint behind "->".
std::string problemsOf(const GrammarFile& file) {
  std::string text;
  for (const NQOMLDiagnostic& problem : file.problems) {
    text += std::to_string(problem.first.line) + ":" +
            std::to_string(problem.first.column) + " " + problem.text;
    if (!problem.hint.empty()) text += " -> " + problem.hint;
    text += '\n';
  }
  return text;
}

TEST(GrammarFile, EntriesWithoutFaultMakeAGrammar) {
  for (const char* lines :
       {"", "F a I\nf b x r\n", "E c [red, blue]\nE d {red..blue} R\nE e [true false]\n",
        "R a node R\nR b _ R\nR c\nR d _\n",
        "S layout\n[\nF x R\nS line\n{\nF y R\n}\n]\n", "S layout\nF x R\n]\n",
        "T node\nT NODE\n", "F a I\nF a I\n",
        "F a I  # a comment\n\n  // another\n\tF\tb\tI\n"}) {
    const GrammarFile file = parseGrammar("g", grammarAround(lines));
    EXPECT_EQ(problemsOf(file), "") << lines;
    ASSERT_NE(file.grammar, nullptr) << lines;
    EXPECT_EQ(file.grammar->numberOfRefusedLines(), 0) << lines;
  }
  const GrammarFile file = parseGrammar("g", grammarAround("E hue [red..blue] R\n"));
  EXPECT_EQ(file.grammar->enumValue(4), 3);  // blue, behind true, false, red and green
  EXPECT_NE(file.grammar->definedSection(3), 0);
  EXPECT_EQ(dumpGrammar(*file.grammar), "$TOPLEVEL${+NODE} NODE{HUE:E[RED,GREEN,BLUE]!}");
  EXPECT_EQ(file.grammar->spelling("HUE"), "hue");
  EXPECT_EQ(file.grammar->spelling("Hues"), "Hues");
}

TEST(GrammarFile, EveryFaultIsReportedAtItsPlace) {
  const struct {
    const char* lines;
    const char* problem;  // behind the line's number
  } kRows[] = {
      {"F width Q\n",
       ":9 the type of field `width' must be I (integer), B (boolean), S "
       "(string), R (real), P (IP address) or X (binary value)"},
      {"F width\n",
       ":3 the type of field `width' must be I (integer), B (boolean), S "
       "(string), R (real), P (IP address) or X (binary value)"},
      {"F\n", ":1 the name of the field is missing"},
      {"F 1st I\n", ":3 `1st' is no name: names begin with a letter or `_'"},
      {"F a I Q\n", ":7 unexpected `Q' after the entry"},
      {"F a I R R\n", ":9 unexpected `R' after the entry"},
      {"field a I\n",
       ":1 unknown entry `field': an entry begins with F, E, R, T or S and a "
       "blank"},
      {"\xc3\xa9\n",
       ":1 unknown entry `\xc3\xa9': an entry begins with F, E, R, T or S and a "
       "blank"},
      {"E hue [red, gren]\n",
       ":13 `gren' is not in the table of enumerators -> did you mean `green'?"},
      {"E hue [red..]\n", ":11 unexpected `..' among enumerators"},
      {"E hue [red\n", ":7 this list of enumerators is not closed"},
      {"E hue [red}\n", ":11 `}' closes a `['"},
      {"E hue []\n", ":7 field `hue' has no enumerators"},
      {"E hue red\n",
       ":7 the enumerators of `hue' are missing: E name [first second ...]"},
      {"R up nod\n", ":6 object type `nod' is not declared -> did you mean `node'?"},
      {"T nod\n", ":3 object type `nod' is not declared -> did you mean `node'?"},
      {"S layuot\n[\n]\n",
       ":3 `layuot' is not in the table of sections -> did you mean `layout'?"},
      {"S skip\n[\nF a I\n]\n", ":3 `skip' has a meaning of its own in every file"},
      {"S layout [\nF a I\n]\n", ":10 `[' must stand on a line of its own"},
  };
  for (const auto& row : kRows) {
    const GrammarFile file = parseGrammar("g", grammarAround(row.lines));
    EXPECT_EQ(problemsOf(file), std::to_string(kFirst) + row.problem + "\n") << row.lines;
    EXPECT_TRUE(file.hasErrors()) << row.lines;
  }

  const std::string last = std::to_string(kFirst + 1);
  EXPECT_EQ(problemsOf(parseGrammar("g", grammarAround("F a I\nF A S\n"))),
            last + ":3 field `A' is defined differently in line 22\n");
  EXPECT_EQ(problemsOf(parseGrammar("g", grammarAround("S layout\n{\nF a I\n]\n"))),
            "25:1 `]' closes the `{' of line 23\n");
  EXPECT_EQ(problemsOf(parseGrammar("g", grammarAround("S layout\n[\nF a I\n"))),
            "21:1 `[' of `node' is not closed\n");
}

TEST(GrammarFile, TablesAndTheWhole) {
  const struct {
    const char* text;
    const char* problems;
  } kRows[] = {
      {"",
       "-1:-1 no object type may stand at the top of a file: `O $toplevel$' with a `T' "
       "entry for each one that may is missing\n"},
      {"types\nnode\n",
       "1:1 `[' expected on the line after `types'\n"
       "2:1 unexpected `node': a table (`types', `sections', `enumerators') "
       "or an object type (`O name') begins here\n"},
      {"enumerators\n[\na 1\nb\nc 4294967296\ntrue 1\nA 2\nd 1 2\n}\n",
       "4:1 the value of `b' is missing\n"
       "5:3 `4294967296' is no integer of 32 bits, the value of an enumerator\n"
       "6:1 `true' is built in\n"
       "7:1 `A' is declared already in line 3\n"
       "8:5 unexpected `2' after the entry\n"
       "9:1 `}' closes the `[' of line 2\n"},
      {"O $toplevel$\n[\nT a\n]\nO a\n[\nO b\n",
       "6:1 `[' of `a' is not closed before the "
       "object type in line 7\n"},
      {"O a\nO $toplevel$\nT a\n]\nsections\n[\n",
       "5:1 the table `sections' must stand in "
       "front of the object types\n"
       "6:1 this table is not closed\n"},
      // What the reader would never recognise.
      {"enumerators\n[\na 1\n]\nO a\nF a I\nF id I\nF input S\n]\nO $toplevel$\nT a\n",
       "3:1 enumerator `a' cannot be written by name: the object type of that name is "
       "read "
       "first\n"
       "6:1 field `a' cannot be written by name: the object type of that name is read "
       "first\n"
       "7:1 field `id' can be given by position only: written by name it is the object's "
       "id\n"
       "8:1 field `input' can be given by position only: that name is built in\n"},
  };
  for (const auto& row : kRows) {
    EXPECT_EQ(problemsOf(parseGrammar("g", row.text)), row.problems) << row.text;
  }
}

TEST(GrammarFile, LimitsOfTheLibraryAreErrors) {
  std::string names;
  std::string entries;
  for (int i = 1; i <= 15; ++i) {
    const std::string number = std::to_string(i);
    names.append("s").append(number).append("\n");
    entries.append("S s").append(number).append("\n[\n]\n");
  }
  const std::string head =
      "sections\n[\n" + names + "]\nO $toplevel$\n[\nT a\n]\nO a\n[\n";
  EXPECT_EQ(problemsOf(parseGrammar("g", head + entries + "]\n")),
            "67:1 this section does not fit: at most 14 stand on one level\n");

  std::string deep;
  for (int i = 1; i <= 9; ++i) deep += "S s1\n[\n";
  for (int i = 1; i <= 9; ++i) deep += "]\n";
  EXPECT_EQ(problemsOf(parseGrammar("g", head + deep + "]\n")),
            "41:3 sections stand at most 8 inside each other\n");
}

TEST(GrammarFile, AnyBytesAreAnswered) {
  const std::string whole = grammarAround(
      "F a I  # a comment\nE hue {red .. blue, true} R\nR b node R\nS layout\n[\nF x R\n"
      "S line\n{\nT node\n}\n]\n");
  ASSERT_NE(parseGrammar("g", whole).grammar, nullptr);
  std::mt19937 random(1);
  int refused = 0;
  for (int round = 0; round < 400; ++round) {
    std::string text = whole.substr(0, random() % whole.size());
    for (int i = round % 4; i > 0 && !text.empty(); --i) {
      text[random() % text.size()] = static_cast<char>(random() % 256);
    }
    const GrammarFile file = parseGrammar("g", text);
    EXPECT_EQ(file.hasErrors(), file.grammar == nullptr);
    refused += file.hasErrors() ? 1 : 0;
    EXPECT_LE(file.problems.size(), 60U);
  }
  EXPECT_GT(refused, 300);

  std::string deep = "sections\n[\ns\n]\nO a\n";
  for (int i = 0; i < 100000; ++i) deep += "S s\n[\n";
  EXPECT_TRUE(parseGrammar("g", deep).hasErrors());
  EXPECT_TRUE(parseGrammar("g", {}).hasErrors());
  EXPECT_TRUE(parseGrammar(nullptr, std::string_view("O\0]", 3)).hasErrors());
  EXPECT_EQ(
      problemsOf(parseGrammar("g", std::string(NQ_OML_LARGEST_GRAMMAR_FILE + 1, ' '))),
      "-1:-1 a grammar file has at most 16 megabytes\n");
}

TEST(GrammarFile, ADiagnosticTellsTheBytesAndWhatExplainsThem) {
  // A byte order mark, and each kind of line end.
  const GrammarFile file = parseGrammar(
      "g", "\xef\xbb\xbfO $toplevel$\r\n{\r  T a\n\r]\nO a\n  F b I\n  F b S\n");
  ASSERT_EQ(file.problems.size(), 2U);
  const NQOMLDiagnostic& bracket = file.problems[0];
  EXPECT_EQ(bracket.message(), "Error (g:4:1) `]' closes the `{' of line 2 !\n");
  EXPECT_EQ(bracket.arguments, (std::vector<std::string>{"]", "{", "2"}));
  ASSERT_EQ(bracket.notes.size(), 1U);
  EXPECT_EQ(bracket.notes[0].place, (NQOMLDiagnosticPlace{2, 1, 17}));
  const NQOMLDiagnostic& field = file.problems[1];
  EXPECT_EQ(field.first, (NQOMLDiagnosticPlace{7, 5, 44}));
  EXPECT_EQ(field.last, field.first);
  EXPECT_EQ(field.notes.at(0).place, (NQOMLDiagnosticPlace{6, 3, 34}));
}

TEST(GrammarFile, IsReadFromAFile) {
  FakeSystem system;
  std::vector<NQOMLDiagnostic> diagnostics;
  const auto said = [&](const char* name) {
    EXPECT_EQ(nqReadGrammarFile(name, diagnostics), nullptr);
    return diagnostics.empty() ? "" : diagnostics.back().message();
  };
  EXPECT_EQ(said("missing"), "Fatal error #013 cannot open `missing' !\n");
  EXPECT_EQ(said(nullptr), "Fatal error #013 cannot open `' !\n");

  system.files["g"] = grammarAround(std::string(20000, '\n') + "F a I\n");
  const auto grammar = nqReadGrammarFile("g", diagnostics);
  ASSERT_NE(grammar, nullptr);
  EXPECT_EQ(dumpGrammar(*grammar), "$TOPLEVEL${+NODE} NODE{A:I}");
  EXPECT_TRUE(diagnostics.empty());

  system.readsUntilFailure = 1;
  EXPECT_EQ(said("g"), "Fatal error #003 something wrong !\n");
}

TEST(GrammarFile, NothingIsLostInSilenceWhenMemoryIsExhausted) {
  if (!FailingMemory::kWorks) GTEST_SKIP();
  const std::string text = grammarAround(
      "F a I R\nE hue [red..blue true]\nR b node\nS layout\n[\nF x R\nS line\n[\n]\n]\n"
      "F behind S\n");
  const std::string whole = dumpGrammar(*parseGrammar("g", text).grammar);
  GrammarFile file;
  for (long count = 0; file.grammar == nullptr; ++count) {
    {
      const FailingMemory memory(count, true);
      file.grammar = nqReadGrammarText(text, "g", file.problems);
    }
    if (!file.problems.empty()) {
      EXPECT_EQ(problemsOf(file), "-1:-1 memory exhausted\n");
    }
  }
  EXPECT_EQ(dumpGrammar(*file.grammar), whole);

  const char* const types[] = {"node", nullptr};
  const char* const sections[] = {"layout", "line", nullptr};
  const NQOMLStaticVEStruct enumerators[] = {
      {"red", 1}, {"green", 2}, {"blue", 3}, {nullptr, 0}};
  const char* const lines[] = {"O $toplevel$",
                               "T node",
                               "O node",
                               "F a I R",
                               "E hue [red..blue true]",
                               "R b node",
                               "S layout",
                               "F x R",
                               "S line",
                               "]",
                               "]",
                               "F behind S",
                               nullptr};
  bool isWhole = false;
  for (long count = 0; !isWhole; ++count) {
    FailingMemory memory(count, true);
    std::unique_ptr<NQOMLStatic> grammar;
    try {
      grammar = std::make_unique<NQOMLStatic>(types, sections, enumerators, lines);
    } catch (const std::bad_alloc&) {
    }
    memory.stop();
    if (grammar == nullptr) continue;
    EXPECT_EQ(findFault(*grammar), "") << count;
    isWhole = grammar->numberOfRefusedLines() == 0;
    if (isWhole) {
      EXPECT_EQ(dumpGrammar(*grammar), whole) << count;
    }
  }
}

TEST(Names, EditDistanceIsBounded) {
  const struct {
    const char* a;
    const char* b;
    int distance;
  } kRows[] = {{"", "", 0},
               {"a", "", 1},
               {"ab", "ba", 1},
               {"width", "widht", 1},
               {"kitten", "sitting", 3},
               {"ca", "abc", 3}};
  for (const auto& row : kRows) {
    for (int limit = 0; limit < 5; ++limit) {
      const int expected = std::min(row.distance, limit + 1);
      EXPECT_EQ(nqdetail::editDistance(row.a, row.b, limit), expected)
          << row.a << " " << row.b;
      EXPECT_EQ(nqdetail::editDistance(row.b, row.a, limit), expected)
          << row.b << " " << row.a;
    }
  }
}

TEST(Names, TheNearestNameIsNearEnough) {
  NQOMLStatic grammar;
  grammar.installObjTypeID("Node", nullptr, nullptr, nullptr, nullptr);
  grammar.installFieldID("thickness");
  grammar.installSectionID("layout");
  grammar.installEnumValueID("dot", 1);
  const struct {
    const char* word;
    const char* name;
  } kRows[] = {{"thikness", "thickness"},
               {"LAYUOT", "layout"},
               {"nde", "Node"},
               {"dit", "dot"},
               {"node", ""},
               {"x", ""},
               {"edge", ""},
               {"thing", ""}};
  for (const auto& row : kRows) {
    const auto near = nqdetail::nearestName(grammar, row.word);
    EXPECT_EQ(near ? near->name : "", row.name) << row.word;
  }
  EXPECT_FALSE(nqdetail::nearestName(grammar, std::string(100000, 'n')));
}

}  // namespace
