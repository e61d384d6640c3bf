#include "NaturalOrder.h"

#include <QLocale>

QCollator naturalOrder()
{
    // The "C" locale compares byte by byte and knows neither numbers nor letters.
    const QLocale locale = QLocale().collation();
    QCollator order(locale.language() == QLocale::C ? QLocale(QLocale::English) : locale);
    order.setNumericMode(true);
    order.setCaseSensitivity(Qt::CaseInsensitive);
    return order;
}
