#include "robot/tool_values.h"

#include <QJsonArray>
#include <map>

#include "robot/refusal.h"

namespace vkm::robot {
namespace {

QJsonValue json(const std::string& text) {
    return QString::fromStdString(text);
}
QJsonValue json(bool flag) {
    return flag;
}
QJsonValue json(std::int32_t number) {
    return number;
}
QJsonValue json(std::uint32_t number) {
    return static_cast<double>(number);
}
QJsonValue json(float number) {
    return static_cast<double>(number);
}

template <std::size_t count>
QJsonValue json(const std::array<std::int16_t, count>& numbers) {
    QJsonArray array;
    for (const std::int16_t number : numbers) array.append(number);
    return array;
}

using Value = QJsonValue (*)(const frmMain&);
using Values = std::map<QString, Value>;

// NAME, and where it stands in the hall.
#define VALUE(name, place)                                                 \
    {                                                                      \
        name, [](const frmMain& frm) -> QJsonValue { return json(place); } \
    }

#define RECORD_FIELD(record, place, field) VALUE(record "." #field, (place).field)

#define MODEL(field) RECORD_FIELD("MCU_Info", frm.catalogue.MCU_Info, field)
#define IMAGE(name, field) RECORD_FIELD(#name, frm.images.name, field)
#define IMAGE_FIELDS(name)                                                                         \
    IMAGE(name, Buffer_Name), IMAGE(name, File_Low), IMAGE(name, File_High),                       \
        IMAGE(name, Image_Low), IMAGE(name, Image_High), IMAGE(name, Sum), IMAGE(name, Start_Add), \
        IMAGE(name, Clear_First), IMAGE(name, Has_File)
#define PLAN(field) RECORD_FIELD("Download_Plan", frm.session.Download_Plan, field)
#define INCREASE(name, place, field) RECORD_FIELD(name, frm.increase.place, field)
#define INCREASE_FIELDS(name, place)                                         \
    INCREASE(name, place, Set_Name), INCREASE(name, place, Address),         \
        INCREASE(name, place, Length), INCREASE(name, place, Next_Value),    \
        INCREASE(name, place, Increase), INCREASE(name, place, Active),      \
        INCREASE(name, place, Sel_Start), INCREASE(name, place, Sel_Length), \
        INCREASE(name, place, Numeral)

const Values& values() {
    static const Values table = {
        VALUE("UI_State", frm.session.UI_State),
        VALUE("File_Loaded", frm.images.File_Loaded),
        VALUE("Connected", frm.session.Connected),
        VALUE("Program_OK", frm.session.Program_OK),
        VALUE("Chip_Name", frm.link.Chip_Name),
        VALUE("Chip_Letter", frm.link.Chip_Letter),
        VALUE("Chip_Version", frm.link.Chip_Version),
        VALUE("crystal_frequency", frm.link.crystal_frequency),
        VALUE("newBaud_H", frm.link.newBaud_H),
        VALUE("newBaud_L", frm.link.newBaud_L),
        VALUE("Option_Bytes", frm.options.Option_Bytes[0]),
        VALUE("Chip_Bytes", frm.options.Chip_Bytes),
        VALUE("debug_mode", frm.link.debug_mode),
        VALUE("Receive_Count", frm.assistant.Receive_Count),
        VALUE("Send_Count", frm.assistant.Send_Count),
        VALUE("Project_Lock", frm.session.Project_Lock),
        VALUE("Watched_File", frm.session.Watched_File),
        MODEL(MCU_Family),
        MODEL(MCU_ID),
        MODEL(AP_Start),
        MODEL(AP_End),
        MODEL(AP_End_Alt),
        MODEL(Data_Start),
        MODEL(Data_End),
        MODEL(Code_Top),
        MODEL(ISP_Start),
        MODEL(Memory_Top),
        MODEL(Split_Flag),
        MODEL(MCU_Name),
        MODEL(Old_ID),
        MODEL(SoftICE_ROM),
        IMAGE_FIELDS(AP_Buffer),
        IMAGE_FIELDS(Data_Buffer),
        PLAN(Plan_Name),
        PLAN(Plan_AP_Low),
        PLAN(Plan_AP_High),
        PLAN(Plan_File_Low),
        PLAN(Plan_File_High),
        PLAN(Plan_Data_Low),
        PLAN(Plan_Data_High),
        PLAN(Tail_Low),
        PLAN(Tail_High),
        PLAN(Tail_Free),
        PLAN(Spill_Low),
        PLAN(Spill_High),
        PLAN(Spill),
        PLAN(Free_Low),
        PLAN(Free_High),
        INCREASE_FIELDS("Auto_Increase_Set", Auto_Increase),
        INCREASE_FIELDS("Data_Auto_Increase_Set", Data_Auto_Increase),
    };
    return table;
}

const std::vector<std::uint8_t>& bytes_of(const frmMain& frm, const QString& image) {
    if (image == "AP_Buffer") return frm.images.AP_Buffer.Bytes;
    if (image == "Data_Buffer") return frm.images.Data_Buffer.Bytes;
    if (image == "Board_Image") return frm.board.Board_Image;
    throw Refusal{"unknown image " + image};
}

}  // namespace

QJsonValue tool_value(const frmMain& frm, const QString& name) {
    const auto found = values().find(name);
    if (found == values().end()) throw Refusal{"unknown value " + name};
    return found->second(frm);
}

QString image_bytes(const frmMain& frm, const QString& image, int from, int count) {
    const auto& bytes = bytes_of(frm, image);
    const auto size = static_cast<qint64>(bytes.size());
    if (from < 0 || count < 0 || qint64{from} + count > size)
        throw Refusal{image + " holds bytes 0 to " + QString::number(size - 1)};
    const QByteArray stretch(reinterpret_cast<const char*>(bytes.data()) + from, count);
    return QString::fromLatin1(stretch.toHex().toUpper());
}

}  // namespace vkm::robot
