#include "oxdiagk/tFileTraceDestination.h"

#include "config/options/optionWord.h"
#include "config/options/tInquiryText.h"
#include "ntos/file.h"
#include "ntos/irql.h"
#include "ntos/thread.h"
#include "oxdiagk/atomicWord.h"
#include "trace/findOrMake.h"
#include "trace/tTraceFileBlock.h"
#include "trace/traceFileOpen.h"

namespace nOXDIAG100 {
namespace {

constexpr char kDefaultName[] = "C:/DebugTrace.out";

constinit tFileTraceDestination* instance = nullptr;
constinit u64 lostTexts = 0;
constinit bool answersForRegions = false;  // of KeAreAllApcsDisabled, see learnAnswer

// Copies as much of a text as there is room for; the rest of the name becomes zeros.
template <u32 capacity>
void storeName(char (&name)[capacity], char const* text) {
  __builtin_memset(name, 0, capacity);
  for (u32 index = 0; index < capacity && text[index] != 0; ++index) name[index] = text[index];
}

// A name as text: the stored one has no terminator when it fills its place.
template <u32 capacity>
struct tNameText {
  char text[capacity + 1];

  explicit tNameText(char const (&name)[capacity]) {
    __builtin_memcpy(text, name, capacity);
    text[capacity] = 0;
  }
};

// Threads whose texts meet a handle that is no longer valid reopen the file at once; each handle is
// closed by one of them.
void replaceHandle(HANDLE& place, HANDLE next) {
  HANDLE const former = __atomic_exchange_n(&place, next, __ATOMIC_ACQ_REL);
  if (former != nullptr) ZwClose(former);
}

HANDLE load(HANDLE const& place) {
  return __atomic_load_n(&place, __ATOMIC_ACQUIRE);
}

// Wine's kernel says yes in a critical region already, where a write comes back and where every
// text is put. Where it says yes before one is entered, nothing is learned from it.
void learnAnswer() {
  if (KeAreAllApcsDisabled()) return;
  KeEnterCriticalRegion();
  storeRelaxed(answersForRegions, KeAreAllApcsDisabled() != 0);
  KeLeaveCriticalRegion();
}

// The kernel finishes a write by an APC, and where none come in it would not come back.
bool mayWrite() {
  if (KeGetCurrentIrql() != PASSIVE_LEVEL) return false;
  return loadRelaxed(answersForRegions) || !KeAreAllApcsDisabled();
}

struct tWriteResult {
  NTSTATUS status;
  bool isWhole;
};

tWriteResult write(HANDLE file, char const* bytes, u32 length) {
  IO_STATUS_BLOCK result;
  NTSTATUS const status =
      ZwWriteFile(file, nullptr, nullptr, nullptr, &result, bytes, length, nullptr, nullptr);
  return {status, NT_SUCCESS(status) && result.Information == length};
}

}  // namespace

tFileTraceDestination* tFileTraceDestination::getInstance() {
  return findOrMake(instance);
}

u64 tFileTraceDestination::countLostTexts() {
  return loadRelaxed(lostTexts);
}

void tFileTraceDestination::destroyInstance() {
  destroyAtEnd(instance);
}

tFileTraceDestination::tFileTraceDestination() {
  storeName(activeName, kDefaultName);
  storeName(pendingName, kDefaultName);
}

tFileTraceDestination::~tFileTraceDestination() {
  leaveStream();
  releaseHandles();
}

iTraceDestination& tFileTraceDestination::put(char const* text) {
  if (text == nullptr) return put(nullptr, 0);
  return put(text, static_cast<unsigned int>(__builtin_strlen(text)));
}

iTraceDestination& tFileTraceDestination::put(char const* text, unsigned int length) {
  if (load(file) == nullptr) return *this;
  tTraceFileBlock block;
  bool isWhole = true;
  for (unsigned int index = 0; text != nullptr && index < length; ++index) {
    block.append(text[index]);
    if (!block.isFull()) continue;
    isWhole &= writeBlock(block.getBytes(), block.getLength());
    block.clear();
  }
  bool const isEnded = writeBlock(block.getBytes(), block.getLength());
  if (!isWhole || (!isEnded && block.getLength() != 0)) {
    __atomic_fetch_add(&lostTexts, 1, __ATOMIC_RELAXED);
  }
  return *this;
}

void tFileTraceDestination::configure(int argc, char** const argv) {
  pendingOverwrites = 0;
  int const count = countWords(argc, argv);
  for (int index = 0; index < count; ++index) {
    if (isEqual(argv[index], "overwrite")) {
      pendingOverwrites = 1;
    } else if (isEqual(argv[index], "append")) {
      pendingOverwrites = 0;
    } else {
      storeName(pendingName, argv[index]);
    }
  }
}

char* tFileTraceDestination::inquire(char* buffer, unsigned int size, unsigned int* needed) {
  tNameText const name(activeName);
  return tInquiryText(buffer, size).append(" --destination file ").append(name.text).finish(needed);
}

u32 tFileTraceDestination::open() {
  activeOverwrites = pendingOverwrites;
  __builtin_memcpy(activeName, pendingName, sizeof(activeName));
  if (openActive(activeOverwrites != 0)) return 1;
  storeName(pendingName, kDefaultName);
  return 0;
}

void tFileTraceDestination::close() {
  releaseHandles();
}

char const* tFileTraceDestination::getDescription() const {
  tNameText const name(pendingName);
  tInquiryText(description, sizeof(description))
      .append("File = ")
      .append(name.text)
      .finish(nullptr);
  return description;
}

bool tFileTraceDestination::openActive(bool overwrites) {
  releaseHandles();
  learnAnswer();
  tNameText const name(activeName);
  tTraceFileHandles const handles = openTraceFile(name.text, overwrites);
  replaceHandle(directory, handles.directory);
  replaceHandle(file, handles.file);
  return handles.file != nullptr;
}

void tFileTraceDestination::releaseHandles() {
  replaceHandle(file, nullptr);
  replaceHandle(directory, nullptr);
}

bool tFileTraceDestination::writeBlock(char const* bytes, u32 length) {
  HANDLE const current = load(file);
  if (current == nullptr || !mayWrite()) return false;
  tWriteResult const first = write(current, bytes, length);
  if (first.status != STATUS_OBJECT_TYPE_MISMATCH) return first.isWhole;
  close();
  return openActive(false) && write(load(file), bytes, length).isWhole;
}

}  // namespace nOXDIAG100
