// tree_writer.h -- writes the tree of a read file, in either encoding.
//
// Everything that makes objects is written: types, ids, sections, fields, objects and
// blocks of defaults. What only the text of a file has goes: comments, the division
// into included files, skipped blocks, and the order of fields and objects of one
// block among each other.

#ifndef NQ_TOOLS_NQOML_TREE_WRITER_H
#define NQ_TOOLS_NQOML_TREE_WRITER_H

#include "nq/oml/oml_file.h"

#include <cstdint>
#include <map>
#include <string>
#include <unordered_map>
#include <vector>

namespace nqoml {

class Progress;

// A section: the path to it, and its name in the grammar.
struct Section {
  nqULong path;
  nqLong name;  // -1 where there is none, and where it is not known
};

class TreeWriter : public NQOMLFile {
 public:
  // All are borrowed; `nodes` is their number, for the progress.
  TreeWriter(const NQOMLSyntaxObject& root, NQOMLStatic& grammar, Progress& progress,
             std::int64_t nodes);

  // Writes the file. NQ_FILE_OK when it is complete; trouble() may tell why not.
  NQFileCodeEnum write(const std::string& path, bool binary, bool lossless);
  const std::string& trouble() const { return trouble_; }

 protected:
  void vWriteObject(NQObject* top) override;

 private:
  // Sections and unchecked groups that are open in the block being written.
  struct Block {
    std::vector<Section> open;
    bool unchecked = false;
  };

  void collectDefaults(const NQOMLSyntaxObject& object, const void* inherited);
  void writeContents(const NQOMLSyntaxObject& object, const std::string& scope);
  void writeDefaults(const NQOMLSyntaxObject& object, const char* type,
                     const std::string& scope);
  void writeObject(const NQOMLSyntaxObject& object, const char* type,
                   const std::string& scope);
  void writeField(const NQOMLSyntaxField& field, const std::string& scope);
  bool fitsOneLine(const NQOMLSyntaxObject& object) const;
  // Opens and closes what is between the block's state and the wanted section.
  void enter(Block& block, const NQOMLSyntaxObject& object, Section wanted,
             bool unchecked);
  // `name` with the word "skip" in front where the file has it there.
  const char* afterSkip(nqLong section, const char* name);
  bool isSkipped(nqLong section) const;
  std::string ownID(const NQOMLSyntaxObject& object, const std::string& scope);
  const char* typeName(const NQOMLSyntaxObject& object);
  // A name as the grammar file spells it; valid as long as the writer.
  const char* spelling(const char* name);
  void advance();

  const NQOMLSyntaxObject& root_;
  NQOMLStatic& grammar_;
  Progress& progress_;
  std::int64_t nodes_;
  std::int64_t written_ = 0;
  bool binary_ = false;
  std::string trouble_;
  nqLong anonymous_ = -2;  // the number that the next object without an id gets
  // Objects that blocks of defaults hold for which do not enclose them, by the
  // blocks' fields: they were written in several places.
  std::unordered_map<const void*, std::vector<const NQOMLSyntaxObject*>> mentioned_;
  std::unordered_map<const NQOMLSyntaxObject*, bool> isMentioned_;
  std::map<std::string, std::string, std::less<>> spellings_;
  std::string skipped_;  // what afterSkip() has returned
};

}  // namespace nqoml

#endif  // NQ_TOOLS_NQOML_TREE_WRITER_H
