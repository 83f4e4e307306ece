#include "io/accessList.h"

#include <string.h>

#include "ntos/file.h"

namespace ntoshost {
namespace {

constexpr u8 kInheritOnly = 0x8;  // of an entry's flags: it is not for the object itself
constexpr u32 kMostNumbers = 2;   // of the identifiers that are known here

// Up to the identifier's numbers.
struct EntryHead {
  ACE_HEADER header;
  ACCESS_MASK access;
  u8 revision;
  u8 count;
  u8 authority[6];
};
static_assert(sizeof(EntryHead) == 16);

struct KnownIdentifier {
  u8 authority;
  u8 count;
  u32 numbers[kMostNumbers];
  u32 DeviceSecurity::*who;
};

constexpr KnownIdentifier kKnown[] = {
    {5, 1, {18}, &DeviceSecurity::system},
    {5, 2, {32, 544}, &DeviceSecurity::administrators},
    {5, 2, {32, 545}, &DeviceSecurity::everyone},  // users
    {5, 1, {11}, &DeviceSecurity::everyone},       // authenticated users
    {1, 1, {0}, &DeviceSecurity::everyone},
};

struct KnownRights {
  ACCESS_MASK access;  // all of these bits
  u32 rights;
};

constexpr KnownRights kRights[] = {
    {GENERIC_ALL, DeviceSecurity::kAll},     {GENERIC_READ, DeviceSecurity::kRead},
    {GENERIC_WRITE, DeviceSecurity::kWrite}, {0x20000000, DeviceSecurity::kExecute},
    {0x120089, DeviceSecurity::kRead},       {0x120116, DeviceSecurity::kWrite},
    {0x1200A0, DeviceSecurity::kExecute},
};

u32 rightsOf(ACCESS_MASK access) {
  u32 rights = 0;
  for (KnownRights const& known : kRights) {
    if ((access & known.access) == known.access) rights |= known.rights;
  }
  return rights;
}

bool isSame(KnownIdentifier const& known, EntryHead const& entry, u8 const* numbers) {
  u8 const authority[6] = {0, 0, 0, 0, 0, known.authority};
  return entry.count == known.count && memcmp(entry.authority, authority, sizeof(authority)) == 0 &&
         memcmp(numbers, known.numbers, known.count * sizeof(u32)) == 0;
}

void grant(DeviceSecurity& security, EntryHead const& entry, u8 const* numbers) {
  if ((entry.header.AceFlags & kInheritOnly) != 0) return;
  for (KnownIdentifier const& known : kKnown) {
    if (isSame(known, entry, numbers)) security.*known.who |= rightsOf(entry.access);
  }
}

// The entry's size; 0 when it is none that is known, or is not whole in so many bytes.
size_t readEntry(u8 const* bytes, size_t left, DeviceSecurity& security) {
  EntryHead entry;
  if (left < sizeof(entry)) return 0;
  memcpy(&entry, bytes, sizeof(entry));
  size_t const size = entry.header.AceSize;
  bool const isWhole = size <= left && size >= sizeof(entry) + entry.count * sizeof(u32);
  if (!isWhole || entry.header.AceType != ACCESS_ALLOWED_ACE_TYPE || entry.revision != 1) return 0;
  grant(security, entry, bytes + sizeof(entry));
  return size;
}

}  // namespace

bool readAccessList(SECURITY_DESCRIPTOR_RELATIVE const& descriptor, DeviceSecurity& security) {
  security = {};
  security.isSet = true;
  u8 const* bytes = reinterpret_cast<u8 const*>(&descriptor) + descriptor.Dacl;
  ACL list;
  memcpy(&list, bytes, sizeof(list));
  if (list.AclRevision != ACL_REVISION || list.AclSize < sizeof(list)) return false;
  bytes += sizeof(list);
  size_t left = list.AclSize - sizeof(list);
  for (u32 index = 0; index < list.AceCount; ++index) {
    size_t const size = readEntry(bytes, left, security);
    if (size == 0) return false;
    bytes += size;
    left -= size;
  }
  return true;
}

}  // namespace ntoshost
