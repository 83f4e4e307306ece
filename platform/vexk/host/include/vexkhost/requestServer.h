#pragma once

#include "ntos/types.h"

// Lets other processes reach the dispatchers of the modules in this program, see "vexk/iLib.h": a
// server on a local socket that carries their requests to iLib::deliver, in threads of its own.
//
//     if (!vexkhost::startRequestServer(nullptr)) perror("the configuration cannot be reached");
//     ...
//     vexkhost::stopRequestServer();
//
// The server is for processes of the user that runs this program, and for root; others are told
// that they are refused. A request is served in the caller's memory, and in a thread that serves
// nobody else at that time. Callers that say nothing, or nothing sensible, hold up nobody: when all
// kRequestPlaces are taken, the one that has been silent longest loses its place to a new one.
//
// The control functions may be called on any thread, but not from within a request.

namespace vexkhost {

constexpr u32 kRequestPlaces = 32;  // callers at a time

// Starts to serve at `path`, or where getRequestSocketPath of "vexkhost/requestSocket.h" says when
// it is null. Only the owner can open the socket there. A socket that a dead server left is taken
// away; one that somebody listens at is left alone. False, with errno set and nothing started:
//   EADDRINUSE    another server listens there, or what is there is no socket
//   EALREADY      this program's server is started
//   ENAMETOOLONG  the path is empty or has more than 107 bytes
//   EPERM         the folder of the path by default belongs to somebody else
// or what the system says of the path, the socket or the thread.
bool startRequestServer(char const* path);

// Takes no more requests, waits until those that run have ended and been answered, and takes the
// socket away. Does nothing when no server is started.
void stopRequestServer();

}  // namespace vexkhost
