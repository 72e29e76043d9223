#include "nq/oml/syntax_tree.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "nq/core/string_pool.h"
#include "nq/oml/bin_value.h"
#include "nq/oml/grammar.h"
#include "nq/oml/tree/syntax_arena.h"
#include "tests/support/copy_protocol_check.h"
#include "tests/support/reading_file.h"

namespace {

using nqdetail::SyntaxArena;

const char* const kDefinitions[] = {
    "O Graph", "[",     "F own I",  "E size [small, large]",
    "S a",     "[",     "F x I",    "S in",
    "[",       "F x I", "F deep S", "]",
    "]",       "S b",   "[",        "F y I",
    "]",       "S c",   "[",        "F x S",
    "S in",    "[",     "F x I",    "]",
    "]",       "]",     nullptr,
};
NQOMLStaticVEStruct kEnumerators[] = {{"small", 10}, {"large", -7}, {nullptr, 0}};

struct Counted {
  Counted() { ++live; }
  ~Counted() { --live; }
  Counted(const Counted&) = delete;
  Counted& operator=(const Counted&) = delete;
  static inline int live = 0;
};
struct CountedValue : NQOMLBinValue, Counted {};
struct CountedField : NQOMLSyntaxField, Counted {
  explicit CountedField(NQOMLToken* token = nullptr)
      : NQOMLSyntaxField(nullptr, 1, 1, 0, 0, -1, 0, token, nullptr, 1) {}
};
struct CountedObject : NQOMLSyntaxObject, Counted {
  CountedObject() : NQOMLSyntaxObject(nullptr, 1, 1, 0, 1, 0, -1, 0, nullptr) {}
};

NQOMLToken binaryToken() {
  NQOMLToken token;
  token.tag = NQ_OML_BINARY_VALUE;
  token.pBinValue(new CountedValue);
  return token;
}

class SyntaxTree : public testing::Test {
 protected:
  SyntaxTree()
      : grammar_(static_cast<const char* const*>(nullptr), nullptr, kEnumerators,
                 kDefinitions, 9, 9, 9, 9, 9, 9),
        file_(grammar_),
        graph_(grammar_.pObjTypeDefinition(1)),
        object_(makeObject()) {}

  nqLong name(const char* field) const { return grammar_.pFieldPool()->lookup(field); }
  nqLong section(const char* text) const { return grammar_.pSectionPool()->lookup(text); }

  std::unique_ptr<NQOMLSyntaxObject> makeObject(nqLong id = 0) {
    return std::make_unique<NQOMLSyntaxObject>(file_.pFile(), 1, 1, 0, 1, id, -1, 0,
                                               graph_);
  }
  // A field as the parser makes it: with its definition unless it has wildcards.
  NQOMLSyntaxField* makeField(nqLong nameIndex, nqULong path = 0, nqLong sectionID = -1,
                              NQOMLToken* token = nullptr, bool unchecked = false) {
    NQOMLDefScope* const scope = graph_->pScope(path);
    return new NQOMLSyntaxField(
        file_.pFile(), 1, 1, 0, nameIndex, sectionID, path, token,
        scope == nullptr || unchecked ? nullptr : scope->pField(nameIndex), unchecked);
  }
  NQOMLSyntaxField* makeValue(NQOMLTokenTagEnum tag, std::uint64_t word) {
    auto* const token = new NQOMLToken;
    token->tag = tag;
    token->word = word;
    return makeField(name("own"), 0, -1, token);
  }
  // A field without regard to the grammar, whose name is a number.
  NQOMLSyntaxField* plain(nqLong nameIndex) {
    return makeField(nameIndex, 0, -1, nullptr, true);
  }

  static std::string names(const NQOMLSyntaxObject& object) {
    std::string text;
    for (NQOMLSyntaxFieldIter iter(&object); iter; ++iter) {
      text += std::to_string(iter.pField()->nameIndex()) + ' ';
    }
    return text;
  }
  // Each field with section and path; "!" unless its definition is that of there.
  std::string fields(const NQOMLSyntaxObject& object) const {
    std::string text;
    for (NQOMLSyntaxFieldIter iter(&object); iter; ++iter) text += field(*iter.pField());
    return text;
  }
  std::string field(const NQOMLSyntaxField& field) const {
    char text[80];
    NQOMLDefScope* const scope = graph_->pScope(field.sectionPath());
    const bool defined =
        scope != nullptr && field.pDefField() == scope->pField(field.nameIndex());
    std::snprintf(text, sizeof text, "%s(%s,%x%s) ", field.nameString(),
                  field.sectionString(), static_cast<unsigned>(field.sectionPath()),
                  defined ? "" : "!");
    return text;
  }

  NQOMLStatic grammar_;
  ReadingFile file_;
  NQOMLDefObjType* graph_;
  std::unique_ptr<NQOMLSyntaxObject> object_;
};

TEST_F(SyntaxTree, PlacesFollowTheCopyProtocol) {
  NQOMLSyntaxStruct sample(file_.pFile(), 7, 40000, 3);
  EXPECT_EQ(sample.position(), 40000 - 65536);
  EXPECT_EQ(sample.column(), 40000);
  checkCopyProtocol(
      sample, [] { return std::make_unique<NQOMLSyntaxStruct>(nullptr, 1, 2, 3); },
      [](const NQOMLSyntaxStruct& a, const NQOMLSyntaxStruct& b) {
        return a.pFile() == b.pFile() && a.line() == b.line() &&
               a.column() == b.column() && a.fileNameIndex() == b.fileNameIndex();
      });
}

TEST_F(SyntaxTree, NamesComeFromTheGrammarThenFromTheFile) {
  const nqLong fields = grammar_.pFieldPool()->decodeTableMax();
  const nqLong sections = grammar_.pSectionPool()->decodeTableMax();
  file_.declaredFields.update("Extra");
  file_.declaredSections.update("Far");
  file_.strings.add("a.oml");
  file_.ids.add("$,a", object_.get(), file_.pFile());
  const struct {
    nqLong field;
    nqLong section;
    const char* fieldName;
    const char* sectionName;
  } kRows[] = {
      {name("own"), section("in"), "OWN", "IN"}, {fields, sections, "EXTRA", "FAR"},
      {fields + 1, sections + 1, "", ""},        {-1, -1, "", ""},
      {fields - 1, sections - 1, "DEEP", "C"},
  };
  for (const auto& row : kRows) {
    const NQOMLSyntaxField field(file_.pFile(), 1, 1, 0, row.field, row.section, 0,
                                 nullptr, nullptr, 1);
    if (row.field != fields - 1) {
      EXPECT_STREQ(field.nameString(), row.fieldName);
    }
    if (row.section != sections - 1) {
      EXPECT_STREQ(field.sectionString(), row.sectionName);
    }
    const NQOMLSyntaxField fileless(nullptr, 1, 1, 0, row.field, row.section, 0, nullptr,
                                    nullptr, 1);
    EXPECT_STREQ(fileless.nameString(), "");
    EXPECT_STREQ(fileless.sectionString(), "");
    EXPECT_STREQ(fileless.fileNameString(), "");
  }
  EXPECT_STREQ(object_->typeString(), "GRAPH");
  EXPECT_STREQ(object_->nameString(), "$,a");
  EXPECT_STREQ(object_->fileNameString(), "a.oml");
  EXPECT_EQ(object_->object(), file_.ids.pObject(0));
  EXPECT_EQ(object_->objectIDIndex(5), 5);
  EXPECT_EQ(object_->nameIndex(), 5);
  EXPECT_STREQ(object_->nameString(), "");
  EXPECT_EQ(object_->object(), nullptr);

  // By name: the grammar's fields and the file's own, in any case.
  object_->addField(plain(fields));
  NQOMLSyntaxField* const inFar = makeField(name("own"), 0, sections, nullptr, true);
  object_->addField(inFar);
  EXPECT_EQ(object_->searchField("extra", nullptr), object_->pFieldList()->pField());
  EXPECT_EQ(object_->searchField("OWN", "far"), inFar);
  EXPECT_EQ(object_->searchField("own", "a"), nullptr);
  EXPECT_EQ(object_->searchField("nothing", nullptr), nullptr);
  EXPECT_EQ(object_->searchField(nullptr, nullptr), nullptr);
}

TEST_F(SyntaxTree, ValuesAreReadFromTheToken) {
  const nqLong text = file_.strings.add("text");
  file_.ids.add("defaults", nullptr, nullptr);
  file_.ids.add("$,g", object_.get(), file_.pFile());
  const auto value = [this](NQOMLTokenTagEnum tag, std::uint64_t word) {
    return std::unique_ptr<NQOMLSyntaxField>(makeValue(tag, word));
  };
  EXPECT_EQ(value(NQ_OML_INTEGER, 0xFFFFFFFEU)->intValue(), -2);
  EXPECT_EQ(value(NQ_OML_INTEGER, 0x1FFFFU)->shortValue(), -1);
  EXPECT_EQ(value(NQ_OML_REAL, std::bit_cast<std::uint64_t>(0.1))->doubleValue(), 0.1);
  EXPECT_EQ(value(NQ_OML_REAL, std::bit_cast<std::uint64_t>(0.1))->floatValue(), 0.1F);
  const auto large = static_cast<std::uint64_t>(grammar_.pEnumPool()->lookup("large"));
  EXPECT_EQ(value(NQ_OML_ENUMERATOR, large)->enumValue(), -7);
  EXPECT_EQ(value(NQ_OML_ENUMERATOR, NQ_OML_TRUE)->boolValue(), 1);
  EXPECT_EQ(value(NQ_OML_ENUMERATOR, 99)->enumValue(), 0);
  EXPECT_STREQ(value(NQ_OML_STRING, static_cast<std::uint64_t>(text))->stringValue(),
               "text");
  EXPECT_STREQ(value(NQ_OML_STRING, 0xFFFFFFFFU)->stringValue(), "");
  EXPECT_EQ(value(NQ_OML_OBJECT_ID, 1)->objectValue(), file_.ids.pObject(1));
  EXPECT_STREQ(value(NQ_OML_OBJECT_ID, 1)->objectTypeString(), "GRAPH");
  EXPECT_EQ(value(NQ_OML_OBJECT_ID, 0)->objectTypeIndex(), -1);
  EXPECT_EQ(value(NQ_OML_OBJECT_ID, 2)->objectValue(), nullptr);
  // No other value that happens to be that number leads to an object.
  for (const int tag : {0, 2, 4, 5, 6, 7, 9, 11, 12, 14}) {
    const auto field = value(static_cast<NQOMLTokenTagEnum>(tag), 1);
    EXPECT_EQ(field->objectValue(), nullptr) << tag;
    EXPECT_EQ(field->objectTypeIndex(), -1) << tag;
    EXPECT_STREQ(field->objectTypeString(), "") << tag;
  }
  EXPECT_EQ(value(NQ_OML_INTEGER, 77)->pBinValue(), nullptr);

  constexpr int kTypes[] = {6, 6, 6, 6, 0, 2, 3, 5, 6, 6, 6, 1, 6, 4, 6};
  for (int tag = 0; tag < 15; ++tag) {
    const auto field = value(static_cast<NQOMLTokenTagEnum>(tag), 0);
    EXPECT_EQ(field->valueType(), kTypes[tag]) << tag;
  }

  const std::unique_ptr<NQOMLSyntaxField> empty(makeField(name("own")));
  EXPECT_EQ(empty->valueType(), NQ_OML_VALUE_OTHER);
  EXPECT_EQ(empty->intValue() + empty->shortValue() + empty->enumValue(), 0);
  EXPECT_EQ(empty->doubleValue() + static_cast<double>(empty->floatValue()), 0.0);
  EXPECT_STREQ(empty->stringValue(), "");
  EXPECT_STREQ(empty->objectTypeString(), "");
  EXPECT_EQ(empty->objectTypeIndex(), -1);
  EXPECT_EQ(empty->objectValue(), nullptr);
  EXPECT_EQ(empty->pBinValue(), nullptr);
}

TEST_F(SyntaxTree, YieldsDefaultsBeforeOwnFields) {
  EXPECT_FALSE(NQOMLSyntaxFieldIter());
  EXPECT_FALSE(NQOMLSyntaxFieldIter(nullptr));
  EXPECT_FALSE(NQOMLSyntaxFieldIter(object_.get()));
  EXPECT_EQ(object_->searchField(0, -1), nullptr);

  const auto a = makeObject();
  const auto b = makeObject();
  const auto none = makeObject();
  for (const nqLong n : {1, 2}) a->addField(plain(n));
  for (const nqLong n : {3, 4}) b->addField(plain(n));
  object_->addDefaultList(a->pFieldList());
  object_->addDefaultList(none->pFieldList());
  object_->addDefaultList(b->pFieldList());
  EXPECT_EQ(names(*object_), "3 4 1 2 ");
  object_->addField(nullptr);
  for (const nqLong n : {5, 3}) object_->addField(plain(n));
  EXPECT_EQ(names(*object_), "3 4 1 2 5 3 ");
  EXPECT_EQ(object_->searchField(3, -1), b->pFieldList()->pField());
  EXPECT_EQ(object_->searchUniqueField(5, 0), object_->pFieldList()->pField());
  EXPECT_EQ(object_->searchUniqueField(2, 0), a->pFieldListEnd()->pField());

  NQOMLSyntaxFieldIter past(object_.get());
  while (past) ++past;
  ++past;
  EXPECT_EQ(past.pField(), nullptr);

  // Detaching the fields leaves a list that can be added to.
  NQOMLSyntaxFieldList* const detached = a->pFieldList();
  EXPECT_EQ(a->pFieldList(nullptr), nullptr);
  a->addField(plain(9));
  EXPECT_EQ(names(*a), "9 ");
  EXPECT_EQ(names(*object_), "3 4 1 2 5 3 ");
  delete detached;
}

TEST_F(SyntaxTree, YieldsWildcardFieldsOncePerSection) {
  const struct {
    const char* field;
    nqULong path;
    const char* expected;
  } kRows[] = {
      {"x", 0xF, "X(C,3) X(A,1) "},       // newest section first; b has no x
      {"x", 0xFF, "X(IN,13) X(IN,11) "},  //
      {"deep", 0xFF, "DEEP(IN,11) "},     //
      {"x", 0x1F, "X(IN,13) X(IN,11) "},  //
      {"x", 0xF1, "X(IN,11) "},           //
      {"y", 0xF, "Y(B,2) "},              //
      {"own", 0xF, ""},                   // in no section
      {"x", 0xFFF, ""},                   // below all sections
      {"x", 0x1, "X(_,1) "},              // no wildcard: as it was written
  };
  for (const auto& row : kRows) {
    auto object = makeObject();
    object->addField(makeField(name("own")));
    NQOMLSyntaxField* const written = makeField(name(row.field), row.path, section("_"));
    object->addField(written);
    object->addField(makeField(name("own")));
    const std::string before = field(*written);
    EXPECT_EQ(fields(*object), std::string("OWN(,0) ") + row.expected + "OWN(,0) ");
    EXPECT_EQ(field(*written), before);
    EXPECT_EQ(object->searchUniqueField(name(row.field), row.path), written);
    EXPECT_EQ(object->searchField(name(row.field), -1) == written,
              *row.expected != '\0' && name(row.field) != name("own"));
  }

  // Found in each section that the wildcard stands for, and nowhere else.
  NQOMLSyntaxField* const written = makeField(name("x"), 0xF, section("_"));
  object_->addField(written);
  EXPECT_EQ(object_->searchField(name("x"), section("a")), written);
  EXPECT_EQ(object_->searchField(name("x"), section("c")), written);
  EXPECT_EQ(object_->searchField(name("x"), section("b")), nullptr);
  EXPECT_EQ(object_->searchField(name("x"), section("_")), nullptr);
  object_->pDefObjType(nullptr);
  EXPECT_EQ(fields(*object_), "");
}

TEST_F(SyntaxTree, WildcardWalksAreIndependent) {
  auto* const token = new NQOMLToken;
  token->tag = NQ_OML_INTEGER;
  token->integer(5);
  NQOMLSyntaxField* const written = makeField(name("x"), 0xF, section("_"), token);
  object_->addField(written);
  object_->addField(makeField(name("own")));
  const std::string before = field(*written);

  std::string pairs;
  for (NQOMLSyntaxFieldIter outer(object_.get()); outer; ++outer) {
    pairs += field(*outer.pField()) + ": " + fields(*object_);
  }
  EXPECT_EQ(pairs,
            "X(C,3) : X(C,3) X(A,1) OWN(,0) X(A,1) : X(C,3) X(A,1) OWN(,0) "
            "OWN(,0) : X(C,3) X(A,1) OWN(,0) ");

  // The view has the field's value.
  NQOMLSyntaxFieldIter iter(object_.get());
  EXPECT_NE(iter.pField(), written);
  EXPECT_EQ(iter.pWrittenField(), written);
  EXPECT_EQ(iter.pField()->intValue(), 5);

  // A copy goes on from the same place on its own.
  NQOMLSyntaxFieldIter copy(iter);
  NQOMLSyntaxFieldIter assigned;
  assigned = copy;
  ++iter;
  EXPECT_EQ(field(*iter.pField()), "X(A,1) ");
  EXPECT_EQ(field(*copy.pField()), "X(C,3) ");
  EXPECT_EQ(field(*assigned.pField()), "X(C,3) ");
  ++copy;
  ++copy;
  EXPECT_EQ(field(*copy.pField()), "OWN(,0) ");
  iter.init(object_.get());
  EXPECT_EQ(field(*iter.pField()), "X(C,3) ");
  EXPECT_EQ(field(*written), before);

  checkCopyProtocol(
      iter, [] { return std::make_unique<NQOMLSyntaxFieldIter>(); },
      [this](const NQOMLSyntaxFieldIter& a, const NQOMLSyntaxFieldIter& b) {
        return a.pWrittenField() == b.pWrittenField() && (b != 0) &&
               field(*a.pField()) == field(*b.pField());
      });
  const auto parent = makeObject();
  parent->addObject(makeObject().release());
  NQOMLSyntaxObjectIter objects(parent.get());
  checkCopyProtocol(
      objects, [] { return std::make_unique<NQOMLSyntaxObjectIter>(); },
      [](const NQOMLSyntaxObjectIter& a, const NQOMLSyntaxObjectIter& b) {
        return a.pObject() == b.pObject();
      });
}

TEST_F(SyntaxTree, TellsTheFileOfEachNewObject) {
  struct Listener : NQOMLFile {
    void vSyntaxObjectCreated(NQOMLSyntaxObject* syntax, nqLong line,
                              int position) override {
      told.push_back({syntax, line, position});
      EXPECT_EQ(syntax->typeIndex(), 1);
      syntax->addField(new CountedField);
      if (holder != nullptr) holder->addObject(syntax);
    }
    struct Event {
      NQOMLSyntaxObject* syntax;
      nqLong line;
      int position;
    };
    std::vector<Event> told;
    NQOMLSyntaxObject* holder = nullptr;
  } listener;
  {
    SyntaxArena arena;
    const auto onHeap =
        std::make_unique<NQOMLSyntaxObject>(&listener, 7, 70000, 0, 1, 0, -1, 0, graph_);
    const auto holder = makeObject();
    listener.holder = holder.get();
    const auto* const inArena = arena.makeObject(
        arena.kindOf({.file = &listener, .nameIndex = 1, .defObjType = graph_}), 8, 2, 0);
    EXPECT_EQ(NQOMLSyntaxObjectIter(holder.get()).pObject(), inArena);
    ASSERT_EQ(listener.told.size(), 2U);
    EXPECT_EQ(listener.told[0].syntax, onHeap.get());
    EXPECT_EQ(listener.told[0].line, 7);
    EXPECT_EQ(listener.told[0].position, 70000);
    EXPECT_EQ(listener.told[1].syntax, inArena);
    EXPECT_EQ(Counted::live, 2);
  }
  EXPECT_EQ(Counted::live, 0);
}

std::string ids(const NQOMLSyntaxObject& object) {
  std::string text;
  const NQOMLSyntaxObjectList* last = nullptr;
  for (NQOMLSyntaxObjectIter iter(&object); iter; ++iter) {
    text += std::to_string(iter.pObject()->objectIDIndex()) + ' ';
    if (iter.pObject()->pParent() != &object) text += "(wrong parent) ";
    last = iter.pCell();
  }
  if (last != object.pObjectListEnd()) text += "(wrong end) ";
  return text;
}

TEST_F(SyntaxTree, AppendJoinsLists) {
  const auto defaultsA = makeObject();
  const auto defaultsB = makeObject();
  defaultsA->addField(plain(1));
  defaultsB->addField(plain(2));

  const auto other = makeObject();
  object_->append(other.get());
  object_->append(object_.get());
  object_->append(nullptr);
  EXPECT_EQ(ids(*object_) + names(*object_), "");
  for (int round = 0; round < 3; ++round) {
    for (const nqLong id : {1, 2})
      other->addObject(makeObject(10 * round + id).release());
    other->addField(plain(5 + round));
    other->addDefaultList(defaultsA->pFieldList());
    other->addDefaultList(defaultsB->pFieldList());
    object_->append(other.get());
    EXPECT_EQ(ids(*other) + names(*other), "");
    object_->append(other.get());
  }
  EXPECT_EQ(ids(*object_), "1 2 11 12 21 22 ");
  EXPECT_EQ(names(*object_), "2 1 5 6 7 ");  // each list of defaults once
}

TEST_F(SyntaxTree, JoinsManyBlocksWithoutWalkingTheChain) {
  constexpr nqLong kBlocks = 100000;
  std::vector<std::unique_ptr<NQOMLSyntaxObject>> defaults;
  SyntaxArena arena;
  NQOMLSyntaxObject* const inArena =
      arena.makeObject(arena.kindOf({.nameIndex = 1, .defObjType = graph_}), 1, 1, 1);
  for (NQOMLSyntaxObject* const target : {object_.get(), inArena}) {
    for (nqLong n = 0; n < 2 * kBlocks; ++n) {
      if (n < kBlocks && target == object_.get()) {
        defaults.push_back(makeObject());
        defaults.back()->addField(plain(n));
      }
      const auto block = makeObject();
      block->addDefaultList(
          defaults[static_cast<std::size_t>(n % kBlocks)]->pFieldList());
      target->append(block.get());
    }
    nqLong next = 0;
    for (NQOMLSyntaxFieldIter iter(target); iter; ++iter, ++next) {
      ASSERT_EQ(iter.pField()->nameIndex(), next);
    }
    EXPECT_EQ(next, kBlocks);
  }
}

// A chain that has an index may be lengthened behind its back.
TEST_F(SyntaxTree, FindsTheEndOfAChainThatOthersLengthened) {
  std::vector<std::unique_ptr<NQOMLSyntaxObject>> blocks;
  const auto block = [&, this](nqLong number) {
    blocks.push_back(makeObject());
    blocks.back()->addField(plain(number));
    return blocks.back()->pFieldList();
  };
  const auto join = [&, this](NQOMLSyntaxFieldList* fields) {
    const auto other = makeObject();
    other->addDefaultList(fields);
    object_->append(other.get());
  };
  std::string expected;
  for (nqLong number = 0; number < 50; ++number) {
    join(block(number));
    expected += std::to_string(number) + ' ';
  }
  NQOMLSyntaxFieldList* const added = block(50);
  auto* const node = new NQOMLSyntaxDefaultList(added);
  object_->pDefaultList()->append(node);
  object_->pDefaultList()->append(node);  // it is there already
  join(block(51));
  join(added);
  EXPECT_EQ(names(*object_), expected + "50 51 ");
}

TEST_F(SyntaxTree, DeletesSingleChildren) {
  for (const nqLong id : {1, 2, 3, 4}) object_->addObject(makeObject(id).release());
  object_->addObject(nullptr);
  object_->deleteObjectItem(nullptr);
  EXPECT_EQ(ids(*object_), "2 3 4 ");
  object_->deleteObjectItem(object_->pObjectList());
  EXPECT_EQ(ids(*object_), "2 4 ");
  object_->deleteObjectItem(object_->pObjectList());
  object_->deleteObjectItem(object_->pObjectListEnd());
  EXPECT_EQ(ids(*object_), "2 ");
  object_->deleteObjectItem(nullptr);
  object_->deleteObjectItem(nullptr);
  EXPECT_EQ(ids(*object_), "");
  object_->addObject(makeObject(5).release());
  EXPECT_EQ(ids(*object_), "5 ");
}

TEST_F(SyntaxTree, DestroysLongAndDeepTrees) {
  ASSERT_EQ(Counted::live, 0);
  {
    const auto root = std::make_unique<CountedObject>();
    NQOMLSyntaxObject* deep = root.get();
    for (int n = 0; n < 200000; ++n) {
      root->addObject(new CountedObject);
      root->addField(new CountedField(new NQOMLToken(binaryToken())));
      auto* const below = new CountedObject;
      deep->addObject(below);
      deep = below;
    }
    EXPECT_EQ(Counted::live, 800001);
  }
  EXPECT_EQ(Counted::live, 0);
  {
    // Cells by themselves, the last three of a list.
    const auto root = std::make_unique<CountedObject>();
    for (int n = 0; n < 4; ++n) root->addField(new CountedField);
    NQOMLSyntaxFieldList* const all = root->pFieldList();
    root->pFieldList(nullptr);
    EXPECT_EQ(Counted::live, 5);
    delete all;
    EXPECT_EQ(Counted::live, 1);
  }
  EXPECT_EQ(Counted::live, 0);
}

TEST_F(SyntaxTree, ArenasOwnWhatHangsInTheirTrees) {
  SyntaxArena arena;
  const auto object = [&] {
    return arena.makeObject(arena.kindOf({.nameIndex = 1, .defObjType = graph_}), 1, 1,
                            1);
  };
  const auto field = [&](nqLong n) {
    return arena.makeField(arena.kindOf({.nameIndex = n, .unchecked = true}), 1, 1,
                           binaryToken());
  };
  for (int round = 0; round < 2; ++round) {
    NQOMLSyntaxObject* const root = object();
    NQOMLSyntaxObject* const first = object();
    NQOMLSyntaxObject* const second = object();
    NQOMLSyntaxObject* const lost = object();  // never added to a parent
    root->addObject(first);
    root->addObject(second);
    root->addField(field(1));
    EXPECT_EQ(Counted::live, 1);

    // Nodes from elsewhere, at the end of every detour.
    first->addField(new CountedField(new NQOMLToken(binaryToken())));
    lost->addField(new CountedField);
    auto* const foreign = new CountedObject;
    first->addObject(foreign);
    foreign->addObject(object());
    foreign->pObjectList()->pObject()->addObject(new CountedObject);
    foreign->addField(field(2));
    EXPECT_EQ(Counted::live, 7);
    CountedObject block;
    block.addField(new CountedField);
    block.addDefaultList(root->pFieldList());
    second->append(&block);
    second->append(first);
    EXPECT_EQ(first->pFieldList(), nullptr);
    root->deleteObjectItem(nullptr);
    EXPECT_EQ(Counted::live, 9);
    EXPECT_EQ(root->pObjectList()->pObject(), second);
    EXPECT_EQ(names(*second), "1 0 0 ");

    if (round == 0) {
      root->deleteObjectItem(nullptr);  // only the arena's own values, the lost
      EXPECT_EQ(Counted::live, 4);      // field and the block are left
    }
    arena.clear();
    EXPECT_EQ(Counted::live, 1);
  }
  EXPECT_EQ(Counted::live, 0);
}

TEST_F(SyntaxTree, ArenasHoldLargeTrees) {
  SyntaxArena arena;
  NQOMLSyntaxObject* const root = arena.makeObject(arena.kindOf({}), 1, 1, 0);
  NQOMLSyntaxObject* deep = root;
  for (nqLong n = 0; n < 100000; ++n) {
    NQOMLToken token;
    token.tag = NQ_OML_INTEGER;
    token.integer(n);
    root->addField(
        arena.makeField(arena.kindOf({.nameIndex = n, .unchecked = true}), n, 1, token));
    NQOMLSyntaxObject* const below =
        arena.makeObject(arena.kindOf({.nameIndex = 0}), n, 1, n);
    deep->addObject(below);
    deep = below;
  }
  nqLong next = 0;
  for (NQOMLSyntaxFieldIter iter(root); iter; ++iter, ++next) {
    ASSERT_EQ(iter.pField()->intValue(), next);
  }
  EXPECT_EQ(next, 100000);
}

}  // namespace
