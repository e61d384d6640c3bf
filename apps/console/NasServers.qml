pragma Singleton

import QtQuick
import RecordingConsole
import com.meridon.pluginrecordingmanagement

/// What the pages look up in the plug-in's model of the NAS servers, and the words for its codes.
QtObject {
    // What stands in for what the operator leaves empty, as the plug-in has it.
    readonly property string ownDomain: "Host"
    readonly property string guest: "Guest"

    // Some parameters are var: the qmllint of Qt 6.4 crashes over their types.

    /// The same for every spelling of a host, a string, as the station compares them.
    function hostKey(host: var): string {
        return host.toLowerCase().replace(/:445$/, "");
    }

    /// The row of the server, -1 where there is none.
    function row(model: var, id: string): int {
        return ModelLookup.rowOf(model, "idRole", id);
    }

    /// Map with "host", "logonDomain", "userName" and "password" (the token in its place) for the next request alone;
    /// null where there is no such server.
    function logon(model: var, id: string): var {
        const index = model.index(row(model, id), 0);
        if (!index.valid)
            return null;
        return {
            host: ModelLookup.value(index, "nameRole"),
            logonDomain: ModelLookup.value(index, "logonDomainRole"),
            userName: ModelLookup.value(index, "userNameRole"),
            password: ModelLookup.value(index, "passwordRole")
        };
    }

    /// Why the plug-in answered @p code, an answer to @p command; empty for success. @p session is the ConsoleSession.
    function refusal(session: var, command: string, code: int): string {
        if (code === PluginRecordingManagement.NonError)
            return "";
        return session.refusal(command) || qsTr("The station refused without a reason.");
    }
}
