#include "oxdiagk/tRecorderTraceDestination.h"

#include "config/options/numberText.h"
#include "config/options/optionWord.h"
#include "config/options/tInquiryText.h"
#include "oxdiagk/atomicWord.h"
#include "oxdiagk/tTraceParts.h"
#include "oxdiagk/tVEXTraceDestination.h"
#include "trace/findOrMake.h"
#include "trace/recorder/beginRing.h"
#include "trace/recorder/tCrashRecord.h"
#include "trace/tLiveStreams.h"
#include "trace/textWords.h"
#include "vexk/memory.h"

namespace nOXDIAG100 {
namespace {

constexpr u64 kBytesPerKiB = 1024;

constinit tRecorderTraceDestination* instance = nullptr;

u32 limit(u32 kiB) {
  if (kiB < tRecorderTraceDestination::kLeastKiB) return tRecorderTraceDestination::kLeastKiB;
  u32 const most = tRecorderTraceDestination::kMostKiB;
  return kiB < most ? kiB : most;
}

// Without its signature: a later dump must not show what lies in free memory as a recorder's.
void giveRingBack(tRecorderRing* ring) {
  if (ring != nullptr) ring->signature[0] = '\0';
  _memDelete(ring);
}

bool isNumber(char const* word) {
  return *word >= '0' && *word <= '9';
}

}  // namespace

tRecorderTraceDestination* tRecorderTraceDestination::getInstance() {
  return findOrMake(instance);
}

void tRecorderTraceDestination::destroyInstance() {
  destroyAtEnd(instance);
}

tRecorderTraceDestination::~tRecorderTraceDestination() {
  leaveStream();
  delete crashRecord;
  giveRingBack(ring);
}

iTraceDestination& tRecorderTraceDestination::put(char const* text) {
  if (text == nullptr) return *this;
  return put(text, static_cast<unsigned int>(__builtin_strlen(text)));
}

iTraceDestination& tRecorderTraceDestination::put(char const* text, unsigned int length) {
  if (text == nullptr) return *this;
  tRecorderRing* const current = loadRing();
  if (current != nullptr) keep(*current, text, length);
  if (loadRelaxed(handsOn)) tVEXTraceDestination::getInstance().put(text, length);
  return *this;
}

void tRecorderTraceDestination::configure(int argc, char** const argv) {
  pendingHandsOn = false;
  int const count = countWords(argc, argv);
  for (int index = 0; index < count; ++index) {
    if (isNumber(argv[index])) pendingKiB = limit(readNumber(argv[index]));
    if (isEqual(argv[index], "vex")) pendingHandsOn = true;
  }
}

char* tRecorderTraceDestination::inquire(char* buffer, unsigned int size, unsigned int* needed) {
  tInquiryText text(buffer, size);
  text.append(" --destination recorder ").appendNumber(kiB);
  if (loadRelaxed(handsOn)) text.append(" vex");
  return text.finish(needed);
}

u32 tRecorderTraceDestination::open() {
  if (crashRecord == nullptr) crashRecord = new tCrashRecord(*this);
  if (crashRecord == nullptr || !takeRing(pendingKiB * kBytesPerKiB)) return 0;
  kiB = pendingKiB;
  storeRelaxed(handsOn, pendingHandsOn);
  return 1;
}

// The newest text of the former ring goes into the next one.
bool tRecorderTraceDestination::takeRing(u64 size) {
  tRecorderRing* const former = ring;
  if (former != nullptr && former->capacity == size) return true;
  i32 status = 0;
  void* const memory = _memNewUsingCRT(sizeof(tRecorderRing) + size, kMemLongLived, status);
  if (memory == nullptr) return false;
  tRecorderRing* const next = static_cast<tRecorderRing*>(memory);
  beginRing(*next, size);
  if (former != nullptr) {
    u64 const end = former->written % former->capacity;
    if (former->written > end) keep(*next, former->getText() + end, former->capacity - end);
    keep(*next, former->getText(), end);
  }
  storeRelease(ring, next);
  giveRingBack(former);
  return true;
}

void tRecorderTraceDestination::close() {
  storeRelaxed(handsOn, false);
}

char const* tRecorderTraceDestination::getDescription() const {
  tInquiryText text(description, sizeof(description));
  text.append("Flight recorder with ").appendNumber(pendingKiB).append(" KiB").finish(nullptr);
  return description;
}

tRecorderRing* tRecorderTraceDestination::loadRing() const {
  return loadAcquire(ring);
}

// Each text takes its place first, so no two write to one unless the ring comes round meanwhile.
OXDIAG_MIXES_TEXT void tRecorderTraceDestination::keep(tRecorderRing& to, char const* text,
                                                       u64 length) {
  if (length > to.capacity) {
    text += length - to.capacity;
    length = to.capacity;
  }
  u64 const begin = __atomic_fetch_add(&to.written, length, __ATOMIC_RELAXED) % to.capacity;
  u64 const room = to.capacity - begin;
  u64 const first = length < room ? length : room;
  copyText(to.getText() + begin, text, first);
  copyText(to.getText(), text + first, length - first);
}

// The system has stopped: nobody else runs. A line ends where it stands.
void tRecorderTraceDestination::keepUnfinishedLines() {
  if (isCrashed || ring == nullptr) return;
  isCrashed = true;
  for (tTraceParts* stream = tLiveStreams::getFirst(); stream != nullptr;
       stream = tLiveStreams::getNext(*stream)) {
    if (stream->slot.get() != this || stream->buffer.getLength() == 0) continue;
    keep(*ring, stream->buffer.getText(), stream->buffer.getLength());
    keep(*ring, "\n", 1);
  }
}

}  // namespace nOXDIAG100
