#include "platform/qt/port_list.h"

#include <QAbstractItemView>
#include <QStyledItemDelegate>

#include "platform/qt/text_mapping.h"

namespace vkm {
namespace {

class PortDelegate final : public QStyledItemDelegate {
  public:
    PortDelegate(QObject* parent, const PortRegistry& ports)
        : QStyledItemDelegate(parent), ports_(ports) {}

  protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override {
        QStyledItemDelegate::initStyleOption(option, index);
        const std::string note = ports_.note(index.row() + 1);
        if (!note.empty()) option->text += QStringLiteral("    ") + to_qt(note);
    }

  private:
    const PortRegistry& ports_;
};

// Each time before it opens the list gets as wide as its entries have become.
class PopupWidth final : public QObject {
  public:
    explicit PopupWidth(QComboBox& list) : QObject(&list), list_(list) {
        list.view()->installEventFilter(this);
    }

  protected:
    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == QEvent::Show || event->type() == QEvent::Polish) {
            const int bar = list_.style()->pixelMetric(QStyle::PM_ScrollBarExtent);
            list_.view()->setMinimumWidth(list_.view()->sizeHintForColumn(0) + 2 * bar);
        }
        return false;
    }

  private:
    QComboBox& list_;
};

}  // namespace

void show_devices_behind(QComboBox& list, const PortRegistry& ports) {
    list.setItemDelegate(new PortDelegate(&list, ports));
    new PopupWidth(list);
}

}  // namespace vkm
