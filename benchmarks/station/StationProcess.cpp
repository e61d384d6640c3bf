#include "StationProcess.h"

#include "Program.h"
#include "TreeStation.h"
#include "files/OpenFile.h"
#include "framework/HostReturnCode.h"

#include <csignal>

#include <poll.h>
#include <sys/syscall.h>

StationReply ask(LocalClient &client, const StationCommand &command)
{
    do {
        client.replies.clear();
        client.send(command.name, command.data);
        waitFor([&client] { return !client.replies.isEmpty(); }, "a reply");
    } while (client.replies.constFirst().returnCode == HostReturnCode::StationLost);
    require(client.isUp(), client.state().reason.toStdString());
    return client.replies.takeFirst();
}

void endStation(const QString &folder, int signal)
{
    const pid_t process = stationProcess(folder);
    const OpenFile watched(static_cast<int>(syscall(SYS_pidfd_open, process, 0)));
    kill(process, signal);
    pollfd end{watched.get(), POLLIN, 0};
    require(watched.isOpen() && poll(&end, 1, 10'000) == 1, "the station does not run, or does not end");
}
