#pragma once

// A fresh folder that is a drive while the object lives.

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "ntoshost/files.h"

class tDriveFolder {
 public:
  explicit tDriveFolder(char driveLetter = 'C') : letter(driveLetter) {
    std::string name = (std::filesystem::temp_directory_path() / "ntos-drive-XXXXXX").string();
    EXPECT_NE(mkdtemp(name.data()), nullptr);
    folder = name;
    EXPECT_TRUE(ntoshost::mountDrive(letter, folder.c_str()));
  }
  ~tDriveFolder() {
    ntoshost::unmountDrive(letter);
    std::filesystem::remove_all(folder);
  }
  tDriveFolder(tDriveFolder const&) = delete;
  tDriveFolder& operator=(tDriveFolder const&) = delete;

  std::filesystem::path pathOf(std::string const& name) const { return folder / name; }

  bool has(std::string const& name) const { return std::filesystem::exists(pathOf(name)); }

  bool isEmpty() const { return std::filesystem::is_empty(folder); }

  void write(std::string const& name, std::string const& text) const {
    std::ofstream(pathOf(name), std::ios::binary) << text;
  }

  std::string read(std::string const& name) const {
    std::ifstream file(pathOf(name), std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), {});
  }

  void makeFolder(std::string const& name) const {
    std::filesystem::create_directories(pathOf(name));
  }

 private:
  char letter;
  std::filesystem::path folder;
};
