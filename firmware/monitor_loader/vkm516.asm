; The loader for VKM516_2003.ROM: chips with 64 KB of program memory.
;
; Program memory fills all that 16 address lines reach, so while ISP commands are taken the
; boot firmware's 8 KB lie over its top, E000..FFFF, and the monitor's half at F000. The
; erasing begins at 8000 and has to reach the end of that: 8000..FFFF. What a program of the
; user's had above 8000 is gone anyway with the erase that the download began with.
;
; Sectors are taken as 128 bytes, as in the smaller chip. With larger ones the steps of 128
; erase each several times, before anything is written: slower, and as good.
SECTORS       = 256             ; 8000..FFFF, 32 KB
MONITOR_PLACE = 0xF000
        .include "loader.asm"
