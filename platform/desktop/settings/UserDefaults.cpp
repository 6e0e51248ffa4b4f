// QSettings locks the file, merges what other processes have written, and replaces it at once. But
// in an INI file it turns an empty list to an invalid value and a list of one to its element. So a
// list is stored with a "[" in front and a "]" behind: it never has fewer than two elements, and no
// text is mistaken for it.

#include "platform/desktop/settings/UserDefaults.h"

#include "platform/desktop/services/PathText.h"
#include "system/TextNumber.h"

#include <QEvent>
#include <QLocale>
#include <QMutexLocker>
#include <QSettings>
#include <QStandardPaths>

#include <algorithm>
#include <array>
#include <string>
#include <utility>

#include <sys/stat.h>

namespace fs = std::filesystem;

namespace
{

const QString listStart = QStringLiteral("[");
const QString listEnd = QStringLiteral("]");

// Does not write by itself when the event loop gets to it, which could be while another thread
// reads: we call sync().
class SettingsFile : public QSettings
{
public:
    using QSettings::QSettings;

protected:
    bool event(QEvent* event) override
    {
        return event->type() == QEvent::UpdateRequest || QSettings::event(event);
    }
};

bool isList(const QVariant& object)
{
    return object.typeId() == QMetaType::QVariantList || object.typeId() == QMetaType::QStringList;
}

bool isBoolOrNumber(const QVariant& object)
{
    constexpr std::array types{QMetaType::Bool, QMetaType::Int, QMetaType::UInt,
        QMetaType::LongLong, QMetaType::ULongLong, QMetaType::Float, QMetaType::Double};
    return std::ranges::find(types, object.typeId()) != types.end();
}

bool isReal(const QVariant& object)
{
    return object.typeId() == QMetaType::Double || object.typeId() == QMetaType::Float;
}

// Exact, with a point in every language.
QString textOf(const QVariant& scalar)
{
    return isReal(scalar) ? QString::number(scalar.toDouble(), 'g', QLocale::FloatingPointShortest)
                          : scalar.toString();
}

QVariant storedForm(const QVariant& object)
{
    if (isBoolOrNumber(object))
        return textOf(object);
    if (!isList(object))
        return object;
    QStringList list{listStart};
    for (const QVariant& element : object.toList())
        list.append(textOf(element));
    return list << listEnd;
}

QVariant objectOfStoredForm(const QVariant& stored)
{
    if (!isList(stored))
        return stored;
    QVariantList list = stored.toList();
    if (list.size() < 2 || list.first() != listStart || list.last() != listEnd)
        return list; // written by hand
    return list.mid(1, list.size() - 2);
}

std::unique_ptr<UserDefaults>& standard()
{
    static std::unique_ptr<UserDefaults> defaults;
    return defaults;
}

} // namespace

UserDefaults::UserDefaults(fs::path file)
    : _path(std::move(file))
    , _file(std::make_unique<SettingsFile>(PathText::textOf(_path), QSettings::IniFormat))
    , _objects(_read())
{
}

UserDefaults::~UserDefaults() = default;

UserDefaults& UserDefaults::standardUserDefaults()
{
    static QMutex making; // of the one object, when several threads ask for it first
    const QMutexLocker lock(&making);
    if (!standard()) {
        const QString folder
            = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
        standard()
            = std::make_unique<UserDefaults>(PathText::pathOf(folder) / "parcelo" / "parcelo.conf");
    }
    return *standard();
}

void UserDefaults::setStandardUserDefaults(std::unique_ptr<UserDefaults> defaults)
{
    standard() = std::move(defaults);
}

QVariantMap UserDefaults::_read() const
{
    QVariantMap objects = _fallbacks;
    for (const QString& key : _file->allKeys())
        if (const QVariant stored = _file->value(key); stored.isValid())
            objects.insert(key, objectOfStoredForm(stored));
    objects.remove(QString()); // only a broken file has such a key
    return objects;
}

// Makes a change while the mutex is locked, and then tells which keys read differently.
template <typename Change> void UserDefaults::_change(Change change)
{
    QMutexLocker lock(&_mutex);
    change();
    const QVariantMap before = std::exchange(_objects, _read());
    const QVariantMap after = _objects;
    lock.unlock();

    QVariantMap either = before;
    either.insert(after);
    for (const QString& key : either.keys())
        if (before.value(key) != after.value(key))
            Q_EMIT didChange(key);
}

void UserDefaults::_write()
{
    std::error_code unmakeable; // then QSettings cannot write either
    fs::create_directories(_path.parent_path().parent_path(), unmakeable);
    ::mkdir(_path.parent_path().c_str(), S_IRWXU);
    _file->sync();
}

void UserDefaults::registerDefaults(const QVariantMap& fallbacks)
{
    _change([&] { _fallbacks.insert(fallbacks); });
}

QVariant UserDefaults::objectForKey(const QString& key) const
{
    const QMutexLocker lock(&_mutex);
    return _objects.value(key);
}

std::optional<QString> UserDefaults::stringForKey(const QString& key) const
{
    const QVariant object = objectForKey(key);
    const bool hasText = object.typeId() == QMetaType::QString || isBoolOrNumber(object);
    return hasText ? std::optional(textOf(object)) : std::nullopt;
}

bool UserDefaults::boolForKey(const QString& key) const
{
    const QVariant object = objectForKey(key);
    if (object.typeId() == QMetaType::QString)
        return TextNumber::boolValue(object.toString().toStdString());
    return isBoolOrNumber(object) && object.toBool();
}

qint64 UserDefaults::integerForKey(const QString& key) const
{
    const QVariant object = objectForKey(key);
    if (object.typeId() == QMetaType::QString) {
        const std::string text = object.toString().toStdString();
        return text == "true" ? 1 : TextNumber::integerValue(text); // as a boolean is stored
    }
    if (isReal(object))
        return TextNumber::truncated(object.toDouble());
    return isBoolOrNumber(object) ? object.toLongLong() : 0;
}

std::optional<QVariantList> UserDefaults::arrayForKey(const QString& key) const
{
    const QVariant object = objectForKey(key);
    return isList(object) ? std::optional(object.toList()) : std::nullopt;
}

std::optional<QStringList> UserDefaults::stringArrayForKey(const QString& key) const
{
    const auto list = arrayForKey(key);
    const auto isText
        = [](const QVariant& element) { return element.typeId() == QMetaType::QString; };
    if (!list || !std::ranges::all_of(*list, isText))
        return std::nullopt;
    return QVariant(*list).toStringList();
}

void UserDefaults::setObjects(const QVariantMap& objects)
{
    _change([&] {
        for (auto each = objects.begin(); each != objects.end(); ++each)
            if (each.value().isValid())
                _file->setValue(each.key(), storedForm(each.value()));
            else
                _file->remove(each.key());
        _write();
    });
}

void UserDefaults::setObject(const QVariant& object, const QString& forKey)
{
    setObjects({{forKey, object}});
}

void UserDefaults::setBool(bool value, const QString& forKey)
{
    setObject(value, forKey);
}

void UserDefaults::setInteger(qint64 value, const QString& forKey)
{
    setObject(value, forKey);
}

void UserDefaults::synchronize()
{
    _change([&] { _write(); });
}
