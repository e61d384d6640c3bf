#pragma once

#include <QString>

struct LateOutcome;

/// What came of an edit that had timed out, as a sentence for the operator.
QString lateOutcomeText(const LateOutcome &outcome);
