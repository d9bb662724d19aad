// What the suites of the running monitor share: the tool as people have it with the
// terminal's port open, batches of bytes handed to it, and what it answered.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "assistant/serial_assistant.h"
#include "monitor_frames.h"
#include "support/agent_commands.h"
#include "support/operator_hands.h"
#include "support/virtual_bench.h"

namespace vkm::test {

// Families 0 to 6 but 5, which has no model.
inline constexpr const char* model_of_family_2 = "VKM47H58RK+";

// Something that was sent, and how many ms behind the mark of `mark_time`.
struct Sent {
    double ms = 0;
    Bytes bytes;
    bool operator==(const Sent&) const = default;
};

inline void PrintTo(const Sent& sent, std::ostream* out) {
    *out << sent.ms << " ms:";
    for (const int byte : sent.bytes) *out << ' ' << std::hex << byte << std::dec;
}

struct MonitorWorld : VirtualWorld, OperatorHands {
    explicit MonitorWorld(const std::string& model = model_of_family_2) : OperatorHands(frm) {
        start_program(frm);
        EXPECT_TRUE(choose_model(frm, model));
        run_for(600);  // the settings are saved after a change of model
        Open_Assistant_Port(frm);
        EXPECT_TRUE(frm.link.debug_mode);
        mark_time();
    }

    // A batch from the target, at this instant.
    void arrive(const Bytes& bytes) { frm.link.Assistant_Bytes(frm, bytes); }

    void arrive_in(std::int64_t ms, const Bytes& bytes) {
        at(ms, [this, bytes] { arrive(bytes); });
    }

    void mark_time() {
        marked_at = elapsed_ms();
        marked_writes = port.written.size();
    }

    // Since mark_time.
    std::vector<Sent> sent() const {
        std::vector<Sent> sent;
        for (std::size_t i = marked_writes; i < port.written.size(); ++i) {
            const auto at = port.written[i].at - loop.start();
            sent.push_back({std::chrono::duration<double, std::milli>(at).count() - marked_at,
                            port.written[i].bytes});
        }
        return sent;
    }

    std::vector<Bytes> sent_bytes() const {
        std::vector<Bytes> bytes;
        for (const Sent& one : sent()) bytes.push_back(one.bytes);
        return bytes;
    }

    bool waits_for_dump() const { return frm.timers.TimerDebug.Enabled; }

    // The four lists as a person sees them.
    std::vector<Control> lists() const {
        const Screen& s = frm.screen;
        return {s.lst_debug1, s.lst_debug2, s.lst_debug3, s.lst_debug4};
    }

    double marked_at = 0;
    std::size_t marked_writes = 0;
};

// One of each type, all of whose cells are told.
inline std::vector<Bytes> whole_dump(unsigned first = 0) {
    return {marked(agent_frame(0, 0x80, counting(128, first))),
            marked(agent_frame(1, 0x00, counting(256, first))),
            marked(agent_frame(2, 0x0000, counting(1024, first))),
            marked(agent_frame(3, 0x1234, counting(512, first)))};
}

}  // namespace vkm::test
