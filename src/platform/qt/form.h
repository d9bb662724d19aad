// Small pieces that the pages are put together from. Distances come from the
// style.
#pragma once

#include <QBoxLayout>
#include <QFormLayout>
#include <QGridLayout>
#include <QLabel>
#include <QWidget>
#include <initializer_list>

namespace vkm {

// A caption that belongs to no control of the table; its letter, marked by an
// ampersand, goes to the buddy.
QLabel* caption(const char* text, QWidget* buddy = nullptr);

// The unit behind a control; seen as long as the control is.
QLabel* unit(const char* text, QWidget* control);

// A line of explanation, wrapped where it has to be.
QLabel* remark(const char* text);

// Widgets side by side; the null stands for what stretches.
QHBoxLayout* row(std::initializer_list<QWidget*> widgets);

// Widgets side by side, on as many lines as they need.
QLayout* flow(std::initializer_list<QWidget*> widgets);
QWidget* flow_widget(std::initializer_list<QWidget*> widgets);

// A column inside of a group or a page, with the narrow margins that let all
// steps stand above each other on a low screen.
QVBoxLayout* column(QWidget* parent);
void narrow_margins(QLayout* layout);

// A form with aligned labels.
QFormLayout* form();

// The page scrolls where it finds no room, and otherwise fills what there is.
QWidget* scrolling(QWidget* page);

}  // namespace vkm
