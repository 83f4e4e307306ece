#include "tImage.h"

#include <dlfcn.h>
#include <gtest/gtest.h>

namespace {

bool isMapped() {
  void* const known = dlopen(OXDIAG_IMAGE, RTLD_NOW | RTLD_NOLOAD);
  if (known != nullptr) dlclose(known);
  return known != nullptr;
}

}  // namespace

tImage::tImage() {
  EXPECT_FALSE(isMapped());
  handle = dlopen(OXDIAG_IMAGE, RTLD_NOW | RTLD_LOCAL);
  if (handle == nullptr) ADD_FAILURE() << dlerror();
}

tImage::~tImage() {
  if (handle != nullptr) dlclose(handle);
  EXPECT_FALSE(isMapped());
}

template <class Function>
Function* tImage::find(char const* name) const {
  return reinterpret_cast<Function*>(dlsym(handle, name));
}

NTSTATUS tImage::initialise(UNICODE_STRING* registryPath) const {
  return find<NTSTATUS(UNICODE_STRING*)>("DllInitialize")(registryPath);
}

NTSTATUS tImage::unload() const {
  return find<NTSTATUS()>("DllUnload")();
}

tModulePackage* tImage::setLegacyWrapperLoadState(u32 state) const {
  return find<tModulePackage*(u32)>("pkgSetLegacyWrapperLoadState")(state);
}

tModuleGUID const* tImage::setWDMWrapperLoadState(u32 state) const {
  return find<tModuleGUID const*(u32)>("pkgSetWDMWrapperLoadStateAndGetGUID")(state);
}

i32 tImage::callSSMain(u32 reason) const {
  return find<i32(u32)>("pkgWDMWrapperCallSSMain")(reason);
}

int tImage::getOutcome() const {
  return find<int()>("probeOutcome")();
}

bool tImage::isGone() const {
  return find<bool()>("probeIsGone")();
}

NTSTATUS tImage::startAsDriver() const {
  return find<NTSTATUS()>("oxdiagkImageEntry")();
}
