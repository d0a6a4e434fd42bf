// The process-wide settings with the values they have before any settings file or
// option is read.
#include "settings/settings.h"

int32_t Procesor = CPU_C166;
int16_t VR_nProtocol = PROTOCOL_MR166;
int32_t ncom = 1;
int32_t bRate = 19200;
int32_t STATION = 1;
int32_t Option_AutoOff = 1;
int32_t Option_ComWin32 = 1;
int32_t Option_nSweepRate = 1;
int32_t Option_nLanguage = LANGUAGE_CZ;
int32_t VR_enAppMode = MODE_NORMAL;
std::string VR_szVersion;
int32_t Option_Echo = 0;
bool VR_isEchoOnce = false;
int32_t isTimer = 0;
int32_t oldTimer = 0;
bool VR_isWatchView = false;
int32_t oldHeight = 491;
int32_t IsDBGChange = 0;
std::string szDebugFileName;
std::array<std::string, RECENT_MAX> szaDebugFileNames;
int32_t nDebugFileNames = 0;
std::string szMapFileName;
int mainPanel = 0;
int consolePanel = 0;
bool VR_isFullCommandSet = false;
bool VR_isFullOnce = false;
