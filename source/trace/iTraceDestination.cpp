#include "oxdiagk/iTraceDestination.h"

#include "config/options/tInquiryText.h"

namespace nOXDIAG100 {

iTraceDestination::~iTraceDestination() = default;

void iTraceDestination::configure(int, char** const) {
}

u32 iTraceDestination::open() {
  return 1;
}

void iTraceDestination::close() {
}

char* iTraceDestination::inquireText(char const* settings, char* buffer, unsigned int size,
                                     unsigned int* needed) {
  return tInquiryText(buffer, size).append(settings).finish(needed);
}

}  // namespace nOXDIAG100
