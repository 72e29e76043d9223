// The header of indices that a grammar writes.

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "nq/oml/grammar.h"
#include "tests/support/fake_system.h"
#include "tests/support/temporary_directory.h"

namespace {

struct Grammar : NQOMLStatic {
  Grammar()
      : NQOMLStatic(static_cast<const char* const*>(nullptr), nullptr, nullptr, nullptr,
                    9, 9, 9, 9, 9, 9) {}

  std::string keys(const std::string& name) const {
    const NQFileCodeEnum result = writeIndexDefinitions(directory.file(name).c_str());
    EXPECT_EQ(result == NQ_FILE_OK, std::filesystem::exists(directory.file(name)));
    return directory.contents(name);
  }

  TemporaryDirectory directory;
};

TEST(KeyHeader, HoldsTheBuiltInNames) {
  EXPECT_EQ(Grammar().keys("keys.h"),
            "\r\n/* Coding of fields */\r\n\r\n"
            "#define NQ_XKEY_FI_ID 4\r\n"
            "#define NQ_XKEY_FI_NAME 5\r\n"
            "#define NQ_XKEY_FI_FIELD 6\r\n"
            "\r\n/* Coding of sections */\r\n\r\n"
            "\r\n/* Coding of enum value identifiers */\r\n\r\n"
            "#define NQ_XKEY_VI_TRUE 0\r\n"
            "#define NQ_XKEY_VI_FALSE 1\r\n"
            "\r\n/* Coding of object type identifiers */\r\n\r\n"
            "\r\n");
}

TEST(KeyHeader, ReplacesAnOlderOne) {
  Grammar grammar;
  grammar.directory.put("keys.h", std::string(5000, 'x'));
  grammar.installFieldID("colour");
  grammar.installFieldID("line width");  // of no use in C, but copied
  grammar.installSectionID("graphics");
  grammar.installEnumValueID("Dotted", -7);
  grammar.installObjTypeID("node", nullptr, nullptr, nullptr, nullptr);
  const std::string longName(3000, 'e');
  grammar.installObjTypeID(longName.c_str(), nullptr, nullptr, nullptr, nullptr);
  EXPECT_EQ(grammar.keys("keys.h"),
            "\r\n/* Coding of fields */\r\n\r\n"
            "#define NQ_XKEY_FI_ID 4\r\n"
            "#define NQ_XKEY_FI_NAME 5\r\n"
            "#define NQ_XKEY_FI_FIELD 6\r\n"
            "#define NQ_XKEY_FI_COLOUR 7\r\n"
            "#define NQ_XKEY_FI_LINE WIDTH 8\r\n"
            "\r\n/* Coding of sections */\r\n\r\n"
            "#define NQ_XKEY_SI_GRAPHICS 2\r\n"
            "\r\n/* Coding of enum value identifiers */\r\n\r\n"
            "#define NQ_XKEY_VI_TRUE 0\r\n"
            "#define NQ_XKEY_VI_FALSE 1\r\n"
            "#define NQ_XKEY_VI_DOTTED 2\r\n"
            "\r\n/* Coding of object type identifiers */\r\n\r\n"
            "#define NQ_XKEY_OI_NODE 1\r\n"
            "#define NQ_XKEY_OI_" +
                std::string(3000, 'E') + " 2\r\n\r\n");
}

TEST(KeyHeader, TellsThatItCannotBeWritten) {
  const Grammar grammar;
  EXPECT_EQ(grammar.keys("missing/keys.h"), "");
  EXPECT_FALSE(std::filesystem::exists(grammar.directory.file("missing")));
  for (const char* const name : {static_cast<const char*>(nullptr), ""}) {
    EXPECT_EQ(grammar.writeIndexDefinitions(name), NQ_FILE_OPEN_ERROR);
  }
  const std::string folder = grammar.directory.path();
  EXPECT_EQ(grammar.writeIndexDefinitions(folder.c_str()), NQ_FILE_OPEN_ERROR);
  EXPECT_TRUE(std::filesystem::is_empty(folder));
  FakeSystem fake;
  fake.diskSpace = 9;
  EXPECT_EQ(grammar.writeIndexDefinitions("keys.h"), NQ_FILE_CLOSE_ERROR);
}

}  // namespace
