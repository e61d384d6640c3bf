#pragma once

#include "link/StationLink.h"

#include <QList>

/// A link on which the test plays the station; up at first.
class FakeLink : public StationLink
{
public:
    struct Sent
    {
        quint64 correlation;
        QString relayPath;
        StationCommand command;
    };

    bool isUp() const override { return m_up; }

    void send(quint64 correlation, const QString &relayPath, const StationCommand &command) override
    {
        sent.append({correlation, relayPath, command});
    }

    void setUp(bool up)
    {
        m_up = up;
        emit upChanged(up);
    }

    void answer(int index, const QString &returnCode, const QVariant &data = {}, bool finish = true)
    {
        emit replyReceived(sent.at(index).correlation, {returnCode, data, finish});
    }

    void answerPart(int index, const QVariant &data) { answer(index, QStringLiteral("0"), data, false); }

    QList<Sent> sent;

private:
    bool m_up = true;
};
