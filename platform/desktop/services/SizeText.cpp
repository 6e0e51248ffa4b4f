#include "platform/desktop/services/SizeText.h"

#include <QLocale>

#include <cmath>

QString SizeText::of(double bytes)
{
    double value = bytes;
    while (value >= 999.5)
        value /= 1000;
    return QLocale().formattedDataSize(
        std::llround(bytes), value < 9.95 ? 1 : 0, QLocale::DataSizeSIFormat);
}
