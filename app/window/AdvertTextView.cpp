#include "app/window/AdvertTextView.h"

#include "platform/desktop/services/Workspace.h"
#include "shared/Library/Extras/QKWebsite.h"

#include <QMouseEvent>
#include <QTextCursor>
#include <QWindow>

#include <algorithm>

namespace
{

// What stands where the blurb would be.
constexpr auto missingObject = QLatin1String("(null)");

// Behind it come the program itself and an offer, which the window does not show of its own accord.
constexpr std::int32_t lastInTurn = 21;

constexpr auto betweenNameAndBlurp = QLatin1String(" - ");

} // namespace

AdvertTextView::AdvertTextView(QWidget* parent)
    : QTextBrowser(parent)
{
    setOpenLinks(false);
    setFrameShape(QFrame::NoFrame);
    setLineWrapMode(QTextEdit::NoWrap);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setTextInteractionFlags(Qt::LinksAccessibleByMouse | Qt::LinksAccessibleByKeyboard);
    setFocusPolicy(Qt::TabFocus);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    viewport()->setAutoFillBackground(false);
    document()->setDocumentMargin(0);
    setAccessibleName(tr("About the maker's products"));
    _attributes.setForeground(Qt::black);
    _attributes.setFontUnderline(false);
    connect(this, &QTextBrowser::anchorClicked, this,
        [](const QUrl& address) { Workspace::sharedWorkspace().openURL(address); });
}

void AdvertTextView::setTextAttributes(const QTextCharFormat& attributes)
{
    _attributes = attributes;
    viewport()->update();
}

void AdvertTextView::setShortVersion(bool flag)
{
    _shortVersion = flag;
    viewport()->update();
}

void AdvertTextView::setProductId(std::int32_t productId)
{
    setProductName(QKWebsite::productNameForProductId(productId),
        QKWebsite::productDirForProductId(productId), _blurpForProductId(productId));
    _productId = productId;
    viewport()->update();
}

void AdvertTextView::setProductName(const std::optional<QString>& name,
    const std::optional<QString>& directory, const std::optional<QString>& blurp)
{
    _name = name;
    _directory = directory;
    _behindTheLink = betweenNameAndBlurp + blurp.value_or(missingObject);
    _build(_behindTheLink);
    setAccessibleDescription(toPlainText()); // all of it, also where it is cut
    _fit();
}

void AdvertTextView::_build(const QString& behindTheLink)
{
    clear();
    QTextCursor line(document());
    if (!_shortVersion)
        line.insertText(tr("Brought to you by "), _attributes);
    if (const auto link = _linkStringForProductName(_name, _directory))
        line.insertFragment(*link);
    line.insertText(behindTheLink, _attributes);
    QTextBlockFormat centred;
    centred.setAlignment(Qt::AlignCenter);
    line.setBlockFormat(centred); // last: a fragment at the beginning brings its own
}

// Only where it is seen.
void AdvertTextView::_fit()
{
    if (!isVisible())
        return;
    if (!toolTip().isEmpty())
        _build(_behindTheLink);
    const QString whole = toPlainText();
    const double excess = document()->idealWidth() - viewport()->width();
    setToolTip(excess > 0 ? whole : QString());
    if (excess > 0) {
        const double room = fontMetrics().horizontalAdvance(_behindTheLink) - excess;
        _build(fontMetrics().elidedText(_behindTheLink, Qt::ElideRight, static_cast<int>(room)));
    }
}

void AdvertTextView::changeEvent(QEvent* event)
{
    QTextBrowser::changeEvent(event);
    if (event->type() == QEvent::FontChange)
        _fit();
}

void AdvertTextView::resizeEvent(QResizeEvent* event)
{
    QTextBrowser::resizeEvent(event);
    _fit();
}

void AdvertTextView::showEvent(QShowEvent* event)
{
    QTextBrowser::showEvent(event);
    _fit();
}

std::optional<QTextDocumentFragment> AdvertTextView::_linkStringForProductName(
    const std::optional<QString>& productName, const std::optional<QString>& directory) const
{
    const QUrl address(
        QLatin1String(PARCELO_SITE) + directory.value_or(missingObject) + QLatin1Char('/'),
        QUrl::StrictMode);
    if (!address.isValid())
        return std::nullopt;
    QTextCharFormat link = _attributes;
    link.setAnchor(true);
    link.setAnchorHref(address.toString());
    link.setForeground(Qt::white);
    link.setFontUnderline(false);
    QTextDocument text;
    QTextCursor(&text).insertText(productName.value_or(missingObject), link);
    return QTextDocumentFragment(&text);
}

std::map<std::int32_t, QString> AdvertTextView::_blurps()
{
    return {
        {0, tr("Puts your downloads folder in order")},
        {1, tr("Notes that you find again")},
        {2, tr("Frames and resizes pictures in one go")},
        {3, tr("Sends large files without the fuss")},
        {4, tr("A calm timer for busy days")},
        {20, tr("Weaves your pages into one document")},
        {21, tr("Draws charts from plain tables")},
        {22, tr("Free and easy zip utility")},
        {40, tr("Ready for Ridgeline: everything at half price")},
    };
}

std::optional<QString> AdvertTextView::_blurpForProductId(std::int32_t productId)
{
    const auto blurps = _blurps();
    const auto found = blurps.find(productId);
    return found == blurps.end() ? std::nullopt : std::optional(found->second);
}

// Of the widest of the lines that take turns.
QSize AdvertTextView::sizeHint() const
{
    int widest = 0;
    for (const auto& [productId, blurp] : _blurps()) {
        if (productId > lastInTurn)
            break;
        const QString name = QKWebsite::productNameForProductId(productId).value_or(QString());
        const QString line = name + betweenNameAndBlurp + blurp;
        widest = std::max(widest, fontMetrics().horizontalAdvance(line));
    }
    return {widest + 2, minimumSizeHint().height()};
}

QSize AdvertTextView::minimumSizeHint() const
{
    return {0, fontMetrics().height() + 2};
}

void AdvertTextView::mousePressEvent(QMouseEvent* event)
{
    const bool isOnLink = !anchorAt(event->pos()).isEmpty();
    if (!isOnLink && event->button() == Qt::LeftButton && window()->windowHandle() != nullptr)
        window()->windowHandle()->startSystemMove();
    else
        QTextBrowser::mousePressEvent(event);
}

// Straight to the link: the text around it would be a stop of its own, at which nothing can be
// done.
void AdvertTextView::focusInEvent(QFocusEvent* event)
{
    QTextBrowser::focusInEvent(event);
    if (event->reason() == Qt::TabFocusReason || event->reason() == Qt::BacktabFocusReason)
        QTextBrowser::focusNextPrevChild(event->reason() == Qt::TabFocusReason);
}

// The one link has the focus already.
bool AdvertTextView::focusNextPrevChild(bool next)
{
    return QTextEdit::focusNextPrevChild(next); // NOLINT(bugprone-parent-virtual-call)
}
