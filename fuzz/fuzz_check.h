// What must hold for every input: the fuzzer stops where it does not, and keeps the input.
#ifndef FUZZ_CHECK_H
#define FUZZ_CHECK_H

#include <cstdlib>

inline void FUZ_Check(bool isGood)
{
    if (!isGood)
        std::abort();
}

#endif
