#include <gtest/gtest.h>

#include <charconv>
#include <cmath>
#include <cstring>
#include <functional>
#include <limits>
#include <new>
#include <random>
#include <stdexcept>
#include <string>

#include "nq/containers/dlist.h"
#include "nq/containers/index_hash_table.h"
#include "nq/core/string_pool.h"
#include "nq/oml/bin_value.h"
#include "nq/oml/encoding/number_text.h"
#include "nq/oml/oml_object.h"
#include "tests/support/failing_memory.h"
#include "tests/support/fake_system.h"
#include "tests/support/temporary_directory.h"
#include "tests/support/tree_writing.h"

namespace {

using namespace std::string_literals;

// The indices of these names, which the expected bytes contain, count on behind the
// built-in ones: types from 1, sections and enumerators from 2, fields from 7.
class SmallGrammar : public NQOMLStatic {
 public:
  SmallGrammar()
      : NQOMLStatic(types(), sections(), enumerators(), definitions(), 10, 10, 10, 10, 10,
                    10) {}

 private:
  static NQOMLStaticOEStruct* types() {
    static NQOMLStaticOEStruct rows[] = {
        {"graph", nullptr, nullptr, nullptr, nullptr},
        {"node", nullptr, nullptr, nullptr,
         [](void* file, const NQObject* object) {
           const auto* const oml = static_cast<const NQOMLObject*>(object);
           static_cast<NQOMLFile*>(file)->writeAttribute("x", 1);
           return static_cast<int>(oml->graphFileID());
         }},
        {nullptr, nullptr, nullptr, nullptr, nullptr}};
    return rows;
  }
  static const char* const* sections() {
    static const char* const names[] = {"layout", nullptr};
    return names;
  }
  static NQOMLStaticVEStruct* enumerators() {
    static NQOMLStaticVEStruct rows[] = {{"red", 5}, {nullptr, 0}};
    return rows;
  }
  static const char* const* definitions() {
    static const char* const lines[] = {"O $toplevel$",
                                        "[",
                                        "T graph",
                                        "T node",
                                        "]",
                                        "O graph",
                                        "[",
                                        "T node",
                                        "]",
                                        "O node",
                                        "[",
                                        "F x I",
                                        "F r R",
                                        "F s S",
                                        "F b B",
                                        "F a P",
                                        "F d X",
                                        "E e [red]",
                                        "R to node",
                                        "T node",
                                        "S layout",
                                        "[",
                                        "F x I",
                                        "]",
                                        "]",
                                        nullptr};
    return lines;
  }
};

struct Thing : NQOMLObject {
  explicit Thing(nqInt64 id = 0, NQOMLObject* thingOwner = nullptr) : owner(thingOwner) {
    iUserField(id);
  }
  NQOMLObject* pOMLOwner() const override { return owner; }
  void collectOwnedOMLObjects(NQDList& list) override {
    for (NQOMLObject* part : parts) {
      if (list.appendObject(part) == nullptr) throw std::bad_alloc();
    }
  }
  NQOMLObject* owner;
  std::vector<NQOMLObject*> parts;
};

class TestWriter : public NQOMLFile {
 public:
  std::function<void(TestWriter&)> script;
  NQObject* top = nullptr;  // as the hook was given it

 protected:
  void vWriteObject(NQObject* object) override {
    top = object;
    if (script) script(*this);
  }
};

using Script = std::function<void(TestWriter&)>;

class Writing : public testing::Test {
 protected:
  NQFileCodeEnum write(const Script& script, bool binary = false, NQObject* top = nullptr,
                       int numbers = 0) {
    writer.script = script;
    return writer.writeOMLFile("f", &grammar, top, binary ? 1 : 0, numbers, 0);
  }
  std::string written(const Script& script, bool binary = false,
                      NQObject* top = nullptr) {
    EXPECT_EQ(write(script, binary, top), NQ_FILE_OK);
    EXPECT_EQ(writer.storedOnDisk(), 1);
    return system.files["f"];
  }

  FakeSystem system;
  SmallGrammar grammar;
  TestWriter writer;
};

TEST_F(Writing, LaysOutEveryOperationInBothEncodings) {
  Thing five(5);
  Thing big(0x1FFFFFFFF);  // of which the low 32 bits count, signed
  const NQObject plain;
  const struct {
    const char* name;
    Script script;
    std::string text;
    std::string binary;
  } kRows[] = {
      {"an object on several lines",
       [&](TestWriter& file) {
         file.writeObjectStart("node", &five, 0, 1);
         file.writeOpeningBracket();
         file.writeAttribute("x", 3);
         file.writeSectionStart("layout", 0);
         file.writeOpeningBracket();
         file.writeAttribute("x", 4L);
         file.writeClosingBracket();
         file.writeClosingBracket();
       },
       "node: 5\r\n{\r\n\tx: 3\r\n\tlayout: \r\n\t{\r\n\t\tx: 4\r\n\t}\r\n}\r\n",
       "o\2N5\"{f\7i\3s\2{f\7i\4}}"s},
      {"one on a single line, which its bracket ends",
       [&](TestWriter& file) {
         file.writeObjectStart("Node", &five, 1, 1);
         file.writeOpeningBracket();
         file.writeAttribute("X", 3);
         file.writeSectionStart("layout", 1);
         file.writeOpeningBracket();
         file.writeAttribute("x", 4);
         file.writeClosingBracket();
         file.writeAttribute("x", 5);
         file.writeClosingBracket();
       },
       "Node: 5 { X: 3 layout:  { x: 4 }\r\n\tx: 5\r\n}\r\n",
       "o\2N5\"{f\7i\3s\2{f\7i\4}f\7i\5}"s},
      {"starts of other kinds, and unknown names",
       [&](TestWriter& file) {
         file.writeObjectStart("node", &big, 0, 1);
         file.writeObjectStart("node", &five, 0, 0);
         file.writeObjectStart("node", &plain, 0);
         file.writeObjectStart("what", static_cast<const NQOMLObject*>(nullptr), 0, 1);
         file.writeObjectDefaultStart("node");
         file.writeBlancLine();
         file.writeSectionStart("what", 0);
         file.writeAttribute("what", "what");
       },
       "node: -1\r\nnode:\r\nnode:\r\nwhat:\r\nnode: defaults\r\n\r\nwhat: \r\n"
       "what: what\r\n",
       "o\2N-1\"o\2o\2O\xff\xff\xff\xffo\2Ndefaults\"S\xff\xff\xff\xff"
       "F\xff\xff\xff\xff"
       "E\xff\xff\xff\xff"s},
      {"numbers",
       [](TestWriter& file) {
         file.writeAttribute("x", 255);
         file.writeAttribute("x", 256);
         file.writeAttribute("x", -1);
         file.writeAttribute("x", std::numeric_limits<nqLong>::min());
         file.writeAttribute("r", 1.5);
         file.writeAttribute("r", -0.25F);
         file.writeAttribute("r", 0.0);
         file.writeAttribute("r", 3e9);
       },
       "x: 255\r\nx: 256\r\nx: -1\r\nx: -2147483648\r\nr: 1.500000\r\nr: -0.250000\r\n"
       "r: 0.000000\r\nr: 3000000000.000000\r\n",
       "f\7i\xff"
       "f\7I\0\0\1\0f\7I\xff\xff\xff\xff"
       "f\7I\x80\0\0\0"
       "f\x08R\x00\xe4\xe1\xc0R\xff\xff\xff\xf9"
       "f\x08R\xfe\x82\x87\xc0R\xff\xff\xff\xf8"
       "f\x08r\0r\0"
       "f\x08R\x01\xc9\xc3\x80r\2"s},
      {"words, truth, addresses, strings",
       [](TestWriter& file) {
         file.writeAttribute("e", "red");
         file.writeBoolAttribute("b", 7);
         file.writeBoolAttribute("b", 0);
         file.writeIPBytesAttribute("a", 0x0A0001FF);
         file.writeIPBytesAttribute("a", 9);
         file.writeStringAttribute("s", "");
         file.writeStringAttribute("s", "\"");
         file.writeStringAttribute("s", "a\\b\n\1");
       },
       "e: red\r\nb: true\r\nb: false\r\na: 10.0.1.255\r\na: 0.0.0.9\r\ns: \"\"\r\n"
       "s: \"\\\"\"\r\ns: \"a\\\\b\n\1\"\r\n",
       "f\x0d"
       "e\2f\x0a"
       "e\0f\x0a"
       "e\1f\x0b"
       "P\x0a\0\1\xff"
       "f\x0bp\x09"
       "f\x09\"\"f\x09\"\\\\\\\"\"f\x09\"a\\\\\\\\b\n\1\""s},
      {"nothing",
       [&](TestWriter& file) {
         const NQOMLBinValue value(1, "x");
         file.writeObjectStart(nullptr, &five, 0, 1);
         file.writeObjectDefaultStart(nullptr);
         file.writeSectionStart(nullptr, 0);
         file.writeAttribute(nullptr, "red");
         file.writeAttribute("e", static_cast<const char*>(nullptr));
         file.writeAttribute(nullptr, 1);
         file.writeAttribute(nullptr, 1.5);
         file.writeAttribute(nullptr, &value);
         file.writeAttribute("d", static_cast<const NQOMLBinValue*>(nullptr));
         file.writeAttribute(nullptr, &five, &five, 1);
         file.writeAttribute("to", nullptr, &five, 1);
         file.writeStringAttribute(nullptr, "a");
         file.writeStringAttribute("s", nullptr);
         file.writeIPBytesAttribute(nullptr, 1);
       },
       "", ""},
      {"more closing than opening brackets",
       [](TestWriter& file) {
         file.writeClosingBracket();
         file.writeOpeningBracket();
         file.writeOpeningBracket();
         file.writeAttribute("x", 1);
       },
       "}\r\n{\r\n{\r\n\tx: 1\r\n", "}{{f\7i\1"s},
  };
  for (const auto& row : kRows) {
    EXPECT_EQ(written(row.script, false), row.text) << row.name;
    EXPECT_EQ(written(row.script, true), row.binary) << row.name;
  }
}

TEST_F(Writing, RefersToObjectsByTheirPlaces) {
  Thing top(3);
  Thing middle(7, &top);
  Thing inner(12, &middle);
  Thing sibling(13, &middle);
  Thing stranger(20);
  Thing withoutID(0, &top);
  Thing above(1);
  top.owner = &above;
  const auto refer = [&](TestWriter& file) {
    file.writeAttribute("to", &inner, &sibling, 1);
    file.writeAttribute("to", &inner, &middle, 1);
    file.writeAttribute("to", &inner, nullptr, 0);
    file.writeAttribute("to", &top, &middle, 1);
    file.writeAttribute("to", &stranger, &inner, 1);
    file.writeAttribute("to", &withoutID, &middle, 1);
  };
  EXPECT_EQ(written(refer, false, &top),
            "to: 12\r\nto: $3,7,12\r\n$3,7,12\r\nto: $3\r\nto: $20\r\n");
  EXPECT_EQ(written(refer, true, &top),
            "f\x0eN12\"f\x0e$3,7,12\"$3,7,12\"f\x0e$3\"f\x0e$20\"");
  EXPECT_EQ(writer.top, &top);

  // Owners in a circle end the walk.
  for (const std::size_t length : {1U, 2U, 3U, 5U}) {
    std::vector<Thing> circle(length);
    for (std::size_t i = 0; i < length; ++i) {
      circle[i].iUserField(static_cast<nqInt64>(i) + 1);
      circle[i].owner = &circle[(i + 1) % length];
    }
    const std::string text = written(
        [&](TestWriter& file) { file.writeAttribute("to", circle.data(), &top, 1); });
    EXPECT_LT(text.size(), 60U);
    EXPECT_EQ(text.substr(text.size() - 3), "1\r\n") << text;
  }
}

TEST_F(Writing, LaysOutBinaryValues) {
  const auto text = [this](nqLong length, int depth, int singleLine = 0) {
    return written([=](TestWriter& file) {
      const NQOMLBinValue value(length, std::string(10000, '\xAB').c_str());
      for (int i = 0; i < depth; ++i) file.writeOpeningBracket();
      file.writeSectionStart("layout", singleLine);
      file.writeAttribute("d", &value);
      file.writeAttribute("x", 1);
    });
  };
  const auto digits = [](std::size_t count) {
    std::string all = "0x";
    for (std::size_t i = 0; i < count; ++i) all += "ab";
    return all;
  };
  EXPECT_EQ(text(0, 0), "layout: \r\nd: 0x\r\nx: 1\r\n");
  EXPECT_EQ(text(1, 0), "layout: \r\nd: 0xab\r\nx: 1\r\n");
  EXPECT_EQ(text(16, 0), "layout: \r\nd: " + digits(16) + "\r\nx: 1\r\n");
  EXPECT_EQ(text(16, 0, 1), "layout:  d: " + digits(16) + " x: 1");
  EXPECT_EQ(text(17, 1), "{\r\n\tlayout: \r\n\td: \r\n\t\t" + digits(16) + "\r\n\t\t" +
                             digits(1) + "\r\n\tx: 1\r\n");
  EXPECT_EQ(text(17, 1, 1), "{\r\n\tlayout:  d: \r\n\t\t" + digits(16) + "\r\n\t\t" +
                                digits(1) + "\r\n x: 1");
  std::string block = "layout: \r\nd: \r\n";
  for (int i = 0; i < 16; ++i) block += "\t" + digits(16) + "\r\n";
  EXPECT_EQ(text(256, 0), block + "x: 1\r\n");
  block = "layout: \r\nd: \r\n";
  for (int i = 0; i < 8; ++i) block += digits(32) + "\r\n";
  EXPECT_EQ(text(257, 0), block + digits(1) + "\r\nx: 1\r\n");

  // The established record has the low half of the address for the length.
  const NQOMLBinValue value(3, "a\0b");
  const auto address = reinterpret_cast<std::uintptr_t>(&value);
  std::string record = "f\x0cXI";
  for (int shift = 24; shift >= 0; shift -= 8) {
    record += static_cast<char>(address >> shift & 0xFF);
  }
  const auto one = [&value](TestWriter& file) { file.writeAttribute("d", &value); };
  if ((address & 0xFFFFFF00) != 0) {
    EXPECT_EQ(written(one, true), record + "a\0b"s);
  }
  writer.losslessWriting(1);
  EXPECT_EQ(written(one, true), "f\x0cXi\3a\0b"s);
}

// A value comes back whatever its length, over as many buffers as it takes.
TEST_F(Writing, BringsBackBinaryValuesOfAnyLength) {
  std::mt19937 random(1);
  for (const nqLong length : {0, 1, 16, 17, 256, 257, 131072, 10000000}) {
    std::string bytes(static_cast<std::size_t>(length), '\0');
    for (char& byte : bytes) byte = static_cast<char>(random());
    writer.losslessWriting(1);
    for (const bool binary : {false, true}) {
      const Thing node(1);
      ASSERT_EQ(write(
                    [&](TestWriter& file) {
                      const NQOMLBinValue value(length, bytes.data());
                      file.writeObjectStart("node", &node, 0, 1);
                      file.writeOpeningBracket();
                      file.writeAttribute("d", &value);
                      file.writeClosingBracket();
                    },
                    binary),
                NQ_FILE_OK);
      struct Reader : NQOMLFile {
        std::string found;
        int vReadField(NQOMLSyntaxField* field, NQOMLSyntaxObject*, NQObject*) override {
          found.assign(field->pBinValue()->pByteSequence(),
                       static_cast<std::size_t>(field->pBinValue()->length()));
          return 1;
        }
      } reader;
      EXPECT_EQ(reader.readOMLFile("f", &grammar, nullptr, -1, binary ? 1 : 0, 0, 0),
                NQ_FILE_OK);
      EXPECT_TRUE(reader.found == bytes) << length << " " << binary;
    }
  }
}

TEST_F(Writing, WritesWithoutLossWhenAskedTo) {
  writer.losslessWriting(1);
  const NQOMLFile copy(writer, NQ_DEEP_COPY);
  EXPECT_EQ(copy.losslessWriting(), 1);
  Thing first(70);
  Thing second(70);
  const auto script = [&](TestWriter& file) {
    file.writeStringAttribute("s", "\"\\\n\1\1777\x7f\x80");
    file.writeAttribute("r", 1.0);
    file.writeAttribute("r", 0.1);
    file.writeAttribute("r", -1e300);
    file.writeAttribute("to", &first, &second, 1);
    file.writeObjectStart("node", &second, 0, 1);
    file.writeObjectStart("node", &first, 0, 1);
  };
  EXPECT_EQ(written(script),
            "s: \"\\\"\\\\\\n\\001\\1777\\177\x80\"\r\nr: 1.0\r\nr: 0.1\r\nr: -1e+300\r\n"
            "to: 1\r\nnode: 2\r\nnode: 1\r\n");
  // A real whose mantissa is 56999999.99... in the binary encoding.
  const auto real = [](TestWriter& file) { file.writeAttribute("r", 0.57); };
  EXPECT_EQ(written(real, true), "f\x08R\x03\x65\xc0\x40R\xff\xff\xff\xf8"s);
  const std::string binary = written(script, true);
  EXPECT_EQ(binary.substr(0, 27), "f\x09\"\\\"\\\\\\n\\001\\1777\\177\x80\"f\x08"s + "R");
  EXPECT_EQ(binary.substr(binary.size() - 15), "f\x0eN1\"o\2N2\"o\2N1\"");
}

TEST_F(Writing, PrintsRealsExactly) {
  const auto check = [](double value) {
    char expected[400];
    char text[nqdetail::kRealText];
    const std::string wanted(
        expected,
        std::to_chars(expected, expected + 400, value, std::chars_format::fixed, 6).ptr);
    ASSERT_EQ(std::string(text, nqdetail::putReal(text, value)), wanted);
    const std::string shortest(text, nqdetail::putShortestReal(text, value));
    double back = 0;
    std::from_chars(shortest.data(), shortest.data() + shortest.size(), back);
    ASSERT_EQ(back, value);
    ASSERT_NE(shortest.find_first_of(".e"), std::string::npos);
  };
  for (const double value : {0.0,
                             -0.0,
                             0.5,
                             0.0000005,
                             0.0000015,
                             0.00024414062,
                             0.9999995,
                             0.99999949999,
                             9.9999995,
                             4294967294.9999995,
                             4294967295.5,
                             4294967296.0,
                             1e15,
                             1e22,
                             1e308,
                             5e-324,
                             1.7976931348623157e308,
                             1e-7,
                             0.000244140625,
                             123456789.0625}) {
    check(value);
    check(-value);
  }
  std::mt19937_64 random(2);
  for (int i = 0; i < 100000; ++i) {
    const double unit = static_cast<double>(random() >> 11) * 0x1p-53;
    check(std::ldexp(unit, static_cast<int>(random() % 70) - 30));
    // Halves between two texts: odd multiples of 2^-7 have seven digits, the last a 5.
    check(static_cast<double>(random() % 1000000) / 128);
  }
  check(std::numeric_limits<double>::max());
  for (const nqLong value : {0, 9, 10, 99, 100, 9999, 10000, 99999999, 2147483647, -1}) {
    char text[nqdetail::kIntegerText];
    EXPECT_EQ(std::string(text, nqdetail::putInteger(text, value)),
              std::to_string(value));
  }
}

TEST_F(Writing, ReportsWhatCannotBeWritten) {
  const auto good = [](TestWriter& file) { file.writeAttribute("x", 1); };
  EXPECT_EQ(writer.writeOMLFile(nullptr, &grammar, nullptr, 0, 0, 0),
            NQ_FILE_WRITE_ARGUMENT_ERROR);
  EXPECT_EQ(writer.writeOMLFile("f", nullptr, nullptr, 0, 0, 0),
            NQ_FILE_WRITE_ARGUMENT_ERROR);
  EXPECT_TRUE(system.files.empty());

  NQFile other;
  ASSERT_EQ(other.open("f", NQ_WRITE), NQ_FILE_OK);
  EXPECT_EQ(write(good), NQ_FILE_OPEN_ERROR);
  EXPECT_EQ(writer.top, nullptr);
  ASSERT_EQ(other.close(), NQ_FILE_OK);

  for (const double value : {HUGE_VAL, -HUGE_VAL, std::nan("")}) {
    const auto script = [=](TestWriter& file) { file.writeAttribute("r", value); };
    EXPECT_EQ(write(script), NQ_FILE_WRITE_ERROR);
    EXPECT_EQ(system.files["f"], "r: 0.000000\r\n");
    EXPECT_EQ(write(script, true), NQ_FILE_WRITE_ERROR);
    EXPECT_EQ(system.files["f"], "f\x08r\0r\0"s);
    EXPECT_EQ(writer.storedOnDisk(), 0);
    EXPECT_EQ(writer.error(), 1);
  }

  const struct {
    const char* name;
    bool binary;
    Script script;
  } kFailing[] = {
      {"an exception", false,
       [](TestWriter& file) {
         file.writeOpeningBracket();
         file.writeSectionStart("layout", 1);
         throw std::runtime_error("out of the hook");
       }},
      {"a fatal error", false,
       [](TestWriter& file) { file.errorMessage(nullptr, 99, "bad", 1); }},
      {"a line in the binary encoding", true,
       [](TestWriter& file) { EXPECT_EQ(file.writeLine("x"), NQ_FILE_WRITE_ERROR); }},
      {"bytes in the text encoding", false,
       [](TestWriter& file) {
         EXPECT_EQ(file.writeBinary("x", 1), NQ_FILE_WRITE_ERROR);
       }},
      {"a null text", false,
       [](TestWriter& file) {
         EXPECT_EQ(file.writeString(nullptr), NQ_FILE_WRITE_ERROR);
       }},
      {"null bytes", true,
       [](TestWriter& file) {
         EXPECT_EQ(file.writeBinary(nullptr, 1), NQ_FILE_WRITE_ERROR);
       }},
  };
  for (const auto& row : kFailing) {
    EXPECT_EQ(write(row.script, row.binary), NQ_FILE_WRITE_ERROR) << row.name;
    EXPECT_EQ(writer.storedOnDisk(), 0) << row.name;
    const auto goesOn = [&](TestWriter& file) {
      row.script(file);
      (void)file.writeString("# ");
      (void)file.writeBinary("b", 1);
      file.writeAttribute("x", 1);
    };
    EXPECT_EQ(write(goesOn, row.binary), NQ_FILE_WRITE_ERROR) << row.name;
  }
  EXPECT_EQ(write([](TestWriter& file) { (void)file.close(); }), NQ_FILE_CLOSE_ERROR);
  system.failingClose = true;
  EXPECT_EQ(write(good), NQ_FILE_CLOSE_ERROR);
  EXPECT_EQ(writer.storedOnDisk(), 0);
  system.failingClose = false;
  EXPECT_EQ(system.openFiles(), 0);
  EXPECT_EQ(written(good), "x: 1\r\n");  // depth and mode are new each time
}

TEST_F(Writing, ReportsADiskThatIsFull) {
  const auto script = [](TestWriter& file) {
    const NQOMLBinValue value(100, nullptr);
    for (int i = 0; i < 3000; ++i) file.writeAttribute("d", &value);
  };
  for (const bool binary : {false, true}) {
    const std::size_t size = written(script, binary).size();
    ASSERT_GT(size, 300000U);
    for (std::size_t space = 0; space < size; space += 1 + size / 97) {
      system.diskSpace = space;
      EXPECT_EQ(write(script, binary), NQ_FILE_WRITE_ERROR);
      EXPECT_EQ(writer.storedOnDisk(), 0);
      EXPECT_EQ(system.files["f"].size(), space);
    }
    system.diskSpace = size - 1;
    EXPECT_EQ(write(script, binary), NQ_FILE_WRITE_ERROR);
    system.diskSpace = size;
    EXPECT_EQ(write(script, binary), NQ_FILE_OK);
    system.diskSpace = FakeSystem::kUnlimited;
    EXPECT_EQ(system.openFiles(), 0);
  }
}

TEST_F(Writing, LetsTheHookUseTheFile) {
  Thing node(6);
  const auto script = [&](TestWriter& file) {
    EXPECT_EQ(file.readOMLFile("f", &grammar, nullptr, -1, 0, 0, 0), NQ_FILE_READ_ERROR);
    EXPECT_EQ(file.writeOMLFile("f", &grammar, nullptr, 0, 0, 0), NQ_FILE_WRITE_ERROR);
    file.initParser(nullptr, nullptr, -1, 0);
    EXPECT_EQ(file.writeHook("node", &node), 6);
    EXPECT_EQ(file.writeHook("graph", &node), 0);
    EXPECT_EQ(file.writeHook("what", &node), 0);
    if (file.mode() == NQ_WRITE) {
      EXPECT_EQ(file.write("# text\r\n"), NQ_FILE_OK);
    } else {
      EXPECT_EQ(file.writeBinary("bytes", 5), NQ_FILE_OK);
    }
    file.writeAttribute("x", 2);
    file.flush();
  };
  EXPECT_EQ(written(script), "x: 1\r\n# text\r\nx: 2\r\n");
  EXPECT_EQ(written(script, true), "f\7i\1bytesf\7i\2");

  // All output passes through the two operations.
  struct Catcher : TestWriter {
    std::string caught;
    NQFileCodeEnum writeString(const char* text) override {
      caught += text;
      if (late) writeAttribute("x", 3);  // no place for it any more
      return TestWriter::writeString(text);
    }
    NQFileCodeEnum flush() override { return NQ_FILE_OK; }  // not depended on
    bool late = false;
  } catcher;
  catcher.script = [](TestWriter& file) { file.writeAttribute("x", 2); };
  for (const NQFileCodeEnum result : {NQ_FILE_OK, NQ_FILE_WRITE_ERROR}) {
    catcher.caught.clear();
    EXPECT_EQ(catcher.writeOMLFile("f", &grammar, nullptr, 0, 0, 0), result);
    EXPECT_EQ(catcher.caught, "x: 2\r\n");
    EXPECT_EQ(system.files["f"], "x: 2\r\n");
    catcher.late = true;
  }

  // What an override throws is not forgotten when the hook catches it.
  struct Thrower : TestWriter {
    int calls = 0;
    NQFileCodeEnum writeString(const char* text) override {
      if (++calls == 1) throw std::runtime_error("out of the override");
      return TestWriter::writeString(text);
    }
  } thrower;
  thrower.script = [](TestWriter& file) {
    file.writeAttribute("x", 2);
    EXPECT_THROW(file.flush(), std::runtime_error);
    file.writeAttribute("x", 3);
  };
  EXPECT_EQ(thrower.writeOMLFile("f", &grammar, nullptr, 0, 0, 0), NQ_FILE_WRITE_ERROR);
  EXPECT_EQ(thrower.storedOnDisk(), 0);
}

// Each integer type finds its overload, and its limits are written or refused.
TEST_F(Writing, TakesEveryIntegerType) {
  const auto check = [&]<class Integer>(Integer) {
    using Limits = std::numeric_limits<Integer>;
    for (const Integer value : {Limits::min(), Limits::max()}) {
      const bool fits =
          std::to_string(+value) == std::to_string(static_cast<std::int32_t>(value));
      const std::string text =
          "x: " + std::to_string(static_cast<std::int32_t>(value)) + "\r\n";
      const auto script = [&](TestWriter& file) { file.writeAttribute("x", value); };
      EXPECT_EQ(write(script), fits ? NQ_FILE_OK : NQ_FILE_WRITE_ERROR) << +value;
      EXPECT_EQ(system.files["f"], text);
      EXPECT_EQ(write(script, true), fits ? NQ_FILE_OK : NQ_FILE_WRITE_ERROR) << +value;
    }
  };
  const auto checkAll = [&](auto... zeros) { (check(zeros), ...); };
  using Short = short;
  using UShort = unsigned short;
  using Long = long;
  using ULong = unsigned long;
  using LongLong = long long;
  using ULongLong = unsigned long long;
  checkAll(bool(), char(), Short(), UShort(), int(), unsigned(), Long(), ULong(),
           LongLong(), ULongLong(), std::size_t(), nqLong(), nqULong(), nqInt64());
}

// A derived class may open the file itself; the close answers for what failed.
TEST_F(Writing, WritesToAFileThatTheApplicationOpens) {
  const std::string text = "{\r\n\tx: 1\r\n# line\r\n}\r\n";
  const struct {
    const char* name;
    NQFileModeEnum mode;
    bool knowsGrammar;
    std::size_t space;
    std::string content;
  } kRows[] = {
      {"text", NQ_WRITE, true, 99, text},
      {"text without a grammar", NQ_WRITE_ASCII, false, 99, text},
      {"appended", NQ_APPEND, false, 99, "old" + text},
      {"a full disk", NQ_WRITE, false, 7, text.substr(0, 7)},
      {"binary", NQ_WRITE_BINARY, true, 99, "{f\7i\1}"},
      {"binary without a grammar", NQ_WRITE_BINARY, false, 99, ""},
      {"reading", NQ_READ, true, 99, "old"},
  };
  TestWriter file;
  for (const auto& row : kRows) {
    for (const nqInt64 value : {1, 2}) {
      system.files["g"] = "old";
      if (row.knowsGrammar) {
        file.initParser(&grammar, nullptr, -1, 0);
      } else {
        (void)file.readOMLFile("none", &grammar, nullptr, -1, 0, 0, 0);
      }
      file.writeOpeningBracket();
      EXPECT_EQ(file.error(), 1) << row.name << ": not open yet";
      ASSERT_EQ(file.open("g", row.mode), NQ_FILE_OK) << row.name;
      system.diskSpace = row.space;
      file.writeOpeningBracket();
      file.writeAttribute("x", value == 1 ? value : (nqInt64{1} << 32) + 1);
      if (row.mode != NQ_WRITE_BINARY) (void)file.writeLine("# line");
      file.writeClosingBracket();
      const bool fails =
          value != 1 || row.space == 7 || row.content.empty() || row.mode == NQ_READ;
      EXPECT_EQ(file.close(), fails ? NQ_FILE_CLOSE_ERROR : NQ_FILE_OK) << row.name;
      EXPECT_EQ(file.error(), fails ? 1 : 0) << row.name;
      EXPECT_EQ(system.files["g"], row.content) << row.name;
      system.diskSpace = FakeSystem::kUnlimited;
    }
  }

  // Under safeWriting() the close of a write that failed leaves the old file.
  file.safeWriting(1);
  for (const bool fails : {true, false}) {
    system.files["g"] = "old";
    ASSERT_EQ(file.open("g", NQ_WRITE), NQ_FILE_OK);
    file.writeAttribute("x", fails ? nqInt64{1} << 40 : 1);
    EXPECT_EQ(file.close(), fails ? NQ_FILE_CLOSE_ERROR : NQ_FILE_OK);
    EXPECT_EQ(system.files["g"], fails ? "old" : "x: 1\r\n");
  }
  file.safeWriting(0);
  for (const bool fails : {false, true}) {
    system.files["attached"].clear();
    ASSERT_EQ(file.attach(system.handleOn("attached"), NQ_WRITE), NQ_FILE_OK);
    file.writeAttribute("x", fails ? nqInt64{1} << 40 : 1);
    EXPECT_EQ(file.detach(0), fails ? NQ_FILE_CLOSE_ERROR : NQ_FILE_OK);
    EXPECT_EQ(system.files["attached"], fails ? "x: 0\r\n" : "x: 1\r\n");
  }

  // A read or write meanwhile leaves it alone; destruction sends what is gathered.
  {
    TestWriter dying;
    ASSERT_EQ(dying.open("g", NQ_WRITE), NQ_FILE_OK);
    dying.writeOpeningBracket();
    (void)dying.readOMLFile("f", &grammar, nullptr, -1, 0, 1, 0);
    dying.writeAttribute("x", 1);
  }
  EXPECT_EQ(system.files["g"], "{\r\n\tx: 1\r\n");
  {
    TestWriter next;
    ASSERT_EQ(next.open("g", NQ_WRITE), NQ_FILE_OK);
    next.writeOpeningBracket();
    next.script = [](TestWriter& other) { other.writeAttribute("x", 1); };
    EXPECT_EQ(next.writeOMLFile("f", &grammar, nullptr, 0, 0, 0), NQ_FILE_OK);
  }
  EXPECT_EQ(system.files["g"], "{\r\n");
  EXPECT_EQ(system.files["f"], "x: 1\r\n");
}

// Overrides that throw, or leave out what the base does.
TEST_F(Writing, SurvivesOverrides) {
  struct Strange : TestWriter {
    void initParser(NQOMLStatic*, NQObject*, nqLong, int) override {
      if (where == 1) throw std::bad_alloc();
    }
    NQFileCodeEnum open(const char* name, NQFileModeEnum newMode) override {
      const NQFileCodeEnum result = TestWriter::open(name, newMode);
      if (where == 2) throw std::runtime_error("out of open");
      return result;
    }
    NQFileCodeEnum writeString(const char* text) override {
      if (where == 3) throw std::bad_alloc();
      return TestWriter::writeString(text);
    }
    NQFileCodeEnum writeBinary(const char* data, int count) override {
      if (where == 3) throw std::bad_alloc();
      return TestWriter::writeBinary(data, count);
    }
    int where = 0;
  } strange;
  strange.script = [](TestWriter& file) {
    const Thing node(1);
    file.writeObjectStart("node", &node, 0, 1);
    EXPECT_EQ(file.writeHook("node", &node), 1);
    // Larger than what is gathered: it is sent in the middle, and memory is lacking.
    file.writeStringAttribute("s", std::string(1000000, 's').c_str());
  };
  for (const bool binary : {false, true}) {
    for (strange.where = 0; strange.where < 4; ++strange.where) {
      EXPECT_EQ(strange.writeOMLFile("f", &grammar, nullptr, binary ? 1 : 0, 0, 0),
                strange.where == 0 ? NQ_FILE_OK : NQ_FILE_WRITE_ERROR)
          << strange.where;
      EXPECT_EQ(system.openFiles(), 0) << strange.where;
    }
  }
}

// Whichever allocation is the first to fail, the write fails, and the next one succeeds.
TEST(WritingWithoutMemory, Fails) {
  if (!FailingMemory::kWorks) GTEST_SKIP();
  const TemporaryDirectory directory;
  const std::string name = directory.file("f");
  SmallGrammar grammar;
  Thing top(1);
  Thing part(2, &top);
  top.parts = {&part};
  const std::string large(300000, 'x');  // more than is gathered
  TestWriter writer;
  writer.script = [&](TestWriter& file) {
    top.preFileWrite(&file);
    file.writeObjectStart("node", &top, 0, 1);
    file.writeAttribute("to", &part, nullptr, 1);
    file.writeStringAttribute(large.c_str(), large.c_str());
    top.postFileWrite(&file, NQ_FILE_OK);
  };
  for (const int way : {0, 1, 2, 3}) {
    writer.losslessWriting(way & 1);
    const auto write = [&] {
      return writer.writeOMLFile(name.c_str(), &grammar, &top, way & 2, 1, 0);
    };
    ASSERT_EQ(write(), NQ_FILE_OK);
    const std::string whole = directory.contents("f");
    for (const bool forGood : {false, true}) {
      bool failed = true;
      for (long allocations = 0; failed; ++allocations) {
        FailingMemory memory(allocations, forGood);
        const NQFileCodeEnum result = write();
        memory.stop();
        failed = memory.hasFailed();
        // Some tables can do with less than they asked for.
        if (result == NQ_FILE_OK) {
          EXPECT_TRUE(directory.contents("f") == whole) << allocations;
        } else {
          EXPECT_EQ(result, NQ_FILE_WRITE_ERROR) << allocations;
        }
        EXPECT_TRUE(failed || result == NQ_FILE_OK);
        EXPECT_TRUE(!failed || !forGood || result != NQ_FILE_OK) << allocations;
        EXPECT_EQ(writer.isOpen(), 0) << allocations;
      }
    }
  }
}

TEST_F(Writing, KeepsTheNumbersOfObjects) {
  Thing top;
  Thing a;
  Thing b;
  Thing c;
  top.parts = {&a, &b, &c, &top};
  for (Thing* const part : {&a, &b, &c}) part->owner = &top;
  const auto script = [&](TestWriter& file) {
    top.preFileWrite(&file);
    file.writeObjectStart("graph", &top, 0, 1);
    file.writeOpeningBracket();
    for (const Thing* const part : {&a, &b, &c})
      file.writeObjectStart("node", part, 0, 1);
    file.writeAttribute("to", &b, &a, 1);
    file.writeClosingBracket();
    top.postFileWrite(&file, NQ_FILE_OK);
  };
  ASSERT_EQ(write(script, false, &top, 1), NQ_FILE_OK);
  NQIndexHashTable* const numbers = writer.pIndexHashTable();
  ASSERT_NE(numbers, nullptr);
  const std::string first = system.files["f"];
  // Known numbers are used again, those that two objects share by one of them only.
  numbers->update(reinterpret_cast<nqInt64>(static_cast<NQObject*>(&top)), 1);
  numbers->update(reinterpret_cast<nqInt64>(static_cast<NQObject*>(&a)), 16);
  numbers->update(reinterpret_cast<nqInt64>(static_cast<NQObject*>(&b)), 16);
  numbers->update(reinterpret_cast<nqInt64>(static_cast<NQObject*>(&c)), 32);
  ASSERT_EQ(write(script, false, &top, 1), NQ_FILE_OK);
  const std::string second = system.files["f"];
  EXPECT_EQ(second.substr(0, 25), "graph: 1\r\n{\r\n\tnode: 16\r\n\t");
  EXPECT_NE(numbers->lookup(reinterpret_cast<nqInt64>(static_cast<NQObject*>(&b))), 16);
  ASSERT_EQ(write(script, false, &top, 1), NQ_FILE_OK);
  EXPECT_EQ(system.files["f"], second);
  EXPECT_EQ(a.graphFileID(), 0);

  // Numbers that do not stand in the file are kept as well; a null object, and an
  // object without a number, leaves what is there.
  const NQObject other;
  const auto number = [&](const NQObject& object) {
    return numbers->lookup(reinterpret_cast<nqInt64>(&object));
  };
  nqLong id = 98;
  const auto silent = [&](TestWriter& file) {
    c.iUserField(-id);
    file.writeObjectStart("node", &c, 0, 0);
    a.iUserField(id);
    file.writeObjectStart("node", static_cast<const NQObject*>(&a), 0);
    file.writeObjectStart("node", &other, 0);
    file.writeObjectStart("node", &top, 0, 0);
    file.writeObjectStart("node", static_cast<const NQObject*>(nullptr), 0);
  };
  for (const bool binary : {false, true}) {
    ASSERT_EQ(write(silent, binary, &top, 1), NQ_FILE_OK);
    EXPECT_EQ(number(c), -id);
    EXPECT_EQ(number(a), id++);
    EXPECT_EQ(number(other), static_cast<nqLong>(other.graphFileID()));
    EXPECT_EQ(number(top), 1);
    EXPECT_EQ(system.files["f"].find('9'), std::string::npos);
  }
}

// A name is known by its text, wherever that stands.
TEST_F(Writing, FindsNamesInBuffersThatAreUsedAgain) {
  nqLong late = -1;
  const auto script = [&](TestWriter& file) {
    char name[64] = "x";
    file.writeAttribute(name, 1);
    for (const char* const next : {"r", "xx", "x", "", "x", "late"}) {
      std::strcpy(name, next);
      file.writeAttribute(name, 2);
    }
    late = grammar.installFieldID(name);  // unknown until now
    file.writeAttribute(name, 3);
    std::memset(name, 'n', 60);
    for (const int length : {60, 59}) {
      name[length] = '\0';
      file.writeAttribute(name, 4);
    }
  };
  const std::string binary = written(script, true);
  const std::string unknown = "F\xff\xff\xff\xffi"s;
  EXPECT_EQ(binary, "f\7i\1f\x08i\2" + unknown + "\2f\7i\2" + unknown + "\2f\7i\2" +
                        unknown + "\2f" + static_cast<char>(late) + "i\3" + unknown +
                        "\4" + unknown + "\4");
}

// --- Round trips

const char kEverything[] =
    "version 3 graph g { title \"a \\\"quote\\\", \\\\ and \\x01\\xff\\r\\n\" count -7 "
    "flag true ratio 0.1 ratio 1e-300 addr 10.1.2.3 blob 0x00ff10 size medium link g,a,b "
    "any $g layout { spacing 2.5 inner { depth 4 width 5 deep level 6 } node c { x 1 } } "
    "layout _ depth 9 node defaults { x 12 node a { label \"\" node b { up $g } } } "
    "node a { next c } group { x 1 group 5 { } } }";

TEST(RoundTrip, BringsBackEverythingInBothEncodings) {
  FakeSystem system;
  EverythingGrammar grammar;
  system.files["f"] = kEverything;
  TreeReader source;
  ASSERT_EQ(source.read("f", grammar, false), NQ_FILE_OK) << source.errors();
  ASSERT_TRUE(source.isWritable());
  ASSERT_EQ(source.write("text", grammar, false), NQ_FILE_OK);
  const char* name = "text";
  for (const auto& [next, binary] :
       {std::pair{"text2", false}, {"binary", true}, {"text3", false}}) {
    TreeReader reader;
    ASSERT_EQ(reader.read(name, grammar, name == "binary"s), NQ_FILE_OK)
        << reader.errors();
    EXPECT_TRUE(reader.agrees(source, name == "binary"s ? 1e-7 : 0)) << reader.content();
    ASSERT_EQ(reader.write(next, grammar, binary), NQ_FILE_OK);
    name = next;
  }
  EXPECT_EQ(system.files["text2"], system.files["text"]);
}

TEST(RoundTrip, BringsBackEveryByteOfStrings) {
  FakeSystem system;
  EverythingGrammar grammar;
  std::string all;
  for (int c = 1; c < 256; ++c) {
    all += static_cast<char>(c);
    all += '7';
  }
  while (all.size() < 20000) all += all;
  for (const bool binary : {false, true}) {
    TestWriter writer;
    writer.losslessWriting(1);
    const Thing graph(1);
    writer.script = [&](TestWriter& file) {
      file.writeObjectStart("graph", &graph, 0, 1);
      file.writeOpeningBracket();
      file.writeStringAttribute("title", all.c_str());
      file.writeClosingBracket();
    };
    ASSERT_EQ(writer.writeOMLFile("f", &grammar, nullptr, binary, 0, 0), NQ_FILE_OK);
    TestReader reader;
    ASSERT_EQ(reader.read("f", grammar, binary), NQ_FILE_OK) << reader.errors();
    EXPECT_EQ(reader.tree, "graph#$,1{title=\"" + all + "\"}");
  }
}

}  // namespace
