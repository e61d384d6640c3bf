#include "TraceScope.h"

#include "TraceLog.h"

namespace {

void writeLine(const char *sourceFile, int line, const char *format, const char *function)
{
    if (TraceLog::shouldLog(TraceLog::Severity::Trace, sourceFile, line))
        TraceLog::write(format, function);
}

} // namespace

TraceScope::TraceScope(const char *sourceFile, const char *function, int line)
    : m_sourceFile(sourceFile)
    , m_function(function)
{
    writeLine(m_sourceFile, line, "%s, Enter", m_function);
}

TraceScope::~TraceScope()
{
    writeLine(m_sourceFile, 0, "%s, Leave", m_function); // line 0: the end of a scope has no line of its own
}
