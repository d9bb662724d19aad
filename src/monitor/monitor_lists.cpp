#include "monitor/monitor_lists.h"

#include <string>
#include <vector>

#include "monitor/list_rows.h"
#include "monitor/register_tables.h"
#include "monitor/target_dump.h"
#include "text/hexadecimal.h"

namespace vkm {
namespace {

constexpr std::size_t ram_digits = 2;
constexpr std::size_t xram_digits = 4;

void begin_anew(Control& list, const std::vector<std::string>& rows) {
    fill_list(list, rows);
    list.Selected.clear();
    list.Value = 0;
}

std::vector<std::string> memory_rows(std::uint32_t base, std::size_t cells, std::size_t digits) {
    std::vector<std::string> rows;
    for (std::size_t i = 0; i < cells; i += cells_per_row)
        rows.push_back(memory_row(base + static_cast<std::uint32_t>(i), digits));
    return rows;
}

// The last one that changed becomes the current one.
void highlight(Control& list, std::vector<std::int32_t> changed) {
    list.ListIndex = changed.empty() ? -1 : changed.back();
    list.Selected = std::move(changed);
}

void show_registers(Control& list, const Cells_256& cells) {
    std::vector<std::int32_t> changed;
    for (std::size_t i = 0; i < list.List.size(); ++i) {
        std::string& row = list.List[i].Text;
        const Cell value = cells[address_of_register_row(row)];
        if (value == unknown_cell) continue;
        std::string now = with_register_value(row, static_cast<std::uint8_t>(value));
        if (!same_register_value(row, now)) changed.push_back(static_cast<std::int32_t>(i));
        row = std::move(now);
    }
    highlight(list, std::move(changed));
    list.Value = 0;
}

void show_memory(Control& list, std::span<const Cell> cells) {
    std::vector<std::int32_t> changed;
    for (std::size_t i = 0; i < list.List.size() && i * cells_per_row < cells.size(); ++i) {
        std::string& row = list.List[i].Text;
        std::string now = with_memory_values(row, cells.subspan(i * cells_per_row));
        if (row != now) changed.push_back(static_cast<std::int32_t>(i));
        row = std::move(now);
    }
    highlight(list, std::move(changed));
}

void move_window(Control& list, std::uint16_t base) {
    const std::string address = hex_text(base, xram_digits);
    if (list.List.empty() || !list.List.front().Text.starts_with(address))
        begin_anew(list, memory_rows(base, window_cells, xram_digits));
}

}  // namespace

void Rebuild_Register_List(frmMain& frm) {
    std::vector<std::string> rows;
    for (const RegisterRow& row : registers_of_family(frm.catalogue.MCU_Info.MCU_Family))
        rows.push_back(register_row(row));
    begin_anew(frm.screen.lst_debug1, rows);
}

void Clear_Monitor_Lists(frmMain& frm) {
    Rebuild_Register_List(frm);
    begin_anew(frm.screen.lst_debug2, memory_rows(0, Cells_256().size(), ram_digits));
    begin_anew(frm.screen.lst_debug3, memory_rows(0, xram_cells, xram_digits));
}

void Fill_Monitor_Lists(frmMain& frm) {
    Clear_Monitor_Lists(frm);
    begin_anew(frm.screen.lst_debug4, memory_rows(0, window_cells, xram_digits));
}

void Show_Dump(frmMain& frm, std::span<const std::uint8_t> frame) {
    Screen& screen = frm.screen;
    switch (type_of_dump(frame)) {
        case dump_registers:
            return show_registers(screen.lst_debug1, register_cells(frame));
        case dump_ram:
            return show_memory(screen.lst_debug2, ram_cells(frame));
        case dump_xram:
            return show_memory(screen.lst_debug3, payload_cells(frame, xram_cells));
        case dump_window:
            move_window(screen.lst_debug4, window_base(frame));
            return show_memory(screen.lst_debug4, payload_cells(frame, window_cells));
        default:
            return;
    }
}

}  // namespace vkm
