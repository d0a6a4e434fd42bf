// A place is a row of a table: what it shows is asked of the group, the value, the file that the
// template is being repeated for. Outside of what it belongs to it shows nothing.
#include "sets/listing_places.h"

#include "sets/value.h"
#include "settings/settings.h"

#include <algorithm>
#include <filesystem>

namespace {

const char NO_VALUE[] = "–";           // an empty cell would look forgotten
const char MARK_CHANGED[] = "changed"; // class of a value that is not its default
const char MARK_DIFFERS[] = "differs"; // ... that is not the first file's

struct Word {
    const char *key;
    const char *texts[3]; // Czech, English, Russian
};
const Word WORDS[] = {
    {"title", {"Parametry", "Parameters", "Параметры"}},
    {"comparison", {"Porovnání parametrů", "Comparison of parameters", "Сравнение параметров"}},
    {"name", {"Název", "Name", "Имя"}},
    {"text", {"Význam", "Meaning", "Значение параметра"}},
    {"value", {"Hodnota", "Value", "Величина"}},
    {"raw", {"V zařízení", "In the device", "В устройстве"}},
    {"unit", {"Jednotka", "Unit", "Единица"}},
    {"type", {"Typ", "Type", "Тип"}},
    {"limits", {"Meze", "Limits", "Пределы"}},
    {"default", {"Výchozí", "Default", "По умолчанию"}},
    {"device", {"Zařízení", "Device", "Устройство"}},
    {"processor", {"Procesor", "Processor", "Процессор"}},
    {"station", {"Stanice", "Station", "Станция"}},
    {"map", {"Mapa", "Map", "Карта"}},
    {"date", {"Datum", "Date", "Дата"}},
    {"time", {"Čas", "Time", "Время"}},
    {"file", {"Soubor", "File", "Файл"}},
    {"values", {"Počet hodnot", "Values", "Количество величин"}},
    {"differences", {"Rozdíly", "Differences", "Различия"}},
    {"printed", {"Vytištěno", "Printed", "Напечатано"}},
    {"changed",
     {"* jiná než výchozí hodnota", "* other than the default", "* отличается от умолчания"}},
    {"marked",
     {"≠ liší se od prvního souboru", "≠ differs from the first file",
      "≠ отличается от первого "
      "файла"}},
};
const char *const LANGUAGE_CODES[] = {"cs", "en", "ru"}; // as HTML has them

const PST_File &FileAt(const PST_Spot &spot)
{
    return (*spot.files)[spot.file];
}

// In a row the value of the file at hand, null where that has none.
const PST_Record *ValueAt(const PST_Spot &spot)
{
    return spot.isInRow ? spot.row->records[spot.file] : nullptr;
}

// The first file's that has the value: there is one, or there were no row.
const PST_Record *AnyRecord(const PST_Spot &spot)
{
    const auto &records = spot.row->records;
    return *std::find_if(records.begin(), records.end(), [](const PST_Record *r) { return r; });
}

std::string ShownValue(const PST_Spot &spot)
{
    const PST_Record *record = ValueAt(spot);
    double number = 0;
    if (record == nullptr)
        return NO_VALUE;
    // Plain bytes are no number that a factor could be put to.
    const bool isBytes = record->cast.empty() && record->value.find(' ') != std::string::npos;
    if (isBytes || record->attributes.factor == 1 || !PST_GetNumber(*record, &number))
        return record->value;
    return PST_ShownNumber(number * record->attributes.factor);
}

std::string ScaledText(bool isThere, double number, double factor)
{
    return isThere ? PST_ShownNumber(number * factor) : "";
}

// Against the first file where there are several, else against the default.
std::string MarkText(const PST_Spot &spot)
{
    if (!spot.isInRow)
        return "";
    const PST_Record *record = ValueAt(spot);
    if (spot.files->size() > 1) {
        const bool isOther =
            spot.isInFile ? !PST_IsSameRecord(spot.row->records[0], record) : spot.row->differs;
        return isOther ? MARK_DIFFERS : "";
    }
    double number = 0;
    if (record == nullptr || !record->attributes.hasDefault || !PST_GetNumber(*record, &number))
        return "";
    double expected = record->attributes.defaultValue;
    // The value has been through a float, and so must the default be.
    if (record->cast == "(float)")
        expected = static_cast<double>(static_cast<float>(expected));
    return number == expected ? "" : MARK_CHANGED;
}

std::string LimitsText(const PST_Spot &spot)
{
    if (!spot.isInRow)
        return "";
    const PST_Attributes &a = AnyRecord(spot)->attributes;
    if (!a.hasMin && !a.hasMax)
        return "";
    return ScaledText(a.hasMin, a.min, a.factor) + " … " + ScaledText(a.hasMax, a.max, a.factor);
}

struct PlaceRow {
    const char *name;
    std::string (*text)(const PST_Spot &spot);
};
const PlaceRow PLACES[] = {
    // of the file
    {"file",
     [](const PST_Spot &s) {
         return std::filesystem::u8path(FileAt(s).path).filename().u8string();
     }},
    {"date", [](const PST_Spot &s) { return FileAt(s).date; }},
    {"time", [](const PST_Spot &s) { return FileAt(s).time; }},
    {"device", [](const PST_Spot &s) { return FileAt(s).device; }},
    {"processor", [](const PST_Spot &s) { return FileAt(s).processor; }},
    {"station", [](const PST_Spot &s) { return FileAt(s).station; }},
    {"map", [](const PST_Spot &s) { return FileAt(s).map; }},
    {"header", [](const PST_Spot &s) { return FileAt(s).header; }},
    {"number", [](const PST_Spot &s) { return std::to_string(s.file + 1); }},
    // of the whole listing
    {"values", [](const PST_Spot &s) { return std::to_string(s.rows->size()); }},
    {"differences",
     [](const PST_Spot &s) {
         return std::to_string(std::count_if(s.rows->begin(), s.rows->end(),
                                             [](const PST_Row &row) { return row.differs; }));
     }},
    {"language", [](const PST_Spot &s) { return std::string(LANGUAGE_CODES[s.language]); }},
    {"now", [](const PST_Spot &s) { return s.now; }},
    // of the group, its heading, the value
    {"group", [](const PST_Spot &s) { return s.row != nullptr ? s.row->group : ""; }},
    {"heading", [](const PST_Spot &s) { return s.row != nullptr ? s.row->heading : ""; }},
    {"name", [](const PST_Spot &s) { return s.isInRow ? s.row->name : ""; }},
    {"value", ShownValue},
    // as it stands in the file, without the factor
    {"raw", [](const PST_Spot &s) { return ValueAt(s) != nullptr ? ValueAt(s)->value : NO_VALUE; }},
    {"mark", MarkText},
    {"sign",
     [](const PST_Spot &s) {
         const std::string mark = MarkText(s);
         return std::string(mark == MARK_DIFFERS ? "≠" : mark == MARK_CHANGED ? "*" : "");
     }},
    // of the whole row, where "mark" is of one file in it
    {"rowmark",
     [](const PST_Spot &s) {
         return std::string(s.isInRow && s.row->differs ? MARK_DIFFERS : "");
     }},
    {"text", [](const PST_Spot &s) { return s.isInRow ? AnyRecord(s)->attributes.text : ""; }},
    {"unit", [](const PST_Spot &s) { return s.isInRow ? AnyRecord(s)->attributes.unit : ""; }},
    {"limits", LimitsText},
    {"default",
     [](const PST_Spot &s) {
         if (!s.isInRow)
             return std::string();
         const PST_Attributes &a = AnyRecord(s)->attributes;
         return ScaledText(a.hasDefault, a.defaultValue, a.factor);
     }},
    {"type",
     [](const PST_Spot &s) { // a cast without its brackets
         const std::string cast = s.isInRow ? AnyRecord(s)->cast : "";
         return cast.size() > 2 ? cast.substr(1, cast.size() - 2) : std::string();
     }},
};

// Null when there is none of that name.
const PlaceRow *FindPlace(const std::string &name)
{
    for (const PlaceRow &row : PLACES)
        if (name == row.name)
            return &row;
    return nullptr;
}

// The word behind "t.", null when `name` is none.
const Word *FindWord(const std::string &name)
{
    if (name.compare(0, 2, "t.") != 0)
        return nullptr;
    const std::string key = name.substr(2);
    for (const Word &word : WORDS)
        if (key == word.key)
            return &word;
    return nullptr;
}

} // namespace

bool PST_IsPlace(const std::string &name)
{
    return FindPlace(name) != nullptr || FindWord(name) != nullptr;
}

std::string PST_GetPlaceText(const PST_Spot &spot, const std::string &name)
{
    const Word *word = FindWord(name);
    return word != nullptr ? word->texts[spot.language] : FindPlace(name)->text(spot);
}
