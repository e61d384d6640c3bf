#pragma once

#include "ConsoleSession.h"

#include <QList>
#include <QPointer>
#include <QVariant>

/// A station that a test plays for a session: it sees the station's own commands, and gives the answers.
class StationAnswers
{
public:
    struct Call
    {
        QString command;
        QVariantMap data;
        QPointer<QObject> context;
        ConsoleSession::OnAnswer onAnswer;
    };

    /// @param session must not outlive this object
    explicit StationAnswers(ConsoleSession &session)
    {
        session.setStationCall([this](const QString &command, const QVariant &data, QObject *context,
                                      const ConsoleSession::OnAnswer &onAnswer) {
            calls.append({command, data.toMap(), context, onAnswer});
        });
    }

    /// Answers the oldest call.
    void answer(const QVariant &data, const QString &returnCode = QStringLiteral("0"))
    {
        const Call call = calls.takeFirst();
        if (call.context)
            call.onAnswer(returnCode, data);
    }

    QList<Call> calls; ///< without an answer, in the order of sending
};
