// tree_writing.h -- a read tree written back through the public operations.

#ifndef NQ_TESTS_SUPPORT_TREE_WRITING_H
#define NQ_TESTS_SUPPORT_TREE_WRITING_H

#include <deque>
#include <map>
#include <string>

#include "nq/oml/oml_object.h"
#include "tests/support/oml_reading.h"

// Reads files and keeps what is in them, so that it can be compared and written:
// objects in reading order with an id each, fields with defaults and wildcards
// worked out.
class TreeReader : public TestReader {
 public:
  TreeReader() { keepTree = false; }

  NQFileCodeEnum read(const std::string& name, NQOMLStatic& grammar, bool binary);
  // Everything but reals and the words of ids, for which objects are counted.
  std::string content() const;
  // Whether both have the same content, reals within a part of their size.
  bool agrees(const TreeReader& other, double tolerance) const;
  // Whether a writer can say it all.
  bool isWritable() const { return writable_; }
  // Writes the file without loss.
  NQFileCodeEnum write(const std::string& name, NQOMLStatic& grammar, bool binary) const;

  void execute() override;

 private:
  friend class TreeWriter;

  struct Item;
  struct Value {
    std::vector<std::string> sections;  // outermost first
    std::string name;
    NQOMLToken token;
    std::string text;  // of a string or an enumerator, the bytes of a binary value
    const Item* object = nullptr;
  };
  struct Item : NQOMLObject {
    NQOMLObject* pOMLOwner() const override { return owner; }
    NQOMLObject* owner = nullptr;
    std::vector<std::string> sections;
    std::string type;
    std::vector<Value> values;
    std::vector<Item*> parts;
  };

  void collectObjects(const NQOMLSyntaxObject& node, Item& owner,
                      const NQOMLDefObjType* type);
  void collectValues(const NQOMLSyntaxObject& node, Item& item);

  std::deque<Item> items_;  // the first stands for the file
  std::map<nqLong, Item*> byID_;
  bool writable_ = true;
};

#endif  // NQ_TESTS_SUPPORT_TREE_WRITING_H
