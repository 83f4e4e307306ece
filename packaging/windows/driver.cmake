# Toolchain file for drivers with clang and lld, on Windows or elsewhere. The system is "Generic":
# nothing of what programs for Windows link is wanted.
set(CMAKE_SYSTEM_NAME Generic)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(CMAKE_CXX_COMPILER clang++)
set(CMAKE_CXX_COMPILER_FORCED TRUE)
set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)
set(oxdiagk_DIR "${CMAKE_CURRENT_LIST_DIR}")
