#include "oxdiagreport/tCallStackReader.h"

using nOXDIAG100::tStatus2;

bool tCallStackReader::useSymbols(std::string const& folderName, std::string& problem) {
  if (!folder.open(folderName, problem)) return false;
  isAsked = symbolizer.start(problem);
  return true;
}

std::vector<tFrame> tCallStackReader::framesOf(tStatus2 const& status,
                                               std::vector<tSavedModule> const& modules) {
  u64 addresses[tStatus2::kStackTraceLength];
  status.getStackTrace(addresses);
  u32 used = tStatus2::kStackTraceLength;
  while (used != 0 && addresses[used - 1] == 0) --used;
  std::vector<tFrame> frames;
  for (u32 index = 0; index < used; ++index) frames.push_back(frameAt(addresses[index], modules));
  return frames;
}

// The call is in front of the address to which it returns, and may be the last thing of a function.
tFrame tCallStackReader::frameAt(u64 address, std::vector<tSavedModule> const& modules) {
  tFrame frame = {address, "", 0, {}, ""};
  tSavedModule const* const module = address == 0 ? nullptr : findModule(modules, address - 1);
  if (module == nullptr) return frame;
  frame.module = module->name.empty() ? "?" : module->name;
  frame.offset = address - module->base;
  if (isAsked) addPlaces(*module, frame);
  return frame;
}

void tCallStackReader::addPlaces(tSavedModule const& module, tFrame& frame) {
  tFile const& file = fileOf(module);
  frame.problem = file.problem;
  if (file.name.empty()) return;
  frame.places = symbolizer.find(file.name, frame.offset - 1);
  if (frame.places.empty()) frame.problem = "no symbols for it";
}

tCallStackReader::tFile const& tCallStackReader::fileOf(tSavedModule const& module) {
  auto const [place, isNew] =
      files.try_emplace({module.name, module.identityKind, module.identity});
  if (isNew) place->second.name = folder.find(module, place->second.problem);
  return place->second;
}
