#pragma once

// A filter seen through strings.

#include <string>

#include "filterModel.h"
#include "oxdiagk/tTraceFilter.h"

inline std::string writtenFilter(nOXDIAG100::tTraceFilter const& filter) {
  unsigned int needed = 0;
  filter.write(nullptr, 0, &needed);
  std::string text(needed, '#');
  filter.write(text.data(), needed, nullptr);
  text.pop_back();
  return text;
}

// What stands between the quotes of the written form.
inline std::string writtenExpression(nOXDIAG100::tTraceFilter const& filter) {
  std::string const text = writtenFilter(filter);
  size_t const begin = text.find('"') + 1;
  return begin == 0 ? "" : text.substr(begin, text.size() - begin - 1);
}

inline bool showsLine(nOXDIAG100::tTraceFilter const& filter, tModelLine const& line) {
  return filter.evaluate(line.component.c_str(), line.version.c_str(), line.line, line.file.c_str(),
                         line.threadId, line.verbosity);
}
