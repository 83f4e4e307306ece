#include "tModuleImage.h"

namespace {

// Offsets in a 64-bit image, from its start or from its "PE\0\0" signature.
constexpr u32 kSignatureOffset = 0x3C;
constexpr u32 kEntryOffset = 0x28;
constexpr u32 kExportDirectoryOffset = 0x88;
constexpr u32 kImportDirectoryOffset = 0x90;
constexpr u32 kLoadConfigurationOffset = 0xD8;

constexpr u64 kPageSize = 0x1000;
constexpr u16 kImageMark = 0x5A4D;  // "MZ"

struct tExportDirectory {
  u32 unused[5];
  u32 functionCount;
  u32 nameCount;
  u32 functions;  // the rest: offsets from the start of the image
  u32 names;
  u32 nameOrdinals;
};

// One module that is imported from; the last has no name.
struct tImportDescriptor {
  u32 lookups;  // the rest: offsets from the start of the image
  u32 unused[2];
  u32 name;
  u32 addresses;
};

constexpr u32 kHintSize = 2;  // before the name of an import

u8 const* startOfImage(void const* inside) {
  u64 page = reinterpret_cast<u64>(inside) & ~(kPageSize - 1);
  while (*reinterpret_cast<u16 const*>(page) != kImageMark) page -= kPageSize;
  return reinterpret_cast<u8 const*>(page);
}

bool isSameName(char const* a, char const* b) {
  while (*a == *b && *a != '\0') ++a, ++b;
  return *a == *b;
}

}  // namespace

tModuleImage::tModuleImage(void const* inside) : image(startOfImage(inside)) {
}

void* tModuleImage::findExport(char const* name) const {
  u32 const header = at<u32>(kSignatureOffset);
  auto const& directory = at<tExportDirectory>(at<u32>(header + kExportDirectoryOffset));
  for (u32 i = 0; i < directory.nameCount; ++i) {
    if (!isSameName(&at<char>(at<u32>(directory.names + 4 * i)), name)) continue;
    u32 const ordinal = at<u16>(directory.nameOrdinals + 2 * i);
    return const_cast<u8*>(image) + at<u32>(directory.functions + 4 * ordinal);
  }
  return nullptr;
}

void** tModuleImage::findImport(char const* name) const {
  u32 const header = at<u32>(kSignatureOffset);
  u32 descriptor = at<u32>(header + kImportDirectoryOffset);
  if (descriptor == 0) return nullptr;
  for (; at<tImportDescriptor>(descriptor).name != 0; descriptor += sizeof(tImportDescriptor)) {
    auto const& from = at<tImportDescriptor>(descriptor);
    for (u32 place = 0; at<u64>(from.lookups + place) != 0; place += sizeof(u64)) {
      u32 const hint = static_cast<u32>(at<u64>(from.lookups + place));
      if (!isSameName(&at<char>(hint + kHintSize), name)) continue;
      return reinterpret_cast<void**>(const_cast<u8*>(image) + from.addresses + place);
    }
  }
  return nullptr;
}

void* tModuleImage::findEntry() const {
  return const_cast<u8*>(image) + at<u32>(at<u32>(kSignatureOffset) + kEntryOffset);
}

void const* tModuleImage::findLoadConfiguration() const {
  u32 const offset = at<u32>(at<u32>(kSignatureOffset) + kLoadConfigurationOffset);
  return offset == 0 ? nullptr : image + offset;
}
