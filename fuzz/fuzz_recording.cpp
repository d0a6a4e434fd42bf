// Recordings and other people's CSV files: what opens is read back whole, in pieces and
// decimated, and its rows agree with what opening has counted. The first byte cuts the file.
#include "sampler/recording.h"
#include "scratch_folder.h"

#include <cmath>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size == 0)
        return 0;
    const std::string whole(reinterpret_cast<const char *>(data + 1), size - 1);
    FUZ_WriteFile("open.csv", whole.substr(0, whole.size() - whole.size() * data[0] / 255 / 2));
    REC_Recording recording;
    std::string problem;
    const int result = REC_OpenRecording(FUZ_Folder() + "/open.csv", &recording, &problem);
    FUZ_Check((result == 0) == problem.empty());
    if (result != 0)
        return 0;
    uint64_t rows = 0;
    for (const REC_Stretch &stretch : recording.stretches) {
        FUZ_Check(stretch.timeMin <= stretch.timeMax && stretch.rows > 0);
        rows += stretch.rows;
    }
    FUZ_Check(rows == recording.rows && !recording.columns.empty());
    const std::vector<size_t> columns = {0, recording.columns.size() - 1};
    REC_Curves curves;
    FUZ_Check(REC_ReadCurves(recording, -1e300, 1e300, columns, SIZE_MAX, &curves) == 0);
    FUZ_Check(curves.times.size() == rows && curves.values[1].size() == rows);
    for (const double time : curves.times)
        FUZ_Check(time >= recording.timeMin && time <= recording.timeMax);
    FUZ_Check(REC_ReadCurves(recording, -1e300, 1e300, columns, 4, &curves) == 0);
    FUZ_Check(rows <= 4 || curves.times.size() <= 6);
    const double middle = (recording.timeMin + recording.timeMax) / 2;
    FUZ_Check(REC_ReadCurves(recording, middle, middle, columns, 100, &curves) == 0);
    return 0;
}
