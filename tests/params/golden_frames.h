// Golden frames: what the bulk operations put on the line for device 1, to the byte.
#pragma once

#include <array>

namespace gainsmith::test {

// A bulk read, whatever the drive holds.
inline constexpr std::array<const char*, 44> BulkReadFrames{{
    "01 03 00 00 00 01 84 0A", "01 03 00 01 00 01 D5 CA", "01 03 00 06 00 01 64 0B",
    "01 03 00 07 00 01 35 CB", "01 03 00 08 00 01 05 C8", "01 03 00 0D 00 01 15 C9",
    "01 03 00 0E 00 01 E5 C9", "01 03 00 0F 00 01 B4 09", "01 03 00 12 00 01 24 0F",
    "01 03 00 13 00 01 75 CF", "01 03 00 1F 00 01 B5 CC", "01 03 00 20 00 01 85 C0",
    "01 03 00 21 00 01 D4 00", "01 03 00 22 00 01 24 00", "01 03 00 2A 00 01 A5 C2",
    "01 03 00 2B 00 01 F4 02", "01 03 00 2C 00 01 45 C3", "01 03 00 2D 00 01 14 03",
    "01 03 00 2E 00 01 E4 03", "01 03 00 2F 00 01 B5 C3", "01 03 00 30 00 01 84 05",
    "01 03 00 F0 00 01 84 39", "01 03 00 F1 00 01 D5 F9", "01 03 00 F7 00 01 35 F8",
    "01 03 00 F8 00 01 05 FB", "01 03 00 F9 00 01 54 3B", "01 03 00 FA 00 01 A4 3B",
    "01 03 00 FB 00 01 F5 FB", "01 03 00 FC 00 01 44 3A", "01 03 00 FF 00 01 B4 3A",
    "01 03 00 31 00 01 D5 C5", "01 03 00 33 00 01 74 05", "01 03 00 34 00 01 C5 C4",
    "01 03 00 35 00 01 94 04", "01 03 00 36 00 01 64 04", "01 03 00 EE 00 01 E4 3F",
    "01 03 00 37 00 01 35 C4", "01 03 00 38 00 01 05 C7", "01 03 00 29 00 01 55 C2",
    "01 03 00 28 00 01 04 02", "01 03 00 27 00 01 34 01", "01 03 00 3A 00 01 A4 07",
    "01 03 00 F5 00 01 94 38", "01 03 00 F6 00 01 64 38",
}};

// A download of a table that was read from a drive that holds, in every parameter register, 1000
// more than the register's number, and 01C7 hexadecimal in the flags register.
inline constexpr std::array<const char*, 44> DownloadFrames{{
    "01 06 00 00 03 E8 89 74", "01 06 00 01 03 E9 19 74", "01 06 00 1F 04 07 FB 0E",
    "01 06 00 20 04 08 8B 06", "01 06 00 0D 03 F5 D8 BE", "01 06 00 06 03 EE E9 77",
    "01 06 00 07 03 EF 79 77", "01 06 00 08 03 F0 08 BC", "01 06 00 21 04 09 1B 06",
    "01 06 00 0E 03 F6 68 BF", "01 06 00 0F 03 F7 F8 BF", "01 06 00 12 03 FA A9 7C",
    "01 06 00 2E 04 16 6A CD", "01 06 00 2F 04 17 FA CD", "01 06 00 30 04 18 8B 0F",
    "01 06 00 2A 04 12 2A CF", "01 06 00 2B 04 13 BA CF", "01 06 00 2C 04 14 4A CC",
    "01 06 00 2D 04 15 DA CC", "01 06 00 31 04 19 1B 0F", "01 06 00 13 03 FB 39 7C",
    "01 06 00 22 04 0A AB 07", "01 06 00 FF 01 C7 F9 F8", "01 06 00 FC 04 E4 4B 71",
    "01 06 00 F7 04 DF 7B 60", "01 06 00 F8 04 E0 0B 73", "01 06 00 F9 04 E1 9B 73",
    "01 06 00 FA 04 E2 2B 72", "01 06 00 FB 04 E3 BB 72", "01 06 00 33 04 1B 3B 0E",
    "01 06 00 34 04 1C CB 0D", "01 06 00 35 04 1D 5B 0D", "01 06 00 36 04 1E EB 0C",
    "01 06 00 EE 04 D6 6A A1", "01 06 00 F0 04 D8 8B 63", "01 06 00 F1 04 D9 1B 63",
    "01 06 00 37 04 1F 7B 0C", "01 06 00 38 04 20 0B 1F", "01 06 00 29 04 11 9A CE",
    "01 06 00 28 04 10 0A CE", "01 06 00 27 04 0F 7B 05", "01 06 00 3A 04 22 2B 1E",
    "01 06 00 F5 04 DD 5B 61", "01 06 00 F6 04 DE EB 60",
}};

// The store into the EEPROM.
inline constexpr const char* StoreFrame = "01 06 00 0C 00 01 88 09";

}  // namespace gainsmith::test
