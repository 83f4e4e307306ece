#include "oxdiagview/tOutput.h"

namespace oxdiagview {

void tOutput::flush() {
  bool const isWritten = std::fwrite(buffer.data(), 1, buffer.size(), file) == buffer.size();
  buffer.clear();
  if (!isWritten || std::fflush(file) != 0 || std::ferror(file) != 0) hasFailed = true;
}

}  // namespace oxdiagview
