// The samples hold what their sources say, as an application sees them.

#include "nq/oml/bin_value.h"
#include "nq/oml/grammar_file.h"
#include "nq/oml/oml_file.h"
#include "nq/oml/syntax_tree.h"
#include "tools/nqoml/source.h"

#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace {

// An object of any type, with its fields as texts: "section.name=value".
struct Thing : NQObject {
  std::string type;
  std::string id;
  std::vector<std::string> fields;
  std::map<std::string, Thing*> references;
};

class ThingReader : public NQOMLFile {
 public:
  std::map<std::string, std::unique_ptr<Thing>> things;  // by full id

 protected:
  NQObject* vCreateObject(NQOMLSyntaxObject* syntax, NQOMLSyntaxObject*,
                          NQObject*) override {
    auto thing = std::make_unique<Thing>();
    thing->type = syntax->typeString();
    thing->id = syntax->nameString();
    return (things[thing->id] = std::move(thing)).get();
  }

  int vReadField(NQOMLSyntaxField* field, NQOMLSyntaxObject*, NQObject* object) override {
    auto& thing = *static_cast<Thing*>(object);
    const std::string section = field->sectionString();
    std::string text =
        section + (section.empty() ? "" : ".") + field->nameString() + std::string("=");
    switch (field->pDefField()->fieldType()) {
      case NQ_STRING_FIELD:
        text += field->stringValue();
        break;
      case NQ_REAL_FIELD:
        text += std::to_string(field->doubleValue());
        break;
      case NQ_BINARY_FIELD:
        text += std::to_string(field->pBinValue()->length());
        break;
      case NQ_IP_ADDRESS_FIELD:
        text += std::to_string(field->token().address());
        break;
      case NQ_ENUMERATION_FIELD:
        text += std::to_string(field->enumValue());
        break;
      case NQ_BOOLEAN_FIELD:
        text += std::to_string(field->boolValue());
        break;
      case NQ_REFERENCE_FIELD:
        thing.references[field->nameString()] = static_cast<Thing*>(field->objectValue());
        text += thing.references[field->nameString()]->id;
        break;
      default:
        text += std::to_string(field->intValue());
    }
    thing.fields.push_back(text);
    return 1;
  }
};

void readSample(ThingReader& reader, const char* name) {
  std::vector<NQOMLDiagnostic> diagnostics;
  const auto grammar = nqReadGrammarFile(NQ_SAMPLES "graph.grammar", diagnostics);
  ASSERT_NE(grammar, nullptr);
  reader.pErrorStringBuffer(4096);
  const std::string path = std::string(NQ_SAMPLES) + name;
  EXPECT_EQ(reader.readOMLFile(path.c_str(), grammar.get(), nullptr, -1, 0, 0, 0),
            NQ_FILE_OK)
      << reader.pErrorStringBuffer();
  EXPECT_EQ(reader.numberOfWarnings(), 0);
}

TEST(Samples, TheKarateClubIsTheOneThatWasPublished) {
  ThingReader reader;
  readSample(reader, "karate.oml");
  std::map<std::string, int> degrees;
  int edges = 0;
  int withInstructor = 0;
  for (const auto& [id, thing] : reader.things) {
    for (const char* end : {"FROM", "TO"}) {
      const auto reference = thing->references.find(end);
      if (reference != thing->references.end()) ++degrees[reference->second->id];
    }
    edges += thing->type == "EDGE" ? 1 : 0;
    for (const std::string& field : thing->fields) withInstructor += field == "GROUP=1";
  }
  EXPECT_EQ(edges, 78);
  EXPECT_EQ(withInstructor, 17);
  const int kDegrees[] = {16, 9, 10, 6, 3, 4, 4, 4, 5, 2, 3, 1, 2, 5, 2, 2,  2,
                          2,  2, 3,  2, 2, 2, 5, 3, 3, 2, 4, 3, 4, 4, 6, 12, 17};
  ASSERT_EQ(degrees.size(), std::size(kDegrees));
  for (std::size_t i = 0; i < std::size(kDegrees); ++i) {
    EXPECT_EQ(degrees["$,karate,m" + std::to_string(i + 1)], kDegrees[i]) << i + 1;
  }
}

TEST(Samples, TheNetworkReadsAsItIsWritten) {
  ThingReader reader;
  readSample(reader, "network.oml");
  const struct {
    const char* id;
    std::vector<std::string> fields;
  } kRows[] = {
      {"$,office,router",
       {"DRAWING.SHAPE=1", "DRAWING.FILL=#f4f1e8", "LINE.STROKE=0",
        "LINE.THICKNESS=1.500000", "FONT.FAMILY=Sans", "FONT.POINTS=10",
        "LAYOUT.WIDTH=80", "LAYOUT.HEIGHT=30", "LAYOUT.FIXED=0", "TITLE=Router",
        "ADDRESS=3221225985", "ICON=10", "DRAWING.SHAPE=3", "LAYOUT.X=0.000000",
        "LAYOUT.Y=0.000000", "LAYOUT.FIXED=1"}},
      {"$,office,upper_floor,switch", {"ADDRESS=3221226016", "PARENT=$,office,router"}},
      {"$,office,down1",
       {"FROM=$,office,router", "TO=$,office,ground_floor,switch",
        "BUNDLE=$,office,uplink", "SUBJECT=$,office,upper_floor",
        "LINE.THICKNESS=0.750000"}},
  };
  for (const auto& row : kRows) {
    ASSERT_TRUE(reader.things.count(row.id)) << row.id;
    EXPECT_EQ(reader.things[row.id]->fields, row.fields) << row.id;
  }
}

}  // namespace
