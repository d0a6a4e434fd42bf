// The ten windows of an inspector share a Designer file, callbacks and keys and differ in their
// numbers only. Their rows are written once, for the first window of a kind; here they are copied
// for the others at compile time, so that no table has to be filled when the program starts.
#ifndef UI_INSPECTOR_WINDOWS_H
#define UI_INSPECTOR_WINDOWS_H

#include <array>
#include <cstddef>

#include "inspect/inspectors.h"
#include "ui/resource.h"

static_assert(PANEL_RECORD_MORE - PANEL_ARRAY_MORE >= INSPECTORS_MAX - 1);

// The rows of `own`, then those of every array and every record inspector.
template <class Row, size_t OWN, size_t ARRAY, size_t RECORD>
constexpr std::array<Row, OWN + INSPECTORS_MAX *(ARRAY + RECORD)>
UI_AddInspectors(const Row (&own)[OWN], const Row (&array)[ARRAY], const Row (&record)[RECORD])
{
    std::array<Row, OWN + INSPECTORS_MAX *(ARRAY + RECORD)> rows = {};
    size_t at = 0;
    for (const Row &row : own)
        rows[at++] = row;
    for (int i = 0; i < INSPECTORS_MAX; ++i) {
        for (Row row : array) {
            row.panel = i == 0 ? PANEL_ARRAY : PANEL_ARRAY_MORE + i - 1;
            rows[at++] = row;
        }
        for (Row row : record) {
            row.panel = i == 0 ? PANEL_RECORD : PANEL_RECORD_MORE + i - 1;
            rows[at++] = row;
        }
    }
    return rows;
}

#endif
