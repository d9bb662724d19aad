// The two memory images and the files that go into them.
//
// Owns the records AP_Buffer and Data_Buffer, the load driver through which
// every load passes, the two readers (readers.h) with their range rules
// (range_rules.h), and the page of hexadecimal text. Called by the wiring
// (buttons, dropped files), the download (reload) and by projects. Always
// holds: the byte arrays are never resized, and no file can store outside them.
// Trouble with ranges is told in one box; a file that can't be read counts as
// empty.
//
// Events run while a file is read. A load or reset of the same image that comes
// meanwhile is the operator's later wish: it is carried out whole, and the load
// that it overtook ends without touching anything more.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "frmMain.h"

namespace vkm {

// Sizes both images and names them. Once, at start.
void Allocate_Buffers(frmMain& frm);

// Stores the value in every byte.
void Fill_Bytes(std::uint8_t value, std::span<std::uint8_t> bytes);

// Empties one image: every byte gets `value`.
void Reset_Buffer(frmMain& frm, std::uint8_t value, Image_Buffer& buffer);

// The open dialog; kind "AP" or "DATA". Empty when the operator cancels.
std::string Choose_File(frmMain& frm, std::string_view kind);

// True while the program file that was loaded, or else the remembered one, is there.
// Otherwise the operator has been told.
bool Check_Last_File(frmMain& frm);

// Start_Add and Clear_First from the screen.
void Read_Buffer_Options(frmMain& frm, Image_Buffer& buffer);

// The driver of every load. An empty path does nothing. True when the file is in the
// image now: false for an empty path, a start address out of range, a file that the
// operator refused, and for a load that another one overtook.
bool Load_File(frmMain& frm, const std::string& path, Image_Buffer& buffer);

// Fits the scroll bar to the image and redraws the page.
void Refresh_Buffer_View(frmMain& frm, Image_Buffer& buffer, Auto_Increase_Set& set);

// The scroll bar of a view moved: 0 program image, 1 data image. The view is drawn
// and takes the keyboard when it can be seen.
void vscFile_Change(frmMain& frm, int element);

// ---- the operator's entry points ----
void comLoadFile(frmMain& frm);
void comLoadDataFile(frmMain& frm);
// Takes a file as comLoadFile does, when that could be clicked now.
void Open_Dropped_File(frmMain& frm, const std::string& path);
void comStoreFile(frmMain& frm);
// txt_Start_Address or txt_length changed: comStoreFile needs both, and an idle tool.
void Enable_Save_File(frmMain& frm);

}  // namespace vkm
