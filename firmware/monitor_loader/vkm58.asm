; The loader for VKM58_2003.ROM: chips with 32 KB of program memory in sectors of 128 bytes.
;
; Program memory ends at 7FFF. An address with its top bit set is one of the boot firmware's
; 8 KB, which 13 address lines tell apart: they begin at 8000, and the monitor's half at
; 9000. That the two lines between decide nothing makes F000, which opening the flash
; names, the same place as 9000.
;
; So 8000..9FFF is all there is to erase. Going on to FFFF would erase every sector
; four times over, at the price of its life and the operator's time.
SECTORS       = 64              ; 8000..9FFF, 8 KB
MONITOR_PLACE = 0x9000
        .include "loader.asm"
