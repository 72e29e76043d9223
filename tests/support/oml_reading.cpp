#include "tests/support/oml_reading.h"

#include <algorithm>
#include <cctype>

#include "nq/core/string_pool.h"
#include "nq/oml/grammar/section_path.h"
#include "tests/support/test_peer.h"
#include "tests/support/value_text.h"

namespace {

NQOMLStaticVEStruct kEnumerators[] = {
    {"small", 1}, {"medium", 2}, {"large", 3}, {nullptr, 0}};

const char* const kDefinitions[] = {"O $toplevel$",
                                    "[",
                                    "T graph",
                                    "T node",
                                    "F version I",
                                    "]",
                                    "O graph",
                                    "[",
                                    "F title S",
                                    "F count I",
                                    "F flag B",
                                    "F ratio R",
                                    "F addr P",
                                    "F blob X",
                                    "E size [small..large]",
                                    "E few [small]",
                                    "R link node",
                                    "R any _",
                                    "T node",
                                    "T group",
                                    "T strict",
                                    "S layout",
                                    "[",
                                    "F spacing R",
                                    "F kind I",
                                    "T node",
                                    "S inner",
                                    "[",
                                    "F depth I",
                                    "F width I",
                                    "F only I",
                                    "S deep",
                                    "[",
                                    "F level I",
                                    "]",
                                    "]",
                                    "S outer",
                                    "[",
                                    "F depth I",
                                    "F width S",
                                    "]",
                                    "]",
                                    "S view",
                                    "[",
                                    "F zoom R",
                                    "S inner",
                                    "[",
                                    "F depth I",
                                    "]",
                                    "]",
                                    "]",
                                    "O node",
                                    "[",
                                    "F x I",
                                    "F label S",
                                    "R next node",
                                    "R up graph",
                                    "T node",
                                    "S layout",
                                    "[",
                                    "F pad I",
                                    "]",
                                    "]",
                                    "O group",
                                    "[",
                                    "F x I",
                                    "T node",
                                    "T group",
                                    "]",
                                    "O strict",
                                    "[",
                                    "F first I R",
                                    "F second S R",
                                    "]",
                                    "O both",
                                    "[",
                                    "]",
                                    nullptr};

std::string lowerCase(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return text;
}

std::string valueText(const NQOMLSyntaxField& field, const NQOMLFile& file) {
  const NQOMLToken token = field.token();
  switch (token.tag) {
    case NQ_OML_INTEGER:
      return std::to_string(token.integer());
    case NQ_OML_REAL:
      return realText(token.real());
    case NQ_OML_STRING:
      return '"' + std::string(field.stringValue()) + '"';
    case NQ_OML_ENUMERATOR:
      return "e" + std::to_string(field.enumValue());
    case NQ_OML_OBJECT_ID:
      return std::string("->") + NQTestPeer::idText(file, token.integer());
    case NQ_OML_IP_ADDRESS:
      return addressText(token.address());
    case NQ_OML_BINARY_VALUE:
      return "0x" + bytesText(*token.pBinValue());
    default:
      return "tag" + std::to_string(token.tag);
  }
}

// "outer.inner." for a path without wildcards.
std::string sectionsText(const NQOMLDefObjType* type, nqULong path,
                         const NQOMLFile& file) {
  std::string text;
  for (const NQOMLDefSection* section = type->pSectionAt(path); section != nullptr;
       section = section->pParent()) {
    const char* const name =
        file.pOMLStatic()->pSectionPool()->decode(section->nameIndex());
    text.insert(0, lowerCase(name) + ".");
  }
  return text;
}

std::string contentText(const NQOMLSyntaxObject& object, const NQOMLFile& file) {
  std::string text;
  const auto separate = [&text] {
    if (!text.empty()) text += ' ';
  };
  for (NQOMLSyntaxFieldIter iter(&object); iter; ++iter) {
    const NQOMLSyntaxField& field = *iter.pField();
    separate();
    if (field.unchecked() != 0) text += '?';
    text += sectionsText(object.pDefObjType(), field.sectionPath(), file);
    text += lowerCase(field.nameString()) + "=" + valueText(field, file);
  }
  for (NQOMLSyntaxObjectIter iter(&object); iter; ++iter) {
    const NQOMLSyntaxObject& child = *iter.pObject();
    separate();
    text += sectionsText(object.pDefObjType(), child.sectionPath(), file);
    text += lowerCase(child.typeString()) + "#" + child.nameString();
    const std::string inside = contentText(child, file);
    if (!inside.empty()) text += "{" + inside + "}";
  }
  return text;
}

}  // namespace

EverythingGrammar::EverythingGrammar()
    : NQOMLStatic(static_cast<const char* const*>(nullptr), nullptr, kEnumerators,
                  kDefinitions, 100, 100, 100, 100, 100, 100) {
  installFieldID("both");
  addFieldDefinition("graph", "odd", static_cast<NQFieldTypeEnum>(99), 0);
}

TestReader::~TestReader() {
  for (NQObject* const object : objects_) delete object;
}

void TestReader::note(const char* hook, const NQOMLSyntaxObject* syntax,
                      const NQObject* object) {
  if (atHook) atHook(hook);
  if (!listEvents) return;
  events += std::string(hook) + " " + lowerCase(syntax->typeString()) + "#" +
            syntax->nameString();
  const auto number = std::find(objects_.begin(), objects_.end(), object);
  if (number != objects_.end()) {
    events += " in " + std::to_string(number - objects_.begin() + 1);
  }
  events += "; ";
}

void TestReader::execute() {
  if (const NQOMLSyntaxObject* const root = NQTestPeer::root(*this)) {
    if (keepTree && numberOfErrors() == 0) tree = contentText(*root, *this);
  }
  NQOMLFile::execute();
}

int TestReader::vCheckObject(NQOMLSyntaxObject* syntax) {
  note("check", syntax, nullptr);
  return refuse ? 0 : NQOMLFile::vCheckObject(syntax);
}

NQObject* TestReader::vCreateObject(NQOMLSyntaxObject* syntax, NQOMLSyntaxObject*,
                                    NQObject* owner) {
  note("create", syntax, owner);
  objects_.push_back(new NQCounted(static_cast<int>(objects_.size()) + 1));
  return objects_.back();
}

int TestReader::vReadField(NQOMLSyntaxField* field, NQOMLSyntaxObject* syntax,
                           NQObject* object) {
  if (listEvents || atHook) note(lowerCase(field->nameString()).c_str(), syntax, object);
  return leaveFields ? 0 : 1;
}

int TestReader::vIncludeFile(const char* name) {
  if (atHook) atHook("include");
  return name != forbidden;
}

void TestReader::vPreReadFields(NQOMLSyntaxObject* syntax, NQObject* object) {
  note("pre", syntax, object);
}

void TestReader::vPostReadFields(NQOMLSyntaxObject* syntax, NQObject* object) {
  note("post", syntax, object);
}
