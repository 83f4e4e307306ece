#include "slotbus/component/reportNumbers.h"
#include "slotbus/component/statusCodes.h"
#include "slotbus/words/words.h"

using nTRANSLATORS100::tEnumWord;
using nTRANSLATORS100::tVocabulary;
using nTRANSLATORS100::tWord;

namespace nSLOTBUS100 {
namespace {

constexpr tWord kUsageTypes[] = {
    {kUsageLine, L"Zeile"},
    {kUsageField, L"Feld"},
    {kUsageFound, L"gefunden"},
    {kUsageAllowed, L"erlaubt"},
    {kUsageLength, L"erlaubte L\u00E4nge"},
    {kUsageForms, L"Schreibweisen"},
    {kUsageEarlierLine, L"fr\u00FChere Zeile"},
    {kUsageBus, L"Bus"},
    {kUsageTime, L"Zeitpunkt"},
    {kStatusTextNotPlain, L"die Datei ist UTF-16 und nicht einfacher Text (ASCII oder UTF-8)"},
    {kStatusTextTooLong, L"die Datei ist l\u00E4nger als 1 MiB"},
    {kStatusLineTooLong, L"die Zeile ist l\u00E4nger als 2000 Bytes"},
    {kStatusBadCharacter, L"in der Zeile steht ein Zeichen, das kein druckbares ASCII ist"},
    {kStatusMissingField, L"ein Feld fehlt"},
    {kStatusExtraField, L"es sind mehr als vier Felder"},
    {kStatusSlotNotANumber, L"der Steckplatz ist keine Zahl"},
    {kStatusSlotOutOfRange, L"der Steckplatz liegt nicht im Bereich 1 bis 99"},
    {kStatusInstanceNotANumber, L"die Instanz ist keine Zahl"},
    {kStatusInstanceTooLarge, L"die Instanz passt nicht in 64 Bit"},
    {kStatusNoHardwareId, L"eine Hardware-ID fehlt"},
    {kStatusBlankInHardwareId, L"in einer Hardware-ID steht ein Leerzeichen"},
    {kStatusHardwareIdTooLong, L"eine Hardware-ID ist l\u00E4nger als 201 Zeichen"},
    {kStatusHardwareIdsTooLong, L"die Hardware-IDs sind zusammen l\u00E4nger als 1024 Zeichen"},
    {kStatusNoDescription, L"die Beschreibung fehlt"},
    {kStatusDescriptionTooLong, L"die Beschreibung ist l\u00E4nger als 120 Zeichen"},
    {kStatusSlotTaken, L"der Steckplatz ist von einer fr\u00FCheren Zeile belegt"},
    {kStatusInstanceTaken, L"die Instanz hat schon eine fr\u00FChere Zeile"},
    {kWarningEmptyRack, L"das Rack ist leer"},
};

constexpr tWord kProperties[] = {
    {kPropertySlot, L"Steckplatz"},
    {kPropertyInstance, L"Instanz"},
    {kPropertyHardwareIds, L"Hardware-IDs"},
    {kPropertyDescription, L"Beschreibung"},
    {kPropertyNumberForm, L"Schreibweise einer Zahl"},
};

constexpr tEnumWord kEnumValues[] = {
    {kPropertyNumberForm, kNumberFormDecimal, L"Dezimalziffern"},
    {kPropertyNumberForm, kNumberFormHexadecimal, L"0x und Hexadezimalziffern"},
};

}  // namespace

constinit tVocabulary const kGermanWords(kUsageTypes, kProperties, kEnumValues);

}  // namespace nSLOTBUS100
