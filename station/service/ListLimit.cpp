#include "ListLimit.h"

#include "StationVocabulary.h"

int readLimit(const RequestMap &request)
{
    constexpr int usual = 100;
    constexpr qint64 most = 1000;
    if (!request.contains(StationKey::limit))
        return usual;
    const qint64 limit = request.integer(StationKey::limit);
    if (limit < 1 || limit > most)
        throw BadRequest(QStringLiteral("\"%1\" has to be 1 to %2").arg(StationKey::limit).arg(most));
    return static_cast<int>(limit);
}
