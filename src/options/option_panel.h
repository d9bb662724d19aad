// The option panel: laid out for the family of the selected model, and locked and
// freed with the state of the tool.
#pragma once

#include <cstdint>
#include <functional>

#include "frmMain.h"

namespace vkm {

// Every control that the panel may show, for one family or another.
void for_each_option_control(Screen& s, const std::function<void(Control&)>& visit);

// Lays the panel out from the family's rows, with their default choices. The
// order of its lines stands in Frame16.List: an entry without a parent begins a
// line, and the entries that name it as their parent stand beside it.
void Arrange_Options(frmMain& frm);

// Enables the controls of the schema by the state of the tool (UI_State_Value):
// ui_idle frees them, ui_busy and ui_locked leave the labels readable,
// ui_busy_locked disables all. Then follows the watchdog's choice.
void Apply_Option_Enable(frmMain& frm, std::int16_t state);

// What belongs to the internal watchdog can be chosen only while the chip is to
// start it at power-up. Does nothing in a family without that choice.
void Follow_Watchdog_Choice(frmMain& frm);

// A pin can be chosen only while it is used.
void Follow_485_Choice(frmMain& frm);
void Follow_External_WDT_Choice(frmMain& frm);

// Tells the operator when both selectors show the same pin; the choice stays.
void Check_Pin_Clash(frmMain& frm);

}  // namespace vkm
