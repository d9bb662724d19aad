// Carries out commands, one JSON object a line, on the drawn window, and answers
// each with one JSON line.
//
// Commands are carried out in turn, one in a turn of the tool's event loop: what
// the command before set going has been handed in and drawn by then. They come
// in through the toolkit's own events, so also inside the waits of a running job.
#pragma once

#include <QElapsedTimer>
#include <QJsonObject>
#include <QTimer>
#include <deque>
#include <functional>
#include <optional>

#include "platform/qt/tool.h"
#include "robot/box_answers.h"
#include "robot/drawn.h"

namespace vkm::robot {

class Robot : public QObject {
  public:
    // `write` takes an answer line without its end.
    // The tool must outlive the robot.
    Robot(Tool& tool, std::function<void(const QByteArray&)> write);

    void take_line(const QByteArray& line);
    // No more lines come: ends as after close and quit.
    void take_end();
    // The tool's event loop has drawn and begins a turn.
    void turn_begins();

    // All is over: the window has closed, and that was wanted.
    bool is_over() const { return over_; }

  private:
    // What a command that has to wait looks for; nothing while it isn't there.
    using Look = std::function<std::optional<QJsonObject>()>;
    struct Waiting {
        Look look;
        QElapsedTimer since;
        int limit_ms;
        std::function<QString()> too_late;  // the error then
    };

    bool held();
    void work();
    void carry_out(const QByteArray& line);
    void answer(const QJsonObject& fields = {});
    void refuse(const QString& why);
    void wait_for(Look look, int limit_ms, std::function<QString()> too_late);
    void look_again();
    Drawn on(const QJsonObject& fields) const;

    // ---- commands ----
    using Command = void (Robot::*)(const QJsonObject&);
    static Command command_named(const QString& name);
    void act(const std::function<void()>& act);
    void click(const QJsonObject& fields);
    void enter(const QJsonObject& fields);
    void keys(const QJsonObject& fields);
    void key(const QJsonObject& fields);
    void caret(const QJsonObject& fields);
    void choose(const QJsonObject& fields);
    void check(const QJsonObject& fields);
    void get(const QJsonObject& fields);
    void wait(const QJsonObject& fields);
    void idle(const QJsonObject& fields);
    void box(const QJsonObject& fields);
    void boxes(const QJsonObject& fields);
    void file(const QJsonObject& fields);
    void beeps(const QJsonObject& fields);
    void value(const QJsonObject& fields);
    void bytes(const QJsonObject& fields);
    void settings(const QJsonObject& fields);
    void size(const QJsonObject& fields);
    void shot(const QJsonObject& fields);
    void shot_box(const QJsonObject& fields);
    void close(const QJsonObject& fields);
    void quit(const QJsonObject& fields);

    Tool& tool_;
    std::function<void(const QByteArray&)> write_;
    Box_Answers answers_{[this] { drawn_ = false; }};
    std::deque<QByteArray> lines_;
    std::optional<Waiting> waiting_;
    QTimer again_;           // looks again, while something is waited for
    QElapsedTimer reading_;  // since a file is being read, while it is
    bool drawn_ = true;      // the loop has drawn since the last command
    bool ready_ = false;     // the window is shown, and that has been told
    bool input_ended_ = false;
    bool quitting_ = false;
    bool over_ = false;
};

}  // namespace vkm::robot
