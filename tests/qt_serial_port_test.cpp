// The port of the drawn window, beyond what the seam promises: what it asks of
// the kernel, how it reckons with the wire, and what it tells of failures. Times
// are real here.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QFile>
#include <QTemporaryDir>

#include "platform/qt/monotonic.h"
#include "platform/qt/port_reason.h"
#include "platform/qt/port_registry.h"
#include "platform/qt/qt_event_loop.h"
#include "platform/qt/qt_serial_port.h"
#include "platform/qt/qt_settings_store.h"
#include "qt_application.h"
#include "qt_pseudo_terminal.h"

namespace vkm::test {
namespace {

using Bytes = std::vector<std::uint8_t>;

class QtPortTest : public testing::Test {
  protected:
    QtPortTest() {
        ports.use(1, terminal.path());
        ports.use(9, "");
        loop.draw = [] {};
        loop.run_due = [] {};
        loop.hand_in = [] { return false; };
    }

    void open(const char* settings) {
        ASSERT_TRUE(port.set_settings(settings));
        ASSERT_EQ(port.open(), 0) << port.reason().text;
    }

    std::string path(const char* name) { return folder.filePath(name).toStdString(); }

    QApplication& qt = application();
    QTemporaryDir folder;
    PseudoTerminal terminal{path("terminal")};
    QtSettingsStore settings{path("settings.ini")};
    PortRegistry ports{settings};
    QtSerialPort port{ports};
    QtEventLoop loop{port};
};

TEST_F(QtPortTest, TheKernelGetsEveryRateOfTheListsExactly) {
    for (const int baud : {256000, 128000, 115200, 57600, 38400, 28800, 19200, 14400, 12800, 11520,
                           9600, 4800, 2400, 1200, 600}) {
        ASSERT_TRUE(port.set_settings(std::to_string(baud) + ",n,8,1"));
        ASSERT_EQ(port.open(), 0) << baud;
        EXPECT_EQ(terminal.line().baud, baud) << "at the opening";
        port.close();
    }
    open("1200,n,8,1");
    for (const int baud : {14400, 256000, 11520, 115200, 12800}) {
        ASSERT_TRUE(port.set_settings(std::to_string(baud) + ",n,8,1"));
        EXPECT_EQ(terminal.line().baud, baud) << "on the open port";
    }
}

TEST_F(QtPortTest, EightBitsNoParityOneStopBitReachTheKernel) {
    open("9600,n,8,1");
    const PseudoTerminal::Line line = terminal.line();
    EXPECT_EQ(line.data_bits, 8);
    EXPECT_EQ(line.parity, 'n');
    EXPECT_EQ(line.stop_bits, 1);
}

TEST_F(QtPortTest, WrittenBytesGoToTheSystemAtOnce) {
    open("115200,n,8,1");
    const Bytes frame = {0x46, 0xB9, 0x6A};
    port.write(frame);
    EXPECT_EQ(terminal.heard(), frame);
    const Bytes next = {0x00, 0x16};
    port.write(next);
    EXPECT_EQ(terminal.heard().size(), 5u);
}

TEST_F(QtPortTest, BytesCountAsUnsentForTheirTimeOnTheWire) {
    open("1200,n,8,1");  // 8.3 ms a byte
    port.write(Bytes(10, 0x7F));
    EXPECT_EQ(port.output_count(), 10u);
    const Instant written = monotonic_now();
    while (port.output_count() > 0 && monotonic_now() < written + Milliseconds(2000))
        loop.turn(never);
    const auto took = monotonic_now() - written;
    EXPECT_GE(took, Milliseconds(80));
    EXPECT_EQ(port.output_count(), 0u);
}

// A pseudo-terminal has all of it at once: the system holds nothing that a clearing
// could cut off.
TEST_F(QtPortTest, WhatTheDeviceHasIsNotDropped) {
    open("1200,n,8,1");
    const Bytes frame(142, 0x5A);
    port.write(frame);
    EXPECT_EQ(port.held_output(), 0u);
    port.clear_output();
    EXPECT_EQ(port.output_count(), 0u);
    EXPECT_EQ(terminal.heard(), frame);
    port.close();
    EXPECT_EQ(port.held_output(), 0u);
}

// Whatever sits at its other end may answer as soon as the bytes are written.
TEST_F(QtPortTest, APseudoTerminalHasNoWire) {
    EXPECT_FALSE(port.has_wire());
    open("1200,n,8,1");
    EXPECT_FALSE(port.has_wire());
}

TEST_F(QtPortTest, TheLoopWakesWhenTheLastByteHasLeft) {
    open("1200,n,8,1");
    EXPECT_EQ(port.next_departure(monotonic_now()), never);
    const Instant written = monotonic_now();
    port.write(Bytes(4, 0x7F));
    EXPECT_GE(port.next_departure(written) - written, Milliseconds(33));
    const Instant behind = monotonic_now();
    EXPECT_LT(port.next_departure(behind) - behind, Milliseconds(34));
    int waits = 0;
    for (; port.output_count() > 0; ++waits) loop.turn(never);
    EXPECT_LE(waits, 20);
}

TEST_F(QtPortTest, ClosingWaitsForTheWire) {
    open("1200,n,8,1");
    port.write(Bytes(10, 0x7F));
    const Instant before = monotonic_now();
    port.close();
    EXPECT_GE(monotonic_now() - before, Milliseconds(80));
}

TEST_F(QtPortTest, AChangeOfRateWaitsForTheWire) {
    open("1200,n,8,1");
    port.write(Bytes(14, 0x46));
    const Instant before = monotonic_now();
    ASSERT_TRUE(port.set_settings("115200,n,8,1"));
    EXPECT_GE(monotonic_now() - before, Milliseconds(110));
}

TEST_F(QtPortTest, ALostDeviceIsToldAndDoesNotKeepTheLoopAwake) {
    open("115200,n,8,1");
    terminal.pull_plug();
    const Instant end = monotonic_now() + Milliseconds(2000);
    while (port.is_open() && monotonic_now() < end) loop.turn(end);
    ASSERT_FALSE(port.is_open());
    EXPECT_NE(port.reason().text.find("went away"), std::string::npos) << port.reason().text;
    EXPECT_NE(port.reason().text.find("COM1"), std::string::npos);
    const Instant quiet = monotonic_now() + Milliseconds(100);
    int turns = 0;
    for (; monotonic_now() < quiet; ++turns) loop.turn(quiet);
    EXPECT_LE(turns, 10);
}

TEST_F(QtPortTest, AGoodOpeningTakesTheReasonAway) {
    port.set_port_number(9);
    EXPECT_GT(port.open(), 0);
    EXPECT_FALSE(port.reason().text.empty());
    port.set_port_number(1);
    open("9600,n,8,1");
    EXPECT_TRUE(port.reason().text.empty());
    EXPECT_EQ(port.open_number(), 1);
}

// ---- reasons, asked of the system ------------------------------------------------

TEST_F(QtPortTest, ANumberWithoutADeviceIsTold) {
    port.set_port_number(9);
    EXPECT_GT(port.open(), 0);
    EXPECT_NE(port.reason().text.find("COM9"), std::string::npos);
    EXPECT_NE(port.reason().text.find("no device"), std::string::npos) << port.reason().text;
}

TEST_F(QtPortTest, AnUnpluggedDeviceIsToldAsMissing) {
    ports.use(2, path("unplugged"));
    port.set_port_number(2);
    EXPECT_EQ(port.open(), ENOENT);
    EXPECT_NE(port.reason().text.find("not there"), std::string::npos) << port.reason().text;
}

TEST_F(QtPortTest, AFileIsToldToBeNoSerialPort) {
    QFile file(folder.filePath("file"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    ports.use(2, path("file"));
    port.set_port_number(2);
    EXPECT_GT(port.open(), 0);
    EXPECT_NE(port.reason().text.find("no serial port"), std::string::npos) << port.reason().text;
}

TEST_F(QtPortTest, AFolderIsToldToBeNoSerialPort) {
    ports.use(2, folder.path().toStdString());
    port.set_port_number(2);
    EXPECT_GT(port.open(), 0);
    EXPECT_NE(port.reason().text.find("no serial port"), std::string::npos) << port.reason().text;
}

TEST_F(QtPortTest, APortThatSomebodyElseHasIsToldAsInUse) {
    QtSerialPort other(ports);
    ASSERT_EQ(other.open(), 0);
    EXPECT_GT(port.open(), 0);
    EXPECT_FALSE(port.is_open());
    EXPECT_NE(port.reason().text.find("in use by"), std::string::npos) << port.reason().text;
    other.close();
    EXPECT_EQ(port.open(), 0) << port.reason().text;
}

TEST_F(QtPortTest, ADeviceWithoutPermissionIsToldWithItsGroup) {
    if (::geteuid() != 0) GTEST_SKIP() << "only root can become somebody without permission";
    ASSERT_EQ(::chmod(folder.path().toLocal8Bit().constData(), 0755), 0);
    const QString device = QFile::symLinkTarget(folder.filePath("terminal"));
    ASSERT_EQ(::chmod(device.toLocal8Bit().constData(), 0600), 0);
    ASSERT_EQ(::seteuid(65534), 0);
    const PortReason reason =
        reason_of({"COM1", device.toStdString(), "9600,n,8,1", QSerialPort::PermissionError});
    ASSERT_EQ(::seteuid(0), 0);
    EXPECT_EQ(reason.error, EACCES);
    EXPECT_NE(reason.text.find("no permission"), std::string::npos) << reason.text;
    EXPECT_NE(reason.text.find("group"), std::string::npos) << reason.text;
}

TEST_F(QtPortTest, EveryReasonNamesThePortAndSpeaksBothLanguages) {
    for (const PortReason& reason :
         {reason_of({"COM4", "", "", QSerialPort::NoError}),
          reason_of({"COM4", path("unplugged"), "", QSerialPort::NoError}),
          reason_of_refused_settings("COM4", "256000,n,8,1"), reason_of_lost_device("COM4")}) {
        EXPECT_GT(reason.error, 0);
        EXPECT_EQ(reason.text.find("COM4"), 0u) << reason.text;
        EXPECT_NE(reason.text.find(" / "), std::string::npos) << reason.text;
        EXPECT_EQ(reason.text.find('%'), std::string::npos) << reason.text;
    }
}

// ---- the registry -------------------------------------------------------------------

TEST_F(QtPortTest, ADeviceOfARunIsNotKeptInTheSettings) {
    EXPECT_EQ(ports.device(1), terminal.path());
    EXPECT_FALSE(settings.all()["Ports"].contains("COM1") &&
                 settings.all()["Ports"]["COM1"] == terminal.path());
}

TEST_F(QtPortTest, ADeviceOfTheSettingsHasItsNumberAgain) {
    QtSettingsStore store(path("bench.ini"));
    store.save("Ports", "COM7", path("adapter"));
    PortRegistry bench(store);
    EXPECT_EQ(bench.device(7), path("adapter"));
    EXPECT_NE(bench.note(7).find("unplugged"), std::string::npos) << bench.note(7);
    EXPECT_EQ(bench.device(0), "");
    EXPECT_EQ(bench.device(17), "");
}

}  // namespace
}  // namespace vkm::test
