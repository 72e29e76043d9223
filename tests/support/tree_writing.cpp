#include "tests/support/tree_writing.h"

#include <cmath>
#include <limits>

#include "nq/core/string_pool.h"
#include "nq/oml/bin_value.h"
#include "tests/support/test_peer.h"

namespace {

std::vector<std::string> sectionsOf(const NQOMLDefObjType* type, nqULong path,
                                    const NQOMLStatic& grammar) {
  std::vector<std::string> names;
  for (const NQOMLDefSection* section = type->pSectionAt(path); section != nullptr;
       section = section->pParent()) {
    names.insert(names.begin(), grammar.pSectionPool()->decode(section->nameIndex()));
  }
  return names;
}

std::string joined(const std::vector<std::string>& sections) {
  std::string text;
  for (const std::string& section : sections) text += section + ".";
  return text;
}

}  // namespace

class TreeWriter : public NQOMLFile {
 public:
  explicit TreeWriter(const TreeReader& reader) : reader_(reader) {}

 protected:
  void vWriteObject(NQObject*) override { writeContent(reader_.items_.front()); }

 private:
  void writeContent(const TreeReader::Item& item) {
    for (const TreeReader::Value& value : item.values) {
      openSections(value.sections);
      writeValue(item, value);
      closeSections(value.sections);
    }
    for (const TreeReader::Item* const part : item.parts) {
      openSections(part->sections);
      writeObjectStart(part->type.c_str(), part, 0, 1);
      writeOpeningBracket();
      writeContent(*part);
      writeClosingBracket();
      closeSections(part->sections);
    }
  }
  void writeValue(const TreeReader::Item& item, const TreeReader::Value& value) {
    const char* const name = value.name.c_str();
    switch (value.token.tag) {
      case NQ_OML_INTEGER:
        writeAttribute(name, value.token.integer());
        break;
      case NQ_OML_REAL:
        writeAttribute(name, value.token.real());
        break;
      case NQ_OML_STRING:
        writeStringAttribute(name, value.text.c_str());
        break;
      case NQ_OML_ENUMERATOR:
        writeAttribute(name, value.text.c_str());
        break;
      case NQ_OML_IP_ADDRESS:
        writeIPBytesAttribute(name, value.token.address());
        break;
      case NQ_OML_BINARY_VALUE: {
        const NQOMLBinValue bytes(static_cast<nqLong>(value.text.size()),
                                  value.text.data());
        writeAttribute(name, &bytes);
        break;
      }
      default:
        writeAttribute(name, value.object, &item, 1);
        break;
    }
  }
  void openSections(const std::vector<std::string>& sections) {
    for (const std::string& section : sections) {
      writeSectionStart(section.c_str(), 0);
      writeOpeningBracket();
    }
  }
  void closeSections(const std::vector<std::string>& sections) {
    for (std::size_t i = 0; i < sections.size(); ++i) writeClosingBracket();
  }

  const TreeReader& reader_;
};

NQFileCodeEnum TreeReader::read(const std::string& name, NQOMLStatic& grammar,
                                bool binary) {
  byID_.clear();
  items_.clear();
  items_.emplace_back();
  writable_ = true;
  return TestReader::read(name, grammar, binary);
}

NQFileCodeEnum TreeReader::write(const std::string& name, NQOMLStatic& grammar,
                                 bool binary) const {
  TreeWriter writer(*this);
  writer.losslessWriting(1);
  return writer.writeOMLFile(name.c_str(), &grammar, nullptr, binary ? 1 : 0, 0, 0);
}

void TreeReader::execute() {
  const NQOMLSyntaxObject* const root = NQTestPeer::root(*this);
  if (root != nullptr && numberOfErrors() == 0) {
    collectObjects(*root, items_.front(), root->pDefObjType());
    collectValues(*root, items_.front());
    for (const auto& [id, item] : byID_) collectValues(*pSyntaxObject(id), *item);
  }
  TestReader::execute();
}

void TreeReader::collectObjects(const NQOMLSyntaxObject& node, Item& owner,
                                const NQOMLDefObjType* type) {
  for (NQOMLSyntaxObjectIter iter(&node); iter; ++iter) {
    const NQOMLSyntaxObject& child = *iter.pObject();
    if (child.objectIDIndex() == nqdetail::IDTable::kDefaults) {
      collectObjects(child, owner, type);
      continue;
    }
    Item& item = items_.emplace_back();
    item.iUserField(static_cast<nqInt64>(items_.size()));
    item.owner = &owner == &items_.front() ? nullptr : &owner;
    item.sections = sectionsOf(type, child.sectionPath(), *pOMLStatic());
    item.type = child.typeString();
    byID_[child.objectIDIndex()] = &item;
    owner.parts.push_back(&item);
    collectObjects(child, item, child.pDefObjType());
  }
}

void TreeReader::collectValues(const NQOMLSyntaxObject& node, Item& item) {
  for (NQOMLSyntaxFieldIter iter(&node); iter; ++iter) {
    const NQOMLSyntaxField& field = *iter.pField();
    if (field.unchecked() != 0) writable_ = false;
    Value& value = item.values.emplace_back();
    value.sections = sectionsOf(node.pDefObjType(), field.sectionPath(), *pOMLStatic());
    value.name = field.nameString();
    value.token = field.token();
    switch (value.token.tag) {
      case NQ_OML_STRING:
        value.text = field.stringValue();
        break;
      case NQ_OML_ENUMERATOR:
        value.text = pOMLStatic()->pEnumPool()->decode(value.token.integer());
        break;
      case NQ_OML_BINARY_VALUE:
        value.text.assign(field.pBinValue()->pByteSequence(),
                          static_cast<std::size_t>(field.pBinValue()->length()));
        break;
      case NQ_OML_OBJECT_ID: {
        const auto found = byID_.find(value.token.integer());
        if (found == byID_.end()) writable_ = false;
        value.object = found == byID_.end() ? nullptr : found->second;
        break;
      }
      default:
        break;
    }
  }
}

std::string TreeReader::content() const {
  std::string text;
  for (const Item& item : items_) {
    const auto* const owner = static_cast<const Item*>(item.owner);
    text += joined(item.sections) + item.type + " in " +
            std::to_string(owner == nullptr ? 1 : owner->iUserField()) + "\n";
    for (const Value& value : item.values) {
      const NQOMLToken& token = value.token;
      text += " " + joined(value.sections) + value.name + " " + std::to_string(token.tag);
      text += " " + value.text;
      if (value.object != nullptr) {
        text += "->" + std::to_string(value.object->iUserField());
      } else if (token.tag == NQ_OML_INTEGER || token.tag == NQ_OML_IP_ADDRESS) {
        text += std::to_string(token.integer());
      }
      text += "\n";
    }
  }
  return text;
}

bool TreeReader::agrees(const TreeReader& other, double tolerance) const {
  if (content() != other.content()) return false;
  for (std::size_t i = 0; i < items_.size(); ++i) {
    for (std::size_t j = 0; j < items_[i].values.size(); ++j) {
      const double real = items_[i].values[j].token.real();
      if (items_[i].values[j].token.tag == NQ_OML_REAL &&
          !(std::fabs(real - other.items_[i].values[j].token.real()) <=
            tolerance * std::fabs(real) + std::numeric_limits<double>::denorm_min())) {
        return false;
      }
    }
  }
  return true;
}
