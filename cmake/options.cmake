# Compiler options in one place. Two interface targets carry them:
#   oxdiag_warnings  every translation unit of the project
#   oxdiag_product   what goes into kernel modules (source/, platform/, examples' components)

add_library(oxdiag_warnings INTERFACE)
target_compile_options(oxdiag_warnings INTERFACE
  -std=c++20 -Wall -Wextra -Wpedantic $<$<BOOL:${OXDIAG_WERROR}>:-Werror>)

if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
  # That of g++ objects to constructors whose parameters are named as the members that they set.
  target_compile_options(oxdiag_warnings INTERFACE -Wconversion -Wsign-conversion -Wshadow)
  # A compiler cache may give back a precompiled header that is older than its text.
  target_compile_options(oxdiag_warnings INTERFACE "SHELL:-Xclang -fno-pch-timestamp")
elseif(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  # Optimising, g++ 12 sees copies overlap in "text" + std::string that do not.
  target_compile_options(oxdiag_warnings INTERFACE $<$<CONFIG:Release>:-Wno-restrict>)
endif()

add_library(oxdiag_product INTERFACE)
target_link_libraries(oxdiag_product INTERFACE oxdiag_warnings)
target_compile_options(oxdiag_product INTERFACE -fno-exceptions -fno-rtti -fno-threadsafe-statics)
if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
  target_compile_options(oxdiag_product INTERFACE -Wglobal-constructors -Wexit-time-destructors)
endif()
if(NOT OXDIAG_SANITIZE)
  # Kernel stacks are small. The sanitizers' red zones are not what runs there.
  target_compile_options(oxdiag_product INTERFACE -Wframe-larger-than=2048)
endif()

if(OXDIAG_TARGET STREQUAL "host")
  # UTF-16 wide text on every target, and frame pointers for the call-stack walk.
  target_compile_options(oxdiag_warnings INTERFACE -fshort-wchar -fno-omit-frame-pointer
                                                   -fno-optimize-sibling-calls)
  if(OXDIAG_SANITIZE)
    target_compile_options(oxdiag_warnings INTERFACE -fsanitize=${OXDIAG_SANITIZE}
                                                     -fno-sanitize-recover=all)
    target_link_options(oxdiag_warnings INTERFACE -fsanitize=${OXDIAG_SANITIZE} -fuse-ld=lld)
  endif()
  if(OXDIAG_SANITIZE MATCHES "fuzzer")
    target_compile_options(oxdiag_warnings INTERFACE
      "-fsanitize-coverage-ignorelist=${PROJECT_SOURCE_DIR}/tests/fuzz/uncovered.txt")
  endif()
  if(OXDIAG_COVERAGE)
    # The counters are a mapped file (%c in LLVM_PROFILE_FILE), so that a program may die at any time;
    # its threads and its children count in the same ones.
    target_compile_options(oxdiag_warnings INTERFACE -fprofile-instr-generate -fcoverage-mapping
      -fprofile-update=atomic "SHELL:-mllvm -runtime-counter-relocation"
      "-fprofile-list=${PROJECT_SOURCE_DIR}/tests/coverage/counted.txt")
    # A program that has nothing of the product would say so on its standard error.
    target_link_options(oxdiag_warnings INTERFACE -fuse-ld=lld
      $<$<NOT:$<STREQUAL:$<TARGET_PROPERTY:NAME>,oxdiagctl>>:-fprofile-instr-generate>)
  endif()
elseif(OXDIAG_TARGET STREQUAL "windows")
  # -fms-extensions brings __declspec, __int64 and __try; -Wpedantic must not object to them.
  # Call stacks and __try walk by the unwind tables, which -ffreestanding would leave out.
  # What the guards of stack and calls need at run time is in platform/vexk/windows/image. A switch
  # would jump through a table, past the guard of calls.
  target_compile_options(oxdiag_warnings INTERFACE -fasynchronous-unwind-tables
    --target=x86_64-pc-windows-msvc -O2 -g -gcodeview -fms-extensions -ffreestanding -fno-exceptions -fno-rtti
    -mno-implicit-float -fno-threadsafe-statics -fstack-protector-strong "SHELL:-Xclang -cfguard"
    -fno-jump-tables -Wno-language-extension-token)
  # The same files from a clone at another path: no absolute path gets into an object. Neither do the
  # colors of messages, which a compiler cache would ask for, and the debug information tell.
  target_compile_options(oxdiag_warnings INTERFACE
    -fno-color-diagnostics -ffile-compilation-dir=. "-fdebug-prefix-map=${PROJECT_SOURCE_DIR}=.")
  set_property(GLOBAL PROPERTY RULE_LAUNCH_COMPILE
    "${CMAKE_COMMAND} \"-DTOP=${PROJECT_SOURCE_DIR}\" -P \"${CMAKE_CURRENT_LIST_DIR}/callCompiler.cmake\" --")
elseif(OXDIAG_TARGET STREQUAL "metal")
  target_compile_options(oxdiag_warnings INTERFACE
    --target=x86_64-unknown-none-elf -O2 -ffreestanding -nostdlib -mno-red-zone -fno-pic -mcmodel=small -mno-implicit-float
    -fno-stack-protector -fno-threadsafe-statics -fno-exceptions -fno-rtti -fshort-wchar)
endif()
