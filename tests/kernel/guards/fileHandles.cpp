// That the handles of the file destination are out of reach of the program in whose thread the
// destination was opened.

#include "conformance/harness.h"
#include "guards/tWatchedImport.h"
#include "ntos/file.h"
#include "support/fileDestination.h"

namespace {

using nOXDIAG100::tFileTraceDestination;

constinit u32 opened = 0;
constinit u32 openedForTheKernel = 0;

NTSTATUS openNoted(HANDLE* handle, ACCESS_MASK access, OBJECT_ATTRIBUTES* attributes,
                   IO_STATUS_BLOCK* result, LARGE_INTEGER* size, u32 kind, u32 share,
                   u32 disposition, u32 options, void* extended, u32 extendedLength) {
  ++opened;
  if ((attributes->Attributes & OBJ_KERNEL_HANDLE) != 0) ++openedForTheKernel;
  return ZwCreateFile(handle, access, attributes, result, size, kind, share, disposition, options,
                      extended, extendedLength);
}

}  // namespace

TEST(FileHandleGuards, DirectoryAndFileAreOpenForTheKernelOnly) {
  tFileTraceDestination file;
  configureFile(file, kTestName, "overwrite");
  opened = 0;
  openedForTheKernel = 0;
  tWatchedImport const watch("ZwCreateFile", reinterpret_cast<void*>(&openNoted));
  ASSERT_TRUE(watch.countModules() > 0);
  EXPECT_EQ(file.open(), u32{1});
  EXPECT_EQ(opened, u32{2});
  EXPECT_EQ(openedForTheKernel, opened);
  file.close();
}
