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
// nobody else at that time.
//
// A caller who has connected has a place. When a user has taken kRequestPlacesOfOneUser of them,
// or all are taken, a new caller gets the place of one that sends no request, the one that has been
// silent longest, or else of one whose memory has not been there for 0.1 s. When there is no such
// caller either, the new one is refused. A user who has taken all that one may have replaces
// callers of its own only.
//
// Memory of a caller that has not arrived after kRequestMemoryPatience, as that of a mapping whose
// owner does not answer, counts as gone for the rest of that caller's connection. The thread that
// waits for it in the system stays behind with a descriptor, one for such a connection, until the
// memory arrives or its owner or the program ends. A process that such a thread waits for is served
// no further request, and neither is a user whose processes kRequestMostWithheld threads wait for:
// the answer is kRequestTooManyCallers.
//
// The control functions may be called on any thread, but not from within a request.

namespace vexkhost {

constexpr u32 kRequestPlaces = 32;            // callers at a time
constexpr u32 kRequestPlacesOfOneUser = 24;   // and of one user
constexpr u32 kRequestMemoryPatience = 5000;  // milliseconds
constexpr u32 kRequestMostWithheld = 64;      // threads left behind for one user

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
// socket away. Requests that wait for memory of their callers have 0.4 s more for all of it, and
// after 0.5 s no request reaches its caller's memory any more, so that the longest one ends too.
// Does nothing when no server is started.
void stopRequestServer();

}  // namespace vexkhost
