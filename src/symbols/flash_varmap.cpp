// The layouts of a variable map: plain lines, lines with shared names, packed records. All become
// the plain one first, which is the one that archives hold.
#include "symbols/flash_varmap.h"

#include "settings/limits.h"
#include "symbols/packed_names.h"
#include "text/bytes.h"
#include "text/txfrw.h"
#include "text/xscan.h"

#include <cinttypes>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

constexpr uint32_t BYTES_PER_ADDRESS = 2; // a variable map counts 16-bit words
constexpr size_t FORM_LINE_SIZE = 3;      // "#1" or "#2" and a line feed
constexpr size_t RECORD_ADDRESS_SIZE = 4;

void AppendMapLine(std::string *text, uint32_t address, const std::string &name)
{
    char line[16];
    std::snprintf(line, sizeof line, "%06" PRIX32 " ", address);
    *text += line + name + "\n";
}

// Lines whose names share their beginning with the line before.
bool UnpackLines(const char *at, std::string *text)
{
    std::string name;
    for (int lines = 0; *at != '\0' && lines < TXFRW_LINES_MAX; lines++) {
        const char *end = at;
        if (xscan("*^\r\n.@#\r\n.", &end) < 0)
            end = at + std::strlen(at);
        const std::string line(at, std::strcspn(at, "\r\n"));
        const char *cursor = line.c_str();
        const uint32_t address = static_cast<uint32_t>(std::strtoul(cursor, nullptr, 16));
        if (xscan("@#0-9a-fA-F. ", &cursor) < 0)
            return false;
        const size_t size = std::strlen(cursor) + 1; // with the end: names are closed by it
        if (UnpackVarName(&name, reinterpret_cast<const uint8_t *>(cursor), size, NAME_SHARED) <
                0 ||
            name.size() > NODE_NAME_MAX)
            return false;
        AppendMapLine(text, address, name);
        at = end;
    }
    return true;
}

// Records of a 32-bit address, low byte first, and a packed name.
bool UnpackRecords(const uint8_t *at, size_t size, std::string *text)
{
    std::string name;
    for (int lines = 0; size > RECORD_ADDRESS_SIZE && lines < TXFRW_LINES_MAX; lines++) {
        const uint32_t address = static_cast<uint32_t>(TXT_GetLittle(at, RECORD_ADDRESS_SIZE));
        const int used = UnpackVarName(&name, at + RECORD_ADDRESS_SIZE, size - RECORD_ADDRESS_SIZE,
                                       NAME_SHARED_6BIT);
        if (used < 0 || name.size() > NODE_NAME_MAX)
            return false;
        if (name.empty()) // fills up to an even length
            return true;
        AppendMapLine(text, address, name);
        at += RECORD_ADDRESS_SIZE + static_cast<size_t>(used);
        size -= RECORD_ADDRESS_SIZE + static_cast<size_t>(used);
    }
    return true;
}

} // namespace

int MFS_ParseVarMap(int handle, std::vector<SYM_Symbol> *variables)
{
    for (int i = 0; i < TXFRW_GetCnLines(handle); i++) {
        const char *line = TXFRW_GetLinePtr(handle, i);
        const char *cursor = line;
        if (xscan("* #", &cursor) >= 0) // an empty line
            continue;
        if (xscan("@#0-9a-fA-F. ", &cursor) < 0 || *cursor == '\0')
            return MFS_ERR_NO_MAP;
        const unsigned long long words = std::strtoull(line, nullptr, 16);
        if (words >= ADDR_LIMIT / BYTES_PER_ADDRESS)
            return MFS_ERR_ADDRESS;
        variables->push_back({static_cast<uint32_t>(words) * BYTES_PER_ADDRESS, cursor});
    }
    return variables->empty() ? MFS_ERR_NO_MAP : 0;
}

int MFS_ReplaceVariables(const std::vector<SYM_Symbol> &variables, VarNode *table, int *count)
{
    int refused = 0;
    const int taken = SYM_ReplaceNodes(table, count, variables, &refused);
    SYM_WarnRefused(refused, 0);
    return taken;
}

int MFS_OpenVarMap(const char *name, const std::string &content)
{
    const std::string form = content.substr(0, FORM_LINE_SIZE);
    if (form != "#1\n" && form != "#2\n")
        return TXFRW_Create(name, "r", content.data(), content.size());
    std::string text;
    const char *packed = content.c_str() + FORM_LINE_SIZE;
    const bool isGood = form == "#1\n" ? UnpackLines(packed, &text)
                                       : UnpackRecords(reinterpret_cast<const uint8_t *>(packed),
                                                       content.size() - FORM_LINE_SIZE, &text);
    return isGood ? TXFRW_Create(name, "r", text.data(), text.size()) : MFS_ERR_NO_MAP;
}
