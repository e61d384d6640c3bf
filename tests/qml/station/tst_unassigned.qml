import QtQuick
import "../pages"

/// The recordings of no group, on a real station.
PageTest {
    id: test

    function doors(): string {
        return server.pathOf("disk/Doors");
    }

    name: "UnassignedOnAStation"

    /// Shows what the removed group Doors has left: three files of two days.
    function openList(): void {
        const path = server.makeFolder("disk");
        const added = server.ask("addRecordingGroup", {
            recordingGroupName: "Doors", path: path, pathType: 0, reserveSpace: 0
        });
        verify(added.recordingGroupID, added);
        server.record("disk/Doors/Gate/2026-03-01/1.rec", 1024);
        server.record("disk/Doors/Gate/2026-03-01/2.rec", 1024);
        server.record("disk/Doors/Gate/2026-03-02/1.rec", 2048);
        const yard = server.ask("addRecordingGroup", {
            recordingGroupName: "Yard", path: path, pathType: 0, reserveSpace: 0
        });
        verify(yard.recordingGroupID, yard);
        server.ask("removeRecordingGroup", { recordingGroupIDList: [added.recordingGroupID] });
        open("UsagePage", { startPlace: "unassigned" });
        tryVerify(() => findChild(page, "unassigned:" + doors()) !== null, 10000);
        tryVerify(() => text(part("unassigned:" + doors()), "size") === "4.00 KB · 3 files", 10000,
                  "counted: " + text(part("unassigned:" + doors()), "size"));
    }

    function opened(name) {
        const dialog = findChild(page, name);
        tryVerify(() => dialog.opened);
        return dialog;
    }

    function test_theyAreDeleted(): void {
        openList();
        compare(text(part("unassigned:" + doors()), "days"), "2 days, 1 Mar 2026 to 2 Mar 2026");
        part("unassigned").list.forceActiveFocus();
        keyClick(Qt.Key_Delete);
        const dialog = opened("deletionDialog");
        for (const key of "Doors")
            keyClick(key);
        keyClick(Qt.Key_Return);
        tryVerify(() => dialog.ended);
        compare(text(dialog, "deletionWords"), "Deleted: 4.00 KB in 3 files.");
        verify(!server.exists("disk/Doors"));
        keyClick(Qt.Key_Escape);
        tryVerify(() => part("unassignedPlaceholder").visible);
        compare(part("unassignedPlaceholder").title, "No recordings of no group");
    }

    function test_aGroupGetsThem(): void {
        openList();
        part("unassigned").list.forceActiveFocus();
        keyClick(Qt.Key_Return);
        const dialog = opened("assignDialog");
        tryVerify(() => dialog.takers.length === 1);
        compare(dialog.takers[0].name, "Yard");
        findChild(dialog, "groupChoice").currentIndex = 0;
        server.record("disk/Yard/Gate/2026-03-02/9.rec", 1);
        findChild(dialog, "accept").clicked();
        tryCompare(dialog, "refusal", "The group has recordings of the same days already: nothing was moved.");
        compare(text(dialog, "inTheWay"), server.pathOf("disk/Yard/Gate/2026-03-02"));
        keyClick(Qt.Key_Escape);
        tryVerify(() => !dialog.visible);
        verify(server.exists("disk/Doors/Gate/2026-03-01/1.rec"));
        server.removeFile("disk/Yard/Gate/2026-03-02/9.rec");
        keyClick(Qt.Key_Return);
        tryVerify(() => dialog.opened);
        findChild(dialog, "groupChoice").currentIndex = 0;
        findChild(dialog, "accept").clicked();
        tryVerify(() => !dialog.visible);
        verify(server.exists("disk/Yard/Gate/2026-03-02/1.rec"));
        compare(part("givenStrip").text,
                "The recordings belong to “Yard” now, and are in " + server.pathOf("disk/Yard") + ".");
        tryVerify(() => part("unassignedPlaceholder").visible);
    }
}
