#include "tModuleImage.h"

namespace {

// Offsets in a 64-bit image, from its start or from its "PE\0\0" signature.
constexpr u32 kSignatureOffset = 0x3C;
constexpr u32 kExportDirectoryOffset = 0x88;

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
