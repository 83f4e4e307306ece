#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "oxdiagk/tStatus2.h"
#include "oxdiagreport/savedModules.h"

// A file of saved statuses: streams of "qelmk/binaryStream.h", one a status, with nothing between
// them. An empty file has none.
//
//     tStatusFile file(bytes);
//     while (!file.isAtEnd() && file.read(status)) print(status);
//     if (!file.isAtEnd()) complain(file.getProblem());
class tStatusFile {
 public:
  // The bytes must outlive the object.
  explicit tStatusFile(std::string_view content) : bytes(content) {}

  bool isAtEnd() const { return position == bytes.size(); }

  // Reads the next status. Returns false when the bytes are none; getProblem() is then one sentence
  // part with the offset, and `status` what was read up to there.
  bool read(nOXDIAG100::tStatus2& status);

  // The modules that were saved with the status that was read last.
  std::vector<tSavedModule> const& getModules() const { return modules; }

  std::string const& getProblem() const { return problem; }

 private:
  bool fail(i32 code, size_t place);

  std::string_view bytes;
  size_t position = 0;  // of the next stream
  std::vector<tSavedModule> modules;
  std::string problem;
};
