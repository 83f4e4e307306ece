#pragma once

#include "vexk/loadedModule.h"

// The headers of a 64-bit PE image in memory, which may be anything: nothing is read outside of the
// image, of its present pages, and of the sections that stay in memory. Any IRQL at which
// `isPresent` may be called.
class tImageHeaders {
 public:
  // Whether the byte there can be read.
  using tIsPresent = bool(void const* address);

  tImageHeaders(void const* imageBase, tIsPresent& isPresentCall);

  // Whether there are headers of such an image. Without them nothing else is known.
  bool areGood() const { return size != 0; }

  // Stores size, name and identity, as far as the image tells them.
  void describe(tLoadedModule& module) const;

 private:
  struct tDirectory {
    u32 place;  // from the base; 0 when there is none
    u32 size;
  };

  template <class tValue>
  tValue at(u32 place) const;
  u8 const* bytesAt(u32 place, u32 count) const;
  bool isInKeptSection(u32 place, u32 count) const;
  tDirectory directory(u32 index) const;
  void readHeaders();
  void describePdb(tLoadedModule& module) const;
  void describeRecord(u32 place, u32 recordSize, tLoadedModule& module) const;
  void nameByExports(tLoadedModule& module) const;

  u8 const* base;
  tIsPresent& isPresent;
  u32 optionalHeader = 0;  // from the base
  u32 sectionTable = 0;
  u32 sectionCount = 0;
  u32 directoryCount = 0;
  u32 size = 0;
};
