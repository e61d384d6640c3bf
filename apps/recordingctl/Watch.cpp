#include "Watch.h"

#include "ClientSession.h"
#include "Interruption.h"
#include "Output.h"
#include "SignalTap.h"
#include "TextTable.h"
#include "ValueText.h"

#include <QDateTime>
#include <QEventLoop>
#include <QTimer>

namespace {

/// One thing that happened, as a line.
struct Happening
{
    QString kind; // "event" or "signal"
    QString name;
    QVariantMap values;
    QStringList order; // of the keys of values

    void print(bool json) const
    {
        const QString time = QDateTime::currentDateTime().toString(Qt::ISODateWithMs);
        if (json) {
            printLine(compactJson({{QStringLiteral("time"), time},
                                   {QStringLiteral("kind"), kind},
                                   {QStringLiteral("name"), name},
                                   {QStringLiteral("values"), valueJson(values)}}));
            return;
        }
        QString text = QStringLiteral("%1  %2  %3").arg(time, kind.leftJustified(6), name);
        for (const QString &key : order)
            text += QStringLiteral(" %1=%2").arg(key, valueText(values.value(key)));
        printLine(printable(text));
    }
};

} // namespace

ExitCode watch(ClientSession &session, const CommandLine &line)
{
    QEventLoop loop;
    ExitCode exitCode = ExitCode::Done;
    int printed = 0;
    const auto show = [&](const Happening &happening) {
        if (line.count && printed == *line.count)
            return; // the loop ends after what is being handled now
        happening.print(line.json);
        ++printed;
        if (line.count && printed == *line.count)
            loop.quit();
    };
    const SignalTap tap(session.plugin(), [&](const QMetaMethod &signal, const QVariantList &arguments) {
        Happening happening{QStringLiteral("signal"), QString::fromLatin1(signal.name()), {}, {}};
        for (int index = 0; index < arguments.size(); ++index) {
            const QString name = QString::fromLatin1(signal.parameterNames().at(index));
            happening.values.insert(name, arguments[index]);
            happening.order.append(name);
        }
        show(happening);
    });
    QObject::connect(session.framework(), &HostFramework::eventDelivered, &loop,
                     [&](const QString &event, const QVariant &data, const QString &source) {
                         show({QStringLiteral("event"),
                               event,
                               {{QStringLiteral("source"), source}, {QStringLiteral("data"), data}},
                               {QStringLiteral("source"), QStringLiteral("data")}});
                     });
    const Interruption interruption([&loop] { loop.quit(); });
    if (line.timeout) {
        QTimer::singleShot(*line.timeout, Qt::PreciseTimer, &loop, [&] {
            if (line.count && printed < *line.count) {
                printError(QStringLiteral("watch: %1 of %2 lines came in time").arg(printed).arg(*line.count));
                exitCode = ExitCode::NoAnswer;
            }
            loop.quit();
        });
    }
    loop.exec();
    return exitCode;
}
