// message_table.h -- the library's fixed message texts.

#ifndef NQ_CORE_MESSAGE_TABLE_H
#define NQ_CORE_MESSAGE_TABLE_H

#include "nq/platform/export.h"

// The text with that number, which may hold up to three "%s" for the formatter
// (format.h); "" for a negative number and for 52 and more. The text lives as
// long as the library.
NQ_EXPORT const char* getStringResource(int index);

#endif  // NQ_CORE_MESSAGE_TABLE_H
