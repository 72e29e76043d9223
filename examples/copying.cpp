// A class with the copy protocol, the copies it then has, and who owns them.

#include <cstdio>

#include "nq/nq.h"

class Station : public NQObject {
  NQ_COPY_PROTOCOL(Station)

 public:
  explicit Station(const char* name = nullptr, int platforms = 0)
      : name_(name), platforms_(platforms) {}

  const char* name() const { return name_.pString(); }
  int platforms() const { return platforms_; }

 protected:
  void init() {
    name_.pString(nullptr);
    platforms_ = 0;
  }

 private:
  NQInternalText name_;
  int platforms_;
};

NQ_COPY_PROTOCOL_IMPL(Station)

void Station::StationdeepCopy(const Station& source) {
  NQCopyAccess::deep<NQObject>(*this, source);  // the base comes first
  name_.pString(source.name());
  platforms_ = source.platforms_;
}

void Station::StationattributeCopy(const Station& source) {
  NQCopyAccess::attributes<NQObject>(*this, source);
  platforms_ = source.platforms_;
}

int main() {
  const Station north("North", 4);

  // Copies are values, clones are yours to delete.
  const Station deep(north, NQ_DEEP_COPY);
  const Station attributes(north, NQ_ATTRIBUTE_COPY);
  std::printf("%s %d, %s %d\n", deep.name(), deep.platforms(),
              attributes.name() == nullptr ? "no name" : attributes.name(),
              attributes.platforms());
  const NQObject* const object = &north;
  NQObject* const clone = object->cloneObject();  // a Station all the same
  std::printf("%s\n", Station::castDown(clone)->name());
  delete clone;

  // A list owns its cells. The objects belong to whoever says so: here two lists
  // share them, and one is given the task of deleting them.
  NQDList line;
  line.appendObject(new Station("South", 2));
  line.appendObject(new Station("East", 1));
  NQDList detour;
  detour.copyAppendList(&line);      // new cells, the same objects
  NQDList plan(line, NQ_DEEP_COPY);  // new cells, new objects
  NQDListCell* const cell = detour.pFirstCell();
  detour.removeCell(cell);  // hands the cell over
  delete cell;              // the object stays in `line`
  std::printf("line %d, detour %d, plan %d\n", int(line.length()), int(detour.length()),
              int(plan.length()));
  line.deleteAllCellsAndObjects();
  detour.deleteAllCells();  // its objects are gone already
  plan.deleteAllCellsAndObjects();
}
