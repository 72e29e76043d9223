#include "nq/oml/oml_extension.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "nq/oml/bin_value.h"
#include "nq/oml/oml_object.h"
#include "tests/support/copy_protocol_check.h"
#include "tests/support/temporary_directory.h"

namespace {

// Opens the operations to the tests.
struct Extension : NQOMLExtension {
  using NQOMLExtension::errorMessage;
  using NQOMLExtension::NQOMLExtension;
  using NQOMLExtension::numberOfErrors;
  using NQOMLExtension::numberOfWarnings;
  using NQOMLExtension::pOMLFile;
  using NQOMLExtension::warningMessage;
  using NQOMLExtension::writeAddressAttribute;
  using NQOMLExtension::writeAttribute;
  using NQOMLExtension::writeBlancLine;
  using NQOMLExtension::writeBoolAttribute;
  using NQOMLExtension::writeClosingBracket;
  using NQOMLExtension::writeHook;
  using NQOMLExtension::writeIPBytesAttribute;
  using NQOMLExtension::writeNamedObjectStart;
  using NQOMLExtension::writeObjectDefaultStart;
  using NQOMLExtension::writeObjectStart;
  using NQOMLExtension::writeOpeningBracket;
  using NQOMLExtension::writeSectionStart;
  using NQOMLExtension::writeStringAttribute;
};

// Calls every operation, of an extension or of the file itself.
template <class Target>
std::string useAll(Target& target) {
  NQOMLObject object;
  object.iUserField(16);
  const NQOMLBinValue bytes(3, "abc");
  target.writeObjectStart("node", &object, 0, 1);
  target.writeOpeningBracket();
  target.writeAttribute("word", "red");
  target.writeAttribute("int", 1);
  target.writeAttribute("long", -2L);
  target.writeAttribute("size", sizeof object);
  target.writeAttribute("truth", true);
  target.writeAttribute("float", 0.5F);
  target.writeAttribute("double", 0.25);
  target.writeAttribute("reference", &object, &object, 1);
  target.writeAttribute("bytes", &bytes);
  target.writeBlancLine();
  target.writeSectionStart("graphics", 1);
  target.writeOpeningBracket();
  target.writeBoolAttribute("bool", 1);
  target.writeIPBytesAttribute("address", 0x01020304);
  target.writeStringAttribute("string", "text");
  target.writeClosingBracket();
  target.writeClosingBracket();
  target.writeObjectDefaultStart("node");
  target.writeNamedObjectStart("node", "a", 0);
  target.writeAddressAttribute("address", "$,a");
  target.writeObjectStart("node", static_cast<const NQObject*>(&object), 0);
  target.errorMessage(nullptr, 90, "an error", 0);
  target.warningMessage(nullptr, 91, "a warning");
  target.warningMessage(nullptr, 92, "a warning");
  return std::to_string(target.writeHook("node", &object)) + ' ' +
         std::to_string(target.numberOfErrors()) + ' ' +
         std::to_string(target.numberOfWarnings());
}

int writeNothing(void*, const NQObject*) {
  return 77;
}

// Writes what it is told to.
struct ToldFile : NQOMLFile {
  explicit ToldFile(std::function<void(NQOMLFile&)> how) : tell(std::move(how)) {}
  void vWriteObject(NQObject*) override { tell(*this); }

  std::function<void(NQOMLFile&)> tell;
};

TEST(NQOMLExtension, WritesAndReportsThroughItsFile) {
  const char* const kTypes[] = {"node", nullptr};
  const char* const kSections[] = {"graphics", nullptr};
  NQOMLStatic grammar(kTypes, kSections, nullptr, nullptr, 9, 9, 9, 9, 9, 9);
  grammar.installObjTypeID("node", nullptr, nullptr, nullptr, writeNothing);
  const TemporaryDirectory directory;
  std::string answers[2];
  const auto write = [&](const char* name, const std::function<void(NQOMLFile&)>& how) {
    ToldFile file(how);
    (void)file.writeOMLFile(directory.file(name).c_str(), &grammar, nullptr, 0, 0, 0);
    return directory.contents(name);
  };
  const std::string direct =
      write("direct", [&](NQOMLFile& file) { answers[0] = useAll(file); });
  const std::string extended = write("extended", [&](NQOMLFile& file) {
    Extension extension(&file);
    answers[1] = useAll(extension);
  });
  EXPECT_EQ(extended, direct);
  EXPECT_NE(direct.find("string: \"text\""), direct.npos) << direct;
  EXPECT_EQ(answers[0], "77 1 2");
  EXPECT_EQ(answers[1], answers[0]);

  Extension none;
  EXPECT_EQ(useAll(none), "0 0 0");
}

TEST(NQOMLExtension, HasAFileOfItsOwn) {
  NQOMLFile file;
  Extension extension(&file);
  EXPECT_EQ(extension.pOMLFile(), &file);
  const nqLong alone = extension.sizeOf();
  EXPECT_EQ(alone, static_cast<nqLong>(sizeof(NQOMLExtension)));
  NQOMLFile* const own = extension.pOwnedOMLFile();
  ASSERT_NE(own, nullptr);
  EXPECT_NE(own, &file);
  EXPECT_EQ(own->pOMLExtension(), &extension);
  EXPECT_EQ(NQOMLFile(*own).pOMLExtension(), nullptr);
  EXPECT_EQ(extension.pOwnedOMLFile(), own);
  EXPECT_EQ(extension.sizeOf(), alone + own->sizeOf());

  struct NoFile : NQOMLExtension {
    NQOMLFile* vNewOwnedOMLFile() override { return nullptr; }
  } noFile;
  EXPECT_EQ(noFile.pOwnedOMLFile(), nullptr);
}

TEST(NQOMLExtension, CopiesHaveNeitherFile) {
  NQOMLFile file;
  NQOMLExtension sample(&file);
  const auto ownsNone = [](const NQOMLExtension&, const NQOMLExtension& copy) {
    return copy.sizeOf() == static_cast<nqLong>(sizeof copy);
  };
  checkCopyProtocol(
      sample,
      [&file] {
        auto other = std::make_unique<NQOMLExtension>(&file);
        other->pOwnedOMLFile();
        return other;
      },
      ownsNone);
  Extension extension(&file);
  extension.pOwnedOMLFile();
  EXPECT_EQ(Extension(extension).pOMLFile(), nullptr);
  EXPECT_TRUE(ownsNone(extension, Extension(extension)));
  extension = Extension();
  EXPECT_EQ(extension.pOMLFile(), &file) << "only its own one goes";
}

}  // namespace
