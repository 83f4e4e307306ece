#pragma once

#include "oxdiagk/iTraceDestination.h"

// A destination that takes text and does nothing with it: what is left is the cost of the stream.
// It counts the pieces, so that a benchmark can check that its lines arrived.
class tNullDestination : public nOXDIAG100::iTraceDestination {
 public:
  ~tNullDestination() override;

  iTraceDestination& put(char const* text) override;
  iTraceDestination& put(char const* text, unsigned int length) override;
  void configure(int argc, char** const argv) override;
  char* inquire(char* buffer, unsigned int size, unsigned int* required) override;
  u32 open() override;
  void close() override;
  char const* getDescription() const override;

  u64 getPieces() const { return pieces; }

 private:
  u64 pieces = 0;
};
