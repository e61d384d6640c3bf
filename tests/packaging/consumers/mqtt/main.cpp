#include <link/MqttLink.h>

#include <QTextStream>

int main()
{
    for (const StationLink::Kind &kind : MqttLink::kinds())
        QTextStream(stdout) << kind.scheme << Qt::endl;
}
