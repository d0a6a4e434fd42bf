// Peripheral registers of the TMS320F283xx and F2803x by 16-bit word address: one table a
// kind of peripheral, and the bases where each processor has them.
#include "symbols/registers.h"

// CPU timers.
static const RegisterRow timerRows[] = {{"TIM", 0x00},  {"TIMH", 0x01}, {"PRD", 0x02},
                                        {"PRDH", 0x03}, {"TCR", 0x04},  {"TPR", 0x06},
                                        {"TPRH", 0x07}};

// Enhanced PWM: what both families have, and what the F2803x adds.
static const RegisterRow pwmRows[] = {
    {"TBCTL", 0x00},  {"TBSTS", 0x01},  {"TBPHSHR", 0x02}, {"TBPHS", 0x03},   {"TBCTR", 0x04},
    {"TBPRD", 0x05},  {"CMPCTL", 0x07}, {"CMPAHR", 0x08},  {"CMPA", 0x09},    {"CMPB", 0x0A},
    {"AQCTLA", 0x0B}, {"AQCTLB", 0x0C}, {"AQSFRC", 0x0D},  {"AQCSFRC", 0x0E}, {"DBCTL", 0x0F},
    {"DBRED", 0x10},  {"DBFED", 0x11},  {"TZSEL", 0x12},   {"TZCTL", 0x14},   {"TZEINT", 0x15},
    {"TZFLG", 0x16},  {"TZCLR", 0x17},  {"TZFRC", 0x18},   {"ETSEL", 0x19},   {"ETPS", 0x1A},
    {"ETFLG", 0x1B},  {"ETCLR", 0x1C},  {"ETFRC", 0x1D},   {"PCCTL", 0x1E},   {"HRCNFG", 0x20}};
static const RegisterRow pwmExtraRows[] = {
    {"TBPRDHR", 0x06},   {"TZDCSEL", 0x13},      {"HRPWR", 0x21},     {"HRMSTEP", 0x26},
    {"HRPCTL", 0x28},    {"TBPRDHRM", 0x2A},     {"TBPRDM", 0x2B},    {"CMPAHRM", 0x2C},
    {"CMPAM", 0x2D},     {"DCTRIPSEL", 0x30},    {"DCACTL", 0x31},    {"DCBCTL", 0x32},
    {"DCFCTL", 0x33},    {"DCCAPCTL", 0x34},     {"DCFOFFSET", 0x35}, {"DCFOFFSETCNT", 0x36},
    {"DCFWINDOW", 0x37}, {"DCFWINDOWCNT", 0x38}, {"DCCAP", 0x39}};

// Enhanced capture; the counters are 32 bits.
static const RegisterRow capRows[] = {{"TSCTR", 0x00},  {"CTRPHS", 0x02}, {"CAP1", 0x04},
                                      {"CAP2", 0x06},   {"CAP3", 0x08},   {"CAP4", 0x0A},
                                      {"ECCTL1", 0x14}, {"ECCTL2", 0x15}, {"ECEINT", 0x16},
                                      {"ECFLG", 0x17},  {"ECCLR", 0x18},  {"ECFRC", 0x19}};

// Quadrature encoder; the first nine are 32 bits.
static const RegisterRow qepRows[] = {
    {"QPOSCNT", 0x00},  {"QPOSINIT", 0x02}, {"QPOSMAX", 0x04},  {"QPOSCMP", 0x06},
    {"QPOSILAT", 0x08}, {"QPOSSLAT", 0x0A}, {"QPOSLAT", 0x0C},  {"QUTMR", 0x0E},
    {"QUPRD", 0x10},    {"QWDTMR", 0x12},   {"QWDPRD", 0x13},   {"QDECCTL", 0x14},
    {"QEPCTL", 0x15},   {"QCAPCTL", 0x16},  {"QPOSCTL", 0x17},  {"QEINT", 0x18},
    {"QFLG", 0x19},     {"QCLR", 0x1A},     {"QFRC", 0x1B},     {"QEPSTS", 0x1C},
    {"QCTMR", 0x1D},    {"QCPRD", 0x1E},    {"QCTMRLAT", 0x1F}, {"QCPRDLAT", 0x20}};

// Serial channels.
static const RegisterRow sciRows[] = {{"SCICCR", 0x00},   {"SCICTL1", 0x01},  {"SCIHBAUD", 0x02},
                                      {"SCILBAUD", 0x03}, {"SCICTL2", 0x04},  {"SCIRXST", 0x05},
                                      {"SCIRXEMU", 0x06}, {"SCIRXBUF", 0x07}, {"SCITXBUF", 0x09},
                                      {"SCIFFTX", 0x0A},  {"SCIFFRX", 0x0B},  {"SCIFFCT", 0x0C},
                                      {"SCIPRI", 0x0F}};
static const RegisterRow spiRows[] = {{"SPICCR", 0x00},   {"SPICTL", 0x01},   {"SPISTS", 0x02},
                                      {"SPIBRR", 0x04},   {"SPIRXEMU", 0x06}, {"SPIRXBUF", 0x07},
                                      {"SPITXBUF", 0x08}, {"SPIDAT", 0x09},   {"SPIFFTX", 0x0A},
                                      {"SPIFFRX", 0x0B},  {"SPIFFCT", 0x0C},  {"SPIPRI", 0x0F}};

// Interrupt expansion.
static const RegisterRow pieRows[] = {
    {"PIECTRL", 0x00},  {"PIEACK", 0x01},   {"PIEIER1", 0x02},  {"PIEIFR1", 0x03},
    {"PIEIER2", 0x04},  {"PIEIFR2", 0x05},  {"PIEIER3", 0x06},  {"PIEIFR3", 0x07},
    {"PIEIER4", 0x08},  {"PIEIFR4", 0x09},  {"PIEIER5", 0x0A},  {"PIEIFR5", 0x0B},
    {"PIEIER6", 0x0C},  {"PIEIFR6", 0x0D},  {"PIEIER7", 0x0E},  {"PIEIFR7", 0x0F},
    {"PIEIER8", 0x10},  {"PIEIFR8", 0x11},  {"PIEIER9", 0x12},  {"PIEIFR9", 0x13},
    {"PIEIER10", 0x14}, {"PIEIFR10", 0x15}, {"PIEIER11", 0x16}, {"PIEIFR11", 0x17},
    {"PIEIER12", 0x18}, {"PIEIFR12", 0x19}};
static const RegisterRow resultRows[] = {
    {"ADCRESULT0", 0x00},  {"ADCRESULT1", 0x01},  {"ADCRESULT2", 0x02},  {"ADCRESULT3", 0x03},
    {"ADCRESULT4", 0x04},  {"ADCRESULT5", 0x05},  {"ADCRESULT6", 0x06},  {"ADCRESULT7", 0x07},
    {"ADCRESULT8", 0x08},  {"ADCRESULT9", 0x09},  {"ADCRESULT10", 0x0A}, {"ADCRESULT11", 0x0B},
    {"ADCRESULT12", 0x0C}, {"ADCRESULT13", 0x0D}, {"ADCRESULT14", 0x0E}, {"ADCRESULT15", 0x0F}};

// Ports: 32-bit registers, addresses are those of the low words. The F2803x has fewer pins
// on port B and analog pins instead of port C.
static const RegisterRow gpioPortRows[] = {{"CTRL", 0x00}, {"QSEL1", 0x02}, {"QSEL2", 0x04},
                                           {"MUX1", 0x06}, {"MUX2", 0x08},  {"DIR", 0x0A},
                                           {"PUD", 0x0C}};
static const RegisterRow gpioPortBRows[] = {
    {"CTRL", 0x00}, {"QSEL1", 0x02}, {"MUX1", 0x06}, {"DIR", 0x0A}, {"PUD", 0x0C}};
static const RegisterRow gpioPortCRows[] = {
    {"MUX1", 0x00}, {"MUX2", 0x02}, {"DIR", 0x04}, {"PUD", 0x06}};
static const RegisterRow gpioDataRows[] = {
    {"DAT", 0x00}, {"SET", 0x02}, {"CLEAR", 0x04}, {"TOGGLE", 0x06}};
static const RegisterRow gpioInt283xxRows[] = {
    {"GPIOXINT1SEL", 0x00}, {"GPIOXINT2SEL", 0x01}, {"GPIOXNMISEL", 0x02},
    {"GPIOXINT3SEL", 0x03}, {"GPIOXINT4SEL", 0x04}, {"GPIOXINT5SEL", 0x05},
    {"GPIOXINT6SEL", 0x06}, {"GPIOXINT7SEL", 0x07}, {"GPIOLPMSEL", 0x08}};
static const RegisterRow gpioInt2803xRows[] = {
    {"GPIOXINT1SEL", 0x00}, {"GPIOXINT2SEL", 0x01}, {"GPIOXINT3SEL", 0x02}, {"GPIOLPMSEL", 0x08}};
static const RegisterRow aioRows[] = {{"MUX1", 0x36}, {"DIR", 0x3A},   {"DAT", 0x58},
                                      {"SET", 0x5A},  {"CLEAR", 0x5C}, {"TOGGLE", 0x5E}};

// Clocks, low power, watchdog.
static const RegisterRow system283xxRows[] = {
    {"PLLSTS", 0x01}, {"HISPCP", 0x0A},  {"LOSPCP", 0x0B}, {"PCLKCR0", 0x0C}, {"PCLKCR1", 0x0D},
    {"LPMCR0", 0x0E}, {"PCLKCR3", 0x10}, {"PLLCR", 0x11},  {"SCSR", 0x12},    {"WDCNTR", 0x13},
    {"WDKEY", 0x15},  {"WDCR", 0x19},    {"MAPCNF", 0x1E}};
static const RegisterRow system2803xRows[] = {
    {"XCLK", 0x00},        {"PLLSTS", 0x01},      {"CLKCTL", 0x02},  {"PLLLOCKPRD", 0x03},
    {"INTOSC1TRIM", 0x04}, {"INTOSC2TRIM", 0x06}, {"LOSPCP", 0x0B},  {"PCLKCR0", 0x0C},
    {"PCLKCR1", 0x0D},     {"LPMCR0", 0x0E},      {"PCLKCR3", 0x10}, {"PLLCR", 0x11},
    {"SCSR", 0x12},        {"WDCNTR", 0x13},      {"WDKEY", 0x15},   {"WDCR", 0x19}};

// External interrupts.
static const RegisterRow xintRows[] = {{"XINT1CR", 0x00},  {"XINT2CR", 0x01}, {"XINT3CR", 0x02},
                                       {"XINT4CR", 0x03},  {"XINT5CR", 0x04}, {"XINT6CR", 0x05},
                                       {"XINT7CR", 0x06},  {"XNMICR", 0x07},  {"XINT1CTR", 0x08},
                                       {"XINT2CTR", 0x09}, {"XNMICTR", 0x0F}};

// Converter control; the results (above) stand in a mirror that both families have.
static const RegisterRow adc283xxRows[] = {
    {"ADCTRL1", 0x00},      {"ADCTRL2", 0x01},      {"ADCMAXCONV", 0x02},   {"ADCCHSELSEQ1", 0x03},
    {"ADCCHSELSEQ2", 0x04}, {"ADCCHSELSEQ3", 0x05}, {"ADCCHSELSEQ4", 0x06}, {"ADCASEQSR", 0x07},
    {"ADCTRL3", 0x18},      {"ADCST", 0x19},        {"ADCREFSEL", 0x1C},    {"ADCOFFTRIM", 0x1D}};
static const RegisterRow adc2803xRows[] = {
    {"ADCCTL1", 0x00},       {"ADCCTL2", 0x01},       {"ADCINTFLG", 0x04},
    {"ADCINTFLGCLR", 0x05},  {"ADCINTOVF", 0x06},     {"ADCINTOVFCLR", 0x07},
    {"INTSEL1N2", 0x08},     {"INTSEL3N4", 0x09},     {"INTSEL5N6", 0x0A},
    {"INTSEL7N8", 0x0B},     {"INTSEL9N10", 0x0C},    {"SOCPRICTL", 0x10},
    {"ADCSAMPLEMODE", 0x12}, {"ADCINTSOCSEL1", 0x14}, {"ADCINTSOCSEL2", 0x15},
    {"ADCSOCFLG1", 0x18},    {"ADCSOCFRC1", 0x1A},    {"ADCSOCOVF1", 0x1C},
    {"ADCSOCOVFCLR1", 0x1E}, {"ADCSOC0CTL", 0x20},    {"ADCSOC1CTL", 0x21},
    {"ADCSOC2CTL", 0x22},    {"ADCSOC3CTL", 0x23},    {"ADCSOC4CTL", 0x24},
    {"ADCSOC5CTL", 0x25},    {"ADCSOC6CTL", 0x26},    {"ADCSOC7CTL", 0x27},
    {"ADCSOC8CTL", 0x28},    {"ADCSOC9CTL", 0x29},    {"ADCSOC10CTL", 0x2A},
    {"ADCSOC11CTL", 0x2B},   {"ADCSOC12CTL", 0x2C},   {"ADCSOC13CTL", 0x2D},
    {"ADCSOC14CTL", 0x2E},   {"ADCSOC15CTL", 0x2F},   {"ADCREFTRIM", 0x40},
    {"ADCOFFTRIM", 0x41}};

// What stands at the same place in both families, then what each has of its own.
static const RegisterBlock commonBlocks[] = {
    {"TIMER0", 0x0C00, MakeRegisterTable(timerRows)},
    {"TIMER1", 0x0C08, MakeRegisterTable(timerRows)},
    {"TIMER2", 0x0C10, MakeRegisterTable(timerRows)},
    {"", 0x0CE0, MakeRegisterTable(pieRows)},
    {"", 0x0B00, MakeRegisterTable(resultRows)},
    {"ePWM1_", 0x6800, MakeRegisterTable(pwmRows)},
    {"ePWM2_", 0x6840, MakeRegisterTable(pwmRows)},
    {"ePWM3_", 0x6880, MakeRegisterTable(pwmRows)},
    {"ePWM4_", 0x68C0, MakeRegisterTable(pwmRows)},
    {"ePWM5_", 0x6900, MakeRegisterTable(pwmRows)},
    {"ePWM6_", 0x6940, MakeRegisterTable(pwmRows)},
    {"eCAP1_", 0x6A00, MakeRegisterTable(capRows)},
    {"eQEP1_", 0x6B00, MakeRegisterTable(qepRows)},
    {"GPA", 0x6F80, MakeRegisterTable(gpioPortRows)},
    {"GPA", 0x6FC0, MakeRegisterTable(gpioDataRows)},
    {"GPB", 0x6FC8, MakeRegisterTable(gpioDataRows)},
    {"SPIA_", 0x7040, MakeRegisterTable(spiRows)},
    {"SCIA_", 0x7050, MakeRegisterTable(sciRows)},
};
static const RegisterBlock f283xxBlocks[] = {
    {"eCAP2_", 0x6A20, MakeRegisterTable(capRows)},
    {"eCAP3_", 0x6A40, MakeRegisterTable(capRows)},
    {"eCAP4_", 0x6A60, MakeRegisterTable(capRows)},
    {"eCAP5_", 0x6A80, MakeRegisterTable(capRows)},
    {"eCAP6_", 0x6AA0, MakeRegisterTable(capRows)},
    {"eQEP2_", 0x6B40, MakeRegisterTable(qepRows)},
    {"GPB", 0x6F90, MakeRegisterTable(gpioPortRows)},
    {"GPC", 0x6FA6, MakeRegisterTable(gpioPortCRows)},
    {"GPC", 0x6FD0, MakeRegisterTable(gpioDataRows)},
    {"", 0x6FE0, MakeRegisterTable(gpioInt283xxRows)},
    {"", 0x7010, MakeRegisterTable(system283xxRows)},
    {"SCIB_", 0x7750, MakeRegisterTable(sciRows)},
    {"SCIC_", 0x7770, MakeRegisterTable(sciRows)},
    {"", 0x7070, MakeRegisterTable(xintRows)},
    {"", 0x7100, MakeRegisterTable(adc283xxRows)},
};
static const RegisterBlock f2803xBlocks[] = {
    {"ePWM7_", 0x6980, MakeRegisterTable(pwmRows)},
    {"ePWM1_", 0x6800, MakeRegisterTable(pwmExtraRows)},
    {"ePWM2_", 0x6840, MakeRegisterTable(pwmExtraRows)},
    {"ePWM3_", 0x6880, MakeRegisterTable(pwmExtraRows)},
    {"ePWM4_", 0x68C0, MakeRegisterTable(pwmExtraRows)},
    {"ePWM5_", 0x6900, MakeRegisterTable(pwmExtraRows)},
    {"ePWM6_", 0x6940, MakeRegisterTable(pwmExtraRows)},
    {"ePWM7_", 0x6980, MakeRegisterTable(pwmExtraRows)},
    {"GPB", 0x6F90, MakeRegisterTable(gpioPortBRows)},
    {"AIO", 0x6F80, MakeRegisterTable(aioRows)},
    {"", 0x6FE0, MakeRegisterTable(gpioInt2803xRows)},
    {"", 0x7010, MakeRegisterTable(system2803xRows)},
    {"SPIB_", 0x7740, MakeRegisterTable(spiRows)},
    {"", 0x7100, MakeRegisterTable(adc2803xRows)},
};

template <int N> static constexpr RegisterBlocks MakeBlocks(const RegisterBlock (&blocks)[N])
{
    return {blocks, N};
}

const RegisterBlocks F28_COMMON_REGISTERS = MakeBlocks(commonBlocks);
const RegisterBlocks F283XX_REGISTERS = MakeBlocks(f283xxBlocks);
const RegisterBlocks F2803X_REGISTERS = MakeBlocks(f2803xBlocks);
