// What printers.gdb looks at: values in every state that a printer tells apart.

#include "nq/nq.h"

namespace {

// An application's own class shows its fields, and the library's part in it.
class Label : public NQText {
 public:
  Label(const char* text, int size) : NQText(text), size_(size) {}

 private:
  int size_;
};

struct Values {
  NQDList emptyList;
  NQDList list;
  NQSList singleList;
  NQPointDList points;
  NQBinTree tree;
  NQBinHeap heap;
  NQDList damaged;
  NQInternalText noText;
  NQInternalText emptyText{""};
  NQText text{"line\n\"quoted\""};
  NQErrorMsg message{"out of paper"};
  Label label{"north", 12};
  NQStringHandle handle;
  NQStringPool pool{10, 10, 1, 0};
  NQStringPool emptyPool{0, 0, 0, 0};
  NQPoint point{3, -4};
  NQSize size{30, 20};
  NQDTuple tuple{0.5, 2};
  NQRect rect{1, 2, 30, 40};
  NQInternalRect box{NQRect{0, 0, 10, 6}};
  NQLong number{7};
  NQDouble real{1.5};
};

}  // namespace

// gdb stops here.
extern "C" void shown(const Values& values) {
  asm volatile("" : : "r"(&values) : "memory");
}

int main() {
  Values values;
  NQObject* const objects[] = {&values.number, &values.text, nullptr, &values.label};
  for (NQObject* const object : objects) {
    values.list.appendObject(object);
    values.singleList.prependObject(object);
    values.tree.appendObject(object);
  }
  values.heap.addObject(&values.text, 20);
  values.heap.addObject(&values.number, 10);
  values.points.appendPoint(&values.point);
  values.damaged.appendObject(&values.real);
  values.handle.appendString("built");
  values.handle.appendString(" piece by piece");
  values.pool.update("north");
  values.pool.update("east");
  shown(values);
}
