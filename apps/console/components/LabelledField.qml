import QtQuick
import QtQuick.Layouts
import RecordingConsole

/// A line to type into, what it is for above it and what is wrong with it below.
ColumnLayout {
    id: labelled

    required property string label
    property alias field: input
    property alias text: input.text
    property alias placeholderText: input.placeholderText
    property alias echoMode: input.echoMode
    property alias locked: input.readOnly ///< what stands there cannot be changed now
    property string hint
    property string message ///< what is wrong
    property bool mistaken: message !== ""

    signal edited
    signal accepted

    spacing: Theme.tiny

    Text {
        text: labelled.label
        color: Theme.secondaryText
        font.pixelSize: Theme.captionSize
        textFormat: Text.PlainText
        elide: Text.ElideRight
        Accessible.ignored: true
        Layout.fillWidth: true
    }
    InputField {
        id: input

        objectName: labelled.objectName + "Input"
        mistaken: labelled.mistaken
        color: readOnly ? Theme.secondaryText : Theme.text
        Layout.fillWidth: true
        Accessible.name: labelled.label
        Accessible.description: labelled.message !== "" ? labelled.message : labelled.hint
        onTextEdited: labelled.edited()
        onAccepted: labelled.accepted()
    }
    FieldMessage {
        objectName: labelled.objectName + "Message"
        text: labelled.message
        Layout.fillWidth: true
    }
    Text {
        visible: labelled.message === "" && labelled.hint !== ""
        text: labelled.hint
        color: Theme.secondaryText
        font.pixelSize: Theme.captionSize
        textFormat: Text.PlainText
        wrapMode: Text.Wrap
        Accessible.ignored: true
        Layout.fillWidth: true
    }
}
