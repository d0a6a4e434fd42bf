// What the parts of the download share: how the last reading ended, how a failure is told, and
// how far a long reading is. What everybody may call is in dlld.h. Used by the download's own
// files only.
#ifndef LOGGER_DLLD_TARGET_H
#define LOGGER_DLLD_TARGET_H

#include <cstdint>
#include <functional>
#include <string>

constexpr char DLLD_INTERNAL_ERROR[] = "Internal error"; // title

void DLLD_BeginReading();                                  // nothing is known of how it will end
int DLLD_Fail(const char *title, const std::string &text); // tells the host; -1
// False when the user has cancelled, from then on until the next reading begins.
bool DLLD_StepProgress(uint32_t done, uint32_t total, const char *text);
void DLLD_EndProgress();
// What the target keeps as an address, as a byte address.
uint32_t DLLD_ToByteAddress(uint32_t stored);
// What the user gets of a reading is proven as a whole, and read again while answers are
// repeated. The reading's own result, or -1 after a message when it could not be proven.
int DLLD_ReadProven(const std::function<int()> &read);

#endif
