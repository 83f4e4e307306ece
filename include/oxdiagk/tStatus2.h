#pragma once

// A status code, and where it was set.

#include "compiler/types.h"
#include "oxdiagk/api.h"

namespace nQELM100 {
class iObjectReader;
class iObjectWriter;
}  // namespace nQELM100

namespace nOXDIAG100 {

class iStatus2Description;
class tStatus2Implementation;
class tStatus2ModuleList;

// A code (0 success, positive a warning, negative an error) and, when it was set by the macros of
// "oxdiagk/statusMacros.h", a detail: the component, file and line that set it, the call stack at
// that moment and perhaps a description. Operations take one by reference as their last argument:
//
//     void tRack::read(tTextSpan line, tStatus2& status) {
//       if (status.isError()) return;
//       if (line.isEmpty()) OXDIAG_SET_STATUS(status, kStatusLineEmpty);
//     }
//
//     tStatus2 status;
//     rack.read(line, status);
//     if (status.isError()) trace.put(status);
//
// A status without detail is two words and never calls anything. The detail comes from the status
// heap (see tStatus2Heap): a full heap costs the detail, but not an error code. Copies share the
// detail; what setDescription adds to one is seen in all.
//
// Not locked, and neither is the count of those who share a detail: one status, and copies that
// share a detail, belong to one thread at a time. A status without detail may be used at any IRQL;
// one with detail is made, copied and destroyed at IRQL <= APC_LEVEL (a detail dropped above it
// stays allocated until the library stops) and must be gone before the library stops.
class OXDIAG_API tStatus2 {
 public:
  static constexpr u32 kStackTraceLength = 10;    // addresses
  static constexpr u32 kMaxComponentLength = 23;  // characters kept, the last ones of a longer name
  static constexpr u32 kMaxFileNameLength = 100;  // characters kept, the last ones of a longer name

  // Bytes that hold the text of any status whose description has none, with the terminator.
  static constexpr u32 kMaxTextSize = 512;

  // Success, without detail.
  constexpr tStatus2() = default;

  // A plain code, without detail.
  explicit constexpr tStatus2(i32 plainCode) : code(plainCode) {}

  // A copy shares the detail of `other`.
  tStatus2(tStatus2 const& other) : implementation(other.implementation), code(other.code) {
    if (implementation != nullptr) addReference();
  }
  tStatus2& operator=(tStatus2 const& other) {
    if (implementation != nullptr || other.implementation != nullptr) {
      _assign(other);
    } else {
      code = other.code;
    }
    return *this;
  }
  ~tStatus2() {
    if (implementation != nullptr) releaseDetail();
  }

  i32 getCode() const { return code; }
  bool isError() const { return code < 0; }

  // The plain-code interface, for code that knows numbers only: sets the code, whatever it was
  // before. Another code than the present one drops the detail, which told of that one; the same
  // code changes nothing. So a code that went through an older operation keeps its origin:
  //
  //     i32 code = status.getCode();
  //     olderOperation(code);
  //     status.setCode(code);
  void setCode(i32 plainCode) {
    if (implementation != nullptr && plainCode != code) releaseDetail();
    code = plainCode;
  }

  // Attaches a clone of `description`. Returns 1 when it was attached. Returns 0 and attaches none
  // when the code is 0, when there is a description already (the first one stays), or when it could
  // not be cloned or the heap is full. A status without detail gets one, whose file name says that
  // the code came through the plain-code interface; when the heap is full an error code stays and a
  // warning becomes kStatusOutOfMemory.
  u32 setDescription(iStatus2Description const& description);

  bool hasDetail() const { return implementation != nullptr; }

  // The detail; without one empty text, 0, null and ten zeros. The texts and the description belong
  // to the detail and live as long as one status that has it.
  char const* getComponentName() const;
  char const* getFileName() const;
  u32 getLineNumber() const;
  iStatus2Description const* getDescription() const;

  // The return addresses at the time of setting, innermost first; zeros behind the last frame, and
  // throughout when the status was set without stack trace.
  void getStackTrace(u64 (&addresses)[kStackTraceLength]) const;

  // Writes the status as text over several lines into `buffer` of `size` bytes, cut to fit and
  // always terminated; the last byte of the buffer is 0 in any case. kMaxTextSize bytes hold
  // every status whose description has no text. Nothing is written when the buffer is null or the
  // size 0. Any IRQL.
  //
  //     <newline>tStatus2 Contents:
  //             Error Code = -61007
  //             Component Name = slotbus
  //             ...
  void toString(char* buffer, u32 size) const;

  // Writes the status with its detail to a stream, and replaces it by what was written. Nothing
  // happens when `status`, which receives the stream's failures, is negative on entry. IRQL as the
  // stream's, <= APC_LEVEL.
  //
  // Reading takes forms with fewer or more fields, as older and newer versions write them, and
  // always the whole form, whatever can be kept of it:
  //   - Full heap: there is no detail, a code that is no error becomes kStatusOutOfMemory, and
  //     `status` stays as it was.
  //   - A description that cannot be made: the detail is kept without it, and `status` says why:
  //     kStatusOutOfMemory when the heap has room for the detail only, kStatusClassUnknown,
  //     kStatusClassMismatch for an object that is no description.
  //   - When the stream itself fails, this status holds what was read up to there.
  // In the first two cases the next item of the stream can be read, with a clean `status`. Only a
  // reader that cannot pass over such an object (iObjectReader::isPastFailedObject) stays in it;
  // then a full heap is kStatusOutOfMemory in `status` too.
  void writeExternal(nQELM100::iObjectWriter& writer, i32& status) const;
  void readExternal(nQELM100::iObjectReader& reader, i32& status);

  // The same form with a list of modules (see tStatus2ModuleList), which every reader of statuses
  // passes over: the length in front of the form counts the list's characters too, and they follow
  // the flag. Without modules nothing is different.
  void writeExternal(nQELM100::iObjectWriter& writer, tStatus2ModuleList const& modules,
                     i32& status) const;

 private:
  friend class tStatusSetter;

  // Called by the macros. Both drop the present detail, store the code and make a new detail; they
  // return 1 when the detail was made, else 0. They replace any code: that the first error stays is
  // the work of the macros.
  u32 _allocateImplementationObject(i32 newCode, char const* component, char const* file, u32 line,
                                    iStatus2Description const* description);
  u32 _allocateImplementationObjectWithoutStackTrace(i32 newCode, char const* component,
                                                     char const* file, u32 line,
                                                     iStatus2Description const* description);

  // Shares the detail of `other`; returns 1.
  u32 _assign(tStatus2 const& other);

  u32 makeDetail(i32 newCode, char const* component, char const* file, u32 line,
                 iStatus2Description const* description);

  void addReference();
  void releaseDetail();

  tStatus2Implementation* implementation = nullptr;
  i32 code = 0;
};
static_assert(sizeof(tStatus2) == 16, "crosses module borders");

}  // namespace nOXDIAG100
