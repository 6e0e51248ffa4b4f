#include "shared/Library/Extras/ValueCoding.h"

#include <QDataStream>
#include <QIODevice>

namespace
{

constexpr auto version = QDataStream::Qt_6_0;
const QString colorWord = QStringLiteral("color");
const QString fontWord = QStringLiteral("font");

template <typename Value> QByteArray archived(const QString& word, const Value& value)
{
    QByteArray data;
    QDataStream stream(&data, QIODevice::WriteOnly);
    stream.setVersion(version);
    stream << word << value;
    return data;
}

template <typename Value> Value unarchived(const QString& word, const QVariant& data)
{
    QDataStream stream(data.typeId() == QMetaType::QByteArray ? data.toByteArray() : QByteArray());
    stream.setVersion(version);
    QString found;
    stream >> found;
    Value value;
    if (found == word)
        stream >> value;
    if (found != word || stream.status() != QDataStream::Ok || !stream.atEnd())
        throw UnarchivingFailure("the data holds no " + word.toStdString());
    return value;
}

// Whether the number of families in a font's data is one that its size allows: QDataStream makes
// room for all of them before it finds that they are missing.
bool hasFamilies(const QByteArray& data)
{
    constexpr int sizeOfNumbers = 31; // between the texts and the families
    QDataStream stream(data);
    stream.setVersion(version);
    QString text;
    stream >> text >> text >> text; // our word, the family and the style
    (void)stream.skipRawData(sizeOfNumbers);
    quint32 count = 0;
    stream >> count;
    return count <= data.size() / sizeof count;
}

} // namespace

QByteArray ValueCoding::dataOf(const QColor& color)
{
    return archived(colorWord, color);
}

QByteArray ValueCoding::dataOf(const QFont& font)
{
    return archived(fontWord, font);
}

QColor ValueCoding::colorOf(const QVariant& data)
{
    return unarchived<QColor>(colorWord, data);
}

QFont ValueCoding::fontOf(const QVariant& data)
{
    if (!hasFamilies(data.toByteArray()))
        throw UnarchivingFailure("the data of the font is damaged");
    return unarchived<QFont>(fontWord, data);
}
