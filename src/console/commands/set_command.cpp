// The command `set`. Of a type that only the name's prefix tells, nothing is certain: such a
// value must end before the map's next symbol, or the user has to name the type.
#include "console/commands/set_command.h"

#include <algorithm>

#include "comm/sysaddr.h"
#include "console/commands/commands.h"
#include "console/monitor/text_box.h"
#include "console/script/script_command.h"
#include "settings/settings.h"
#include "symbols/assignment.h"
#include "symbols/typemap.h"
#include "symbols/typemap_list.h"
#include "symbols/varnode.h"
#include "text/tokens.h"
#include "text/words.h"
#include "watch/list/typed_item.h"
#include "watch/value/value_types.h"
#include "watch/value/write_value.h"

namespace {

const char NO_SUCH_PART[] = "there is no such member or element.";
constexpr int TMS_BYTES = 4; // the mailbox moves whole words

// What the target is made of, without station and cast.
struct Name {
    std::string path;      // "&stMotor[2].nSpeed+4"
    std::string variable;  // "stMotor"
    std::string component; // the last one: "nSpeed"
    std::string index;     // "3" when the path is a name with one index, else ""
    bool isTms = false;
    bool isAddress = false; // "$8100"
};

Name Dissect(const std::string &path)
{
    Name name;
    name.path = path;
    name.isTms = path[0] == '&';
    const std::string bare = path.substr(name.isTms ? 1 : 0);
    name.isAddress = bare[0] == '$' || bare[0] == '0';
    name.variable = bare.substr(0, bare.find_first_of(" .+-["));
    const size_t dot = bare.rfind('.');
    name.component = bare.substr(dot == std::string::npos ? 0 : dot + 1);
    name.component.erase(0, name.component.find_first_not_of("_"));
    name.component.resize(std::min(name.component.find_first_of(" +-["), name.component.size()));
    const size_t open = bare.find('['), close = bare.find(']');
    if (open != std::string::npos && close + 1 == bare.size())
        name.index = TXT_Trim(bare.substr(open + 1, close - open - 1));
    return name;
}

void SetType(LItem *item, int32_t code)
{
    const bool isSigned = code == ATP_I1 || code == ATP_I2 || code == ATP_I4;
    item->type = code == ATP_F4 ? 'f' : isSigned ? 'i' : 'u';
    item->size = ATP_SizeOf(static_cast<uint32_t>(code));
}

// The casts of assignments, and the types of the watch list.
bool TypeByCast(const std::string &cast, LItem *item, std::string *problem)
{
    const int32_t code = StrToATP(("(" + cast + ")").c_str());
    if (code > 0)
        SetType(item, code);
    else if (VAL_IsTypeField(cast))
        VAL_SetFromField(item, cast.c_str());
    else
        *problem = "'" + cast + "' is no type: i1, u1, i2, u2, i4, u4, float, or a type of the " +
                   "watch list.";
    return problem->empty();
}

// False with a problem when the type map knows the place and no value stands there; false
// without one when it does not know it.
bool TypeByMap(const Name &name, LItem *item, std::string *problem)
{
    uint32_t chain[TMF_CHAIN_SIZE];
    uint32_t offset = 0;
    const std::string path = name.path.substr(name.isTms ? 1 : 0);
    if (path.find_first_of("+-") != std::string::npos)
        return false; // behind an offset lies something else
    if (TMF_GetEfType(path.c_str(), chain, &offset) != 0) {
        if (TMF_FindVarDecl(name.variable.c_str()) != nullptr)
            *problem = NO_SUCH_PART;
        return false;
    }
    if ((chain[0] & TMF_DERIVATION) == TMF_ARRAY)
        *problem = "it is an array: name an element, as " + name.path + "[0].";
    else if (TMF_IsRecord(chain[0]))
        *problem = "it is a structure: name a member.";
    else
        return TMF_SuggestItem(path.c_str(), &item->type, &item->size) == 0;
    return false;
}

// The map may list registers, too.
bool IsRegister(const Name &name)
{
    const int known = SYM_FindName(aVarNode166, nNodes166, name.path.c_str());
    const int mapped = SYM_FindName(aVarNode, nNodes, name.path.c_str());
    return known >= 0 && (mapped < 0 || aVarNode[mapped].addr == aVarNode166[known].addr);
}

// The TMS320 has registers of two words, and nothing but the next one's place tells which.
bool IsOneWord(const Name &name)
{
    if (!IsWordAddressing(Procesor))
        return true;
    const uint32_t address = GetSysAddrWk(name.path.c_str());
    const VarNode *next = SYM_RegisterAtOrAfter(address + 1);
    return next && next->addr < address + 4;
}

// As assignments have it; then with a module's prefix in front ("DRV_nSpeed"), and registers.
bool TypeByName(const Name &name, LItem *item, std::string *problem)
{
    const int32_t code = GetPfxType(name.component.c_str());
    if (code == ATP_SZ || code == ATP_RS)
        *problem = "texts cannot be set.";
    else if (code > 0)
        SetType(item, code);
    else if (!DetectTypeByName(item, name.component.c_str()) && IsRegister(name) && IsOneWord(name))
        SetType(item, ATP_U2);
    else if (item->size == 0)
        *problem = "its type is not known: say it, as (u2) " + name.path + ".";
    return problem->empty();
}

// An element of an array that the type map does not know: its type tells where it lies.
uint32_t ElementAddress(const Name &name, const LItem &item)
{
    uint32_t index = 0;
    const char *digits = name.index.c_str();
    const bool isHex = name.index.compare(0, 2, "0x") == 0;
    if (name.isTms || name.index.empty() || TMF_FindVarDecl(name.variable.c_str()) != nullptr ||
        !(isHex ? TXT_ParseAddress(&digits, &index) : TXT_ParseDecimal(&digits, &index)) ||
        *digits != '\0' || index >= ADDR_LIMIT)
        return ADDR_NONE;
    const uint32_t start = GetSysAddrWk(name.variable.c_str());
    const uint32_t stride = item.size == 1 && IsWordAddressing(Procesor) ? 2 : 0;
    const uint64_t address =
        uint64_t{start} + uint64_t{index} * (stride ? stride : static_cast<uint32_t>(item.size));
    return start != ADDR_NONE && address < ADDR_LIMIT ? static_cast<uint32_t>(address) : ADDR_NONE;
}

bool IsVariable(const Name &name, const std::string &variable)
{
    return GetSysAddrWk(((name.isTms ? "&" : "") + variable).c_str()) != ADDR_NONE;
}

// Compilers put a "_" in front of C names; who types without it means them too.
bool FindVariable(Name *name)
{
    if (name->isAddress || IsVariable(*name, name->variable))
        return true;
    if (!IsVariable(*name, "_" + name->variable))
        return false;
    name->path.insert(name->isTms ? 1 : 0, "_");
    name->variable.insert(0, "_");
    return true;
}

bool FindType(const Name &name, const std::string &cast, LItem *item, bool *isGuess,
              std::string *problem)
{
    *isGuess = false;
    item->size = 0;
    if (!cast.empty())
        return TypeByCast(cast, item, problem);
    if (name.isAddress) {
        *problem = "an address has no type: say it, as (u2) " + name.path + ".";
        return false;
    }
    if (TypeByMap(name, item, problem))
        return true;
    *isGuess = true;
    return problem->empty() && TypeByName(name, item, problem);
}

bool FindPlace(const Name &name, bool isGuess, LItem *item, std::string *problem)
{
    item->name = name.isTms ? "&" : "";
    // An address behind "&" counts the TMS320's words, and stands without the mark.
    const size_t mark = name.isAddress && name.isTms ? 1 : 0;
    item->address = GetSysAddrWk(name.path.c_str() + mark);
    uint32_t start = item->address;
    if (item->address == ADDR_NONE) {
        item->address = ElementAddress(name, *item);
        start = GetSysAddrWk(name.variable.c_str());
        isGuess = true;
    }
    if (item->address == ADDR_NONE) {
        *problem = name.isAddress ? "the target has no such address." : NO_SUCH_PART;
        return false;
    }
    if (!isGuess || name.isTms || openStruct == OPEN_NONE)
        return true;
    // A guessed type must not reach into the map's next symbol.
    const VarNode *next = SYM_MapNodeAtOrAfter(start + 1);
    if (!next || next->addr >= item->address + static_cast<uint32_t>(item->size))
        return true;
    *problem = "as " + VAL_TypeField(*item) + " it would run into " + next->name +
               ": say the type, as (u1) " + name.path + ".";
    return false;
}

} // namespace

int SCR_ParseSet(const std::string &text, SCR_SetRequest *request, std::string *problem)
{
    AssnLine line;
    if (SYM_SplitAssignment(text.c_str(), &line) < 0) {
        *problem = "write a name, or name = value.";
        return -1;
    }
    *request = SCR_SetRequest();
    request->target = line.target;
    request->isWrite = line.hasValue;
    request->value = line.value;
    request->item.station = line.station;
    if (line.station > STATION_MAX) {
        *problem = "the station is 0 to " + std::to_string(STATION_MAX) + ".";
        return -1;
    }
    LItem *item = &request->item;
    Name name = Dissect(line.path);
    bool isGuess = false;
    std::string reason;
    if (!FindVariable(&name))
        reason = "no loaded map knows this name.";
    else if (FindType(name, line.cast, item, &isGuess, &reason) && name.isTms &&
             !VAL_FindType(item->type)->isForTMS)
        reason = "a TMS320 value has four bytes.";
    if (name.isTms)
        item->size = TMS_BYTES;
    if (reason.empty() && FindPlace(name, isGuess, item, &reason))
        return 0;
    *problem = line.target + ": " + reason;
    return -1;
}

int SCR_ExecuteSet(SCR_SetRequest *request, std::string *result)
{
    LItem *item = &request->item;
    std::string message;
    int code = VAL_WRITE_OK;
    if (request->isWrite) {
        code = VAL_WriteUnlisted(item, request->value, &message);
    } else {
        code = VAL_ReadUnlisted(item, &message);
        message = "it could not be read: " + message + ".";
    }
    *result = code == VAL_WRITE_OK ? VAL_GetValueText(*item) : request->target + ": " + message;
    return code == VAL_WRITE_OK ? 0 : -1;
}

std::string SCR_TypeAndPlace(const SCR_SetRequest &request)
{
    const LItem &item = request.item;
    const bool isWords = IsWordAddressing(Procesor) && !LIT_IsTMS(item);
    const char *kind = LIT_IsTMS(item) ? "TMS320 word " : isWords ? "word " : "";
    std::string text = TXT_Format("%s at %s0x%06X", VAL_TypeField(item).c_str(), kind,
                                  isWords ? item.address / 2 : item.address);
    if (isWords && item.address % 2 != 0)
        text += ", upper half";
    return item.station < 0 ? text : text + TXT_Format(", station %d", item.station);
}

// The parameter is the whole line, the command's word in front.
int SCR_Set(ScrPar *par)
{
    SCR_SetRequest request;
    std::string problem;
    const char *assignment = par[0].text + TXT_NameLength(par[0].text);
    if (SCR_ParseSet(assignment, &request, &problem) < 0 || SCR_ExecuteSet(&request, &problem) < 0)
        return SCR_Fail("set: " + TXT_Visible(problem));
    CON_Print("%s = %s (%s)", request.target.c_str(), problem.c_str(),
              SCR_TypeAndPlace(request).c_str());
    return 0;
}
