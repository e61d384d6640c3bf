#include "HostReturnCode.h"

const QString HostReturnCode::LinkDown = QStringLiteral("LinkDown");
const QString HostReturnCode::NoAnswer = QStringLiteral("NoAnswer");
const QString HostReturnCode::UnknownStation = QStringLiteral("UnknownStation");
const QString HostReturnCode::Closing = QStringLiteral("Closing");
