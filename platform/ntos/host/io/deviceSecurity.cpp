#include "io/deviceSecurity.h"

#include <string.h>
#include <unistd.h>

#include "io/deviceTable.h"
#include "ntoshost/security.h"

namespace ntoshost {
namespace {

constinit thread_local u32 g_user = kOwnUser;

constexpr char kEntryHead[] = "(A;;";
constexpr char kBeforeTrustee[] = ";;;";
constexpr u32 kWord = 2;  // characters of a right and of a trustee

bool skip(char const*& text, char const* expected) {
  size_t const length = strlen(expected);
  if (strncmp(text, expected, length) != 0) return false;
  text += length;
  return true;
}

// The rights of one word; 0 when it is none.
u32 rightsOf(char const* word) {
  if (word[0] != 'G' && word[0] != 'F') return 0;
  switch (word[1]) {
    case 'A':
      return DeviceSecurity::kAll;
    case 'R':
      return DeviceSecurity::kRead;
    case 'W':
      return DeviceSecurity::kWrite;
    case 'X':
      return DeviceSecurity::kExecute;
    default:
      return 0;
  }
}

bool readRights(char const*& text, u32& rights) {
  rights = 0;
  while (*text != ';') {
    u32 const more = *text == 0 ? 0 : rightsOf(text);
    if (more == 0) return false;
    rights |= more;
    text += kWord;
  }
  return rights != 0;
}

bool grant(DeviceSecurity& security, char const*& text, u32 rights) {
  if (skip(text, "SY")) {
    security.system |= rights;
  } else if (skip(text, "BA")) {
    security.administrators |= rights;
  } else if (skip(text, "WD") || skip(text, "BU") || skip(text, "AU")) {
    security.everyone |= rights;
  } else {
    return false;
  }
  return true;
}

bool readEntry(char const*& text, DeviceSecurity& security) {
  u32 rights = 0;
  return skip(text, kEntryHead) && readRights(text, rights) && skip(text, kBeforeTrustee) &&
         grant(security, text, rights) && skip(text, ")");
}

bool read(char const* text, DeviceSecurity& security) {
  security = {};
  security.isSet = true;
  if (!skip(text, "D:")) return false;
  skip(text, "P");
  while (*text != 0) {
    if (!readEntry(text, security)) return false;
  }
  return true;
}

u32 rightsOfCaller(DeviceSecurity const& security) {
  u32 const owner = geteuid();
  u32 const user = g_user == kOwnUser ? owner : g_user;
  u32 rights = security.everyone;
  if (user == 0) rights |= security.system;
  if (user == 0 || user == owner) rights |= security.administrators;
  return rights;
}

}  // namespace

bool mayOpen(DeviceSecurity const& security) {
  constexpr u32 kWanted = DeviceSecurity::kRead | DeviceSecurity::kWrite;
  return !security.isSet || (rightsOfCaller(security) & kWanted) == kWanted;
}

bool setDeviceSecurity(DEVICE_OBJECT* device, char const* descriptor) {
  DeviceSecurity security = {};
  if (descriptor != nullptr && !read(descriptor, security)) return false;
  DevicesLock const lock;
  requireDevice(device, "setDeviceSecurity");
  recordOf(device).security = security;
  return true;
}

void setCallerUser(u32 user) {
  g_user = user;
}

}  // namespace ntoshost
