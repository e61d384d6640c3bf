import QtQuick
import QtQuick.Layouts
import RecordingConsole

/// How long recordings are kept: whether that applies, an amount, and its unit.
ColumnLayout {
    id: field

    property string message ///< why it was refused
    readonly property int longest: 2147483647 // minutes; a 32-bit number
    readonly property var units: [
        { minutes: 1, text: qsTr("minutes") }, { minutes: 60, text: qsTr("hours") }, { minutes: 1440, text: qsTr("days") }
    ]

    signal edited
    signal accepted

    function show(reservedTime: real): void {
        const index = reservedTime === 0 ? 2 : units.map(unit => reservedTime % unit.minutes === 0).lastIndexOf(true);
        applies.checked = reservedTime > 0;
        unit.currentIndex = index;
        amount.text = reservedTime > 0 ? String(reservedTime / units[index].minutes) : "30";
    }

    /// Minutes; 0 where it does not apply, NaN where no such time stands there. A property would still have the value of
    /// before when edited() is emitted.
    function minutes(): real {
        if (!applies.checked)
            return 0;
        const entered = /^[0-9]{1,10}$/.test(amount.text) ? Number(amount.text) * units[unit.currentIndex].minutes : NaN;
        return entered >= 1 && entered <= longest ? entered : NaN;
    }

    function takeFocus(): void {
        amount.forceActiveFocus();
        amount.selectAll();
    }

    spacing: Theme.small

    Flow {
        spacing: Theme.medium
        Layout.fillWidth: true

        CheckOption {
            id: applies

            objectName: "timeApplies"
            text: qsTr("Keep recordings for")
            Accessible.name: qsTr("Reserved time applies")
            Accessible.description: SettingWords.reservedTime
            onToggled: field.edited()
        }
        Row {
            spacing: Theme.small

            InputField {
                id: amount

                objectName: "timeAmount"
                width: Theme.sized(84)
                enabled: applies.checked
                horizontalAlignment: TextInput.AlignRight
                inputMethodHints: Qt.ImhDigitsOnly
                mistaken: field.message !== ""
                Accessible.name: qsTr("Reserved time")
                Accessible.description: field.message
                onTextEdited: field.edited()
                onAccepted: field.accepted()
            }
            ChoiceBox {
                id: unit

                objectName: "timeUnit"
                width: Theme.sized(120)
                enabled: applies.checked
                model: field.units
                textRole: "text"
                Accessible.name: qsTr("Unit of the reserved time")
                onActivated: field.edited()
            }
        }
    }
    Text {
        objectName: "timeCaption"
        text: SettingWords.reservedTime
        color: Theme.secondaryText
        font.pixelSize: Theme.captionSize
        textFormat: Text.PlainText
        wrapMode: Text.Wrap
        Accessible.ignored: true
        Layout.fillWidth: true
    }
    FieldMessage {
        objectName: "timeMessage"
        text: field.message
        Layout.fillWidth: true
    }
}
