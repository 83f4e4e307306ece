#include "windows/tImageHeaders.h"

#include "common/moduleName.h"

namespace {

constexpr u32 kPageSize = 0x1000;
constexpr u16 kImageMark = 0x5A4D;      // "MZ"
constexpr u32 kSignature = 0x00004550;  // "PE\0\0"
constexpr u16 kOptionalMark = 0x20B;    // of a 64-bit image

// Offsets from the start of the image.
constexpr u32 kSignatureOffset = 0x3C;

// Offsets from the signature.
constexpr u32 kSectionCountOffset = 6;
constexpr u32 kOptionalSizeOffset = 20;
constexpr u32 kOptionalOffset = 24;

// Offsets in the optional header.
constexpr u32 kImageSizeOffset = 56;
constexpr u32 kDirectoryCountOffset = 108;
constexpr u32 kDirectoriesOffset = 112;
constexpr u32 kDirectorySize = 8;

constexpr u32 kExportDirectory = 0;
constexpr u32 kDebugDirectory = 6;

struct tSection {
  char name[8];
  u32 size;
  u32 place;
  u32 unused[5];
  u32 flags;
};
static_assert(sizeof(tSection) == 40);

constexpr u32 kSectionDiscardable = 0x02000000;
constexpr u32 kSectionReadable = 0x40000000;

struct tDebugEntry {
  u32 unused[3];
  u32 type;
  u32 size;
  u32 place;
  u32 filePlace;
};
static_assert(sizeof(tDebugEntry) == 28);

constexpr u32 kCodeView = 2;
constexpr u32 kMostDebugEntries = 16;

// In front of the PDB's path.
struct tPdbRecord {
  u32 mark;
  u8 identity[20];
};
static_assert(sizeof(tPdbRecord) == 24);

constexpr u32 kPdbMark = 0x53445352;  // "RSDS"
constexpr u32 kMostPathBytes = 260;

constexpr u32 kExportNameOffset = 12;

u32 least(u32 left, u32 right) {
  return left < right ? left : right;
}

u32 lengthOf(char const* text, u32 most) {
  u32 length = 0;
  while (length < most && text[length] != '\0') ++length;
  return length;
}

u32 withoutPdbEnding(char const* path, u32 length) {
  constexpr u32 kEnding = 4;
  if (length <= kEnding || path[length - kEnding] != '.') return length;
  return (path[length - 1] | 0x20) == 'b' ? length - kEnding : length;
}

}  // namespace

tImageHeaders::tImageHeaders(void const* imageBase, tIsPresent& isPresentCall)
    : base(static_cast<u8 const*>(imageBase)), isPresent(isPresentCall) {
  if (isPresent(base)) readHeaders();
}

// All headers have to lie in the first page, which an image has in memory as long as it is there.
void tImageHeaders::readHeaders() {
  u32 const signature = at<u32>(kSignatureOffset);
  constexpr u32 kMostBefore = kPageSize - kOptionalOffset - kDirectoriesOffset;
  if (at<u16>(0) != kImageMark || signature > kMostBefore) return;
  if (at<u32>(signature) != kSignature) return;
  optionalHeader = signature + kOptionalOffset;
  if (at<u16>(optionalHeader) != kOptionalMark) return;
  sectionTable = optionalHeader + at<u16>(signature + kOptionalSizeOffset);
  sectionCount = at<u16>(signature + kSectionCountOffset);
  u32 const room = kPageSize - least(kPageSize, sectionTable);
  sectionCount = least(sectionCount, room / u32{sizeof(tSection)});
  u32 const directoryRoom = kPageSize - optionalHeader - kDirectoriesOffset;
  directoryCount =
      least(at<u32>(optionalHeader + kDirectoryCountOffset), directoryRoom / kDirectorySize);
  size = at<u32>(optionalHeader + kImageSizeOffset);
}

void tImageHeaders::describe(tLoadedModule& module) const {
  module.size = size;
  describePdb(module);
  nameByExports(module);
}

void tImageHeaders::describePdb(tLoadedModule& module) const {
  tDirectory const debug = directory(kDebugDirectory);
  u32 const count = least(debug.size / u32{sizeof(tDebugEntry)}, kMostDebugEntries);
  if (bytesAt(debug.place, count * u32{sizeof(tDebugEntry)}) == nullptr) return;
  for (u32 i = 0; i != count && module.identitySize == 0; ++i) {
    auto const entry = at<tDebugEntry>(debug.place + i * u32{sizeof(tDebugEntry)});
    if (entry.type == kCodeView) describeRecord(entry.place, entry.size, module);
  }
}

void tImageHeaders::describeRecord(u32 place, u32 recordSize, tLoadedModule& module) const {
  constexpr u32 kRecord = sizeof(tPdbRecord);
  u32 const taken = least(recordSize, kRecord + kMostPathBytes);
  if (taken < kRecord || bytesAt(place, taken) == nullptr) return;
  auto const record = at<tPdbRecord>(place);
  if (record.mark != kPdbMark) return;
  module.identityKind = kModulePdbIdentity;
  module.identitySize = sizeof record.identity;
  __builtin_memcpy(module.identity, record.identity, sizeof record.identity);
  char const* const path = reinterpret_cast<char const*>(base) + place + kRecord;
  setModuleName(module, path, withoutPdbEnding(path, lengthOf(path, taken - kRecord)));
}

void tImageHeaders::nameByExports(tLoadedModule& module) const {
  tDirectory const exports = directory(kExportDirectory);
  if (exports.size < kExportNameOffset + sizeof(u32)) return;
  if (bytesAt(exports.place, kExportNameOffset + sizeof(u32)) == nullptr) return;
  u32 const place = at<u32>(exports.place + kExportNameOffset);
  u32 length = 0;
  while (length < kMostPathBytes && bytesAt(place, length + 1) != nullptr &&
         base[place + length] != '\0') {
    ++length;
  }
  if (length != 0) setModuleName(module, reinterpret_cast<char const*>(base) + place, length);
}

tImageHeaders::tDirectory tImageHeaders::directory(u32 index) const {
  if (index >= directoryCount) return {0, 0};
  return at<tDirectory>(optionalHeader + kDirectoriesOffset + index * kDirectorySize);
}

// Null unless all the bytes may be read.
u8 const* tImageHeaders::bytesAt(u32 place, u32 count) const {
  if (count == 0 || place > size || count > size - place) return nullptr;
  if (!isInKeptSection(place, count)) return nullptr;
  u32 const last = place + count - 1;
  // Wider than a place: behind the last page of 4 GiB there is no other.
  for (u64 page = place; page < last; page = (page | (kPageSize - 1)) + 1) {
    if (!isPresent(base + page)) return nullptr;
  }
  return isPresent(base + last) ? base + place : nullptr;
}

bool tImageHeaders::isInKeptSection(u32 place, u32 count) const {
  for (u32 i = 0; i != sectionCount; ++i) {
    auto const section = at<tSection>(sectionTable + i * u32{sizeof(tSection)});
    bool const isKept =
        (section.flags & kSectionReadable) != 0 && (section.flags & kSectionDiscardable) == 0;
    if (isKept && place >= section.place && place - section.place <= section.size &&
        count <= section.size - (place - section.place)) {
      return true;
    }
  }
  return false;
}

template <class tValue>
tValue tImageHeaders::at(u32 place) const {
  tValue value;
  __builtin_memcpy(&value, base + place, sizeof value);
  return value;
}
