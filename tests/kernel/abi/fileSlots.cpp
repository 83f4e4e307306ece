// The file destination as other modules see it: its slots and the places of its members.

#include "conformance/harness.h"
#include "support/fileDestination.h"
#include "vexk/placementNew.h"

namespace {

using nOXDIAG100::tFileTraceDestination;

// The operation in a slot, counted from 1 as the interface counts them.
template <class Function>
Function* getSlot(void* object, u32 slot) {
  return reinterpret_cast<Function*>((*static_cast<void***>(object))[slot - 1]);
}

using tDestroy = void*(void* object, u32 flags);  // flags 0: destroy without freeing
using tPutCounted = void*(void* object, char const* text, unsigned int length);
using tPut = void*(void* object, char const* text);
using tConfigure = void(void* object, int argc, char** argv);
using tInquire = char*(void* object, char* buffer, unsigned int size, unsigned int* required);
using tOpen = u32(void* object);
using tClose = void(void* object);
using tDescribe = char const*(void* object);

// Where the members are.
struct tMembers {
  void* slots;
  HANDLE directory;
  HANDLE file;
  char activeName[256];
  char pendingName[256];
  u32 activeOverwrites;
  u32 pendingOverwrites;
  char description[512];
};
static_assert(sizeof(tMembers) == sizeof(tFileTraceDestination));
static_assert(offsetof(tMembers, activeName) == 24 && offsetof(tMembers, description) == 544);

tMembers const& membersOf(tFileTraceDestination const& file) {
  return *reinterpret_cast<tMembers const*>(&file);
}

void configureAndOpen(void* object) {
  char name[] = "C:/oxdiag-test.out";
  char mode[] = "overwrite";
  char* words[] = {name, mode};
  getSlot<tConfigure>(object, 4)(object, 2, words);
  EXPECT_EQ(getSlot<tOpen>(object, 6)(object), u32{1});
}

}  // namespace

TEST(FileDestinationSlots, SecondPutsCountedAndThirdTerminatedText) {
  tFileTraceDestination file;
  configureAndOpen(&file);
  EXPECT_TRUE(getSlot<tPutCounted>(&file, 2)(&file, "slot two", 6) == &file);
  EXPECT_TRUE(getSlot<tPut>(&file, 3)(&file, "three") == &file);
  tDriveFile written(kTestPath);
  ASSERT_TRUE(written.read());
  EXPECT_STREQ(written.getText(), "slot tthree");
}

TEST(FileDestinationSlots, FourthToEighthAreInTheirOrder) {
  tFileTraceDestination file;
  configureAndOpen(&file);
  char buffer[64];
  unsigned int required = 0;
  getSlot<tInquire>(&file, 5)(&file, buffer, sizeof(buffer), &required);
  EXPECT_STREQ(buffer, " --destination file C:/oxdiag-test.out");
  EXPECT_EQ(required, 39u);
  getSlot<tClose>(&file, 7)(&file);
  EXPECT_EQ(tDriveFile(kTestPath).openAlone(), STATUS_SUCCESS);
  EXPECT_STREQ(getSlot<tDescribe>(&file, 8)(&file), "File = C:/oxdiag-test.out");
}

TEST(FileDestinationSlots, FirstIsTheDestructorWhichClosesTheFile) {
  alignas(tFileTraceDestination) static constinit u8 storage[sizeof(tFileTraceDestination)] = {};
  void* const object = new (storage) tFileTraceDestination;
  configureAndOpen(object);
  EXPECT_EQ(tDriveFile(kTestPath).openAlone(), STATUS_SHARING_VIOLATION);
  getSlot<tDestroy>(object, 1)(object, 0);
  EXPECT_EQ(tDriveFile(kTestPath).openAlone(), STATUS_SUCCESS);
}

TEST(FileDestinationSlots, MembersAreInTheirPlaces) {
  tFileTraceDestination file;
  tMembers const& members = membersOf(file);
  EXPECT_TRUE(members.directory == nullptr && members.file == nullptr);
  EXPECT_STREQ(members.activeName, "C:/DebugTrace.out");
  EXPECT_STREQ(members.pendingName, "C:/DebugTrace.out");
  EXPECT_STREQ(members.description, "");
  configureFile(file, kTestName, "overwrite");
  EXPECT_STREQ(members.pendingName, kTestName);
  EXPECT_EQ(members.pendingOverwrites, u32{1});
  EXPECT_EQ(members.activeOverwrites, u32{0});
  ASSERT_EQ(file.open(), u32{1});
  EXPECT_TRUE(members.directory != nullptr && members.file != nullptr);
  EXPECT_STREQ(members.activeName, kTestName);
  EXPECT_EQ(members.activeOverwrites, u32{1});
  file.getDescription();
  EXPECT_STREQ(members.description, "File = C:/oxdiag-test.out");
}

TEST(FileDestinationSlots, NameOf256BytesFillsItsPlaceAndNothingElse) {
  alignas(tFileTraceDestination) static constinit u8 storage[sizeof(tFileTraceDestination)] = {};
  tFileTraceDestination* const file = new (storage) tFileTraceDestination;
  configureFile(*file, kLongName<300>.text);
  tMembers const& members = membersOf(*file);
  EXPECT_EQ(__builtin_memcmp(members.pendingName, kLongName<300>.text, sizeof(members.pendingName)),
            0);
  EXPECT_EQ(members.activeOverwrites, u32{0});
  EXPECT_EQ(members.pendingOverwrites, u32{0});
  file->~tFileTraceDestination();
}
