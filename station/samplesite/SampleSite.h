#pragma once

#include "CommandTable.h"

#include <QString>

class StationData;
class VolumeSource;

/// The command "station.createSampleSite": fills an empty station with cameras, recording groups and recordings, so
/// that there is something to see. The recordings are sparse files below "sample" in the data folder, or "sample-2" and
/// so on where that is there already: they have size and date, and take next to no space.
class SampleSite
{
public:
    using Changed = std::function<void()>;

    /// A file in the data folder that is left there with the first sample site.
    static const QString mark;

    /// @param data, @param volumes must outlive this object
    /// @param groupsChanged called after a site was made
    SampleSite(StationData &data, const VolumeSource &volumes, Changed groupsChanged = {});

    /// The entry refers to this object.
    void enterInto(CommandTable &table);

private:
    void createSampleSite(Edit &edit);
    QString create(Edit &edit); ///< gives a return code; with "0" the edit is answered

    StationData &m_data;
    const VolumeSource &m_volumes;
    Changed m_groupsChanged;
};
