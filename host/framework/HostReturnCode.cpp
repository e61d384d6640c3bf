#include "HostReturnCode.h"

const QString HostReturnCode::LinkDown = QStringLiteral("LinkDown");
const QString HostReturnCode::StationLost = QStringLiteral("StationLost");
const QString HostReturnCode::NoAnswer = QStringLiteral("NoAnswer");
const QString HostReturnCode::CannotBeSent = QStringLiteral("CannotBeSent");
const QString HostReturnCode::TooLargeForBroker = QStringLiteral("TooLargeForBroker");
const QString HostReturnCode::BrokerRefused = QStringLiteral("BrokerRefused");
const QString HostReturnCode::BadReply = QStringLiteral("BadReply");
const QString HostReturnCode::UnknownStation = QStringLiteral("UnknownStation");
const QString HostReturnCode::OtherStation = QStringLiteral("OtherStation");
const QString HostReturnCode::Closing = QStringLiteral("Closing");
