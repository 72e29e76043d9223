// message_codes.h -- the codes of the messages that reading produces.
//
// Each is the index of its text in the message table (core/message_table.def).

#ifndef NQ_OML_DIAGNOSTICS_MESSAGE_CODES_H
#define NQ_OML_DIAGNOSTICS_MESSAGE_CODES_H

namespace nqdetail {

enum MessageCode : int {
  kErrorPrefix = 0,
  kFatalErrorPrefix = 1,
  kWarningPrefix = 2,
  kSomethingWrong = 3,
  // What 24 says is expected.
  kIntegerNumber = 4,
  kString = 5,
  kFloatingPointNumber = 6,
  kIPAddress = 7,
  kBinaryByteSequence = 8,
  kTrueOrFalse = 9,
  // Limits and files.
  kTooManyErrors = 10,
  kTooManyWarnings = 11,
  kMemoryExhausted = 12,
  kCannotOpen = 13,
  kCannotClose = 14,
  // Characters and brackets.
  kUnclosedBracket = 15,
  kUnopenedBracket = 16,
  kUnterminatedComment = 17,
  kUnterminatedString = 18,
  kUnterminatedBinaryValue = 19,
  kUnexpectedToken = 20,
  // Fields and their values.
  kUnexpectedField = 21,
  kUnexpectedIdentifier = 22,
  kUnexpectedValue = 23,
  kExpected = 24,
  kDifferentTypeExpected = 25,
  kObjectIDExpected = 26,
  // Ids and references.
  kReferenceExpected = 27,
  kUndefinedObject = 28,
  kMissingAttribute = 29,
  kDoubleID = 30,
  kDoubleObjectOfOtherType = 31,
  kWrongTopLevelObject = 32,
  kTwoTopLevelObjects = 33,
  kSeveralSemanticErrors = 34,
  // Sections. 36 is 35 for a known enclosing section.
  kNoSubsection = 35,
  kNoSubsectionOfSection = 36,
  kNoSubsectionOfAll = 37,
  // Objects; the odd code is the even one before it for a given section.
  kObjectNotAllowed = 38,
  kObjectNotAllowedInDefaults = 40,
  kDefaultsNotAllowed = 42,
  kDefaultsNotAllowedInDefaults = 44,
  kFieldNotAllowed = 46,
  kFieldNotAllowedInSection = 47,
  kKeywordNotAllowed = 48,
  kUnableToSetFields = 49,
  kOtherClosingBracket = 50,  // where the bracket was opened
  kOtherOpeningBracket = 51,  // where it is closed
};

}  // namespace nqdetail

#endif  // NQ_OML_DIAGNOSTICS_MESSAGE_CODES_H
