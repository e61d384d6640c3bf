#pragma once

#include "HistoryStore.h"

#include <QVariantMap>

/// What @p data, that of "station.readHistory", asks for. Throws BadRequest.
/// @param now seconds since 1970
HistoryQuery historyQuery(const QVariant &data, qint64 now);

/// @p page as the command answers it.
QVariantMap historyMap(const HistoryPage &page);
