#include "slotbus/host/toolPlace.h"

#include <unistd.h>

#include <filesystem>

std::string findTool(std::string const& name) {
  std::error_code problem;
  auto const program = std::filesystem::read_symlink("/proc/self/exe", problem);
  if (problem) return name;
  auto const build = program.parent_path().parent_path().parent_path();
  std::string folder = name;
  std::erase(folder, '-');
  std::string const tool = (build / "tools" / folder / name).string();
  return access(tool.c_str(), X_OK) == 0 ? tool : name;
}
