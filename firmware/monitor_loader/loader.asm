; The loader code that goes into a chip together with a debug monitor: it takes the
; flash over from inside and puts the monitor in the place of the boot firmware, which
; can't overwrite itself.
;
; What the tool programs, in the chip's code memory:
;
;   0000        ljmp start_up, programmed last: a download that was cut short has no
;               reset jump, so nothing of the loader ever runs half
;   2000..217F  VKM2000.rom: the part of the monitor that goes on behind 1FFF
;   2180..22EF  this source, part one (at_2180)
;   2300..32FF  the monitor as it comes from its file, 4096 bytes
;   3300..335F  this source, part two (at_3300)
;
; How it runs:
;
;   reset > start_up > main > open_flash > opened: erase_area, copy > monitor at 1000
;                                                              \ > give_up, for ever
;
; The memory as this source takes it:
;
;   - The boot firmware's flash is 8 KB. While bits 0 and 1 of ISP_CONFIGURATION are 0 it
;     lies over code memory 0000..1FFF. So what runs meanwhile must stand at 2000 or above:
;     all of the loader does. The reset jump lies below, in program memory, where a chip
;     begins after power-up.
;   - The monitor runs at 1000..1FFF, which is the upper half of those 8 KB, and goes on at
;     2000, where the bytes of VKM2000.rom already are when the tool has done its work.
;     They stand in their place for good, so only the 4096 bytes are copied.
;   - For ISP commands, and for movc while bit 6 is set, the same 8 KB stand at the top of
;     what the chip addresses; their upper half is MONITOR_PLACE, one of the two things in
;     which the variants differ (vkm516.asm, vkm58.asm, which include this file).
;
; The source at 2300 and the reset jump are left alone. A chip that loses its power in the
; middle, or refuses a byte, begins again from a whole copy at the next power-up.

        .module monitor_loader

; The registers of the ISP
ISP_CONFIGURATION = 0xB1        ; bits 0, 1: what lies at 0000; bit 6: commands are taken
ISP_COMMAND       = 0xB2        ; writing it starts the command
ISP_ADDRESS_LOW   = 0xB3
ISP_ADDRESS_HIGH  = 0xB4
ISP_DATA          = 0xB5
ISP_STATUS        = 0xB6        ; bit 2: a command is under way

ERASE_SECTOR = 0x0B
WRITE_BYTE   = 0x0E

; Where things stand
LOADER_PLACE    = 0x2180
START_PLACE     = 0x2200        ; where the reset jump goes
MONITOR_SOURCE  = 0x2300
BEHIND_SOURCE   = 0x3300
OPENING_PLACE   = 0x3300
MONITOR_ENTRY   = 0x1000
FIRST_SECTOR    = 0x8000        ; the erasing begins here: 0000..7FFF holds this loader

; Internal RAM. The stack begins behind it.
source_high = 0x08
source_low  = 0x09
target_high = 0x0A
target_low  = 0x0B
tries_left  = 0x0C
LAST_VARIABLE = 0x0D

TRIES = 4                       ; the first and three more: a cell that needs more is worn out

        .area   LOADER (ABS,CODE)

; ---------------------------------------------------------------------------------------
        .org    LOADER_PLACE

; Waits until the command that was started has ended.
;
; This is our choice of how to take the registers: bit 2 of the status is 1 while a command
; is under way, for every command, and 0 otherwise. The wait ends on that 0 and nothing
; else, so no other bit of the status can be taken for the end. Clearing the bit then
; changes nothing in a chip that drives it; in one where it is a cell that keeps its
; value, the next command begins from a 0 whatever happened in between.
wait_while_busy::
        mov     a,ISP_STATUS
        jb      acc.2,wait_while_busy
end_of_wait::
        anl     ISP_STATUS,#0xFB
        ret

; Writes the byte in R5 at the address in R6 (high), R7 (low), and reads it back.
; Returns in R7: 00 when it stands there, FE when something else does. Changes A and DPTR.
;
; It's read by movc, not from the data register: only the cell itself can tell.
write_byte::
        mov     dph,r6
        mov     dpl,r7
        mov     ISP_ADDRESS_HIGH,dph
        mov     ISP_ADDRESS_LOW,dpl
        mov     ISP_DATA,r5
        mov     ISP_COMMAND,#WRITE_BYTE
        lcall   wait_while_busy
        clr     a
        movc    a,@a+dptr
        xrl     a,r5
        jz      byte_stands
        mov     r7,#0xFE
        ret
byte_stands:
        mov     r7,#0x00
        ret

; ---------------------------------------------------------------------------------------
        .org    START_PLACE

; From reset, by the jump at 0000. Whatever ran before a reset by the button left its
; values in RAM; the monitor may count on zeros as after power-up.
start_up::
        mov     r0,#0x7F
        clr     a
        mov     psw,a                   ; bank 0; a reset has chosen it for R0 above already
clear_next:
        mov     @r0,a
        djnz    r0,clear_next           ; R0 ends as 0, and is address 00 itself
        mov     sp,#LAST_VARIABLE
        ljmp    main

; Erases SECTORS sectors of 128 bytes from FIRST_SECTOR on. R4 (high), R5 (low) count them;
; the address is FIRST_SECTOR + number * 128, which is the number shifted right by one,
; as the high byte, and the bit that falls out as the top one of the low byte.
erase_area::
        clr     a
        mov     r5,a
        mov     r4,a
erase_next:
        mov     r7,0x05                 ; R5 and R4 of bank 0
        mov     r6,0x04
        mov     a,r6
        rrc     a
        mov     a,r7
        rrc     a
        mov     r6,a
        clr     a
        rrc     a
        mov     ISP_ADDRESS_LOW,a
        mov     a,r6
        add     a,#>FIRST_SECTOR
        mov     ISP_ADDRESS_HIGH,a
        mov     ISP_COMMAND,#ERASE_SECTOR
        lcall   wait_while_busy
        inc     r5
    .if gt,SECTORS-255
        mov     a,r5
        jnz     compare_count
        inc     r4
compare_count:
        cjne    r4,#>SECTORS,erase_next
    .endif
        cjne    r5,#<SECTORS,erase_next
        ret

main::
        mov     source_high,#>MONITOR_SOURCE
        mov     source_low,#<MONITOR_SOURCE
        mov     target_high,#>MONITOR_PLACE
        mov     target_low,#<MONITOR_PLACE
        ljmp    open_flash
opened::
        lcall   erase_area

; Copies the monitor byte by byte. Source and target both begin at a page, so one carry
; serves both counters.
copy::
        mov     tries_left,#TRIES
try::
        mov     dpl,source_low
        mov     dph,source_high
        clr     a
        movc    a,@a+dptr
        mov     r5,a
        mov     r6,target_high
        mov     r7,target_low
        lcall   write_byte
        mov     a,r7
        jz      copied
        djnz    tries_left,try
        sjmp    give_up
copied:
        inc     source_low
        inc     target_low
        mov     a,source_low
        jnz     copy
        inc     source_high
        inc     target_high
        mov     a,source_high
        cjne    a,#>BEHIND_SOURCE,copy

; All of it reads back as it should. No command is taken any more (bit 6), so that a
; program under test that goes astray can't erase the monitor; the monitor sets the bit
; itself when it wants to write, as it has to after a power-up without this loader.
; Bits 0 and 1 stay 0, which is what lets the jump land in the monitor.
finish::
        anl     ISP_CONFIGURATION,#0xBF
        anl     ISP_CONFIGURATION,#0xFC
        ljmp    MONITOR_ENTRY

; A monitor with a byte missing is never started. The reset jump still stands in program
; memory: the next power-up tries the whole again.
give_up::
        anl     ISP_CONFIGURATION,#0xBF
for_ever::
        sjmp    for_ever

; ---------------------------------------------------------------------------------------
        .org    OPENING_PLACE

; Opens the flash: the boot firmware's 8 KB come to 0000 (bits 0 and 1), commands are taken
; from here on (bit 6). The first command erases the sector at F000, where the monitor's
; entry is (vkm58.asm tells why that holds for both): a monitor of an earlier time loses its
; entry before anything else, so what is left of it while the rest is erased isn't entered.
open_flash::
        anl     ISP_CONFIGURATION,#0xFC
        orl     ISP_CONFIGURATION,#0x40
        mov     ISP_ADDRESS_HIGH,#0xF0
        mov     ISP_ADDRESS_LOW,#0x00
        mov     ISP_COMMAND,#ERASE_SECTOR
        lcall   wait_while_busy
        ljmp    opened
