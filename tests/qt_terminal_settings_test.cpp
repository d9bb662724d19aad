// The terminal's texts through the real store: whatever an operator can type comes back.
#include <gtest/gtest.h>

#include <QTemporaryDir>

#include "platform/qt/qt_settings_store.h"
#include "platform/qt/text_mapping.h"
#include "qt_application.h"
#include "support/virtual_platform.h"
#include "window/panel_settings.h"

namespace vkm::test {
namespace {

// A run of the program with an ini file of its own.
struct StoredRun : VirtualPlatform {
    explicit StoredRun(const QString& file) : store(from_qt(file)) {}

    QtSettingsStore store;
    frmMain frm{{loop, wall_clock, faults, store, dialogs, files, sounder, code_page}};
};

const std::string typed[] = {
    "",
    " ",
    "   leading",
    "trailing   ",
    "  both  ",
    "one\r\ntwo\r\n",
    "\r\n",
    "\ttab\t",
    "\"quoted\"",
    "\"",
    "say \"hi\" now",
    "a=b",
    "=",
    "a;b;c",
    ";",
    "# no remark",
    "a,b,c",
    ",",
    ", ,",
    "12 34, AB CD",
    "串口调试助手",
    "℃ é 𝄞",
    "\\",
    "\\n\\x41",
    "C:\\dir\\",
    "@Invalid()",
    "@ByteArray(x)",
    "@",
    "[section]",
    "%41%",
    "true",
    "007",
    "0123456789 ABCDEF 串口调试助手",
};

TEST(StoredTerminal, TextsComeBackAsTheyWereTyped) {
    application();
    const QTemporaryDir folder;
    for (const std::string& text : typed) {
        const QString file = folder.filePath("terminal.ini");
        {
            StoredRun run(file);
            run.frm.screen.texSend.Text = text;
            run.frm.screen.texSendCycle.Text = text;
            run.frm.screen.texSpreadSendCycle.Text = text;
            for (Control& element : run.frm.screen.texSpreadSend) element.Text = text;
            Save_Assistant_Settings(run.frm);
            ASSERT_TRUE(run.store.flush());
        }
        StoredRun run(file);
        Load_Assistant_Settings(run.frm);
        EXPECT_EQ(run.frm.screen.texSend.Text, text);
        EXPECT_EQ(run.frm.screen.texSendCycle.Text, text);
        EXPECT_EQ(run.frm.screen.texSpreadSendCycle.Text, text);
        for (const Control& element : run.frm.screen.texSpreadSend)
            EXPECT_EQ(element.Text, text) << element.Index;
    }
}

TEST(StoredTerminal, ListsAndBoxesComeBack) {
    application();
    const QTemporaryDir folder;
    const QString file = folder.filePath("terminal.ini");
    {
        StoredRun run(file);
        Screen& s = run.frm.screen;
        s.com_Debug_COM.ListIndex = 15;
        s.com_Debug_Baud.ListIndex = 40;
        s.com_Debug_DataBits.ListIndex = -1;
        s.cobUserCodeBaud.ListIndex = 3;
        s.cob_DEMO_DownLoad_Baud.ListIndex = 4;
        s.cob_DEMO_UserCode_Baud.ListIndex = 5;
        s.cheSpreadHex[24].Value = 1;
        Save_Assistant_Settings(run.frm);
        Save_User_Code_Settings(run.frm);
        Save_Demo_Settings(run.frm);
        ASSERT_TRUE(run.store.flush());
    }
    StoredRun run(file);
    Load_Assistant_Settings(run.frm);
    Load_User_Code_Settings(run.frm);
    Load_Demo_Settings(run.frm);
    const Screen& s = run.frm.screen;
    EXPECT_EQ(s.com_Debug_COM.ListIndex, 15);
    EXPECT_EQ(s.com_Debug_Baud.ListIndex, 40);
    EXPECT_EQ(s.com_Debug_DataBits.ListIndex, -1);
    EXPECT_EQ(s.cobUserCodeBaud.ListIndex, 3);
    EXPECT_EQ(s.cob_DEMO_DownLoad_Baud.ListIndex, 4);
    EXPECT_EQ(s.cob_DEMO_UserCode_Baud.ListIndex, 5);
    EXPECT_EQ(s.cheSpreadHex[24].Value, 1);
    EXPECT_EQ(s.cheSpreadHex[23].Value, 0);
    // All of them stand in the one section, under names that a person can find.
    EXPECT_TRUE(run.store.all().contains("Settings"));
    EXPECT_EQ(run.store.all().size(), 1u);
}

}  // namespace
}  // namespace vkm::test
