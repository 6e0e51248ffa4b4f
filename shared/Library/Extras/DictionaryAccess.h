// Typed values in a dictionary. A float keeps its single precision; a point is a list of two
// doubles, x first; colours and fonts are data as ValueCoding makes it.
#pragma once

#include <QColor>
#include <QFont>
#include <QPointF>
#include <QVariantMap>

namespace DictionaryAccess
{

void setInteger(QVariantMap& dictionary, qint64 value, const QString& forKey);
void setFloat(QVariantMap& dictionary, float value, const QString& forKey);
void setBool(QVariantMap& dictionary, bool value, const QString& forKey);
void setColor(QVariantMap& dictionary, const QColor& color, const QString& forKey);
void setFont(QVariantMap& dictionary, const QFont& font, const QString& forKey);
void setPoint(QVariantMap& dictionary, QPointF point, const QString& forKey);

} // namespace DictionaryAccess
