#pragma once

#include <QDateTime>
#include <QString>

#include <optional>
#include <utility>

/// That somebody has seen an alarm, and what he wrote down. The alarm goes on.
struct Acknowledgement
{
    QDateTime time; ///< UTC
    QString by; ///< who asked, as activity names users
    QString note; ///< may be empty

    friend bool operator==(const Acknowledgement &, const Acknowledgement &) = default;
};

/// Something about the station or its storage that an operator has to know. Who notices it tells it as long as it
/// lasts; StationAlarms gathers what all of them tell.
struct StationTrouble
{
    enum class Severity {
        Error, ///< something is broken: nothing may be recorded, or nothing be kept
        Warning, ///< it works, and will not for long or not as expected
        Pending, ///< no trouble yet: an answer is outstanding, and nobody knows how it stands until it comes
    };

    QString kind; ///< a word of StationAlarmKind
    Severity severity = Severity::Error;
    QString subject; ///< what it is about, in an operator's words: a volume's path, a share, a file; unique in its kind
    QString text; ///< what is wrong, one sentence that names the subject
    QString remedy; ///< what to do about it, one sentence; may be empty
    QDateTime since; ///< when it was noticed first, in UTC
    std::optional<Acknowledgement> acknowledgement = {}; ///< known to StationAlarms alone, not to who notices it
    QString groupId = {}; ///< of the recording group that it is about; empty: it is about no group alone

    /// What tells it from all others.
    using Key = std::pair<QString, QString>;
    Key key() const { return {kind, subject}; }
};
