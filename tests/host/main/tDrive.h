#pragma once

#include <cstdlib>
#include <filesystem>
#include <string>

#include "ntoshost/files.h"

// A fresh folder that is drive C; it is removed at the end.
class tDrive {
 public:
  tDrive() {
    std::string name = (std::filesystem::temp_directory_path() / "conformance-XXXXXX").string();
    if (mkdtemp(name.data()) != nullptr) folder = name;
  }
  ~tDrive() {
    std::error_code ignored;
    if (!folder.empty()) std::filesystem::remove_all(folder, ignored);
  }
  tDrive(tDrive const&) = delete;
  tDrive& operator=(tDrive const&) = delete;

  bool mount() const { return ntoshost::mountDrive('C', folder.c_str()); }

  void empty() const {
    for (auto const& entry : std::filesystem::directory_iterator(folder)) {
      std::filesystem::remove_all(entry);
    }
  }

 private:
  std::filesystem::path folder;
};
