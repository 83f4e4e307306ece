// Times in a person's units, and rates as somebody writes them.

#include "oxdiagview/timeText.h"

#include <gtest/gtest.h>

#include "oxdiagview/startTime.h"
#include "oxdiagview/tickRate.h"

using oxdiagview::clockText;
using oxdiagview::readStartTime;
using oxdiagview::readTickRate;
using oxdiagview::spanText;

TEST(TimeText, SpansHaveThreeDigitsThatCount) {
  EXPECT_EQ(spanText(0), "0 ns");
  EXPECT_EQ(spanText(999), "999 ns");
  EXPECT_EQ(spanText(1000), "1.00 µs");
  EXPECT_EQ(spanText(1234), "1.23 µs");
  EXPECT_EQ(spanText(9994), "9.99 µs");
  EXPECT_EQ(spanText(9995), "10.0 µs");
  EXPECT_EQ(spanText(99949), "99.9 µs");
  EXPECT_EQ(spanText(99950), "100 µs");
  EXPECT_EQ(spanText(999499), "999 µs");
  EXPECT_EQ(spanText(999500), "1.00 ms");
  EXPECT_EQ(spanText(999499999), "999 ms");
  EXPECT_EQ(spanText(999500000), "1.00 s");
  EXPECT_EQ(spanText(1'050'000'000), "1.05 s");
  EXPECT_EQ(spanText(-16'240), "-16.2 µs");
}

TEST(TimeText, LongSpansAreInTwoUnits) {
  constexpr int64_t kSecond = 1'000'000'000;
  EXPECT_EQ(spanText(59'900'000'000), "59.9 s");
  EXPECT_EQ(spanText(60 * kSecond), "1 min 00 s");
  EXPECT_EQ(spanText(3599 * kSecond), "59 min 59 s");
  EXPECT_EQ(spanText(7800 * kSecond), "2 h 10 min");
  EXPECT_EQ(spanText(90'000 * kSecond), "1 d 01 h");
  EXPECT_EQ(spanText(INT64_MIN), "-106751 d 23 h");
}

TEST(TimeText, ClocksAreSeconds) {
  EXPECT_EQ(clockText(0), "0.000000");
  EXPECT_EQ(clockText(16'240'999), "0.016240");
  EXPECT_EQ(clockText(3'600'000'001'000), "3600.000001");
  EXPECT_EQ(clockText(-1'500'000'000), "-1.500000");
}

TEST(TickRate, IsWrittenWithAUnitOrWithout) {
  EXPECT_EQ(readTickRate("2400000000"), 2'400'000'000u);
  EXPECT_EQ(readTickRate("2.4GHz"), 2'400'000'000u);
  EXPECT_EQ(readTickRate("2400MHz"), 2'400'000'000u);
  EXPECT_EQ(readTickRate("10GHz"), 10'000'000'000u);
  for (char const* text :
       {"", "0", "-1", "fast", "2.4 GHz", "2.4ghz", "11GHz", "0.5", "1e9", "nan", "inf"}) {
    EXPECT_EQ(readTickRate(text), std::nullopt) << text;
  }
}

TEST(StartTime, IsADayAndATimeInUtc) {
  EXPECT_EQ(readStartTime("1970-01-01T00:00:00Z"), 0u);
  EXPECT_EQ(readStartTime("2026-11-22T20:15:00Z"), 1'795'378'500'000'000'000u);
  EXPECT_EQ(readStartTime("2024-02-29T23:59:59.000000001Z"), 1'709'251'199'000'000'001u);
  EXPECT_EQ(readStartTime("2499-12-31T23:59:59.999999999Z"), 16'725'225'599'999'999'999u);
  for (char const* text :
       {"", "now", "2026-11-22", "2026-11-22T20:15:00", "2026-11-22 20:15:00Z",
        "2026-11-31T20:15:00Z", "2026-13-01T20:15:00Z", "2026-11-22T24:00:00Z",
        "2026-11-22T20:60:00Z", "2026-11-22T20:15:60Z", "2026-11-22T20:15:00.Z",
        "2026-11-22T20:15:00.1234567890Z", "2026-11-22T20:15:00,5Z", "1969-12-31T23:59:59Z",
        "2500-01-01T00:00:00Z", "2026-1a-22T20:15:00Z"}) {
    EXPECT_EQ(readStartTime(text), std::nullopt) << text;
  }
}

TEST(TickRate, OfThisComputerIsThatOfAProcessor) {
  uint64_t const rate = oxdiagview::measureTickRate();
  EXPECT_GT(rate, 100'000'000u);
  EXPECT_LT(rate, 10'000'000'000u);
}
