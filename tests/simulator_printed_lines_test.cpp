// Lines of a simulator's program, for a reader who is slow, sleeps or goes away.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

#include <chrono>
#include <string>

#include "pseudo_terminal/printed_lines.h"

namespace vkm::test {
namespace {

using namespace std::chrono_literals;

// Small: it has room for four pages.
struct Pipe {
    Pipe() {
        EXPECT_EQ(pipe2(ends, O_CLOEXEC), 0);
        EXPECT_GE(fcntl(ends[1], F_SETPIPE_SZ, 16384), 16384);
        EXPECT_EQ(fcntl(ends[0], F_SETFL, O_NONBLOCK), 0);
    }
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;
    ~Pipe() {
        close_reader();
        close(ends[1]);
    }
    void close_reader() {
        if (ends[0] >= 0) close(ends[0]);
        ends[0] = -1;
    }

    // All that comes out while the lines find room.
    std::string read_all(sim::PrintedLines& lines) {
        std::string text;
        char chunk[1000];
        for (ssize_t count; (count = read(ends[0], chunk, sizeof chunk)) > 0; lines.print())
            text.append(chunk, static_cast<std::size_t>(count));
        return text;
    }

    int ends[2] = {-1, -1};
};

const std::string long_line(300'000, 'x');

TEST(PrintedLines, ComeInTheirOrderAndAtOnceWhenThereIsRoom) {
    Pipe pipe;
    sim::PrintedLines lines(pipe.ends[1]);
    lines.news("first");
    lines.answer("second");
    EXPECT_FALSE(lines.wait());
    EXPECT_EQ(pipe.read_all(lines), "first\nsecond\n");
}

TEST(PrintedLines, AreWholeHoweverLongAndHoweverLateTheyAreRead) {
    Pipe pipe;
    sim::PrintedLines lines(pipe.ends[1]);
    lines.answer(long_line);
    lines.answer("short");
    EXPECT_TRUE(lines.wait());
    EXPECT_TRUE(pipe.read_all(lines) == long_line + "\nshort\n");
    EXPECT_FALSE(lines.wait());
}

TEST(PrintedLines, LoseNewsAndNoAnswerWhileNobodyReads) {
    Pipe pipe;
    sim::PrintedLines lines(pipe.ends[1]);
    for (int i = 0; i < 100'000; ++i) lines.news("news");
    EXPECT_TRUE(lines.too_many());
    lines.answer("answer");
    const std::string text = pipe.read_all(lines);
    EXPECT_LT(text.size(), 100'000U);
    EXPECT_TRUE(text.ends_with("news\nanswer\n"));
    EXPECT_FALSE(lines.too_many());
    lines.news("more");
    EXPECT_EQ(pipe.read_all(lines), "more\n");
}

TEST(PrintedLines, WaitAtTheEndForAsLongAsTheyMay) {
    Pipe pipe;
    sim::PrintedLines lines(pipe.ends[1]);
    lines.answer(long_line);
    const auto before = std::chrono::steady_clock::now();
    lines.finish(50ms);
    EXPECT_GE(std::chrono::steady_clock::now() - before, 50ms);
    EXPECT_TRUE(lines.wait());
}

TEST(PrintedLines, AreDroppedWhenTheReaderIsGone) {
    const auto before = signal(SIGPIPE, SIG_IGN);
    Pipe pipe;
    sim::PrintedLines lines(pipe.ends[1]);
    lines.answer(long_line);
    pipe.close_reader();
    lines.finish(20s);
    EXPECT_FALSE(lines.wait());
    signal(SIGPIPE, before);
}

}  // namespace
}  // namespace vkm::test
