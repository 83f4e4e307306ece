// The conformance tests on the host, inside started modules, as in a driver.

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "ntos/status.h"
#include "ntoshost/files.h"
#include "ntoshost/pool.h"
#include "oxdiagk/module.h"
#include "qelmk/module.h"
#include "vexk/module.h"

namespace {

bool startModules() {
  return vexkInitialize() == STATUS_SUCCESS && qelmkInitialize() == STATUS_SUCCESS &&
         oxdiagkInitialize(nullptr) == STATUS_SUCCESS;
}

void unloadModules() {
  oxdiagkUnload();
  qelmkUnload();
  vexkUnload();
}

// A fresh folder is drive C; it is removed at the end.
class tDrive {
 public:
  tDrive() {
    std::string name = (std::filesystem::temp_directory_path() / "conformance-XXXXXX").string();
    if (mkdtemp(name.data()) != nullptr) folder = name;
  }
  ~tDrive() {
    if (!folder.empty()) std::filesystem::remove_all(folder);
  }
  tDrive(tDrive const&) = delete;
  tDrive& operator=(tDrive const&) = delete;

  bool mount() const { return ntoshost::mountDrive('C', folder.c_str()); }

 private:
  std::filesystem::path folder;
};

}  // namespace

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  if (!startModules()) {
    std::fputs("conformance_tests: the modules did not start\n", stderr);
    return 1;
  }
  tDrive const drive;
  if (!drive.mount()) {
    std::fputs("conformance_tests: there is no folder for drive C\n", stderr);
    return 1;
  }
  int const result = RUN_ALL_TESTS();
  unloadModules();
  ntoshost::requireNoOutstanding("conformance_tests");
  ntoshost::requireNoHandles("conformance_tests");
  return result;
}
