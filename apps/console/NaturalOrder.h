#pragma once

#include <QCollator>

/// Puts names in the order in which people look for them: by the language's alphabet, capital and small letters alike,
/// and numbers by their value, "Gate 9" before "Gate 10".
QCollator naturalOrder();
