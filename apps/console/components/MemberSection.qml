import QtQuick
import QtQuick.Layouts
import RecordingConsole

/// The members of the recording group that is edited.
ColumnLayout {
    id: section

    required property var cameras
    required property bool wide ///< there is room for a member in one line
    required property var streamElsewhere ///< function of a camera's name, see MemberEditRow

    function show(rows: var): void {
        rowModel.clear();
        rows.forEach(row => rowModel.append(row));
    }

    function values(): var {
        return Array.from({ length: rowModel.count }, (value, index) => rowModel.get(index));
    }

    function check(): bool {
        let right = true;
        values().forEach((row, index) => {
            const words = row.camName === "" ? qsTr("Choose a camera.") : "";
            rowModel.setProperty(index, "message", words);
            right = right && words === "";
        });
        return right;
    }

    /// @param errors the refusals by row; @p words makes them a text
    function showMessages(errors: var, words: var): void {
        for (const row in errors)
            rowModel.setProperty(Number(row), "message", words(errors[row]));
    }

    function clearMessages(): void {
        for (let row = 0; row < rowModel.count; ++row)
            rowModel.setProperty(row, "message", "");
    }

    function focusMessage(): bool {
        const row = values().findIndex(row => row.message !== "");
        if (row >= 0)
            (rows.itemAt(row) as MemberEditRow).takeFocus();
        return row >= 0;
    }

    /// The next camera that the group does not record, else none.
    function nextCamera(): string {
        const taken = values().map(row => row.camName);
        return cameras.find(camera => !taken.includes(camera.camName))?.camName ?? "";
    }

    spacing: Theme.small

    SectionTitle {
        text: qsTr("Cameras")
        Layout.fillWidth: true
    }
    Repeater {
        id: rows

        model: ListModel { id: rowModel }
        delegate: MemberEditRow {
            cameras: section.cameras
            wide: section.wide
            streamElsewhere: section.streamElsewhere(camName)
            Layout.fillWidth: true
            onEdited: (key, value) => {
                rowModel.setProperty(index, key, value);
                rowModel.setProperty(index, "message", "");
            }
            onRemoved: {
                addButton.forceActiveFocus();
                rowModel.remove(index);
            }
        }
    }
    Text {
        objectName: "noCameras"
        visible: section.cameras.length === 0
        text: qsTr("The station names no cameras that could be added.")
        color: Theme.secondaryText
        font.pixelSize: Theme.captionSize
        textFormat: Text.PlainText
        wrapMode: Text.Wrap
        Layout.fillWidth: true
    }
    ActionButton {
        id: addButton

        objectName: "addCamera"
        iconName: "add"
        text: qsTr("Add camera")
        enabled: section.cameras.length > 0
        onClicked: {
            rowModel.append({ camName: section.nextCamera(), streamIndex: 0, enableTimeShift: false,
                              enableSeamless: false, message: "" });
            (rows.itemAt(rowModel.count - 1) as MemberEditRow)?.takeFocus();
        }
    }
}
