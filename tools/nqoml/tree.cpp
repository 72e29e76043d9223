#include "tools/nqoml/tree.h"

#include "nq/core/string_pool.h"
#include "nq/oml/bin_value.h"
#include "nq/oml/tree/id_table.h"
#include "nq/oml/tree/read_tables.h"

#include <string_view>
#include <unordered_map>
#include <utility>

namespace nqoml {

namespace {

class Summarizer {
 public:
  TreeSummary summarize(const NQOMLSyntaxObject& root) {
    numberOfSections_ = root.pFile()->pOMLStatic()->pSectionPool()->decodeTableMax();
    numberDefaults(root);
    add(root);
    return std::move(summary_);
  }

 private:
  // Blocks of defaults are known by their place in the tree.
  void numberDefaults(const NQOMLSyntaxObject& object) {
    if (object.objectIDIndex() == nqdetail::IDTable::kDefaults &&
        object.pFieldList() != nullptr) {
      const auto number = static_cast<nqLong>(defaults_.size());
      defaults_.emplace(object.pFieldList(), number);
    }
    for (NQOMLSyntaxObjectIter child(&object); child; ++child) {
      numberDefaults(*child.pObject());
    }
  }

  void add(const NQOMLSyntaxObject& object) {
    ++summary_.nodes;
    number(object.typeIndex());
    section(object.sectionPath(), object.sectionIDIndex());
    if (object.objectIDIndex() >= 0) text(object.nameString());
    for (auto* list = object.pDefaultList(); list != nullptr; list = list->pNext()) {
      const auto known = defaults_.find(list->pFieldList());
      number(known == defaults_.end() ? -1 : known->second);
    }
    text("fields");
    for (auto* cell = object.pFieldList(); cell != nullptr; cell = cell->pNext()) {
      add(*cell->pField());
    }
    text("objects");
    for (NQOMLSyntaxObjectIter child(&object); child; ++child) add(*child.pObject());
    text("end");
  }

  void add(const NQOMLSyntaxField& field) {
    ++summary_.nodes;
    text(field.nameString());
    section(field.sectionPath(), field.sectionIDIndex());
    number(field.unchecked());
    const NQOMLToken token = field.token();
    number(token.tag);
    switch (token.tag) {
      case NQ_OML_STRING:
        text(field.stringValue());
        break;
      case NQ_OML_REAL:
        summary_.reals.push_back(token.real());
        break;
      case NQ_OML_BINARY_VALUE: {
        const NQOMLBinValue& value = *token.pBinValue();
        text({value.pByteSequence(), static_cast<std::size_t>(value.length())});
        break;
      }
      case NQ_OML_OBJECT_ID:
        text(idText(field));
        break;
      default:
        number(token.integer());
    }
  }

  // Sections that the file declares are passed over as "skip" is.
  void section(nqULong path, nqLong name) {
    number(path);
    number(name >= numberOfSections_ ? nqLong{NQ_OML_SKIP_SECTION} : name);
  }
  void number(std::int64_t value) {
    for (int i = 0; i < 8; ++i) byte(static_cast<unsigned char>(value >> (8 * i)));
  }
  void text(std::string_view text) {
    number(static_cast<std::int64_t>(text.size()));
    for (const char c : text) byte(static_cast<unsigned char>(c));
  }
  void byte(unsigned char value) {
    // G. Fowler, L. C. Noll, K.-P. Vo: the hash FNV-1a.
    constexpr std::uint64_t kPrime = 1099511628211U;
    summary_.digest = (summary_.digest ^ value) * kPrime;
  }

  TreeSummary summary_;
  nqLong numberOfSections_ = 0;  // in the grammar
  std::unordered_map<const NQOMLSyntaxFieldList*, nqLong> defaults_;
};

}  // namespace

const char* idText(const NQOMLSyntaxField& field) {
  return nqdetail::objectIDText(nqdetail::readTables(field.pFile()),
                                field.token().integer());
}

TreeSummary summarize(const NQOMLSyntaxObject& root) {
  return Summarizer().summarize(root);
}

}  // namespace nqoml
