#include "platform/desktop/panels/SavePanel.h"

#include "platform/desktop/panels/OpenPanel.h"
#include "platform/desktop/panels/PlainLabel.h"
#include "platform/desktop/panels/Sheets.h"
#include "platform/desktop/services/SizeText.h"

#include <QAccessible>
#include <QApplication>
#include <QDateTime>
#include <QDir>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QPushButton>

#include <algorithm>
#include <utility>

using SaveCheck::Obstacle;
using SaveCheck::Oddity;

namespace
{

// Room for most messages, so that the sheet keeps its size while a name is typed.
constexpr auto tallMessage = QLatin1String("\n");

// Longer names lose their middle on the button; in messages they take a line.
constexpr int longestNameInCharacters = 24;

constexpr int columnSpacing = 8; // as in accessory views
constexpr int rowSpacing = 8;

bool isSameFormer(const std::optional<FileStatus>& shown, const std::optional<FileStatus>& now)
{
    return !now
        || (shown && isSameFile(*shown, *now) && shown->st_size == now->st_size
            && isSameTime(shown->st_mtim, now->st_mtim));
}

// Control characters by their pictures.
QString shownCharacter(char character)
{
    constexpr char16_t pictures = 0x2400;
    constexpr char firstPrintable = 0x20;
    constexpr char del = 0x7F;
    if (character == del)
        return QStringLiteral("\u2421");
    return character < firstPrintable ? QString(QChar(static_cast<char16_t>(pictures + character)))
                                      : QString(QLatin1Char(character));
}

QPushButton* makeButton(const QString& text, const QString& objectName, QWidget* parent)
{
    auto* button = new QPushButton(text, parent);
    button->setObjectName(objectName);
    button->setAutoDefault(false); // the framed button is the one that Return presses
    return button;
}

} // namespace

SavePanel::SavePanel(QWidget* parent)
    : QDialog(parent)
    , _nameLabel(new QLabel(tr("&Name:"), this))
    , _folderLabel(new QLabel(tr("&Folder:"), this))
    , _nameField(new QLineEdit(this))
    , _extensionLabel(new QLabel(this))
    , _folderMenu(new FolderMenu(this))
    , _messageIcon(new QLabel(this))
    , _messageLabel(PlainLabel::make({}, QStringLiteral("messageLabel"), this))
    , _nextFreeButton(makeButton({}, QStringLiteral("nextFreeButton"), this))
    , _cancelButton(makeButton(tr("&Cancel"), QStringLiteral("cancelButton"), this))
    , _confirmButton(makeButton({}, QStringLiteral("confirmButton"), this))
{
    setWindowTitle(tr("Save Archive"));
    _nameField->setObjectName(QStringLiteral("fileNameEdit"));
    _nameLabel->setBuddy(_nameField);
    _folderMenu->setObjectName(QStringLiteral("folderMenu"));
    _folderLabel->setBuddy(_folderMenu);
    _confirmButton->setDefault(true);
    _layOut();
    setFolders({});
    _connect();
    _folderMenu->selectFolder(QDir::homePath().toStdString());
}

void SavePanel::_layOut()
{
    _messageIcon->setAlignment(Qt::AlignTop);
    _messageLabel->setAlignment(Qt::AlignTop | Qt::AlignLeft);
    _messageLabel->setText(tallMessage);
    _messageLabel->setMinimumHeight(_messageLabel->sizeHint().height());
    // As wide as the sheet is without it.
    QSizePolicy takesWhatIsThere(QSizePolicy::Ignored, QSizePolicy::Preferred);
    takesWhatIsThere.setHeightForWidth(true);
    _messageLabel->setSizePolicy(takesWhatIsThere);
    auto* messageRow = new QHBoxLayout;
    messageRow->addWidget(_messageIcon);
    messageRow->addWidget(_messageLabel, 1);

    auto* buttonRow = new QHBoxLayout;
    buttonRow->addWidget(_nextFreeButton);
    buttonRow->addStretch(1);
    buttonRow->addWidget(_cancelButton);
    buttonRow->addWidget(_confirmButton);

    _grid = new QGridLayout;
    _grid->setHorizontalSpacing(columnSpacing);
    _grid->setVerticalSpacing(rowSpacing);
    _grid->addWidget(_nameLabel, 0, 0);
    _grid->addWidget(_nameField, 0, 1);
    _grid->addWidget(_extensionLabel, 0, 2);
    _grid->addWidget(_folderLabel, 1, 0);
    _grid->addWidget(_folderMenu, 1, 1, 1, 2);
    _grid->setColumnStretch(1, 1);

    auto* rows = new QVBoxLayout(this);
    rows->setSizeConstraint(QLayout::SetFixedSize);
    rows->addLayout(_grid);
    rows->addLayout(messageRow);
    rows->addLayout(buttonRow);
}

void SavePanel::_connect()
{
    connect(_nameField, &QLineEdit::textChanged, this, &SavePanel::_look);
    connect(_folderMenu, &FolderMenu::folderChanged, this, &SavePanel::_look);
    connect(_folderMenu, &FolderMenu::otherWanted, this, &SavePanel::_chooseFolder);
    connect(_nextFreeButton, &QPushButton::clicked, this, [this] {
        setNameFieldStringValue(QString::fromStdString(SaveCheck::nextFreeStem(
            _folderMenu->folder(), _stem().toStdString(), _extension.toStdString())));
    });
    connect(_cancelButton, &QPushButton::clicked, this, &QDialog::reject);
    connect(_confirmButton, &QPushButton::clicked, this, &QDialog::accept);
    connect(this, &QDialog::finished, this, [this](int result) {
        if (const auto handler = std::exchange(_completionHandler, {}))
            handler(result == QDialog::Accepted ? answerOK : answerCancel, _path);
    });
}

void SavePanel::setPrompt(const QString& title)
{
    _confirmButton->setText(title);
}

void SavePanel::setAllowedFileType(const QString& extension)
{
    _allowedFileType = extension;
    setFinalExtension(QLatin1Char('.') + extension);
}

void SavePanel::setFinalExtension(const QString& extension)
{
    _extension = extension;
    _look();
}

// Between the folder and what is told of both.
void SavePanel::setAccessoryView(QWidget* view)
{
    auto* rows = qobject_cast<QVBoxLayout*>(layout());
    rows->insertWidget(1, view);
    view->show();
    _accessoryView = view;
    QWidget* last = _folderMenu;
    for (auto* control : view->findChildren<QWidget*>())
        if ((control->focusPolicy() & Qt::TabFocus) != 0 && control->window() == window())
            setTabOrder(std::exchange(last, control), control);
    for (QPushButton* button : {_nextFreeButton, _cancelButton, _confirmButton})
        setTabOrder(std::exchange(last, button), button);
}

// Our labels and the accessory view's are one column.
void SavePanel::_align()
{
    auto* accessory
        = qobject_cast<QGridLayout*>(_accessoryView ? _accessoryView->layout() : nullptr);
    if (accessory == nullptr)
        return;
    int width = std::max(_nameLabel->sizeHint().width(), _folderLabel->sizeHint().width());
    for (int row = 0; row < accessory->rowCount(); ++row)
        if (const QLayoutItem* label = accessory->itemAtPosition(row, 0))
            width = std::max(width, label->sizeHint().width());
    for (QGridLayout* grid : {_grid, accessory})
        grid->setColumnMinimumWidth(0, width);
}

void SavePanel::setNameFieldStringValue(const QString& name)
{
    _nameField->setText(name);
    _nameField->selectAll();
    _nameField->setFocus();
}

void SavePanel::setFolders(const std::vector<FolderMenu::Folder>& folders)
{
    _folderMenu->setFolders(folders);
}

void SavePanel::setDirectoryURL(const std::filesystem::path& folder)
{
    _folderMenu->selectFolder(folder);
}

void SavePanel::beginSheetModalForWindow(QWidget* window, CompletionHandler completionHandler)
{
    _completionHandler = std::move(completionHandler);
    _align();
    layout()->activate(); // what is told fits the width
    _look();
    Sheets::begin(this, window);
}

void SavePanel::_chooseFolder()
{
    OpenPanel::beginForFolder(this, _folderMenu->folder(), [this](const auto& paths) {
        if (!paths.empty())
            _folderMenu->selectFolder(paths.front());
    });
}

// What is typed counts with the extension or without.
QString SavePanel::_stem() const
{
    QString name = _nameField->text();
    for (const QString& end : {_extension, QLatin1Char('.') + _allowedFileType})
        if (name.endsWith(end, Qt::CaseInsensitive))
            return name.chopped(end.size());
    return name;
}

void SavePanel::_look()
{
    const QString stem = _stem();
    _finding = SaveCheck::look(_folderMenu->folder(), stem.toStdString(), _extension.toStdString());
    _extensionLabel->setText(stem == _nameField->text() ? _extension : QString());
    _confirmButton->setEnabled(_finding.obstacle == Obstacle::none);
    _show(_messages());
}

void SavePanel::_show(const QStringList& messages)
{
    const bool isGrave = _finding.obstacle != Obstacle::none || _finding.former;
    const QStyle::StandardPixmap icon
        = isGrave ? QStyle::SP_MessageBoxWarning : QStyle::SP_MessageBoxInformation;
    _messageIcon->setPixmap(messages.isEmpty()
            ? QPixmap()
            : style()->standardIcon(icon).pixmap(fontMetrics().lineSpacing()));
    const QString text = messages.join(QLatin1Char('\n'));
    _nameField->setAccessibleDescription(text);

    _nextFreeButton->setVisible(_finding.former.has_value());
    if (_finding.former) {
        const QString next = QString::fromStdString(SaveCheck::nextFreeStem(
            _folderMenu->folder(), _stem().toStdString(), _extension.toStdString()));
        _nextFreeButton->setText(
            tr("&Use “%1”")
                .arg(_shortened(next, longestNameInCharacters * fontMetrics().averageCharWidth())
                         .replace(QLatin1Char('&'), QLatin1String("&&"))));
        _nextFreeButton->setToolTip(next + _extension);
    }
    if (text == _messageLabel->text())
        return;
    _messageLabel->setText(text);
    QAccessibleEvent announcement(_messageLabel, QAccessible::Alert);
    QAccessible::updateAccessibility(&announcement);
}

QStringList SavePanel::_messages() const
{
    const int iconAndQuotes = 3 * fontMetrics().height(); // the icon may be yet to come
    const QString file = _shortened(_stem() + _extension, _messageLabel->width() - iconAndQuotes);
    switch (_finding.obstacle) {
    case Obstacle::none:
        break;
    case Obstacle::noFolder:
        return {tr("This folder cannot be found. Choose another one.")};
    case Obstacle::folderIsReadOnly:
        return {tr("You cannot save in this folder. Choose another one.")};
    case Obstacle::noName:
        return {};
    case Obstacle::isPath:
        return {tr("A name cannot contain a slash.")};
    case Obstacle::dots:
        return {tr("This cannot be a name.")};
    case Obstacle::tooLong:
        return {tr("This name is too long.")};
    case Obstacle::isFolder:
        return {tr("There is a folder named “%1”.").arg(file)};
    }
    QStringList messages;
    if (const auto& former = _finding.former) {
        const auto modified = QDateTime::fromSecsSinceEpoch(former->st_mtim.tv_sec);
        messages.append(tr("“%1” exists and will be replaced (%2, %3).")
                            .arg(file, SizeText::of(static_cast<double>(former->st_size)),
                                QLocale().toString(modified, QLocale::ShortFormat)));
    }
    switch (_finding.oddity) {
    case Oddity::none:
        break;
    case Oddity::hidden:
        messages.append(tr("Names that begin with a dot are hidden."));
        break;
    case Oddity::refusedCharacter:
        messages.append(
            tr("Some systems refuse names with “%1”.").arg(shownCharacter(_finding.refused)));
        break;
    case Oddity::refusedName:
        messages.append(tr("Windows refuses this name."));
        break;
    case Oddity::spaceAtEdge:
        messages.append(tr("This name begins or ends with a space."));
        break;
    }
    return messages;
}

QString SavePanel::_shortened(const QString& name, int width) const
{
    return fontMetrics().elidedText(name, Qt::ElideMiddle, width);
}

void SavePanel::changeEvent(QEvent* event)
{
    QDialog::changeEvent(event);
    if (event->type() == QEvent::ActivationChange && isActiveWindow())
        _look(); // others may have been at work there
}

// Nothing is replaced that was not told of.
void SavePanel::accept()
{
    const std::optional<FileStatus> shown = _finding.former;
    _look();
    if (_finding.obstacle != Obstacle::none || !isSameFormer(shown, _finding.former)) {
        QApplication::beep();
        return;
    }
    const QString file = _stem() + QLatin1Char('.') + _allowedFileType;
    _path = _folderMenu->folder() / file.toStdString();
    QDialog::accept();
}
