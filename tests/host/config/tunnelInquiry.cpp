// Inquiries through the tunnel: buffers and texts of every size beside each other, and objects that
// are configured meanwhile.

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <string>

#include "config/tInquiryCopy.h"
#include "support/tRecordingConfigurable.h"
#include "support/tunnelRecords.h"
#include "trace/startedModules.h"

namespace {

using namespace nOXDIAG100;

constexpr u32 kMiB = 0x100000;
constexpr u32 kMostInquiries = 34;  // one that measures, and one for each doubling of 32 bits

// Writes a text as inquire does, and keeps how often it was asked and what memory was taken then.
class tTextConfigurable : public tRecordingConfigurable {
 public:
  explicit tTextConfigurable(std::string text) : content(std::move(text)) {
    i32 status = 0;
    handle = tInstanceRegistry::getInstance().acquire(*this, status);
    bytesBefore = ntoshost::outstandingBytes();
  }
  ~tTextConfigurable() override { releaseInstance(handle); }
  tTextConfigurable(tTextConfigurable const&) = delete;
  tTextConfigurable& operator=(tTextConfigurable const&) = delete;

  void inquire(char* to, unsigned int size, unsigned int* required) override {
    mostBytes = std::max(mostBytes, ntoshost::outstandingBytes() - bytesBefore);
    if (to != nullptr && size != 0) {
      std::copy_n(content.c_str(), std::min<size_t>(size, content.size() + 1), to);
      to[size - 1] = 0;
    }
    if (required != nullptr) *required = static_cast<unsigned int>(content.size() + 1);
    ++inquiries;
    if (afterwards) afterwards();
  }

  // One request into a buffer of `room` bytes.
  void askFor(u32 room) {
    inquiries = 0;
    mostBytes = 0;
    needed = 77;
    tTestRequest(handle, inquireRecord(buffer.data(), room, &needed)).send();
  }

  // The whole text, or what of it goes into `room` bytes, and nothing behind it.
  void expectWritten(u32 room) const {
    EXPECT_EQ(needed, content.size() + 1);
    size_t const written = std::min<size_t>(room, content.size() + 1);
    std::string const wanted = content.substr(0, written - 1) + '\0';
    EXPECT_TRUE(buffer.compare(0, written, wanted) == 0) << room << " of " << content.size();
    EXPECT_EQ(buffer.find_first_not_of('?', written), std::string::npos);
  }

  std::string content;
  std::string buffer;  // of the program
  u32 handle = kNoHandle;
  u32 needed = 0;
  u32 inquiries = 0;
  u64 mostBytes = 0;
  std::function<void()> afterwards;  // behind each inquiry

 private:
  u64 bytesBefore = 0;
};

}  // namespace

TEST(TunnelInquiry, EachBufferTakesWhatOfTheTextItHasRoomForWhateverTheirSizes) {
  for (u32 length : {0u, 1u, 4u, 1000u, kMiB - 2, kMiB - 1, kMiB, 3 * kMiB}) {
    tTextConfigurable object(std::string(length, 'x'));
    for (u32 room : {1u, 2u, length / 2 + 1, length, length + 1, length + 2, 5 * kMiB, ~0u}) {
      if (room == 0) continue;
      object.buffer.assign(std::min(room, 6 * kMiB), '?');
      object.askFor(room);
      object.expectWritten(room);
    }
  }
}

TEST(TunnelInquiry, TheKernelsCopyIsAsLargeAsTheSmallerOfTextAndBuffer) {
  tTextConfigurable object(std::string(999, 'x'));
  object.buffer.assign(2000, '?');
  for (u32 room : {1u, 10u, 999u, 1000u, 1001u, ~0u}) {
    object.askFor(room);
    EXPECT_EQ(object.mostBytes, std::min(room, 1000u));
    EXPECT_EQ(object.inquiries, 2u);
  }
}

TEST(TunnelInquiry, ATextThatGrowsWhileItIsInquiredIsWholeWhenTheBufferHasRoom) {
  for (u32 growths = 1; growths < 20; ++growths) {
    tTextConfigurable object("begin");
    u32 left = growths;
    object.afterwards = [&] {
      if (left == 0) return;
      object.content += " and more";
      --left;
    };
    object.buffer.assign(1000, '?');
    object.askFor(1000);
    // The last one that is read may be of before the last growth.
    u32 const length = object.needed - 1;
    EXPECT_EQ(object.content.substr(0, length), object.buffer.substr(0, length));
    EXPECT_EQ(object.buffer[length], '\0');
    EXPECT_EQ(object.buffer[length + 1], '?');
  }
}

TEST(TunnelInquiry, ATextThatOutgrowsTheBufferIsCut) {
  tTextConfigurable object("begin");
  object.afterwards = [&] { object.content += " and more"; };
  object.buffer.assign(100, '?');
  object.askFor(12);
  EXPECT_EQ(object.buffer.substr(0, 13), std::string("begin and m\0?", 13));
  EXPECT_GT(object.needed, 12u);
}

TEST(TunnelInquiry, ATextThatAlwaysGrowsEndsInTheEnd) {
  tTextConfigurable object("x");
  object.afterwards = [&] { object.content += std::string(2 * object.content.size(), 'x'); };
  object.buffer.assign(kMiB, '?');
  object.askFor(kMiB);
  EXPECT_LE(object.inquiries, kMostInquiries);
  EXPECT_EQ(object.buffer.find_first_not_of('x'), kMiB - 1);
  EXPECT_GT(object.needed, kMiB);
}

TEST(TunnelInquiry, ATextThatBecomesShorterIsWrittenAsItIsThen) {
  tTextConfigurable object("a long text");
  object.afterwards = [&] { object.content = "short"; };
  object.buffer.assign(100, '?');
  object.askFor(100);
  object.expectWritten(100);
}

TEST(TunnelInquiry, AHandleThatIsGivenBackMeanwhileIsNone) {
  tTextConfigurable object("text");
  object.afterwards = [&] { releaseInstance(object.handle); };
  object.buffer.assign(100, '?');
  object.askFor(100);
  EXPECT_EQ(object.needed, 0u);
  EXPECT_EQ(object.buffer, std::string(100, '?'));
}

TEST(TunnelInquiry, WithoutMemoryForTheTextOnlyItsSizeIsWritten) {
  tTextConfigurable object("text");
  object.afterwards = [&] { object.content += " and more"; };
  u64 const before = ntoshost::outstandingBlocks();
  u64 const failures = ntoshost::failEachCall(ntoshost::kFaultMemory, [&](u64) {
    object.content = "text";
    object.buffer.assign(40, '?');
    object.askFor(40);
    EXPECT_EQ(ntoshost::outstandingBlocks(), before);
    if (ntoshost::faultsInjected() == 0) return;
    EXPECT_EQ(object.buffer, std::string(40, '?'));
    EXPECT_GE(object.needed, 5u);
  });
  EXPECT_GE(failures, 2u);  // of the first size and of a later one
}

TEST(TunnelInquiry, ATextThatOutgrowsItsMemoryGetsTwiceAsMuch) {
  tTextConfigurable object(std::string(99, 'x'));
  object.afterwards = [&] { object.content += 'x'; };
  object.buffer.assign(1000, '?');
  object.askFor(1000);
  EXPECT_EQ(object.mostBytes, 200u);
  EXPECT_EQ(object.inquiries, 3u);
}

TEST(TunnelInquiry, ACopyWithoutMemoryHasNoBytes) {
  tTextConfigurable object("text");
  ntoshost::failFrom(ntoshost::kFaultMemory, 1);
  tInquiryCopy const copy(object.handle, 100);
  ntoshost::clearFaults();
  EXPECT_EQ(copy.getText(), nullptr);
  EXPECT_EQ(copy.getSize(), 0u);
  EXPECT_EQ(copy.getNeeded(), 5u);
}
