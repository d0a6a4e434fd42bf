// Special function registers of the C166 family by byte address.
#include "symbols/registers.h"

// Core, capture/compare unit 1, timers, first serial channel, interrupt control.
static const RegisterRow commonRows[] = {
    {"DPP0", 0xFE00},   {"DPP1", 0xFE02},    {"DPP2", 0xFE04},   {"DPP3", 0xFE06},
    {"CSP", 0xFE08},    {"MDH", 0xFE0C},     {"MDL", 0xFE0E},    {"CP", 0xFE10},
    {"SP", 0xFE12},     {"STKOV", 0xFE14},   {"STKUN", 0xFE16},  {"ADDRSEL1", 0xFE18},
    {"T2", 0xFE40},     {"T3", 0xFE42},      {"T4", 0xFE44},     {"T5", 0xFE46},
    {"T6", 0xFE48},     {"CAPREL", 0xFE4A},  {"T0", 0xFE50},     {"T1", 0xFE52},
    {"T0REL", 0xFE54},  {"T1REL", 0xFE56},   {"CC0", 0xFE80},    {"CC1", 0xFE82},
    {"CC2", 0xFE84},    {"CC3", 0xFE86},     {"CC4", 0xFE88},    {"CC5", 0xFE8A},
    {"CC6", 0xFE8C},    {"CC7", 0xFE8E},     {"CC8", 0xFE90},    {"CC9", 0xFE92},
    {"CC10", 0xFE94},   {"CC11", 0xFE96},    {"CC12", 0xFE98},   {"CC13", 0xFE9A},
    {"CC14", 0xFE9C},   {"CC15", 0xFE9E},    {"ADDAT", 0xFEA0},  {"WDT", 0xFEAE},
    {"S0TBUF", 0xFEB0}, {"S0RBUF", 0xFEB2},  {"S0BG", 0xFEB4},   {"PECC0", 0xFEC0},
    {"PECC1", 0xFEC2},  {"PECC2", 0xFEC4},   {"PECC3", 0xFEC6},  {"PECC4", 0xFEC8},
    {"PECC5", 0xFECA},  {"PECC6", 0xFECC},   {"PECC7", 0xFECE},  {"MDC", 0xFF0E},
    {"PSW", 0xFF10},    {"BUSCON1", 0xFF14}, {"ZEROS", 0xFF1C},  {"ONES", 0xFF1E},
    {"T2CON", 0xFF40},  {"T3CON", 0xFF42},   {"T4CON", 0xFF44},  {"T5CON", 0xFF46},
    {"T6CON", 0xFF48},  {"T01CON", 0xFF50},  {"CCM0", 0xFF52},   {"CCM1", 0xFF54},
    {"CCM2", 0xFF56},   {"CCM3", 0xFF58},    {"T2IC", 0xFF60},   {"T3IC", 0xFF62},
    {"T4IC", 0xFF64},   {"T5IC", 0xFF66},    {"T6IC", 0xFF68},   {"CRIC", 0xFF6A},
    {"S0TIC", 0xFF6C},  {"S0RIC", 0xFF6E},   {"S0EIC", 0xFF70},  {"CC0IC", 0xFF78},
    {"CC1IC", 0xFF7A},  {"CC2IC", 0xFF7C},   {"CC3IC", 0xFF7E},  {"CC4IC", 0xFF80},
    {"CC5IC", 0xFF82},  {"CC6IC", 0xFF84},   {"CC7IC", 0xFF86},  {"CC8IC", 0xFF88},
    {"CC9IC", 0xFF8A},  {"CC10IC", 0xFF8C},  {"CC11IC", 0xFF8E}, {"CC12IC", 0xFF90},
    {"CC13IC", 0xFF92}, {"CC14IC", 0xFF94},  {"CC15IC", 0xFF96}, {"ADCIC", 0xFF98},
    {"ADEIC", 0xFF9A},  {"T0IC", 0xFF9C},    {"T1IC", 0xFF9E},   {"ADCON", 0xFFA0},
    {"P5", 0xFFA2},     {"TFR", 0xFFAC},     {"WDTCON", 0xFFAE}, {"S0CON", 0xFFB0},
    {"P2", 0xFFC0},     {"DP2", 0xFFC2},     {"P3", 0xFFC4},     {"DP3", 0xFFC6}};

// First generation: ports are whole words, SYSCON stands where BUSCON0 stands later.
static const RegisterRow c166Rows[] = {
    {"S1TBUF", 0xFEB8}, {"S1RBUF", 0xFEBA}, {"S1BG", 0xFEBC}, {"P0", 0xFF00},     {"DP0", 0xFF02},
    {"P1", 0xFF04},     {"DP1", 0xFF06},    {"P4", 0xFF08},   {"SYSCON", 0xFF0C}, {"S1TIC", 0xFF72},
    {"S1RIC", 0xFF74},  {"S1EIC", 0xFF76},  {"S1CON", 0xFFB8}};

// Extended registers, CAN, PWM, capture/compare unit 2, synchronous serial channel.
static const RegisterRow c167Rows[] = {
    {"C1CSR", 0xEF00},    {"C1IR", 0xEF02},     {"C1BTR", 0xEF04},   {"C1GMS", 0xEF06},
    {"C1UGML", 0xEF08},   {"C1LGML", 0xEF0A},   {"C1UMLM", 0xEF0C},  {"C1LMLM", 0xEF0E},
    {"PT0", 0xF030},      {"PT1", 0xF032},      {"PT2", 0xF034},     {"PT3", 0xF036},
    {"PP0", 0xF038},      {"PP1", 0xF03A},      {"PP2", 0xF03C},     {"PP3", 0xF03E},
    {"T7", 0xF050},       {"T8", 0xF052},       {"T7REL", 0xF054},   {"T8REL", 0xF056},
    {"IDPROG", 0xF078},   {"IDMEM", 0xF07A},    {"IDCHIP", 0xF07C},  {"IDMANUF", 0xF07E},
    {"ADDAT2", 0xF0A0},   {"SSCTB", 0xF0B0},    {"SSCRB", 0xF0B2},   {"SSCBR", 0xF0B4},
    {"DP0L", 0xF100},     {"DP0H", 0xF102},     {"DP1L", 0xF104},    {"DP1H", 0xF106},
    {"RP0H", 0xF108},     {"CC16IC", 0xF160},   {"CC17IC", 0xF162},  {"CC18IC", 0xF164},
    {"CC19IC", 0xF166},   {"CC20IC", 0xF168},   {"CC21IC", 0xF16A},  {"CC22IC", 0xF16C},
    {"CC23IC", 0xF16E},   {"CC24IC", 0xF170},   {"CC25IC", 0xF172},  {"CC26IC", 0xF174},
    {"CC27IC", 0xF176},   {"CC28IC", 0xF178},   {"T7IC", 0xF17A},    {"T8IC", 0xF17C},
    {"PWMIC", 0xF17E},    {"CC29IC", 0xF184},   {"XP0IC", 0xF186},   {"CC30IC", 0xF18C},
    {"XP1IC", 0xF18E},    {"CC31IC", 0xF194},   {"XP2IC", 0xF196},   {"S0TBIC", 0xF19C},
    {"XP3IC", 0xF19E},    {"EXICON", 0xF1C0},   {"ODP2", 0xF1C2},    {"ODP3", 0xF1C6},
    {"ODP6", 0xF1CE},     {"ODP7", 0xF1D2},     {"ODP8", 0xF1D6},    {"ADDRSEL2", 0xFE1A},
    {"ADDRSEL3", 0xFE1C}, {"ADDRSEL4", 0xFE1E}, {"PW0", 0xFE30},     {"PW1", 0xFE32},
    {"PW2", 0xFE34},      {"PW3", 0xFE36},      {"CC16", 0xFE60},    {"CC17", 0xFE62},
    {"CC18", 0xFE64},     {"CC19", 0xFE66},     {"CC20", 0xFE68},    {"CC21", 0xFE6A},
    {"CC22", 0xFE6C},     {"CC23", 0xFE6E},     {"CC24", 0xFE70},    {"CC25", 0xFE72},
    {"CC26", 0xFE74},     {"CC27", 0xFE76},     {"CC28", 0xFE78},    {"CC29", 0xFE7A},
    {"CC30", 0xFE7C},     {"CC31", 0xFE7E},     {"P0L", 0xFF00},     {"P0H", 0xFF02},
    {"P1L", 0xFF04},      {"P1H", 0xFF06},      {"BUSCON0", 0xFF0C}, {"SYSCON", 0xFF12},
    {"BUSCON2", 0xFF16},  {"BUSCON3", 0xFF18},  {"BUSCON4", 0xFF1A}, {"T78CON", 0xFF20},
    {"CCM4", 0xFF22},     {"CCM5", 0xFF24},     {"CCM6", 0xFF26},    {"CCM7", 0xFF28},
    {"PWMCON0", 0xFF30},  {"PWMCON1", 0xFF32},  {"SSCTIC", 0xFF72},  {"SSCRIC", 0xFF74},
    {"SSCEIC", 0xFF76},   {"SSCCON", 0xFFB2},   {"P4", 0xFFC8},      {"DP4", 0xFFCA},
    {"P6", 0xFFCC},       {"DP6", 0xFFCE},      {"P7", 0xFFD0},      {"DP7", 0xFFD2},
    {"P8", 0xFFD4},       {"DP8", 0xFFD6}};

const RegisterTable C166_COMMON_REGISTERS = MakeRegisterTable(commonRows);
const RegisterTable C166_ONLY_REGISTERS = MakeRegisterTable(c166Rows);
const RegisterTable C167_ONLY_REGISTERS = MakeRegisterTable(c167Rows);
