#pragma once

// The option language of a trace stream once more, on strings: what a list of words changes.

#include "filter/filterModel.h"
#include "oxdiagk/tTrace.h"
#include "support/tSinks.h"
#include "trace/modelWords.h"

class tTraceModel {
 public:
  // A fresh stream to a destination that no option names.
  tTraceModel();

  void configure(tWords const& words);

  // The settings as inquire writes them, up to the calibration.
  std::string text() const;

  // For what is not done by options.
  void setMaster(bool isOn) { isEnabled = isOn; }
  void setMutex(bool isOn) { switches[kMutex] = isOn; }
  void setWidth(uint32_t newWidth) { width = newWidth; }

  // Another destination was installed, or failed to open, so that the former one was opened again.
  void install(tPlace next);
  void fallBack(tPlace next);

  // Becomes like `trace`, whose filter has no terms, by its queries; the serial port has its first
  // rate, chosen and in use.
  void adopt(nOXDIAG100::tTrace& trace, tPlace itsPlace);

  // The serial port is one for all streams.
  void shareSerialPort(tTraceModel const& other) { chosenRate = other.chosenRate; }

  // Whether an option can say the filter, so that the text of the settings brings it back.
  bool hasSayableFilter() const;

  void removeTerms() { filter.removeAll(); }
  bool hasTerms() const { return !filter.written().empty(); }

 private:
  static constexpr char kFirstRate[] = "115200";
  static constexpr size_t kSwitches = 12;
  static constexpr size_t kMutex = kSwitches - 1;

  void readSwitch(size_t index, tWords const& words, size_t& next);
  enum class tChoice { kNone, kDebugger, kSerial, kFile };

  tChoice readDestination(tWords const& words, size_t& next);
  void readRates(tWords const& words, size_t& next);
  void readOption(tWords const& words, size_t& next);
  std::string destinationText() const;

  tChoice choice = tChoice::kNone;  // of the list that is being read
  bool isEnabled = true;
  tPlace place = tPlace::kOwn;
  std::string rate = kFirstRate;  // of the serial port, since it was opened last
  std::string chosenRate = kFirstRate;
  bool switches[kSwitches];
  uint32_t width = 50;
  tModelFilter filter;
};
