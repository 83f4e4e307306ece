#pragma once

#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <utility>

#include "oxdiagreport/savedModules.h"

// By what the files of a folder tell that they are of one build. A file is read once, however many
// modules it may be of: a saved status can name any number of them.
class tFileMarks {
 public:
  // Whether the file begins as an image, PE or ELF.
  bool isModule(std::filesystem::path const& file);

  // Whether the image holds the identity of `module`, all of it.
  bool isOfModule(std::filesystem::path const& image, tSavedModule const& module);

  // Whether the PDB holds the GUID, to be asked for those of images in the folder.
  bool isOfPdb(std::filesystem::path const& pdb, std::string const& guid);

 private:
  // Of an image that was looked at: what stands where an identity may stand.
  struct tImage {
    bool isModule = false;
    bool isRead = false;
    std::set<std::string> identities;
  };

  tImage& imageOf(std::filesystem::path const& file);

  std::map<std::filesystem::path, tImage> images;
  std::map<std::pair<std::filesystem::path, std::string>, bool> pdbs;
};
