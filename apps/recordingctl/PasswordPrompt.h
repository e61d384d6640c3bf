#pragma once

#include <QByteArray>

#include <optional>

/// Asks for a line on the terminal that standard input is, without echo. None when no line came, or one of more than
/// @p limit bytes.
///
/// A signal that ends or stops the process does so, after the terminal has its echo again; when it goes on, the
/// question is asked anew.
std::optional<QByteArray> askHidden(const char *question, qsizetype limit);
