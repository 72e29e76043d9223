#include "tools/nqoml/tree_writer.h"

#include "nq/core/string_pool.h"
#include "nq/oml/bin_value.h"
#include "nq/oml/grammar/section_path.h"
#include "nq/oml/tree/id_table.h"
#include "tools/nqoml/progress.h"
#include "tools/nqoml/tree.h"

#include <algorithm>
#include <string_view>

namespace nqoml {

namespace {

constexpr std::size_t kFieldsOfLine = 4;
constexpr nqLong kBytesOfLine = 16;
constexpr char kTop[] = "$";

nqULong upToLevel(nqULong path, int level) {
  return level + 1 == nqdetail::kPathLevels
             ? path
             : path & ((nqULong{1} << 4 * (level + 1)) - 1);
}

bool leadsTo(nqULong beginning, nqULong path) {
  const int depth = nqdetail::pathDepth(beginning);
  return depth == 0 || upToLevel(path, depth - 1) == beginning;
}

// A name that leads from one path to the other, -1 when there is none. Sections with
// different names may have the number that the path has, so the caller may tell the name.
nqLong nameBetween(const NQOMLDefObjType* type, nqULong from, nqULong to, nqLong known) {
  const auto leads = [&](nqLong name) {
    return nqdetail::subsectionPath(type, from, name) == to;
  };
  if (known >= 0) return leads(known) ? known : -1;
  if (leads(NQ_OML_WILDCARD_SECTION)) return NQ_OML_WILDCARD_SECTION;
  const NQOMLDefSection* section = nqdetail::firstMatch(type, to);
  while (section != nullptr && !leads(section->nameIndex())) {
    section = nqdetail::nextMatch(section, to);
  }
  return section == nullptr ? -1 : section->nameIndex();
}

// Appends the sections that lead from the last of `open` to the wanted one, whose name
// may be -1: one for each level, as far as each can be told apart. False without a way.
bool findWay(const NQOMLDefObjType* type, const Section& wanted,
             std::vector<Section>& open) {
  const nqULong from = open.empty() ? 0 : open.back().path;
  if (from == wanted.path) return true;
  for (int level = nqdetail::pathDepth(from); level < nqdetail::pathDepth(wanted.path);
       ++level) {
    const nqULong next = upToLevel(wanted.path, level);
    const nqLong name =
        nameBetween(type, from, next, next == wanted.path ? wanted.name : -1);
    if (name < 0) continue;
    open.push_back({next, name});
    if (findWay(type, wanted, open)) return true;
    open.pop_back();
  }
  return false;
}

}  // namespace

TreeWriter::TreeWriter(const NQOMLSyntaxObject& root, NQOMLStatic& grammar,
                       Progress& progress, std::int64_t nodes)
    : root_(root), grammar_(grammar), progress_(progress), nodes_(nodes) {}

NQFileCodeEnum TreeWriter::write(const std::string& path, bool binary, bool lossless) {
  binary_ = binary;
  losslessWriting(lossless ? 1 : 0);
  const NQFileCodeEnum result =
      writeOMLFile(path.c_str(), &grammar_, nullptr, binary ? 1 : 0, 0, 0);
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
  const void* const handedOn = object.objectIDIndex() == nqdetail::IDTable::kDefaults
                                   ? object.pFieldList()
                                   : nullptr;
  for (NQOMLSyntaxObjectIter child(&object); child; ++child) {
    collectDefaults(*child.pObject(), handedOn);
  }
}

void TreeWriter::writeContents(const NQOMLSyntaxObject& object,
                               const std::string& scope) {
  const bool defaults = object.objectIDIndex() == nqdetail::IDTable::kDefaults;
  // What an object's fields refer to is looked for beside the object.
  const std::size_t end = scope.find_last_of(',');
  const std::string beside = defaults || &object == &root_ || end == std::string::npos
                                 ? scope
                                 : scope.substr(0, end);
  Block block;
  for (auto* cell = object.pFieldList(); cell != nullptr; cell = cell->pNext()) {
    const NQOMLSyntaxField& field = *cell->pField();
    enter(block, object, {field.sectionPath(), field.sectionIDIndex()},
          field.unchecked() != 0);
    writeField(field, beside);
  }
  for (NQOMLSyntaxObjectIter iter(&object); iter; ++iter) {
    const NQOMLSyntaxObject& child = *iter.pObject();
    // Objects have the section of the block of defaults that they stand in.
    Section section = {0, -1};
    if (!defaults) section = {child.sectionPath(), child.sectionIDIndex()};
    enter(block, object, section, false);
    const char* const type = afterSkip(section.name, typeName(child));
    if (child.objectIDIndex() == nqdetail::IDTable::kDefaults) {
      writeDefaults(child, type, scope);
    } else {
      writeObject(child, type, scope);
    }
  }
  enter(block, object, {0, -1}, false);
}

void TreeWriter::writeDefaults(const NQOMLSyntaxObject& object, const char* type,
                               const std::string& scope) {
  advance();
  writeObjectDefaultStart(type);
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

void TreeWriter::writeObject(const NQOMLSyntaxObject& object, const char* type,
                             const std::string& scope) {
  advance();
  std::string id = ownID(object, scope);
  const bool empty = object.pFieldList() == nullptr && object.pObjectList() == nullptr;
  // Numbers that the reader will give of its own accord are left out.
  if (id == std::to_string(anonymous_) && isMentioned_.count(&object) == 0) {
    id.clear();
    --anonymous_;
  }
  writeNamedObjectStart(type, id.c_str(), fitsOneLine(object) ? 1 : 0);
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

void TreeWriter::enter(Block& block, const NQOMLSyntaxObject& object, Section wanted,
                       bool unchecked) {
  std::vector<Section>& open = block.open;
  if (isSkipped(wanted.name)) wanted.name = -1;
  const auto leadsThere = [&wanted](const Section& section) {
    return leadsTo(section.path, wanted.path) &&
           (section.path != wanted.path || wanted.name < 0 ||
            section.name == wanted.name);
  };
  const bool isThere = open.empty()
                           ? wanted.path == 0
                           : open.back().path == wanted.path && leadsThere(open.back());
  if (isThere && block.unchecked == unchecked) return;
  if (block.unchecked) writeClosingBracket();
  block.unchecked = false;
  for (; !open.empty() && !leadsThere(open.back()); open.pop_back()) {
    writeClosingBracket();
  }
  const std::size_t before = open.size();
  if (!findWay(object.pDefObjType(), wanted, open)) {
    trouble_ = "has a section that the grammar does not have";
  }
  for (std::size_t i = before; i < open.size(); ++i) {
    writeSectionStart(spelling(grammar_.pSectionPool()->decode(open[i].name)), 0);
    writeOpeningBracket();
  }
  if (unchecked) {
    // The end of the block ends the mode.
    writeOpeningBracket();
    writeStringAttribute("comment", "unchecked");
    block.unchecked = true;
  }
}

bool TreeWriter::isSkipped(nqLong section) const {
  return section == NQ_OML_SKIP_SECTION ||
         section >= grammar_.pSectionPool()->decodeTableMax();
}

const char* TreeWriter::afterSkip(nqLong section, const char* name) {
  if (!isSkipped(section)) return name;
  if (binary_) {
    writeSectionStart("skip", 0);
    return name;
  }
  // A section's start would be read with the name as its value.
  skipped_ = std::string("skip ") + name;
  return skipped_.c_str();
}

void TreeWriter::writeField(const NQOMLSyntaxField& field, const std::string& scope) {
  advance();
  const NQOMLToken token = field.token();
  if (binary_ && field.nameIndex() >= grammar_.pFieldPool()->decodeTableMax()) {
    trouble_ = "has a field that the grammar does not know, `" +
               std::string(field.nameString()) +
               "', which the binary encoding cannot name";
    return;
  }
  const char* const name =
      afterSkip(field.sectionIDIndex(), spelling(field.nameString()));
  switch (token.tag) {
    case NQ_OML_STRING:
      writeStringAttribute(name, field.stringValue());
      break;
    case NQ_OML_REAL:
      writeAttribute(name, token.real());
      break;
    case NQ_OML_ENUMERATOR:
      writeAttribute(name, spelling(grammar_.pEnumPool()->decode(token.integer())));
      break;
    case NQ_OML_IP_ADDRESS:
      writeIPBytesAttribute(name, token.address());
      break;
    case NQ_OML_BINARY_VALUE:
      writeAttribute(name, token.pBinValue());
      break;
    case NQ_OML_OBJECT_ID: {
      const std::string_view id = idText(field);
      const bool near = id.size() > scope.size() + 1 && id.starts_with(scope) &&
                        id[scope.size()] == ',' && field.unchecked() == 0;
      writeAddressAttribute(name, id.data() + (near ? scope.size() + 1 : 0));
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
    known = spellings_.emplace(name, grammar_.spelling(name)).first;
  }
  return known->second.c_str();
}

void TreeWriter::advance() {
  constexpr std::int64_t kStride = 4096;
  if (++written_ % kStride == 0) progress_.at(written_, nodes_);
}

}  // namespace nqoml
