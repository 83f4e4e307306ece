#pragma once

#include <string>

#include "oxdiagk/iTraceDestination.h"
#include "oxdiagk/tTrace.h"

// A destination that keeps a hash (FNV-1a of 64 bits) of every piece it gets: how it was handed
// over, its length and its bytes. Every few hundred pieces it traces from its own put, also within
// such a put.
class tHashedPieces : public nOXDIAG100::iTraceDestination {
 public:
  u64 getHash() const { return hash; }
  u64 getPieces() const { return pieces; }

  // The stream to trace into from a put; null for none.
  void traceInto(nOXDIAG100::tTrace* stream) { answered = stream; }

  // What else has to stay the same.
  void add(u64 number);
  void add(std::string const& text);

  nOXDIAG100::iTraceDestination& put(char const* text) override;
  nOXDIAG100::iTraceDestination& put(char const* text, unsigned int length) override;
  void configure(int argc, char** const argv) override;
  char* inquire(char* buffer, unsigned int size, unsigned int* required) override;
  u32 open() override { return 1; }
  void close() override {}
  char const* getDescription() const override { return "hashed pieces"; }

 protected:
  // A piece as it is hashed.
  virtual std::string normalise(std::string const& piece) { return piece; }

 private:
  static constexpr u64 kOffset = 0xCBF29CE484222325;
  static constexpr u64 kPrime = 0x100000001B3;

  void addByte(u8 byte) { hash = (hash ^ byte) * kPrime; }
  void take(u8 form, std::string const& piece);
  void answer(nOXDIAG100::tTrace& trace) const;

  u64 hash = kOffset;
  u64 pieces = 0;
  u32 openAnswers = 0;
  nOXDIAG100::tTrace* answered = nullptr;
};
