import QtQuick

/// One volume has the same figures on every page, at any moment.
WindowTest {
    id: test

    name: "Figures"

    function go(index: int): void {
        keyClick(String(index + 1), Qt.ControlModifier);
        answer();
    }

    function indexOf(key: string): int {
        return window.pages.findIndex(page => page.key === key);
    }

    /// What a page says of the volume /srv/video: how much is free, and how large the parts of its bar are.
    function told(figures): var {
        return { free: findChild(figures, "free").text,
                 parts: Array.from(figures.parts).map(part => `${part.kind}${part.id} ${part.bytes}`).sort() };
    }

    function figuresOn(key: string): var {
        go(indexOf(key));
        const page = window.currentPage;
        if (key === "volumes")
            return told(findChild(page, "volume:/srv/video"));
        if (key === "usage")
            return told(findChild(findChild(page, "group:{north}"), "volume:/srv/video"));
        page.select("{north}");
        settle();
        return told(findChild(findChild(page, "path:/srv/video/north"), "volume"));
    }

    function test_everyPageTellsTheSame(): void {
        open({ width: 1280, height: 800 });
        answer();
        const wanted = figuresOn("volumes");
        verify(wanted.free.includes(" free of 4.00 TB"), wanted.free);
        const sum = wanted.parts.reduce((bytes, part) => bytes + Number(part.split(" ").pop()), 0);
        compare(sum, 4096 * bytes, "the parts add up to the size");
        for (const key of ["usage", "groups"])
            compare(figuresOn(key), wanted, key);
        window.currentPage.edit();
        const editor = findChild(window.currentPage, "groupEditor");
        tryVerify(() => editor.opened);
        const row = findChild(editor.contentItem, "pathRow:0");
        const free = findChild(row, "free").text;
        verify(wanted.free.startsWith(free.replace(" ·", "")), free);
        keyClick(Qt.Key_Escape);
    }

    function test_andAfterAChange(): void {
        open({ width: 1280, height: 800 });
        answer();
        const before = figuresOn("volumes");
        figuresOn("usage");
        figuresOn("groups");
        const fuller = JSON.parse(JSON.stringify(storage));
        fuller[0].free -= 10 * bytes;
        fuller[0].groups[0].recordedBytes += 10 * bytes;
        server.setStorage(fuller);
        settle();
        const now = () => told(findChild(findChild(window.currentPage, "path:/srv/video/north"), "volume"));
        tryVerify(() => now().free !== before.free);
        const wanted = now();
        showPage(indexOf("usage"));
        compare(told(findChild(findChild(window.currentPage, "group:{north}"), "volume:/srv/video")), wanted);
        showPage(indexOf("volumes"));
        compare(told(findChild(window.currentPage, "volume:/srv/video")), wanted);
    }

    /// Without another answer of the station.
    function showPage(index: int): void {
        keyClick(String(index + 1), Qt.ControlModifier);
        settle();
    }
}
