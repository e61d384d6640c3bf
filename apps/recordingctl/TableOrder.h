#pragma once

#include <QCollator>

/// The order of names in tables, whatever the user's language: "Cam 9" before "Cam 10".
QCollator tableOrder();
