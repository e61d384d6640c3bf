#pragma once

#include <QDateTime>
#include <QMetaType>
#include <QString>

/// What came of an edit in the end, after it was answered with HostReturnCode::NoAnswer.
struct LateOutcome
{
    QString command; ///< its name
    /// What the edit was about, for a reader, as it was known when the edit was sent: see editSubject(). May be empty.
    QString subject;
    QString relayPath; ///< of the station; empty where a link knows one alone, and that has none
    QDateTime timedOutAt; ///< when it was answered with NoAnswer; in UTC
    /// As the station answered: of an edit in several parts, those that came in time among them, the first code that is
    /// not "0". Or, where no answer will come any more, HostReturnCode::StationLost (it may have taken effect) or
    /// LinkDown (it was not carried out).
    QString returnCode;
    bool isDoneInPart = false; ///< @p returnCode is not "0", and a part of the edit took effect

    bool operator==(const LateOutcome &) const = default; ///< member by member
};

Q_DECLARE_METATYPE(LateOutcome)
