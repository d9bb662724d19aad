/* Example program for any 8051 with an 11.0592 MHz crystal: counts seconds on the
 * LEDs of P1 (lit by a 0) and reports each one on the serial line (9600,n,8,1).
 * A small program with interrupts, so its file has gaps.
 *
 *     sdcc -mmcs51 counter.c
 *     packihx counter.ihx > counter.hex
 */
#include <8051.h>

#define TICKS_PER_SECOND 200
#define RELOAD (65536 - 11059200 / 12 / TICKS_PER_SECOND)

static volatile unsigned char ticks;
static volatile __bit second_passed;

void on_timer_0(void) __interrupt(1) {
    TH0 = RELOAD >> 8;
    TL0 = RELOAD & 0xFF;
    if (++ticks < TICKS_PER_SECOND) return;
    ticks = 0;
    second_passed = 1;
}

static void put(char c) {
    SBUF = c;
    while (!TI)
        ;
    TI = 0;
}

static void put_digits(unsigned char value) {
    put('0' + value / 100);
    put('0' + value / 10 % 10);
    put('0' + value % 10);
    put('\r');
    put('\n');
}

void main(void) {
    unsigned char seconds = 0;
    SCON = 0x40; /* 8 data bits */
    TMOD = 0x21; /* timer 1 reloads itself, timer 0 has 16 bits */
    TH1 = 0xFD;  /* 9600 baud from 11.0592 MHz */
    TR1 = 1;
    TR0 = 1;
    ET0 = 1;
    EA = 1;
    for (;;) {
        if (!second_passed) continue;
        second_passed = 0;
        P1 = ~++seconds;
        put_digits(seconds);
    }
}
