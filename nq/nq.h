// nq.h -- every public header of the library.

#ifndef NQ_NQ_H
#define NQ_NQ_H

#include "nq/containers/dlist.h"
#include "nq/containers/index_hash_table.h"
#include "nq/containers/linked_list.h"
#include "nq/containers/list_sort.h"
#include "nq/containers/numbers.h"
#include "nq/containers/slist.h"
#include "nq/core/algorithm.h"
#include "nq/core/boxed_values.h"
#include "nq/core/copy_protocol.h"
#include "nq/core/format.h"
#include "nq/core/message_table.h"
#include "nq/core/object.h"
#include "nq/core/object_with_id.h"
#include "nq/core/string_handle.h"
#include "nq/core/string_pool.h"
#include "nq/core/text.h"
#include "nq/core/unique_id.h"
#include "nq/file/file.h"
#include "nq/file/file_codes.h"
#include "nq/file/system_calls.h"
#include "nq/file/text_file.h"
#include "nq/oml/bin_value.h"
#include "nq/oml/definitions.h"
#include "nq/oml/grammar.h"
#include "nq/oml/oml_file.h"
#include "nq/oml/oml_object.h"
#include "nq/oml/syntax_tree.h"
#include "nq/oml/token.h"
#include "nq/platform/export.h"
#include "nq/platform/records.h"
#include "nq/platform/types.h"

#endif  // NQ_NQ_H
