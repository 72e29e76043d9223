#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>

#include "nq/core/message_table.h"
#include "tests/support/fake_system.h"
#include "tests/support/oml_reading.h"
#include "tests/support/test_peer.h"

namespace {

struct Row {
  const char* text;    // of the file "f"
  const char* errors;  // all lines, without the final " !\n" of each
};

// The shortest files that produce each message, and the places they tell.
const Row kRows[] = {
    // Values of the wrong kind; 4 to 9 are the texts of what is expected.
    {"graph 1 { count \"x\" }", "Error #024 (f:1:17) integer number expected"},
    {"graph 1 { title 5 }", "Error #024 (f:1:17) string expected"},
    {"graph 1 { ratio 5 }", "Error #024 (f:1:17) floating point number expected"},
    {"graph 1 { addr 5 }", "Error #024 (f:1:16) IP address expected"},
    {"graph 1 { blob 5 }", "Error #024 (f:1:16) binary byte sequence expected"},
    {"graph 1 { flag 5 }", "Error #024 (f:1:16) `true' or `false' expected"},
    {"graph 1 { flag small }",
     "Error #022 (f:1:16) unexpected identifier `SMALL'|"
     "Error #024 (f:1:16) `true' or `false' expected"},
    {"graph 1 { count foo }", "Error #022 (f:1:17) unexpected identifier `foo'"},
    {"graph 1 { count small }", "Error #022 (f:1:17) unexpected identifier `SMALL'"},
    {"graph 1 { count: $a,b }", "Error #022 (f:1:18) unexpected identifier `$,a,b'"},
    {"graph 1 { count: Layout }", "Error #022 (f:1:18) unexpected identifier `LAYOUT'"},
    {"graph 1 { size true }", "Error #025 (f:1:16) different value type expected"},
    {"graph 1 { few large }", "Error #025 (f:1:15) different value type expected"},
    {"graph 1 { size 1 }", "Error #025 (f:1:16) different value type expected"},
    {"graph 1 { link \"a\" }", "Error #026 (f:1:16) object id expected"},
    {"graph 1 { link: node }", "Error #022 (f:1:17) unexpected identifier `NODE'"},
    {"graph \"a\"", "Error #026 (f:1:7) object id expected"},
    {"graph a,b", "Error #026 (f:1:7) object id expected"},
    {"graph $a", "Error #026 (f:1:7) object id expected"},
    {"graph 1 { id 1.5 }", "Error #026 (f:1:14) object id expected"},
    {"include 5", "Error #024 (f:1:9) string expected"},
    {"graph 1 { include 5; count 3 }", "Error #024 (f:1:19) string expected"},
    {"graph 1 { odd 5 }", "Error #021 (f:1:15) unexpected field"},
    {"graph 1 { odd: % }", "Error #020 (f:1:16) unexpected token"},
    // Tokens.
    {"% graph 1", "Error #020 (f:1:1) unexpected token"},
    {"graph 1 { count: 2147483648 }", "Error #020 (f:1:18) unexpected token"},
    {"graph 1 { ratio: 1e }", "Error #020 (f:1:18) unexpected token"},
    {"graph 1 { comment \"unchecked\" a: 1.2.3 }",
     "Error #020 (f:1:34) unexpected token"},
    {"graph 1 { title \"\\0\" }", "Error #020 (f:1:17) unexpected token"},
    {"graph 1 { link: a,,b }",
     "Error #020 (f:1:17) unexpected token|"
     "Error #022 (f:1:20) unexpected identifier `b'"},
    {"graph 1 { } /*", "Error #017 (f:1:13) unterminated comment"},
    {"version 1 graph 1 { title \"a }",
     "Error #018 (f:1:27) unterminated string|"
     "Error #015 (f:1:19) left bracket without right bracket"},
    {"graph 1 { (\n[",
     "Error #015 (f:2:1) left bracket without right bracket|"
     "Error #015 (f:1:11) left bracket without right bracket|"
     "Error #015 (f:1:9) left bracket without right bracket"},
    {"graph 1 } version 1", "Error #016 (f:1:9) right bracket without left bracket"},
    {"graph 1 {\n) version 1",
     "Error #050 (f:1:9) left bracket different than right bracket|"
     "Error #051 (f:2:1) right bracket different than left bracket"},
    // Values without a name, and names without a value.
    {"graph 1 { version 1 }",
     "Error #046 (f:1:11) field `VERSION' is not allowed in `GRAPH'"},
    {"5 \"x\"", "Error #023 (f:1:3) unexpected attribute value"},
    {"graph 1 { layout _ 5 }", "Error #023 (f:1:20) unexpected attribute value"},
    {"graph 1 { comment \"unchecked\" 5 }",
     "Error #023 (f:1:31) unexpected attribute value"},
    {"graph 1 { comment \"unchecked\" a ; b = = c 1 }",
     "Error #020 (f:1:33) unexpected token|Error #020 (f:1:39) unexpected token"},
    {"graph 1 { count ; link : : include = = id ; }",
     "Error #020 (f:1:17) unexpected token|Error #020 (f:1:26) unexpected token|"
     "Error #020 (f:1:38) unexpected token|Error #026 (f:1:43) object id expected"},
    {"graph 1 { ratio 1.2.3,4 }",
     "Error #020 (f:1:17) unexpected token|Error #020 (f:1:22) unexpected token|"
     "Error #024 (f:1:23) floating point number expected"},
    {"graph 1 { comment \"unchecked\" a } version \"x\"",
     "Error #023 (f:1:33) unexpected attribute value|"
     "Error #024 (f:1:43) integer number expected"},
    {"graph", "Error #026 (f:1:1) object id expected"},
    {"version", "Error #024 (f:1:1) integer number expected"},
    {"version :", "Error #024 (f:1:1) integer number expected"},
    {"comment", "Error #024 (f:1:1) string expected"},
    {"skip", "Error #023 (f:1:1) unexpected attribute value"},
    {"graph 1 { } :", "Error #023 (f:1:13) unexpected attribute value"},
    {"field \"mine\" mine", nullptr},
    {"graph 1 { link",
     "Error #015 (f:1:9) left bracket without right bracket|"
     "Error #026 (f:1:11) object id expected"},
    {"graph 1 { count } version 5", "Error #024 (f:1:17) integer number expected"},
    {"graph 1 { node } version 5", "Error #026 (f:1:16) object id expected"},
    {"graph 1 { id } version 5", "Error #026 (f:1:14) object id expected"},
    {"graph 1 { layout } version 5",
     "Error #024 (f:1:18) floating point number expected"},
    // Ids and references.
    {"graph 1 { id 2 }", "Error #030 (f:1:14) object with double id"},
    {"graph 1 { node a group a }",
     "Error #031 (f:1:18) double defined object of different type"},
    {"graph 1 { any a }", "Error #028 (f:1:11) reference to undefined object"},
    {"graph 1 { any $ }", "Error #028 (f:1:11) reference to undefined object"},
    {"graph 1 { link\n1,a group a }", "Error #027 (f:1:11) `NODE' reference expected"},
    {"graph 1 { strict a { first 1 } }",
     "Error #029 (f:1:11) missing attribute `SECOND'"},
    {"graph 1 { strict a { } }", "Error #029 (f:1:11) missing attribute `SECOND'"},
    {"graph 1 graph 2", "Fatal error #033 (f:1:9) two top level objects"},
    // Sections.
    {"graph 1 { outer outer depth 1 }",
     "Error #036 (f:1:17) section `OUTER' is not direct or unique subsection of this "
     "section `OUTER' of `GRAPH'"},
    {"graph 1 { inner depth 1 }",
     "Error #035 (f:1:11) section `INNER' is not direct or unique subsection of `GRAPH'|"
     "Error #046 (f:1:17) field `DEPTH' is not allowed in `GRAPH'"},
    {"graph 1 { _ outer view zoom 1.5 }",
     "Error #036 (f:1:19) section `VIEW' is not direct or unique subsection of this "
     "section `OUTER' of `GRAPH'|"
     "Error #047 (f:1:24) field `ZOOM' is not allowed in this section `VIEW' or all "
     "sections (after wildcard expansion) of `GRAPH'"},
    {"graph 1 { _ view zoom 1.5 }",
     "Error #037 (f:1:13) section `VIEW' is not direct or unique subsection of all "
     "sections (after wildcard expansion) of `GRAPH'"},
    {"node 1 { _ _ layout pad 1 }",
     "Error #035 (f:1:14) section `LAYOUT' is not direct or unique subsection of `NODE'|"
     "Error #047 (f:1:21) field `PAD' is not allowed in this section `LAYOUT' or all "
     "sections (after wildcard expansion) of `NODE'"},
    {"graph 1 { layout _ width 1 }",
     "Error #047 (f:1:20) field `WIDTH' is not allowed in this section `_' or all "
     "sections (after wildcard expansion) of `GRAPH'"},
    {"graph 1 { layout zoom 1.5 }",
     "Error #047 (f:1:18) field `ZOOM' is not allowed in this section `LAYOUT' or all "
     "sections (after wildcard expansion) of `GRAPH'"},
    // Objects where they may not stand.
    {"graph 1 { graph 2 }", "Error #038 (f:1:11) `GRAPH' is not allowed in `GRAPH'"},
    {"group 1", "Error #038 (f:1:1) `GROUP' is not allowed in `$TOPLEVEL$'"},
    {"graph 1 { layout { group 2 } }",
     "Error #039 (f:1:20) `GROUP' is not allowed in this section `LAYOUT' of `GRAPH'"},
    {"graph 1 { node defaults { group 2 } }",
     "Error #040 (f:1:27) `GROUP' is not allowed in `NODE defaults'"},
    {"graph 1 { node defaults { layout node 2 } }",
     "Error #041 (f:1:34) `NODE' is not allowed in this section `LAYOUT' of `NODE "
     "defaults'"},
    {"graph 1 { graph defaults }",
     "Error #042 (f:1:11) `GRAPH defaults' is not allowed in `GRAPH'"},
    {"graph 1 { layout group defaults }",
     "Error #043 (f:1:18) `GROUP defaults' is not allowed in this section `LAYOUT' of "
     "`GRAPH'"},
    {"graph 1 { node defaults { node defaults } }",
     "Error #044 (f:1:27) `NODE defaults' is not allowed in `NODE defaults'"},
    {"graph 1 { node defaults { layout node defaults } }",
     "Error #045 (f:1:34) `NODE defaults' is not allowed in this section `LAYOUT' of "
     "`NODE defaults'"},
    // Where the block turns into defaults only behind them.
    {"graph { title \"t\" layout node 2 { } group 3 id: defaults node 4 }",
     "Error #041 (f:1:26) `NODE' is not allowed in this section `LAYOUT' of `GRAPH "
     "defaults'|Error #040 (f:1:37) `GROUP' is not allowed in `GRAPH defaults'|"
     "Error #040 (f:1:58) `NODE' is not allowed in `GRAPH defaults'"},
    {"graph 1 { node { node defaults { } node a layout name defaults } }",
     "Error #044 (f:1:18) `NODE defaults' is not allowed in `NODE defaults'"},
    {"graph 1 { count node 2 { x 1 } }",
     "Error #048 (f:1:17) keyword `COUNT' not allowed as section containing `NODE' "
     "(1:17)"},
    {"graph 1 {\ngraph node 2 }",
     "Error #048 (f:2:7) keyword `GRAPH' not allowed as section containing `NODE' (2:7)"},
};

// Notes the code of each message, and what 24 expects.
class CodeReader : public TestReader {
 public:
  std::set<int> codes;

  using NQOMLFile::errorCode;
  using NQOMLFile::internalErrorMessage;
  using NQOMLFile::internalWarningMessage;

  void storeNothing() {
    TestReader::vErrorMessage(nullptr, 1, 2, 7, nullptr, 0);
    TestReader::vWarningMessage(nullptr, 1, 2, 7, nullptr);
  }

 protected:
  void vErrorMessage(const char* file, nqLong line, int column, int code,
                     const char* text, int fatal) override {
    codes.insert(code);
    for (int what = 4; code == 24 && what < 10; ++what) {
      if (text == getStringResource(what) + std::string(" expected")) codes.insert(what);
    }
    TestReader::vErrorMessage(file, line, column, code, text, fatal);
  }
  void vWarningMessage(const char* file, nqLong line, int column, int code,
                       const char* text) override {
    codes.insert(code);
    TestReader::vWarningMessage(file, line, column, code, text);
  }
};

class Diagnostics : public testing::Test {
 protected:
  NQFileCodeEnum read(const std::string& text, bool binary = false) {
    system.files["f"] = text;
    const NQFileCodeEnum result = reader.read("f", grammar, binary);
    EXPECT_EQ(system.openFiles(), 0);
    return result;
  }
  // The errors of a read, with "|" between lines as in the rows.
  std::string lines() const {
    std::string text = reader.errors();
    for (std::size_t at; (at = text.find(" !\n")) != std::string::npos;) {
      text.replace(at, 3, "|");
    }
    if (!text.empty()) text.pop_back();
    return text;
  }

  FakeSystem system;
  EverythingGrammar grammar;
  CodeReader reader;
};

// No id is lost or taken for another when there is no memory for it.
TEST_F(Diagnostics, TellWhereMemoryForIDsEnds) {
  struct : TestReader {
    int vReadProgress(nqInt64, nqInt64) override {
      NQTestPeer::exhaustIDs(*this);
      return 1;
    }
  } exhausted;
  const struct {
    const char* text;
    const char* place;
    bool binary;
  } rows[] = {
      {"graph a { }", "1:7", false},
      {"graph 1 { link a,1 }", "1:16", false},
      {"graph 1 { any 1,a }", "1:15", false},
      {"graph 1 { any $a }", "1:15", false},
      {"o\1Na\"", "1:3", true},
  };
  for (const auto& row : rows) {
    system.files["f"] = row.text;
    EXPECT_EQ(exhausted.read("f", grammar, row.binary), NQ_FILE_READ_ERROR);
    EXPECT_EQ(exhausted.errors(),
              std::string("Fatal error #012 (f:") + row.place + ") memory exhausted !\n");
  }
}

TEST_F(Diagnostics, TellWhatIsWrongAndWhere) {
  for (const Row& row : kRows) {
    SCOPED_TRACE(row.text);
    const std::size_t objects = reader.objects().size();
    EXPECT_EQ(read(row.text), row.errors == nullptr ? NQ_FILE_OK : NQ_FILE_READ_ERROR);
    EXPECT_EQ(lines(), row.errors == nullptr ? "" : row.errors);
    EXPECT_EQ(reader.objects().size() - objects,
              lines().find("#033") == std::string::npos ? 0U : 2U);
  }

  // However long the line.
  const std::string far = std::string(40'000, ' ') + "strict a { }";
  EXPECT_EQ(read("graph 1 { " + far + "}"), NQ_FILE_READ_ERROR);
  EXPECT_EQ(lines(), "Error #029 (f:1:40011) missing attribute `SECOND'");

  // What takes more than a text.
  reader.maxNestingDepth(1);
  EXPECT_EQ(read("graph 1 { ["), NQ_FILE_READ_ERROR);
  EXPECT_EQ(lines(), "Fatal error #012 (f:1:11) memory exhausted");
  reader.maxNestingDepth(256);
  EXPECT_EQ(read("version 1 include\n \"gone\" %"), NQ_FILE_OPEN_ERROR);
  EXPECT_EQ(lines(), "Fatal error #013 (f:2:2) cannot open `gone'");
  EXPECT_EQ(reader.read("gone", grammar), NQ_FILE_OPEN_ERROR);
  EXPECT_EQ(lines(), "Fatal error #013 cannot open `gone'");
  EXPECT_EQ(read("Xi\2a", true), NQ_FILE_READ_ERROR);
  EXPECT_EQ(lines(),
            "Error #019 (f:1:1) unterminated binary sequence|"
            "Error #024 (f:1:1) integer number expected");
  system.failingClose = true;
  EXPECT_EQ(read("graph 1"), NQ_FILE_READ_ERROR);
  EXPECT_EQ(lines(), "Error #014 (f:1:8) cannot close this file");
  system.failingClose = false;

  // A failing read is not the end of the data, in an included file neither.
  for (const int reads : {0, 1, 3}) {
    system.readsUntilFailure = reads;
    system.files["g"] = "graph 1";
    EXPECT_EQ(read("include \"g\""), NQ_FILE_READ_ERROR);
    EXPECT_EQ(lines(), reads == 0   ? "Fatal error #003 (f:1:1) cannot read `f'"
                       : reads == 1 ? "Fatal error #003 (g:1:1) cannot read `g'"
                                    : "Fatal error #003 (g:1:8) cannot read `g'");
    EXPECT_NE(reader.error(), 0);
  }
  // Nor does anything end there, whose end would be an error, or a value.
  for (const char* const text : {"/* x", "graph 1 { title \"x", "graph 1 { title \"\\0",
                                 "version 1.2.3", "0x1", "a,", "skip { } {"}) {
    system.readsUntilFailure = 1;
    EXPECT_EQ(read(text), NQ_FILE_READ_ERROR);
    EXPECT_EQ(lines().rfind("Fatal error #003", 0), 0U) << lines();
    EXPECT_EQ(reader.numberOfErrors(), 1);
  }
  for (const char* const text : {"Xi\5ab", "\"ab", "\"\\0", "Nab", "FI"}) {
    system.readsUntilFailure = 1;
    EXPECT_EQ(read(text, true), NQ_FILE_READ_ERROR);
    EXPECT_EQ(lines().rfind("Fatal error #003", 0), 0U) << lines();
    EXPECT_EQ(reader.numberOfErrors(), 1);
  }
  system.readsUntilFailure = -1;
  EXPECT_EQ(read("graph 1"), NQ_FILE_OK);
  EXPECT_EQ(reader.error(), 0);

  NQCounted top;
  system.files["f"] = "\n graph 1 { }";
  EXPECT_EQ(reader.read("f", grammar, false, &top, 2), NQ_FILE_READ_ERROR);
  EXPECT_EQ(lines(), "Fatal error #032 (f:2:2) wrong top level object");
  reader.refuse = true;
  EXPECT_EQ(read("graph 1"), NQ_FILE_READ_ERROR);
  EXPECT_EQ(lines(), "Error #034 several semantic errors detected");
  reader.refuse = false;
  reader.leaveFields = true;
  EXPECT_EQ(read("graph 1 { count 1 }"), NQ_FILE_OK);
  EXPECT_EQ(reader.warnings(),
            "Warning # 49 unable to set fields in several objects !\n");
  reader.maxNumberOfWarnings(1);
  EXPECT_EQ(read("graph 1 { count 1 }"), NQ_FILE_READ_ERROR);
  EXPECT_EQ(lines(), "Fatal error #011 too many warnings");
  EXPECT_EQ(reader.numberOfErrors(), 1);
  reader.maxNumberOfErrors(2);
  EXPECT_EQ(read("% % % % %"), NQ_FILE_READ_ERROR);
  EXPECT_EQ(lines(),
            "Error #020 (f:1:1) unexpected token|"
            "Error #020 (f:1:3) unexpected token|Fatal error #010 too many errors");
  EXPECT_EQ(reader.numberOfErrors(), 3);

  // All but the prefixes of the lines have been seen.
  for (int code = 3; code < 52; ++code) {
    EXPECT_TRUE(reader.codes.contains(code)) << code << " has no row";
  }
}

TEST_F(Diagnostics, ComeFromHooksToo) {
  EXPECT_EQ(read("\n graph 1 { count 1 }"), NQ_FILE_OK);
  reader.errorMessage(nullptr, 7, "100% wrong %s", 0);
  reader.errorMessage(nullptr, 1234, nullptr, 0);
  reader.warningMessage(nullptr, 7, "odd");
  reader.warningMessage(nullptr, 70, nullptr);
  EXPECT_EQ(reader.errors(), "Error #007 100% wrong %s !\nError #1234  !\n");
  EXPECT_EQ(reader.warnings(), "Warning #  7 odd !\nWarning # 70 something wrong !\n");
  EXPECT_EQ(reader.numberOfErrors(), 2);
  EXPECT_EQ(reader.numberOfWarnings(), 2);

  EXPECT_EQ(read("graph 1"), NQ_FILE_OK);
  reader.storeNothing();
  EXPECT_EQ(reader.errors(), "Error #007 (:1:2)  !\n");
  EXPECT_EQ(reader.warnings(), "Warning #007 (:1:2)  !\n");

  // With texts of the table and their arguments, wherever the reader says.
  NQOMLToken token;
  token.line = 4;
  token.column = 70'000;
  reader.atHook = [&, this](const char* hook) {
    if (std::string(hook) != "include") return;
    reader.internalErrorMessage(22, nullptr, "here", nullptr, 0);
    reader.internalErrorMessage(reader.fileNameIndex(), &token, 36, "a", "b", "c", 0);
    reader.internalErrorMessage(reader.fileNameIndex(), nullptr, 20, "no", "%s", "", 0);
    reader.internalErrorMessage("x", 5, 6, 7, "%s-%s", "8", nullptr, "9", 0);
    reader.internalErrorMessage(nullptr, -1, 0, 99, nullptr, nullptr, nullptr, 1);
    reader.internalErrorMessage("x", 5, 6, 7, nullptr, nullptr, nullptr, 0);
    (void)reader.errorCode(NQ_FILE_OPEN_ERROR);
  };
  system.files["g"] = "";
  EXPECT_EQ(read("\ninclude \"g\""), NQ_FILE_OPEN_ERROR);
  EXPECT_EQ(lines(),
            "Error #022 (f:2:12) unexpected identifier `here'|"
            "Error #036 (f:4:70000) section `a' is not direct or unique subsection of "
            "this section `b' of `c'|"
            "Error #020 unexpected token|Error #007 (x:5:6) 8-9|Fatal error #099 ");
  reader.atHook = nullptr;
  reader.internalWarningMessage("x", 5, 6, 9);
  EXPECT_EQ(read("graph 1"), NQ_FILE_OK);
  reader.internalWarningMessage("x", 5, 6, 9);
  reader.internalWarningMessage("x", -1, 6, 9, "%s");
  EXPECT_EQ(reader.warnings(),
            "Warning #009 (x:5:6) `true' or `false' !\nWarning #  9 %s !\n");

  // At a node, and a fatal one: it ends the read where it is.
  reader.listEvents = true;
  reader.atHook = [this](const char* hook) {
    if (std::string(hook) != "count") return;
    NQOMLSyntaxObject* node = nullptr;  // the only one
    for (nqLong id = 0; node == nullptr && id < 10; ++id) node = reader.pSyntaxObject(id);
    ASSERT_NE(node, nullptr);
    reader.warningMessage(node, 5, "near");
    reader.errorMessage(node, 6, "here", 1);
    reader.errorMessage(node, 6, "again", 0);
    reader.warningMessage(node, 5, "again");
  };
  EXPECT_EQ(read("\n graph $0 { id 1 count 1 count 2 }"), NQ_FILE_READ_ERROR);
  EXPECT_EQ(read("\n graph { count 1 count 2 }"), NQ_FILE_READ_ERROR);
  EXPECT_EQ(reader.warnings(), "Warning #005 (f:2:2) near !\n");
  EXPECT_EQ(reader.errors(), "Fatal error #006 (f:2:2) here !\n");
  EXPECT_EQ(reader.events,
            "check graph#$,-2; create graph#$,-2; pre $toplevel$#; post $toplevel$#; "
            "pre graph#$,-2 in 4; count graph#$,-2 in 4; ");
  EXPECT_EQ(reader.isFatalError(), 1);
  reader.atHook = nullptr;
  EXPECT_EQ(read("graph 1"), NQ_FILE_OK);
  EXPECT_EQ(reader.isFatalError(), 0);
}

TEST_F(Diagnostics, FillBuffersOfAnySize) {
  const std::string line = "Error #001 abcdefghij !\n";  // 24 characters
  for (int size = 0; size < 64; ++size) {
    ASSERT_EQ(reader.pErrorStringBuffer(size) == nullptr, size == 0);
    EXPECT_EQ(reader.errorStringBufferSize(), static_cast<unsigned>(size));
    for (int i = 0; i < 3; ++i) reader.errorMessage(nullptr, 1, "abcdefghij", 0);
    reader.numberOfErrors(0);
    if (size == 0) continue;
    const std::string text = reader.errors();
    ASSERT_LT(text.size(), static_cast<std::size_t>(size));
    std::string expected = line + line + line;
    const auto room = static_cast<std::size_t>(std::max(size - 6, 0));
    if (room < expected.size()) {
      expected.resize(room);
      if (size > 4) expected += "...\n";
    }
    EXPECT_EQ(text, size < 2 ? "" : expected) << size;
  }
  // A negative size only asks.
  EXPECT_EQ(reader.pErrorStringBuffer(-1), reader.pErrorStringBuffer());
  EXPECT_EQ(reader.errorStringBufferSize(), 63U);

  // Its user may empty it between messages.
  reader.pErrorStringBuffer(100)[0] = '\0';
  reader.errorMessage(nullptr, 1, "abcdefghij", 0);
  reader.pErrorStringBuffer()[0] = '\0';
  reader.errorMessage(nullptr, 2, "b", 0);
  EXPECT_EQ(reader.errors(), "Error #002 b !\n");
}

}  // namespace
