// Statuses from streams that no writer wrote.

#include "conformance/harness.h"
#include "support/heapRecord.h"
#include "support/statusForms.h"
#include "support/statusOrigin.h"
#include "support/tTestDescription.h"

using nOXDIAG100::tStatus2;

namespace {

class tRandom {
 public:
  explicit tRandom(u64 seed) : state(seed) {}
  u32 number() {
    state = state * 6364136223846793005 + 1442695040888963407;
    return static_cast<u32>(state >> 32);
  }
  u32 below(u32 limit) { return number() % limit; }

 private:
  u64 state;
};

// A stream that knows three classes and holds nothing.
tItemStream& streamWithClasses() {
  tItemStream& stream = cleanStream();
  tTestDescription const first(1);
  tTalkingDescription const second(2);
  tForeignObject const third;
  i32 status = 0;
  stream.writeObject(&first, status);
  stream.writeObject(&second, status);
  stream.writeObject(&third, status);
  while (stream.getCount() != 0) stream.erase(stream.getCount() - 1);
  return stream;
}

u32 strangeNumber(tRandom& random) {
  constexpr u32 kStrange[] = {0, 1, 7, 8, 9, 180, 181, 182, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF};
  u32 const index = random.below(16);
  return index < sizeof kStrange / sizeof kStrange[0] ? kStrange[index] : random.number();
}

// Replaces numbers, drops and adds items, and ends the stream anywhere.
void damage(tItemStream& stream, tRandom& random) {
  for (u32 i = random.below(6); i != 0; --i) {
    u32 const index = random.below(stream.getCount());
    switch (random.below(4)) {
      case 0:
        stream.erase(index);
        break;
      case 1:
        stream.insert(index, {static_cast<tItemStream::tKind>(random.below(3)), random.number()});
        break;
      case 2:
        stream.insert(kFormHighHalves, {tItemStream::kObject, random.below(3)});
        stream.replace(kFormDescriptionFlag, random.below(2));
        break;
      default:
        stream.replace(random.below(4) == 0 ? index : random.below(kFormComponent),
                       strangeNumber(random));
        break;
    }
  }
  if (random.below(3) == 0) stream.endAt(random.below(stream.getCount()));
}

// True when everything that can be asked of a status gives an answer that holds.
bool isSound(tStatus2 const& status) {
  char text[600];
  status.toString(text, sizeof text);
  u64 addresses[tStatus2::kStackTraceLength];
  status.getStackTrace(addresses);
  return __builtin_strlen(status.getComponentName()) <= tStatus2::kMaxComponentLength &&
         __builtin_strlen(status.getFileName()) <= tStatus2::kMaxFileNameLength &&
         __builtin_strlen(text) < sizeof text &&
         (status.hasDetail() || status.getDescription() == nullptr);
}

// An object of the framework as an item must name one of the three classes.
void mendObjects(tItemStream& stream) {
  for (u32 i = 0; i != stream.getCount(); ++i) {
    if (stream.getItem(i).kind == tItemStream::kObject) {
      stream.replace(i, stream.getItem(i).value % 3);
    }
  }
}

}  // namespace

TEST(StatusNonsense, DoesNoHarm) {
  i32 const livingDescriptions = tTestDescription::living;
  i32 const livingForeigners = tForeignObject::living;
  u32 unsound = 0;
  tRandom random(20240229);
  for (u32 i = 0; i != 5000; ++i) {
    tItemStream& stream = streamWithClasses();
    writeKnownForm(stream);
    damage(stream, random);
    mendObjects(stream);
    tStatus2 target(random.below(2) == 0 ? 0 : kFormError);
    i32 status = 0;
    target.readExternal(stream, status);
    unsound += isSound(target) ? 0 : 1;
  }
  EXPECT_EQ(unsound, u32{0});
  EXPECT_EQ(tTestDescription::living, livingDescriptions);
  EXPECT_EQ(tForeignObject::living, livingForeigners);
  EXPECT_TRUE(isHeapUnused());
}
