// Lines from standard input, as events of the toolkit.
#pragma once

#include <QByteArray>
#include <QSocketNotifier>
#include <functional>

namespace vkm::robot {

class Input_Lines {
  public:
    Input_Lines(std::function<void(const QByteArray&)> line, std::function<void()> end);

  private:
    void read();

    std::function<void(const QByteArray&)> line_;
    std::function<void()> end_;
    QByteArray started_;  // of a line whose end hasn't come
    QSocketNotifier notifier_;
};

}  // namespace vkm::robot
