#include "Edits.h"

#include "StationLog.h"
#include "StationVocabulary.h"
#include "store/DatabaseError.h"

#include <utility>

namespace {
/// A database that cannot be read now is met again when the outcome is to be kept.
bool giveKept(Edit &edit)
{
    try {
        return edit.giveKept();
    } catch (const DatabaseError &error) {
        qCInfo(stationLog, "%s: %s", qPrintable(edit.command().name), error.what());
        return false;
    }
}
} // namespace

Edits::Edits(EditSite site)
    : m_site(std::move(site))
{
}

void Edits::carryOut(const StationCommand &command, const EditHandler &handler, const Answer &answer)
{
    const QString id = command.id;
    if (id.isEmpty() || id.toUtf8().size() > Edit::mostIdBytes) {
        const auto edit = std::make_shared<Edit>(m_site, command);
        edit->addListener(answer);
        if (!id.isEmpty()) {
            return edit->refuseId(StationReturnCode::BadRequest,
                                  QStringLiteral("an id of at most %1 bytes").arg(Edit::mostIdBytes));
        }
        return edit->attempt([&] { handler(edit); });
    }
    const std::shared_ptr<Edit> running = m_running.value(id);
    const auto edit = std::make_shared<Edit>(m_site, command, [this, id, isFirst = !running] {
        if (isFirst)
            m_running.remove(id);
    });
    if (running && running->isSame(*edit))
        return running->addListener(answer);
    edit->addListener(answer);
    if (running) {
        return edit->refuseId(StationReturnCode::RequestIdInUse,
                              QStringLiteral("the command and data that are carried out under the id \"%1\"").arg(id));
    }
    m_running.insert(id, edit);
    if (!giveKept(*edit))
        edit->attempt([&] { handler(edit); });
}
