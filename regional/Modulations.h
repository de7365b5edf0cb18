#pragma once

#include <array>

#include "regional/NameTable.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/**
 * The names of modulations in channel plans, and their values. The files of all products write
 * "ATV}" with its brace; "ATV" is a label.
 */
inline constexpr auto kModulations = sortedByName(std::array<NamedValue, 24>{{
        {"UNKNOW", 0},    {"ATV}", 1},    {"OQPSK", 2},      {"VSB8", 3},        {"VSB16", 4},
        {"QAM_AUTO", 5},  {"QAM4", 6},    {"QAM16", 7},      {"QAM32", 8},       {"QAM64", 9},
        {"QAM128", 10},   {"QAM256", 11}, {"QAM512", 12},    {"QAM1024", 13},    {"QPSK", 14},
        {"BPSK", 15},     {"OFDM", 16},   {"ISDB_AUTO", 17}, {"DVB_AUTO", 18},   {"DTMB_AUTO", 19},
        {"ABS_AUTO", 20}, {"DVB_S", 21},  {"DVB_S2", 22},    {"DVB_S_AUTO", 23},
}});

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
