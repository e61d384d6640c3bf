import QtQml
import com.meridon.pluginrecordingmanagement 1.0

QtObject {
    id: page

    required property PluginRecordingManagement recording
    property string outcome: "nothing was answered"
    readonly property Connections answers: Connections {
        target: page.recording

        function onAddRecordingGroupResponded(success: bool): void {
            page.outcome = success ? "added" : "refused";
        }
    }

    Component.onCompleted: {
        if (!page.recording.addRecordingGroup("North", "/mnt/video", PluginRecordingManagement.Local, 2048))
            page.outcome = "not sent";
    }
}
