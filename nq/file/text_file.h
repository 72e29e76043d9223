// text_file.h -- a file of lines that each hold one value.
//
// Written lines end with "\r\n". Numbers look the same whatever the program's
// locale, and are read as scanf reads them: blanks before the number and text
// behind it are passed over. All results are those of NQFile; a failed read
// leaves its target unchanged.

#ifndef NQ_FILE_TEXT_FILE_H
#define NQ_FILE_TEXT_FILE_H

#include "nq/file/file.h"

class NQ_EXPORT NQTextFile : public NQFile {
  NQ_COPY_PROTOCOL(NQTextFile)

 public:
  NQTextFile() = default;
  ~NQTextFile() override;

  // A text, or a number in decimal digits: an integer of any type whole, a real as
  // "%lf" prints it.
  NQFileCodeEnum write(const char* text);
  NQFileCodeEnum write(int value);
  NQFileCodeEnum write(unsigned int value);
  NQFileCodeEnum write(long value);
  NQFileCodeEnum write(unsigned long value);
  NQFileCodeEnum write(long long value);
  NQFileCodeEnum write(unsigned long long value);
  NQFileCodeEnum write(double value);
  // The number as the format prints it (nq/core/format.h says which formats
  // there are); NQ_FILE_WRITE_ERROR for a null format.
  NQFileCodeEnum write(double value, const char* format);

  // The same, followed by a line end.
  NQFileCodeEnum writeLine(const char* text);
  NQFileCodeEnum writeLine(int value);
  NQFileCodeEnum writeLine(unsigned int value);
  NQFileCodeEnum writeLine(long value);
  NQFileCodeEnum writeLine(unsigned long value);
  NQFileCodeEnum writeLine(long long value);
  NQFileCodeEnum writeLine(unsigned long long value);
  NQFileCodeEnum writeLine(double value);
  NQFileCodeEnum writeLine(double value, const char* format);

  // "FALSE" for 0, "TRUE" for everything else.
  NQFileCodeEnum writeTrueOrFalse(int value);
  NQFileCodeEnum writeLineTrueOrFalse(int value);

  // The next line without its line end. At the end of the data the result is
  // NQ_FILE_READ_ERROR and error() stays as it was.
  NQFileCodeEnum readLine(NQStringHandle& out);
  // The number at the front of the next line. A line without one, or with one
  // beyond the type's range, is NQ_FILE_READ_ERROR; a real too small for a double is 0.
  // Unsigned numbers may have a sign; a minus counts back from 2 to the 32nd.
  NQFileCodeEnum readLine(int& value);
  NQFileCodeEnum readLine(unsigned int& value);
  NQFileCodeEnum readLine(long& value);
  NQFileCodeEnum readLine(unsigned long& value);
  NQFileCodeEnum readLine(double& value);
  // 1 for a line that begins with "TRUE", 0 for one that begins with "FALSE",
  // whatever follows; callers rely on that.
  NQFileCodeEnum readLineTrueOrFalse(int& value);

  nqLong sizeOf() const override;

  // Removes line ends from the end of `text`, in place, and returns it. Called
  // by readLine for every line; an override may shorten the text, lengthen it by
  // one character, or return another text, which then is the line.
  virtual char* stripBuffer(char* text);

  // 1 for a text that begins with "//".
  static int isDoubleSlashString(const char* text);

 protected:
  static int isSpace(char c) { return c == ' ' || c == '\t'; }
  static int isCntrl(char c) { return c == '\n' || c == '\r'; }

 private:
  void stripInPlace(NQStringHandle& line);
  template <class Value>
  NQFileCodeEnum readValue(Value& value, bool (*scan)(const char*, Value&));
};

#endif  // NQ_FILE_TEXT_FILE_H
