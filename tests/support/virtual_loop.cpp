#include "support/virtual_loop.h"

#include <algorithm>
#include <cstdio>
#include <utility>

namespace vkm::test {

void VirtualLoop::turn(Instant until) {
    ++turns;
    if (++turns_at_now_ > turn_limit) hang("turns without end while no time passes");
    line_.run(now_);
    bool happened = run_due_actions();
    happened = line_.take_news() || happened;
    if (happened || now_ >= until) return;
    ++sleeps;
    if (until != never) until += oversleep;
    while (!happened && now_ < until) {
        Instant next = std::min(until, line_.next());
        if (!actions_.empty()) next = std::min(next, actions_.begin()->first);
        if (next == never) hang("sleeps, and nothing can ever wake it");
        go(next);
        line_.run(now_);
        happened = run_due_actions();
        happened = line_.take_news() || happened;
    }
}

void VirtualLoop::at(Instant time, std::function<void()> action) {
    actions_.emplace(time, std::move(action));
}

void VirtualLoop::let_line_run(Instant until) {
    line_.run(now_);
    go(until);
    line_.run(now_);
}

void VirtualLoop::go(Instant time) {
    if (time <= now_) return;
    now_ = time;
    turns_at_now_ = 0;
    if (elapsed() > time_limit) hang("has used up the time of the test");
}

bool VirtualLoop::run_due_actions() {
    bool ran = false;
    while (!actions_.empty() && actions_.begin()->first <= now_) {
        // Taken out first: the action may turn the loop, or add others.
        const auto action = std::move(actions_.begin()->second);
        actions_.erase(actions_.begin());
        action();
        ran = true;
    }
    return ran;
}

void VirtualLoop::hang(const std::string& why) const {
    std::string text = "the program " + why + ", " +
                       std::to_string(std::chrono::duration<double>(elapsed()).count()) +
                       " s after the start";
    if (tell) text += "; its log:\n" + tell();
    throw Hang(text);
}

std::int64_t VirtualWallClock::seconds() const {
    return start + std::chrono::duration_cast<std::chrono::seconds>(loop_.elapsed()).count();
}

std::string VirtualWallClock::time_of_day() const {
    constexpr int day = 24 * 3600;
    const auto second = static_cast<int>(seconds() % day);
    char text[16];
    std::snprintf(text, sizeof text, "%02d:%02d:%02d", second / 3600, second / 60 % 60,
                  second % 60);
    return text;
}

}  // namespace vkm::test
