import QtQuick
import QtQuick.Layouts
import RecordingConsole

/// The paths of the recording group that is edited.
ColumnLayout {
    id: section

    required property var volumes
    required property var keptNasPaths
    property string message ///< about the paths as a whole

    signal accepted

    function show(rows: var): void {
        rowModel.clear();
        rows.forEach(row => rowModel.append(row));
    }

    function values(): var {
        return Array.from({ length: rowModel.count }, (value, index) => rowModel.get(index));
    }

    function check(group: var): bool {
        message = rowModel.count === 0 ? qsTr("A recording group needs a path.") : "";
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
            rowModel.setProperty(Number(row), "message", words(errors[row]));
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

    spacing: Theme.small

    SectionTitle {
        text: qsTr("Paths")
        Layout.fillWidth: true
    }
    Repeater {
        id: rows

        model: ListModel { id: rowModel }
        delegate: PathEditRow {
            id: row

            volumes: section.volumes
            keptNas: section.keptNasPaths.includes(path)
            Layout.fillWidth: true
            onEdited: (key, value) => {
                rowModel.setProperty(index, key, value);
                if (key === "path")
                    rowModel.setProperty(index, "kind", GroupEdit.kindFor(value, kind, section.keptNasPaths));
                rowModel.setProperty(index, "message", "");
            }
            onRemoved: {
                addButton.forceActiveFocus();
                rowModel.remove(index);
            }
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
            rowModel.append(GroupEdit.emptyPathRow(""));
            (rows.itemAt(rowModel.count - 1) as PathEditRow)?.takeFocus();
        }
    }
}
