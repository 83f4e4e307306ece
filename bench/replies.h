#pragma once

// The values of the formatted texts: the same ones, in the same order, for the library and for
// every other formatter. No header of the library is used, so that those can include this one.

#include <cstddef>
#include <cstdint>

struct tReply {
  uint32_t slot;
  char const* device;
  int32_t duration;  // microseconds
  uint32_t control;
};

// The text of a reply, and of its numbers alone, in the two languages of formats.
constexpr char kReplyFormat[] = "slot %u: %s answered in %5d us, control 0x%08X\n";
constexpr char kReplyBraces[] = "slot {}: {} answered in {:5} us, control 0x{:08X}\n";
constexpr char kNumbersFormat[] = "%u %d %#x %o\n";
constexpr char kNumbersBraces[] = "{} {} {:#x} {:o}\n";

// One reply and its texts, for checking that everybody writes the same.
constexpr tReply kKnownReply = {17, "modem", -42, 0xBEEF};
constexpr char kKnownReplyText[] = "slot 17: modem answered in   -42 us, control 0x0000BEEF\n";
constexpr char kKnownNumbersText[] = "17 -42 0xbeef 137357\n";

// Replies of every length, in a table that is read in turn.
class tReplies {
 public:
  tReplies() {
    static constexpr char const* kDevices[] = {"nic", "modem", "frame buffer", "disk controller"};
    uint32_t random = 12345;
    for (tReply& reply : replies) {
      random = random * 1664525 + 1013904223;
      reply.slot = random >> 27;
      reply.device = kDevices[random >> 20 & 3];
      reply.duration = static_cast<int32_t>(random) >> (random % 31);
      reply.control = random >> (random % 29);
    }
  }

  tReply const& next() { return replies[index++ % kCount]; }

 private:
  static constexpr size_t kCount = 64;

  tReply replies[kCount];
  size_t index = 0;
};
