#pragma once

#include <QString>

struct ProgramHelp;

/// The man page of @p help, from @p page in which "@VERSION@", "@OPTIONS@" and "@COMMANDS@" each stand on their own
/// line or within one. Everything that comes from the help is shown as it stands.
QString manualPage(const QString &page, const ProgramHelp &help, const QString &version);
