#include "oxdiagreport/tSymbolFolder.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>

#include "vexk/loadedModule.h"

namespace {

constexpr size_t kMostFiles = 100'000;
constexpr size_t kChunk = size_t{1} << 20;

std::string inSmallLetters(std::string text) {
  for (char& character : text) {
    character = static_cast<char>(std::tolower(static_cast<unsigned char>(character)));
  }
  return text;
}

std::string withoutEnding(std::string const& name) {
  return inSmallLetters(std::filesystem::path(name).stem().string());
}

// How the module's own file holds its identity.
std::string markOf(tSavedModule const& module) {
  if (module.identityKind == kModulePdbIdentity) return "RSDS" + module.identity;
  std::string const size = {static_cast<char>(module.identity.size()), '\0', '\0', '\0'};
  return size + std::string("\3\0\0\0GNU\0", 8) + module.identity;
}

bool isModule(std::string_view start) {
  return start.starts_with("MZ") || start.starts_with(
                                        "\x7F"
                                        "ELF");
}

bool isModuleWith(std::string const& name, std::string const& mark) {
  std::ifstream file(name, std::ios::binary);
  std::string kept;
  std::string chunk(kChunk, '\0');
  for (bool isFirst = true; file; isFirst = false) {
    file.read(chunk.data(), static_cast<std::streamsize>(chunk.size()));
    kept.append(chunk, 0, static_cast<size_t>(file.gcount()));
    if (isFirst && !isModule(kept)) return false;
    if (kept.find(mark) != std::string::npos) return true;
    kept.erase(0, kept.size() - std::min(kept.size(), mark.size()));
  }
  return false;
}

bool hasEnding(std::string const& name, char const* ending) {
  return std::filesystem::path(name).extension() == ending;
}

}  // namespace

bool tSymbolFolder::open(std::string const& folder, std::string& problem) {
  namespace fs = std::filesystem;
  std::error_code error;
  fs::recursive_directory_iterator place(folder, fs::directory_options::skip_permission_denied,
                                         error);
  while (!error && place != fs::recursive_directory_iterator()) {
    std::error_code unknown;
    std::string const name = place->path().filename().string();
    if (place->is_regular_file(unknown)) files.emplace(withoutEnding(name), place->path().string());
    if (files.size() > kMostFiles) break;
    place.increment(error);
  }
  if (error) problem = "cannot read the folder '" + folder + "': " + error.message();
  if (files.size() > kMostFiles) problem = "there are too many files in '" + folder + "'";
  return problem.empty();
}

std::string tSymbolFolder::find(tSavedModule const& module, std::string& problem) const {
  if (module.identity.empty()) problem = "no identity was saved";
  if (!problem.empty()) return "";
  std::string found;
  // The name of a module may lack an ending, or have a dot in it that begins none.
  for (std::string const& stem : {withoutEnding(module.name), inSmallLetters(module.name)}) {
    auto const [first, last] = files.equal_range(stem);
    for (auto file = first; file != last; ++file) {
      problem = "the file in the folder is of another build";
      if (!isModuleWith(file->second, markOf(module))) continue;
      if (found.empty() || hasEnding(file->second, ".debug")) found = file->second;
    }
  }
  if (problem.empty()) problem = "no such file in the folder";
  if (!found.empty()) problem.clear();
  return found;
}
