// Options are rows of LONG_OPTIONS, jobs rows of JOBS. What begins with one dash is left to the
// options that both programs have; the settings file lies between the two.
#include "app/console_program/console_options.h"

#include "sampler/sampler.h"
#include "sampler/trigger.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>

const char CPG_szUsage[] =
    "Usage: vireo2-console [-1 ... -4] [-bBAUD] [-sSTATION] [-C] [options] [SCRIPT]\n"
    "\n"
    "With a script: runs it and ends. Otherwise each line of standard input is entered\n"
    "at the console's prompt, until end of file or \"exit\".\n"
    "\n"
    "  -1 ... -4           serial port number\n"
    "  -bBAUD              baud rate, for example -b115200\n"
    "  -sSTATION           target station, 0 to 15\n"
    "  -C                  configuration mode\n"
    "  --watch FILE        print the values of a watch list, one table per sweep\n"
    "  --sweeps N          end after N sweeps (default: until interrupted)\n"
    "  --format FORMAT     text, csv or json\n"
    "  --record OUT.csv --watch FILE  record the list's values, once a second:\n"
    "  --period MS         ... at this period\n"
    "  --fast              ... as fast as the line allows\n"
    "  --duration S        end after S seconds (default: until interrupted)\n"
    "  --rotate 10MB|60MIN begin a new file by size or time, its name with a time stamp\n"
    "  --trigger 'ACTION when NAME CONDITION'  start, stop, beep or mark\n"
    "  --program FILE.hex  program a HEX file into the target's flash and read it back\n"
    "  --no-erase          do not erase; write only what the flash does not hold yet\n"
    "  --no-verify         do not read back\n"
    "  --scope FILE --csv OUT  record with the target's scope; OUT may be -\n"
    "  --wait SECONDS      wait so long for the scope's trigger (default 10)\n"
    "  --snap              record at once\n"
    "  --serve             answer requests of another program (JSON lines)\n"
    "  --compare HEADER FILE  compare the target with a data file: ends with 0 when it\n"
    "                      holds the file, 1 with the differences, 2 when it cannot tell\n"
    "  --trace FILE        write every exchange with the target\n"
    "  --types FILE        open a type map (.tmf)\n"
    "  --echo              the line echoes what is sent (two wires, Modbus)\n"
    "  --full              admit every console command\n"
    "  --make-archive OUT FILE...  pack project files into one archive\n"
    "  --yes, --no         answer questions\n"
    "  --help, --version\n"
    "\n"
    "Settings come from Vireo2.ini in the current folder; options win over it.\n"
    "Ends with 0, with 1 after an error, with 2 after a wrong option.\n";

namespace {

constexpr double SECONDS_MAX = 1e6;    // of waiting for a trigger: eleven days
constexpr double DURATION_MAX_S = 1e9; // of a recording: thirty years
constexpr double ROTATE_MAX = 1e6;     // megabytes or minutes
constexpr double BYTES_PER_MB = 1e6;

// Puts one option's value (null for a plain flag) into the record. False = bad value.
typedef bool (*Apply)(CPG_Options *options, const char *value);

bool ApplySweeps(CPG_Options *options, const char *value)
{
    char *end = nullptr;
    errno = 0;
    options->sweeps = std::strtol(value, &end, 10);
    return errno == 0 && end != value && *end == '\0' && options->sweeps > 0;
}

bool ApplyWait(CPG_Options *options, const char *value)
{
    char *end = nullptr;
    options->scopeWait = std::strtod(value, &end);
    return end != value && *end == '\0' && options->scopeWait >= 0 &&
           options->scopeWait < SECONDS_MAX;
}

bool ApplyFormat(CPG_Options *options, const char *value)
{
    const char *const NAMES[] = {"text", "csv", "json"}; // in the order of CPG_Format
    for (int i = 0; i < 3; i++)
        if (std::strcmp(value, NAMES[i]) == 0) {
            options->format = static_cast<CPG_Format>(i);
            return true;
        }
    return false;
}

bool ApplyPeriod(CPG_Options *options, const char *value)
{
    char *end = nullptr;
    const long period = std::strtol(value, &end, 10);
    options->recordPeriodMs = static_cast<int>(period);
    options->hasRecordPeriod = true;
    return end != value && *end == '\0' && period > 0 && period <= SMP_PERIOD_MAX_MS;
}

bool ApplyDuration(CPG_Options *options, const char *value)
{
    char *end = nullptr;
    options->recordSeconds = std::strtod(value, &end);
    return end != value && *end == '\0' && options->recordSeconds > 0 &&
           options->recordSeconds < DURATION_MAX_S;
}

// "10MB" or "60MIN".
bool ApplyRotate(CPG_Options *options, const char *value)
{
    char *end = nullptr;
    const double number = std::strtod(value, &end);
    if (end == value || !(number > 0) || number > ROTATE_MAX)
        return false;
    const std::string unit(end);
    if (unit == "MB" || unit == "mb")
        options->rotateBytes = std::max<uint64_t>(static_cast<uint64_t>(number * BYTES_PER_MB), 1);
    else if (unit == "MIN" || unit == "min")
        options->rotateMinutes = static_cast<uint32_t>(number);
    else
        return false;
    return options->rotateBytes > 0 || options->rotateMinutes > 0;
}

struct LongOption {
    const char *name;
    bool hasValue;
    Apply apply;
};
const LongOption LONG_OPTIONS[] = {
    {"help", false, [](CPG_Options *o, const char *) { return o->isHelp = true; }},
    {"version", false, [](CPG_Options *o, const char *) { return o->isVersion = true; }},
    {"echo", false,
     [](CPG_Options *o, const char *) {
         o->isEcho = true;
         return true;
     }},
    {"full", false, [](CPG_Options *o, const char *) { return o->isFull = true; }},
    {"yes", false,
     [](CPG_Options *o, const char *) {
         o->answer = HL_ANSWER_YES;
         return true;
     }},
    {"no", false,
     [](CPG_Options *o, const char *) {
         o->answer = HL_ANSWER_NO;
         return true;
     }},
    {"watch", true, [](CPG_Options *o, const char *v) { return !(o->watchFile = v).empty(); }},
    {"sweeps", true, ApplySweeps},
    {"format", true, ApplyFormat},
    {"program", true, [](CPG_Options *o, const char *v) { return !(o->programFile = v).empty(); }},
    {"no-erase", false, [](CPG_Options *o, const char *) { return o->isNoErase = true; }},
    {"no-verify", false, [](CPG_Options *o, const char *) { return o->isNoVerify = true; }},
    {"scope", true, [](CPG_Options *o, const char *v) { return !(o->scopeFile = v).empty(); }},
    {"csv", true, [](CPG_Options *o, const char *v) { return !(o->csvFile = v).empty(); }},
    {"wait", true, ApplyWait},
    {"snap", false, [](CPG_Options *o, const char *) { return o->isSnap = true; }},
    {"serve", false, [](CPG_Options *o, const char *) { return o->isServe = true; }},
    {"compare", true,
     [](CPG_Options *o, const char *v) { return !(o->compareHeader = v).empty(); }},
    {"types", true, [](CPG_Options *o, const char *v) { return !(o->typesFile = v).empty(); }},
    {"record", true, [](CPG_Options *o, const char *v) { return !(o->recordFile = v).empty(); }},
    {"period", true, ApplyPeriod},
    {"fast", false,
     [](CPG_Options *o, const char *) {
         o->recordPeriodMs = SMP_FAST;
         return o->hasRecordPeriod = true;
     }},
    {"duration", true, ApplyDuration},
    {"rotate", true, ApplyRotate},
    {"trigger", true,
     [](CPG_Options *o, const char *v) {
         o->triggers.push_back(v);
         return o->triggers.size() <= SMP_TRIGGER_LINES_MAX;
     }},
    {"trace", true, [](CPG_Options *o, const char *v) { return !(o->traceFile = v).empty(); }},
    {"make-archive", true, [](CPG_Options *o, const char *v) { return !(o->archive = v).empty(); }},
};

// Takes the option at argv[*index]; *index ends on its last argument.
int ReadOption(int argc, char **argv, int *index, CPG_Options *options, std::string *message)
{
    const char *text = argv[*index];
    // "--option=value" and "--option value" are the same.
    const char *equals = std::strchr(text, '=');
    const std::string name = equals ? std::string(text + 2, equals) : text + 2;
    const LongOption *option =
        std::find_if(std::begin(LONG_OPTIONS), std::end(LONG_OPTIONS),
                     [&name](const LongOption &row) { return name == row.name; });
    if (option == std::end(LONG_OPTIONS) || (equals && !option->hasValue)) {
        *message = "unknown option " + std::string(text);
        return -1;
    }
    const char *value = equals ? equals + 1 : nullptr;
    if (option->hasValue && !value)
        value = *index + 1 < argc ? argv[++*index] : nullptr;
    if (option->hasValue && !value) {
        *message = "--" + name + " needs a value";
        return -1;
    }
    if (!option->apply(options, value)) {
        *message = "--" + name + ": bad value '" + value + "'";
        return -1;
    }
    return 0;
}

struct JobRow {
    CPG_Job job;
    const char *option;
    bool (*isAsked)(const CPG_Options &options);
};
const JobRow JOBS[] = {
    {CPG_WATCH, "--watch",
     [](const CPG_Options &o) { return !o.watchFile.empty() && o.recordFile.empty(); }},
    {CPG_RECORD, "--record", [](const CPG_Options &o) { return !o.recordFile.empty(); }},
    {CPG_PROGRAM, "--program", [](const CPG_Options &o) { return !o.programFile.empty(); }},
    {CPG_SCOPE, "--scope", [](const CPG_Options &o) { return !o.scopeFile.empty(); }},
    {CPG_COMPARE, "--compare", [](const CPG_Options &o) { return !o.compareHeader.empty(); }},
    {CPG_SERVE, "--serve", [](const CPG_Options &o) { return o.isServe; }},
};

// Options that make no sense together are refused before anything is opened: one of them would be
// without effect, and nobody would notice.
int CheckTogether(int rest, const CPG_Options &options, std::string *message)
{
    const bool hasRecordOptions = options.hasRecordPeriod || options.recordSeconds > 0 ||
                                  options.rotateBytes > 0 || options.rotateMinutes > 0 ||
                                  !options.triggers.empty();
    std::vector<std::string> jobs;
    for (const JobRow &row : JOBS)
        if (row.isAsked(options))
            jobs.push_back(row.option);
    if (rest > 0)
        jobs.push_back("a script");
    if (jobs.size() > 1)
        *message = jobs[0] + " and " + jobs[1] + " exclude each other";
    else if (options.watchFile.empty() && (options.sweeps > 0 || options.format != CPG_TEXT))
        *message = "--sweeps and --format go with --watch";
    else if (options.recordFile.empty() && hasRecordOptions)
        *message = "--period, --fast, --duration, --rotate and --trigger go with --record";
    else if (!options.recordFile.empty() &&
             (options.watchFile.empty() || options.sweeps > 0 || options.format != CPG_TEXT))
        *message = "--record goes with --watch and without --sweeps and --format";
    else if (options.programFile.empty() && (options.isNoErase || options.isNoVerify))
        *message = "--no-erase and --no-verify go with --program";
    else if (options.scopeFile.empty() != options.csvFile.empty())
        *message = "--scope and --csv go together";
    else if (options.compareHeader.empty() != options.compareFile.empty())
        *message = "--compare needs a header and a data file";
    else if (!options.archive.empty() && options.archiveFiles.empty())
        *message = "--make-archive needs the files to pack";
    else
        return 0;
    return -1;
}

} // namespace

CPG_Job CPG_JobOf(const CPG_Options &options)
{
    for (const JobRow &row : JOBS)
        if (row.isAsked(options))
            return row.job;
    return CPG_LINES;
}

int CPG_ParseOptions(int *argc, char **argv, CPG_Options *options, std::string *message)
{
    int kept = 1;
    for (int i = 1; i < *argc; i++) {
        if (std::strncmp(argv[i], "--", 2) == 0) {
            if (ReadOption(*argc, argv, &i, options, message) < 0)
                return -1;
        } else if (!options->archive.empty()) { // all that follows, whatever it is called
            options->archiveFiles.push_back(argv[i]);
        } else if (!options->compareHeader.empty() && options->compareFile.empty() &&
                   argv[i][0] != '-') {
            options->compareFile = argv[i];
        } else {
            argv[kept++] = argv[i];
        }
    }
    argv[kept] = nullptr;
    *argc = kept;
    int plain = 0; // a script among them
    for (int i = 1; i < kept; i++)
        plain += argv[i][0] != '-';
    return CheckTogether(plain, *options, message);
}
