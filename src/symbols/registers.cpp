// Loads the register table of the selected processor into aVarNode166. The tables are in the
// order of the manuals and may share parts, so that they are put together and sorted here.
#include "symbols/registers.h"

#include <string>

#include "settings/settings.h"
#include "symbols/varnode.h"

namespace {

// Tables of the TMS320 have word addresses, as its manuals do; the program counts bytes.
constexpr uint32_t BYTES_PER_WORD_ADDRESS = 2;

struct ProcessorRegisters {
    int processor;
    void (*init)();
};
const ProcessorRegisters processors[] = {{CPU_C166, initRg166},
                                         {CPU_C167, initRg167},
                                         {CPU_F283XX, initRg320F283xx},
                                         {CPU_F2803X, initRg320F2803x}};

void AddRegister(const std::string &name, uint32_t address)
{
    SYM_AddNode(aVarNode166, &nNodes166, address, name.c_str(), nullptr);
}

void AddTable(const RegisterTable &table)
{
    for (int i = 0; i < table.count; ++i)
        AddRegister(table.rows[i].name, table.rows[i].addr);
}

void AddBlocks(const RegisterBlocks &blocks)
{
    for (int b = 0; b < blocks.count; ++b) {
        const RegisterBlock &block = blocks.blocks[b];
        for (int i = 0; i < block.registers.count; ++i) {
            const RegisterRow &row = block.registers.rows[i];
            AddRegister(std::string(block.prefix) + row.name,
                        (block.base + row.addr) * BYTES_PER_WORD_ADDRESS);
        }
    }
}

// Sorted by name like every table of nodes: look-ups rely on it.
void Finish()
{
    SYM_SortByName(aVarNode166, nNodes166);
    openStruct166 = nNodes166 > 0 ? 1 : 0;
    SortMapNdxByAddr();
}

} // namespace

void initRg166()
{
    FreeNodes(aVarNode166, &nNodes166);
    AddTable(C166_COMMON_REGISTERS);
    AddTable(C166_ONLY_REGISTERS);
    Finish();
}

void initRg167()
{
    FreeNodes(aVarNode166, &nNodes166);
    AddTable(C166_COMMON_REGISTERS);
    AddTable(C167_ONLY_REGISTERS);
    Finish();
}

void initRg320F283xx()
{
    FreeNodes(aVarNode166, &nNodes166);
    AddBlocks(F28_COMMON_REGISTERS);
    AddBlocks(F283XX_REGISTERS);
    Finish();
}

void initRg320F2803x()
{
    FreeNodes(aVarNode166, &nNodes166);
    AddBlocks(F28_COMMON_REGISTERS);
    AddBlocks(F2803X_REGISTERS);
    Finish();
}

void initRgMap(int processor)
{
    for (const ProcessorRegisters &row : processors)
        if (row.processor == processor) {
            row.init();
            return;
        }
    // An unknown processor has no registers rather than those of the one before.
    FreeNodes(aVarNode166, &nNodes166);
    openStruct166 = 0;
}
