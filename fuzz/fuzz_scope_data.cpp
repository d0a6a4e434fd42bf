// Any file as a scope recording: refused with a reason, or read; what was read and saved
// comes back sample by sample, and can be measured.
#include "scope/capture.h"
#include "scope/measure.h"
#include "scratch_folder.h"

#include <cmath>

namespace {

bool IsSame(const SCP_Capture &one, const SCP_Capture &other)
{
    if (one.rate != other.rate || one.triggerAt != other.triggerAt ||
        one.traces.size() != other.traces.size())
        return false;
    for (size_t i = 0; i < one.traces.size(); i++) {
        const std::vector<double> &a = one.traces[i].samples, &b = other.traces[i].samples;
        if (a.size() != b.size() || one.traces[i].name != other.traces[i].name)
            return false;
        for (size_t k = 0; k < a.size(); k++)
            if (a[k] != b[k] && !(std::isnan(a[k]) && std::isnan(b[k])))
                return false;
    }
    return true;
}

void Measure(const SCP_Capture &capture)
{
    std::vector<double> times;
    for (size_t i = 0; i < capture.traces[0].samples.size(); i++)
        times.push_back(SCP_TimeOf(capture, i));
    for (const SCP_Trace &trace : capture.traces) {
        const SCP_Measures m = SCP_Measure(times, trace.samples, times.front(), times.back());
        FUZ_Check(m.count <= trace.samples.size() && (m.count == 0 || m.min <= m.max));
        SCP_Spectrum spectrum;
        SCP_MakeSpectrum(trace.samples, capture.rate, &spectrum);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    FUZ_WriteFile("scope.csv", std::string(reinterpret_cast<const char *>(data), size));
    const std::string file = FUZ_Folder() + "/scope.csv";
    SCP_Capture capture, again;
    std::string problem;
    if (SCP_LoadCapture(file, &capture, &problem) != 0) {
        FUZ_Check(!problem.empty() && capture.traces.empty());
        return 0;
    }
    FUZ_Check(!capture.traces.empty() && !capture.traces[0].samples.empty() && capture.rate > 0);
    FUZ_Check(SCP_SaveCapture(file, capture) == 0);
    FUZ_Check(SCP_LoadCapture(file, &again, &problem) == 0);
    FUZ_Check(IsSame(capture, again));
    Measure(capture);
    return 0;
}
