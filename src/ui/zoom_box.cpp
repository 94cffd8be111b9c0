#include "ui/zoom_box.h"

#include <QLineEdit>
#include <optional>

#include "ui/model/view_geometry.h"
#include "ui/model/view_texts.h"
#include "ui/plain_list.h"

namespace mirellon::ui {

ZoomBox::ZoomBox(const QString& name, QWidget* parent) : QComboBox(parent) {
  setObjectName(QStringLiteral("zoomList"));
  setEditable(true);
  setInsertPolicy(NoInsert);
  setCompleter(nullptr);
  for (const double percent : kZoomList) addItem(QString::fromStdString(ZoomText(percent / 100.0)));
  lineEdit()->setAcceptDrops(false);  // a photograph dropped here is the window's
  DressList(*this, name);
  setMinimumWidth(fontMetrics().horizontalAdvance(QStringLiteral("1000.0 %")) + 44);
  setCurrentIndex(-1);
  connect(this, &QComboBox::activated, this, &ZoomBox::Choose);
  // The list hands a Return on to its field a second time.
  connect(lineEdit(), &QLineEdit::returnPressed, this, [this] {
    if (lineEdit()->isModified()) Choose();
  });
  // What was typed and left is not what is seen.
  connect(lineEdit(), &QLineEdit::editingFinished, this, [this] { setEditText(shown_); });
}

void ZoomBox::ShowZoom(double zoom) {
  shown_ = QString::fromStdString(ZoomText(zoom));
  setEditText(shown_);
}

void ZoomBox::ShowNothing() {
  shown_.clear();
  setEditText(shown_);
}

void ZoomBox::Choose() {
  const std::optional<double> zoom = ZoomOfText(currentText().toStdString());
  if (zoom) {
    emit zoomChosen(*zoom);
  } else {
    setEditText(shown_);
  }
}

}  // namespace mirellon::ui
