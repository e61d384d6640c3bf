pragma Singleton

import QtQuick
import RecordingConsole
import com.meridon.pluginrecordingmanagement

/// What the pages look up in the plug-in's model of the NAS servers, and the words for its codes.
QtObject {
    // Roles, for match() and data(): no property of an item may hold the password.
    readonly property int idRole: 257
    readonly property int hostRole: 258
    readonly property int logonDomainRole: 259
    readonly property int userNameRole: 260
    readonly property int passwordRole: 261

    // What stands in for what the operator leaves empty, as the plug-in has it.
    readonly property string ownDomain: "Host"
    readonly property string guest: "Guest"

    /// The same for every spelling of a host, as the station compares them.
    function hostKey(host: string): string {
        return host.toLowerCase().replace(/:445$/, "");
    }

    /// The row of the server, -1 where there is none.
    function row(model: var, id: string): int {
        const found = model.match(model.index(0, 0), idRole, id, 1, Qt.MatchExactly | Qt.MatchCaseSensitive);
        return found.length > 0 ? found[0].row : -1;
    }

    /// Map with "host", "logonDomain", "userName" and "password" (the token in its place) for the next request alone;
    /// null where there is no such server.
    function logon(model: var, id: string): var {
        const index = model.index(row(model, id), 0);
        if (!index.valid)
            return null;
        return {
            host: model.data(index, hostRole),
            logonDomain: model.data(index, logonDomainRole),
            userName: model.data(index, userNameRole),
            password: model.data(index, passwordRole)
        };
    }

    /// Why the plug-in answered @p code, an answer to @p command; empty for success.
    function refusal(session: ConsoleSession, command: string, code: int): string {
        switch (code) {
        case PluginRecordingManagement.NonError:
            return "";
        case PluginRecordingManagement.LogonFailed:
            return qsTr("The NAS server refused this user name and password.");
        case PluginRecordingManagement.ServerExist:
            return qsTr("This NAS server is registered with this user already.");
        case PluginRecordingManagement.GetDirFailed:
            return qsTr("The NAS server could not list this folder.");
        case PluginRecordingManagement.GetCapacityFailed:
            return qsTr("The NAS server did not tell the capacity.");
        }
        return session.refusal(command) || qsTr("The station refused without a reason.");
    }
}
