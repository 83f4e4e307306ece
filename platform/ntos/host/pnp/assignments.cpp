#include "pnp/assignments.h"

#include <pthread.h>
#include <stdlib.h>

#include "ntoshost/pnp.h"

namespace ntoshost {
namespace {

struct Assignment {
  Assignment* next;
  DRIVER_OBJECT* driver;  // null: the device needs none
  wchar_t id[DeviceRecord::kIdCapacity];
};

constinit pthread_mutex_t g_lock = PTHREAD_MUTEX_INITIALIZER;
constinit Assignment* g_assignments = nullptr;

class AssignmentsLock {
 public:
  AssignmentsLock() { pthread_mutex_lock(&g_lock); }
  ~AssignmentsLock() { pthread_mutex_unlock(&g_lock); }
  AssignmentsLock(AssignmentsLock const&) = delete;
  AssignmentsLock& operator=(AssignmentsLock const&) = delete;
};

wchar_t toLower(wchar_t character) {
  return character >= 'A' && character <= 'Z' ? static_cast<wchar_t>(character + 32) : character;
}

bool isSame(wchar_t const* left, wchar_t const* right) {
  while (*left != 0 && toLower(*left) == toLower(*right)) ++left, ++right;
  return toLower(*left) == toLower(*right);
}

Assignment** linkTo(wchar_t const* id) {
  Assignment** link = &g_assignments;
  while (*link != nullptr && !isSame((*link)->id, id)) link = &(*link)->next;
  return link;
}

void drop(Assignment** link) {
  Assignment* const dropped = *link;
  *link = dropped->next;
  free(dropped);
}

bool add(wchar_t const* id, DRIVER_OBJECT* driver) {
  Assignment* const added = static_cast<Assignment*>(calloc(1, sizeof(Assignment)));
  if (added == nullptr) return false;
  for (u32 i = 0; id[i] != 0 && i + 1 < DeviceRecord::kIdCapacity; ++i) added->id[i] = id[i];
  added->driver = driver;
  added->next = g_assignments;
  g_assignments = added;
  return true;
}

// What was assigned to the first of the ids that anything was.
Assignment const* findFirst(wchar_t const* ids) {
  for (wchar_t const* id = ids; *id != 0;) {
    Assignment const* const found = *linkTo(id);
    if (found != nullptr) return found;
    while (*id != 0) ++id;
    ++id;
  }
  return nullptr;
}

}  // namespace

bool assignDriver(wchar_t const* id, DRIVER_OBJECT* driver) {
  AssignmentsLock const lock;
  Assignment** const found = linkTo(id);
  if (*found != nullptr) drop(found);
  return driver == nullptr || add(id, driver);
}

bool assignNullDriver(wchar_t const* id) {
  AssignmentsLock const lock;
  Assignment** const found = linkTo(id);
  if (*found != nullptr) drop(found);
  return add(id, nullptr);
}

DRIVER_OBJECT* findAssigned(wchar_t const* ids) {
  AssignmentsLock const lock;
  Assignment const* const found = findFirst(ids);
  return found == nullptr ? nullptr : found->driver;
}

bool isNullDriverAssigned(wchar_t const* ids) {
  AssignmentsLock const lock;
  Assignment const* const found = findFirst(ids);
  return found != nullptr && found->driver == nullptr;
}

void forgetAssignments(DRIVER_OBJECT* driver) {
  AssignmentsLock const lock;
  for (Assignment** link = &g_assignments; *link != nullptr;) {
    if ((*link)->driver == driver) {
      drop(link);
    } else {
      link = &(*link)->next;
    }
  }
}

}  // namespace ntoshost
