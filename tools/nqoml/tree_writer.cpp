#include "tools/nqoml/tree_writer.h"

#include "nq/core/string_pool.h"
#include "nq/oml/bin_value.h"
#include "tools/nqoml/progress.h"
#include "tools/nqoml/tree.h"

#include <algorithm>
#include <string_view>

namespace nqoml {

namespace {

constexpr nqLong kDefaults = 0;  // the index of the id "defaults"
constexpr nqULong kWildcard = 15;
constexpr int kLevels = 8;
constexpr std::size_t kFieldsOfLine = 4;
constexpr nqLong kBytesOfLine = 16;
constexpr char kTop[] = "$";

nqULong numberAt(nqULong path, int level) {
  return level < kLevels ? path >> (4 * level) & 15 : 0;
}

int depthOf(nqULong path) {
  int depth = 0;
  while (numberAt(path, depth) != 0) ++depth;
  return depth;
}

// Fills `names` from `level` on with the sections of the path that begin with one
// of `section` and its siblings; null for a wildcard. False when there are none.
bool findSections(const NQOMLDefSection* section, nqULong path, int level,
                  std::vector<const NQOMLDefSection*>& names) {
  const nqULong number = numberAt(path, level);
  if (number == 0) return true;
  for (; section != nullptr; section = section->pNext()) {
    if (number != kWildcard && numberAt(section->path(), level) != number) continue;
    if (findSections(section->pSectionList(), path, level + 1, names)) {
      names[static_cast<std::size_t>(level)] = number == kWildcard ? nullptr : section;
      return true;
    }
  }
  // A wildcard may stand for nothing.
  return number == kWildcard && findSections(nullptr, path, level + 1, names);
}

}  // namespace

TreeWriter::TreeWriter(const NQOMLSyntaxObject& root, const GrammarFile& grammar,
                       Progress& progress, std::int64_t nodes)
    : root_(root), grammar_(grammar), progress_(progress), nodes_(nodes) {}

NQFileCodeEnum TreeWriter::write(const std::string& path, bool binary, bool lossless) {
  binary_ = binary;
  losslessWriting(lossless ? 1 : 0);
  const NQFileCodeEnum result =
      writeOMLFile(path.c_str(), grammar_.grammar.get(), nullptr, binary ? 1 : 0, 0, 0);
  return trouble_.empty() ? result : NQ_FILE_WRITE_ERROR;
}

void TreeWriter::vWriteObject(NQObject*) {
  collectDefaults(root_, nullptr);
  writeContents(root_, kTop);
  progress_.at(nodes_, nodes_);
}

void TreeWriter::collectDefaults(const NQOMLSyntaxObject& object, const void* inherited) {
  for (auto* list = object.pDefaultList(); list != nullptr; list = list->pNext()) {
    if (list->pFieldList() == inherited) continue;
    mentioned_[list->pFieldList()].push_back(&object);
    isMentioned_[&object] = true;
  }
  const void* const handedOn =
      object.objectIDIndex() == kDefaults ? object.pFieldList() : nullptr;
  for (NQOMLSyntaxObjectIter child(&object); child; ++child) {
    collectDefaults(*child.pObject(), handedOn);
  }
}

void TreeWriter::writeContents(const NQOMLSyntaxObject& object,
                               const std::string& scope) {
  const bool defaults = object.objectIDIndex() == kDefaults;
  // What an object's fields refer to is looked for beside the object.
  const std::size_t end = scope.find_last_of(',');
  const std::string beside = defaults || &object == &root_ || end == std::string::npos
                                 ? scope
                                 : scope.substr(0, end);
  Block block;
  for (auto* cell = object.pFieldList(); cell != nullptr; cell = cell->pNext()) {
    const NQOMLSyntaxField& field = *cell->pField();
    enter(block, object, field.sectionPath(), field.unchecked() != 0);
    writeField(field, beside);
  }
  for (NQOMLSyntaxObjectIter iter(&object); iter; ++iter) {
    const NQOMLSyntaxObject& child = *iter.pObject();
    // Objects have the section of the block of defaults that they stand in.
    enter(block, object, defaults ? 0 : child.sectionPath(), false);
    if (child.objectIDIndex() == kDefaults) {
      writeDefaults(child, scope);
    } else {
      writeObject(child, scope);
    }
  }
  enter(block, object, 0, false);
}

void TreeWriter::writeDefaults(const NQOMLSyntaxObject& object,
                               const std::string& scope) {
  advance();
  writeObjectDefaultStart(typeName(object));
  writeOpeningBracket();
  writeContents(object, scope);
  const auto mentioned = mentioned_.find(object.pFieldList());
  if (object.pFieldList() != nullptr && mentioned != mentioned_.end()) {
    for (const NQOMLSyntaxObject* other : mentioned->second) {
      writeNamedObjectStart(typeName(*other), ownID(*other, scope).c_str(), 0);
    }
  }
  writeClosingBracket();
}

void TreeWriter::writeObject(const NQOMLSyntaxObject& object, const std::string& scope) {
  advance();
  std::string id = ownID(object, scope);
  const bool empty = object.pFieldList() == nullptr && object.pObjectList() == nullptr;
  // Numbers that the reader will give of its own accord are left out.
  if (id == std::to_string(anonymous_) && isMentioned_.count(&object) == 0) {
    id.clear();
    --anonymous_;
  }
  writeNamedObjectStart(typeName(object), id.c_str(), fitsOneLine(object) ? 1 : 0);
  if (empty && !id.empty()) return;
  writeOpeningBracket();
  writeContents(object, object.nameString());
  writeClosingBracket();
}

bool TreeWriter::fitsOneLine(const NQOMLSyntaxObject& object) const {
  if (object.pObjectList() != nullptr) return false;
  std::size_t count = 0;
  for (auto* cell = object.pFieldList(); cell != nullptr; cell = cell->pNext()) {
    const NQOMLSyntaxField& field = *cell->pField();
    const NQOMLBinValue* const bytes = field.token().pBinValue();
    if (++count > kFieldsOfLine || field.sectionPath() != 0 || field.unchecked() != 0 ||
        (bytes != nullptr && bytes->length() > kBytesOfLine)) {
      return false;
    }
  }
  return count > 0;
}

void TreeWriter::enter(Block& block, const NQOMLSyntaxObject& object, nqULong path,
                       bool unchecked) {
  if (block.path == path && block.unchecked == unchecked) return;
  if (block.unchecked) writeClosingBracket();
  block.unchecked = false;
  int common = 0;
  while (numberAt(path, common) != 0 &&
         numberAt(path, common) == numberAt(block.path, common)) {
    ++common;
  }
  for (int open = depthOf(block.path); open > common; --open) writeClosingBracket();
  block.path = path;

  std::vector<const NQOMLDefSection*> sections(kLevels, nullptr);
  if (common < depthOf(path) &&
      !findSections(object.pDefObjType()->pSectionList(), path, 0, sections)) {
    trouble_ = "has a section that the grammar does not have";
  }
  for (int level = common; level < depthOf(path); ++level) {
    const NQOMLDefSection* const section = sections[static_cast<std::size_t>(level)];
    writeSectionStart(
        section == nullptr
            ? "_"
            : spelling(grammar_.grammar->pSectionPool()->decode(section->nameIndex())),
        0);
    writeOpeningBracket();
  }
  if (unchecked) {
    // The end of the block ends the mode.
    writeOpeningBracket();
    writeStringAttribute("comment", "unchecked");
    block.unchecked = true;
  }
}

void TreeWriter::writeField(const NQOMLSyntaxField& field, const std::string& scope) {
  advance();
  const NQOMLToken token = field.token();
  const char* const name = spelling(field.nameString());
  if (binary_ && field.nameIndex() >= grammar_.grammar->pFieldPool()->decodeTableMax()) {
    trouble_ = "has a field that the grammar does not know, `" +
               std::string(field.nameString()) +
               "', which the binary encoding cannot name";
    return;
  }
  switch (token.tag) {
    case NQ_OML_STRING:
      writeStringAttribute(name, field.stringValue());
      break;
    case NQ_OML_REAL:
      writeAttribute(name, token.real());
      break;
    case NQ_OML_ENUMERATOR:
      writeAttribute(name,
                     spelling(grammar_.grammar->pEnumPool()->decode(token.integer())));
      break;
    case NQ_OML_IP_ADDRESS:
      writeIPBytesAttribute(name, token.address());
      break;
    case NQ_OML_BINARY_VALUE:
      writeAttribute(name, token.pBinValue());
      break;
    case NQ_OML_OBJECT_ID: {
      const std::string id = idText(*field.pFile(), token.integer());
      const bool near = id.size() > scope.size() + 1 && id.starts_with(scope) &&
                        id[scope.size()] == ',' && field.unchecked() == 0;
      writeAddressAttribute(name, id.c_str() + (near ? scope.size() + 1 : 0));
      break;
    }
    default:
      writeAttribute(name, static_cast<int>(token.integer()));
  }
}

std::string TreeWriter::ownID(const NQOMLSyntaxObject& object, const std::string& scope) {
  const std::string_view id = object.nameString();
  return std::string(id.substr(std::min(scope.size() + 1, id.size())));
}

const char* TreeWriter::typeName(const NQOMLSyntaxObject& object) {
  return spelling(object.typeString());
}

const char* TreeWriter::spelling(const char* name) {
  auto known = spellings_.find(std::string_view(name));
  if (known == spellings_.end()) {
    known = spellings_.emplace(name, grammar_.names.spelling(name)).first;
  }
  return known->second.c_str();
}

void TreeWriter::advance() {
  constexpr std::int64_t kStride = 4096;
  if (++written_ % kStride == 0) progress_.at(written_, nodes_);
}

}  // namespace nqoml
