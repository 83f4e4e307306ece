#include "tCallSites.h"

#include <fcntl.h>
#include <link.h>
#include <unistd.h>

#include <cstdio>
#include <string_view>

#include "ntos/stack.h"
#include "ntoshost/faults.h"

namespace {

constexpr u32 kDeepest = 24;
// A test with more calls is one of growth, whose later calls come from the same places.
constexpr u64 kMostCalls = 3000;

int takeBase(dl_phdr_info* program, size_t /*size*/, void* base) {
  *static_cast<uintptr_t*>(base) = program->dlpi_addr;
  return 1;  // the first one is the program itself
}

uintptr_t baseOfProgram() {
  uintptr_t base = 0;
  dl_iterate_phdr(takeBase, &base);
  return base;
}

}  // namespace

tCallSites::tCallSites(std::string const& file) {
  if (!file.empty()) output = open(file.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0666);
}

tCallSites::~tCallSites() {
  endTest();
  if (output >= 0) close(output);
}

void tCallSites::beginTest(u32 wantedRepeats, std::function<void(u64 number)> wantedNote) {
  timesInTest.clear();
  calls = 0;
  repeats = wantedRepeats;
  note = std::move(wantedNote);
  ntoshost::visitFallibleCalls(visit, this);
}

void tCallSites::endTest() {
  ntoshost::visitFallibleCalls(nullptr, nullptr);
}

void tCallSites::visit(void* sites, u32 kind) {
  auto& self = *static_cast<tCallSites*>(sites);
  if (++self.calls > kMostCalls) return;
  void* addresses[kDeepest];
  u32 const depth = RtlCaptureStackBackTrace(0, kDeepest, addresses, nullptr);
  std::string_view const bytes(reinterpret_cast<char const*>(addresses), depth * sizeof(void*));
  size_t const place = std::hash<std::string_view>()(bytes);
  if (self.timesInTest[place]++ < self.repeats) self.note(self.calls);
  if (self.output >= 0 && self.written.try_emplace(place, true).second) {
    self.write(kind, addresses, depth);
  }
}

void tCallSites::write(u32 kind, void* const* addresses, u32 depth) const {
  std::string line = std::string(ntoshost::faultName(kind)) + "\t";
  char text[24];
  for (u32 i = 0; i < depth; ++i) {
    uintptr_t const offset = reinterpret_cast<uintptr_t>(addresses[i]) - baseOfProgram() - 1;
    std::snprintf(text, sizeof(text), "%zx ", offset);
    line += text;
  }
  line += '\n';
  if (::write(output, line.data(), line.size()) < 0) _exit(1);
}
