#pragma once

// A tMemBlockReferenceBase that knows what lies in the block. T is a type without constructor or
// destructor: the block is raw memory, not initialised.
//
//     tMemBlockReferenceTemplate<char> text;
//     text.allocate(256, kMemScratch, status);
//     if (status >= 0) text.get()[0] = '\0';

#include "compiler/compiler.h"
#include "vexk/tMemBlockReferenceBase.h"

template <class T>
class tMemBlockReferenceTemplate : public tMemBlockReferenceBase {
  static_assert(nCompiler::kIsTrivial<T>, "a block holds raw memory");

 public:
  // The block as T; null when there is none.
  T* get() const { return static_cast<T*>(getAddress()); }
};
