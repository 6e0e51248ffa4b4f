#include "shared/Library/Extras/DictionaryAccess.h"

#include "shared/Library/Extras/ValueCoding.h"

void DictionaryAccess::setInteger(QVariantMap& dictionary, qint64 value, const QString& forKey)
{
    dictionary.insert(forKey, value);
}

void DictionaryAccess::setFloat(QVariantMap& dictionary, float value, const QString& forKey)
{
    dictionary.insert(forKey, value);
}

void DictionaryAccess::setBool(QVariantMap& dictionary, bool value, const QString& forKey)
{
    dictionary.insert(forKey, value);
}

void DictionaryAccess::setColor(QVariantMap& dictionary, const QColor& color, const QString& forKey)
{
    dictionary.insert(forKey, ValueCoding::dataOf(color));
}

void DictionaryAccess::setFont(QVariantMap& dictionary, const QFont& font, const QString& forKey)
{
    dictionary.insert(forKey, ValueCoding::dataOf(font));
}

void DictionaryAccess::setPoint(QVariantMap& dictionary, QPointF point, const QString& forKey)
{
    dictionary.insert(forKey, QVariantList{point.x(), point.y()});
}
