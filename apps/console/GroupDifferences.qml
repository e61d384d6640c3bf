import QtQuick
import RecordingConsole

/// How an edited recording group differs from what it was, for the operator.
QtObject {
    /// A map for each difference: "text", and "sign": "+" for what is added, "-" for what is removed, else empty.
    /// @p changes as GroupEdit.changes() makes them of @p original and @p edited.
    function list(original: var, edited: var, changes: var): var {
        const result = [];
        const changed = (what, before, now) =>
            result.push({ sign: "", text: qsTr("%1: %2 → %3").arg(what).arg(before).arg(now) });
        if (changes.info.recordingGroupName !== undefined)
            changed(qsTr("Name"), original.name, edited.name);
        if (changes.info.recordingGroupReservedTimeEnabled !== undefined)
            changed(qsTr("Reserved time"), timeText(original.reservedTime), timeText(edited.reservedTime));
        for (const path of changes.addPaths)
            result.push({ sign: "+", text: qsTr("Path %1, %2 reserved%3").arg(path.path).arg(spaceText(path.reserveSpace))
                .arg(path.isRecoveryMode ? qsTr(", recovery") : "") });
        for (const path of changes.removePaths)
            result.push({ sign: "-", text: qsTr("Path %1").arg(path) });
        for (const change of changes.setPaths) {
            const before = original.paths.find(path => path.path === change.path);
            if (change.reserveSpace !== undefined)
                changed(qsTr("%1, reserved space").arg(change.path), spaceText(before.reserve),
                        spaceText(change.reserveSpace));
            if (change.pathType !== undefined)
                changed(qsTr("%1, kind").arg(change.path), GroupEdit.kindText(GroupEdit.kindOf(before)),
                        GroupEdit.kindText(change.pathType));
            if (change.isRecoveryMode !== undefined)
                changed(qsTr("%1, recovery").arg(change.path), switchText(before.recovery),
                        switchText(change.isRecoveryMode));
        }
        const added = new Map(changes.addMembers.map(member => [GroupEdit.memberKey(member), member]));
        for (const member of changes.removeMembers) {
            const after = added.get(GroupEdit.memberKey(member));
            if (!after) {
                result.push({ sign: "-", text: memberText(member) });
                continue;
            }
            added.delete(GroupEdit.memberKey(member));
            const before = GroupEdit.memberFrom(original.members.find(
                other => GroupEdit.memberKey(GroupEdit.memberFrom(other)) === GroupEdit.memberKey(member)));
            if (before.enableTimeShift !== after.enableTimeShift)
                changed(qsTr("%1, time shift").arg(memberText(member)), switchText(before.enableTimeShift),
                        switchText(after.enableTimeShift));
            if (before.enableSeamless !== after.enableSeamless)
                changed(qsTr("%1, seamless").arg(memberText(member)), switchText(before.enableSeamless),
                        switchText(after.enableSeamless));
        }
        for (const member of added.values())
            result.push({ sign: "+", text: memberText(member) });
        return result;
    }

    function timeText(minutes: real): string {
        return minutes === 0 ? qsTr("does not apply") : isNaN(minutes) ? qsTr("no valid time") : Units.duration(minutes);
    }

    function spaceText(megabytes: real): string {
        return isNaN(megabytes) ? qsTr("no valid size")
            : megabytes === 0 ? qsTr("nothing") : Units.capacity(megabytes * 1024);
    }

    function switchText(on: bool): string {
        return on ? qsTr("on") : qsTr("off");
    }

    function memberText(member: var): string {
        return member.camName === "" ? qsTr("Camera not chosen yet")
                                     : qsTr("Camera %1, stream %2").arg(member.camName).arg(member.streamIndex);
    }
}
