#include "ui/dialogs/help_window.h"

#include <QCloseEvent>
#include <QHeaderView>
#include <QSignalBlocker>
#include <QSplitter>
#include <QStyledItemDelegate>
#include <QToolBar>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

#include "skin/icon_engine.h"
#include "ui/model/window_place.h"

namespace mirellon::ui {

namespace {

constexpr QSize kUsual(1040, 760);
constexpr QSize kSmallest(640, 320);
constexpr int kContentsWidth = 300;
constexpr int kLeastContents = 160;
constexpr int kFindWidth = 200;
constexpr int kZoomStep = 10;
constexpr int kAroundRow = 10;  // pixels above and below together

// Rows with air between them.
class ContentsDelegate : public QStyledItemDelegate {
 public:
  using QStyledItemDelegate::QStyledItemDelegate;
  [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override {
    QSize size = QStyledItemDelegate::sizeHint(option, index);
    size.rheight() = option.fontMetrics.height() + kAroundRow;
    return size;
  }
};

}  // namespace

// A button of the toolbar with its keys.
struct HelpWindow::Entry {
  int text;
  const char* icon;  // null: keys only
  const char* name;
  QList<QKeySequence> keys;
};

HelpWindow::HelpWindow(const Texts& texts, std::filesystem::path settingsFile, QWidget* parent)
    : QMainWindow(parent, Qt::Window), texts_(texts), settingsFile_(std::move(settingsFile)) {
  setObjectName(QStringLiteral("helpWindow"));
  auto* splitter = new QSplitter(this);
  splitter->setObjectName(QStringLiteral("helpSplitter"));
  auto* side = new QWidget(splitter);
  contents_ = new QTreeWidget(side);
  auto* column = new QVBoxLayout(side);
  column->setContentsMargins(8, 8, 0, 8);
  column->addWidget(contents_);
  contents_->setObjectName(QStringLiteral("helpContents"));
  contents_->setAccessibleName(texts_(322));
  contents_->setFrameShape(QFrame::NoFrame);
  contents_->setHeaderHidden(true);
  contents_->setIndentation(16);
  contents_->setRootIsDecorated(false);
  contents_->setMinimumWidth(kLeastContents);
  contents_->setItemDelegate(new ContentsDelegate(contents_));
  contents_->viewport()->setBackgroundRole(QPalette::Window);
  contents_->setTextElideMode(Qt::ElideRight);
  view_ = new HelpView(splitter);
  view_->setObjectName(QStringLiteral("helpView"));
  view_->setAccessibleName(texts_(text::kHelpMenu));
  splitter->setStretchFactor(1, 1);
  splitter->setSizes({kContentsWidth, kUsual.width() - kContentsWidth});
  splitter->setChildrenCollapsible(false);
  setCentralWidget(splitter);
  setMinimumSize(kSmallest);
  BuildToolBar();
  connect(contents_, &QTreeWidget::currentItemChanged, this, [this](QTreeWidgetItem* item) {
    if (item != nullptr) view_->GoTo(item->data(0, Qt::UserRole).toString());
  });
  connect(view_, &HelpView::sectionChanged, this, &HelpWindow::MarkSection);
  RestorePlace();
}

// ---- Toolbar ----

QAction* HelpWindow::Add(QToolBar* bar, const Entry& entry) {
  auto* action = new QAction(texts_(entry.text), this);
  action->setObjectName(QLatin1String(entry.name));
  action->setShortcuts(entry.keys);
  action->setShortcutContext(Qt::WindowShortcut);
  const QString key = action->shortcut().toString(QKeySequence::NativeText);
  action->setToolTip(key.isEmpty() ? action->text() : QStringLiteral("%1 (%2)").arg(action->text(), key));
  addAction(action);
  if (entry.icon != nullptr) {
    action->setIcon(skin::StrokeIcon(QStringLiteral(":/icons/%1.svg").arg(QLatin1String(entry.icon))));
    bar->addAction(action);
  }
  return action;
}

void HelpWindow::BuildToolBar() {
  QToolBar* bar = addToolBar(texts_(text::kHelpMenu));
  bar->setObjectName(QStringLiteral("helpToolBar"));
  bar->setMovable(false);
  bar->setContextMenuPolicy(Qt::PreventContextMenu);
  QAction* back = Add(
      bar, {320, "back", "helpBack", {QKeySequence(QStringLiteral("Alt+Left")), QKeySequence(Qt::Key_Back)}});
  QAction* forward = Add(bar, {321,
                               "forward",
                               "helpForward",
                               {QKeySequence(QStringLiteral("Alt+Right")), QKeySequence(Qt::Key_Forward)}});
  QAction* contents =
      Add(bar, {322, "contents", "helpContentsAction", {QKeySequence(QStringLiteral("Alt+Home"))}});
  bar->addSeparator();
  QAction* smaller = Add(bar, {328, "text-smaller", "helpSmaller", {QKeySequence(QStringLiteral("Ctrl+-"))}});
  QAction* larger =
      Add(bar, {327,
                "text-larger",
                "helpLarger",
                {QKeySequence(QStringLiteral("Ctrl++")), QKeySequence(QStringLiteral("Ctrl+="))}});
  QAction* usual = Add(bar, {329, nullptr, "helpUsual", {QKeySequence(QStringLiteral("Ctrl+0"))}});
  BuildFindField(bar);
  auto* close = new QAction(this);
  close->setShortcut(QKeySequence(Qt::Key_Escape));
  addAction(close);
  back->setEnabled(false);
  forward->setEnabled(false);
  connect(view_, &QTextBrowser::backwardAvailable, back, &QAction::setEnabled);
  connect(view_, &QTextBrowser::forwardAvailable, forward, &QAction::setEnabled);
  connect(back, &QAction::triggered, view_, &QTextBrowser::backward);
  connect(forward, &QAction::triggered, view_, &QTextBrowser::forward);
  connect(contents, &QAction::triggered, this, &HelpWindow::ShowContents);
  connect(smaller, &QAction::triggered, view_, [this] { view_->SetZoom(view_->zoom() - kZoomStep); });
  connect(larger, &QAction::triggered, view_, [this] { view_->SetZoom(view_->zoom() + kZoomStep); });
  connect(usual, &QAction::triggered, view_, [this] { view_->SetZoom(100); });
  connect(close, &QAction::triggered, this, &QWidget::close);
}

void HelpWindow::BuildFindField(QToolBar* bar) {
  auto* space = new QWidget(bar);
  space->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
  bar->addWidget(space);
  notFound_ = new QLabel(bar);
  notFound_->setObjectName(QStringLiteral("helpNotFound"));
  notFound_->setContentsMargins(8, 0, 8, 0);
  bar->addWidget(notFound_);
  find_ = new QLineEdit(bar);
  find_->setObjectName(QStringLiteral("helpFind"));
  find_->setPlaceholderText(texts_(323));
  find_->setAccessibleName(texts_(323));
  find_->setClearButtonEnabled(true);
  find_->setFixedWidth(kFindWidth);
  bar->addWidget(find_);
  QAction* previous =
      Add(bar, {325, "find-previous", "helpFindPrevious", {QKeySequence(QStringLiteral("Shift+F3"))}});
  QAction* next = Add(bar, {324, "find-next", "helpFindNext", {QKeySequence(QStringLiteral("F3"))}});
  QAction* focus = Add(bar, {323, nullptr, "helpFindAction", {QKeySequence(QStringLiteral("Ctrl+F"))}});
  connect(focus, &QAction::triggered, this, [this] {
    find_->setFocus(Qt::ShortcutFocusReason);
    find_->selectAll();
  });
  connect(find_, &QLineEdit::textChanged, this,
          [this](const QString& text) { TellFound(text.isEmpty() || view_->FindTyped(text)); });
  connect(find_, &QLineEdit::returnPressed, this, [this] { FindAgain(false); });
  connect(next, &QAction::triggered, this, [this] { FindAgain(false); });
  connect(previous, &QAction::triggered, this, [this] { FindAgain(true); });
}

void HelpWindow::FindAgain(bool backward) {
  if (find_->text().isEmpty()) return find_->setFocus(Qt::ShortcutFocusReason);
  TellFound(view_->Find(find_->text(), backward ? QTextDocument::FindBackward : QTextDocument::FindFlags()));
}

void HelpWindow::TellFound(bool found) {
  notFound_->setText(found ? QString() : texts_(326));
}

// ---- Page and contents ----

void HelpWindow::ShowPage(const std::filesystem::path& file, const HelpPage& page) {
  ListSections(page);
  view_->ShowPage(file, page);
  setWindowTitle(view_->documentTitle());
}

void HelpWindow::ListSections(const HelpPage& page) {
  const QSignalBlocker quiet(contents_);
  contents_->clear();
  items_.clear();
  QTreeWidgetItem* chapter = nullptr;
  for (const HelpSection& section : page.sections) {
    auto* item = section.level < 3 || chapter == nullptr ? new QTreeWidgetItem(contents_)
                                                         : new QTreeWidgetItem(chapter);
    if (section.level == 2) chapter = item;
    const QString title = QString::fromStdString(section.title);
    item->setText(0, title);
    item->setToolTip(0, title);
    item->setData(0, Qt::UserRole, QString::fromStdString(section.anchor));
    items_.push_back(item);
  }
  contents_->expandAll();
}

void HelpWindow::MarkSection(int section) {
  const QSignalBlocker quiet(contents_);
  QTreeWidgetItem* item = section < 0 || section >= static_cast<int>(items_.size())
                              ? nullptr
                              : items_[static_cast<std::size_t>(section)];
  contents_->setCurrentItem(item);
  if (item != nullptr) contents_->scrollToItem(item);
}

void HelpWindow::ShowContents() {
  view_->GoTo(items_.empty() ? QString() : items_.front()->data(0, Qt::UserRole).toString());
  contents_->setFocus(Qt::ShortcutFocusReason);
}

void HelpWindow::GoTo(const QString& anchor) {
  view_->GoTo(anchor);
  view_->setFocus();
}

QString HelpWindow::currentAnchor() const {
  const QTreeWidgetItem* item = contents_->currentItem();
  return item == nullptr ? QString() : item->data(0, Qt::UserRole).toString();
}

// ---- Place ----

void HelpWindow::RestorePlace() {
  resize(kUsual);
  const WindowPlace place = LoadWindowPlace(settingsFile_, kHelpWindowPlace);
  if (!place.geometry.empty())
    restoreGeometry(QByteArray::fromBase64(QByteArray::fromStdString(place.geometry)));
}

void HelpWindow::StorePlace() {
  const WindowPlace place{saveGeometry().toBase64().toStdString()};
  (void)StoreWindowPlace(settingsFile_, place, kHelpWindowPlace);  // the usual one at worst
}

HelpWindow::~HelpWindow() {
  if (isVisible()) StorePlace();  // its owner ends with it open
}

void HelpWindow::closeEvent(QCloseEvent* event) {
  StorePlace();
  QMainWindow::closeEvent(event);
}

}  // namespace mirellon::ui
