#include "shared/Library/Extras/UserDefaultsExtras.h"

#include "platform/base/bundle/Bundle.h"
#include "platform/base/bundle/PropertyList.h"
#include "shared/Library/Extras/ValueCoding.h"
#include "system/ReferenceDate.h"
#include "system/TextNumber.h"

#include <chrono>
#include <stdexcept>

namespace
{

const QDateTime referenceDate = QDateTime::fromSecsSinceEpoch(referenceDateInUnixSeconds, Qt::UTC);

// Makes of each kind of value what Qt has for it.
struct VariantMaker {
    QVariant operator()(bool value) const { return value; }
    QVariant operator()(std::int64_t value) const { return qint64{value}; }
    QVariant operator()(double value) const { return value; }
    QVariant operator()(const std::string& value) const { return QString::fromStdString(value); }
    QVariant operator()(const PropertyList::Data& value) const
    {
        return QByteArray::fromStdString(value.bytes);
    }
    QVariant operator()(PropertyList::Date value) const
    {
        const auto since1970 = std::chrono::floor<std::chrono::milliseconds>(value);
        return QDateTime::fromMSecsSinceEpoch(since1970.time_since_epoch().count(), Qt::UTC);
    }
    QVariant operator()(const PropertyList::Array& array) const
    {
        QVariantList list;
        for (const PropertyList::Value& value : array)
            list.append(std::visit(*this, value));
        return list;
    }
    QVariant operator()(const PropertyList::Dictionary& dictionary) const
    {
        QVariantMap map;
        for (const auto& [key, value] : dictionary)
            map.insert(QString::fromStdString(key), std::visit(*this, value));
        return map;
    }
};

float floatValueOf(const QVariant& element)
{
    if (element.typeId() == QMetaType::QString)
        return static_cast<float>(TextNumber::doubleValue(element.toString().toStdString()));
    return element.toFloat();
}

} // namespace

void UserDefaultsExtras::registerDefaultsWithResource(
    UserDefaults& defaults, const QString& resource)
{
    const auto path = Bundle::main().pathForResource(resource.toStdString(), "plist");
    const auto dictionary = path ? PropertyList::dictionaryWithContentsOfFile(*path) : std::nullopt;
    if (dictionary)
        defaults.registerDefaults(VariantMaker()(*dictionary).toMap());
}

QString UserDefaultsExtras::stringForKey(
    const UserDefaults& defaults, const QString& key, const QString& defaultString)
{
    return defaults.stringForKey(key).value_or(defaultString);
}

void UserDefaultsExtras::setColor(
    UserDefaults& defaults, const QColor& color, const QString& forKey)
{
    defaults.setObject(ValueCoding::dataOf(color), forKey);
}

std::optional<QColor> UserDefaultsExtras::colorForKey(
    const UserDefaults& defaults, const QString& key)
{
    const QVariant object = defaults.objectForKey(key);
    return object.isValid() ? std::optional(ValueCoding::colorOf(object)) : std::nullopt;
}

void UserDefaultsExtras::setFont(UserDefaults& defaults, const QFont& font, const QString& forKey)
{
    defaults.setObject(ValueCoding::dataOf(font), forKey);
}

std::optional<QFont> UserDefaultsExtras::fontForKey(
    const UserDefaults& defaults, const QString& key)
{
    const QVariant object = defaults.objectForKey(key);
    return object.isValid() ? std::optional(ValueCoding::fontOf(object)) : std::nullopt;
}

void UserDefaultsExtras::setPoint(UserDefaults& defaults, QPointF point, const QString& forKey)
{
    const auto x = static_cast<float>(point.x());
    const auto y = static_cast<float>(point.y());
    defaults.setObject(QVariantList{x, y}, forKey);
}

QPointF UserDefaultsExtras::pointForKey(const UserDefaults& defaults, const QString& key)
{
    const auto list = defaults.arrayForKey(key);
    if (!list)
        return {};
    if (list->size() < 2)
        throw std::out_of_range("a point has two numbers");
    return {floatValueOf(list->at(0)), floatValueOf(list->at(1))};
}

void UserDefaultsExtras::setDate(
    UserDefaults& defaults, const QDateTime& date, const QString& forKey)
{
    defaults.setInteger(referenceDate.msecsTo(date) / 1000, forKey);
}

std::optional<QDateTime> UserDefaultsExtras::dateForKey(
    const UserDefaults& defaults, const QString& key)
{
    // Single precision is meant: see the header.
    const auto seconds = static_cast<float>(defaults.integerForKey(key));
    if (seconds <= 0)
        return std::nullopt;
    return referenceDate.addSecs(TextNumber::truncated(seconds));
}

int UserDefaultsExtras::incrementIntegerForKey(UserDefaults& defaults, const QString& key)
{
    defaults.synchronize(); // another program counts on too
    const auto number = static_cast<std::uint32_t>(defaults.integerForKey(key));
    const auto next = static_cast<std::int32_t>(number + 1);
    defaults.setInteger(next, key);
    return next;
}
