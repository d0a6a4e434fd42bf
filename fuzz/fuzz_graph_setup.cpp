// Any file as the settings of a graph: bad lines are named, and what is saved says the same
// when it is read again.
#include "graphs/graph_setup.h"
#include "runtime/headless/headless.h"
#include "scratch_folder.h"

#include <cmath>

namespace {

std::string ReadFile(const std::string &path)
{
    std::string text;
    if (std::FILE *file = std::fopen(path.c_str(), "rb")) {
        for (int c; (c = std::fgetc(file)) != EOF;)
            text += static_cast<char>(c);
        std::fclose(file);
    }
    return text;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    FUZ_WriteFile("a.graph", std::string(reinterpret_cast<const char *>(data), size));
    const std::string file = FUZ_Folder() + "/a.graph";
    GRA_Setup setup, again;
    std::vector<std::string> problems;
    FUZ_Check(GRA_LoadSetup(file, &setup, &problems) == 0);
    FUZ_Check(setup.curves.size() <= GRA_CURVES_MAX && setup.periodMs >= 0 &&
              setup.windowS >= GRA_WINDOW_MIN_S && setup.windowS <= GRA_WINDOW_MAX_S);
    for (const GRA_Curve &curve : setup.curves)
        FUZ_Check(std::isfinite(curve.scale.factor) && curve.scale.factor != 0 && curve.pane >= 0 &&
                  curve.pane < static_cast<int>(GRA_CURVES_MAX) &&
                  (curve.item.size == 1 || curve.item.size == 2 || curve.item.size == 4 ||
                   curve.item.size == 8));
    FUZ_Check(GRA_SaveSetup(file, setup) == 0);
    const std::string saved = ReadFile(file);
    FUZ_Check(GRA_LoadSetup(file, &again, &problems) == 0);
    FUZ_Check(again.curves.size() == setup.curves.size());
    FUZ_Check(GRA_SaveSetup(file, again) == 0);
    FUZ_Check(ReadFile(file) == saved);
    return 0;
}
