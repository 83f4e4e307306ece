#include "ntos/time.h"

#include "system.h"

void KeQuerySystemTime(LARGE_INTEGER* time) {
  time->QuadPart = ntosprogram::getSystemTime();
}

LARGE_INTEGER KeQueryPerformanceCounter(LARGE_INTEGER* frequency) {
  if (frequency != nullptr) frequency->QuadPart = ntosprogram::getCounterFrequency();
  LARGE_INTEGER ticks;
  ticks.QuadPart = ntosprogram::getCounter();
  return ticks;
}
