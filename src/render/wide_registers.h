// Loops that compilers turn into vector code, compiled once more for processors with wider registers: the same
// arithmetic, so the same pixels. A loop is an always-inline function; a plain function and one marked QEL_WIDE call
// it, and `chooseWide` picks between the two.
#pragma once

#if defined(__x86_64__) && !defined(__AVX2__)
#define QEL_WIDE [[gnu::target("avx2")]]
#else
#define QEL_WIDE
#endif

namespace qel {

inline bool hasWideRegisters() {
#if defined(__x86_64__) && !defined(__AVX2__)
    return __builtin_cpu_supports("avx2") != 0;
#else
    return false;
#endif
}

template <class Function>
Function* chooseWide(Function* plain, Function* wide) {
    return hasWideRegisters() ? wide : plain;
}

}  // namespace qel
