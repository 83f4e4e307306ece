#include "slotbusSupport.h"

using namespace nSLOTBUS100;

namespace {

// The limits stand in the sentences too; here they are kept together.
std::string const kGoodLine = " 4 | 5201004 | RACK\\DMM-75, RACK\\DMM | 7.5 digit multimeter ";

std::string lineWith(std::string const& slot, std::string const& instance, std::string const& ids,
                     std::string const& description) {
  return slot + "|" + instance + "|" + ids + "|" + description;
}

std::string lineWithSlot(std::string const& slot) {
  return lineWith(slot, "1", "A\\B", "text");
}
std::string lineWithInstance(std::string const& text) {
  return lineWith("1", text, "A\\B", "text");
}
std::string lineWithIds(std::string const& ids) {
  return lineWith("1", "1", ids, "text");
}
std::string lineWithDescription(std::string const& text) {
  return lineWith("1", "1", "A\\B", text);
}

bool isDevice(std::string const& text) {
  return tRackLine(tTextSpan(text.data(), text.size()), 1).isDevice();
}

}  // namespace

TEST(SlotbusLine, AGoodLineGivesItsFourFields) {
  tParsedLine const parsed = parseLine(kGoodLine, 17);
  EXPECT_EQ(parsed.status.getCode(), 0);
  EXPECT_EQ(parsed.device.slot, 4U);
  EXPECT_EQ(parsed.device.instance, 5201004U);
  EXPECT_EQ(textOf(parsed.device.hardwareIds), "RACK\\DMM-75, RACK\\DMM");
  EXPECT_EQ(textOf(parsed.device.description), "7.5 digit multimeter");
  EXPECT_EQ(parsed.device.lineNumber, 17U);
}

TEST(SlotbusLine, BlanksAndTabsAroundFieldsDoNotCount) {
  tParsedLine const parsed = parseLine("\t4\t|\t9 |\tA\\B\t|  x y\t");
  EXPECT_EQ(parsed.status.getCode(), 0);
  EXPECT_EQ(textOf(parsed.device.hardwareIds), "A\\B");
  EXPECT_EQ(textOf(parsed.device.description), "x y");
}

TEST(SlotbusLine, HardwareIdsAreTakenOneByOne) {
  tParsedLine const parsed = parseLine(lineWithIds("A\\1 , B\\2,C\\3"));
  ASSERT_EQ(parsed.status.getCode(), 0);
  tTextSpan ids = parsed.device.hardwareIds;
  EXPECT_EQ(textOf(tDevice::takeHardwareId(ids)), "A\\1");
  EXPECT_EQ(textOf(tDevice::takeHardwareId(ids)), "B\\2");
  EXPECT_EQ(textOf(tDevice::takeHardwareId(ids)), "C\\3");
  EXPECT_TRUE(ids.isEmpty());
}

TEST(SlotbusLine, BlankLinesAndCommentsDescribeNoDevice) {
  EXPECT_FALSE(isDevice(""));
  EXPECT_FALSE(isDevice(" \t"));
  EXPECT_FALSE(isDevice("# slot"));
  EXPECT_FALSE(isDevice("  # \xFF binary behind the mark"));
  EXPECT_TRUE(isDevice("1"));
  EXPECT_TRUE(isDevice("1 # not a comment"));
}

TEST(SlotbusLine, ANumberSignInADescriptionIsText) {
  EXPECT_EQ(textOf(parseLine(lineWithDescription("card #2")).device.description), "card #2");
}

TEST(SlotbusLine, MissingFieldsAreOneFailure) {
  EXPECT_EQ(codeOf("4"), kStatusMissingField);
  EXPECT_EQ(codeOf("4 | 5"), kStatusMissingField);
  EXPECT_EQ(codeOf("4 | 5 | A\\B"), kStatusMissingField);
}

TEST(SlotbusLine, AFifthFieldIsAFailure) {
  EXPECT_EQ(codeOf(lineWithDescription("text | more")), kStatusExtraField);
  EXPECT_EQ(codeOf(lineWithDescription("text |")), kStatusExtraField);
}

TEST(SlotbusLine, ASlotHasToBeANumber) {
  for (char const* slot : {"", "1O", "-1", "one", "1 2", "1.0"}) {
    EXPECT_EQ(codeOf(lineWithSlot(slot)), kStatusSlotNotANumber) << slot;
  }
}

TEST(SlotbusLine, SlotsFromOneTo99AreInRange) {
  EXPECT_EQ(codeOf(lineWithSlot("0")), kStatusSlotOutOfRange);
  EXPECT_EQ(codeOf(lineWithSlot("1")), 0);
  EXPECT_EQ(codeOf(lineWithSlot("99")), 0);
  EXPECT_EQ(codeOf(lineWithSlot("100")), kStatusSlotOutOfRange);
}

TEST(SlotbusLine, ASlotNumberThatWrapsIsOutOfRange) {
  EXPECT_EQ(codeOf(lineWithSlot("4294967297")), kStatusSlotOutOfRange);
  EXPECT_EQ(codeOf(lineWithSlot("18446744073709551617")), kStatusSlotOutOfRange);
}

TEST(SlotbusLine, AnInstanceHasToBeANumber) {
  for (char const* instance : {"", "S/N 12", "-1", "12h", "0x"}) {
    EXPECT_EQ(codeOf(lineWithInstance(instance)), kStatusInstanceNotANumber) << instance;
  }
}

TEST(SlotbusLine, AnInstanceHas64Bits) {
  EXPECT_EQ(parseLine(lineWithInstance("0xFFFFFFFFFFFFFFFF")).device.instance, UINT64_MAX);
  EXPECT_EQ(codeOf(lineWithInstance("0x10000000000000000")), kStatusInstanceTooLarge);
}

TEST(SlotbusLine, AnEmptyHardwareIdIsAFailure) {
  for (char const* ids : {"", " ", ",", "A\\B,", ",A\\B", "A\\B, ,C\\D"}) {
    EXPECT_EQ(codeOf(lineWithIds(ids)), kStatusNoHardwareId) << ids;
  }
}

TEST(SlotbusLine, ABlankInAHardwareIdIsAFailure) {
  EXPECT_EQ(codeOf(lineWithIds("A\\B C\\D")), kStatusBlankInHardwareId);
  EXPECT_EQ(codeOf(lineWithIds("A\\B\tC\\D")), kStatusBlankInHardwareId);
}

TEST(SlotbusLine, AHardwareIdHasAtMost201Characters) {
  EXPECT_EQ(codeOf(lineWithIds(std::string(200, 'h'))), 0);
  EXPECT_EQ(codeOf(lineWithIds(std::string(201, 'h'))), 0);
  EXPECT_EQ(codeOf(lineWithIds(std::string(202, 'h'))), kStatusHardwareIdTooLong);
}

TEST(SlotbusLine, AllHardwareIdsFitAMultiStringOf1024Characters) {
  // Five ids and their terminators: 5 * 201 + 5 = 1010, one more id has to fit into 13 with the
  // terminators of its own and of the list.
  std::string five = std::string(201, 'h');
  for (int more = 0; more < 4; ++more) five += "," + std::string(201, 'h');
  EXPECT_EQ(codeOf(lineWithIds(five + "," + std::string(11, 'h'))), 0);
  EXPECT_EQ(codeOf(lineWithIds(five + "," + std::string(12, 'h'))), 0);
  EXPECT_EQ(codeOf(lineWithIds(five + "," + std::string(13, 'h'))), kStatusHardwareIdsTooLong);
}

TEST(SlotbusLine, AnEmptyDescriptionIsAFailure) {
  EXPECT_EQ(codeOf(lineWithDescription("")), kStatusNoDescription);
  EXPECT_EQ(codeOf(lineWithDescription(" \t")), kStatusNoDescription);
}

TEST(SlotbusLine, ADescriptionHasAtMost120Characters) {
  EXPECT_EQ(codeOf(lineWithDescription(std::string(119, 'd'))), 0);
  EXPECT_EQ(codeOf(lineWithDescription(std::string(120, 'd'))), 0);
  EXPECT_EQ(codeOf(lineWithDescription(std::string(121, 'd'))), kStatusDescriptionTooLong);
}

TEST(SlotbusLine, CharactersThatAreNotPrintableAsciiAreAFailure) {
  for (int value = 0; value < 256; ++value) {
    bool const isPlain = (value >= 0x20 && value <= 0x7E && value != '|') || value == '\t';
    std::string const text = std::string("a") + static_cast<char>(value) + "b";
    i32 const wanted = isPlain ? 0 : value == '|' ? kStatusExtraField : kStatusBadCharacter;
    EXPECT_EQ(codeOf(lineWithDescription(text)), wanted) << "character " << value;
  }
}

TEST(SlotbusLine, ALineHasAtMost2000Bytes) {
  std::string const blanks(2000 - lineWithDescription("d").size() - 1, ' ');
  std::string const atLimit = "1|1|A\\B|" + blanks + "dd";
  ASSERT_EQ(atLimit.size(), 2000U);
  EXPECT_EQ(codeOf(atLimit), 0);
  EXPECT_EQ(codeOf(atLimit + "d"), kStatusLineTooLong);
}

TEST(SlotbusLine, OfSeveralFaultsTheFirstFromTheLeftIsTold) {
  EXPECT_EQ(codeOf("x | y | | "), kStatusSlotNotANumber);
  EXPECT_EQ(codeOf("1 | y | | "), kStatusInstanceNotANumber);
  EXPECT_EQ(codeOf("1 | 1 | | "), kStatusNoHardwareId);
  EXPECT_EQ(codeOf("x | \xB5 | | "), kStatusBadCharacter);
}

TEST(SlotbusLine, TheOffenceIsThePartThatIsWrong) {
  EXPECT_EQ(parseLine(lineWithSlot(" 1O ")).offence, "1O");
  EXPECT_EQ(parseLine(lineWithInstance("S12")).offence, "S12");
  EXPECT_EQ(parseLine(lineWithIds("A\\B, C D, E\\F")).offence, "C D");
}

TEST(SlotbusLine, TheOffenceIsTheLineWhenSomethingIsNotThere) {
  EXPECT_EQ(parseLine(" 4 | 5 ").offence, "4 | 5");
  EXPECT_EQ(parseLine(lineWithSlot("")).offence, lineWithSlot(""));
  EXPECT_EQ(parseLine(lineWithIds(",")).offence, lineWithIds(","));
  EXPECT_EQ(parseLine(lineWithDescription("")).offence, lineWithDescription(""));
}

TEST(SlotbusLine, AFailureLeavesTheDeviceAlone) {
  tDevice device;
  device.slot = 55;
  std::string const text = lineWithDescription("");
  tRackLine line(tTextSpan(text.data(), text.size()), 3);
  nOXDIAG100::tStatus2 status;
  line.read(device, status);
  EXPECT_EQ(status.getCode(), kStatusNoDescription);
  EXPECT_EQ(device.slot, 55U);
  EXPECT_EQ(device.lineNumber, 0U);
}

TEST(SlotbusLine, AnErrorOnEntryIsKeptAndNothingIsRead) {
  tDevice device;
  tRackLine line(tTextSpan(kGoodLine.data(), kGoodLine.size()), 3);
  nOXDIAG100::tStatus2 status(-5);
  line.read(device, status);
  EXPECT_EQ(status.getCode(), -5);
  EXPECT_EQ(device.slot, 0U);
}

TEST(SlotbusLine, AFailureTellsItsOrigin) {
  tParsedLine const parsed = parseLine(lineWithSlot("1O"));
  EXPECT_STREQ(parsed.status.getComponentName(), "slotbus");
  EXPECT_STREQ(parsed.status.getFileName(), "examples/slotbus/component/tRackLine.cpp");
  EXPECT_GT(parsed.status.getLineNumber(), 0U);
  u64 stack[10] = {};
  parsed.status.getStackTrace(stack);
  EXPECT_NE(stack[0], 0U);
}

TEST(SlotbusStatusCodes, EveryCodeHasASentenceOfItsOwn) {
  std::string const unknown = describeStatusCode(-1);
  std::string all;
  for (i32 code = kStatusTextNotPlain; code >= kStatusInstanceTaken; --code) {
    std::string const sentence = std::string(describeStatusCode(code)) + "\n";
    EXPECT_NE(sentence, unknown + "\n") << code;
    EXPECT_EQ(all.find(sentence), std::string::npos) << sentence;
    all += sentence;
  }
  EXPECT_NE(describeStatusCode(kWarningEmptyRack), unknown);
}

TEST(SlotbusStatusCodes, TheSentencesTellTheLimitsThatHold) {
  auto const tells = [](i32 code, u32 limit) {
    return std::string(describeStatusCode(code)).find(std::to_string(limit)) != std::string::npos;
  };
  EXPECT_TRUE(tells(kStatusLineTooLong, kMaxLineLength));
  EXPECT_TRUE(tells(kStatusSlotOutOfRange, kFirstSlot));
  EXPECT_TRUE(tells(kStatusSlotOutOfRange, kLastSlot));
  EXPECT_TRUE(tells(kStatusHardwareIdTooLong, kMaxHardwareIdLength));
  EXPECT_TRUE(tells(kStatusHardwareIdsTooLong, kMaxHardwareIdsLength));
  EXPECT_TRUE(tells(kStatusDescriptionTooLong, kMaxDescriptionLength));
  EXPECT_EQ(kMaxRackTextLength, 1U << 20);
}
