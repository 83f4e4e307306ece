// Requests to the configuration tunnel, in a page of user memory of which nothing is known but that
// it ends, behind one that can only be read, against a model of the tunnel. What is demanded is
// every byte of both afterwards, what the object behind the handle was told, and the handles
// issued. An input is lines that write the page:
//
//     r A B C D   a record at the end of the request: operation A, fields B, C, D
//     p FIELD AT  makes field 0, 1 or 2 of the last record, B, C or D, an address in the page
//     e FIELD N   makes it an address N bytes before the page, where nothing can be written
//     k FIELD N   makes it an address of the kernel's half
//     z FIELD N   makes it an address N bytes before the last one there is
//     t AT TEXT   writes a text
//     n N         changes the count in the header by N
//     h N         the handle: of the object, none or unknown
//     w AT BYTES  writes bytes; any byte but a newline
//     o N         the request begins N bytes before the end of the page, with what is behind it
//     ! N         the Nth allocation fails        * N   the Nth and all later ones
//
// or, with R as the first byte, the request itself, bytes up to the end of the page.

#include <sys/mman.h>

#include <algorithm>
#include <cstring>
#include <string>

#include "config/tConfigTunnel.h"
#include "config/tInstanceRegistry.h"
#include "support/fuzzing.h"
#include "support/tScript.h"
#include "support/tTunnelModel.h"

namespace {

using namespace nOXDIAG100;

constexpr u64 kPage = 4096;
constexpr u64 kBase = 0x10000000;  // a number that an input can name
constexpr u64 kArea = kBase - kPage;
constexpr u64 kAreaSize = 3 * kPage;  // with the page behind that is none
constexpr u64 kKernelHalf = 0xFFFF800000000000;
constexpr unsigned kMostFault = 8;
constexpr size_t kHeader = 8;
constexpr size_t kRecord = 32;
constexpr u32 kAlmostTooLong = 0xFFFFF;  // bytes; two more are refused
constexpr u32 kUnknownHandle = 0xCFFFFFF0;

// What stands before the page: names and options over and over.
std::string readOnlyBytes() {
  std::string bytes;
  while (bytes.size() < kPage) bytes += std::string("trace assert --checks off", 26);
  return bytes.substr(0, kPage);
}

// The page, the same for all inputs, the one before it, and what behind it may not be touched.
char* page() {
  static char* const mapped = [] {
    void* const at = mmap(reinterpret_cast<void*>(kArea), kAreaSize, PROT_READ | PROT_WRITE,
                          MAP_PRIVATE | MAP_ANONYMOUS | MAP_FIXED_NOREPLACE, -1, 0);
    if (at != reinterpret_cast<void*>(kArea)) fail("the page is mapped", "a failure");
    std::memcpy(at, readOnlyBytes().data(), kPage);
    mprotect(at, kPage, PROT_READ);
    mprotect(static_cast<char*>(at) + 2 * kPage, kPage, PROT_NONE);
    return static_cast<char*>(at) + kPage;
  }();
  return mapped;
}

class tRecorder : public tConfigurable {
 public:
  void configure() override { calls += "default "; }
  void configure(char const* options) override {
    calls += "configure(" + std::string(options) + ") ";
  }
  void configure(int, char**) override { calls += "words "; }
  void inquire(char* buffer, unsigned int size, unsigned int* needed) override {
    calls += buffer == nullptr ? "measure " : "inquire ";
    if (needed != nullptr) *needed = sizeof kRecorderSettings;
    if (buffer == nullptr || size == 0) return;
    size_t const length = std::min<size_t>(size - 1, sizeof kRecorderSettings - 1);
    std::memcpy(buffer, kRecorderSettings, length);
    buffer[length] = 0;
  }
  void pushConfiguration() override { calls += "push "; }
  void popConfiguration() override { calls += "pop "; }

  std::string calls;
};

// What an input makes of the page, and where the request is in it.
class tPage {
 public:
  explicit tPage(std::string const& input) {
    if (!input.empty() && input[0] == 'R') {
      readRaw(input);
    } else {
      readLines(input);
    }
    tame();
  }

  // The request with the handle of the object or another.
  void setHandle(u32 handle) { put(request, &handle, sizeof handle, 0); }

  std::string bytes = std::string(kPage, '\0');
  u64 request = 0;
  unsigned handleKind = 0;
  tModelMemory memory;

 private:
  void put(u64 at, void const* content, size_t size, size_t offset) {
    if (at + offset >= kPage) return;
    size_t const length = std::min<size_t>(size, kPage - at - offset);
    bytes.replace(at + offset, length, static_cast<char const*>(content), length);
  }

  void readRaw(std::string const& input) {
    std::string const raw = input.substr(1, kPage);
    if (raw.size() < kHeader) return;
    request = kPage - raw.size();
    bytes.replace(request, raw.size(), raw);
    handleKind = static_cast<unsigned char>(raw[0]) % 3;
  }

  void readLines(std::string const& input) {
    tScript script(input);
    while (script.next()) apply(script);
    put(0, &records, sizeof records, kHeader - sizeof records);
    if (request != 0) bytes = std::string(request, '\0') + bytes.substr(0, kPage - request);
  }

  void apply(tScript& script) {
    switch (script.operation("rpekztnhwo!*")) {
      case 'r':
        return addRecord(script);
      case 'p':
        return setAddress(script, kBase, false);
      case 'e':
        return setAddress(script, kBase, true);
      case 'k':
        return setAddress(script, kKernelHalf, false);
      case 'z':
        return setAddress(script, 0, true);
      case 't':
      case 'w':
        return write(script);
      case 'n':
        records += script.number();
        return;
      case 'h':
        handleKind = script.number() % 3;
        return;
      case 'o':
        request = kPage - std::max<u64>(kHeader, script.number() % kPage);
        return;
      case '!':
        return memory.failAt(1 + script.number() % kMostFault, false);
      default:
        return memory.failAt(1 + script.number() % kMostFault, true);
    }
  }

  void addRecord(tScript& script) {
    u32 const operation = script.number();
    put(last = end, &operation, sizeof operation, 0);
    for (size_t field = 8; field < kRecord; field += 8) {
      u64 const value = script.number();
      put(last, &value, sizeof value, field);
    }
    end += kRecord;
    ++records;
  }

  void setAddress(tScript& script, u64 from, bool isBefore) {
    size_t const field = 8 + 8 * (script.number() % 3);
    u64 const distance = script.number();
    u64 const value = isBefore ? from - distance : from + distance;
    put(last, &value, sizeof value, field);
  }

  void tame() {
    for (u64 at = request + kHeader; at + kRecord <= kPage; at += kRecord) {
      bool const isName = bytes[at] == 1;
      tameLength(at + (isName ? 24 : 16));
      tameAddress(at + 8);
      tameAddress(at + (isName ? 16 : 24));
    }
  }

  // Lengths that are long and yet served would only cost time: they become short.
  void tameLength(u64 place) {
    u32 length = 0;
    std::memcpy(&length, bytes.data() + place, sizeof length);
    if (length < kPage || length >= kAlmostTooLong) return;
    length %= kPage;
    put(place, &length, sizeof length, 0);
  }

  // What is not about the pages could be about this program: it becomes an address in them.
  void tameAddress(u64 place) {
    u64 address = 0;
    std::memcpy(&address, bytes.data() + place, sizeof address);
    if (address < kPage || address >= kKernelHalf || address - kArea < kAreaSize) return;
    address = kArea + address % kAreaSize;
    put(place, &address, sizeof address, 0);
  }

  void write(tScript& script) {
    unsigned const at = script.number();
    put(at, script.text().data(), script.text().size(), 0);
  }

  u64 last = kHeader;
  u64 end = kHeader;
  u32 records = 0;
};

u32 issueHandle(tConfigurable& instance) {
  i32 status = 0;
  u32 const handle = tInstanceRegistry::getInstance().acquire(instance, status);
  demand(status == 0, "there is a handle", [&] { return std::to_string(status); });
  return handle;
}

// Handles count on, as long as none is lost: the next one is the recorder's plus 1.
void demandHandles(tTunnelModel const& model, u32 first) {
  i32 status = 0;
  for (u32 handle = first; handle < model.nextHandle; ++handle) {
    tConfigurable* const found = tInstanceRegistry::getInstance().find(handle, status);
    bool const isWanted = handle == model.recorder || model.acquired.count(handle) != 0;
    demand((found != nullptr) == isWanted, "the handles are those of the model",
           [&] { return std::to_string(handle); });
  }
  for (auto const& [handle, meaning] : model.acquired) releaseInstance(handle);
}

}  // namespace

void fuzzInput(std::string const& input) {
  tPage content(input);
  tRecorder recorder;
  u32 const handle = issueHandle(recorder);
  u32 const handles[] = {handle, kNoHandle, kUnknownHandle};
  content.setHandle(handles[content.handleKind]);
  tTunnelModel model(content.bytes, kBase, handle, handle + 1);
  model.readOnly = readOnlyBytes();
  model.memory = content.memory;
  std::memcpy(page(), content.bytes.data(), kPage);
  model.memory.arm();
  tConfigTunnel::getInstance().dispatch(kBase + content.request);
  ntoshost::clearFaults();
  model.dispatch(kBase + content.request);
  demandEqual(recorder.calls, model.calls, "the object is told what the model says");
  demandEqual(std::string(page(), kPage), model.bytes, "user memory is as the model says");
  demandEqual(std::string(page() - kPage, kPage), model.readOnly, "what is read only stays");
  demandHandles(model, handle);
  releaseInstance(handle);
}
