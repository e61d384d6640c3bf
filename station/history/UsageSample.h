#pragma once

#include <QHash>
#include <QString>

#include <array>
#include <optional>
#include <utility>

/// Whose figures are kept.
struct HistorySubject
{
    enum class Kind {
        Station = 0, ///< has no figures: each of its samples says that the station was sampling then
        RecordingGroup = 1,
        Volume = 2,
    };

    Kind kind = Kind::Station;
    QString key; ///< the group's id, or the volume's path; of a share on a NAS server, SmbPath::shareKey()

    friend bool operator==(const HistorySubject &, const HistorySubject &) = default;
    friend size_t qHash(const HistorySubject &subject, size_t seed = 0)
    {
        return qHashMulti(seed, static_cast<int>(subject.kind), subject.key);
    }
};

/// The figures of a group or of a volume at one moment. What is not known has no value, and neither has what the
/// subject does not have.
struct UsageSample
{
    enum Figure {
        RecordedDays, ///< of a group
        RemainingDays, ///< likewise
        OneDayUsage, ///< bytes that a group records in a day
        RecordedBytes, ///< of a group, on all of its paths; on a volume, of whatever group
        ReservedMinutes, ///< the group's reserved time; 0 where it does not apply
        ReservedMegabytes, ///< the group's reserves on all of its paths
        VolumeBytes,
        AvailableBytes, ///< that can still be written to a volume
        FigureCount,
    };

    HistorySubject subject;
    std::array<std::optional<qint64>, FigureCount> figures = {};

    /// Whether this sample knows a figure that @p other does not.
    bool knowsMoreThan(const UsageSample &other) const
    {
        for (std::size_t i = 0; i < figures.size(); ++i) {
            if (figures[i] && !other.figures[i])
                return true;
        }
        return false;
    }
};
