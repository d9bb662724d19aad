// What the headers of the seam (src/platform) promise, as tests that every
// realisation has to pass: the one in virtual time and the one of the drawn
// window alike, so that the first can't grow kinder than the second.
//
// To hold a realisation to it, include this header in one .cpp file, write a
// record with the members below, and instantiate the three suites:
//
//     INSTANTIATE_TYPED_TEST_SUITE_P(Virtual, LineContract, VirtualContractWorld);
//     INSTANTIATE_TYPED_TEST_SUITE_P(Virtual, SettingsContract, VirtualContractWorld);
//     INSTANTIATE_TYPED_TEST_SUITE_P(Virtual, FilesContract, VirtualContractWorld);
//
// The record is made anew for each test and needs a constructor without
// arguments and
//
//     EventLoop& loop();
//     void after(Microseconds delay, std::function<void()> action);
//                                   the action runs inside a turn, as the operator's do
//     SerialPort& port();           closed, its number that of a port that is there
//     int missing_number();         the number of a port that isn't there
//     void far_end_sends(std::vector<std::uint8_t> bytes);
//                                   at 115200 baud, from now on, as fast as the line goes
//     std::vector<std::uint8_t> far_end_heard();
//                                   everything that came out at the far end so far
//     void pull_plug();             the device goes
//     SettingsStore& settings();    empty at first
//     void crash();                 the store as the next start of the program finds it;
//                                   settings() is a new one afterwards
//     void refuse_writing(bool refused);
//                                   whether the store's disk takes nothing more
//     Files& files();
//     std::string folder();         of an empty folder, without a separator at its end
//
// Times are bounds that hold in real time too; where virtual time is exact, its
// own tests say so.
#pragma once

#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <numeric>
#include <string>
#include <vector>

#include "platform/event_loop.h"
#include "platform/files.h"
#include "platform/serial_port.h"
#include "platform/settings_store.h"

namespace vkm::test {

// Long enough for a machine that is busy with other tests.
inline constexpr Milliseconds patience{5000};

template <typename World>
class ContractTest : public testing::Test {
  protected:
    // Turns the loop until the condition holds; false when it doesn't in time.
    template <typename Condition>
    bool comes_true(Condition condition) {
        const Instant end = loop.now() + patience;
        while (!condition()) {
            if (loop.now() >= end) return false;
            loop.turn(std::min(end, loop.now() + Milliseconds(20)));
        }
        return true;
    }

    void run_for(Milliseconds time) {
        const Instant end = loop.now() + time;
        while (loop.now() < end) loop.turn(end);
    }

    World world;
    EventLoop& loop = world.loop();
};

// ---- EventLoop and SerialPort ------------------------------------------------

template <typename World>
class LineContract : public ContractTest<World> {
  protected:
    using Bytes = std::vector<std::uint8_t>;

    void open(std::string_view settings = "115200,n,8,1") {
        ASSERT_TRUE(port.set_settings(settings));
        ASSERT_EQ(port.open(), 0);
        ASSERT_TRUE(port.is_open());
    }

    static Bytes all_values() {
        Bytes bytes(256);
        std::iota(bytes.begin(), bytes.end(), std::uint8_t{0});
        return bytes;
    }

    SerialPort& port = this->world.port();
};
TYPED_TEST_SUITE_P(LineContract);

TYPED_TEST_P(LineContract, ATurnWhoseTimeHasComeDoesNotSleep) {
    const Instant before = this->loop.now();
    for (int i = 0; i < 10; ++i) this->loop.turn(before - Milliseconds(1000));
    for (int i = 0; i < 10; ++i) this->loop.turn(this->loop.now());
    EXPECT_LT(this->loop.now() - before, Milliseconds(500));
}

TYPED_TEST_P(LineContract, ATurnSleepsUntilItsTime) {
    const Instant before = this->loop.now();
    const Instant end = before + Milliseconds(60);
    int turns = 0;
    for (; this->loop.now() < end; ++turns) this->loop.turn(end);
    EXPECT_LE(turns, 20) << "it spins instead of sleeping";
    EXPECT_LT(this->loop.now() - before, patience);
}

TYPED_TEST_P(LineContract, WhatTheOperatorDoesEndsASleep) {
    bool clicked = false;
    const Instant before = this->loop.now();
    this->world.after(Milliseconds(10), [&] { clicked = true; });
    for (int i = 0; i < 20 && !clicked; ++i) this->loop.turn(before + patience);
    EXPECT_TRUE(clicked);
    EXPECT_LT(this->loop.now() - before, patience);
}

TYPED_TEST_P(LineContract, ATurnMayBeCalledFromWithinAHandlerThatItRuns) {
    std::string order;
    this->world.after(Milliseconds(5), [&] {
        order += '(';
        this->comes_true([&] { return order.size() == 2; });
        order += ')';
    });
    this->world.after(Milliseconds(15), [&] { order += 'x'; });
    EXPECT_TRUE(this->comes_true([&] { return order.size() == 3; }));
    EXPECT_EQ(order, "(x)");
}

TYPED_TEST_P(LineContract, TheClockNeverGoesBack) {
    Instant last = this->loop.now();
    for (int i = 0; i < 20; ++i) {
        this->loop.turn(last + Milliseconds(1));
        EXPECT_GE(this->loop.now(), last);
        last = this->loop.now();
    }
}

TYPED_TEST_P(LineContract, BytesThatArriveEndASleep) {
    this->open();
    const Instant before = this->loop.now();
    this->world.after(Milliseconds(10), [&] { this->world.far_end_sends({0x68}); });
    for (int i = 0; i < 20 && this->port.input_count() == 0; ++i)
        this->loop.turn(before + patience);
    EXPECT_EQ(this->port.input_count(), 1u);
    EXPECT_LT(this->loop.now() - before, patience);
}

TYPED_TEST_P(LineContract, BytesThatNobodyReadsDoNotKeepTheLoopFromSleeping) {
    this->open();
    this->world.far_end_sends({0x68});
    ASSERT_TRUE(this->comes_true([&] { return this->port.input_count() == 1; }));
    const Instant end = this->loop.now() + Milliseconds(60);
    int turns = 0;
    for (; this->loop.now() < end; ++turns) this->loop.turn(end);
    EXPECT_LE(turns, 20);
}

TYPED_TEST_P(LineContract, AClosedPortIsQuiet) {
    EXPECT_FALSE(this->port.is_open());
    this->port.write(typename TestFixture::Bytes{1, 2, 3});
    EXPECT_EQ(this->port.output_count(), 0u);
    EXPECT_EQ(this->port.input_count(), 0u);
    EXPECT_TRUE(this->port.read().empty());
    this->port.clear_input();
    this->port.clear_output();
    this->port.close();
    EXPECT_FALSE(this->port.is_open());
    this->run_for(Milliseconds(20));
    EXPECT_TRUE(this->world.far_end_heard().empty());
}

TYPED_TEST_P(LineContract, OpeningAnOpenPortIsAnErrorAndLeavesItOpen) {
    this->open();
    EXPECT_GT(this->port.open(), 0);
    EXPECT_TRUE(this->port.is_open());
    this->port.write(typename TestFixture::Bytes{0x55});
    EXPECT_TRUE(this->comes_true([&] { return this->world.far_end_heard().size() == 1; }));
}

TYPED_TEST_P(LineContract, OpeningAPortThatIsNotThereIsAnError) {
    this->port.set_port_number(this->world.missing_number());
    EXPECT_GT(this->port.open(), 0);
    EXPECT_FALSE(this->port.is_open());
}

TYPED_TEST_P(LineContract, ANewNumberTakesEffectAtTheNextOpening) {
    this->open();
    this->port.set_port_number(this->world.missing_number());
    EXPECT_EQ(this->port.port_number(), this->world.missing_number());
    EXPECT_TRUE(this->port.is_open());
    this->port.write(typename TestFixture::Bytes{0x55});
    EXPECT_TRUE(this->comes_true([&] { return this->world.far_end_heard().size() == 1; }));
    this->port.close();
    EXPECT_GT(this->port.open(), 0);
}

TYPED_TEST_P(LineContract, APortCanBeClosedAndOpenedAgainManyTimes) {
    for (int i = 0; i < 20; ++i) {
        this->open();
        this->port.close();
        ASSERT_FALSE(this->port.is_open());
    }
    this->open();
    this->world.far_end_sends({0x68});
    EXPECT_TRUE(this->comes_true([&] { return this->port.input_count() == 1; }));
}

TYPED_TEST_P(LineContract, EveryByteValueIsReceivedAsItIs) {
    this->open();
    this->world.far_end_sends(this->all_values());
    EXPECT_TRUE(this->comes_true([&] { return this->port.input_count() == 256; }));
    EXPECT_EQ(this->port.read(), this->all_values());
    EXPECT_EQ(this->port.input_count(), 0u);
    EXPECT_TRUE(this->port.read().empty());
}

TYPED_TEST_P(LineContract, EveryByteValueIsSentAsItIs) {
    this->open();
    this->port.write(this->all_values());
    EXPECT_TRUE(this->comes_true([&] { return this->world.far_end_heard().size() >= 256; }));
    EXPECT_EQ(this->world.far_end_heard(), this->all_values());
}

TYPED_TEST_P(LineContract, AReadTakesOneByteOrAllThatWait) {
    this->open();
    this->world.far_end_sends({1, 2, 3, 4});
    ASSERT_TRUE(this->comes_true([&] { return this->port.input_count() == 4; }));
    this->port.set_read_length(1);
    EXPECT_EQ(this->port.read(), (typename TestFixture::Bytes{1}));
    EXPECT_EQ(this->port.read(), (typename TestFixture::Bytes{2}));
    EXPECT_EQ(this->port.input_count(), 2u);
    this->port.set_read_length(0);
    EXPECT_EQ(this->port.read(), (typename TestFixture::Bytes{3, 4}));
}

TYPED_TEST_P(LineContract, ClearingTheInputDropsWhatWaits) {
    this->open();
    this->world.far_end_sends({1, 2, 3, 4});
    ASSERT_TRUE(this->comes_true([&] { return this->port.input_count() == 4; }));
    this->port.clear_input();
    EXPECT_EQ(this->port.input_count(), 0u);
    EXPECT_TRUE(this->port.read().empty());
    this->world.far_end_sends({5});
    EXPECT_TRUE(this->comes_true([&] { return this->port.input_count() == 1; }));
    EXPECT_EQ(this->port.read(), (typename TestFixture::Bytes{5}));
}

TYPED_TEST_P(LineContract, ManyKilobytesArriveWhole) {
    this->open();
    typename TestFixture::Bytes sent(40'000);
    for (std::size_t i = 0; i < sent.size(); ++i)
        sent[i] = static_cast<std::uint8_t>(i * 7 + i / 256);
    this->world.far_end_sends(sent);
    typename TestFixture::Bytes got;
    this->comes_true([&] {
        const auto bytes = this->port.read();
        got.insert(got.end(), bytes.begin(), bytes.end());
        return got.size() >= sent.size();
    });
    EXPECT_TRUE(got == sent) << got.size() << " bytes came";
}

TYPED_TEST_P(LineContract, TheOutputRunsEmpty) {
    this->open();
    this->port.write(this->all_values());
    EXPECT_TRUE(this->comes_true([&] { return this->port.output_count() == 0; }));
    EXPECT_TRUE(this->comes_true([&] { return this->world.far_end_heard().size() == 256; }));
}

TYPED_TEST_P(LineContract, ClosingComesAfterTheBytesThatWereWritten) {
    this->open();
    this->port.write(this->all_values());
    this->port.close();
    EXPECT_TRUE(this->comes_true([&] { return this->world.far_end_heard().size() >= 256; }));
    EXPECT_EQ(this->world.far_end_heard(), this->all_values());
}

TYPED_TEST_P(LineContract, AChangeOfRateComesAfterTheBytesThatWereWritten) {
    this->open("57600,n,8,1");
    this->port.write(this->all_values());
    EXPECT_TRUE(this->port.set_settings("115200,n,8,1"));
    EXPECT_EQ(this->port.output_count(), 0u);
    EXPECT_TRUE(this->comes_true([&] { return this->world.far_end_heard().size() >= 256; }));
    EXPECT_EQ(this->world.far_end_heard(), this->all_values());
}

TYPED_TEST_P(LineContract, ClearingTheOutputLeavesNothingUnsent) {
    this->open("1200,n,8,1");
    this->port.write(typename TestFixture::Bytes(200, 0x7F));
    EXPECT_LE(this->port.held_output(), this->port.output_count());
    this->port.clear_output();
    EXPECT_EQ(this->port.output_count(), 0u);
    EXPECT_EQ(this->port.held_output(), 0u);
    const Instant before = this->loop.now();
    this->port.close();
    EXPECT_LT(this->loop.now() - before, Milliseconds(1000)) << "it waits for what was dropped";
}

TYPED_TEST_P(LineContract, SettingsAreKeptAsTheirText) {
    EXPECT_TRUE(this->port.set_settings("9600,n,8,1"));
    EXPECT_EQ(this->port.settings(), "9600,n,8,1");
    ASSERT_EQ(this->port.open(), 0);
    EXPECT_EQ(this->port.settings(), "9600,n,8,1");
    EXPECT_TRUE(this->port.set_settings("19200,e,8,2"));
    this->port.close();
    EXPECT_EQ(this->port.settings(), "19200,e,8,2");
}

TYPED_TEST_P(LineContract, EveryRateOfTheListsIsTaken) {
    this->open();
    for (const int baud : {1200, 2400, 4800, 9600, 11520, 12800, 14400, 19200, 28800, 38400, 57600,
                           115200, 600, 128000, 256000}) {
        const std::string text = std::to_string(baud) + ",n,8,1";
        EXPECT_TRUE(this->port.set_settings(text)) << text;
        EXPECT_EQ(this->port.settings(), text);
    }
}

TYPED_TEST_P(LineContract, ATextThatIsNoSettingIsRefusedAndChangesNothing) {
    const std::vector<std::string> texts = {"",           ",",          "abc",
                                            "9600",       "9600,n,8",   "9600,x,8,1",
                                            "9600,n,9,1", "9600,n,8,3", "0,n,8,1",
                                            "-1,n,8,1",   ",n,8,1",     "9600,n,8,1,1",
                                            " 0,n,8,1",   "9600,,8,1",  "99999999999,n,8,1",
                                            "9600,n,,1",  "9600,n,8,",  "9600,n,8,1x"};
    ASSERT_TRUE(this->port.set_settings("4800,n,8,1"));
    for (const std::string& text : texts) {
        EXPECT_FALSE(this->port.set_settings(text)) << text;
        EXPECT_EQ(this->port.settings(), "4800,n,8,1");
    }
    ASSERT_EQ(this->port.open(), 0);
    for (const std::string& text : texts) {
        EXPECT_FALSE(this->port.set_settings(text)) << text;
        EXPECT_EQ(this->port.settings(), "4800,n,8,1");
        EXPECT_TRUE(this->port.is_open());
    }
}

TYPED_TEST_P(LineContract, ADeviceThatVanishesReadsAsClosed) {
    this->open();
    this->world.pull_plug();
    EXPECT_TRUE(this->comes_true([&] { return !this->port.is_open(); }));
    this->port.write(typename TestFixture::Bytes{1, 2, 3});
    EXPECT_EQ(this->port.output_count(), 0u);
    EXPECT_EQ(this->port.input_count(), 0u);
    EXPECT_TRUE(this->port.read().empty());
    this->port.clear_input();
    this->port.clear_output();
    this->port.close();
    EXPECT_GT(this->port.open(), 0);
    EXPECT_FALSE(this->port.is_open());
    this->run_for(Milliseconds(20));
}

TYPED_TEST_P(LineContract, ADeviceThatVanishesUnderABigWriteKeepsNobodyWaiting) {
    this->open("1200,n,8,1");
    this->port.write(typename TestFixture::Bytes(500, 0x55));
    this->world.pull_plug();
    const Instant before = this->loop.now();
    this->port.close();
    EXPECT_LT(this->loop.now() - before, patience);
    EXPECT_FALSE(this->port.is_open());
}

REGISTER_TYPED_TEST_SUITE_P(
    LineContract, ATurnWhoseTimeHasComeDoesNotSleep, ATurnSleepsUntilItsTime,
    WhatTheOperatorDoesEndsASleep, ATurnMayBeCalledFromWithinAHandlerThatItRuns,
    TheClockNeverGoesBack, BytesThatArriveEndASleep,
    BytesThatNobodyReadsDoNotKeepTheLoopFromSleeping, AClosedPortIsQuiet,
    OpeningAnOpenPortIsAnErrorAndLeavesItOpen, OpeningAPortThatIsNotThereIsAnError,
    ANewNumberTakesEffectAtTheNextOpening, APortCanBeClosedAndOpenedAgainManyTimes,
    EveryByteValueIsReceivedAsItIs, EveryByteValueIsSentAsItIs, AReadTakesOneByteOrAllThatWait,
    ClearingTheInputDropsWhatWaits, ManyKilobytesArriveWhole, TheOutputRunsEmpty,
    ClosingComesAfterTheBytesThatWereWritten, AChangeOfRateComesAfterTheBytesThatWereWritten,
    ClearingTheOutputLeavesNothingUnsent, SettingsAreKeptAsTheirText, EveryRateOfTheListsIsTaken,
    ATextThatIsNoSettingIsRefusedAndChangesNothing, ADeviceThatVanishesReadsAsClosed,
    ADeviceThatVanishesUnderABigWriteKeepsNobodyWaiting);

// ---- SettingsStore -------------------------------------------------------------

template <typename World>
class SettingsContract : public ContractTest<World> {};
TYPED_TEST_SUITE_P(SettingsContract);

TYPED_TEST_P(SettingsContract, AnAbsentKeyGivesTheDefault) {
    SettingsStore& store = this->world.settings();
    EXPECT_EQ(store.get("Settings", "COM_port", "0"), "0");
    EXPECT_EQ(store.get("Settings", "COM_port", ""), "");
    EXPECT_EQ(store.get("", "", "x"), "x");
}

TYPED_TEST_P(SettingsContract, ASavedValueIsReadBack) {
    SettingsStore& store = this->world.settings();
    store.save("Settings", "COM_port", "3");
    EXPECT_EQ(store.get("Settings", "COM_port", "0"), "3");
    store.save("Settings", "COM_port", "4");
    EXPECT_EQ(store.get("Settings", "COM_port", "0"), "4");
    store.save("Settings", "COM_port", "4");
    EXPECT_EQ(store.get("Settings", "COM_port", "0"), "4");
}

TYPED_TEST_P(SettingsContract, AnEmptyValueIsAValue) {
    SettingsStore& store = this->world.settings();
    store.save("Settings", "File_Path", "");
    EXPECT_EQ(store.get("Settings", "File_Path", "otherwise"), "");
    store.flush();
    this->world.crash();
    EXPECT_EQ(this->world.settings().get("Settings", "File_Path", "otherwise"), "");
}

TYPED_TEST_P(SettingsContract, SectionsKeepTheirKeysApart) {
    SettingsStore& store = this->world.settings();
    store.save("Auto_Increase", "Address", "1");
    store.save("Data_Auto_Increase", "Address", "2");
    EXPECT_EQ(store.get("Auto_Increase", "Address", ""), "1");
    EXPECT_EQ(store.get("Data_Auto_Increase", "Address", ""), "2");
    EXPECT_EQ(store.get("Settings", "Address", "none"), "none");
}

TYPED_TEST_P(SettingsContract, WhatWasFlushedOutlivesACrash) {
    this->world.settings().save("Settings", "Write_OK_Count", "17");
    this->world.settings().flush();
    this->world.crash();
    EXPECT_EQ(this->world.settings().get("Settings", "Write_OK_Count", "0"), "17");
    this->world.settings().save("Settings", "Write_OK_Count", "18");
    this->world.settings().flush();
    this->world.settings().flush();
    this->world.crash();
    EXPECT_EQ(this->world.settings().get("Settings", "Write_OK_Count", "0"), "18");
}

TYPED_TEST_P(SettingsContract, WhatTheDiskDidNotTakeGoesOutWithALaterFlush) {
    SettingsStore& store = this->world.settings();
    const auto expect_all = [](const SettingsStore& of) {
        EXPECT_EQ(of.get("Settings", "first", "none"), "1");
        EXPECT_EQ(of.get("Settings", "count", "none"), "18");
        EXPECT_EQ(of.get("Settings", "second", "none"), "2");
    };
    store.save("Settings", "first", "1");
    store.save("Settings", "count", "17");
    EXPECT_TRUE(store.flush());
    this->world.refuse_writing(true);
    store.save("Settings", "count", "18");
    EXPECT_FALSE(store.flush());
    store.save("Settings", "second", "2");
    EXPECT_FALSE(store.flush());
    EXPECT_FALSE(store.flush());
    expect_all(store);
    this->world.refuse_writing(false);
    EXPECT_TRUE(store.flush());
    EXPECT_TRUE(store.flush());
    expect_all(store);
    this->world.crash();
    expect_all(this->world.settings());
}

TYPED_TEST_P(SettingsContract, EveryTextComesBackAsItWas) {
    const std::vector<std::string> texts = {
        "plain",
        " blanks at both ends ",
        "\ttab",
        "a=b;c,d",
        "[Settings]",
        "\"quoted\"",
        "'single'",
        "C:\\bench\\new file.hex",
        "/home/bench/程序/文件.hex",
        "50%",
        "%20%41",
        "@Invalid()",
        "@@",
        "#comment",
        "first line\r\nsecond line",
        "0x41",
        "true",
        "0001",
        "1.50",
        std::string(5000, 'x'),
    };
    for (std::size_t i = 0; i < texts.size(); ++i)
        this->world.settings().save("Settings", "key" + std::to_string(i), texts[i]);
    for (std::size_t i = 0; i < texts.size(); ++i)
        EXPECT_EQ(this->world.settings().get("Settings", "key" + std::to_string(i), ""), texts[i]);
    this->world.settings().flush();
    this->world.crash();
    for (std::size_t i = 0; i < texts.size(); ++i)
        EXPECT_EQ(this->world.settings().get("Settings", "key" + std::to_string(i), ""), texts[i])
            << "behind a restart";
}

REGISTER_TYPED_TEST_SUITE_P(SettingsContract, AnAbsentKeyGivesTheDefault, ASavedValueIsReadBack,
                            AnEmptyValueIsAValue, SectionsKeepTheirKeysApart,
                            WhatWasFlushedOutlivesACrash,
                            WhatTheDiskDidNotTakeGoesOutWithALaterFlush, EveryTextComesBackAsItWas);

// ---- Files ---------------------------------------------------------------------

template <typename World>
class FilesContract : public ContractTest<World> {
  protected:
    using Bytes = std::vector<std::uint8_t>;

    std::string path(std::string_view name) {
        return this->world.folder() + "/" + std::string(name);
    }

    // The whole of a file, read in pieces of this many bytes.
    Bytes content(std::string_view name, std::size_t piece = 1000) {
        const auto reader = files.open(path(name));
        if (!reader) return {};
        Bytes whole;
        Bytes room(piece);
        while (const std::size_t count = reader->read(room))
            whole.insert(whole.end(), room.begin(),
                         room.begin() + static_cast<std::ptrdiff_t>(count));
        return whole;
    }

    Files& files = this->world.files();
};
TYPED_TEST_SUITE_P(FilesContract);

TYPED_TEST_P(FilesContract, OnlyFilesExist) {
    EXPECT_FALSE(this->files.exists(""));
    EXPECT_FALSE(this->files.exists(this->world.folder()));
    EXPECT_FALSE(this->files.exists(this->path("a.hex")));
    ASSERT_TRUE(this->files.replace(this->path("a.hex"), {}));
    EXPECT_TRUE(this->files.exists(this->path("a.hex")));
    EXPECT_FALSE(this->files.exists(this->path("a.hex/b.hex")));
}

TYPED_TEST_P(FilesContract, WhatIsNoFileCannotBeOpened) {
    EXPECT_EQ(this->files.open(""), nullptr);
    EXPECT_EQ(this->files.open(this->world.folder()), nullptr);
    EXPECT_EQ(this->files.open(this->path("a.hex")), nullptr);
}

TYPED_TEST_P(FilesContract, AFileIsReadAsItWasWritten) {
    typename TestFixture::Bytes bytes(70'000);
    for (std::size_t i = 0; i < bytes.size(); ++i)
        bytes[i] = static_cast<std::uint8_t>(i * 31 + i / 256);
    ASSERT_TRUE(this->files.replace(this->path("a.bin"), bytes));
    for (const std::size_t piece : {1000u, 65536u, 100'000u})
        EXPECT_TRUE(this->content("a.bin", piece) == bytes) << piece;
    ASSERT_TRUE(this->files.replace(this->path("b.bin"), std::span(bytes).first(300)));
    EXPECT_EQ(this->content("b.bin", 1).size(), 300u);
}

TYPED_TEST_P(FilesContract, AReadBehindTheEndGivesNothing) {
    const typename TestFixture::Bytes bytes = {1, 2, 3};
    ASSERT_TRUE(this->files.replace(this->path("a.bin"), bytes));
    const auto reader = this->files.open(this->path("a.bin"));
    ASSERT_NE(reader, nullptr);
    std::array<std::uint8_t, 10> room{};
    EXPECT_EQ(reader->read({}), 0u);
    EXPECT_EQ(reader->read(room), 3u);
    EXPECT_EQ(reader->read(room), 0u);
    EXPECT_EQ(reader->read(room), 0u);
}

TYPED_TEST_P(FilesContract, TwoReadersOfAFileReadEachForItself) {
    const typename TestFixture::Bytes bytes = {1, 2, 3};
    ASSERT_TRUE(this->files.replace(this->path("a.bin"), bytes));
    const auto first = this->files.open(this->path("a.bin"));
    const auto second = this->files.open(this->path("a.bin"));
    std::array<std::uint8_t, 2> room{};
    ASSERT_EQ(first->read(room), 2u);
    ASSERT_EQ(second->read(room), 2u);
    EXPECT_EQ(room[0], 1);
    ASSERT_EQ(first->read(room), 1u);
    EXPECT_EQ(room[0], 3);
}

TYPED_TEST_P(FilesContract, AFileIsReplacedWhole) {
    const typename TestFixture::Bytes longer(500, 0xAA);
    const typename TestFixture::Bytes shorter = {1, 2};
    ASSERT_TRUE(this->files.replace(this->path("a.bin"), longer));
    ASSERT_TRUE(this->files.replace(this->path("a.bin"), shorter));
    EXPECT_EQ(this->content("a.bin"), shorter);
    ASSERT_TRUE(this->files.replace(this->path("a.bin"), {}));
    EXPECT_TRUE(this->files.exists(this->path("a.bin")));
    EXPECT_TRUE(this->content("a.bin").empty());
}

TYPED_TEST_P(FilesContract, WhereNoFileCanBeNoneIsWritten) {
    const typename TestFixture::Bytes bytes = {1};
    EXPECT_FALSE(this->files.replace("", bytes));
    EXPECT_FALSE(this->files.replace(this->world.folder(), bytes));
    EXPECT_FALSE(this->files.replace(this->path("no such folder/a.bin"), bytes));
    EXPECT_FALSE(this->files.exists(this->path("no such folder/a.bin")));
}

TYPED_TEST_P(FilesContract, PathsAreUtf8) {
    const typename TestFixture::Bytes bytes = {7};
    const std::string name = "程序 文件 ä.hex";
    ASSERT_TRUE(this->files.replace(this->path(name), bytes));
    EXPECT_TRUE(this->files.exists(this->path(name)));
    EXPECT_EQ(this->content(name), bytes);
}

TYPED_TEST_P(FilesContract, TheProgramsFolderEndsWithoutASeparator) {
    const std::string folder = this->files.program_folder();
    ASSERT_FALSE(folder.empty());
    EXPECT_NE(folder.back(), '/');
    EXPECT_NE(folder.back(), '\\');
}

REGISTER_TYPED_TEST_SUITE_P(FilesContract, OnlyFilesExist, WhatIsNoFileCannotBeOpened,
                            AFileIsReadAsItWasWritten, AReadBehindTheEndGivesNothing,
                            TwoReadersOfAFileReadEachForItself, AFileIsReplacedWhole,
                            WhereNoFileCanBeNoneIsWritten, PathsAreUtf8,
                            TheProgramsFolderEndsWithoutASeparator);

}  // namespace vkm::test
