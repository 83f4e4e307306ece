#pragma once

#include "ntos/types.h"
#include "oxdiagk/tStatus2.h"

namespace nOXDIAG100 {

// The detail of a status: where it was set. One object of 240 bytes in the status heap, shared by
// its statuses. Modules on Windows rely on the order of the virtual operations (no run of overloads
// among them) and on the size.
class tStatus2Implementation final {
 public:
  static void* operator new(size_t size, i32& status) noexcept;
  static void operator delete(void* block) noexcept;

  // Names are cut to their last characters; null counts as empty. `description`, null for none, is
  // cloned; without a clone there is no description. The stack trace is all zero.
  tStatus2Implementation(i32 statusCode, char const* component, char const* file, u32 lineNumber,
                         iStatus2Description const* statusDescription);
  tStatus2Implementation(tStatus2Implementation const&) = delete;
  tStatus2Implementation& operator=(tStatus2Implementation const&) = delete;

  virtual ~tStatus2Implementation();

  // The count starts at 1; the release that brings it to 0 destroys the object.
  virtual void addReference();
  virtual void release();

  virtual char const* getComponentName() const;
  virtual char const* getFileName() const;
  virtual u32 getLineNumber() const;
  virtual u64* getStackTraceAddress();
  virtual iStatus2Description const* getDescription() const;

  // Stores a clone in place of the present description. Returns 1, or 0 with that one kept when
  // there is no clone.
  virtual u32 setDescription(iStatus2Description const& newDescription);

  virtual i32 getCode() const;

  // As tStatus2. Reading replaces everything but the reference count; what the stream did not give
  // is empty or zero.
  virtual void writeExternal(nQELM100::iObjectWriter& writer, i32& status) const;
  virtual void readExternal(nQELM100::iObjectReader& reader, i32& status);

  // The same for a clean `status`. What is wrong with the description comes out in its own status:
  // the rest is read, unless the reader is lost in the description.
  void readForm(nQELM100::iObjectReader& reader, i32& descriptionStatus, i32& status);

  // Copies the stack trace to tStatus2::kStackTraceLength addresses.
  virtual void getStackTrace(u64* addresses) const;

 private:
  static constexpr u32 kComponentSize = tStatus2::kMaxComponentLength + 1;
  static constexpr u32 kFileNameSize = tStatus2::kMaxFileNameLength + 1;

  static void checkLayout();

  bool readDescription(nQELM100::iObjectReader& reader, i32& status);
  void readFixedPart(nQELM100::iObjectReader& reader, u32& hasDescription, u32& hasHighHalves,
                     i32& status);

  u32 referenceCount = 1;
  char componentName[kComponentSize] = {};
  char fileName[kFileNameSize] = {};
  u32 line;
  u64 stackTrace[tStatus2::kStackTraceLength] = {};
  iStatus2Description* description = nullptr;
  i32 code;
};

}  // namespace nOXDIAG100
