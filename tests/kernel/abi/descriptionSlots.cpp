// A description of report items as other modules see it: which virtual operation stands in which
// slot.

#include "conformance/harness.h"
#include "oxdiagk/tStatus2Description.h"
#include "support/heapRecord.h"
#include "support/tItemStream.h"
#include "support/tTestReportable.h"

namespace {

using nOXDIAG100::iStatus2Description;
using nOXDIAG100::tStatus2Description;
using nQELM100::iCloneable;
using nQELM100::iExternalizable;
using nQELM100::iObjectReader;
using nQELM100::iObjectWriter;
using nQELM100::tObject;

// Slot `index` of the table of the face at `face`.
template <class tCall>
tCall* slotOf(void const* face, u32 index) {
  return reinterpret_cast<tCall*>((*static_cast<void** const*>(face))[index]);
}

}  // namespace

TEST(DescriptionSlots, WritesAnEmptyTextInTheFirstSlotOfItsOwnFace) {
  using tTextCall = void(void const* face, char* buffer, u32 size);
  tStatus2Description const description;
  iStatus2Description const* const face = &description;
  char text[] = "##";
  slotOf<tTextCall>(face, 0)(face, text, sizeof text);
  EXPECT_STREQ(text, "");
  EXPECT_EQ(text[1], '#');
}

TEST(DescriptionSlots, IsClonedInTheFirstSlotOfTheCloneableFace) {
  using tCloneCall = iCloneable*(void const* face, i32* status);
  tStatus2Description description;
  addItems(description, 3);
  iCloneable const* const face = &description;
  i32 code = 0;
  iCloneable* const clone = slotOf<tCloneCall>(face, 0)(face, &code);
  ASSERT_TRUE(clone != nullptr);
  clone->getClass(code).deleteInstance(clone, code);
  EXPECT_EQ(code, 0);
}

TEST(DescriptionSlots, WritesAndReadsInTheFirstTwoSlotsOfTheExternalizableFace) {
  using tWriteCall = void(void const* face, iObjectWriter* writer, i32* status);
  using tReadCall = void(void* face, iObjectReader* reader, i32* status);
  tStatus2Description description;
  addItems(description, 3);
  iExternalizable* const face = &description;
  tItemStream& stream = cleanStream();
  i32 code = 0;
  slotOf<tWriteCall>(face, 0)(face, &stream, &code);
  addItems(description, 1);
  slotOf<tReadCall>(face, 1)(face, &stream, &code);
  EXPECT_EQ(code, 0);
  EXPECT_EQ(numbersIn(description), 123);
}

TEST(DescriptionSlots, IsDestroyedInSlot4OfTheFrameworksFace) {
  using tDestroyCall = void*(void* face, u32 flags);
  tObject* const face = new tStatus2Description;
  ASSERT_TRUE(face != nullptr);
  slotOf<tDestroyCall>(face, 4)(face, 1);
  EXPECT_TRUE(isHeapUnused());
}
