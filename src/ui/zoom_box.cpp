#include "ui/zoom_box.h"

#include <QLineEdit>
#include <optional>

#include "ui/model/view_geometry.h"
#include "ui/model/view_texts.h"

namespace mirellon::ui {

ZoomBox::ZoomBox(QWidget* parent) : QComboBox(parent) {
  setObjectName(QStringLiteral("zoomList"));
  setEditable(true);
  setInsertPolicy(NoInsert);
  setCompleter(nullptr);
  for (const double percent : kZoomList) addItem(QString::fromStdString(ZoomText(percent / 100.0)));
  setMinimumWidth(fontMetrics().horizontalAdvance(QStringLiteral("1000.0 %")) + 44);
  setCurrentIndex(-1);
  connect(this, &QComboBox::activated, this, &ZoomBox::Choose);
  connect(lineEdit(), &QLineEdit::returnPressed, this, &ZoomBox::Choose);
}

void ZoomBox::ShowZoom(double zoom) {
  shown_ = zoom;
  setEditText(QString::fromStdString(ZoomText(zoom)));
}

void ZoomBox::Choose() {
  const std::optional<double> zoom = ZoomOfText(currentText().toStdString());
  if (zoom) {
    emit zoomChosen(*zoom);
  } else {
    ShowZoom(shown_);
  }
}

}  // namespace mirellon::ui
