// The toolbar's zoom list.
#pragma once

#include <QComboBox>

namespace mirellon::ui {

// Shows the zoom, offers the usual ones, and takes any that is typed.
class ZoomBox : public QComboBox {
  Q_OBJECT

 public:
  // `name` is for screen readers.
  explicit ZoomBox(const QString& name, QWidget* parent = nullptr);

  void ShowZoom(double zoom);
  void ShowNothing();

 signals:
  void zoomChosen(double zoom);

 private:
  void Choose();

  QString shown_;
};

}  // namespace mirellon::ui
