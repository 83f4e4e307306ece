#pragma once

#include "ntos/types.h"

namespace ntoshost {

// A drive letter and the folder it stands for.
struct Drive {
  int folder = -1;  // a descriptor, or -1: no such drive
  bool isLimited = false;
  u64 room = 0;  // bytes that can still be written to a limited drive
};

class DriveMap {
 public:
  // Takes the descriptor over, and closes the one before; -1 unmounts.
  void mount(char letter, int folder);

  // Null when the character is no letter; the drive need not be mounted.
  Drive* find(u32 character);

 private:
  static constexpr u32 kLetters = 26;

  Drive m_drives[kLetters];
};

}  // namespace ntoshost
