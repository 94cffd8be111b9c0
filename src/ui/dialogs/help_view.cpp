#include "ui/dialogs/help_view.h"

#include <QAbstractTextDocumentLayout>
#include <QEvent>
#include <QScrollBar>
#include <QTextBlock>
#include <QTextFrame>
#include <QUrl>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>
#include <utility>

#include "ui/texts.h"

namespace mirellon::ui {

namespace {

constexpr int kLeastZoom = 50;
constexpr int kMostZoom = 300;
constexpr int kZoomStep = 10;
constexpr int kSideMargin = 32;
constexpr int kTopMargin = 16;
constexpr double kColumn = 660.0;  // pixels at the usual size; longer lines are hard to follow
constexpr int kFitMs = 40;
constexpr double kAboveHeading = 24.0;  // a heading this far below the top counts as reached

// Between two colours: 0 the first, 1 the second.
QString Mixed(const QColor& a, const QColor& b, double share) {
  const auto mix = [share](int from, int to) {
    return static_cast<int>(std::lround(from + (to - from) * share));
  };
  return QColor(mix(a.red(), b.red()), mix(a.green(), b.green()), mix(a.blue(), b.blue())).name();
}

}  // namespace

HelpView::HelpView(QWidget* parent) : QTextBrowser(parent), baseSize_(font().pointSizeF()) {
  if (baseSize_ <= 0.0) baseSize_ = 10.0;
  setFrameShape(QFrame::NoFrame);
  setOpenExternalLinks(false);
  fitTimer_.setSingleShot(true);
  fitTimer_.setInterval(kFitMs);
  connect(&fitTimer_, &QTimer::timeout, this, &HelpView::FitToWidth);
  connect(verticalScrollBar(), &QScrollBar::valueChanged, this, &HelpView::FollowScroll);
}

// ---- The page ----

void HelpView::ShowPage(const std::filesystem::path& file, const HelpPage& page) {
  // The window lists the sections beside the page.
  html_ = QString::fromStdString(page.html);
  const qsizetype contents = html_.indexOf(QLatin1String("<div class=\"contents\">"));
  const qsizetype end = html_.indexOf(QLatin1String("</div>"), std::max<qsizetype>(contents, 0));
  if (contents >= 0 && end > contents) html_.remove(contents, end + 6 - contents);
  anchors_.clear();
  for (const HelpSection& section : page.sections) anchors_.push_back(QString::fromStdString(section.anchor));
  originals_.clear();
  missing_.clear();
  visits_.clear();
  visit_ = 0;
  folder_ = QUrl::fromLocalFile(TextOf(file));
  Render();
  TellHistory();
}

void HelpView::GoTo(const QString& anchor) {
  if (!visits_.empty()) {
    visits_[visit_] = TopOfView();
    ++visit_;
  }
  visits_.resize(visit_);  // what lay ahead is given up
  visits_.push_back({});
  // Places are not where they will be before that.
  if (fitTimer_.isActive()) FitToWidth();
  scrollToAnchor(anchor);
  TellHistory();
}

void HelpView::doSetSource(const QUrl& url, QTextDocument::ResourceType /*type*/) {
  // The document is not loaded by its address, and its links lead into itself only.
  if (url.hasFragment()) GoTo(url.fragment());
}

void HelpView::backward() {
  if (visit_ > 0) Revisit(visit_ - 1);
}

void HelpView::forward() {
  if (visit_ + 1 < visits_.size()) Revisit(visit_ + 1);
}

void HelpView::Revisit(std::size_t visit) {
  visits_[visit_] = TopOfView();
  visit_ = visit;
  BringToTop(visits_[visit_]);
  TellHistory();
}

void HelpView::TellHistory() {
  emit backwardAvailable(visit_ > 0);
  emit forwardAvailable(visit_ + 1 < visits_.size());
}

QVariant HelpView::loadResource(int type, const QUrl& name) {
  if (type != QTextDocument::ImageResource) return {};  // the style is our own
  const QString key = name.toString();
  if (!originals_.contains(key)) {
    const QImage image(folder_.resolved(name).toLocalFile());
    if (image.isNull()) missing_.append(key);
    originals_.insert(key, image);
  }
  return originals_.value(key);
}

void HelpView::Render() {
  const Place place = TopOfView();
  QFont scaled = font();
  scaled.setPointSizeF(baseSize_ * zoom_ / 100.0);
  document()->setDefaultFont(scaled);
  document()->setDefaultStyleSheet(StyleSheet());
  document()->setHtml(html_);
  positions_.clear();
  for (QTextBlock block = document()->begin(); block.isValid(); block = block.next()) {
    for (auto part = block.begin(); !part.atEnd() && positions_.size() < anchors_.size(); ++part) {
      const QStringList names = part.fragment().charFormat().anchorNames();
      if (names.contains(anchors_[positions_.size()])) positions_.push_back(block.position());
    }
  }
  FitToWidth();
  BringToTop(place);
  resized_.reset();
  section_ = -1;
  FollowScroll();
}

QString HelpView::StyleSheet() const {
  const QPalette& colours = palette();
  const QColor paper = colours.color(QPalette::Base);
  const QColor ink = colours.color(QPalette::Text);
  const double size = baseSize_ * zoom_ / 100.0;
  return QStringLiteral(
             "h1 { font-size: %1pt; font-weight: 600; margin-top: 8px; margin-bottom: 8px; }"
             "h2 { font-size: %2pt; font-weight: 600; margin-top: 36px; margin-bottom: 8px; }"
             "h3 { font-size: %3pt; font-weight: 600; margin-top: 24px; margin-bottom: 4px; }"
             "p, li { line-height: 145%; }"
             "p { margin-top: 6px; margin-bottom: 10px; }"
             "p.lead { font-size: %3pt; }"
             "p.picture { margin-top: 12px; margin-bottom: 2px; line-height: 100%; }"
             "p.caption { color: %4; margin-top: 2px; margin-bottom: 14px; }"
             "li { margin-top: 2px; margin-bottom: 4px; }"
             "ul, ol { margin-top: 4px; margin-bottom: 12px; }"
             "table { border-collapse: collapse; margin-top: 8px; margin-bottom: 16px; }"
             "th, td { padding: 5px 24px 5px 0px; border-bottom: 1px solid %5; border-top: 0px; }"
             "th { text-align: left; font-weight: 600; color: %4; }"
             "kbd { background-color: %6; font-family: '%8'; }"
             "code, pre { background-color: %6; }"
             "pre { white-space: pre-wrap; margin-top: 8px; margin-bottom: 12px; }"
             "a { color: %7; text-decoration: none; }"
             "h1 a, h2 a, h3 a { color: %9; }")
      .arg(QString::number(size * 1.9, 'f', 1), QString::number(size * 1.45, 'f', 1),
           QString::number(size * 1.15, 'f', 1), Mixed(paper, ink, 0.7), Mixed(paper, ink, 0.25),
           Mixed(paper, ink, 0.12), colours.color(QPalette::Link).name(), font().family(), ink.name());
}

// ---- Size ----

void HelpView::SetZoom(int percent) {
  const int held = std::clamp(percent, kLeastZoom, kMostZoom);
  if (held == zoom_) return;
  zoom_ = held;
  Render();
}

void HelpView::FitToWidth() {
  fitTimer_.stop();
  LayOut();
  const Place place = std::exchange(resized_, std::nullopt).value_or(TopOfView());
  const double whole = viewport()->width();
  const double column = std::min(kColumn * zoom_ / 100.0, std::max(whole - 2.0 * kSideMargin, 1.0));
  QTextFrameFormat frame = document()->rootFrame()->frameFormat();
  frame.setLeftMargin(kSideMargin);
  frame.setRightMargin(std::max(whole - kSideMargin - column, 0.0));
  frame.setTopMargin(kTopMargin);
  frame.setBottomMargin(2.0 * kSideMargin);
  document()->rootFrame()->setFrameFormat(frame);
  LayOut();
  FitPictures(column);
  LayOut();
  LeaveRoomBelow();
  BringToTop(place);
  resized_.reset();  // scroll bars that came and went here
}

void HelpView::LeaveRoomBelow() {
  if (positions_.empty()) return;
  QTextFrameFormat frame = document()->rootFrame()->frameFormat();
  const double end = document()->documentLayout()->documentSize().height() - frame.bottomMargin();
  const double last = end - TopOf(document()->findBlock(positions_.back()));
  frame.setBottomMargin(std::max(2.0 * kSideMargin, std::ceil(viewport()->height() - last) + 1.0));
  document()->rootFrame()->setFrameFormat(frame);
  LayOut();
}

void HelpView::LayOut() {
  // Counting pages lays out to the end. Places are not what they will be before that, and a change in the
  // middle of it leaves what follows without a height.
  (void)document()->pageCount();
}

HelpView::Place HelpView::TopOfView() const {
  // Not asked of the document, which has no answer for its margins.
  const int top = verticalScrollBar()->value();
  if (top == 0) return {};
  QTextBlock block = document()->begin();
  for (QTextBlock next = block; next.isValid() && TopOf(next) <= top; next = next.next()) block = next;
  return {block.position(), top - TopOf(block)};
}

void HelpView::BringToTop(const Place& place) {
  const double top = place.position < 0 ? 0.0 : TopOf(document()->findBlock(place.position)) + place.below;
  verticalScrollBar()->setValue(static_cast<int>(std::lround(top)));
}

double HelpView::TopOf(const QTextBlock& block) const {
  return document()->documentLayout()->blockBoundingRect(block).top();
}

void HelpView::FitPictures(double width) {
  const double scale = devicePixelRatioF();
  QTextCursor cursor(document());
  cursor.beginEditBlock();
  for (QTextBlock block = document()->begin(); block.isValid(); block = block.next()) {
    for (auto part = block.begin(); !part.atEnd(); ++part) {
      const QTextFragment fragment = part.fragment();
      if (!fragment.charFormat().isImageFormat()) continue;
      QTextImageFormat format = fragment.charFormat().toImageFormat();
      const QImage original = originals_.value(format.name());
      if (original.isNull()) continue;
      const double shown = std::min(original.width() * zoom_ / 100.0, width);
      const double high = shown * original.height() / original.width();
      // Scaled here, as the document would do it without smoothing.
      QImage drawn = original.scaled(QSizeF(shown * scale, high * scale).toSize(), Qt::IgnoreAspectRatio,
                                     Qt::SmoothTransformation);
      drawn.setDevicePixelRatio(scale);
      document()->addResource(QTextDocument::ImageResource, QUrl(format.name()), drawn);
      format.setWidth(shown);
      format.setHeight(high);
      cursor.setPosition(fragment.position());
      cursor.setPosition(fragment.position() + fragment.length(), QTextCursor::KeepAnchor);
      cursor.setCharFormat(format);
      break;  // the block's fragments are others now; a picture has a block of its own
    }
  }
  cursor.endEditBlock();
}

void HelpView::resizeEvent(QResizeEvent* event) {
  // The text is broken anew at once, and then nobody knows any more what was read.
  if (!resized_) resized_ = TopOfView();
  QTextBrowser::resizeEvent(event);
  fitTimer_.start();
}

void HelpView::changeEvent(QEvent* event) {
  QTextBrowser::changeEvent(event);
  if (event->type() == QEvent::PaletteChange && !html_.isEmpty()) Render();
}

void HelpView::wheelEvent(QWheelEvent* event) {
  if (!event->modifiers().testFlag(Qt::ControlModifier)) return QTextBrowser::wheelEvent(event);
  event->accept();
  if (const int delta = event->angleDelta().y(); delta != 0)
    SetZoom(zoom_ + (delta > 0 ? kZoomStep : -kZoomStep));
}

// ---- Sections and finding ----

int HelpView::currentSection() const {
  const double top = verticalScrollBar()->value() + kAboveHeading;
  int current = -1;
  for (std::size_t i = 0; i < positions_.size(); ++i) {
    if (TopOf(document()->findBlock(positions_[i])) > top) break;
    current = static_cast<int>(i);
  }
  return current;
}

void HelpView::FollowScroll() {
  const int section = currentSection();
  if (section == section_) return;
  section_ = section;
  emit sectionChanged(section);
}

bool HelpView::Find(const QString& text, QTextDocument::FindFlags direction) {
  if (text.isEmpty()) return false;
  QTextCursor found = document()->find(text, textCursor(), direction);
  if (found.isNull()) {
    QTextCursor end(document());
    if (direction.testFlag(QTextDocument::FindBackward)) end.movePosition(QTextCursor::End);
    found = document()->find(text, end, direction);
  }
  if (found.isNull()) return false;
  setTextCursor(found);
  // Well inside, with what stands around it.
  const QRect place = cursorRect();
  const int margin = viewport()->height() / 4;
  if (place.top() < margin || place.bottom() > viewport()->height() - margin)
    verticalScrollBar()->setValue(verticalScrollBar()->value() + place.top() - viewport()->height() / 3);
  return true;
}

bool HelpView::FindTyped(const QString& text) {
  QTextCursor cursor = textCursor();
  cursor.setPosition(cursor.selectionStart());
  setTextCursor(cursor);
  return Find(text, {});
}

}  // namespace mirellon::ui
