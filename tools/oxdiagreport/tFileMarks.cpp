#include "oxdiagreport/tFileMarks.h"

#include <algorithm>
#include <fstream>
#include <string_view>

#include "vexk/loadedModule.h"

namespace fs = std::filesystem;

namespace {

constexpr size_t kChunk = size_t{1} << 20;
constexpr size_t kMostKept = 512;  // bytes around a mark
constexpr size_t kPdbIdentitySize = 16 + sizeof(u32);
constexpr size_t kMostIdentities = 10'000;  // of one image, which has one
constexpr std::string_view kPdbMark = "RSDS";
constexpr std::string_view kBuildIdMark("\0\0\0\3\0\0\0GNU\0", 11);  // behind a size below 256

// Hands each place of `mark` in the file to `take` as the text around it: what stands up to
// kMostKept bytes in front of it, and behind it as far as the file goes, kMostKept at least.
// Goes on until `take` returns true; returns whether it did.
template <class tTake>
bool findInFile(fs::path const& name, std::string_view mark, tTake const& take) {
  std::ifstream file(name, std::ios::binary);
  std::string kept;
  std::string chunk(kChunk, '\0');
  size_t searched = 0;
  while (file) {
    file.read(chunk.data(), static_cast<std::streamsize>(chunk.size()));
    kept.append(chunk, 0, static_cast<size_t>(file.gcount()));
    size_t const ready = file ? kept.size() - std::min(kept.size(), kMostKept) : kept.size();
    for (size_t place = kept.find(mark, searched); place < ready;
         place = kept.find(mark, searched)) {
      if (take(kept, place)) return true;
      searched = place + 1;
    }
    size_t const passed = ready - std::min(ready, kMostKept);
    searched = std::max(searched, ready) - passed;
    kept.erase(0, passed);
  }
  return false;
}

std::string kindOf(u8 kind) {
  return std::string(1, static_cast<char>(kind));
}

// The size of the identifier stands in front of the mark.
std::string buildIdAt(std::string const& text, size_t place) {
  if (place == 0) return "";
  size_t const size = static_cast<unsigned char>(text[place - 1]);
  size_t const begin = place + kBuildIdMark.size();
  return begin + size <= text.size() ? text.substr(begin, size) : "";
}

std::set<std::string> identitiesIn(fs::path const& name) {
  std::set<std::string> found;
  findInFile(name, kPdbMark, [&](std::string const& text, size_t place) {
    size_t const begin = place + kPdbMark.size();
    if (begin + kPdbIdentitySize > text.size()) return false;
    found.insert(kindOf(kModulePdbIdentity) + text.substr(begin, kPdbIdentitySize));
    return found.size() >= kMostIdentities;
  });
  findInFile(name, kBuildIdMark, [&](std::string const& text, size_t place) {
    std::string const identity = buildIdAt(text, place);
    if (!identity.empty()) found.insert(kindOf(kModuleBuildId) + identity);
    return found.size() >= kMostIdentities;
  });
  return found;
}

}  // namespace

tFileMarks::tImage& tFileMarks::imageOf(fs::path const& file) {
  auto const [place, isNew] = images.try_emplace(file);
  if (!isNew) return place->second;
  std::string start(4, '\0');
  std::ifstream(file, std::ios::binary).read(start.data(), 4);
  place->second.isModule = start.starts_with("MZ") || start ==
                                                          "\x7F"
                                                          "ELF";
  return place->second;
}

bool tFileMarks::isModule(fs::path const& file) {
  return imageOf(file).isModule;
}

bool tFileMarks::isOfModule(fs::path const& file, tSavedModule const& module) {
  tImage& image = imageOf(file);
  if (!image.isRead) image.identities = identitiesIn(file);
  image.isRead = true;
  return image.identities.contains(kindOf(module.identityKind) + module.identity);
}

bool tFileMarks::isOfPdb(fs::path const& file, std::string const& guid) {
  auto const [place, isNew] = pdbs.try_emplace({file, guid}, false);
  if (isNew) {
    place->second = findInFile(file, guid, [](std::string const&, size_t) { return true; });
  }
  return place->second;
}
