// failing_memory.h -- an operator new that can be told to fail. Programs that use it
// have it in place of the usual one.

#ifndef NQ_TESTS_SUPPORT_FAILING_MEMORY_H
#define NQ_TESTS_SUPPORT_FAILING_MEMORY_H

// How many allocations still succeed; -1: all.
extern long allocationsLeft;

#endif  // NQ_TESTS_SUPPORT_FAILING_MEMORY_H
