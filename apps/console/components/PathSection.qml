import QtQuick
import QtQuick.Layouts
import RecordingConsole

/// The paths of the recording group that is edited.
ColumnLayout {
    id: section

    required property RecordingGroups groups
    required property string groupId ///< of the edited group; empty for a new one
    required property PathProposals proposals
    required property var keptNasPaths
    property string title: qsTr("Paths")
    property bool needed: true ///< without a path nothing can be sent
    property string message ///< about the paths as a whole
    property int edits: 0 // counts the changes of the rows
    property bool proposalAwaited: false // a path is empty until the station has told which folders it takes
    readonly property var folders: (edits, proposals.proposals, groups.volumes, freeFolders())

    signal accepted
    signal browseWanted(row: int)
    signal edited ///< the operator changed, added or removed a path, or has left a field of one

    function show(rows: var): void {
        rowModel.clear();
        rows.forEach(row => rowModel.append(row));
        proposalAwaited = rows.some(row => row.path === "");
        ++edits;
    }

    /// Proposed folders that the group does not have, and then the NAS paths that are used as volumes.
    function freeFolders(): var {
        const nas = groups.volumes.filter(volume => volume.isNas)
            .map(volume => ({ path: volume.path, free: volume.available * 1024, isSystem: false, isNas: true }));
        const taken = values().map(row => row.path);
        return proposals.proposals.concat(nas).filter(folder => !taken.includes(folder.path));
    }

    /// A row with the best folder that the station would accept; without one the path is left empty.
    function proposedRow(): var {
        const best = freeFolders().find(folder => !folder.isSystem && !folder.isNas);
        return GroupEdit.newPathRow(best?.path ?? "", best?.left ?? -1);
    }

    /// Where a path is empty since it was shown, the best folder takes its place. True where it did.
    function propose(): bool {
        const row = values().findIndex(row => row.path === "");
        const proposed = proposedRow();
        if (!proposalAwaited || row < 0 || proposed.path === "")
            return false;
        proposalAwaited = false;
        rowModel.setProperty(row, "path", proposed.path);
        rowModel.setProperty(row, "reserve", proposed.reserve);
        ++edits;
        return true;
    }

    /// An operator is typing at a path on a NAS server, which the station would ask about each part of it.
    function isTypingNas(): bool {
        return values().some((row, index) => GroupEdit.isNas(row.kind) && (rows.itemAt(index) as PathEditRow)?.typing);
    }

    function volumeOf(row: var): var {
        return row.path === "" ? {} : groups.volumeOf(row.path, GroupEdit.isNas(row.kind));
    }

    /// What there is for the row of this index on its volume: see PathRoom.
    function roomOf(index: int): var {
        const row = rowModel.get(index);
        if (!row)
            return null;
        const volume = volumeOf(row);
        if (volume.kind === undefined)
            return null;
        const reserves = groups.storage.reserves(volume, groupId);
        const bytes = other => (GroupEdit.reserveFrom(other.reserve, undefined) || 0) * 1024 * 1024;
        const others = values().filter((other, place) => place !== index).filter(other => {
            const same = volumeOf(other);
            return same.kind === volume.kind && same.volumePath === volume.volumePath;
        });
        const own = (volume.groups ?? []).some(group => group.recordingGroupID === groupId && groupId !== "");
        return {
            volume: volume, byOthers: reserves.byOthers, wanted: bytes(row),
            left: reserves.left < 0 ? -1 : Math.max(0, others.reduce((left, other) => left - bytes(other), reserves.left)),
            recorded: reserves.recorded, bytesPerDay: reserves.bytesPerDay, own: own
        };
    }

    /// The figures behind a refused reserve; empty where they are not known.
    function reserveWords(index: int): string {
        const room = roomOf(index);
        return !room || room.left < 0 || room.byOthers < 0 ? ""
            : qsTr("%1 are left to reserve; other groups reserve %2 of %3.").arg(Units.bytes(room.left))
                  .arg(Units.bytes(room.byOthers)).arg(Units.bytes(room.volume.size));
    }

    function values(): var {
        return Array.from({ length: rowModel.count }, (value, index) => rowModel.get(index));
    }

    function check(group: var): bool {
        message = needed && rowModel.count === 0 ? qsTr("A recording group needs a path.") : "";
        let right = message === "";
        values().forEach((row, index) => {
            const original = group?.paths.find(path => path.path === row.path)?.reserve;
            const words = row.path === "" ? qsTr("Enter a path.")
                : isNaN(GroupEdit.reserveFrom(row.reserve, original)) ? qsTr("Enter the reserve in whole gigabytes.") : "";
            rowModel.setProperty(index, "message", words);
            rowModel.setProperty(index, "reserveWrong", row.path !== "");
            right = right && words === "";
        });
        return right;
    }

    /// @param errors the refusals by row; @p words makes them a text
    function showMessages(errors: var, words: var): void {
        for (const row in errors) {
            const numbers = errors[row].some(error => error.returnCode === "ReservedSpaceExceedsVolume")
                ? reserveWords(Number(row)) : "";
            rowModel.setProperty(Number(row), "message", [words(errors[row]), numbers].filter(Boolean).join(" "));
            rowModel.setProperty(Number(row), "reserveWrong", errors[row].every(GroupEdit.isAboutReserve));
        }
    }

    function clearMessages(): void {
        message = "";
        for (let row = 0; row < rowModel.count; ++row)
            rowModel.setProperty(row, "message", "");
    }

    function focusMessage(): bool {
        const row = values().findIndex(row => row.message !== "");
        if (row >= 0)
            (rows.itemAt(row) as PathEditRow).takeFocus();
        else if (message !== "")
            addButton.forceActiveFocus();
        return row >= 0 || message !== "";
    }

    /// One of the values of a row is another one now.
    function change(index: int, key: string, value: var): void {
        rowModel.setProperty(index, key, value);
        if (key === "path") {
            proposalAwaited = false;
            rowModel.setProperty(index, "kind", GroupEdit.kindFor(value, rowModel.get(index).kind, keptNasPaths));
        }
        rowModel.setProperty(index, "message", "");
        ++edits;
        edited();
    }

    /// The group is to record to @p path: an empty path becomes it, else it is added. Its field has the focus then.
    function record(path: string): void {
        const wanted = /^(\/\/|\\\\)/.test(path) ? path : FolderPath.trimmed(path);
        let row = values().findIndex(row => row.path === wanted);
        if (row < 0) {
            row = values().findIndex(row => row.path === "");
            if (row < 0) {
                rowModel.append(GroupEdit.newPathRow("", -1));
                row = rowModel.count - 1;
            }
            change(row, "path", wanted);
            const volume = volumeOf(rowModel.get(row));
            const left = volume.kind === undefined ? -1 : groups.storage.reserves(volume, groupId).left;
            change(row, "reserve", GroupEdit.newPathRow(wanted, left).reserve);
        }
        (rows.itemAt(row) as PathEditRow)?.takeFocus();
    }

    function removeRow(index: int): void {
        addButton.forceActiveFocus();
        rowModel.remove(index);
        ++edits;
        edited();
    }

    spacing: Theme.small

    SectionTitle {
        text: section.title
        Layout.fillWidth: true
    }
    Repeater {
        id: rows

        model: ListModel { id: rowModel }
        delegate: PathEditRow {
            id: row

            folders: section.folders
            room: (section.edits, section.groups.storage.volumes, section.groups.volumes, section.roomOf(index))
            keptNas: section.keptNasPaths.includes(path)
            Layout.fillWidth: true
            onEdited: (key, value) => section.change(index, key, value)
            onBrowseWanted: section.browseWanted(index)
            onTypingChanged: {
                if (!typing)
                    section.edited();
            }
            onRemoved: section.removeRow(index)
            onAccepted: section.accepted()
        }
    }
    FieldMessage {
        objectName: "pathsMessage"
        text: section.message
        Layout.fillWidth: true
    }
    ActionButton {
        id: addButton

        objectName: "addPath"
        iconName: "add"
        text: qsTr("Add path")
        onClicked: {
            section.message = "";
            rowModel.append(section.proposedRow());
            ++section.edits;
            section.edited();
            (rows.itemAt(rowModel.count - 1) as PathEditRow)?.takeFocus();
        }
    }
}
