// What the terminal and the two panels with a serial setting remember between two runs.
#include <gtest/gtest.h>

#include <limits>

#include "support/virtual_bench.h"
#include "window/main_window.h"

namespace vkm::test {
namespace {

using Stored = std::map<std::string, std::string>;

struct ToolRun : VirtualWorld {
    explicit ToolRun(const Stored& stored = {}) {
        for (const auto& [key, value] : stored) settings.preset("Settings", key, value);
        start_program(frm);
    }
    // The operator closes the window.
    void end() {
        while (!QueryUnload(frm)) run_for(501);
        Unload(frm);
    }
    std::string stored(const std::string& key) const {
        const auto found = settings.on_disk.find({"Settings", key});
        return found == settings.on_disk.end() ? "(absent)" : found->second;
    }
    Screen& s = frm.screen;
};

const std::string send_default = "0123456789 ABCDEF 串口调试助手";

struct ListKey {
    const char* key;
    Control Screen::*list;
    int otherwise;
};

const ListKey list_keys[] = {
    {"DebugCOM", &Screen::com_Debug_COM, 0},
    {"DebugBaud", &Screen::com_Debug_Baud, 2},
    {"DebugDataBits", &Screen::com_Debug_DataBits, 0},
    {"DebugParity", &Screen::com_Debug_ParityCheck, 2},
    {"DebugStopBits", &Screen::com_Debug_StopBits, 0},
    {"UserCodeBaud", &Screen::cobUserCodeBaud, 2},
    {"UserCodeParity", &Screen::cobUserCodeParity, 2},
    {"UserCodeDataBits", &Screen::cobUserCodeDataBits, 0},
    {"UserCodeStopBits", &Screen::cobUserCodeStopBits, 0},
    {"ISP_DEMO_DownLoad_Baud", &Screen::cob_DEMO_DownLoad_Baud, 2},
    {"ISP_DEMO_DownLoad_Parity", &Screen::cob_DEMO_DownLoad_Parity, 2},
    {"ISP_DEMO_DownLoad_DataBits", &Screen::cob_DEMO_DownLoad_DataBits, 0},
    {"ISP_DEMO_DownLoad_StopBits", &Screen::cob_DEMO_DownLoad_StopBits, 0},
    {"ISP_DEMO_UserCodeBaud", &Screen::cob_DEMO_UserCode_Baud, 2},
    {"ISP_DEMO_UserCodeParity", &Screen::cob_DEMO_UserCode_Parity, 2},
    {"ISP_DEMO_UserCodeDataBits", &Screen::cob_DEMO_UserCode_DataBits, 0},
    {"ISP_DEMO_UserCodeStopBits", &Screen::cob_DEMO_UserCode_StopBits, 0},
};

TEST(TerminalSettings, OfAnEmptyStoreAreTheDefaults) {
    ToolRun run;
    for (const ListKey& key : list_keys)
        EXPECT_EQ((run.s.*key.list).ListIndex, key.otherwise) << key.key;
    EXPECT_EQ(text_of(run.s.com_Debug_Baud), "115200");
    EXPECT_EQ(text_of(run.s.com_Debug_ParityCheck), "None");
    EXPECT_EQ(run.s.texSendCycle.Text, "1000");
    EXPECT_EQ(run.s.texSpreadSendCycle.Text, "1000");
    EXPECT_EQ(run.s.texSend.Text, send_default);
    for (std::size_t i = 0; i < 25; ++i) {
        EXPECT_EQ(run.s.cheSpreadHex[i].Value, 0) << i;
        EXPECT_EQ(run.s.texSpreadSend[i].Text, "") << i;
    }
    EXPECT_EQ(run.s.che_AutoOpenPort.Value, 0);
    EXPECT_EQ(run.s.optHexSend[0].Value, 1);
    EXPECT_EQ(run.s.optHexSend[1].Value, 0);
}

TEST(TerminalSettings, AreWrittenAtTheEndOfARunEachWithItsKey) {
    ToolRun run;
    for (const ListKey& key : list_keys) EXPECT_EQ(run.stored(key.key), "(absent)");
    run.end();
    Stored expected;
    for (const ListKey& key : list_keys) expected[key.key] = std::to_string(key.otherwise);
    expected["DebugAutoOpenPort"] = "0";
    expected["optHexSend_0"] = "True";
    expected["optHexSend_1"] = "False";
    expected["texSendCycle"] = "1000";
    expected["texSpreadSendCycle"] = "1000";
    expected["texSendText"] = send_default;
    for (int i = 0; i < 25; ++i) {
        expected["cheSpreadHex_" + std::to_string(i)] = "0";
        expected["texSpreadSend_" + std::to_string(i)] = "";
    }
    for (const auto& [key, value] : expected) EXPECT_EQ(run.stored(key), value) << key;
}

TEST(TerminalSettings, AreNotWrittenBefore) {
    ToolRun run;
    run.s.texSend.Text = "changed";
    run.s.com_Debug_COM.ListIndex = 3;
    run.run_for(60'000);
    EXPECT_EQ(run.stored("texSendText"), "(absent)");
    EXPECT_EQ(run.stored("DebugCOM"), "(absent)");
}

TEST(TerminalSettings, OfEveryListComeBackAndNoOtherWithThem) {
    for (const ListKey& key : list_keys) {
        const auto count = static_cast<int>((ToolRun().s.*key.list).List.size());
        for (int index = 0; index < count; ++index) {
            ToolRun first;
            (first.s.*key.list).ListIndex = index;
            first.end();
            EXPECT_EQ(first.stored(key.key), std::to_string(index));
            ToolRun second(Stored{{key.key, first.stored(key.key)}});
            for (const ListKey& other : list_keys)
                EXPECT_EQ((second.s.*other.list).ListIndex,
                          other.key == key.key ? index : other.otherwise)
                    << key.key << " " << other.key;
        }
    }
}

TEST(TerminalSettings, TakeAStoredIndexAsItStands) {
    const struct {
        const char* stored;
        std::int32_t index;
    } cases[] = {{"40", 40},
                 {"-1", -1},
                 {"-7", -7},
                 {"15", 15},
                 {"", 0},
                 {"text", 0},
                 {" 3 ", 3},
                 {"2.9", 2},
                 {"99999999999", std::numeric_limits<std::int32_t>::max()},
                 {"-99999999999", std::numeric_limits<std::int32_t>::min()}};
    for (const ListKey& key : list_keys)
        for (const auto& c : cases) {
            ToolRun run(Stored{{key.key, c.stored}});
            EXPECT_EQ((run.s.*key.list).ListIndex, c.index) << key.key << " " << c.stored;
            run.end();
            EXPECT_EQ(run.stored(key.key), std::to_string(c.index)) << key.key;
            EXPECT_TRUE(run.boxes().empty());
        }
}

TEST(TerminalSettings, ThatAreWrittenOnlyAreNotReadBack) {
    ToolRun first;
    first.s.che_AutoOpenPort.Value = 1;
    first.s.optHexSend[0].Value = 0;
    first.s.optHexSend[1].Value = 1;
    first.end();
    EXPECT_EQ(first.stored("DebugAutoOpenPort"), "1");
    EXPECT_EQ(first.stored("optHexSend_0"), "False");
    EXPECT_EQ(first.stored("optHexSend_1"), "True");
    ToolRun second(
        {{"DebugAutoOpenPort", "1"}, {"optHexSend_0", "False"}, {"optHexSend_1", "True"}});
    EXPECT_EQ(second.s.che_AutoOpenPort.Value, 0);
    EXPECT_EQ(second.s.optHexSend[0].Value, 1);
    EXPECT_EQ(second.s.optHexSend[1].Value, 0);
}

TEST(TerminalSettings, OfTheHexBoxesAreOnForEveryNumberBut0) {
    const struct {
        const char* stored;
        int value;
    } cases[] = {{"0", 0}, {"1", 1}, {"2", 1}, {"-1", 1}, {"", 0}, {"text", 0}};
    for (const auto& c : cases) {
        ToolRun run(Stored{{"cheSpreadHex_13", c.stored}});
        for (std::size_t i = 0; i < 25; ++i)
            EXPECT_EQ(run.s.cheSpreadHex[i].Value, i == 13 ? c.value : 0) << c.stored << " " << i;
    }
}

TEST(TerminalSettings, OfTheListComeBackEachToItsElement) {
    ToolRun first;
    for (std::size_t i = 0; i < 25; ++i) {
        first.s.texSpreadSend[i].Text = "element 串 " + std::to_string(i);
        first.s.cheSpreadHex[i].Value = i % 3 == 0 ? 1 : 0;
    }
    first.end();
    Stored stored;
    for (const auto& [place, value] : first.settings.on_disk) stored[place.second] = value;
    ToolRun second(stored);
    for (std::size_t i = 0; i < 25; ++i) {
        EXPECT_EQ(second.s.texSpreadSend[i].Text, "element 串 " + std::to_string(i));
        EXPECT_EQ(second.s.cheSpreadHex[i].Value, i % 3 == 0 ? 1 : 0) << i;
    }
}

TEST(TerminalSettings, OfTextsComeBackAsTheyWere) {
    for (const std::string text : {"", " ", "  both ends  ", "a\r\nb\r\n", "\"quoted\"", "a=b;c,d",
                                   "串口调试助手", "\\x41", "0"}) {
        ToolRun first;
        first.s.texSend.Text = text;
        first.s.texSendCycle.Text = text;
        first.s.texSpreadSendCycle.Text = text;
        first.end();
        ToolRun second({{"texSendText", first.stored("texSendText")},
                        {"texSendCycle", first.stored("texSendCycle")},
                        {"texSpreadSendCycle", first.stored("texSpreadSendCycle")}});
        EXPECT_EQ(second.s.texSend.Text, text);
        EXPECT_EQ(second.s.texSendCycle.Text, text);
        EXPECT_EQ(second.s.texSpreadSendCycle.Text, text);
    }
}

TEST(TerminalSettings, OfAnEmptiedTextStayEmpty) {
    ToolRun run({{"texSendText", ""}, {"texSendCycle", ""}});
    EXPECT_EQ(run.s.texSend.Text, "");
    EXPECT_EQ(run.s.texSendCycle.Text, "");
}

}  // namespace
}  // namespace vkm::test
