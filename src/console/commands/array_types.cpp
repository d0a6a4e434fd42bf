// The one table of element types, and everything that depends on a type's width or sign.
// Target bytes come least significant first.
#include "console/commands/array_types.h"

#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <cstring>

#include "comm/sysaddr.h"
#include "console/monitor/text_box.h"
#include "console/script/script_command.h"
#include "settings/settings.h"
#include "text/bytes.h"
#include "text/tokens.h"
#include "text/words.h"
#include "text/xscan.h"

const ArrayType SCR_aArrayTypes[ARRAY_TYPES] = {
    {"i1", "I1", 1, true, false, 4},  {"i2", "I2", 2, true, false, 7},
    {"i4", "I4", 4, true, false, 14}, {"u1", "U1", 1, false, false, 3},
    {"u2", "U2", 2, false, false, 6}, {"u4", "U4", 4, false, false, 12},
    {"f4", "F4", 4, false, true, 12},
};

namespace {

// Patterns of a whole line: what stands behind the number makes it none.
const char SIGNED_LINE[] = "* ?#+/-.@#0-9.* #";
const char UNSIGNED_LINE[] = "* @#0-9.* #";
const char FLOAT_LINE_HEAD[] = "* ?#+/-.@#0-9.?/.*#0-9.";
const char FLOAT_LINE_EXPONENT[] = "#eE.?#+/-.@#0-9.";
const char LINE_END[] = "* #";

ArrayParse ParseFloat(const char *line, uint8_t *bytes)
{
    // The exponent is optional, and the scanner has no optional groups: two patterns.
    const char *cursor = line;
    if (xscan(FLOAT_LINE_HEAD, &cursor) < 0)
        return ARRAY_NO_VALUE;
    xscan(FLOAT_LINE_EXPONENT, &cursor);
    if (xscan(LINE_END, &cursor) < 0)
        return ARRAY_NO_VALUE;
    const float value = std::strtof(line, nullptr);
    // The exponent may have any number of digits.
    if (!std::isfinite(value))
        return ARRAY_OUT_OF_RANGE;
    uint32_t bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    TXT_PutLittle(bytes, sizeof bits, bits);
    return ARRAY_OK;
}

// Transfers go to the memory of STATION. A name that lies elsewhere has no place in it:
// one of another station, and one of the TMS320 behind a C166.
uint32_t FindPlace(const char *name)
{
    const int station = GetStationModifier(&name);
    name = TXT_SkipBlanks(name);
    const bool isOfStation = station < 0 || station == STATION;
    const bool isTms = *name == '&' && !IsWordAddressing(Procesor);
    return isOfStation && !isTms ? GetSysAddrWk(name) : ADDR_NONE;
}

} // namespace

const ArrayType *SCR_FindArrayType(const std::string &name)
{
    for (const ArrayType &type : SCR_aArrayTypes)
        if (TXT_IsSameWord(name, type.name))
            return &type;
    return nullptr;
}

bool ExecPar(ScrPar *par, int count)
{
    for (ScrPar *end = par + count; par != end; par++) {
        if (!(par->flags & PAR_ADDRESS))
            continue;
        // A number stands for itself; it must be an address all the same.
        if ((par->flags & PAR_NAME) && !(par->flags & PAR_LONG))
            par->value = FindPlace(par->text);
        if (par->value >= ADDR_LIMIT)
            return false;
    }
    return true;
}

int SCR_ResolveArray(ScrPar *par, const char *label, const char *typeLabel, ArrayRequest *request)
{
    if (!ExecPar(par, 3))
        return SCR_Fail(TXT_Format("%s: Neplatne parametry skriptu.", label));
    request->type = SCR_FindArrayType(par[1].text);
    if (!request->type)
        return SCR_Fail(
            TXT_Format("%s Podporovane typy jsou: i1, u1, i2, u2, i4, u4, f4.", typeLabel));
    request->place = (par[0].flags & PAR_NAME) ? par[0].text : "";
    request->address = par[0].value;
    request->count = par[2].value;
    // A count has 16 bits and an element four bytes at most: the product fits.
    if (request->count * request->type->size > ADDR_LIMIT - request->address)
        return SCR_Fail(TXT_Format("%s: Neplatne parametry skriptu.", label));
    return 0;
}

std::string SCR_FormatPlace(const ArrayRequest &request, const char *addressPrefix)
{
    if (!request.place.empty())
        return TXT_Format("'%s[%u]'", request.place.c_str(), request.count);
    return TXT_Format("'%s%x[%u]'", addressPrefix, request.address, request.count);
}

uint32_t SCR_GetElement(const ArrayType &type, const uint8_t *bytes)
{
    const uint32_t bits = static_cast<uint32_t>(TXT_GetLittle(bytes, type.size));
    const uint32_t sign = 1u << (8 * type.size - 1);
    // The upper bits repeat the sign, so that every integer type prints as 32 bits.
    return type.isSigned && (bits & sign) ? bits | ~(2 * sign - 1) : bits;
}

std::string SCR_FormatElement(const ArrayType &type, const uint8_t *bytes)
{
    const uint32_t bits = SCR_GetElement(type, bytes);
    if (type.isFloat) {
        float value = 0;
        std::memcpy(&value, &bits, sizeof value);
        return TXT_Format("%g\n", static_cast<double>(value));
    }
    return type.isSigned ? TXT_Format("%d\n", static_cast<int32_t>(bits))
                         : TXT_Format("%u\n", bits);
}

ArrayParse SCR_ParseElement(const ArrayType &type, const char *line, uint8_t *bytes)
{
    if (type.isFloat)
        return ParseFloat(line, bytes);
    const char *cursor = line;
    if (xscan(type.isSigned ? SIGNED_LINE : UNSIGNED_LINE, &cursor) < 0)
        return ARRAY_NO_VALUE;
    errno = 0; // the pattern bounds no number of digits
    const long long value = std::strtoll(line, nullptr, 10);
    // Counted in 64 bits, which hold both bounds of every type.
    const long long span = 1LL << (8 * type.size);
    const long long low = type.isSigned ? -span / 2 : 0;
    if (errno != 0 || value < low || value >= low + span)
        return ARRAY_OUT_OF_RANGE;
    TXT_PutLittle(bytes, type.size, static_cast<uint32_t>(value));
    return ARRAY_OK;
}
