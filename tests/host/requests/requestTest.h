#pragma once

// A server in this program with a dispatcher of its own, and callers in other processes.

#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <filesystem>
#include <iterator>
#include <optional>
#include <string>

#include "ntoshost/executive.h"
#include "requests/tChild.h"
#include "requests/tConnection.h"
#include "requests/tGate.h"
#include "vexk/iLib.h"
#include "vexk/module.h"
#include "vexk/moduleInfo.h"
#include "vexk/userMemory.h"
#include "vexkhost/requestServer.h"

// A fresh folder for sockets, which everybody may look into.
class tSocketFolder {
 public:
  tSocketFolder() {
    std::string name = (std::filesystem::temp_directory_path() / "requests-XXXXXX").string();
    EXPECT_NE(mkdtemp(name.data()), nullptr);
    folder = name;
    std::filesystem::permissions(folder, std::filesystem::perms{0755});
  }
  ~tSocketFolder() { std::filesystem::remove_all(folder); }
  tSocketFolder(tSocketFolder const&) = delete;
  tSocketFolder& operator=(tSocketFolder const&) = delete;

  std::string pathOf(std::string const& name) const { return (folder / name).string(); }
  bool isEmpty() const { return std::filesystem::is_empty(folder); }

 private:
  std::filesystem::path folder;
};

// What a caller asks of the test's dispatcher: the number is doubled.
struct tDoubling {
  u32 number = 0;
  u32 result = 0;
  u32 waitsAtTheGate = 0;
};

constexpr char kDoubler[] = "nTEST://nDoubler";

class tDoubler : public iLib::iDispatcher {
 public:
  tDoubler() : iDispatcher(kDoubler) { iLib::exportDispatcher(*this, status); }
  ~tDoubler() override {
    i32 withdrawal = 0;
    iLib::unexportDispatcher(*this, withdrawal);
  }

  void dispatch(u64 request) override {
    tDoubling doubling;
    ++begun;
    if (vexCopyFromUser(&doubling, request, sizeof(doubling)) != sizeof(doubling)) return;
    if (doubling.waitsAtTheGate != 0) gate.pass();
    doubling.result = 2 * doubling.number;
    u64 const place = request + offsetof(tDoubling, result);
    size_t const written = vexCopyToUser(place, &doubling.result, sizeof(doubling.result));
    ++(written == 0 ? unwritten : served);
  }

  i32 status = 0;
  std::atomic<int> begun = 0;
  std::atomic<int> served = 0;
  std::atomic<int> unwritten = 0;
  tGate gate;
};

// The platform layer and a module with the dispatcher; the server is the test's own to start.
class RequestTest : public testing::Test {
 protected:
  RequestTest() {
    i32 status = 0;
    vexkInitialize();
    doubler.emplace();
    libRegisterModuleWithVEX(module, status);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(doubler->status, 0);
  }

  ~RequestTest() override {
    i32 status = 0;
    vexkhost::stopRequestServer();
    libUnregisterModuleWithVEX(module, status);
    doubler.reset();
    vexkUnload();
    ntoshost::requireNoOutstanding("the test");
    EXPECT_TRUE(folder.isEmpty());
    EXPECT_EQ(countDescriptors(), descriptors);
  }

  void startServer() { ASSERT_TRUE(vexkhost::startRequestServer(path.c_str())); }

  // One well-behaved call from a process of its own.
  int callOnce() const {
    return tChild([this] {
             tDoubling doubling = {21};
             tConnection connection(path);
             int const answer = connection.call(kDoubler, &doubling);
             return answer != 0 ? answer : doubling.result == 42 ? 0 : 100;
           })
        .await();
  }

  static long countDescriptors() {
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
  }

  long const descriptors = countDescriptors();
  tModulePackage package = {};
  _tLibModuleInfo module = {&package, "test", [](u32) { return i32{0}; }, 0};
  std::optional<tDoubler> doubler;
  tSocketFolder folder;
  std::string const path = folder.pathOf("socket");
};
