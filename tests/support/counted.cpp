#include "tests/support/counted.h"

NQ_COPY_PROTOCOL_IMPL(NQCounted)
NQ_COPY_ALIKE_IMPL(NQCounted, NQObject)
