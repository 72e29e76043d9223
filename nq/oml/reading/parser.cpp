#include "nq/oml/reading/parser.h"

#include <string>

#include "nq/core/message_table.h"
#include "nq/oml/diagnostics/message_codes.h"
#include "nq/oml/grammar/section_path.h"

namespace nqdetail {

namespace {

constexpr char kUnchecked[] = "unchecked";  // the comment that turns checks off

bool isBuiltIn(const SourceToken& name) {
  return name.declared == 0 && name.integer() >= 0 &&
         name.integer() < NQ_OML_BUILT_IN_FIELDS;
}

// A name or an id, which is out of place where a value of another kind is due.
bool isWord(const SourceToken& token) {
  return token.tag >= NQ_OML_ENUMERATOR && token.tag <= NQ_OML_OBJECT_ID;
}

// ":" or ";", which stands where a value should.
bool isPunctuation(const SourceToken& value) {
  return value.tag == NQ_OML_COLON || value.tag == NQ_OML_SEMICOLON;
}

// What can be the value of no field at all, but for a bracket.
bool isNoValue(const SourceToken& value) {
  return value.tag == NQ_OML_UNRECOGNISED || isPunctuation(value);
}

// Deletes the binary value of a token in the end, unless it was taken out.
class ValueOwner {
 public:
  explicit ValueOwner(SourceToken& token) : token_(token) {}
  ValueOwner(const ValueOwner&) = delete;
  ValueOwner& operator=(const ValueOwner&) = delete;
  ~ValueOwner() { token_.deleteValue(); }

 private:
  SourceToken& token_;
};

bool sameValues(const NQOMLDefField& a, const NQOMLDefField& b) {
  return a.fieldType() == b.fieldType() && a.sameValuesAs(b) != 0;
}

}  // namespace

NQOMLSyntaxObject* Parser::parse(const char* fileName) {
  if (diagnostics_.ended()) return nullptr;
  if (sources_.empty() && !sources_.push(fileName)) {
    diagnostics_.fatalError({}, kCannotOpen, fileName);
    diagnostics_.errorCode = NQ_FILE_OPEN_ERROR;
    return nullptr;
  }
  SourceToken top;
  top.integer(NQ_OML_TOPLEVEL_TYPE);
  top.fileIndex = sources_.top().fileIndex();
  top.line = -1;
  top.column = 0;
  root_ = makeObject(top, IDTable::kNone, -1, 0);
  if (root_ == nullptr) {
    diagnostics_.fatalError({}, kMemoryExhausted);
    return nullptr;
  }
  parseAttributeList(nullptr, {*root_, -1, 0}, false);
  return diagnostics_.failed() || diagnostics_.ended() ? nullptr : root_;
}

NQOMLSyntaxObject* Parser::makeObject(const SourceToken& type, nqLong objectIDIndex,
                                      nqLong sectionIDIndex, nqULong sectionPath) {
  NodeKind* const kind =
      tree_.kindOf({.file = file_,
                    .tables = readTables(file_),
                    .fileNameIndex = type.fileIndex,
                    .nameIndex = type.integer(),
                    .sectionIDIndex = sectionIDIndex,
                    .sectionPath = sectionPath,
                    .defObjType = names_.grammar.pObjTypeDefinition(type.integer())});
  return kind == nullptr ? nullptr
                         : tree_.makeObject(kind, type.line, type.column, objectIDIndex);
}

void Parser::parseAttributeList(const SourceToken* descriptor, const Context& context,
                                bool inBlock) {
  const bool join = descriptor == nullptr || descriptor->declared == 0;
  SourceToken token;
  for (int position = 1; lexer_.next(token, join); ++position) {
    if (inBlock && token.tag == NQ_OML_CLOSING_BRACKET) break;
    parseAttribute(descriptor, context, token, position);
  }
  names_.unchecked = false;
}

void Parser::parseBlock(const SourceToken& bracket, const SourceToken* descriptor,
                        const Context& context) {
  if (depth_ >= maxNestingDepth_) {
    diagnostics_.fatalError(bracket.place(), kMemoryExhausted);
    return;
  }
  ++depth_;
  parseAttributeList(descriptor, context, true);
  --depth_;
}

void Parser::parseAttribute(const SourceToken* descriptor, Context context,
                            SourceToken token, int position) {
  SourceToken name;
  SourceToken last;
  const SourceToken* held = nullptr;    // the name, once there is one
  const SourceToken* before = nullptr;  // the last section, or the colon without one
  if (descriptor != nullptr) {
    name = *descriptor;
    held = &name;
  }
  const auto next = [&] {
    if (lexer_.next(token, held == nullptr || held->declared == 0)) return true;
    reportMissingValue(held, before, context);
    return false;
  };
  for (;;) {
    if (token.tag == NQ_OML_FIELD_NAME || token.tag == NQ_OML_OBJECT_TYPE_NAME) {
      if (held != nullptr) illegalSectionInside(*held, token);
      name = token;
      held = &name;
    } else if (token.tag == NQ_OML_SECTION_NAME) {
      last = token;
      before = &last;
      context.sectionIDIndex = token.integer();
      context.sectionPath = extendSectionPath(token, context);
    } else if (token.tag == NQ_OML_UNRECOGNISED) {
      error(token, kUnexpectedToken);
    } else {
      break;
    }
    const char sign = lexer_.signAhead();
    if (sign == ':' || sign == '=') {
      lexer_.takeSign(token);
    } else if (!next()) {
      return;
    }
  }
  if (token.tag == NQ_OML_COLON) {
    if (before == nullptr) {
      last = token;
      before = &last;
    }
    if (!next()) return;
  }

  if (token.tag != NQ_OML_OPENING_BRACKET) {
    parseValue(held, context, token, position);
    return;
  }
  if (held != nullptr && held->tag == NQ_OML_OBJECT_TYPE_NAME) {
    parseObject(*held, IDTable::kNone, context, &token);
  } else if (isSkipSection(context.sectionIDIndex)) {
    lexer_.skipBlock();
  } else {
    parseBlock(token, held, context);
  }
  takeSemicolon();
}

void Parser::takeSemicolon() {
  SourceToken semicolon;
  const char sign = lexer_.signAhead();
  if (sign == ';') lexer_.takeSign(semicolon);
  if (sign != '\0') return;
  const SourceToken* const ahead = lexer_.lookAhead();
  if (ahead != nullptr && ahead->tag == NQ_OML_SEMICOLON) (void)lexer_.next(semicolon);
}

void Parser::parseValue(const SourceToken* name, const Context& context,
                        SourceToken& value, int position) {
  // A bracket that ends the block in place of a value is wrong as a value, and
  // still ends the block.
  const bool endsBlock = value.tag == NQ_OML_CLOSING_BRACKET;
  const ValueOwner owner(value);
  const SourceToken bracket = value;
  if (name != nullptr && name->tag == NQ_OML_OBJECT_TYPE_NAME) {
    const nqLong id = checkSimpleScope(value);
    const SourceToken* const ahead = endsBlock ? nullptr : lexer_.lookAhead();
    if (ahead != nullptr && ahead->tag == NQ_OML_OPENING_BRACKET) {
      SourceToken opening;
      (void)lexer_.next(opening);
      parseObject(*name, id, context, &opening);
    } else {
      parseObject(*name, id, context, nullptr);
    }
  } else if (name != nullptr && name->declared != 0) {
    if (!endsBlock) lexer_.skipRestOfLine(value.tag == NQ_OML_BINARY_VALUE);
  } else {
    const bool includes = name != nullptr && isBuiltIn(*name) &&
                          value.tag == NQ_OML_STRING &&
                          (name->integer() == NQ_OML_INCLUDE_FIELD ||
                           name->integer() == NQ_OML_INPUT_FIELD);
    parseField(name, context, value, position);
    if (includes && !endsBlock) return;  // its ";" stood before what is read now
  }
  if (endsBlock) {
    lexer_.putBack(bracket);
  } else {
    takeSemicolon();
  }
}

void Parser::parseObject(const SourceToken& type, nqLong objectIDIndex,
                         const Context& context, const SourceToken* bracket) {
  if (diagnostics_.ended()) return;  // no hook is called for it any more
  NQOMLSyntaxObject* const object =
      makeObject(type, objectIDIndex, context.sectionIDIndex, context.sectionPath);
  if (object == nullptr) {
    diagnostics_.fatalError(type.place(), kMemoryExhausted);
    return;
  }
  if (bracket != nullptr) {
    parseBlock(*bracket, nullptr, {*object, -1, 0});
    if (object->objectIDIndex() == IDTable::kDefaults) {
      for (NQOMLSyntaxObjectIter child(object); child; ++child) {
        child.pObject()->sectionIDIndex(context.sectionIDIndex);
        child.pObject()->sectionPathIndex(context.sectionPath);
      }
    }
  }
  checkObjectSection(type, object->objectIDIndex(), context);
  if (!diagnostics_.failed()) context.object.addObject(object);
}

void Parser::parseField(const SourceToken* name, const Context& context,
                        SourceToken& value, int position) {
  if (name != nullptr && isBuiltIn(*name)) {
    parseBuiltIn(name->integer(), context, value);
    return;
  }
  const bool unchecked = names_.unchecked;
  SourceToken made;
  if (name == nullptr) {
    if (unchecked || !nthFieldDescrToken(context, position, value, made)) {
      error(value, kUnexpectedValue);
      return;
    }
    name = &made;
  }
  NQOMLDefField* definition = nullptr;
  KnownField& known = known_[static_cast<std::size_t>(name->integer()) % known_.size()];
  const bool isKnown =
      !unchecked && known.kind != nullptr && known.type == context.type() &&
      known.path == context.sectionPath && known.kind->nameIndex == name->integer() &&
      known.kind->sectionIDIndex == context.sectionIDIndex &&
      known.kind->fileNameIndex == name->fileIndex;
  if (!unchecked) {
    definition = isKnown ? known.kind->defField : checkFieldSection(*name, context);
    checkFieldType(definition, value);
    // In which section a wildcard finds it, the iterator of the fields tells.
    if (hasWildcard(context.sectionPath)) definition = nullptr;
  } else if (isNoValue(value)) {
    error(value, kUnexpectedToken);
  } else if (value.tag == NQ_OML_CLOSING_BRACKET) {
    error(value, kUnexpectedValue);
  }
  // A name that the file has declared for ignored fields is here a word like others.
  if (value.tag == NQ_OML_FIELD_NAME && value.declared != 0) {
    value.integer(names_.keptFieldIndex(text(value)));
  }
  if (!diagnostics_.failed()) {
    NodeKind* const kind = isKnown
                               ? known.kind
                               : tree_.kindOf({.file = file_,
                                               .tables = readTables(file_),
                                               .fileNameIndex = name->fileIndex,
                                               .nameIndex = name->integer(),
                                               .sectionIDIndex = context.sectionIDIndex,
                                               .sectionPath = context.sectionPath,
                                               .defField = definition,
                                               .unchecked = unchecked});
    if (definition != nullptr && kind != nullptr) {
      known = {context.type(), context.sectionPath, kind};
    }
    NQOMLSyntaxField* const field =
        kind == nullptr ? nullptr
                        : tree_.makeField(kind, name->line, name->column, value);
    if (field == nullptr) {
      diagnostics_.fatalError(name->place(), kMemoryExhausted);
      return;
    }
    value.pBinValue(nullptr);  // the field has it
    context.object.addField(field);
  }
}

void Parser::parseBuiltIn(nqLong fieldIndex, const Context& context, SourceToken& value) {
  if (fieldIndex == NQ_OML_ID_FIELD || fieldIndex == NQ_OML_NAME_FIELD) {
    const nqLong id = checkSimpleScope(value);
    NQOMLSyntaxObject& object = context.object;
    // Outside any object there is nothing to give an id to.
    if (id == IDTable::kNone || &object == root_) return;
    if (object.objectIDIndex() >= 0 && object.objectIDIndex() != id) {
      error(value, kDoubleID);
    }
    const bool turnsIntoDefaults =
        id == IDTable::kDefaults && object.objectIDIndex() != id;
    object.objectIDIndex(id);
    if (turnsIntoDefaults) checkChildrenAgain(object);
    return;
  }
  if (isPunctuation(value)) {
    error(value, kUnexpectedToken);
    return;
  }
  checkSomething(value, NQ_OML_STRING, kString);
  if (value.tag != NQ_OML_STRING) return;
  const char* const text = names_.strings.decode(value.integer());
  switch (fieldIndex) {
    case NQ_OML_INCLUDE_FIELD:
    case NQ_OML_INPUT_FIELD:
      include(value);
      break;
    case NQ_OML_COMMENT_FIELD:
      if (!strict_ && std::string_view(text) == kUnchecked) names_.unchecked = true;
      break;
    case NQ_OML_SECTION_FIELD:
      if (!strict_) names_.declareSection(text);
      break;
    case NQ_OML_FIELD_FIELD:
      if (!strict_) names_.ignoreField(text);
      break;
    default:
      break;
  }
}

void Parser::include(const SourceToken& name) {
  lexer_.takeSemicolon();
  const char* const text = names_.strings.decode(name.integer());
  if (diagnostics_.ended() || sources_.push(text) || diagnostics_.ended()) return;
  diagnostics_.fatalError(name.place(), kCannotOpen, text);
  diagnostics_.errorCode = NQ_FILE_OPEN_ERROR;
}

void Parser::reportMissingValue(const SourceToken* name, const SourceToken* before,
                                const Context& context) {
  if (name == nullptr) {
    if (before != nullptr) error(*before, kUnexpectedValue);
    return;
  }
  if (name->declared != 0) return;
  SourceToken nothing = *name;  // stands for the value: no field can take it
  nothing.tag = NQ_OML_CLOSING_BRACKET;
  if (name->tag == NQ_OML_OBJECT_TYPE_NAME) {
    (void)checkSimpleScope(nothing);
  } else if (isBuiltIn(*name)) {
    parseBuiltIn(name->integer(), context, nothing);
  } else if (names_.unchecked) {
    error(*name, kUnexpectedValue);
  } else {
    checkFieldType(checkFieldSection(*name, context), nothing);
  }
}

bool Parser::isSkipSection(nqLong section) const {
  return section == NQ_OML_SKIP_SECTION ||
         section >= names_.grammar.pSectionPool()->decodeTableMax();
}

nqULong Parser::extendSectionPath(const SourceToken& token, const Context& context) {
  const nqLong section = token.integer();
  const nqULong path = context.sectionPath;
  if (isSkipSection(section)) return path;
  const nqULong extended = subsectionPath(context.type(), path, section);
  if (extended != 0) return extended;

  const NQOMLDefSection* const enclosing = firstMatch(context.type(), path);
  const char* const name = sectionName(section);
  const char* const type = typeName(context.object);
  if (enclosing == nullptr) {
    error(token, kNoSubsection, name, type);
  } else if (nextMatch(enclosing, path) == nullptr) {
    error(token, kNoSubsectionOfSection, name, sectionName(enclosing->nameIndex()), type);
  } else {
    error(token, kNoSubsectionOfAll, name, type);
  }
  return path;
}

bool Parser::nthFieldDescrToken(const Context& context, int position,
                                const SourceToken& value, SourceToken& name) const {
  const NQOMLDefScope* const scope = context.type()->pScope(context.sectionPath);
  const NQOMLDefField* const definition =
      scope == nullptr ? nullptr : scope->pFieldNumbered(position);
  if (definition == nullptr) return false;
  name = value;
  name.tag = NQ_OML_FIELD_NAME;
  name.integer(definition->nameIndex());
  return true;
}

NQOMLDefField* Parser::fieldInMatchingSections(nqLong name,
                                               const Context& context) const {
  const nqULong path = context.sectionPath;
  NQOMLDefField* first = nullptr;
  for (auto* section = firstMatch(context.type(), path); section != nullptr;
       section = nextMatch(section, path)) {
    NQOMLDefField* const found = section->pField(name);
    if (found == nullptr) continue;
    if (first == nullptr) {
      first = found;
    } else if (!sameValues(*first, *found)) {
      return nullptr;
    }
  }
  return first;
}

NQOMLDefField* Parser::checkFieldSection(const SourceToken& name,
                                         const Context& context) {
  const nqULong path = context.sectionPath;
  NQOMLDefField* definition = nullptr;
  if (hasWildcard(path)) {
    definition = fieldInMatchingSections(name.integer(), context);
  } else if (const NQOMLDefScope* const scope = context.type()->pScope(path)) {
    definition = scope->pField(name.integer());
  }
  if (definition != nullptr) return definition;
  if (path == 0) {
    error(name, kFieldNotAllowed, text(name), typeName(context.object));
  } else {
    error(name, kFieldNotAllowedInSection, text(name),
          sectionName(context.sectionIDIndex), typeName(context.object));
  }
  return nullptr;
}

void Parser::checkFieldType(const NQOMLDefField* definition, const SourceToken& value) {
  if (isNoValue(value)) {
    error(value, kUnexpectedToken);
    return;
  }
  if (definition == nullptr) return;
  switch (definition->fieldType()) {
    case NQ_INTEGER_FIELD:
      checkSomething(value, NQ_OML_INTEGER, kIntegerNumber);
      break;
    case NQ_BOOLEAN_FIELD:
      checkBool(value);
      break;
    case NQ_STRING_FIELD:
      checkSomething(value, NQ_OML_STRING, kString);
      break;
    case NQ_REFERENCE_FIELD:
      checkScope(value);
      break;
    case NQ_REAL_FIELD:
      checkSomething(value, NQ_OML_REAL, kFloatingPointNumber);
      break;
    case NQ_ENUMERATION_FIELD:
      if (value.tag != NQ_OML_ENUMERATOR || !definition->allowsValue(value.integer())) {
        error(value, kDifferentTypeExpected);
      }
      break;
    case NQ_IP_ADDRESS_FIELD:
      checkSomething(value, NQ_OML_IP_ADDRESS, kIPAddress);
      break;
    case NQ_BINARY_FIELD:
      checkSomething(value, NQ_OML_BINARY_VALUE, kBinaryByteSequence);
      break;
    default:
      error(value, kUnexpectedField);
      break;
  }
}

void Parser::checkSomething(const SourceToken& token, NQOMLTokenTagEnum tag, int what) {
  if (token.tag == tag) return;
  if (isWord(token)) {
    error(token, kUnexpectedIdentifier, text(token));
  } else {
    error(token, kExpected, getStringResource(what));
  }
}

void Parser::checkBool(const SourceToken& token) {
  if (token.tag == NQ_OML_ENUMERATOR &&
      (token.integer() == NQ_OML_TRUE || token.integer() == NQ_OML_FALSE)) {
    return;
  }
  if (isWord(token)) error(token, kUnexpectedIdentifier, text(token));
  error(token, kExpected, getStringResource(kTrueOrFalse));
}

// An integer stands for the object with that id, which the semantic pass finds.
void Parser::checkScope(const SourceToken& token) {
  if (token.tag == NQ_OML_OBJECT_ID || token.tag == NQ_OML_INTEGER) return;
  if (isWord(token)) {
    error(token, kUnexpectedIdentifier, text(token));
  } else {
    error(token, kObjectIDExpected);
  }
}

nqLong Parser::checkSimpleScope(const SourceToken& token) {
  if (token.tag == NQ_OML_INTEGER) {
    const nqLong id = names_.ids.withNumber(token.integer());
    if (id == IDTable::kNone) diagnostics_.fatalError(token.place(), kMemoryExhausted);
    return id;
  }
  if (token.tag == NQ_OML_OBJECT_ID && names_.ids.isSimple(token.integer())) {
    return token.integer();
  }
  error(token, kObjectIDExpected);
  return IDTable::kNone;
}

void Parser::checkObjectSection(const SourceToken& type, nqLong objectIDIndex,
                                const Context& context) {
  const bool defaults = objectIDIndex == IDTable::kDefaults;
  const bool inDefaults = context.object.objectIDIndex() == IDTable::kDefaults;
  const bool inSection = context.sectionIDIndex >= 0;
  if (inDefaults) {
    if (type.integer() == context.object.typeIndex() && !defaults && !inSection) return;
  } else {
    const NQOMLDefScope* const scope = context.type()->pScope(context.sectionPath);
    if (scope != nullptr && scope->allowsObjectType(type.integer())) return;
  }
  int code = kObjectNotAllowed;
  if (defaults) {
    code = inDefaults ? kDefaultsNotAllowedInDefaults : kDefaultsNotAllowed;
  } else if (inDefaults) {
    code = kObjectNotAllowedInDefaults;
  }
  const char* const parent = typeName(context.object);
  if (inSection) {
    error(type, code + 1, text(type), sectionName(context.sectionIDIndex), parent);
  } else {
    error(type, code, text(type), parent);
  }
}

void Parser::checkChildrenAgain(NQOMLSyntaxObject& object) {
  for (NQOMLSyntaxObjectIter iter(&object); iter; ++iter) {
    const NQOMLSyntaxObject& child = *iter.pObject();
    SourceToken type;
    type.tag = NQ_OML_OBJECT_TYPE_NAME;
    type.integer(child.typeIndex());
    type.fileIndex = child.fileNameIndex();
    type.line = child.line();
    type.column = child.column();
    checkObjectSection(type, child.objectIDIndex(),
                       {object, child.sectionIDIndex(), child.sectionPath()});
  }
}

void Parser::illegalSectionInside(const SourceToken& held, const SourceToken& next) {
  const std::string place = std::to_string(next.line) + ":" + std::to_string(next.column);
  error(next, kKeywordNotAllowed, text(held), text(next), place.c_str());
}

const char* Parser::text(const SourceToken& token) const {
  const nqLong index = token.integer();
  const NQOMLStatic& grammar = names_.grammar;
  switch (token.tag) {
    case NQ_OML_ENUMERATOR:
      return grammar.pEnumPool()->decode(index);
    case NQ_OML_OBJECT_TYPE_NAME:
      return grammar.pObjTypePool()->decode(index);
    case NQ_OML_SECTION_NAME:
      return sectionName(index);
    case NQ_OML_FIELD_NAME: {
      const nqLong known = grammar.pFieldPool()->decodeTableMax();
      if (index < known) return grammar.pFieldPool()->decode(index);
      return (token.declared != 0 ? names_.ignoredFields : names_.declaredFields)
          .decode(index - known);
    }
    case NQ_OML_OBJECT_ID:
      return names_.ids.text(index);
    default:
      return "";
  }
}

const char* Parser::typeName(const NQOMLSyntaxObject& object) const {
  return names_.grammar.pObjTypePool()->decode(object.typeIndex());
}

const char* Parser::sectionName(nqLong index) const {
  const nqLong known = names_.grammar.pSectionPool()->decodeTableMax();
  return index < known ? names_.grammar.pSectionPool()->decode(index)
                       : names_.declaredSections.decode(index - known);
}

}  // namespace nqdetail
