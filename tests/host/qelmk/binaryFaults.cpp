// Binary streams when memory runs out at any moment, and when there is more to write than they can
// say.

#include <gtest/gtest.h>

#include <string>

#include "ntos/status.h"
#include "ntoshost/executive.h"
#include "oxdiagk/module.h"
#include "qelmk/module.h"
#include "qelmk/qelmk.h"
#include "support/sampleDescription.h"
#include "support/statusOrigin.h"
#include "support/tBlindReader.h"
#include "vexk/module.h"

namespace qelmkFaultTests {

// Writes text until the content of the object has 4 GiB, or as much as a test wants.
class tGiant : public virtual nQELM100::iExternalizable {
  QELM_DECLARE_CLASS(tGiant, nQELM100::iExternalizable)

 public:
  void writeExternal(nQELM100::iObjectWriter& writer, i32& status) const override;
  void readExternal(nQELM100::iObjectReader&, i32&) override {}

  static u64 contentLength;
};

u64 tGiant::contentLength = 0;

void tGiant::writeExternal(nQELM100::iObjectWriter& writer, i32& status) const {
  constexpr u64 kPiece = u64{1} << 20;
  _STL::string piece;
  u64 left = contentLength;
  while (left != 0) {
    u64 const size = left < kPiece ? left : kPiece;
    if (!piece.resize(size - sizeof(u32))) status = kStatusOutOfMemory;
    writer.writeString(piece, status);
    left -= size;
  }
}

}  // namespace qelmkFaultTests

QELM_DEFINE_CLASS(qelmkFaultTests::tGiant, "tGiant")

namespace {

using qelmkFaultTests::tGiant;

using nOXDIAG100::tStatus2;
using nOXDIAG100::tStatus2Description;
using nQELM100::tBinaryObjectReader;
using nQELM100::tBinaryObjectWriter;
using nQELM100::tObject;

class QelmkBinaryFaults : public testing::Test {
 public:
  static void SetUpTestSuite() {
    vexkInitialize();
    qelmkInitialize();
    ASSERT_EQ(STATUS_SUCCESS, oxdiagkInitialize(nullptr));
  }
  static void TearDownTestSuite() {
    oxdiagkUnload();
    qelmkUnload();
    vexkUnload();
    ntoshost::requireNoOutstanding("the suite");
  }
};

std::string streamOf(tObject const& object) {
  tBinaryObjectWriter counter(nullptr, 0);
  i32 status = 0;
  counter.writeObject(&object, status);
  std::string bytes(counter.getSize(), '#');
  tBinaryObjectWriter writer(bytes.data(), bytes.size());
  writer.writeObject(&object, status);
  writer.finish(status);
  EXPECT_EQ(0, status);
  return bytes;
}

std::string streamOfEverything() {
  tStatus2Description description;
  EXPECT_TRUE(sample::describeEverything(description));
  return streamOf(description);
}

std::string streamOfTwoStatuses() {
  tStatus2Description description;
  EXPECT_TRUE(sample::describeEverything(description));
  tOrigin const origin("component", "file.cpp");
  tStatus2 first;
  OXDIAG_SET_STATUS_WITH_DESCRIPTION(first, -1, description);
  std::string bytes(8192, '#');
  tBinaryObjectWriter writer(bytes.data(), bytes.size());
  i32 status = 0;
  first.writeExternal(writer, status);
  tStatus2(-2).writeExternal(writer, status);
  writer.finish(status);
  EXPECT_EQ(0, status);
  return bytes.substr(0, writer.getSize());
}

// Reads the object of a stream, and looks at it before it is destroyed.
template <class Look>
i32 readObject(std::string const& bytes, Look look) {
  i32 status = 0;
  tBinaryObjectReader reader(bytes.data(), bytes.size(), status);
  tObject* const object = reader.readObject(status);
  EXPECT_EQ(status < 0, object == nullptr);
  if (object == nullptr) return status;
  look(*object);
  i32 ignored = 0;
  object->getClass(ignored).deleteInstance(object, ignored);
  return status;
}

}  // namespace

TEST_F(QelmkBinaryFaults, ReadingFailsAtEachAllocationAndLeavesNothing) {
  std::string const bytes = streamOfEverything();
  u64 const before = ntoshost::outstandingBlocks();
  u64 const failures = ntoshost::failEachCall(ntoshost::kFaultMemory, [&](u64) {
    i32 const status = readObject(bytes, [](tObject const&) {});
    EXPECT_EQ(ntoshost::faultsInjected() == 0, status >= 0);
    EXPECT_EQ(before, ntoshost::outstandingBlocks());
  });
  EXPECT_GE(failures, 50u);
}

// The same with the client's reader, which stays where an object could not be made.
TEST_F(QelmkBinaryFaults, AClientsReaderFailsAtEachAllocationAndLeavesNothing) {
  std::string const bytes = streamOfEverything();
  u64 const before = ntoshost::outstandingBlocks();
  u64 const failures = ntoshost::failEachCall(ntoshost::kFaultMemory, [&](u64) {
    i32 status = 0;
    tBlindReader reader(bytes.data(), bytes.size(), status);
    nQELM100::destroyThroughClass(reader.readObject(status));
    EXPECT_EQ(ntoshost::faultsInjected() == 0 ? 0 : kStatusOutOfMemory, status);
    EXPECT_EQ(before, ntoshost::outstandingBlocks());
  });
  EXPECT_GE(failures, 50u);
}

TEST_F(QelmkBinaryFaults, AStatusIsReadToItsEndAtEachFailingAllocation) {
  std::string const bytes = streamOfTwoStatuses();
  u64 const before = ntoshost::outstandingBlocks();
  u64 const failures = ntoshost::failEachCall(ntoshost::kFaultMemory, [&](u64) {
    i32 status = 0;
    tBinaryObjectReader reader(bytes.data(), bytes.size(), status);
    tStatus2 first;
    tStatus2 second;
    first.readExternal(reader, status);
    EXPECT_EQ(ntoshost::faultsInjected() == 0 ? 0 : kStatusOutOfMemory, status);
    EXPECT_EQ(status == 0, first.getDescription() != nullptr);
    status = 0;
    second.readExternal(reader, status);
    EXPECT_EQ(0, status);
    EXPECT_EQ(-2, second.getCode());
    EXPECT_TRUE(reader.isAtEnd());
  });
  EXPECT_GE(failures, 50u);
  EXPECT_EQ(before, ntoshost::outstandingBlocks());
}

// An item that cannot be made stays empty, a list that cannot grow is empty.
TEST_F(QelmkBinaryFaults, AListKeepsPlacesOrIsEmptyAtEachFailingAllocation) {
  constexpr u32 kItems = 9;
  std::string bytes("QELM\1\0\0\0\x09\0\0\0", 12);
  std::string const title = "nOXDIAG100::tTitleReportable";
  for (u32 item = 0; item < kItems; ++item) {
    bytes += std::string("\7\0\0\0\1\0\0\0\x1C\0", 10) + title + std::string(4, '\0');
  }
  u32 empty = 0;
  u64 const failures = ntoshost::failEachCall(ntoshost::kFaultMemory, [&](u64) {
    i32 status = 0;
    tBinaryObjectReader reader(bytes.data(), bytes.size(), status);
    tStatus2Description description;
    description.readExternal(reader, status);
    EXPECT_EQ(ntoshost::faultsInjected() == 0 ? 0 : kStatusOutOfMemory, status);
    tStatus2 asking;
    u32 const count = description.getNumberOfReportItems(asking);
    EXPECT_TRUE(count == kItems || (status < 0 && count == 0)) << count;
    empty += count == 0 ? 1 : 0;
  });
  // The list grows for the first item, the fifth and the ninth.
  EXPECT_EQ(3u, empty);
  EXPECT_EQ(u64{kItems + 3}, failures);
}

TEST_F(QelmkBinaryFaults, WritingTakesNoMemory) {
  tStatus2Description description;
  ASSERT_TRUE(sample::describeEverything(description));
  std::string bytes(8192, '#');
  ntoshost::failFrom(ntoshost::kFaultMemory, 1);
  tBinaryObjectWriter writer(bytes.data(), bytes.size());
  i32 status = 0;
  writer.writeObject(&description, status);
  writer.finish(status);
  ntoshost::clearFaults();
  EXPECT_EQ(0, status);
}

TEST_F(QelmkBinaryFaults, ATextWithoutMemoryKeepsItsValueAndPlace) {
  std::string const bytes("QELM\1\0\0\0\2\0\0\0a\0b\0", 16);
  i32 status = 0;
  tBinaryObjectReader reader(bytes.data(), bytes.size(), status);
  _STL::wstring text(L"old");
  ntoshost::failFrom(ntoshost::kFaultMemory, 1);
  reader.readWideString(text, status);
  ntoshost::clearFaults();
  EXPECT_EQ(kStatusOutOfMemory, status);
  EXPECT_TRUE(text == L"old");
  status = 0;
  reader.readWideString(text, status);
  EXPECT_EQ(0, status);
  EXPECT_TRUE(text == L"ab");
}

TEST_F(QelmkBinaryFaults, ACountThatCannotBeTrueTakesNoMemory) {
  for (u8 const last : {u8{0x01}, u8{0x7F}, u8{0xFF}}) {
    std::string bytes("QELM\1\0\0\0\0\0\0\0abcd", 16);
    bytes[11] = static_cast<char>(last);
    i32 status = 0;
    tBinaryObjectReader reader(bytes.data(), bytes.size(), status);
    _STL::string text;
    u64 const taken = ntoshost::fallibleCallsSeen();
    reader.readString(text, status);
    EXPECT_EQ(nQELM100::kStatusStreamEnded, status);
    EXPECT_EQ(taken, ntoshost::fallibleCallsSeen());
  }
}

TEST_F(QelmkBinaryFaults, AContentMayHaveLessThanFourGiB) {
  i32 status = 0;
  tGiant::___registerClass(status);
  tGiant const giant;
  tBinaryObjectWriter writer(nullptr, 0);
  tGiant::contentLength = 0xFFFFFFFF;
  writer.writeObject(&giant, status);
  EXPECT_EQ(0, status);
  EXPECT_EQ(u64{8 + 2 + 6 + 4} + 0xFFFFFFFF, writer.getSize());
  tGiant::contentLength = u64{0xFFFFFFFF} + 1;
  writer.writeObject(&giant, status);
  EXPECT_EQ(nQELM100::kStatusStreamTooLong, status);
  EXPECT_EQ(u64{8 + 2 + 6 + 4} + 0xFFFFFFFF, writer.getSize());
  tGiant::___unregisterClass();
}
