// The drawn window as a person has it: what stands in a control, and mouse and
// keys on it. Nothing here touches the value behind a widget.
//
// Controls are named as in the code, "txtDevice" or "comDownload(0)". What a
// person couldn't operate is refused: "hidden" for what isn't on the screen or
// is covered, "disabled" for what is dead or lies under an open box.
#pragma once

#include <QJsonValue>
#include <QWidget>
#include <functional>

#include "screen/screen.h"

namespace vkm::robot {

struct Drawn {
    QWidget* widget = nullptr;
    Control* record = nullptr;  // for the keys of entries, which no widget shows
};

// Throws a Refusal that names what doesn't exist.
Drawn find_drawn(QWidget& window, Screen& screen, const QString& name);

// A property as drawn.
QJsonValue property_of(const Drawn& control, const QString& property);

// Each of these checks that the act is possible, and gives back the act itself:
// the caller answers first, since the act may take as long as a whole download.
using Act = std::function<void()>;

Act click(const Drawn& control);
Act enter(const Drawn& control, const QString& text);
Act keys(const Drawn& control, const QString& text);
Act key(const Drawn& control, const QString& name);
Act caret(const Drawn& control, int at);
Act check(const Drawn& control, bool on);
// The entry by one of: its place, its text, its key.
Act choose(const Drawn& control, const QJsonValue& index, const QJsonValue& text,
           const QJsonValue& entry_key);

// A click of the mouse in the middle of any widget.
void click_widget(QWidget& widget);

}  // namespace vkm::robot
