#include "ui/plain_list.h"

#include <QAbstractItemView>
#include <QAccessible>
#include <QAccessibleWidget>
#include <QEvent>
#include <QLineEdit>
#include <utility>

namespace mirellon::ui {

namespace {

class StillWheel : public QObject {
 public:
  using QObject::QObject;

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override {
    if (event->type() != QEvent::Wheel) return QObject::eventFilter(watched, event);
    event->ignore();
    return true;
  }
};

// The toolkit's own gives the entry for the name, whatever name was set.
class ListAccess : public QAccessibleWidget {
 public:
  explicit ListAccess(QComboBox* list) : QAccessibleWidget(list, QAccessible::ComboBox), list_(list) {}

  [[nodiscard]] QString text(QAccessible::Text kind) const override {
    return kind == QAccessible::Value ? list_->currentText() : QAccessibleWidget::text(kind);
  }
  [[nodiscard]] QAccessible::State state() const override {
    QAccessible::State state = QAccessibleWidget::state();
    state.expandable = true;
    state.hasPopup = true;
    state.expanded = list_->view()->isVisible();
    state.editable = list_->isEditable();
    return state;
  }
  [[nodiscard]] int childCount() const override { return list_->isEditable() ? 2 : 1; }
  [[nodiscard]] QAccessibleInterface* child(int index) const override {
    if (index == 0) return QAccessible::queryAccessibleInterface(list_->view());
    return index == 1 ? QAccessible::queryAccessibleInterface(list_->lineEdit()) : nullptr;
  }
  int indexOfChild(const QAccessibleInterface* child) const override {
    if (child->object() == list_->view()) return 0;
    return list_->isEditable() && child->object() == list_->lineEdit() ? 1 : -1;
  }
  [[nodiscard]] QStringList actionNames() const override { return {showMenuAction()}; }
  void doAction(const QString& action) override {
    if (action != showMenuAction()) return;
    list_->view()->isVisible() ? list_->hidePopup() : list_->showPopup();
  }

 private:
  QComboBox* list_;
};

QAccessibleInterface* MakeListAccess(const QString& className, QObject* object) {
  auto* list = className == QLatin1String("QComboBox") ? qobject_cast<QComboBox*>(object) : nullptr;
  return list == nullptr ? nullptr : new ListAccess(list);  // the toolkit's
}

}  // namespace

void DressList(QComboBox& list, const QString& name) {
  QAccessible::installFactory(MakeListAccess);     // once, before anybody asks for the list
  list.installEventFilter(new StillWheel(&list));  // the list's
  list.setAccessibleName(name);
  if (list.lineEdit() != nullptr) list.lineEdit()->setAccessibleName(name);
}

}  // namespace mirellon::ui
