// numbers.h -- small questions about whole numbers.

#ifndef NQ_CONTAINERS_NUMBERS_H
#define NQ_CONTAINERS_NUMBERS_H

#include "nq/platform/export.h"
#include "nq/platform/types.h"

// Sizes for hash tables come from a table of 31 primes, the largest of them
// 160201. nextPrimeNumber() is the smallest of these above `n`, prevPrimeNumber()
// the largest below it, and 0 where there is none.
NQ_EXPORT nqLong nextPrimeNumber(nqLong n);
NQ_EXPORT nqLong prevPrimeNumber(nqLong n);

// The greatest number that divides both; the magnitude of the other when one is
// 0, and 0 when both are. Never negative: where the answer would be 2^31, it is
// 2^30, the greatest common divisor that an nqLong can hold.
NQ_EXPORT nqLong greatestCommonDivisor(nqLong a, nqLong b);

// The largest value of the platform's random numbers: 32767.
NQ_EXPORT nqLong maxRandomNumber();

#endif  // NQ_CONTAINERS_NUMBERS_H
