#include "file/driveMap.h"

#include <unistd.h>

namespace ntoshost {

void DriveMap::mount(char letter, int folder) {
  Drive& drive = *find(static_cast<u8>(letter));
  if (drive.folder >= 0) close(drive.folder);
  drive = Drive{};
  drive.folder = folder;
}

Drive* DriveMap::find(u32 character) {
  u32 const index = (character | 0x20) - 'a';
  return character < 0x80 && index < kLetters ? &m_drives[index] : nullptr;
}

}  // namespace ntoshost
