#include "skin_specimens.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QMenuBar>
#include <QPainter>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollBar>
#include <QSlider>
#include <QSpinBox>
#include <QSplitter>
#include <QStatusBar>
#include <QStyleOption>
#include <QTextEdit>
#include <QToolBar>
#include <QToolButton>
#include <QTreeWidget>
#include <array>
#include <cmath>
#include <utility>

#include "skin/skin_style.h"

namespace mirellon::specimens {

namespace {

constexpr const char* kPoseProperty = "specimenPose";
using WidgetPointer = std::unique_ptr<QWidget>;

WidgetPointer Sized(WidgetPointer widget, int width, int height = 0) {
  widget->ensurePolished();
  const int own = std::max(widget->sizeHint().height(), widget->minimumSizeHint().height());
  widget->setFixedSize(width, height > 0 ? height : own);
  return widget;
}

template <typename Button>
WidgetPointer MakeButton(const QString& text, bool checkable, bool checked) {
  auto button = std::make_unique<Button>();
  button->setText(text);
  button->setCheckable(checkable);
  button->setChecked(checked);
  return Sized(std::move(button), 132);
}

WidgetPointer MakeAction(const QString& text) {
  auto button = std::make_unique<QPushButton>(text);
  button->setProperty(skin::kPrimaryProperty, true);
  return Sized(std::move(button), 132);
}

WidgetPointer MakeGroup(const QString& text, bool checkable) {
  auto group = std::make_unique<QGroupBox>(text);
  group->setCheckable(checkable);
  return Sized(std::move(group), 132, 36);
}

WidgetPointer MakeField(const QString& text, bool hint) {
  auto field = std::make_unique<QLineEdit>();
  if (hint) {
    field->setPlaceholderText(text);
  } else {
    field->setText(text);
  }
  return Sized(std::move(field), 132);
}

WidgetPointer MakeSpin(const QString& text) {
  auto spin = std::make_unique<QSpinBox>();
  spin->setRange(0, 10);
  spin->setValue(5);
  spin->setSpecialValueText(text);
  spin->setMinimum(5);
  return Sized(std::move(spin), 132);
}

WidgetPointer MakeCombo(const QString& text, bool editable) {
  auto combo = std::make_unique<QComboBox>();
  combo->setEditable(editable);
  combo->addItem(text);
  return Sized(std::move(combo), 132);
}

WidgetPointer MakeList(const QString& text, bool chosen) {
  auto list = std::make_unique<QListWidget>();
  list->addItems({text, text});
  if (chosen) list->setCurrentRow(1);
  return Sized(std::move(list), 132, 56);
}

WidgetPointer MakeTree(const QString& text) {
  auto tree = std::make_unique<QTreeWidget>();
  tree->setHeaderLabels({text});
  return Sized(std::move(tree), 132, 56);
}

WidgetPointer MakeText(const QString& text) {
  auto edit = std::make_unique<QTextEdit>(text);
  return Sized(std::move(edit), 132, 40);
}

WidgetPointer MakeSlider(Qt::Orientation orientation) {
  auto slider = std::make_unique<QSlider>(orientation);
  slider->setRange(0, 100);
  slider->setValue(40);
  return orientation == Qt::Horizontal ? Sized(std::move(slider), 132) : Sized(std::move(slider), 20, 72);
}

WidgetPointer MakeScrollBar() {
  auto bar = std::make_unique<QScrollBar>(Qt::Horizontal);
  bar->setRange(0, 100);
  bar->setPageStep(60);
  bar->setValue(30);
  return Sized(std::move(bar), 132);
}

WidgetPointer MakeProgress(const QString& text, int percent) {
  auto bar = std::make_unique<QProgressBar>();
  bar->setRange(0, 100);
  bar->setValue(percent);
  bar->setFormat(text);
  bar->setTextVisible(!text.isEmpty());
  return Sized(std::move(bar), 132, percent == 60 ? 8 : 24);
}

WidgetPointer MakeBusy() {
  auto bar = std::make_unique<QProgressBar>();
  bar->setRange(0, 0);
  bar->setTextVisible(false);
  return Sized(std::move(bar), 132, 8);
}

WidgetPointer MakeTool(const QString& text, bool flat, bool checked) {
  auto button = std::make_unique<QToolButton>();
  button->setText(text);
  button->setAutoRaise(flat);
  button->setCheckable(true);
  button->setChecked(checked);
  return Sized(std::move(button), 132);
}

WidgetPointer MakeMenu(const QString& text) {
  auto menu = std::make_unique<QMenu>();
  menu->addAction(text)->setShortcut(QKeySequence(QStringLiteral("Ctrl+O")));
  menu->addSeparator();
  QAction* ticked = menu->addAction(text);
  ticked->setCheckable(true);
  ticked->setChecked(true);
  menu->addMenu(text);
  return Sized(std::move(menu), 196);
}

WidgetPointer MakeMenuBar(const QString& text) {
  auto bar = std::make_unique<QMenuBar>();
  bar->addAction(text);
  return Sized(std::move(bar), 132);
}

WidgetPointer MakeToolBar() {
  auto bar = std::make_unique<QToolBar>();
  bar->addAction(QStringLiteral("A"));
  bar->addSeparator();
  bar->addAction(QStringLiteral("B"));
  return Sized(std::move(bar), 132);
}

WidgetPointer MakeStatusBar(const QString& text) {
  auto bar = std::make_unique<QStatusBar>();
  bar->setSizeGripEnabled(false);
  bar->addWidget(new QLabel(text));  // the bar's now
  return Sized(std::move(bar), 132);
}

WidgetPointer MakeSplitter() {
  auto splitter = std::make_unique<QSplitter>(Qt::Horizontal);
  splitter->addWidget(new QWidget);  // the splitter's now
  splitter->addWidget(new QWidget);
  return Sized(std::move(splitter), 132, 32);
}

// The real one lives for as long as the pointer rests.
class Tip : public QLabel {
 public:
  explicit Tip(const QString& text) : QLabel(text) {
    setForegroundRole(QPalette::ToolTipText);
    setMargin(style()->pixelMetric(QStyle::PM_ToolTipLabelFrameWidth));
  }

 protected:
  void paintEvent(QPaintEvent* event) override {
    QPainter painter(this);
    QStyleOptionFrame panel;
    panel.initFrom(this);
    style()->drawPrimitive(QStyle::PE_PanelTipLabel, &panel, &painter, this);
    painter.end();
    QLabel::paintEvent(event);
  }
};

Specimen Plain(const char* name, bool focusable, bool hasText, std::vector<Pose> poses,
               std::function<WidgetPointer(const QString&)> make) {
  return {name, focusable, hasText, std::move(poses), std::move(make)};
}

std::vector<Specimen> MakeSpecimens() {
  const std::vector<Pose> all{Pose::kNormal, Pose::kHot, Pose::kFocused, Pose::kPressed, Pose::kDisabled};
  const std::vector<Pose> unpressed{Pose::kNormal, Pose::kHot, Pose::kFocused, Pose::kDisabled};
  const std::vector<Pose> unfocused{Pose::kNormal, Pose::kHot, Pose::kPressed, Pose::kDisabled};
  const std::vector<Pose> still{Pose::kNormal, Pose::kDisabled};
  return {
      Plain("push button", true, true, all,
            [](const QString& text) { return MakeButton<QPushButton>(text, false, false); }),
      Plain("main action", true, true, all, MakeAction),
      Plain("check box", true, true, all,
            [](const QString& text) { return MakeButton<QCheckBox>(text, true, false); }),
      Plain("check box, on", true, true, all,
            [](const QString& text) { return MakeButton<QCheckBox>(text, true, true); }),
      Plain("radio button", true, true, all,
            [](const QString& text) { return MakeButton<QRadioButton>(text, true, false); }),
      Plain("radio button, on", true, true, all,
            [](const QString& text) { return MakeButton<QRadioButton>(text, true, true); }),
      Plain("group box", false, true, still, [](const QString& text) { return MakeGroup(text, false); }),
      Plain("group box, tickable", true, true, unpressed,
            [](const QString& text) { return MakeGroup(text, true); }),
      Plain("line edit", true, true, unpressed, [](const QString& text) { return MakeField(text, false); }),
      Plain("line edit, empty", true, true, unpressed,
            [](const QString& text) { return MakeField(text, true); }),
      Plain("spin box", true, true, unpressed, MakeSpin),
      Plain("combo box", true, true, all, [](const QString& text) { return MakeCombo(text, false); }),
      Plain("combo box, editable", true, true, unpressed,
            [](const QString& text) { return MakeCombo(text, true); }),
      Plain("list box", true, true, unpressed, [](const QString& text) { return MakeList(text, false); }),
      Plain("list box, chosen", true, true, unpressed,
            [](const QString& text) { return MakeList(text, true); }),
      Plain("tree with a header", true, true, unpressed, MakeTree),
      Plain("text", true, true, unpressed, MakeText),
      Plain("slider", true, false, all, [](const QString&) { return MakeSlider(Qt::Horizontal); }),
      Plain("slider, upright", true, false, all, [](const QString&) { return MakeSlider(Qt::Vertical); }),
      Plain("progress bar", false, false, still, [](const QString&) { return MakeProgress({}, 60); }),
      Plain("progress bar, busy", false, false, still, [](const QString&) { return MakeBusy(); }),
      Plain("progress bar, begun", false, true, still,
            [](const QString& text) { return MakeProgress(text, 8); }),
      Plain("progress bar, nearly done", false, true, still,
            [](const QString& text) { return MakeProgress(text, 92); }),
      Plain("tool button", true, true, all, [](const QString& text) { return MakeTool(text, false, false); }),
      Plain("tool button, on", true, true, all,
            [](const QString& text) { return MakeTool(text, false, true); }),
      Plain("tool button, flat", true, true, all,
            [](const QString& text) { return MakeTool(text, true, false); }),
      Plain("scroll bar", false, false, unfocused, [](const QString&) { return MakeScrollBar(); }),
      Plain("splitter", false, false, unfocused, [](const QString&) { return MakeSplitter(); }),
      Plain("menu bar", false, true, still, MakeMenuBar),
      Plain("tool bar", false, false, still, [](const QString&) { return MakeToolBar(); }),
      Plain("status bar", false, true, still, MakeStatusBar),
      Plain("tool tip", false, true, {Pose::kNormal},
            [](const QString& text) { return Sized(std::make_unique<Tip>(text), 132); }),
      Plain("menu", false, true, {Pose::kNormal, Pose::kHot, Pose::kDisabled}, MakeMenu),
  };
}

Pose PoseOf(const QWidget* widget) {
  for (; widget != nullptr; widget = widget->parentWidget()) {
    const QVariant pose = widget->property(kPoseProperty);
    if (pose.isValid()) return static_cast<Pose>(pose.toInt());
  }
  return Pose::kNormal;
}

QStyle::State StatesOf(Pose pose) {
  switch (pose) {
    case Pose::kHot:
      return QStyle::State_MouseOver;
    case Pose::kFocused:
      return QStyle::State_HasFocus | QStyle::State_KeyboardFocusChange;
    case Pose::kPressed:
      return QStyle::State_Sunken | QStyle::State_MouseOver;
    default:
      return QStyle::State_None;
  }
}

// The options that widgets draw with are their own variables, not constants.
class Posed {
 public:
  Posed(const QStyleOption& option, const QWidget* widget)
      : option_(const_cast<QStyleOption&>(option)), before_(option.state) {
    option_.state |= StatesOf(PoseOf(widget));
  }
  ~Posed() { option_.state = before_; }
  Posed(const Posed&) = delete;
  Posed& operator=(const Posed&) = delete;

 private:
  QStyleOption& option_;
  QStyle::State before_;
};

}  // namespace

const std::vector<Specimen>& Specimens() {
  static const std::vector<Specimen> kSpecimens = MakeSpecimens();
  return kSpecimens;
}

void SetPose(QWidget& widget, Pose pose) {
  widget.setProperty(kPoseProperty, static_cast<int>(pose));
  widget.setEnabled(pose != Pose::kDisabled);
  if (auto* menu = qobject_cast<QMenu*>(&widget)) {
    for (QAction* action : menu->actions()) action->setEnabled(pose != Pose::kDisabled);
    menu->setActiveAction(pose == Pose::kHot ? menu->actions().constFirst() : nullptr);
  }
}

void PosingStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                                const QWidget* widget) const {
  const Posed posed(*option, widget);
  QProxyStyle::drawPrimitive(element, option, painter, widget);
}

void PosingStyle::drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                              const QWidget* widget) const {
  const Posed posed(*option, widget);
  QProxyStyle::drawControl(element, option, painter, widget);
}

void PosingStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                                     QPainter* painter, const QWidget* widget) const {
  const Posed posed(*option, widget);
  // What is pressed or under the pointer is a slider's knob.
  auto* complex = const_cast<QStyleOptionComplex*>(option);
  const QStyle::SubControls before = complex->activeSubControls;
  if (control == CC_Slider) complex->activeSubControls = SC_SliderHandle;
  if (control == CC_ScrollBar) complex->activeSubControls = SC_ScrollBarSlider;
  QProxyStyle::drawComplexControl(control, option, painter, widget);
  complex->activeSubControls = before;
}

QImage Picture(QWidget& widget, qreal scale) {
  const QSize size(static_cast<int>(std::ceil(widget.width() * scale)),
                   static_cast<int>(std::ceil(widget.height() * scale)));
  QImage image(size, QImage::Format_RGB32);
  image.setDevicePixelRatio(scale);
  image.fill(QApplication::palette().color(QPalette::Window));
  widget.render(&image);
  return image;
}

}  // namespace mirellon::specimens
