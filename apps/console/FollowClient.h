#pragma once

class ClientSession;
class ConsoleSession;

/// From now on @p session tells the pages what @p client comes to know. Either may end first. @p client is started.
void followClient(ClientSession &client, ConsoleSession &session);
