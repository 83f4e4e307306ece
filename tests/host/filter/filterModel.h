#pragma once

// The filter as one would write it down to explain it: strings, cut and copied, and nothing else.
// Tests compare it with the real one.

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// The number that `text` begins with.
uint32_t modelNumber(std::string_view text);

struct tModelLine {
  std::string component;
  std::string version;
  uint32_t line = 0;
  std::string file;
  uint32_t threadId = 0;
  uint32_t verbosity = 0;
};

class tModelFilter {
 public:
  void parse(std::string text);
  void add(std::string text, unsigned connector, int field);
  void removeField(int field);
  void removeAll() { terms.clear(); }

  bool shows(tModelLine const& line) const;
  std::string written() const;

  // Whether parsing the written form builds this filter again.
  bool isWritable() const;

 private:
  struct tTerm {
    unsigned connector;
    int field;
    std::string operation;  // empty when there is none
    std::string value;      // as it is written
  };

  static bool compare(tTerm const& term, tModelLine const& line);
  static bool isWritable(tTerm const& term);

  std::vector<tTerm> terms;
};
