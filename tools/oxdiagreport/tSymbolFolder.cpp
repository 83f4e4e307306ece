#include "oxdiagreport/tSymbolFolder.h"

#include <algorithm>
#include <cctype>

#include "vexk/loadedModule.h"

namespace fs = std::filesystem;

namespace {

constexpr size_t kMostFiles = 100'000;
constexpr u32 kMostDepth = 16;  // of folders in one another
constexpr size_t kGuidSize = 16;
constexpr size_t kPdbIdentitySize = kGuidSize + sizeof(u32);
constexpr char kOtherBuild[] = "the file in the folder is of another build";

std::string inSmallLetters(std::string text) {
  for (char& character : text) {
    character = static_cast<char>(std::tolower(static_cast<unsigned char>(character)));
  }
  return text;
}

// In UTF-8, on Linux the bytes as they are. A name that is no Unicode has no text on Windows.
std::string textOf(fs::path const& path) {
  try {
    std::u8string const text = path.u8string();
    return std::string(text.begin(), text.end());
  } catch (fs::filesystem_error const&) {
    return "";
  }
}

// The name of a module may be a stranger's bytes, and no path of Windows. A dot in front begins no
// ending.
std::string withoutEnding(std::string const& name) {
  size_t const dot = name.rfind('.');
  return inSmallLetters(dot == 0 ? name : name.substr(0, dot));
}

// What is saved of a long name.
std::string endOf(std::string const& name) {
  size_t const kept = std::min<size_t>(name.size(), tLoadedModule::kMaxNameLength);
  return name.substr(name.size() - kept);
}

std::string nameOf(fs::path const& path) {
  return textOf(path.filename());
}

// Part of an identity would be that of more than one build.
bool isIdentified(tSavedModule const& module) {
  if (module.identityKind == kModuleBuildId) return !module.identity.empty();
  return module.identityKind == kModulePdbIdentity && module.identity.size() == kPdbIdentitySize;
}

bool hasEnding(fs::path const& name, char const* ending) {
  return inSmallLetters(textOf(name.extension())) == ending;
}

}  // namespace

bool tSymbolFolder::open(std::string const& folder, std::string& problem) {
  std::error_code error;
  add(std::u8string(folder.begin(), folder.end()), kMostDepth, error);
  if (error) problem = "cannot read the folder '" + folder + "': " + error.message();
  if (files.size() >= kMostFiles) problem = "there are too many files in '" + folder + "'";
  return problem.empty();
}

// A folder inside that cannot be read, or goes away meanwhile, is as good as empty.
void tSymbolFolder::add(fs::path const& folder, u32 depth, std::error_code& error) {
  fs::directory_iterator place(folder, error);
  for (; !error && place != fs::directory_iterator(); place.increment(error)) {
    std::error_code inside;
    if (files.size() >= kMostFiles) return;
    if (place->is_symlink(inside) && place->is_directory(inside)) continue;
    if (depth != 0 && place->is_directory(inside)) add(place->path(), depth - 1, inside);
    if (!place->is_regular_file(inside)) continue;
    std::string const name = nameOf(place->path());
    if (textOf(place->path()).empty()) continue;
    files.emplace(endOf(withoutEnding(name)), place->path());
    if (endOf(name) != name) files.emplace(withoutEnding(endOf(name)), place->path());
  }
}

std::string tSymbolFolder::find(tSavedModule const& module, std::string& problem) {
  if (module.identity.empty())
    problem = "no identity was saved";
  else if (!isIdentified(module))
    problem = "its identity is none that this program knows";
  if (!problem.empty()) return "";
  fs::path found;
  // The name of a module may lack an ending, or have a dot in it that begins none.
  for (std::string const& stem : {withoutEnding(module.name), inSmallLetters(module.name)}) {
    auto const [first, last] = files.equal_range(stem);
    for (auto file = first; file != last; ++file) {
      fs::path const& name = file->second;
      if (!marks.isModule(name)) continue;
      problem = kOtherBuild;
      if (!marks.isOfModule(name, module) || !hasSymbols(name, module, problem)) continue;
      if (found.empty() || hasEnding(name, ".debug")) found = name;
    }
  }
  if (problem.empty()) problem = "no such file in the folder";
  if (!found.empty()) problem.clear();
  return textOf(found);
}

// The symbolizer takes the PDB beside an image for that of the image, whatever it is of.
bool tSymbolFolder::hasSymbols(fs::path const& image, tSavedModule const& module,
                               std::string& problem) {
  if (module.identityKind != kModulePdbIdentity) return true;
  problem = "there is no PDB beside the file";
  auto const [first, last] = files.equal_range(endOf(withoutEnding(nameOf(image))));
  for (auto file = first; file != last; ++file) {
    fs::path const& other = file->second;
    if (other.parent_path() != image.parent_path() || !hasEnding(other, ".pdb")) continue;
    if (marks.isOfPdb(other, module.identity.substr(0, kGuidSize))) return true;
    problem = "the PDB beside the file is of another build";
  }
  return false;
}
