#include "sets/listing_words.h"

#include <string>

namespace {

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
const char *const CODES[] = {"cs", "en", "ru"};

} // namespace

const char *PST_FindWord(const std::string &key, int language)
{
    for (const Word &word : WORDS)
        if (key == word.key)
            return word.texts[language];
    return nullptr;
}

const char *PST_LanguageCode(int language)
{
    return CODES[language];
}
