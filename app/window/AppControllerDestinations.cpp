// The destination menu: beside the source, by e-mail, or one of the folders that were chosen
// before.

#include "app/window/AppController.h"
#include "app/window/Destinations.h"
#include "app/window/DropView.h"
#include "app/window/RequestSettings.h"
#include "platform/desktop/panels/OpenPanel.h"
#include "platform/desktop/services/PathText.h"
#include "platform/desktop/settings/UserDefaults.h"
#include "shared/Library/Extras/PopUpButtonExtras.h"
#include "shared/Library/Extras/QKWindow.h"
#include "system/PathString.h"

#include <QDir>

#include <algorithm>

using PopUpButtonExtras::addItemWithTitle;

namespace
{

const QString destinationsKey = QStringLiteral("Destinations");
const QString selectedDestinationKey = QStringLiteral("SelectedDestination");

QStringList storedDestinations()
{
    return UserDefaults::standardUserDefaults()
        .stringArrayForKey(destinationsKey)
        .value_or(QStringList());
}

void storeDestinations(const QStringList& folders)
{
    UserDefaults::standardUserDefaults().setObject(folders, destinationsKey);
}

// By position alone, which is intended: with folders in the menu the first has none and the second
// has "3".
void giveKeyEquivalents(PopUpButton& menu)
{
    constexpr int firstOfFolders = 3;
    constexpr int fewestItems = 7;
    constexpr int lastDigit = 9;
    menu.setKeyEquivalentAtIndex(0, QStringLiteral("1"));
    menu.setKeyEquivalentAtIndex(1, QStringLiteral("2"));
    if (menu.numberOfItems() < fewestItems)
        return;
    const int last = std::min(menu.numberOfItems() - 4, lastDigit);
    for (int index = firstOfFolders; index <= last; ++index)
        menu.setKeyEquivalentAtIndex(index, QString::number(index));
}

} // namespace

void AppController::setupDestinations()
{
    const QStringList folders
        = Destinations::removeDuplicatesAndAbbreviateWithTilde(storedDestinations());
    if (folders != storedDestinations())
        return storeDestinations(folders); // which calls this again

    PopUpButton& menu = *_interface.destinationPop;
    const bool keepsFirst = menu.numberOfItems() > 0 && menu.itemAtIndex(0).submenu != nullptr;
    while (menu.numberOfItems() > (keepsFirst ? 1 : 0))
        menu.removeItemAtIndex(menu.numberOfItems() - 1);

    addItemWithTitle(menu, tr("Same as source"), DestinationTagSameAsSource);
    addItemWithTitle(menu, tr("Email"), DestinationTagEmail);
    addItemWithTitle(menu, QString(), this, "dummy");
    int tag = DestinationTagFirstFolder;
    for (const QString& folder : folders)
        addItemWithTitle(menu, PathText::abbreviatedWithTilde(folder), tag++);
    if (!folders.isEmpty())
        addItemWithTitle(menu, QString(), this, "dummy"); // takes the place of the first blank
    addItemWithTitle(menu, tr("Remove Selected Entry"), this, "removeDestination");
    addItemWithTitle(menu, tr("Choose a Folder ..."), this, "addDestination");

    menu.selectItemWithTag(selectedDestination());
    menu.sizeToFit();
    giveKeyEquivalents(menu);
}

// Whoever changes the settings, be it another program of ours: the controls show what they hold.
void AppController::_followSettings()
{
    connect(&UserDefaults::standardUserDefaults(), &UserDefaults::didChange, this,
        [this](const QString& key) {
            if (key == destinationsKey) {
                setupDestinations();
            } else if (key == selectedDestinationKey) {
                Q_EMIT selectedDestinationChanged();
                Q_EMIT previewTextChanged();
            } else if (key == QLatin1String("ArchiveType")) {
                Q_EMIT archiveTypeChanged();
                Q_EMIT previewTextChanged();
            }
        });
}

int AppController::selectedDestination() const
{
    return RequestSettings::selectedDestination();
}

void AppController::setSelectedDestination(int tag)
{
    UserDefaults::standardUserDefaults().setInteger(tag, selectedDestinationKey);
}

std::optional<AppController::Path> AppController::destinationDirectory()
{
    switch (selectedDestination()) {
    case DestinationTagEmail:
        return tmpFolder();
    case DestinationTagSameAsSource:
        return _interface.saveDropView->folder();
    default:
        return RequestSettings::rememberedFolder();
    }
}

std::vector<FolderMenu::Folder> AppController::foldersToSaveIn()
{
    std::vector<FolderMenu::Folder> folders;
    if (const auto source = _interface.saveDropView->folder())
        folders.push_back({tr("Same as source: %1")
                               .arg(PathText::abbreviatedWithTilde(PathText::textOf(*source))),
            *source});
    for (const QString& folder : storedDestinations())
        folders.push_back({folder, PathString::stringByExpandingTildeInPath(folder.toStdString())});
    return folders;
}

QString AppController::_destinationDirectoryText()
{
    return PathText::textOf(destinationDirectory().value_or(Path()));
}

void AppController::addDestination(QObject* /*sender*/)
{
    OpenPanel::beginForFolder(
        _interface.mainWindow, PathText::pathOf(QDir::homePath()), [this](const auto& paths) {
            if (paths.empty()) {
                _interface.destinationPop->selectItemWithTag(selectedDestination());
                return;
            }
            _afterDelay(
                0, [this, path = PathText::textOf(paths.front())] { addDestinationPath(path); });
        });
}

// A folder that is in the list already moves to its top: the menu, which follows what is stored,
// takes the second mention out.
void AppController::addDestinationPath(const QString& path)
{
    UserDefaults::standardUserDefaults().synchronize(); // another program may have added one
    QStringList folders = storedDestinations();
    folders.prepend(PathText::abbreviatedWithTilde(path));
    storeDestinations(folders);
    setSelectedDestination(DestinationTagFirstFolder);
}

void AppController::removeDestination(QObject* /*sender*/)
{
    const int tag = selectedDestination();
    const int index = std::max(tag, int{DestinationTagSameAsSource}) - DestinationTagFirstFolder;
    if (index < 0 || index >= storedDestinations().size())
        return;
    const QString folder = storedDestinations().at(index);
    UserDefaults::standardUserDefaults().synchronize(); // another program may have moved it
    QStringList folders = storedDestinations();
    folders.removeOne(folder);
    storeDestinations(folders);
    setSelectedDestination(DestinationTagSameAsSource);
}

bool AppController::validateMenuItem(const PopUpMenuItem& item) const
{
    if (item.action == "removeDestination") // a negative tag counts as a large one
        return static_cast<std::uint32_t>(selectedDestination()) > DestinationTagEmail;
    return !item.title.isEmpty();
}
