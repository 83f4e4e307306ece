#pragma once

// A loaded kernel DLL, found by the address of something in it.

#include "ntos/types.h"

class tModuleImage {
 public:
  // `inside` is an address in a section of the module, such as that of an imported function.
  explicit tModuleImage(void const* inside);

  void const* base() const { return image; }

  // The address of the export `name`, or null when the module has none of that name.
  void* findExport(char const* name) const;

  // The place where the module keeps the address of what it imports under that name, or null when
  // it imports nothing of the name.
  void** findImport(char const* name) const;

  // Where the kernel enters a file that is started as a driver.
  void* findEntry() const;

  // What the module says about its guards, or null when it says nothing.
  void const* findLoadConfiguration() const;

 private:
  template <class T>
  T const& at(u32 offset) const {
    return *reinterpret_cast<T const*>(image + offset);
  }

  u8 const* image;
};
