// Writes objects as OML: classes that derive from NQOMLObject, and a file that
// writes them in whichever encoding it is asked for.

#include <cstdio>

#include "nq/nq.h"

namespace {

const char* const kTypes[] = {"network", "station", "line", nullptr};
const NQOMLStaticVEStruct kEnumerators[] = {{"tram", 0}, {"ferry", 1}, {nullptr, 0}};

// clang-format off
const char* const kDefinitions[] = {
    "O $toplevel$", "[", "T network", "]",
    "O network", "[", "T station", "T line", "]",
    "O station", "[", "F title S R", "F depth R", "]",
    "O line", "[", "E kind [tram ferry] R", "R from station R", "R to station R", "]",
    nullptr};
// clang-format on

struct Station : NQOMLObject {
  Station(NQOMLObject* network, const char* name, double metres)
      : owner(network), title(name), depth(metres) {}
  NQOMLObject* pOMLOwner() const override { return owner; }

  NQOMLObject* owner;
  NQText title;
  double depth;
};

struct Line : NQOMLObject {
  Line(NQOMLObject* network, const Station* begin, const Station* end)
      : owner(network), from(begin), to(end) {}
  NQOMLObject* pOMLOwner() const override { return owner; }

  NQOMLObject* owner;
  const Station* from;
  const Station* to;
};

struct Town : NQOMLObject {
  Station north{this, "North \"gate\"", 0.1};
  Station south{this, "South gate", 12};
  Line line{this, &north, &south};

  // What gets an id together with the town.
  void collectOwnedOMLObjects(NQDList& parts) override {
    parts.appendObject(&north);
    parts.appendObject(&south);
    parts.appendObject(&line);
  }
};

class TownFile : public NQOMLFile {
 protected:
  void vWriteObject(NQObject* top) override {
    Town& town = *static_cast<Town*>(top);
    town.preFileWrite(this);  // gives out the ids
    writeObjectStart("network", &town, /*singleLine=*/0, /*withID=*/1);
    writeOpeningBracket();
    write(town.north);
    write(town.south);
    writeBlancLine();
    writeObjectStart("line", &town.line, /*singleLine=*/1, /*withID=*/0);
    writeOpeningBracket();
    writeAttribute("kind", "tram");
    writeAttribute("from", town.line.from, &town.line, /*withName=*/1);
    writeAttribute("to", town.line.to, &town.line, /*withName=*/1);
    writeClosingBracket();
    writeClosingBracket();
    town.postFileWrite(this, NQ_FILE_OK);
  }

 private:
  void write(const Station& station) {
    writeObjectStart("station", &station, /*singleLine=*/1, /*withID=*/1);
    writeOpeningBracket();
    writeStringAttribute("title", station.title.pString());
    writeAttribute("depth", station.depth);
    writeClosingBracket();
  }
};

}  // namespace

int main() {
  NQOMLStatic grammar(kTypes, nullptr, kEnumerators, kDefinitions);
  Town town;
  TownFile file;
  file.losslessWriting(1);  // what is written reads back equal
  const char name[] = "oml_writing_example.oml";
  if (file.writeOMLFile(name, &grammar, &town, /*binary=*/0, /*useIndexHashTable=*/0,
                        0) != NQ_FILE_OK) {
    std::printf("cannot write %s\n", name);
    return 1;
  }

  NQTextFile written;
  NQStringHandle line;
  if (written.open(name, NQ_READ) != NQ_FILE_OK) return 1;
  while (written.readLine(line) == NQ_FILE_OK) std::printf("%s\n", line.pString());
  if (written.close() != NQ_FILE_OK) return 1;
  return std::remove(name);
}
