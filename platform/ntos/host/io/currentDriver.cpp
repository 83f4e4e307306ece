#include "io/currentDriver.h"

#include <stdio.h>

namespace ntoshost {
namespace {

constinit thread_local DRIVER_OBJECT* g_current = nullptr;

}  // namespace

DRIVER_OBJECT* currentDriver() {
  return g_current;
}

DriverScope::DriverScope(DRIVER_OBJECT* driver) : m_outer(g_current) {
  g_current = driver;
}

DriverScope::~DriverScope() {
  g_current = m_outer;
}

CurrentDriverText::CurrentDriverText() {
  if (g_current == nullptr) {
    snprintf(text, sizeof(text), "no driver");
  } else {
    snprintf(text, sizeof(text), "the driver %s", DriverText(g_current).text);
  }
}

}  // namespace ntoshost
