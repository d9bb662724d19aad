#include "robot/robot.h"

#include <QCoreApplication>
#include <QDir>
#include <QEvent>
#include <QFileInfo>
#include <QHash>
#include <QJsonArray>
#include <QJsonDocument>
#include <QPixmap>
#include <cmath>

#include "platform/qt/text_mapping.h"
#include "robot/drawn.h"
#include "robot/refusal.h"
#include "robot/tool_values.h"

namespace vkm::robot {
namespace {

// Often enough for a person's patience, seldom enough not to slow a job down.
constexpr int look_interval_ms = 5;

constexpr int patience_ms = 500;

const QString tree_name = "TreeViewDevice";
const QString tree_arrow_name = "Command3";
constexpr int tree_opens_ms = 2000;

QJsonValue field(const QJsonObject& fields, const QString& name) {
    const QJsonValue value = fields.value(name);
    if (value.isUndefined()) throw Refusal{name + " is missing"};
    return value;
}

QString text(const QJsonObject& fields, const QString& name) {
    const QJsonValue value = field(fields, name);
    if (!value.isString()) throw Refusal{name + " is no text"};
    return value.toString();
}

int number(const QJsonObject& fields, const QString& name) {
    const QJsonValue value = field(fields, name);
    const double number = value.toDouble();
    const bool whole = number == std::trunc(number) && std::abs(number) < 1e9;
    if (!value.isDouble() || !whole) throw Refusal{name + " is no whole number"};
    return static_cast<int>(number);
}

bool flag(const QJsonObject& fields, const QString& name) {
    const QJsonValue value = field(fields, name);
    if (!value.isBool()) throw Refusal{name + " is neither true nor false"};
    return value.toBool();
}

// A check mark may be asked for as a flag or as 1 and 0.
bool alike(const QJsonValue& value, const QJsonValue& wanted) {
    if (value.isBool() && wanted.isDouble()) return wanted.toDouble() == (value.toBool() ? 1 : 0);
    return value == wanted;
}

// What a `wait` wants of the value.
std::function<bool(const QJsonValue&)> condition(const QJsonObject& fields) {
    if (fields.contains("contains")) {
        const QJsonValue wanted = fields.value("contains");
        return [wanted](const QJsonValue& value) {
            if (value.isArray()) return value.toArray().contains(wanted);
            return value.isString() && value.toString().contains(wanted.toString());
        };
    }
    if (fields.contains("equals"))
        return [wanted = fields.value("equals")](const QJsonValue& value) {
            return alike(value, wanted);
        };
    if (fields.contains("not_equals"))
        return [unwanted = fields.value("not_equals")](const QJsonValue& value) {
            return !alike(value, unwanted);
        };
    throw Refusal{"contains, equals or not_equals is missing"};
}

QString shown(const QJsonValue& value) {
    const QByteArray text = QJsonDocument(QJsonArray{value}).toJson(QJsonDocument::Compact);
    return QString::fromUtf8(text.mid(1, text.size() - 2));
}

}  // namespace

Robot::Robot(Tool& tool, std::function<void(const QByteArray&)> write)
    : tool_(tool), write_(std::move(write)) {
    QObject::connect(&again_, &QTimer::timeout, this, &Robot::work);
}

void Robot::turn_begins() {
    drawn_ = true;
    if (ready_ || !tool_.window.isVisible()) return;
    ready_ = true;
    answer({{"ready", true}});
}

void Robot::take_line(const QByteArray& line) {
    lines_.push_back(line);
    again_.start(0);
}

void Robot::take_end() {
    input_ended_ = true;
    again_.start(0);
}

// ---- in turn ---------------------------------------------------------------------

// A box on the screen is answered first, and a file that is being read gets the
// time to be there, as with a person; a long one doesn't hold up what comes next.
bool Robot::held() {
    if (answers_.busy()) return true;
    if (tool_.frm.screen.MousePointer != wait_pointer) {
        reading_.invalidate();
        return false;
    }
    if (!reading_.isValid()) reading_.start();
    return !reading_.hasExpired(patience_ms);
}

void Robot::work() {
    if (!ready_ || !drawn_ || over_ || held()) return;
    if (waiting_) return look_again();
    if (!lines_.empty()) {
        drawn_ = false;
        const QByteArray line = lines_.front();
        lines_.pop_front();
        carry_out(line);
        again_.start(waiting_ ? look_interval_ms : 0);
        return;
    }
    if (input_ended_ && !quitting_) {
        quitting_ = true;
        tool_.window.close();
    }
    over_ = quitting_ && tool_.window.is_over();
    quitting_ && !over_ ? again_.start(look_interval_ms) : again_.stop();
}

void Robot::carry_out(const QByteArray& line) {
    if (line.trimmed().isEmpty()) return;
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(line, &error);
    try {
        if (error.error != QJsonParseError::NoError)
            throw Refusal{"malformed JSON: " + error.errorString()};
        if (!document.isObject()) throw Refusal{"a command is a JSON object"};
        const QJsonObject fields = document.object();
        const Command command = command_named(text(fields, "do"));
        (this->*command)(fields);
    } catch (const Refusal& refusal) {
        refuse(refusal.why);
    }
}

void Robot::answer(const QJsonObject& fields) {
    QJsonObject whole = fields;
    whole.insert("ok", true);
    write_(QJsonDocument(whole).toJson(QJsonDocument::Compact));
}

void Robot::refuse(const QString& why) {
    const QJsonObject whole = {{"ok", false}, {"error", why}};
    write_(QJsonDocument(whole).toJson(QJsonDocument::Compact));
}

void Robot::wait_for(Look look, int limit_ms, std::function<QString()> too_late) {
    waiting_ = Waiting{std::move(look), {}, limit_ms, std::move(too_late)};
    waiting_->since.start();
    look_again();
}

void Robot::look_again() {
    std::optional<QJsonObject> found;
    try {
        found = waiting_->look();
    } catch (const Refusal& refusal) {
        waiting_.reset();
        return refuse(refusal.why);
    }
    if (found) {
        waiting_.reset();
        answer(*found);
    } else if (waiting_->since.hasExpired(waiting_->limit_ms)) {
        const QString why = waiting_->too_late();
        waiting_.reset();
        refuse(why);
    }
}

// ---- commands ------------------------------------------------------------------------

Robot::Command Robot::command_named(const QString& name) {
    static const QHash<QString, Command> commands = {
        {"click", &Robot::click}, {"enter", &Robot::enter},       {"keys", &Robot::keys},
        {"key", &Robot::key},     {"caret", &Robot::caret},       {"choose", &Robot::choose},
        {"check", &Robot::check}, {"get", &Robot::get},           {"wait", &Robot::wait},
        {"idle", &Robot::idle},   {"box", &Robot::box},           {"boxes", &Robot::boxes},
        {"file", &Robot::file},   {"beeps", &Robot::beeps},       {"value", &Robot::value},
        {"bytes", &Robot::bytes}, {"settings", &Robot::settings}, {"size", &Robot::size},
        {"shot", &Robot::shot},   {"shot_box", &Robot::shot_box}, {"close", &Robot::close},
        {"quit", &Robot::quit},
    };
    if (!commands.contains(name)) throw Refusal{"unknown command " + name};
    return commands.value(name);
}

// Answers first: what the act sets going may take as long as a whole job.
void Robot::act(const std::function<void()>& act) {
    answer();
    act();
}

Drawn Robot::on(const QJsonObject& fields) const {
    return find_drawn(tool_.window, tool_.frm.screen, text(fields, "on"));
}

void Robot::click(const QJsonObject& fields) {
    act(robot::click(on(fields)));
}

void Robot::enter(const QJsonObject& fields) {
    act(robot::enter(on(fields), text(fields, "text")));
}

void Robot::keys(const QJsonObject& fields) {
    act(robot::keys(on(fields), text(fields, "text")));
}

void Robot::key(const QJsonObject& fields) {
    act(robot::key(on(fields), text(fields, "key")));
}

void Robot::caret(const QJsonObject& fields) {
    act(robot::caret(on(fields), number(fields, "at")));
}

void Robot::choose(const QJsonObject& fields) {
    const Drawn list = on(fields);
    const auto choice = [=] {
        return robot::choose(list, fields.value("index"), fields.value("text"),
                             fields.value("key"));
    };
    if (list.widget->objectName() != tree_name || list.widget->isVisible()) return act(choice());
    // The tree of models lies hidden until its arrow is clicked.
    robot::click(find_drawn(tool_.window, tool_.frm.screen, tree_arrow_name))();
    wait_for(
        [=]() -> std::optional<QJsonObject> {
            if (!list.widget->isVisible()) return {};
            choice()();
            return QJsonObject{};
        },
        tree_opens_ms, [] { return QString("hidden"); });
}

void Robot::check(const QJsonObject& fields) {
    act(robot::check(on(fields), flag(fields, "value")));
}

void Robot::get(const QJsonObject& fields) {
    answer({{"value", property_of(on(fields), text(fields, "property"))}});
}

void Robot::wait(const QJsonObject& fields) {
    const Drawn control = on(fields);
    const QString property = text(fields, "property");
    const auto holds = condition(fields);
    const auto look = [=]() -> std::optional<QJsonObject> {
        const QJsonValue value = property_of(control, property);
        if (!holds(value)) return {};
        return QJsonObject{{"value", value}};
    };
    const auto too_late = [=] {
        return control.widget->objectName() + "." + property + " is " +
               shown(property_of(control, property));
    };
    look();  // refuses what doesn't exist
    wait_for(look, number(fields, "ms"), too_late);
}

void Robot::idle(const QJsonObject& fields) {
    wait_for(
        [this]() -> std::optional<QJsonObject> {
            if (tool_.frm.session.Running) return {};
            return QJsonObject{};
        },
        number(fields, "ms"), [] { return QString("still busy"); });
}

void Robot::box(const QJsonObject& fields) {
    answers_.queue_box(text(fields, "answer"));
    answer();
}

void Robot::boxes(const QJsonObject&) {
    answer({{"value", answers_.boxes()}});
}

void Robot::file(const QJsonObject& fields) {
    answers_.queue_file(text(fields, "path"));
    answer();
}

void Robot::beeps(const QJsonObject&) {
    answer({{"value", tool_.sounder.beeps()}});
}

void Robot::value(const QJsonObject& fields) {
    answer({{"value", tool_value(tool_.frm, text(fields, "name"))}});
}

void Robot::bytes(const QJsonObject& fields) {
    answer({{"value", image_bytes(tool_.frm, text(fields, "image"), number(fields, "from"),
                                  number(fields, "count"))}});
}

void Robot::settings(const QJsonObject&) {
    QJsonObject sections;
    for (const auto& [section, keys] : tool_.settings.all()) {
        QJsonObject texts;
        for (const auto& [key, text] : keys) texts.insert(to_qt(key), to_qt(text));
        sections.insert(to_qt(section), texts);
    }
    answer({{"value", sections}});
}

void Robot::size(const QJsonObject& fields) {
    const int width = number(fields, "width");
    const int height = number(fields, "height");
    if (width < 1 || height < 1 || width > QWIDGETSIZE_MAX || height > QWIDGETSIZE_MAX)
        throw Refusal{"no window has that size"};
    answer();
    tool_.window.resize(width, height);
}

void Robot::shot(const QJsonObject& fields) {
    const QString path = text(fields, "path");
    // Pages that were just shown have asked to be laid out: a person sees them so.
    QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
    QDir().mkpath(QFileInfo(path).absolutePath());
    // The whole window, or what a control stands on.
    QWidget* shown = fields.contains("around")
                         ? find_drawn(tool_.window, tool_.frm.screen, text(fields, "around"))
                               .widget->parentWidget()
                         : &tool_.window;
    if (!shown->grab().save(path, "PNG")) throw Refusal{"can't write " + path};
    answer();
}

void Robot::shot_box(const QJsonObject& fields) {
    const QString path = text(fields, "path");
    QDir().mkpath(QFileInfo(path).absolutePath());
    answers_.picture_next_box(path);
    answer();
}

void Robot::close(const QJsonObject&) {
    answer();
    tool_.window.close();
}

void Robot::quit(const QJsonObject&) {
    answer();
    quitting_ = true;
    again_.start(0);
}

}  // namespace vkm::robot
