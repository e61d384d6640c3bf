#include "TableOrder.h"

QCollator tableOrder()
{
    QCollator collator(QLocale(QLocale::English)); // that of "C" knows no numbers
    collator.setNumericMode(true);
    return collator;
}
