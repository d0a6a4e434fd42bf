#include "support/flash_builder.h"

#include "symbols/typemap.h"

#include <algorithm>
#include <cstdio>

namespace {

const std::string BASE64 = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
const std::string CODES_6B = ".ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789_";

std::string PackDecl(const TMF_Decl &decl)
{
    std::string packed = decl.name;
    for (int i = 0; i < decl.codes; i++)
        packed += FLB_PackCode(decl.chain[i]);
    return packed;
}

size_t SharedLength(const std::string &a, const std::string &b)
{
    const size_t most = std::min({a.size(), b.size(), size_t{127}});
    return static_cast<size_t>(
        std::mismatch(a.begin(), a.begin() + static_cast<long>(most), b.begin()).first - a.begin());
}

} // namespace

std::string FLB_Pack6b(const std::string &name)
{
    std::string packed((name.size() * 6 + 6 + 7) / 8, '\0');
    for (size_t bit = 0; bit < name.size() * 6; bit++) {
        const size_t code = CODES_6B.find(name[bit / 6], 1);
        if ((code >> bit % 6 & 1) != 0)
            packed[bit / 8] = static_cast<char>(packed[bit / 8] | 1 << bit % 8);
    }
    return packed;
}

std::string FLB_PackCode(uint32_t typeCode)
{
    std::string digits;
    for (uint32_t low = typeCode & 0xFFFFFF; low != 0 || digits.empty(); low /= 64)
        digits.insert(digits.begin(), BASE64[low % 64]);
    return static_cast<char>(0x80 | typeCode >> 24) + digits;
}

std::string FLB_PackVarMap(const FlashVars &vars, int form)
{
    std::string packed = form == 0 ? "" : "#" + std::to_string(form) + "\n";
    std::string before;
    for (const auto &[address, name] : vars) {
        const size_t shared = form == 0 ? 0 : SharedLength(before, name);
        const std::string mark = shared > 0 ? std::string(1, static_cast<char>(0x80 | shared)) : "";
        char text[16];
        std::snprintf(text, sizeof text, "%08X ", address);
        if (form != 2)
            packed += text + mark + name.substr(shared) + "\n";
        for (int byte = 0; form == 2 && byte < 4; byte++)
            packed += static_cast<char>(address >> 8 * byte);
        if (form == 2)
            packed += shared > 0 ? mark + FLB_Pack6b(name.substr(shared))
                                 : name.substr(0, 1) + FLB_Pack6b(name.substr(1));
        before = name;
    }
    return packed;
}

std::string FLB_PackDecls(const FlashVars &vars)
{
    std::string packed;
    for (const auto &var : vars) {
        const TMF_Decl *decl = TMF_FindVarDecl(var.second.c_str());
        packed += (decl != nullptr ? PackDecl(*decl) : "") + "\n";
    }
    return packed;
}

std::string FLB_PackStructs()
{
    std::string packed;
    for (int i = 0; i < TMF_cnDefStructCts; i++) {
        const TMF_Struct &record = TMF_paDefStructCts[i];
        packed += "#" + std::to_string(record.members) + "\n";
        for (int k = 0; k < record.members; k++)
            packed += PackDecl(record.paMembers[k]) + "\n";
    }
    return packed;
}

std::string FLB_Header(char mark, const std::string &name, size_t length, char flags)
{
    char text[32];
    std::snprintf(text, sizeof text, "MFSv1.00%c%06zX", mark, length);
    return text + std::string(1, flags) + name + std::string(16 - name.size(), '\xFF');
}

std::string FLB_File(const std::string &name, std::string content, char flags)
{
    if (content.size() % 2 != 0 && content.back() == '\n')
        content.insert(content.size() - 1, 1, '\r');
    else if (content.size() % 2 != 0)
        content += '\0';
    return FLB_Header(';', name, content.size(), flags) + content +
           FLB_Header('.', name, content.size(), flags);
}

std::string FLB_Directory(const FlashVars &vars, int form)
{
    return FLB_File("prjinfo.map28x", FLB_PackVarMap(vars, form)) +
           FLB_File("prjinfo.tmf1", FLB_PackDecls(vars)) +
           FLB_File("prjinfo.tmf3", FLB_PackStructs());
}
