#include "io/currentDriver.h"

#include <stdio.h>

namespace ntoshost {
namespace {

// The driver is kept beside its scope: a thread that ends within a driver has no scopes any more.
constinit thread_local DRIVER_OBJECT* g_current = nullptr;
constinit thread_local DriverScope const* g_innermost = nullptr;

}  // namespace

DRIVER_OBJECT* currentDriver() {
  return g_current;
}

bool isWithinDriver(DRIVER_OBJECT const* driver) {
  DriverScope const* scope = g_innermost;
  while (scope != nullptr && scope->m_driver != driver) scope = scope->m_outer;
  return scope != nullptr;
}

DriverScope::DriverScope(DRIVER_OBJECT* driver) : m_driver(driver), m_outer(g_innermost) {
  g_current = driver;
  g_innermost = this;
}

DriverScope::~DriverScope() {
  g_current = m_outer == nullptr ? nullptr : m_outer->m_driver;
  g_innermost = m_outer;
}

CurrentDriverText::CurrentDriverText() {
  if (g_current == nullptr) {
    snprintf(text, sizeof(text), "no driver");
  } else {
    snprintf(text, sizeof(text), "the driver %s", DriverText(g_current).text);
  }
}

}  // namespace ntoshost
