// syntax_tree.h -- an OML file as a tree of nodes, before any object is made.
//
// Reading hooks receive these nodes: an NQOMLSyntaxObject for each object block
// and an NQOMLSyntaxField for each value, with the place in a file where it
// stood. Nodes hold indices into the tables of the grammar and of the reading
// file; the accessors turn them back into texts and values. The texts belong to
// those tables and stay valid until the read ends.
//
// An object owns its children and fields, a field its binary value. A reader keeps its
// tree in one piece of memory that goes as a whole: a node that a reader made is never
// deleted by hand, and must not outlive the reader's next read. Nodes made with new may
// be added to any tree, which then owns them.
//
// Adding is O(1). Destroying is iterative, however long or deep the tree.

#ifndef NQ_OML_SYNTAX_TREE_H
#define NQ_OML_SYNTAX_TREE_H

#include <cstdint>
#include <optional>

#include "nq/core/copy_protocol.h"
#include "nq/oml/definitions.h"
#include "nq/oml/token.h"

class NQOMLBinValue;
class NQOMLFile;
class NQOMLSyntaxDefaultList;
class NQOMLSyntaxFieldList;
class NQOMLSyntaxObjectList;

namespace nqdetail {
class DefaultsIndex;
class SemanticPass;
class SyntaxArena;
}  // namespace nqdetail

// What NQOMLSyntaxField::valueType() tells about a value as it was written.
enum NQOMLFieldTypeEnum : int {
  NQ_OML_VALUE_INTEGER = 0,
  NQ_OML_VALUE_REAL = 1,
  NQ_OML_VALUE_STRING = 2,
  NQ_OML_VALUE_ENUMERATOR = 3,
  NQ_OML_VALUE_BINARY = 4,
  NQ_OML_VALUE_OBJECT_TYPE = 5,
  NQ_OML_VALUE_OTHER = 6,
};

// The place of a node in its source file.
class NQ_EXPORT NQOMLSyntaxStruct : public NQObject {
  NQ_COPY_PROTOCOL(NQOMLSyntaxStruct)

 public:
  // `position` is the column.
  NQOMLSyntaxStruct(NQOMLFile* file, nqLong line, int position, nqLong fileNameIndex)
      : file_(file), fileNameIndex_(fileNameIndex), line_(line), column_(position) {}

  // The reading file, not owned.
  NQOMLFile* pFile() const { return file_; }
  // The source file's name, in the reading file's table of strings.
  nqLong fileNameIndex() const { return fileNameIndex_; }
  const char* fileNameString() const;
  nqLong line() const { return line_; }
  // The column, from 1: the number of the byte in its line, in the binary encoding in
  // its file.
  nqLong column() const { return column_; }
  // The low 16 bits of the column, which wraps to negative numbers beyond 32767.
  int position() const { return static_cast<std::int16_t>(column_); }

 protected:
  void init();

 private:
  void copyFields(const NQOMLSyntaxStruct& source);

  NQOMLFile* file_;
  nqLong fileNameIndex_;
  nqLong line_;
  nqLong column_;
};

// One value, with the name it was given.
class NQ_EXPORT NQOMLSyntaxField : public NQOMLSyntaxStruct {
 public:
  static constexpr nqLong kMaxSectionIDIndex = (nqLong{1} << 25) - 2;

  // Takes the value of `token`, which may be null, over and deletes the token.
  // `nameIndex` and `sectionIDIndex` count on behind the grammar's names for names
  // that only the file declares; a section's is at most kMaxSectionIDIndex.
  NQOMLSyntaxField(NQOMLFile* file, nqLong line, int position, nqLong fileNameIndex,
                   nqLong nameIndex, nqLong sectionIDIndex, nqULong sectionPath,
                   NQOMLToken* token, NQOMLDefField* defField, int unchecked);
  NQOMLSyntaxField(const NQOMLSyntaxField&) = delete;
  NQOMLSyntaxField& operator=(const NQOMLSyntaxField&) = delete;
  ~NQOMLSyntaxField() override;

  nqLong nameIndex() const { return nameIndex_; }
  const char* nameString() const;
  // The section under which the field stands; -1 for none.
  nqLong sectionIDIndex() const { return static_cast<nqLong>(section_) - 1; }
  const char* sectionString() const;
  // That section's path, which may hold wildcards.
  nqULong sectionPath() const { return sectionPath_; }

  // The definition; null for unchecked fields and where the path holds wildcards.
  NQOMLDefField* pDefField() const { return defField_; }
  NQOMLDefField* pDefField(NQOMLDefField* defField) { return defField_ = defField; }
  // Whether the field was read in unchecked mode, without regard to the grammar.
  int unchecked() const { return unchecked_ ? 1 : 0; }

  // The value as a token without a place; a binary value still belongs to the
  // field. Unrecognised when there is none.
  NQOMLToken token() const;
  NQOMLFieldTypeEnum valueType() const;

  // The value, read as what the caller knows it to be; see valueType(). Without
  // a token the answer is 0, "" or null.
  int intValue() const;
  short shortValue() const;
  double doubleValue() const;
  float floatValue() const;
  // The number that the grammar gives to the enumerator.
  int enumValue() const;
  int boolValue() const;
  const char* stringValue() const;
  // The object to which a reference leads, once it is made; null for a value that is
  // not an id. What an unchecked field names may be of any type, and of a class that
  // the caller does not expect: cast it with castDown().
  NQObject* objectValue() const;
  // The type of the object that a reference names; -1 and "" when there is none, and
  // for a value that is not an id.
  nqLong objectTypeIndex() const;
  const char* objectTypeString() const;
  // Owned by the field; null for values that are not binary.
  NQOMLBinValue* pBinValue() const;

  static NQOMLSyntaxField* castDown(const NQObject* object);

 private:
  friend class NQOMLSyntaxFieldIter;
  friend class NQOMLSyntaxFieldList;
  friend class NQOMLSyntaxObject;
  friend class nqdetail::SemanticPass;
  friend class nqdetail::SyntaxArena;

  // A view of `field` as it reads in a section that its wildcards stand for.
  NQOMLSyntaxField(const NQOMLSyntaxField& field, const NQOMLDefSection& section,
                   NQOMLDefField* defField);

  bool hasToken() const { return tag_ != kNoToken; }
  static std::uint32_t packedSection(nqLong sectionIDIndex);
  void takeValue(const NQOMLToken& token);
  // Makes the value a reference to the object of that id.
  void reference(nqLong objectIDIndex);

  // Who frees the field's memory and its binary value.
  enum Storage : std::uint32_t {
    kHeap,   // made with new
    kArena,  // goes with the tree's memory
    kView,   // a picture of another field, which owns nothing
  };
  static constexpr std::uint32_t kNoToken = 15;  // behind the tags

  // Files hold fields by the million: of a token only what is asked for is kept, and
  // the members are packed so that nothing is lost between them.
  nqLong nameIndex_;
  std::uint32_t section_ : 25;  // its index and 1; 0 for none
  std::uint32_t storage_ : 2;
  std::uint32_t tag_ : 4;
  std::uint32_t unchecked_ : 1;
  nqULong sectionPath_;
  NQOMLDefField* defField_;
  std::uint64_t word_;  // of the token; 0 when there is none
};

// One object block, or a block of defaults.
class NQ_EXPORT NQOMLSyntaxObject : public NQOMLSyntaxStruct {
 public:
  // A node without parent, children and fields. Last of all the reading file's
  // vSyntaxObjectCreated() is called with it.
  NQOMLSyntaxObject(NQOMLFile* file, nqLong line, int position, nqLong fileNameIndex,
                    nqLong typeIndex, nqLong objectIDIndex, nqLong sectionIDIndex,
                    nqULong sectionPath, NQOMLDefObjType* defObjType);
  NQOMLSyntaxObject(const NQOMLSyntaxObject&) = delete;
  NQOMLSyntaxObject& operator=(const NQOMLSyntaxObject&) = delete;
  ~NQOMLSyntaxObject() override;

  nqLong typeIndex() const { return typeIndex_; }
  const char* typeString() const;
  // The id, in the reading file's table of object ids; index 0 is "defaults".
  nqLong objectIDIndex() const { return objectIDIndex_; }
  nqLong objectIDIndex(nqLong index) { return objectIDIndex_ = index; }
  nqLong nameIndex() const { return objectIDIndex_; }
  const char* nameString() const;
  // The application's object made for that id, or null.
  NQObject* object() const;

  // The section under which the object stands inside its parent; -1 for none.
  nqLong sectionIDIndex() const { return sectionIDIndex_; }
  nqLong sectionIDIndex(nqLong index) { return sectionIDIndex_ = index; }
  const char* sectionString() const;
  nqULong sectionPath() const { return sectionPath_; }
  nqULong sectionPathIndex() const { return sectionPath_; }
  nqULong sectionPathIndex(nqULong path) { return sectionPath_ = path; }

  // The grammar's definition of the type, not owned; may be null.
  NQOMLDefObjType* pDefObjType() const { return defObjType_; }
  NQOMLDefObjType* pDefObjType(NQOMLDefObjType* type) { return defObjType_ = type; }

  NQOMLSyntaxObject* pParent() const { return parent_; }

  // Appends a child or a field, which this object keeps. Null changes nothing.
  void addObject(NQOMLSyntaxObject* object);
  void addField(NQOMLSyntaxField* field);
  // Puts a list of defaults, which is borrowed, before those that are there. Null
  // changes nothing.
  void addDefaultList(NQOMLSyntaxFieldList* fields);
  // Moves everything out of `other`: its children, fields and lists of defaults
  // follow those of this object, a list of defaults that is there already being
  // dropped. Null and the object itself change nothing.
  void append(NQOMLSyntaxObject* other);
  // Unlinks and destroys the child behind the one in `before`, or the first child
  // for null. Nothing happens when there is none.
  void deleteObjectItem(NQOMLSyntaxObjectList* before);

  // The first field, in the order of NQOMLSyntaxFieldIter, of that name and, unless
  // `sectionIDIndex` is -1, in that section. A field with wildcards counts in each
  // section that they stand for, and is returned as it was written.
  NQOMLSyntaxField* searchField(nqLong nameIndex, nqLong sectionIDIndex) const;
  // The same by names. No section is given by null; an unknown one counts as none.
  NQOMLSyntaxField* searchField(const char* name, const char* section) const;
  // The first field of that name whose path is written so, wildcards included.
  NQOMLSyntaxField* searchUniqueField(nqLong nameIndex, nqULong sectionPath) const;

  // The lists themselves. The setters replace what is stored and free nothing;
  // that of the children's end is for who has relinked the last cells.
  NQOMLSyntaxObjectList* pObjectList() const { return objects_; }
  NQOMLSyntaxObjectList* pObjectListEnd() const { return objectsEnd_; }
  NQOMLSyntaxObjectList* pObjectListEnd(NQOMLSyntaxObjectList* end) {
    return objectsEnd_ = end;
  }
  NQOMLSyntaxFieldList* pFieldList() const { return fields_; }
  NQOMLSyntaxFieldList* pFieldListEnd() const { return fieldsEnd_; }
  NQOMLSyntaxFieldList* pFieldList(NQOMLSyntaxFieldList* fields);
  NQOMLSyntaxDefaultList* pDefaultList() const { return defaults_; }
  NQOMLSyntaxDefaultList* pDefaultList(NQOMLSyntaxDefaultList* defaults);

  static NQOMLSyntaxObject* castDown(const NQObject* object);

 private:
  friend class NQOMLSyntaxObjectList;
  friend class nqdetail::SyntaxArena;

  NQOMLSyntaxObject(nqdetail::SyntaxArena* arena, NQOMLFile* file, nqLong line,
                    int position, nqLong fileNameIndex, nqLong typeIndex,
                    nqLong objectIDIndex, nqLong sectionIDIndex, nqULong sectionPath,
                    NQOMLDefObjType* defObjType);

  void noteHeapNodes();
  void takeDefaults(NQOMLSyntaxObject& other);
  bool linkDefaults(NQOMLSyntaxDefaultList* node);
  void dropDefaultsIndex();
  void destroyContents();

  nqLong typeIndex_;
  nqLong objectIDIndex_;
  nqLong sectionIDIndex_;
  nqULong sectionPath_;
  NQOMLSyntaxObject* parent_ = nullptr;
  NQOMLSyntaxObjectList* objects_ = nullptr;
  NQOMLSyntaxObjectList* objectsEnd_ = nullptr;  // null when objects_ is
  NQOMLSyntaxFieldList* fields_ = nullptr;
  NQOMLSyntaxFieldList* fieldsEnd_ = nullptr;  // null when fields_ is
  NQOMLSyntaxDefaultList* defaults_ = nullptr;
  nqdetail::DefaultsIndex* defaultsIndex_ = nullptr;  // only beside a long chain
  NQOMLDefObjType* defObjType_;
  nqdetail::SyntaxArena* arena_;  // where the node lies; null for one made with new
};

// A cell in an object's list of children. Destroying one destroys those behind
// it, with their objects, and then its own object.
class NQ_EXPORT NQOMLSyntaxObjectList {
 public:
  explicit NQOMLSyntaxObjectList(NQOMLSyntaxObject* object,
                                 NQOMLSyntaxObjectList* next = nullptr)
      : object_(object), next_(next) {}
  NQOMLSyntaxObjectList(const NQOMLSyntaxObjectList&) = delete;
  NQOMLSyntaxObjectList& operator=(const NQOMLSyntaxObjectList&) = delete;
  ~NQOMLSyntaxObjectList();

  NQOMLSyntaxObject* pObject() const { return object_; }
  NQOMLSyntaxObjectList* pNext() const { return next_; }

 private:
  friend class NQOMLSyntaxObject;
  friend class nqdetail::SyntaxArena;

  // Destroy cells with their objects, wherever these lie.
  static void destroyChain(NQOMLSyntaxObjectList* first);
  static void destroyOne(NQOMLSyntaxObjectList* cell);

  NQOMLSyntaxObject* object_;
  NQOMLSyntaxObjectList* next_;
};

// A cell in an object's list of fields; like NQOMLSyntaxObjectList.
class NQ_EXPORT NQOMLSyntaxFieldList {
 public:
  explicit NQOMLSyntaxFieldList(NQOMLSyntaxField* field,
                                NQOMLSyntaxFieldList* next = nullptr)
      : field_(field), next_(next) {}
  NQOMLSyntaxFieldList(const NQOMLSyntaxFieldList&) = delete;
  NQOMLSyntaxFieldList& operator=(const NQOMLSyntaxFieldList&) = delete;
  ~NQOMLSyntaxFieldList();

  NQOMLSyntaxField* pField() const { return field_; }
  NQOMLSyntaxFieldList* pNext() const { return next_; }

 private:
  friend class NQOMLSyntaxObject;
  friend class nqdetail::SyntaxArena;

  static void destroyChain(NQOMLSyntaxFieldList* first);
  static void destroyOne(NQOMLSyntaxFieldList* cell);

  NQOMLSyntaxField* field_;
  NQOMLSyntaxFieldList* next_;
};

// A node in an object's chain of defaults. Destroying one destroys those behind
// it, never the lists of fields.
class NQ_EXPORT NQOMLSyntaxDefaultList {
 public:
  explicit NQOMLSyntaxDefaultList(NQOMLSyntaxFieldList* fields,
                                  NQOMLSyntaxDefaultList* next = nullptr)
      : fields_(fields), next_(next) {}
  NQOMLSyntaxDefaultList(const NQOMLSyntaxDefaultList&) = delete;
  NQOMLSyntaxDefaultList& operator=(const NQOMLSyntaxDefaultList&) = delete;
  ~NQOMLSyntaxDefaultList();

  NQOMLSyntaxFieldList* pFieldList() const { return fields_; }
  NQOMLSyntaxDefaultList* pNext() const { return next_; }
  // Links `chain` behind the last node.
  void append(NQOMLSyntaxDefaultList* chain);

 private:
  friend class NQOMLSyntaxObject;
  friend class nqdetail::SyntaxArena;

  static void destroyChain(NQOMLSyntaxDefaultList* first);

  NQOMLSyntaxFieldList* fields_;
  NQOMLSyntaxDefaultList* next_;
  bool inArena_ = false;
};

// Goes through the children of an object in the order in which they were added.
class NQ_EXPORT NQOMLSyntaxObjectIter : public NQObject {
  NQ_COPY_PROTOCOL(NQOMLSyntaxObjectIter)

 public:
  NQOMLSyntaxObjectIter() = default;
  explicit NQOMLSyntaxObjectIter(const NQOMLSyntaxObject* object) { init(object); }
  void init(const NQOMLSyntaxObject* object) {
    cell_ = object == nullptr ? nullptr : object->pObjectList();
  }

  // Whether there is a current child.
  operator int() const { return cell_ != nullptr ? 1 : 0; }
  NQOMLSyntaxObjectIter& operator++() {
    if (cell_ != nullptr) cell_ = cell_->pNext();
    return *this;
  }
  // The current child, or null at the end.
  NQOMLSyntaxObject* pObject() const {
    return cell_ != nullptr ? cell_->pObject() : nullptr;
  }
  // The cell of the current child, or null at the end.
  NQOMLSyntaxObjectList* pCell() const { return cell_; }

 protected:
  void init() { cell_ = nullptr; }

 private:
  void copyFields(const NQOMLSyntaxObjectIter& source) { cell_ = source.cell_; }

  NQOMLSyntaxObjectList* cell_ = nullptr;
};

// Goes through the fields that hold for an object: first those of its defaults,
// the list added last before the others, then its own.
//
// A field with wildcards in its section path comes once for each section they
// stand for that defines it, in tree order; pField() is then a view of the field
// with the definition, section and path of that section, valid until the iterator
// moves on. The field in the tree is never changed. A field that has no definition
// anywhere is passed over.
class NQ_EXPORT NQOMLSyntaxFieldIter : public NQObject {
  NQ_COPY_PROTOCOL(NQOMLSyntaxFieldIter)

 public:
  NQOMLSyntaxFieldIter() = default;
  explicit NQOMLSyntaxFieldIter(const NQOMLSyntaxObject* object) { init(object); }
  void init(const NQOMLSyntaxObject* object);

  // Whether there is a current field.
  operator int() const { return cell_ != nullptr ? 1 : 0; }
  NQOMLSyntaxFieldIter& operator++() {
    if (cell_ != nullptr && (section_ == nullptr || !settleInNextSection())) {
      cell_ = cell_->pNext();
      settle();
    }
    return *this;
  }
  // The current field, or null at the end.
  NQOMLSyntaxField* pField() const {
    return section_ != nullptr ? const_cast<View*>(&*view_) : pWrittenField();
  }
  // The same as it stands in the tree, wildcards and all.
  NQOMLSyntaxField* pWrittenField() const {
    return cell_ != nullptr ? cell_->pField() : nullptr;
  }

 protected:
  void init();

 private:
  void copyFields(const NQOMLSyntaxFieldIter& source);

  // A field as it reads in one of the sections that its wildcards stand for.
  struct View final : NQOMLSyntaxField {
    View(const NQOMLSyntaxField& field, const NQOMLDefSection& section,
         NQOMLDefField* defField)
        : NQOMLSyntaxField(field, section, defField) {}
  };

  void settle();
  bool enterNextList();
  bool settleInNextSection();
  bool settleIn(NQOMLDefSection* section);

  NQOMLSyntaxFieldList* cell_ = nullptr;
  const NQOMLSyntaxDefaultList* defaults_ = nullptr;  // still to be entered
  NQOMLSyntaxFieldList* ownFields_ = nullptr;         // still to be entered
  NQOMLDefObjType* defObjType_ = nullptr;
  NQOMLDefSection* section_ = nullptr;  // where a wildcard walk stands
  std::optional<View> view_;            // the field as it reads there
};

#endif  // NQ_OML_SYNTAX_TREE_H
