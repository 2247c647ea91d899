// What the painter leaves behind in the processor.
#pragma once

namespace zel::qt {

// To be called after the painter has painted. Its functions for wide registers leave their upper halves in
// use, and then each change between narrow and wide instructions, such as a call of a logarithm of the
// standard library, takes a hundred cycles.
#ifdef __x86_64__
__attribute__((target("avx"))) inline void ClearUpperHalves() {
    __builtin_ia32_vzeroupper();
}
inline void LeaveWideRegisters() {
    static const bool wide = __builtin_cpu_supports("avx") != 0;
    if (wide) ClearUpperHalves();
}
#else
inline void LeaveWideRegisters() {}
#endif

}  // namespace zel::qt
