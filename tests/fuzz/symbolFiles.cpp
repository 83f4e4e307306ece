// Files in a folder of symbols that no linker wrote. What a file holds of identities is found
// wherever it lies, as by a search in the whole of it. One operation a line:
//
//     pLETTER      the mark of a PDB's identity, and an identity of this letter
//     uSIZE LETTER the mark of a build id, and so many bytes of this letter
//     xCOUNT       so many bytes of nothing
//     bTEXT        these bytes
//     cCOUNT       takes so many bytes off the end

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>

#include "oxdiagreport/tFileMarks.h"
#include "support/fuzzing.h"
#include "support/tScript.h"
#include "vexk/loadedModule.h"

namespace {

constexpr size_t kMostBytes = size_t{2200} << 10;  // more than twice what is read at a time
constexpr size_t kPdbIdentity = 20;
constexpr size_t kGuid = 16;
constexpr char kPdbMark[] = "RSDS";
std::string const kBuildIdMark("\0\0\0\3\0\0\0GNU\0", 11);

// A file that has no name but that of its descriptor.
class tFile {
 public:
  explicit tFile(std::string const& bytes) : descriptor(memfd_create("symbols", MFD_CLOEXEC)) {
    bool const isThere = descriptor >= 0 && write(descriptor, bytes.data(), bytes.size()) ==
                                                static_cast<ssize_t>(bytes.size());
    if (!isThere) fail("there is a file", "none");
  }
  ~tFile() { close(descriptor); }
  tFile(tFile const&) = delete;
  tFile& operator=(tFile const&) = delete;

  std::string name() const { return "/proc/self/fd/" + std::to_string(descriptor); }

 private:
  int const descriptor;
};

char letterOf(tScript const& script) {
  return script.text().empty() ? 'A' : script.text()[0];
}

void apply(tScript& script, std::string& bytes) {
  switch (script.operation("puxbc")) {
    case 'p':
      bytes += kPdbMark + std::string(kPdbIdentity, letterOf(script));
      return;
    case 'u': {
      size_t const size = script.number() % 256;
      bytes += static_cast<char>(size) + kBuildIdMark + std::string(size, letterOf(script));
      return;
    }
    case 'x':
      bytes.append(script.number() % kMostBytes, 'x');
      return;
    case 'b':
      bytes += script.text();
      return;
    default:
      bytes.resize(bytes.size() - std::min<size_t>(script.number(), bytes.size()));
  }
}

std::string bytesOf(std::string const& input) {
  std::string bytes;
  for (tScript script(input); bytes.size() < kMostBytes && script.next();) apply(script, bytes);
  bytes.resize(std::min(bytes.size(), kMostBytes));
  return bytes;
}

bool holds(std::string const& bytes, std::string const& part) {
  return bytes.find(part) != bytes.npos;
}

void demandSame(bool found, bool wanted, char const* what, std::string const& input) {
  demand(found == wanted, what, [&] { return readable(input); });
}

}  // namespace

void fuzzInput(std::string const& input) {
  std::string const bytes = bytesOf(input);
  tFile const file(bytes);
  tFileMarks marks;
  bool const isModule = bytes.starts_with("MZ") || bytes.starts_with(
                                                       "\x7F"
                                                       "ELF");
  demandSame(marks.isModule(file.name()), isModule, "a module begins as one", input);
  for (char const letter : {'A', 'B', 'x'}) {
    tSavedModule module = {};
    module.identityKind = kModulePdbIdentity;
    module.identity.assign(kPdbIdentity, letter);
    demandSame(marks.isOfModule(file.name(), module), holds(bytes, kPdbMark + module.identity),
               "a PDB's identity is found", input);
    std::string const guid(kGuid, letter);
    demandSame(marks.isOfPdb(file.name(), guid), holds(bytes, guid), "a GUID is found", input);
    for (size_t const size : {1u, 20u, 255u}) {
      module.identityKind = kModuleBuildId;
      module.identity.assign(size, letter);
      demandSame(marks.isOfModule(file.name(), module),
                 holds(bytes, static_cast<char>(size) + kBuildIdMark + module.identity),
                 "a build id is found", input);
    }
  }
}
