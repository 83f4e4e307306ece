// A target whose settings grow while they are asked for.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

#include "oxdiagctl/tFailure.h"
#include "oxdiagctl/tTunnel.h"

using namespace nOXDIAG100;

namespace {

// Plays the library's tunnel in this program's memory.
class tPlayedChannel : public iRequestChannel {
 public:
  bool deliver(std::string_view dispatcher, void const* request) override {
    EXPECT_EQ(dispatcher, kTunnelName);
    tTunnelHeader header;
    tTunnelRecord record;
    std::memcpy(&header, request, sizeof(header));
    std::memcpy(&record, static_cast<char const*>(request) + sizeof(header), sizeof(record));
    EXPECT_EQ(header.count, 1u);
    if (record.operation == kTunnelAcquire) write(record.address, handle);
    if (record.operation == kTunnelInquire) inquire(record);
    if (record.operation == kTunnelRelease) released = header.handle;
    return true;
  }
  std::string const& getPlace() const override { return place; }

  u32 handle = kHandle;
  u32 released = 0;
  std::string text;
  std::string place = "here";
  size_t growth = 0;  // of the text before each call
  int inquiries = 0;
  int growingInquiries = 1000;

  static constexpr u32 kHandle = 0xC0000007;

 private:
  static void write(u64 address, u32 value) {
    std::memcpy(reinterpret_cast<void*>(address), &value, sizeof(value));
  }

  void inquire(tTunnelRecord const& record) {
    if (inquiries++ < growingInquiries) text.append(growth, 'x');
    size_t const size = std::min<size_t>(record.source, text.size() + 1);
    std::memcpy(reinterpret_cast<void*>(record.address), text.c_str(), size);
    reinterpret_cast<char*>(record.address)[size - 1] = '\0';
    write(record.extra, text.empty() && growth == 0 ? 0 : static_cast<u32>(text.size() + 1));
  }
};

}  // namespace

TEST(Inquiring, OneCallIsEnoughForAShortText) {
  tPlayedChannel channel;
  channel.text = "--on";
  tTunnel tunnel(channel, "trace");
  EXPECT_EQ(tunnel.inquire(), "--on");
  EXPECT_EQ(channel.inquiries, 1);
}

TEST(Inquiring, GoesOnUntilTheWholeTextFits) {
  for (size_t length : {510u, 511u, 512u, 513u, 5000u}) {
    tPlayedChannel channel;
    channel.text.assign(length, 't');
    tTunnel tunnel(channel, "trace");
    EXPECT_EQ(tunnel.inquire(), channel.text) << length;
    EXPECT_EQ(channel.inquiries, length < 512 ? 1 : 2);
  }
}

TEST(Inquiring, ATextThatGrowsMeanwhileIsGotWhole) {
  tPlayedChannel channel;
  channel.growth = 700;
  channel.growingInquiries = 10;
  tTunnel tunnel(channel, "trace");
  EXPECT_EQ(tunnel.inquire(), std::string(7000, 'x'));
  EXPECT_EQ(channel.inquiries, 11);
}

TEST(Inquiring, ATextWithoutEndIsGivenUp) {
  tPlayedChannel channel;
  channel.growth = 1 << 20;
  tTunnel tunnel(channel, "trace");
  EXPECT_THROW(tunnel.inquire(), tFailure);
}

TEST(Inquiring, AHandleThatTellsNothingIsGivenUp) {
  tPlayedChannel channel;
  tTunnel tunnel(channel, "trace");
  EXPECT_THROW(tunnel.inquire(), tFailure);
}

TEST(Inquiring, TheHandleIsGivenBack) {
  tPlayedChannel channel;
  { tTunnel const tunnel(channel, "trace"); }
  EXPECT_EQ(channel.released, tPlayedChannel::kHandle);
}

TEST(Inquiring, NoHandleIsNotGivenBack) {
  tPlayedChannel channel;
  channel.handle = 0;
  channel.released = 77;
  {
    tTunnel const tunnel(channel, "trace");
    EXPECT_FALSE(tunnel.isThere());
  }
  EXPECT_EQ(channel.released, 77u);
}
