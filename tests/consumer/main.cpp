// Uses a little of each folder of the library, as a program of somebody else does:
// its classes across the library's border, inherited and copied. Answers 0 when
// all of it does what it should.

#include <cstdio>
#include <cstring>

#include "nq/nq.h"

namespace {

const char* const kTypes[] = {"graph", "node", nullptr};
const char* const kDefinitions[] = {"O $toplevel$", "[", "T graph", "]", "O graph", "[",
                                    "T node",       "]", nullptr};

class Counter : public NQOMLFile {
 public:
  int objects() const { return objects_; }

 protected:
  NQObject* vCreateObject(NQOMLSyntaxObject*, NQOMLSyntaxObject*, NQObject*) override {
    ++objects_;
    return nullptr;
  }

 private:
  int objects_ = 0;
};

bool clones() {
  const NQText north("north");
  const NQText* const copy = north.cloneObject();
  const bool same = std::strcmp(copy->pString(), "north") == 0;
  delete copy;
  return same;
}

bool contains() {
  NQPointDList points;
  points.appendPoint(new NQPoint(3, 4));
  const bool found = NQPoint::castDown(*points.begin())->norm() == 5;
  points.deleteAllCellsAndObjects();
  return found;
}

bool reads() {
  const char name[] = "consumer.oml";
  NQTextFile out;
  if (out.open(name, NQ_WRITE) != NQ_FILE_OK) return false;
  if (out.writeLine("graph { node a { } node b { } }") != NQ_FILE_OK) return false;
  if (out.close() != NQ_FILE_OK) return false;
  NQOMLStatic grammar(kTypes, nullptr, nullptr, kDefinitions, 10, 10, 10, 10, 10, 10);
  Counter reader;
  return reader.readOMLFile(name, &grammar, nullptr, 0, 0, 0, 0) == NQ_FILE_OK &&
         reader.objects() == 3;
}

}  // namespace

int main() {
  const struct {
    const char* what;
    bool (*does)();
  } uses[] = {{"copies", clones}, {"lists and points", contains}, {"files", reads}};
  for (const auto& [what, does] : uses) {
    if (does()) continue;
    std::printf("consumer: %s do not work\n", what);
    return 1;
  }
  return 0;
}
