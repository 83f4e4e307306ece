#pragma once

// What programs and the host's request server say to each other: messages of fixed size over a
// local socket of the kind SOCK_SEQPACKET. For those who write either side.
//
// The caller connects and waits for the greeting. Then it sends messages and waits for the reply to
// each. Who it is the server asks the kernel, so nothing here says it; only the process that has
// connected may send. Its memory is read and written while it waits, as vexCopyFromUser and
// vexCopyToUser do; where the system lets only chosen processes do that, it chooses the server with
// prctl(PR_SET_PTRACER) before the first message.

#include "ntos/types.h"

namespace vexkhost {

constexpr u32 kRequestMagic = 0x31515856;  // "VXQ1"; another number is another language

enum tRequestAnswer : u32 {
  kRequestAccepted = 0,
  // The server hangs up behind all others.
  kRequestOtherUser = 1,       // the caller is neither the server's user nor root
  kRequestTooManyCallers = 2,  // the caller's user has all places that it may have, or the caller,
                               // or too many of its user, withhold memory that was asked for
  kRequestMalformed = 3,     // a message of another size, or with a number or length that is wrong
  kRequestOtherProcess = 4,  // a message that another process sent over the connection
  kRequestMemoryClosed = 5,  // the caller's memory may not be reached
};

struct tRequestGreeting {
  u32 magic;
  u32 answer;  // tRequestAnswer
};

// A request for a dispatcher, as iLib::deliver takes it.
struct tRequestMessage {
  u32 magic;
  u32 nameLength;  // 1 to kRequestNameSize
  u64 request;     // an address in the caller's memory
  char name[128];  // no terminator; what stands behind nameLength is ignored
};
constexpr size_t kRequestNameSize = sizeof(tRequestMessage::name);

struct tRequestReply {
  u32 magic;
  u32 answer;  // tRequestAnswer
  i32 status;  // of iLib::deliver, when it is kRequestAccepted; 0 otherwise
};

static_assert(sizeof(tRequestGreeting) == 8 && sizeof(tRequestReply) == 12);
static_assert(sizeof(tRequestMessage) == 144 && offsetof(tRequestMessage, request) == 8);
static_assert(offsetof(tRequestMessage, name) == 16);

// The longest path of a socket, with its terminator.
constexpr size_t kRequestPathSize = 108;

// Where the server listens and the callers look unless they are told otherwise: oxdiag.socket in
// the folder that XDG_RUNTIME_DIR names, or, when that names none, in /tmp/oxdiag- and the number
// of the user. False when that path is too long.
bool getRequestSocketPath(char (&path)[kRequestPathSize]);

}  // namespace vexkhost
