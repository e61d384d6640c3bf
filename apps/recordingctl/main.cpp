#include "Tool.h"
#include "embedded/EmbeddedLink.h"
#include "link/LocalLink.h"
#include "link/MqttLink.h"

int main(int argc, char **argv)
{
    ClientSession::Options options;
    options.linkKinds = QList<StationLink::Kind>{LocalLink::kind(), EmbeddedLink::kind()} + MqttLink::kinds();
    return runTool(argc, argv, options);
}
