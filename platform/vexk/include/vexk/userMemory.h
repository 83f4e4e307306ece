#pragma once

// Memory of a user-mode program, reached so that a bad address is a short count and not a crash.
//
// Both copy `length` bytes from the front on and return how many were copied before the first byte
// that could not be reached: `length` when all went well. The bytes before that one are copied. An
// address outside user memory copies nothing, as does a length that would wrap.
//
// They work in the context of the requesting thread: on Windows the current process' user half, on
// the host the process that the executive was told to serve. PASSIVE_LEVEL; any thread.
// An implementation must not trust that memory stays valid between two calls, nor its content
// between two reads.
//
//     tRequest request;
//     if (vexCopyFromUser(&request, userAddress, sizeof request) != sizeof request) ...

#include "compiler/types.h"
#include "vexk/api.h"

[[nodiscard]] VEX_API size_t vexCopyFromUser(void* to, u64 userAddress, size_t length);
VEX_API size_t vexCopyToUser(u64 userAddress, void const* from, size_t length);
