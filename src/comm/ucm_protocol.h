// What a link protocol offers to the unified layer: one row a protocol. A row counts its
// own results with UCM_CountErr, because the protocols differ in what they count.
#ifndef COMM_UCM_PROTOCOL_H
#define COMM_UCM_PROTOCOL_H

#include <cstdint>
#include <string>

struct UCM_Statistics;

struct UCM_Protocol {
    int number;                 // as in the settings
    int stationMin, stationMax; // of memory transfers
    uint32_t writeStep;         // bytes of one message that writes
    int (*open)(int port, int baud);
    void (*close)();
    int (*isOpened)();
    int (*useWin32)(int flag); // null: there is no choice of drivers
    int (*read)(int station, uint32_t address, uint32_t count, void *buffer);
    // How long a block must be, from `least` to `most` bytes, for its answer to be told from all
    // others that may still come; 0 when there is no such length now.
    uint32_t (*pickProving)(int station, uint32_t least, uint32_t most);
    // One try of a block of that length, the proof of itself and of what was read before. 0, -1.
    int (*readProving)(int station, uint32_t address, uint32_t count, void *buffer);
    int (*write)(int station, uint32_t address, uint32_t count, const void *data);
    int (*readBg)(int station, uint32_t *address, uint32_t *count, uint8_t **buffer);
    int (*writeBg)(int station, uint32_t *address, uint32_t *count, const uint8_t **data);
    int (*message)(int station, int command, uint32_t address, uint16_t word, const void *data);
    // The same without awaiting an answer; null: the protocol has no such thing.
    int (*messageNoAnswer)(int station, int command, uint32_t address, uint16_t word,
                           const void *data);
    int (*prove)();                                // as UCM_Prove
    bool (*isEchoing)();                           // as UCM_IsEchoing
    std::string (*lastErrorText)();                // "" when the last exchange did not fail
    void (*addCounts)(UCM_Statistics *statistics); // since the program started
    bool (*isGone)();                              // the open port was unplugged
};
extern const UCM_Protocol UCM_PROTOCOL_MR166, UCM_PROTOCOL_MODBUS;

#endif
