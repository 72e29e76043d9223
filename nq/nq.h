// nq.h -- every public header of the library.

#ifndef NQ_NQ_H
#define NQ_NQ_H

#include "nq/core/copy_protocol.h"
#include "nq/core/object.h"
#include "nq/platform/export.h"
#include "nq/platform/records.h"
#include "nq/platform/types.h"

#endif  // NQ_NQ_H
