#pragma once

// A fresh image of the library in this program, as the kernel maps one before DllInitialize.

#include "ntos/types.h"
#include "vexk/moduleInfo.h"

class tImage {
 public:
  // Maps the image; fails the test when an older one is still there.
  tImage();

  // Takes it away; fails the test when it stays.
  ~tImage();
  tImage(tImage const&) = delete;
  tImage& operator=(tImage const&) = delete;

  // The module's exports.
  NTSTATUS initialise(UNICODE_STRING* registryPath = nullptr) const;
  NTSTATUS unload() const;
  tModulePackage* setLegacyWrapperLoadState(u32 state) const;
  tModuleGUID const* setWDMWrapperLoadState(u32 state) const;
  i32 callSSMain(u32 reason) const;
  NTSTATUS startAsDriver() const;

  // See "probe.h".
  int getOutcome() const;
  bool isGone() const;

 private:
  template <class Function>
  Function* find(char const* name) const;

  void* handle;
};
