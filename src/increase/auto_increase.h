// Numbers counted up in each chip's image: every chip that is programmed gets a
// number of its own at a fixed place of the program image, of the data image, or of
// both.
//
// Owns the two records and the bytes of a number (number_bytes.h). The click
// sequences and the step behind a good chip also redraw the hex view, and stand
// above the images in number_sequence.h. Always holds: nothing is written outside an
// image; a number that can't be written is told in a box and leaves the image as it
// was; behind each good chip the settings hold the number of the next one.
#pragma once

#include <array>
#include <string>
#include <string_view>

#include "frmMain.h"

namespace vkm {

// A set and what belongs to it on the screen and in the settings.
struct NumberPlace {
    Auto_Increase_Set& set;
    Image_Buffer& buffer;
    Control& enable;
    std::array<Control, 4>& fields;   // address, length, next value, increment
    std::array<Control, 3>& formats;  // by Numeral
    std::string_view section;         // of the settings
    std::string_view title;           // of the boxes
};

NumberPlace place_of(frmMain& frm, const Auto_Increase_Set& set);

// At start: the fields from the settings.
void Load_Auto_Increase_Settings(frmMain& frm);

// Both sets to the settings, on the disk when this returns.
void Save_Auto_Increase_Settings(frmMain& frm);

// The screen into both records. The address is shown in capitals, and a number
// beyond 16 bits as the greatest that there is, so that what is used is what stands
// there.
void Read_Auto_Increase(frmMain& frm);

// Whether the number lies inside the model's memory. 0 when it does, and the set is
// active then; otherwise the operator has been told and Active is as it was.
int Check_Auto_Increase(frmMain& frm, Auto_Increase_Set& set);

// Writes Next_Value into the image, or tells why it can't be written.
void Patch_Auto_Increase(frmMain& frm, Auto_Increase_Set& set);

// Moves Next_Value on. Nothing for a set that isn't active.
void Advance_Auto_Increase(frmMain& frm, Auto_Increase_Set& set);

// Puts the numbers behind this chip's into the settings, without writing them to the
// disk yet: the caller stores them together with what says that the chip is good, so
// that no crash comes between the two.
void Note_Numbers_Behind(frmMain& frm);

// The same for one set, whatever its number is.
void Note_Number_Behind(frmMain& frm, const Auto_Increase_Set& set);

// The next number that the settings hold: how far this bench has come.
std::string last_saved_number(frmMain& frm, const Auto_Increase_Set& set);

// A field or a format was touched: the number in the image is no longer the one on
// the screen.
void Program_Number_Touched(frmMain& frm);
void Data_Number_Touched(frmMain& frm);

// The operator may enter a number: where the tool is free and the model has such an
// image.
void Free_Number_Fields(const frmMain& frm, const NumberPlace& place);

// Numbering off for both images, as every new file wants it.
void Switch_Numbering_Off(frmMain& frm);

}  // namespace vkm
