#include "app/window/DropView.h"

#include "platform/desktop/panels/FontScale.h"
#include "platform/desktop/services/UriList.h"
#include "shared/Library/Extras/BezierPathExtras.h"
#include "shared/Library/Extras/QKUtility.h"
#include "system/PathString.h"

#include <QApplication>
#include <QDragEnterEvent>
#include <QKeyEvent>
#include <QMimeData>
#include <QPainter>
#include <QPointer>
#include <QSysInfo>

#include <algorithm>
#include <cmath>

namespace
{

// The look of the box, in points. Its texts, and the room for them, grow with the desktop's font.
constexpr double outlineInset = 10;
constexpr float cornerRadius = 10;
constexpr double lineWidth = 2;
constexpr double dashLength = 20;
constexpr double gapLength = 4;
constexpr int captionSize = 20;
constexpr int hintGap = 6;
constexpr double largestHint = 0.8; // of the caption: it stays the smaller line
constexpr double focusInset = 4; // outside the outline
constexpr float focusRadius = 6;

// The march: one point per pass.
constexpr float phaseStep = 1;
constexpr double passDelayInSeconds = 0.01;

// Lets the drag end before sheets open.
constexpr double dropDelayInSeconds = 0.05;

constexpr auto uriListType = QLatin1String("text/uri-list");
constexpr auto copiedFilesType = QLatin1String("x-special/gnome-copied-files");

// From the bytes as they are: QUrl cannot hold a name that is not UTF-8.
UriList::FilePaths filesIn(const QMimeData& pasteboard)
{
    const std::string hostName = QSysInfo::machineHostName().toStdString();
    if (pasteboard.hasFormat(uriListType))
        return UriList::filePaths(pasteboard.data(uriListType).toStdString(), hostName);
    return UriList::copiedFilePaths(pasteboard.data(copiedFilesType).toStdString(), hostName);
}

QStringList linesOf(const std::vector<UriList::RefusedLine>& refused)
{
    QStringList lines;
    for (const UriList::RefusedLine& each : refused)
        lines.append(QString::fromStdString(each.line));
    return lines;
}

// Of two colours, from 1 to 21, as the Web Content Accessibility Guidelines define it. What has to
// be seen, but not read, needs 3.
constexpr double leastContrast = 3;

double contrast(const QColor& one, const QColor& other)
{
    const auto luminance = [](const QColor& color) {
        const auto linear = [](double part) {
            return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
        };
        return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF())
            + 0.0722 * linear(color.blueF());
    };
    const auto [darker, lighter] = std::minmax({luminance(one), luminance(other)});
    return (lighter + 0.05) / (darker + 0.05);
}

QColor grey(float white)
{
    return QColor::fromRgbF(white, white, white);
}

} // namespace

DropView::DropView(QWidget* parent)
    : QAbstractButton(parent)
{
    setAcceptDrops(true);
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    setText(tr("Drop Files Here"));
    setAccessibleName(text());
    setAccessibleDescription(tr("Drop files and folders here, or press to choose files"));
}

const QColor& DropView::fgColor()
{
    static const QColor color = grey(0.5F);
    return color;
}

const QColor& DropView::bgColor()
{
    static const QColor color = grey(1.0F);
    return color;
}

const QColor& DropView::hfgColor()
{
    static const QColor color = grey(0.95F);
    return color;
}

const QColor& DropView::hbgColor()
{
    static const QColor color = grey(0.6F);
    return color;
}

std::optional<std::filesystem::path> DropView::folder() const
{
    if (_files.empty())
        return std::nullopt;
    return PathString::stringByDeletingLastPathComponent(_files.front().native());
}

void DropView::setFiles(Files files)
{
    _files = std::move(files);
    _leftOut.clear();
}

void DropView::setHint(const QString& hint)
{
    _hint = hint;
    update();
}

QSize DropView::sizeHint() const
{
    return (QSizeF(380, 220) * FontScale::of(*this)).toSize();
}

QSize DropView::minimumSizeHint() const
{
    return (QSizeF(300, 120) * FontScale::of(*this)).toSize(); // the caption fits in any language
}

// A box that is hovered renews itself: each pass asks for the next. When the drag has gone the last
// pass draws the outline still.
void DropView::paintEvent(QPaintEvent* event)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillRect(event->rect(), _isHighlighted() ? hbgColor() : bgColor());
    _drawTexts(painter);
    if (_animate) {
        _phase += phaseStep;
        QKUtility::afterDelay(passDelayInSeconds, [view = QPointer(this)] {
            if (view)
                view->update();
        });
    }
    drawDashedBoxWithPhase(painter, _phase);
    if (hasFocus() && !_animate)
        _drawFocus(painter);
}

DropView::Caption DropView::dropHereString() const
{
    QFont font(QStringLiteral("Helvetica"));
    font.setPixelSize(qRound(captionSize * FontScale::of(*this)));
    return {text(), font, _isHighlighted() ? hfgColor() : fgColor()};
}

void DropView::_drawTexts(QPainter& painter) const
{
    const Caption caption = dropHereString();
    painter.setFont(caption.font);
    painter.setPen(caption.color);
    painter.drawText(rect(), Qt::AlignCenter, caption.text);
    if (_hint.isEmpty())
        return;
    // A grey of the caption's would be too faint for small letters: this one has a contrast of 5.
    static const QColor hintColor = grey(0.43F);
    const int below = rect().center().y() + painter.fontMetrics().height() / 2 + hintGap;
    const QRect place = rect()
                            .adjusted(2 * outlineInset, 0, -2 * outlineInset, -2 * outlineInset)
                            .intersected(QRect(0, below, width(), height()));
    QFont hintFont = font();
    hintFont.setPixelSize(
        std::min(QFontInfo(hintFont).pixelSize(), qRound(largestHint * caption.font.pixelSize())));
    painter.setFont(hintFont);
    painter.setPen(_isHighlighted() ? caption.color : hintColor);
    constexpr int wrapped = Qt::AlignHCenter | Qt::AlignTop | Qt::TextWordWrap;
    if (place.contains(painter.boundingRect(place, wrapped, _hint))) // else the box is too small
        painter.drawText(place, wrapped, _hint);
}

// Some styles would fill the whole box.
void DropView::_drawFocus(QPainter& painter) const
{
    const QRectF box = QRectF(rect()).adjusted(focusInset, focusInset, -focusInset, -focusInset);
    QColor ring = palette().color(QPalette::Active, QPalette::Highlight);
    while (contrast(ring, bgColor()) < leastContrast) // dark palettes have light ones
        ring = ring.darker(110);
    painter.strokePath(
        BezierPathExtras::bezierPathWithRoundRectInRect(box, focusRadius), QPen(ring, lineWidth));
}

void DropView::drawDashedBoxWithPhase(QPainter& painter, float phase) const
{
    const QRectF box
        = QRectF(rect()).adjusted(outlineInset, outlineInset, -outlineInset, -outlineInset);
    QPen pen(_isHighlighted() ? hfgColor() : fgColor(), lineWidth);
    pen.setCapStyle(Qt::FlatCap);
    // Qt counts dashes in line widths.
    pen.setDashPattern({dashLength / lineWidth, gapLength / lineWidth});
    pen.setDashOffset(phase / lineWidth);
    painter.strokePath(BezierPathExtras::bezierPathWithRoundRectInRect(box, cornerRadius), pen);
}

bool DropView::offersFiles(const QMimeData& pasteboard)
{
    if (!pasteboard.hasFormat(uriListType) && !pasteboard.hasFormat(copiedFilesType))
        return false;
    // Where the data comes with the drop only, the format has to do.
    const UriList::FilePaths found = filesIn(pasteboard);
    return !found.paths.empty() || found.refused.empty();
}

Qt::DropAction DropView::draggingEntered(const QMimeData& pasteboard)
{
    setAnimate(true);
    update();
    _isOffered = offersFiles(pasteboard);
    return _isOffered ? Qt::CopyAction : Qt::IgnoreAction;
}

void DropView::draggingExited()
{
    setAnimate(false);
    update();
}

bool DropView::prepareForDragOperation()
{
    setAnimate(false); // the pass that is due draws the still outline
    return true;
}

bool DropView::performDragOperation(const QMimeData& pasteboard)
{
    UriList::FilePaths found = filesIn(pasteboard);
    if (!acceptDrops() || _keepsFiles) {
        Q_EMIT droppedMeanwhile(found.paths, linesOf(found.refused));
        return false;
    }
    setFiles(std::move(found.paths));
    _leftOut = linesOf(found.refused);
    return true;
}

void DropView::concludeDragOperation()
{
    window()->raise();
    window()->activateWindow();
    QKUtility::afterDelay(dropDelayInSeconds, [view = QPointer(this)] {
        if (view)
            Q_EMIT view->filesDropped();
    });
}

void DropView::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        click();
    else
        QAbstractButton::keyPressEvent(event);
}

// A refused drag is accepted here with no action, or else nothing would tell that it leaves.
void DropView::dragEnterEvent(QDragEnterEvent* event)
{
    if (QApplication::activeModalWidget()) { // Qt hands drags on to windows that dialogs block
        event->ignore();
        return;
    }
    event->setDropAction(draggingEntered(*event->mimeData()));
    event->accept();
}

void DropView::dragMoveEvent(QDragMoveEvent* event)
{
    event->setDropAction(_isOffered ? Qt::CopyAction : Qt::IgnoreAction);
    // Where copying is not offered this falls back to something else, such as moving: the source
    // would delete its files.
    event->setAccepted(_isOffered && event->dropAction() == Qt::CopyAction);
}

void DropView::dragLeaveEvent(QDragLeaveEvent* /*event*/)
{
    draggingExited();
}

void DropView::dropEvent(QDropEvent* event)
{
    event->setDropAction(Qt::CopyAction);
    if (!offersFiles(*event->mimeData()) || event->dropAction() != Qt::CopyAction
        || QApplication::activeModalWidget()) {
        draggingExited();
        event->ignore();
        return;
    }
    event->accept();
    if (prepareForDragOperation() && performDragOperation(*event->mimeData()))
        concludeDragOperation();
}
