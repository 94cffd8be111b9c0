// Being told to end by the system.
#pragma once

#include <QObject>
#include <QSocketNotifier>

namespace mirellon::ui {

// Turns SIGTERM, SIGINT and SIGHUP into a Qt signal, so that the program ends in order. One at a time; while
// it lives, the signals do nothing else. A second one ends the process at once.
class Termination : public QObject {
  Q_OBJECT

 public:
  Termination();
  ~Termination() override;
  Termination(const Termination&) = delete;
  Termination& operator=(const Termination&) = delete;

 signals:
  void requested();

 private:
  int readEnd_ = -1;
  QSocketNotifier* notifier_ = nullptr;
};

}  // namespace mirellon::ui
