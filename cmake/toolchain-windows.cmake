# Kernel modules for 64-bit Windows with Debian's clang and lld. The system is "Generic" on
# purpose: nothing of a Windows user-mode toolchain is wanted; modules.cmake links by hand.
set(CMAKE_SYSTEM_NAME Generic)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(CMAKE_CXX_COMPILER clang++)
set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)
set(CMAKE_CXX_COMPILER_FORCED TRUE)
