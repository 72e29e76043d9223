// syntax_node.h -- the nodes of an OML file as a tree: objects and their fields.
//
// A node holds indices into the tables of the grammar and of the reading file; the
// accessors turn them back into texts and values. The texts belong to those tables
// and stay valid until the read ends.
//
// How it works
//   Files hold fields by the million, and most of them differ in place and value only.
//   What the others share (file, name, section, definition) is a NodeKind: those of a
//   reader's nodes lie beside the nodes, while a node made with new has one of its own.

#ifndef NQ_OML_SYNTAX_NODE_H
#define NQ_OML_SYNTAX_NODE_H

#include <cstdint>

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
struct ReadTables;

// What nodes have in common that differ in place and value only.
struct NodeKind {
  NQOMLFile* file = nullptr;
  const ReadTables* tables = nullptr;  // of that file
  SyntaxArena* arena = nullptr;        // in which nodes and kind lie; null for others
  nqLong fileNameIndex = -1;
  nqLong nameIndex = -1;  // of a field, or of an object's type
  nqLong sectionIDIndex = -1;
  nqULong sectionPath = 0;
  NQOMLDefField* defField = nullptr;
  NQOMLDefObjType* defObjType = nullptr;
  bool unchecked = false;
  bool ofOneNode = false;  // which was made with new, and deletes it

  bool operator==(const NodeKind&) const = default;
};

}  // namespace nqdetail

// The place of a node in its source file. Making or copying one takes memory, and
// throws std::bad_alloc when there is none.
class NQ_EXPORT NQOMLSyntaxStruct : public NQObject {
  NQ_COPY_PROTOCOL(NQOMLSyntaxStruct)

 public:
  // `position` is the column.
  NQOMLSyntaxStruct(NQOMLFile* file, nqLong line, int position, nqLong fileNameIndex);
  ~NQOMLSyntaxStruct() override;

  // The reading file, not owned.
  NQOMLFile* pFile() const { return kind_->file; }
  // The source file's name, in the reading file's table of strings.
  nqLong fileNameIndex() const { return kind_->fileNameIndex; }
  const char* fileNameString() const;
  nqLong line() const { return line_; }
  // The column, from 1: the number of the byte in its line, in the binary encoding in
  // its file. 28 bits are kept.
  nqLong column() const {
    return column_ == kNoColumn ? -1 : static_cast<nqLong>(column_);
  }
  // The low 16 bits of the column, which wraps to negative numbers beyond 32767.
  int position() const { return static_cast<std::int16_t>(column_); }

 protected:
  void init();

 private:
  friend class NQOMLSyntaxField;
  friend class NQOMLSyntaxFieldList;
  friend class NQOMLSyntaxObject;
  friend class nqdetail::SyntaxArena;

  // A node of a kind of its own, and one of a kind that lies in an arena.
  NQOMLSyntaxStruct(const nqdetail::NodeKind& kind, nqLong line, int position);
  NQOMLSyntaxStruct(nqdetail::NodeKind* shared, nqLong line, int position);

  void copyFields(const NQOMLSyntaxStruct& source);
  // Gives this node another kind.
  void changeKind(const nqdetail::NodeKind& kind);
  template <class T>
  T change(T nqdetail::NodeKind::*member, T value);

  static constexpr std::uint32_t kNoColumn = (1U << 28) - 1;

  nqdetail::NodeKind* kind_;
  nqLong line_;
  std::uint32_t column_ : 28;
  std::uint32_t tag_ : 4;  // of a field's value
};

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

// One value, with the name it was given.
class NQ_EXPORT NQOMLSyntaxField : public NQOMLSyntaxStruct {
 public:
  // Takes the value of `token`, which may be null, over and deletes the token.
  // `nameIndex` and `sectionIDIndex` count on behind the grammar's names for names
  // that only the file declares.
  NQOMLSyntaxField(NQOMLFile* file, nqLong line, int position, nqLong fileNameIndex,
                   nqLong nameIndex, nqLong sectionIDIndex, nqULong sectionPath,
                   NQOMLToken* token, NQOMLDefField* defField, int unchecked);
  NQOMLSyntaxField(const NQOMLSyntaxField&) = delete;
  NQOMLSyntaxField& operator=(const NQOMLSyntaxField&) = delete;
  ~NQOMLSyntaxField() override;

  nqLong nameIndex() const { return kind_->nameIndex; }
  const char* nameString() const;
  // The section under which the field stands; -1 for none.
  nqLong sectionIDIndex() const { return kind_->sectionIDIndex; }
  const char* sectionString() const;
  // That section's path, which may hold wildcards.
  nqULong sectionPath() const { return kind_->sectionPath; }

  // The definition; null for unchecked fields and where the path holds wildcards.
  NQOMLDefField* pDefField() const { return kind_->defField; }
  NQOMLDefField* pDefField(NQOMLDefField* defField);
  // Whether the field was read in unchecked mode, without regard to the grammar.
  int unchecked() const { return kind_->unchecked ? 1 : 0; }

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
  // The text of a value that is a word: of an enumerator, in an unchecked field also of
  // any other name, and of a reference. That is the whole way from the top once the file
  // is checked, in an unchecked field what is written there. "" for other values.
  const char* wordString() const;
  // The object to which a reference leads, once it is made; null for a value that is
  // not an id. What an unchecked field names may be of any type: ask for the class with
  // dynamic_cast.
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

  // A field of a kind that lies in an arena, and with it the field. It takes the value
  // over, but never owns a binary one.
  NQOMLSyntaxField(nqdetail::NodeKind* shared, nqLong line, nqLong column,
                   const NQOMLToken& token);
  // A view of `field` as it reads in a section that its wildcards stand for.
  NQOMLSyntaxField(const NQOMLSyntaxField& field, nqdetail::NodeKind* inSection);

  // The field's kind in a section that its wildcards stand for, as of no node.
  nqdetail::NodeKind kindIn(const NQOMLDefSection& section,
                            NQOMLDefField* defField) const;

  bool hasToken() const { return tag_ != kNoToken; }
  void takeValue(const NQOMLToken& token);
  // Makes the value a reference to the object of that id.
  void reference(nqLong objectIDIndex);

  static constexpr std::uint32_t kNoToken = 15;  // behind the tags

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

  nqLong typeIndex() const { return kind_->nameIndex; }
  const char* typeString() const;
  // The id, in the reading file's table of object ids; index 0 is "defaults".
  nqLong objectIDIndex() const { return objectIDIndex_; }
  nqLong objectIDIndex(nqLong index) { return objectIDIndex_ = index; }
  nqLong nameIndex() const { return objectIDIndex_; }
  // Its text. Once the file is read to its end that is the whole way from the top, in
  // which objects without an id have numbers.
  const char* nameString() const;
  // The id as it is written in the file; "" for none.
  const char* writtenIDString() const;
  // The application's object made for that id, or null.
  NQObject* object() const;

  // The section under which the object stands inside its parent; -1 for none.
  nqLong sectionIDIndex() const { return kind_->sectionIDIndex; }
  nqLong sectionIDIndex(nqLong index);
  const char* sectionString() const;
  nqULong sectionPath() const { return kind_->sectionPath; }
  nqULong sectionPathIndex() const { return kind_->sectionPath; }
  nqULong sectionPathIndex(nqULong path);

  // The grammar's definition of the type, not owned; may be null.
  NQOMLDefObjType* pDefObjType() const { return kind_->defObjType; }
  NQOMLDefObjType* pDefObjType(NQOMLDefObjType* type);

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

  // The lists themselves. The setters replace what is stored and free nothing.
  // Call pObjectListEnd(end) after relinking the last cells yourself.
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

  NQOMLSyntaxObject(nqdetail::NodeKind* shared, nqLong line, nqLong column,
                    nqLong objectIDIndex);

  nqdetail::SyntaxArena* arena() const { return kind_->arena; }
  void noteHeapNodes();
  void takeDefaults(NQOMLSyntaxObject& other);
  bool linkDefaults(NQOMLSyntaxDefaultList* node);
  void dropDefaultsIndex();
  void destroyContents();

  nqLong objectIDIndex_;
  NQOMLSyntaxObject* parent_ = nullptr;
  NQOMLSyntaxObjectList* objects_ = nullptr;
  NQOMLSyntaxObjectList* objectsEnd_ = nullptr;  // null when objects_ is
  NQOMLSyntaxFieldList* fields_ = nullptr;
  NQOMLSyntaxFieldList* fieldsEnd_ = nullptr;  // null when fields_ is
  NQOMLSyntaxDefaultList* defaults_ = nullptr;
  nqdetail::DefaultsIndex* defaultsIndex_ = nullptr;  // only beside a long chain
};

#endif  // NQ_OML_SYNTAX_NODE_H
