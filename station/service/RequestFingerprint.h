#pragma once

#include "StationMessage.h"

#include <QByteArray>

/// The same for two deliveries of one command, another one for another name or other data: a SHA-256.
///
/// Passwords are left out, so that nobody can try them against it: commands that differ in a password alone have the
/// same. Numbers count by their value and lists of strings as lists, as links carry them in types of their own.
QByteArray requestFingerprint(const StationCommand &command);
