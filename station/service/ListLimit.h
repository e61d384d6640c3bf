#pragma once

#include "RequestMap.h"

/// How many entries a request asks for at most, under "limit": 1 to 1000, and 100 where it does not say. Throws
/// BadRequest.
int readLimit(const RequestMap &request);
