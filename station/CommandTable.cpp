#include "CommandTable.h"

#include "RequestMap.h"
#include "StationLog.h"
#include "StationVocabulary.h"
#include "nas/PasswordVault.h"
#include "store/Database.h"

void answerFailures(const QString &command, const Answer &answer, const std::function<void()> &work)
{
    try {
        work();
    } catch (const BadRequest &error) {
        qCInfo(stationLog, "%s: %s", qPrintable(command), error.what());
        answer(lastPart(StationReturnCode::BadRequest));
    } catch (const DatabaseError &error) {
        qCInfo(stationLog, "%s: %s", qPrintable(command), error.what());
        answer(lastPart(returnCodeOf(error.trouble())));
    } catch (const VaultError &error) {
        qCWarning(stationLog, "%s: %s", qPrintable(command), error.what());
        answer(lastPart(StationReturnCode::NasKeyUnusable));
    } catch (...) {
        answer(lastPart(StationReturnCode::InternalError));
    }
}

bool isMeant(const QString &relayPath, const QString &own, const Answer &answer)
{
    if (relayPath.isEmpty() || relayPath == own)
        return true;
    answer(lastPart(StationReturnCode::UnknownStation));
    return false;
}
