#pragma once

// Dispatchers: what modules serve to user-mode programs under a name.
//
// A module derives a class from iLib::iDispatcher. It makes one object of it at its load, exports
// the object before the module is registered, and withdraws it in the object's destructor. Programs
// send requests to the platform, through a control device on Windows and a local socket on the
// host, and the platform calls the dispatcher that the request names.
//
//     class tEcho : public iLib::iDispatcher {
//      public:
//       tEcho() : iDispatcher("nCOMPONENT://nEcho") {
//         i32 status = 0;
//         iLib::exportDispatcher(*this, status);
//       }
//       ~tEcho() override {
//         i32 status = 0;
//         iLib::unexportDispatcher(*this, status);
//       }
//       void dispatch(u64 request) override;
//     };
//
// Requests reach a dispatcher from the registration of its module (libRegisterModuleWithVEX) to
// its unregistration, so it never serves from half a module. It belongs to the module that is
// registered next after the export. A dispatcher that a module exports after its own registration
// is therefore not served, or served as another module's: export before you register.

#include "compiler/types.h"
#include "vexk/api.h"

class VEX_API iLib {
 public:
  // Slot order: destructor, dispatch.
  class VEX_API iDispatcher {
   public:
    iDispatcher(iDispatcher const&) = delete;
    iDispatcher& operator=(iDispatcher const&) = delete;
    virtual ~iDispatcher();

    // Serves the request at this address of user memory, in the context of the requesting program:
    // vexCopyFromUser and vexCopyToUser reach its memory. PASSIVE_LEVEL, in a critical region; any
    // number of threads at once. A lock that a request has taken it gives back: a thread must not
    // return to its program with one, and a line at the debugger names the one that does. What
    // `request` points to is between the program and the dispatcher.
    virtual void dispatch(u64 request) = 0;

    char const* getName() const { return name; }

   protected:
    // `dispatcherName` is not copied and outlives the object: 1 to kMaxNameLength characters.
    explicit iDispatcher(char const* dispatcherName) : name(dispatcherName) {}

   private:
    friend class tDispatcherTable;

    char const* name;
    iDispatcher* next = nullptr;
    void const* module = nullptr;  // who is registered with it; null until then
    u32 running = 0;               // requests in dispatch
  };

  static constexpr u32 kMaxNameLength = 127;  // characters, without the terminator

  // Makes a dispatcher known, or unknown again. Nothing is allocated. Withdrawing waits until the
  // requests that are running in it have returned; a dispatcher that is not exported is left alone.
  // `status`, left alone on success:
  //   kStatusBadArgument     a name that is null, empty or too long, or exported already
  //   kStatusNotInitialized  the platform layer is not running
  // A negative `status` on entry is kept and nothing is exported; withdrawing happens all the same.
  // PASSIVE_LEVEL, not from within dispatch.
  static void exportDispatcher(iDispatcher& dispatcher, i32& status);
  static void unexportDispatcher(iDispatcher& dispatcher, i32& status);

  // Carries a request to the dispatcher with this name of `length` characters, which need no
  // terminator, and returns when it is served: for those who bring requests from user mode.
  // `status`, left alone on success:
  //   kStatusNoDispatcher    nothing of that name is exported by a registered module
  //   kStatusNotInitialized  the platform layer is not running
  // A negative `status` on entry is kept and nothing is carried. PASSIVE_LEVEL.
  static void deliver(char const* name, size_t length, u64 request, i32& status);
};
