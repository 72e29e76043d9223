// file_codes.h -- the modes, results and byte orders of files.

#ifndef NQ_FILE_FILE_CODES_H
#define NQ_FILE_FILE_CODES_H

// How a file is opened, and so which operations it offers; each of the others
// fails. Lines are read and written as strings.
enum NQFileModeEnum : int {
  NQ_READ = 0,          // an existing file; strings, buffered
  NQ_WRITE = 1,         // a new or emptied file; strings
  NQ_READ_WRITE = 2,    // a new or existing file, from its front; strings, unbuffered
  NQ_APPEND = 3,        // a new or existing file, from its end; strings, writing only
  NQ_READ_BINARY = 4,   // as NQ_READ; bytes
  NQ_WRITE_BINARY = 5,  // as NQ_WRITE; bytes
  NQ_READ_ASCII = 6,    // as NQ_READ
  NQ_WRITE_ASCII = 7,   // as NQ_WRITE
};

// The result of every file operation, and of reading or writing an OML file.
enum NQFileCodeEnum : int {
  NQ_FILE_OK = 0,
  NQ_FILE_OPEN_ERROR = 2,
  NQ_FILE_CLOSE_ERROR = 3,           // was not open, or did not close well
  NQ_FILE_READ_ERROR = 4,            // or the wrong mode, or no data left
  NQ_FILE_WRITE_ERROR = 5,           // or the wrong mode
  NQ_FILE_READ_ARGUMENT_ERROR = 6,   // an OML read without name or grammar
  NQ_FILE_WRITE_ARGUMENT_ERROR = 7,  // an OML write without name or grammar
};

// A number that files carry for their users; nothing here interprets it.
enum NQByteOrderEnum : int { NQ_DEFAULT_BYTE_ORDER = 2 };

#endif  // NQ_FILE_FILE_CODES_H
