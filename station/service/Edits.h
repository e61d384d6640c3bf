#pragma once

#include "Edit.h"

#include <QHash>

/// Carries each edit out once, however often its command arrives: see "Edits take effect once" in
/// docs/station-protocol.md. Used on the station's thread alone.
class Edits
{
public:
    /// @param site what it refers to must outlive this object
    explicit Edits(EditSite site);
    Edits(const Edits &) = delete;
    Edits &operator=(const Edits &) = delete;

    /// Has @p handler carry @p command out, unless that was done or is being done under the same id, and gives every
    /// part of the reply to @p answer, now or later.
    void carryOut(const StationCommand &command, const EditHandler &handler, const Answer &answer);

private:
    EditSite m_site;
    QHash<QString, std::shared_ptr<Edit>> m_running; // by the ids of their commands
};
