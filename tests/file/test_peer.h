// test_peer.h -- the hidden operations of a file, for its tests.

#ifndef NQ_TESTS_FILE_TEST_PEER_H
#define NQ_TESTS_FILE_TEST_PEER_H

#include <string_view>

#include "nq/file/file.h"

class NQTestPeer {
 public:
  static NQFileCodeEnum readAscii(NQFile& file, NQStringHandle& out) {
    return file.readAsciiString(out);
  }
  static NQFileCodeEnum writeAscii(NQFile& file, const char* text) {
    return file.writeAsciiString(text);
  }
  static NQFileCodeEnum readUnbuffered(NQFile& file, char* data, int& count) {
    return file.unbufferedReadBinary(data, count);
  }
  static char nextChar(NQFile& file) { return file.nextBufferedChar(); }
  static char lookAhead(NQFile& file) { return file.lookAheadBufferedChar(); }
  static int unread(const NQFile& file) { return file.numberOfBufferedBytes(); }
  // What the buffer holds from its front on, the bytes taken since then included.
  static std::string_view buffer(const NQFile& file) {
    const char* const front = file.pFileBuffer();
    return {front, file.pTopBuffer() + file.numberOfBufferedBytes()};
  }
  static void mode(NQFile& file, NQFileModeEnum mode) { file.mode(mode); }
  static void fileName(NQFile& file, const char* name) { file.pFileName(name); }
};

#endif  // NQ_TESTS_FILE_TEST_PEER_H
